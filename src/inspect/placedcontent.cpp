#include "vek0core/inspect/placedcontent.h"

#include <algorithm>
#include <cmath>

#include "vek0core/drawing/data.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/blocks/insertstack.h"
#include "vek0core/entities/edit/entpath.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/enttable.h"
#include "vek0core/geometry/angle.h"

namespace vek0::detail {
namespace {

constexpr std::size_t kMostUnfolded = 5'000'000;  // edges, items and cells of blocks
constexpr int kDeepestInsert = 64;
constexpr double kChordsPerTurn = 64;  // of arcs that an insert distorts
constexpr double kSimilar = 1e-9;      // share of a length, between the axes of a similarity

// Whether the record is a curve, even if it is stored as several pieces.
bool isCurveRecord(EntRecord record) {
  switch (record) {
    case EntRecord::Own:
    case EntRecord::Lwpolyline:
    case EntRecord::Polyline:
    case EntRecord::Circle:
    case EntRecord::Arc:
    case EntRecord::Spline:
    case EntRecord::Ellipse:
    case EntRecord::Helix:
      return true;
    default:
      return false;
  }
}

// Applies the placement of an insert to paths.
class PathPlacer {
 public:
  explicit PathPlacer(const CEntInsertMatrix& matrix) : m_matrix(matrix) {
    PNT_2D x, y;
    matrix.getAxes(x, y);
    m_scale = std::hypot(x.x, x.y);
    const double other = std::hypot(y.x, y.y), least = kSimilar * std::max(m_scale, other);
    m_isSimilar = std::fabs(m_scale - other) <= least &&
                  std::fabs(x.x * y.x + x.y * y.y) <= least * std::max(m_scale, other);
    m_mirrors = x.x * y.y - x.y * y.x < 0;
  }

  void place(PATH_3D& path) const {
    std::vector<EDGE_3D> edges;
    edges.reserve(path.edges.size());
    for (const EDGE_3D& edge : path.edges) {
      if (!edge.isArc())
        edges.emplace_back(placed(edge.p1), placed(edge.p2));
      else if (m_isSimilar)
        edges.push_back(placedArc(edge));
      else
        addChords(edge, edges);
    }
    path.edges = std::move(edges);
  }

 private:
  PNT_3D placed(const PNT_3D& p) const {
    PNT_3D to = p;
    m_matrix.transform(p, to);
    return to;
  }

  EDGE_3D placedArc(const EDGE_3D& edge) const {
    EDGE_3D arc(placed(edge.p1), placed(edge.p2));
    const PNT_3D center = placed(PNT_3D(edge.center.x, edge.center.y, 0));
    arc.center.set(center.x, center.y);
    arc.radius = edge.radius * m_scale;
    arc.startAngle = arc.center.angle(arc.p1);
    arc.sweep = m_mirrors ? -edge.sweep : edge.sweep;
    return arc;
  }

  void addChords(const EDGE_3D& edge, std::vector<EDGE_3D>& edges) const {
    const int count =
        static_cast<int>(std::max(2.0, std::ceil(kChordsPerTurn * std::fabs(edge.sweep) / kTwoPi)));
    PNT_3D from = placed(edge.p1);
    for (int i = 1; i <= count; ++i) {
      const PNT_3D to = placed(edge.at(double{1} * i / count));
      edges.emplace_back(from, to);
      from = to;
    }
  }

  const CEntInsertMatrix& m_matrix;
  double m_scale;
  bool m_isSimilar, m_mirrors;
};

class Placer {
 public:
  void add(const CEnt& ent) {
    m_ent = &ent;
    visit(ent, ent.getEntInsert());
  }

  PLACED_CONTENT content;

 private:
  bool spend(std::size_t count) {
    if (m_stack.GetNoInsert() > 0) m_noUnfolded += count;
    content.isCut = content.isCut || m_noUnfolded > kMostUnfolded;
    return !content.isCut;
  }

  void visit(const CEnt& ent, const CEntInsertBase* insert) {
    if (!ent.getTraits().isVisible || isHiddenByFlag(ent) || !m_stack.IsOnShownLayer(ent)) return;
    if (insert && ent.getType() != CEntHatch::kType && isPlainInsert(*insert))
      return addInsert(*insert);
    PLACED_CURVE curve;
    if (!isCurveRecord(ent.getRecord()) || !getEntPath(ent, curve.path)) return addItem(ent);
    if (!spend(curve.path.edges.size())) return;
    if (m_stack.GetNoInsert() > 0) PathPlacer(m_stack.GetCurMatrix()).place(curve.path);
    curve.ent = m_ent;
    curve.layer = m_stack.ResolveLayer(ent);
    if (curve.path.isFinite()) content.curves.push_back(std::move(curve));
  }

  static bool isHiddenByFlag(const CEnt& ent) {
    return ent.getType() == CEntAttrib::kType &&
           (static_cast<const CEntAttrib&>(ent).getFlags() & CEntAttrib::kInvisible) != 0;
  }

  // A hatch, a dimension and the like are shown by a block of their own, but are no curves.
  static bool isPlainInsert(const CEntInsertBase& insert) {
    const CBlock* block = insert.getBlock();
    return block && isCurveRecord(insert.getRecord()) && !block->isOfDimension();
  }

  void addItem(const CEnt& ent) {
    if (!spend(1)) return;
    PLACED_ITEM item{&ent, m_ent, m_stack.ResolveLayer(ent)};
    RECT_3D box = ent.getBdry();
    if (m_stack.GetNoInsert() > 0) m_stack.GetCurMatrix().transform(box, box);
    if (box.validRegion())
      item.point.set(box.min.x / 2 + box.max.x / 2, box.min.y / 2 + box.max.y / 2);
    content.items.push_back(item);
  }

  void addInsert(const CEntInsertBase& insert) {
    long columns = 1, rows = 1;
    double columnSpacing, rowSpacing;
    insert.getArray(columns, rows, columnSpacing, rowSpacing);
    for (long row = 0; row < std::max(1L, rows); ++row)
      for (long column = 0; column < std::max(1L, columns); ++column)
        if (!addCell(insert, static_cast<int>(row), static_cast<int>(column))) return;
    // Attributes are stored relative to the insert.
    m_stack.Push(&insert, 0, 0);
    for (unsigned i = 0; i < insert.GetNoAttribs(); ++i) visit(*insert.GetAttrib(i), nullptr);
    m_stack.Pop();
  }

  bool addCell(const CEntInsertBase& insert, int row, int column) {
    if (m_stack.GetNoInsert() >= kDeepestInsert) content.isCut = true;
    m_stack.Push(&insert, row, column);
    const CBlock& block = *insert.getBlock();
    bool isWhole = spend(1);
    for (unsigned i = 0; isWhole && i < block.size(); ++i) {
      // In a block, a definition is only a template for the attributes of inserts.
      if (block[i]->getType() != CEntAttdef::kType) visit(*block[i], block[i]->getEntInsert());
      isWhole = !content.isCut;
    }
    m_stack.Pop();
    return isWhole;
  }

  const CEnt* m_ent = nullptr;  // of model space
  CEntInsertStack m_stack{1};
  std::size_t m_noUnfolded = 0;
};

}  // namespace
}  // namespace vek0::detail

PLACED_CONTENT placeContent(const CData& data) {
  vek0::detail::Placer placer;
  for (const CEnt* ent : data.getEntTable().getEntityTbl()) placer.add(*ent);
  return std::move(placer.content);
}

PLACED_CONTENT placeContent(const CBlock& sheet) {
  vek0::detail::Placer placer;
  for (unsigned i = 0; i < sheet.size(); ++i) placer.add(*sheet[i]);
  return std::move(placer.content);
}
