// Points of the entity that determine it, before and after, are the input. Three or four of them
// that are far apart give the map, and all others have to agree.
#include "dxf/keep/entmap.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "dxf/keep/fingerprint.h"
#include "dxf/keep/measuredmap.h"
#include "files/mixer.h"
#include "geometry/vector.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/blocks/insertmatrix.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/entities/entvisitor.h"
#include "vek0core/entities/vertex.h"
#include "vek0core/tables/style.h"

namespace vek0::detail {
namespace {

constexpr double kPrecision = 1e-9;

/// What determines an entity: points, which follow every map, and the rest, which no map changes.
struct FixedPoints {
  std::vector<PNT_3D> points;
  Mixer rest;
  Mixer attribs;      ///< of an insert, in the coordinates of the block
  Mixer attribWords;  ///< what mirroring leaves of them, as their letters stay readable
  double patternScale = 0, patternRad = 0;
};

// How a text may have been turned over, so that it stays readable when it is mirrored: along its
// baseline, which exchanges left and right of its justification, or across it.
enum class TurnedOver { No, Along, Across };

class AnchorFinder final : public IEntVisitor {
 public:
  AnchorFinder(FixedPoints& anchors, const PNT_3D& center, double size, TurnedOver turned)
      : m_to(anchors), m_center(center), m_size(size), m_turned(turned) {}

  using IEntVisitor::visit;
  void visit(CEntPnt& ent) override { add(ent.getPnt()); }
  void visit(CEntLine& ent) override {
    add(ent.getLine().p1);
    add(ent.getLine().p2);
    m_to.rest.addInteger(static_cast<long>(ent.getReach()));
  }
  void visit(CEntCircle& ent) override {
    const CIRCLE_3D& circle = ent.getCircle();
    add(circle);
    add(circle + PNT_3D(circle.radius, 0, 0));
    add(circle + PNT_3D(0, circle.radius, 0));
  }
  void visit(CEntArc& ent) override {
    const ARC_3D& arc = ent.getArc();
    add(arc);
    for (const double angle : {arc.startAngle, arc.endAngle})
      add(arc + PNT_3D(arc.radius * std::cos(angle), arc.radius * std::sin(angle), 0));
  }
  void visit(CEntPolyline& ent) override {
    m_to.rest.addInteger(ent.getFlags());
    m_to.rest.addInteger(ent.getDegree());
    for (int i = 0; ent.isCurve() && i < ent.getFirstVisibleVertex(); ++i)
      add(ent.GetVertex(i).getPnt());
    PNT_3D last;
    double lastBulge = 0;
    ent.forEachBulged([&](const PNT_3D& p, double, double, double bulge, Handle) {
      // The middle of the arc says to which side it bulges.
      if (lastBulge != 0) {
        const PNT_3D half = times(p - last, 0.5);
        add(last + half + PNT_3D(half.y * lastBulge, -half.x * lastBulge, 0));
      }
      add(p);
      m_to.rest.add(std::fabs(bulge));
      last = p;
      lastBulge = bulge;
    });
  }
  void visit(CEntText& ent) override {
    const TEXT_3D& text = ent.getText();
    const CTextContext& context = text.getContext();
    const double height = context.getHeight(), angle = context.getRotate();
    const double along = m_turned == TurnedOver::Along ? -height : height;
    const double up = m_turned == TurnedOver::Across ? -height : height;
    const PNT_3D across(-std::sin(angle), std::cos(angle), 0);
    long align = text.getAlign();
    PNT_3D origin = text;
    constexpr long right = 2, baseline = 0, bottom = 1, top = 3;
    const long side = text.getHorizAlign(), level = text.getVertAlign();
    if (m_turned == TurnedOver::Along) align = TEXT_3D::findJustify(right - side, level);
    if (m_turned == TurnedOver::Across && level == baseline)
      origin = origin + times(across, height);
    if (m_turned == TurnedOver::Across && (level == bottom || level == top))
      align = TEXT_3D::findJustify(side, bottom + top - level);
    add(origin);
    add(origin + PNT_3D(along * std::cos(angle), along * std::sin(angle), 0));
    add(origin + times(across, up));
    m_to.rest.add(context.getString().view());
    m_to.rest.add(context.getOblique());
    m_to.rest.add(context.getWidthScale());
    m_to.rest.addInteger(align);
    if (text.getStyle()) m_to.rest.add(text.getStyle()->getName().view());
  }
  void visit(CEntAttdef& ent) override {
    visit(static_cast<CEntText&>(ent));
    m_to.rest.add(ent.getValue().view());
    m_to.rest.add(ent.getPrompt().view());
    m_to.rest.addInteger(ent.getFlags());
  }
  void visit(CEntAttrib& ent) override { visit(static_cast<CEntText&>(ent)); }
  void visit(CEntInsert& ent) override {
    double columnSpacing, rowSpacing;
    long columns, rows;
    ent.getArray(columns, rows, columnSpacing, rowSpacing);
    m_to.rest.addInteger(columns);
    m_to.rest.addInteger(rows);
    if (ent.isClipped())
      for (const PNT_2D& p : ent.getClip()->boundary) m_to.rest.add(p.x + p.y);
    addInsert(ent);
  }
  void visit(CEntInsertXRef& ent) override { visit(static_cast<CEntInsert&>(ent)); }
  void visit(CEntFixedInsert& ent) override { addInsert(ent); }
  void visit(CEntHatch& ent) override {
    m_to.rest.add(std::u16string_view(ent.getHatchType().name));
    m_to.patternScale = ent.getHatchScale();
    m_to.patternRad = ent.getHatchRotate();
    for (const PNT_3D& p : ent.getBoundary()) add(p);
  }
  void visit(CEnt3DFace& ent) override {
    for (long i = 0; i < 4; ++i) add(ent.getVertex(i));
    m_to.rest.addInteger(ent.getFlags());
    m_to.rest.addInteger(static_cast<long>(ent.getFill()));
  }

 private:
  void add(const PNT_3D& p) { m_to.points.push_back(p); }

  // Attributes are in the coordinates of the block.
  void addInsert(const CEntInsertBase& ent) {
    if (ent.getBlock()) m_to.rest.add(ent.getBlock()->getName().view());
    for (unsigned i = 0; i < ent.GetNoAttribs(); ++i) {
      const CEntAttrib& attrib = *ent.GetAttrib(i);
      m_to.attribs.add(printOf(attrib).shape);
      m_to.attribWords.add(attrib.getTag().view());
      m_to.attribWords.add(attrib.getText().getContext().getString().view());
      m_to.attribWords.addInteger(attrib.getFlags());
    }
    const CEntInsertMatrix matrix(1, ent, 0, 0);
    const PNT_3D ends[] = {{0, 0, 0}, {m_size, 0, 0}, {0, m_size, 0}, {0, 0, m_size}};
    for (const PNT_3D& end : ends) {
      PNT_3D image;
      matrix.transform(m_center + end, image);
      add(image);
    }
    double columnSpacing, rowSpacing;
    long columns, rows;
    ent.getArray(columns, rows, columnSpacing, rowSpacing);
    if (columns > 1) addCell(ent, 0, 1);
    if (rows > 1) addCell(ent, 1, 0);
  }

  void addCell(const CEntInsertBase& ent, long row, long column) {
    PNT_3D image;
    CEntInsertMatrix(1, ent, row, column).transform(m_center, image);
    add(image);
  }

  FixedPoints& m_to;
  PNT_3D m_center;  // of the block of an insert
  double m_size;
  TurnedOver m_turned;
};

FixedPoints anchorsOf(const CEnt& ent, const CEnt& first, TurnedOver turned) {
  PNT_3D center(0, 0, 0);
  double size = 1;
  const CEntInsertBase* insert = first.getEntInsert();
  if (insert && insert->getBlock() && first.getType() != CEntHatch::kType) {
    const RECT_3D& box = static_cast<const CBlock*>(insert->getBlock())->getBdry();
    if (box.min.x <= box.max.x) {
      center = times(box.min + box.max, 0.5);
      const double half = length(box.max - box.min) / 2;
      if (half > 0 && std::isfinite(half)) size = half;
    }
  }
  FixedPoints anchors;
  AnchorFinder finder(anchors, center, size, turned);
  const_cast<CEnt&>(ent).accept(finder);
  return anchors;
}

// Directions before and after: as many as are independent.
struct Frame {
  PNT_3D before[3], after[3];
  int rank = 0;

  void add(const PNT_3D& b, const PNT_3D& a) {
    before[rank] = b;
    after[rank++] = a;
  }
};

class MapFinder {
 public:
  MapFinder(const std::vector<PNT_3D>& before, const std::vector<PNT_3D>& after)
      : m_before(before), m_after(after) {
    for (const PNT_3D& p : before) m_size = std::max(m_size, length(p - before[0]));
    for (const std::vector<PNT_3D>* points : {&before, &after})
      for (const PNT_3D& p : *points) m_far = std::max(m_far, length(p));
  }

  std::optional<SpaceMap> find() {
    SpaceMap map;
    map.from = m_before[0];
    map.origin = m_after[0];
    if (agrees(map)) return map;
    Frame frame = independent();
    if (frame.rank == 1 && !addAcross(frame)) return std::nullopt;
    if (frame.rank == 2) addNormal(frame);
    if (frame.rank != 3 || !solve(frame, map)) return std::nullopt;
    // Of far points little is known about a small figure: what is meant fits them just as well.
    constexpr double ulps = 4, close = 1e-12;
    const double noise = ulps * std::numeric_limits<double>::epsilon() * m_far / m_least;
    const SpaceMap simple = simplified(map, noise);
    if (agrees(simple, close, ulps)) return simple;
    map.noise = noise;
    return agrees(map) ? std::optional(map) : std::nullopt;
  }

 private:
  PNT_3D before(std::size_t i) const { return m_before[i] - m_before[0]; }
  PNT_3D after(std::size_t i) const { return m_after[i] - m_after[0]; }

  bool agrees(const SpaceMap& map, double precision = kPrecision, double ulps = 16) const {
    double grown = length(map.x) + length(map.y) + length(map.z);
    const double room = precision * m_size * std::max(grown, 1.0) +
                        ulps * std::numeric_limits<double>::epsilon() * m_far;
    for (std::size_t i = 0; i < m_before.size(); ++i)
      if (!(length(map(m_before[i]) - m_after[i]) <= room)) return false;
    return true;
  }

  // The direction to the farthest point, then the points farthest from that line and plane.
  Frame independent() {
    constexpr double flat = 1e-7;
    Frame frame;
    while (frame.rank < 3) {
      std::size_t best = 0;
      double most = flat * m_size;
      for (std::size_t i = 1; i < m_before.size(); ++i) {
        const double away = distance(frame, before(i));
        if (away > most) {
          most = away;
          best = i;
        }
      }
      if (best == 0) break;
      frame.add(before(best), after(best));
      m_least = most;
    }
    return frame;
  }

  static double distance(const Frame& frame, const PNT_3D& p) {
    if (frame.rank == 0) return length(p);
    const PNT_3D& first = frame.before[0];
    const PNT_3D normal = frame.rank == 1 ? PNT_3D() : cross(first, frame.before[1]);
    if (frame.rank == 1) return length(cross(first, p)) / length(first);
    return std::fabs(dot(normal, p)) / length(normal);
  }

  // Lines turn about the vertical axis.
  static bool addAcross(Frame& frame) {
    const PNT_3D &b = frame.before[0], &a = frame.after[0];
    const double flatBefore = std::hypot(b.x, b.y), flatAfter = std::hypot(a.x, a.y);
    if (!(flatBefore > kPrecision * length(b)) || !(flatAfter > 0)) return false;
    frame.add(PNT_3D(-b.y, b.x, 0), PNT_3D(-a.y, a.x, 0));
    return true;
  }

  // The normal grows like the plane.
  static void addNormal(Frame& frame) {
    PNT_3D b = cross(frame.before[0], frame.before[1]);
    PNT_3D a = cross(frame.after[0], frame.after[1]);
    const double areaBefore = length(b), areaAfter = length(a);
    if (!(areaBefore > 0) || !(areaAfter > 0)) return;
    b = times(b, 1 / areaBefore);
    a = times(a, 1 / areaAfter);
    const bool isLevel = std::hypot(b.x, b.y) < kPrecision && std::hypot(a.x, a.y) < kPrecision;
    // Mirroring turns a level figure over, but not space.
    if (isLevel) a.z = b.z;
    frame.add(b, times(a, std::sqrt(areaAfter / areaBefore)));
  }

  // The linear map is `after` times the inverse of `before`, by cofactors.
  static bool solve(const Frame& frame, SpaceMap& map) {
    const PNT_3D *b = frame.before, *a = frame.after;
    const PNT_3D rows[3] = {cross(b[1], b[2]), cross(b[2], b[0]), cross(b[0], b[1])};
    const double determinant = dot(b[0], rows[0]);
    if (determinant == 0 || !std::isfinite(determinant)) return false;
    const auto column = [&](double c0, double c1, double c2) {
      const PNT_3D sum = times(a[0], c0) + times(a[1], c1) + times(a[2], c2);
      return times(sum, 1 / determinant);
    };
    map.x = tidy(column(rows[0].x, rows[1].x, rows[2].x));
    map.y = tidy(column(rows[0].y, rows[1].y, rows[2].y));
    map.z = tidy(column(rows[0].z, rows[1].z, rows[2].z));
    return true;
  }

  // Removes noise from the usual values.
  static PNT_3D tidy(const PNT_3D& v) {
    constexpr double noise = 1e-13;
    const auto snapped = [](double value) {
      const double whole = std::round(value);
      return std::fabs(value - whole) < noise && std::fabs(whole) <= 1 ? whole : value;
    };
    return PNT_3D(snapped(v.x), snapped(v.y), snapped(v.z));
  }

  const std::vector<PNT_3D>&m_before, &m_after;
  double m_size = 0;
  double m_far = 0;
  double m_least = 0;  // extent of the figure in the direction in which it is smallest
};

double determinantOf(const SpaceMap& map) { return dot(map.x, cross(map.y, map.z)); }

bool fitsAttributes(const FixedPoints& before, const FixedPoints& after, const SpaceMap& map) {
  return determinantOf(map) < 0 ? before.attribWords.value() == after.attribWords.value()
                                : before.attribs.value() == after.attribs.value();
}

// Whether the pattern of a hatch follows the map.
bool fitsPattern(const FixedPoints& before, const FixedPoints& after, const SpaceMap& map) {
  if (before.patternScale == 0) return true;
  const double scale = std::hypot(map.x.x, map.x.y);
  const bool isMirror = map.x.x * map.y.y < map.x.y * map.y.x;
  const double was = isMirror ? -before.patternRad : before.patternRad;
  const double turn = after.patternRad - was - std::atan2(map.x.y, map.x.x);
  return std::fabs(after.patternScale - before.patternScale * scale) <=
             kPrecision * after.patternScale &&
         std::fabs(std::sin(turn / 2)) <= kPrecision;
}

std::optional<SpaceMap> mapBetween(const CEnt& from, const CEnt& to, TurnedOver turned) {
  const FixedPoints before = anchorsOf(from, from, TurnedOver::No),
                    after = anchorsOf(to, from, turned);
  const bool isSame = before.points.size() == after.points.size() && !before.points.empty() &&
                      before.rest.value() == after.rest.value();
  if (!isSame) return std::nullopt;
  std::optional<SpaceMap> map = MapFinder(before.points, after.points).find();
  if (map && !(fitsPattern(before, after, *map) && fitsAttributes(before, after, *map)))
    return std::nullopt;
  return map;
}

}  // namespace

std::optional<SpaceMap> mapBetween(const CEnt& from, const CEnt& to) {
  if (from.getType() != to.getType()) return std::nullopt;
  if (auto map = mapBetween(from, to, TurnedOver::No)) return map;
  const bool isText = from.getType() == CEntText::kType || from.getType() == CEntAttdef::kType;
  if (!isText) return std::nullopt;
  auto map = mapBetween(from, to, TurnedOver::Along);
  return map ? map : mapBetween(from, to, TurnedOver::Across);
}

}  // namespace vek0::detail
