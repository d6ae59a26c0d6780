#include "compare/entfigure.h"

#include <cmath>

#include "geometry/vector.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "zim0lang/casefold.h"

namespace vek0::detail {
namespace {

// Dimensions in a file may share a block, so what each of them may add is limited.
constexpr std::size_t kMostPieces = 64;
// A dimension's text is a record with pieces.
constexpr int kDeepestPiece = 4;

bool isPartOfEnt(const CBlock& block) {
  return block.isOfRecord() || (block.isOfDimension() && block.size() <= kMostPieces);
}

}  // namespace

bool isPrivate(const CBlock& block) {
  return block.isOfRecord() || (!block.isSheet() && block.getName()[0] == u'*');
}

void EntFigure::read(const CEnt& ent) {
  clear();
  describeShape(ent, *this);
}

void EntFigure::clear() {
  points.clear();
  lengths.clear();
  words = texts = family = Mixer();
  families.clear();
  styles.clear();
  blocks.clear();
  attribs.clear();
}

void EntFigure::point(const PNT_3D& p) {
  PNT_3D image = p;
  if (isPlaced()) m_place.transform(p, image);
  points.push_back(image);
}

void EntFigure::direction(const PNT_3D& d) {
  const double size = detail::length(d);
  for (const double part : {d.x, d.y, d.z}) ratio(size > 0 ? part / size : 0);
}

// As a direction: equal angles may differ by full turns.
void EntFigure::angle(double angleRad) {
  lengths.push_back(std::cos(angleRad) * m_size);
  lengths.push_back(std::sin(angleRad) * m_size);
}

// As the pattern is drawn. Where it begins does not count: patterns begin at the origin of the
// drawing or near the hatch, and moves shift the one but not the other.
void EntFigure::pattern(const HATCH_TYPE& type, double scale, double angleRad) {
  family.add(std::uint64_t{zim::hashIgnoreCase(type.name)});
  for (const HATCH_LINE* line = type.lines; line != type.lines + type.numLines; ++line) {
    family.addInteger(line->numDash);
    families.push_back(std::cos(line->angle + angleRad) * m_size);
    families.push_back(std::sin(line->angle + angleRad) * m_size);
    families.push_back(line->dx * scale);
    families.push_back(line->dy * scale);
    for (int i = 0; i < line->numDash; ++i) families.push_back(line->dash[i] * scale);
  }
}

void EntFigure::block(const CEntInsertBase& insert) {
  const CBlock* shown = insert.getBlock();
  if (shown && m_depth < kDeepestPiece && isPartOfEnt(*shown)) return addPieces(insert, *shown);
  blocks.push_back(shown);
}

void EntFigure::addPieces(const CEntInsertBase& insert, const CBlock& pieces) {
  words.addInteger(static_cast<long>(pieces.size()));
  words.add(opaqueKindOf(insert).view());
  // What places the pieces counts only if there are none: the insertion point came before.
  if (pieces.size() > 0) points.pop_back();
  const CEntInsertMatrix outer = m_place;
  const CEntInsertMatrix own(1, insert, 0, 0);
  m_place = isPlaced() ? outer * own : own;
  ++m_depth;
  for (unsigned i = 0; i < pieces.size(); ++i) {
    word(pieces[i]->getColor());
    describeShape(*pieces[i], *this);
  }
  --m_depth;
  m_place = outer;
}

}  // namespace vek0::detail
