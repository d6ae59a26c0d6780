// Copies entities through the matrix of an insert. A kind keeps its class if the matrix keeps its
// shape: circles and arcs if it is conformal, that is, scales all directions alike. Otherwise
// chords replace them. The cost of a copy is spent before it is made, because nested arrays can
// request any number of entities.
#include "entities/edit/entplacer.h"

#include "tables/handover.h"
#include "vek0core/tables/colors.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "entities/blocks/hatchblock.h"
#include "geometry/vector.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blockfactory.h"
#include "vek0core/entities/blocks/blocktable.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/blocks/transformtext.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/entities/enttext.h"
#include "vek0core/geometry/angle.h"
#include "vek0core/geometry/edge.h"
#include "vek0core/hatch/hatchtypetable.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/ltype.h"

namespace vek0::detail {
namespace {

constexpr double kSquare = 1e-12;  // relative tolerance for perpendicular axes and equal lengths
constexpr int kMostNested = 200;

bool isClipped(const CEntInsertBase& insert) {
  return insert.getType() == CEntInsert::kType &&
         static_cast<const CEntInsert&>(insert).isClipped();
}

}  // namespace

bool EntMaker::spend(double units) {
  // Compared in doubles, because the product of array sizes exceeds any integer.
  if (units > static_cast<double>(limit - cost)) isRefused = true;
  if (!isRefused) cost += static_cast<long>(units);
  return !isRefused;
}

void EntMaker::take(CEnt* ent) {
  std::unique_ptr<CEnt> owned(ent);
  // A factory returns null if memory runs out; the whole result is refused then.
  if (owned)
    made.push_back(std::move(owned));
  else
    isRefused = true;
}

EntPlacer::EntPlacer(EntMaker& maker, const CEntInsertMatrix& matrix, const BlockLook* look,
                     int depth)
    : m_maker(maker), m_matrix(matrix), m_look(look), m_depth(depth) {
  matrix.getAxes(m_x, m_y);
  const double xx = dot(m_x, m_x), yy = dot(m_y, m_y);
  const double det = m_x.x * m_y.y - m_x.y * m_y.x;
  m_scale = std::sqrt(std::fabs(det));
  m_mirrors = det < 0;
  m_keepsAngles =
      // Conformal: the axes are perpendicular and have the same length.
      det != 0 && std::fabs(xx - yy) <= kSquare * xx && std::fabs(dot(m_x, m_y)) <= kSquare * xx;
}

PNT_3D EntPlacer::placed(const PNT_3D& p) const {
  PNT_3D out;
  m_matrix.transform(p, out);
  return out;
}

// For a conformal matrix.
double EntPlacer::turned(double angleRad) const {
  // A mirrored matrix reverses the direction in which angles grow.
  return std::atan2(m_x.y, m_x.x) + (m_mirrors ? -angleRad : angleRad);
}

CLayer* EntPlacer::layerOf(const CEnt& ent) const {
  // A hatch passes its own layer on to its lines; entities of blocks keep theirs.
  if (m_look && m_look->layer) return m_look->layer;
  CLayer* layer = ent.getLayer();
  return m_look && m_look->instead0 && layer && layer->is0() ? m_look->instead0 : layer;
}

CLtype* EntPlacer::ltypeOf(const CEnt& ent) const {
  CLtype* ltype = ent.getLtype();
  return m_look && ltype && ltype->isByBlock() ? m_look->ltype : ltype;
}

short EntPlacer::colorOf(const CEnt& ent) const {
  return m_look && ent.getColor() == kColorByBlock ? m_look->color : ent.getColor();
}

// An invisible insert hides its content. The lines of a hatch have no properties of their own.
ENT_TRAITS EntPlacer::traitsOf(const CEnt& ent) const {
  ENT_TRAITS traits = ent.getTraits();
  constexpr double most = std::numeric_limits<double>::max();
  traits.thickness = std::clamp(traits.thickness * m_matrix.getScaleZ(), -most, most);
  if (!m_look) return traits;
  const ENT_TRAITS& insert = m_look->traits;
  const bool isOfHatch = m_look->layer != nullptr;
  if (ent.getColor() == kColorByBlock && !traits.hasTrueColor())
    traits.trueColor = insert.trueColor;
  if (isOfHatch || traits.lineweight == ENT_TRAITS::kWeightByBlock)
    traits.lineweight = insert.lineweight;
  if (isOfHatch || traits.opacity == ENT_TRAITS::kOpacityByBlock) traits.opacity = insert.opacity;
  traits.isVisible = traits.isVisible && insert.isVisible;
  return traits;
}

// Gives a copy what no factory takes.
void EntPlacer::dress(CEnt& made, const CEnt& src) const {
  made.copyExtras(src);
  const ENT_TRAITS traits = traitsOf(src);
  if (traits != src.getTraits()) made.setTraits(traits);
}

void EntPlacer::take(CEnt* made, const CEnt& src) {
  std::unique_ptr<CEnt> owned(made);
  if (owned) dress(*owned, src);
  m_maker.take(owned.release());
}

void EntPlacer::visit(CEntPnt& ent) {
  take(m_maker.ents.createEntPnt(m_maker.gestor, layerOf(ent), ltypeOf(ent), colorOf(ent),
                                 placed(ent.getPnt()), 0),
       ent);
}

void EntPlacer::visit(CEntLine& ent) {
  const LINE_3D line(placed(ent.getLine().p1), placed(ent.getLine().p2));
  CEntLine* made =
      m_maker.ents.createEntLine(m_maker.gestor, layerOf(ent), ltypeOf(ent), colorOf(ent), line, 0);
  if (made) made->setReach(ent.getReach());
  take(made, ent);
}

void EntPlacer::visit(CEntCircle& ent) {
  const CIRCLE_3D& c = ent.getCircle();
  if (!m_keepsAngles) return takeChords(ent, c, c.radius, 0, kTwoPi, true);
  const PNT_3D center = placed(c);
  const CIRCLE_3D circle(center.x, center.y, center.z, c.radius * m_scale);
  take(m_maker.ents.createEntCircle(m_maker.gestor, layerOf(ent), ltypeOf(ent), colorOf(ent),
                                    circle, 0),
       ent);
}

void EntPlacer::visit(CEntArc& ent) {
  const ARC_3D& a = ent.getArc();
  if (!m_keepsAngles) {
    double start, end;
    a.getSafeAngles(start, end);
    // Equal angles mean a full circle.
    const bool isFull = a.startAngle == a.endAngle;
    return takeChords(ent, a, a.radius, start, isFull ? kTwoPi : end - start, isFull);
  }
  const PNT_3D center = placed(a);
  // Arcs run counterclockwise, so mirroring exchanges the ends.
  const double start = turned(m_mirrors ? a.endAngle : a.startAngle);
  const double end = turned(m_mirrors ? a.startAngle : a.endAngle);
  ARC_3D arc(center.x, center.y, center.z, a.radius * m_scale, start, end);
  if (a.startAngle == a.endAngle) arc.endAngle = arc.startAngle;
  take(m_maker.ents.createEntArc(m_maker.gestor, layerOf(ent), ltypeOf(ent), colorOf(ent), arc, 0),
       ent);
}

void EntPlacer::takeChords(const CEnt& src, const PNT_3D& center, double radius, double start,
                           double sweep, bool isClosed) {
  const int chords = arcChords(sweep);
  if (!m_maker.spend(chords)) return;
  std::vector<BULGED_VERTEX> vertexes;
  for (int i = 0; i < chords + (isClosed ? 0 : 1); ++i) {
    const double angle = start + sweep * i / chords;
    const PNT_3D p = placed(
        PNT_3D(center.x + radius * std::cos(angle), center.y + radius * std::sin(angle), center.z));
    vertexes.push_back({p.x, p.y, p.z, 0, 0, 0, 0});
  }
  CEntPolyline* made =
      m_maker.ents.createEntPolyline(m_maker.gestor, layerOf(src), ltypeOf(src), colorOf(src),
                                     isClosed ? CEntPolyline::kClosed : short{0}, 0, 0);
  if (made) made->setBulgedVertexes(m_maker.gestor, m_maker.ents, vertexes.data(), vertexes.size());
  take(made, src);
}

void EntPlacer::visit(CEntPolyline& ent) {
  if (!m_maker.spend(static_cast<double>(ent.getNoTotalVertexes()))) return;
  if (ent.isCurve()) return placeCurve(ent);
  std::vector<BULGED_VERTEX> vertexes;
  const auto add = [&](const PNT_3D& p, double start, double end, double bulge, long) {
    const PNT_3D at = placed(p);
    vertexes.push_back(
        {at.x, at.y, at.z, start * m_scale, end * m_scale, m_mirrors ? -bulge : bulge, 0});
  };
  // Sheared arcs are no arcs any more, so their chords are used.
  m_keepsAngles ? ent.forEachBulged(add) : ent.forEachVisible(add);
  std::unique_ptr<CEntPolyline> made(
      m_maker.ents.createEntPolyline(m_maker.gestor, layerOf(ent), ltypeOf(ent), colorOf(ent),
                                     ent.getFlags(), ent.getDegree(), 0));
  if (made) made->setBulgedVertexes(m_maker.gestor, m_maker.ents, vertexes.data(), vertexes.size());
  take(made.release(), ent);
}

// The curve is defined by the placed control points, so both are placed the same way.
void EntPlacer::placeCurve(CEntPolyline& ent) {
  std::unique_ptr<CEntPolyline> made(
      m_maker.ents.createEntPolyline(m_maker.gestor, layerOf(ent), ltypeOf(ent), colorOf(ent),
                                     ent.getFlags(), ent.getDegree(), 0));
  if (!made) return m_maker.take(nullptr);
  const auto add = [&](long i, bool isVisible) {
    const CVertex& v = ent.GetVertex(static_cast<int>(i));
    CVertex* copy =
        m_maker.ents.createVertex(m_maker.gestor, placed(v.getPnt()), v.GetWidthStart() * m_scale,
                                  v.GetWidthEnd() * m_scale, 0);
    if (!copy) return false;
    isVisible ? made->addVisibleVertex(*copy) : made->addVertex(*copy);
    return true;
  };
  bool isWhole = true;
  for (long i = 0; i < ent.getNoTotalVertexes() && isWhole; ++i)
    isWhole = add(i, i >= ent.getFirstVisibleVertex());
  made->calcBdry();
  take(made.release(), ent);
  if (!isWhole) m_maker.isRefused = true;
}

void EntPlacer::visit(CEntText& ent) {
  TEXT_3D text = ent.getText();
  transform_text(m_matrix, text);
  take(
      m_maker.ents.createEntText(m_maker.gestor, layerOf(ent), ltypeOf(ent), colorOf(ent), text, 0),
      ent);
}

// Attribute definitions are templates and are never shown by an insert.
void EntPlacer::visit(CEntAttdef&) {}

// An attribute becomes an ordinary text once its insert is gone.
void EntPlacer::visit(CEntAttrib& ent) {
  if ((ent.getFlags() & CEntAttrib::kInvisible) == 0) visit(static_cast<CEntText&>(ent));
}

// The faces of a hatch have hidden edges. Exploded, they get them back: otherwise the file form
// without fills would lose them.
void EntPlacer::visit(CEnt3DFace& ent) {
  const bool isFreed = ent.isFilled() && m_look && m_look->layer;
  PNT_3D p[4];
  for (long i = 0; i < 4; ++i) p[i] = placed(ent.getVertex(i));
  take(
      m_maker.ents.createEntSolid(m_maker.gestor, layerOf(ent), ltypeOf(ent), colorOf(ent), p[0],
                                  p[1], p[2], p[3], isFreed ? 0 : ent.getFlags(), ent.getFill(), 0),
      ent);
}

// --- Inserts

bool EntPlacer::setPlaced(CEntInsert& copy, const CEntInsert& ent) const {
  const double c = std::cos(ent.getRotate()), s = std::sin(ent.getRotate());
  // Images of the insert's own axes; only if they remain perpendicular can the insert be kept.
  const PNT_2D right(m_x.x * c + m_y.x * s, m_x.y * c + m_y.y * s);
  const PNT_2D up(m_y.x * c - m_x.x * s, m_y.y * c - m_x.y * s);
  const double along = std::sqrt(dot(right, right)), across = std::sqrt(dot(up, up));
  if (!(along > 0) || !(across > 0) || !(std::fabs(dot(right, up)) <= kSquare * along * across))
    return false;
  // An insert has no flag for mirroring, but a negative scale.
  const double sign = m_mirrors ? -1 : 1;
  double sx, sy, sz, columnSpacing, rowSpacing;
  long columns, rows;
  ent.getScale(sx, sy, sz);
  ent.getArray(columns, rows, columnSpacing, rowSpacing);
  copy.setInsert(placed(ent.getPnt()), sx * along, sy * across * sign, sz * m_matrix.getScaleZ(),
                 ARC_3D::normal(std::atan2(right.y, right.x)));
  copy.setArray(columns, rows, columnSpacing * along, rowSpacing * across * sign);
  return true;
}

void EntPlacer::copyAttribs(const CEntInsertBase& from, CEntInsertBase& to) {
  for (unsigned i = 0; i < from.GetNoAttribs(); ++i) {
    CEntAttrib* copy = m_maker.ents.createEntAttrib(m_maker.gestor, *from.GetAttrib(i));
    if (!copy) m_maker.isRefused = true;
    to.add(copy);
  }
}

void EntPlacer::visit(CEntInsert& ent) {
  // Its record can be neither transformed nor dropped.
  if (ent.getRecord() == EntRecord::Opaque) {
    m_maker.isRefused = true;
    return;
  }
  std::unique_ptr<CEntInsert> copy(
      m_maker.ents.createEntInsert(m_maker.gestor, layerOf(ent), ltypeOf(ent), colorOf(ent),
                                   ent.getBlock(), ent.getPnt(), 1, 1, 1, 0, 1, 1, 0, 0, 0));
  if (!copy) return m_maker.take(nullptr);
  if (!setPlaced(*copy, ent)) return placeBlock(ent);
  copy->copyRecord(ent);
  copy->setClip(ent.getClip());
  copyAttribs(ent, *copy);
  take(copy.release(), ent);
}

// A copy is also counted in the drawing's record of references.
void EntPlacer::visit(CEntInsertXRef& ent) {
  std::unique_ptr<CEntInsertXRef> copy(m_maker.ents.createEntInsertXRef(m_maker.gestor, ent));
  if (!copy || !setPlaced(*copy, ent)) {
    m_maker.isRefused = true;
    return;
  }
  copy->setColor(colorOf(ent));
  take(copy.release(), ent);
}

void EntPlacer::visit(CEntFixedInsert& ent) {
  // Fixed inserts keep their size, and in a sheared matrix their direction, too.
  const double angle = m_keepsAngles ? turned(ent.getRotate()) : ent.getRotate();
  CEntFixedInsert* copy = m_maker.ents.createEntFixedInsert(
      m_maker.gestor, layerOf(ent), ltypeOf(ent), colorOf(ent), ent.getBlock(),
      placed(ent.getPnt()), ent.GetDefArea(), ent.GetNoPixel(), ARC_3D::normal(angle), 0);
  if (copy) copyAttribs(ent, *copy);
  take(copy, ent);
}

void EntPlacer::placeBlock(CEntInsertBase& ent) {
  BlockLook look{colorOf(ent), ltypeOf(ent), nullptr, traitsOf(ent)};
  look.instead0 = layerOfRecord(ent, layerOf(ent));
  placeContents(m_maker, m_matrix, ent, look, m_depth + 1);
}

CLayer* EntPlacer::layerOfRecord(const CEntInsertBase& ent, CLayer* layer) {
  return ent.getBlock() && ent.getBlock()->isOfRecord() ? layer : nullptr;
}

void EntPlacer::placeContents(EntMaker& maker, const CEntInsertMatrix& outer,
                              const CEntInsertBase& insert, const BlockLook& look, int depth) {
  const CBlock* block = insert.getBlock();
  maker.lostClips += isClipped(insert);
  if (depth > kMostNested) maker.isRefused = true;
  if (maker.isRefused) return;
  long columns = 1, rows = 1;
  double columnSpacing, rowSpacing;
  insert.getArray(columns, rows, columnSpacing, rowSpacing);
  columns = std::max(columns, 1L);
  rows = std::max(rows, 1L);
  const std::size_t size = block ? block->size() : 0;
  // Check the total first, so that no time is spent on an entity that will be refused.
  if (!maker.spend(static_cast<double>(columns) * static_cast<double>(rows) *
                   static_cast<double>(size)))
    return;
  // An empty block has no content for any number of cells.
  for (long row = 0; row < rows && size > 0; ++row) {
    for (long column = 0; column < columns; ++column) {
      const CEntInsertMatrix matrix =
          outer * CEntInsertMatrix(maker.pixelSize, insert, row, column);
      EntPlacer placer(maker, matrix, &look, depth);
      for (std::size_t i = 0; i < size && !maker.isRefused; ++i)
        (*const_cast<CBlock*>(block))[static_cast<unsigned>(i)]->accept(placer);
      if (maker.isRefused) return;
    }
  }
  if (!maker.spend(insert.GetNoAttribs())) return;
  EntPlacer placer(maker, outer * CEntInsertMatrix(maker.pixelSize, insert, 0, 0), &look, depth);
  for (unsigned i = 0; i < insert.GetNoAttribs(); ++i) insert.GetAttrib(i)->accept(placer);
}

// --- Hatches

void EntPlacer::visit(CEntHatch& ent) {
  // A solid fill has no lines whose spacing could be distorted, so it stays a hatch if its area
  // does not vanish.
  const bool staysHatch = isSolid(ent.getHatchType()) ? m_scale > 0 : m_keepsAngles && !m_mirrors;
  if (staysHatch && placeHatch(ent)) return;
  placeContents(m_maker, m_matrix, ent,
                BlockLook{colorOf(ent), ltypeOf(ent), layerOf(ent), traitsOf(ent)}, m_depth + 1);
}

// False for one without lines, which shows nothing.
bool EntPlacer::placeHatch(CEntHatch& ent) {
  CBlock* own = ent.getBlock();
  if (!own || !m_maker.spend(static_cast<double>(own->size()))) return false;
  std::unique_ptr<CBlock> block(
      m_maker.blocks.create(getHatchName(m_maker.table), PNT_3D(0, 0, 0), CBlock::kAnonymous));
  if (!block) {
    m_maker.isRefused = true;
    return true;
  }
  const std::size_t before = m_maker.made.size();
  EntPlacer lines(m_maker, m_matrix, nullptr, m_depth + 1);
  for (std::size_t i = 0; i < own->size(); ++i) (*own)[static_cast<unsigned>(i)]->accept(lines);
  // The lines were collected with the results and move to the hatch's own block.
  for (std::size_t i = before; i < m_maker.made.size(); ++i)
    restoreTo(*block, std::move(m_maker.made[i]));
  m_maker.made.resize(before);
  std::vector<PNT_3D> boundary;
  for (const PNT_3D& p : ent.getBoundary()) boundary.push_back(placed(p));
  std::unique_ptr<CEntHatch> copy(m_maker.ents.createEntHatch(
      m_maker.gestor, layerOf(ent), ltypeOf(ent), colorOf(ent), block.get(), ent.getHatchType(),
      ent.getHatchScale() * m_scale, turned(ent.getHatchRotate()), boundary, 0));
  // Nothing may throw once the table owns the block.
  if (copy) dress(*copy, ent);
  m_maker.made.reserve(before + 1);
  if (!copy || m_maker.isRefused || !addHatchBlock(m_maker.table, block)) {
    m_maker.isRefused = true;
    return true;
  }
  m_maker.take(copy.release());
  return true;
}

}  // namespace vek0::detail
