// Picking draws a small area with painters that compare instead of painting: whatever can be seen
// can be picked, however it is nested, and nothing else.
#include "vek0draw/picking.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>

#include "nearpainter.h"
#include "vek0core/entities/ent.h"
#include "vek0core/geometry/angle.h"

namespace vek0::detail {
namespace {

DRAW_OPTIONS pickOptions() {
  DRAW_OPTIONS options;
  options.penReach = options.leastPoint = 0;
  // Gaps of dashes can be picked, too.
  options.finestPattern = std::numeric_limits<double>::infinity();
  return options;
}

RECT_2D boxAround(const PNT_2D& at, double radius) {
  return RECT_2D(at.x - radius, at.y - radius, at.x + radius, at.y + radius);
}

// --- Distances

class DistancePainter final : public NearPainter {
 public:
  explicit DistancePainter(const PNT_2D& at) : m_at(at) {}

  struct Found {
    double distance;
    std::size_t order;  // of drawing
  };
  const std::unordered_map<CEnt*, Found>& found() const { return m_found; }

 private:
  void edge(const EDGE_3D& edge) override { spot(edge.at(edge.nearest(m_at))); }
  void spot(const PNT_2D& at) override {
    if (isClipped(at)) return;
    note(at.dist(m_at));
  }
  void area(const PNT_2D* points, const std::size_t* ends, std::size_t rings,
            FillRule rule) override {
    if (isWithin(m_at, points, ends, rings, rule) && !isClipped(m_at)) return note(0);
    NearPainter::area(points, ends, rings, rule);
  }
  void note(double distance) {
    const auto at = m_found.try_emplace(entity(), Found{distance, m_found.size()}).first;
    at->second.distance = std::min(at->second.distance, distance);
  }

  const PNT_2D m_at;
  std::unordered_map<CEnt*, Found> m_found;
};

// --- Boxes

// What shows something in a box.
class CrossingPainter final : public NearPainter {
 public:
  explicit CrossingPainter(const RECT_2D& box) : m_box(box) {}
  std::vector<CEnt*> takeFound() { return std::move(m_found); }

 private:
  void edge(const EDGE_3D& edge) override {
    if (isMet(edge)) note();
  }
  void spot(const PNT_2D& at) override {
    if (m_box.inside(at)) note();
  }
  void area(const PNT_2D* points, const std::size_t* ends, std::size_t rings,
            FillRule rule) override {
    // Unless an edge meets the box, all of it is inside the area or none.
    if (isWithin(m_box.min, points, ends, rings, rule)) return note();
    NearPainter::area(points, ends, rings, rule);
  }
  void note() {
    // Nothing of a clip may be in the box although its content is.
    if (isClipAway(m_box) || (!m_found.empty() && m_found.back() == entity())) return;
    m_found.push_back(entity());
  }
  bool isMet(const EDGE_3D& edge) const {
    if (!edge.isArc()) {
      double t0 = 0, t1 = 1;
      return clipLine(m_box, edge.p1, edge.p2 - edge.p1, t0, t1);
    }
    if (m_box.inside(edge.p1) || m_box.inside(edge.p2)) return true;
    if (!m_box.intersect(edge.bdry())) return false;
    std::vector<EDGE_CROSSING> crossings;
    for (const EDGE_3D& side : sidesOf(m_box)) edge.intersect(side, crossings, 0);
    return !crossings.empty();
  }

  const RECT_2D m_box;
  std::vector<CEnt*> m_found;
};

// Whether something is outside a box.
class OutsidePainter final : public NearPainter {
 public:
  explicit OutsidePainter(const RECT_2D& box) : m_box(box) {}
  bool isOutside() const { return m_isOutside; }

 private:
  void edge(const EDGE_3D& edge) override { m_isOutside |= !m_box.inside(edge.bdry()); }
  void spot(const PNT_2D& at) override { m_isOutside |= !m_box.inside(at); }
  bool skips(const RECT_2D&) const override { return m_isOutside; }

  const RECT_2D m_box;
  bool m_isOutside = false;
};

// --- Snap points

class SnapPainter final : public NearPainter {
 public:
  SnapPainter(const PNT_2D& at, double radius, const std::optional<PNT_2D>& from)
      : m_at(at), m_radius(radius), m_from(from) {}

  std::optional<SNAP_POINT> best() {
    intersectAll();
    return m_best ? m_best : m_nearest;
  }

 private:
  static constexpr std::size_t kMostNear = 100;  // whose intersections are computed

  struct Near {
    EDGE_3D edge;
    CEnt* ent;
    double distance;
  };

  void chain(const std::vector<EDGE_3D>& edges, bool closed) override {
    if (isInHatch() || edges.empty()) return;
    const bool isCurve = isOfChords();
    for (std::size_t i = 0; i < edges.size(); ++i) {
      if (!isCurve || (i == 0 && !closed)) offer(SnapKind::End, edges[i].p1);
      if (!isCurve || (i + 1 == edges.size() && !closed)) offer(SnapKind::End, edges[i].p2);
      if (!isCurve) offer(SnapKind::Middle, edges[i].at(0.5));
      meet(edges[i]);
    }
  }
  void edge(const EDGE_3D& edge) override {
    if (isInHatch()) return;
    if (edge.isArc()) offer(SnapKind::Center, edge.center);
    const bool isFull = std::fabs(edge.sweep) >= 2 * kPi;
    const bool isWhole = !isFull && !isInfinite();
    if (isWhole) offer(SnapKind::End, edge.p1);
    if (isWhole) offer(SnapKind::End, edge.p2);
    if (isWhole) offer(SnapKind::Middle, edge.at(0.5));
    meet(edge);
  }
  void spot(const PNT_2D& at) override { offer(SnapKind::End, at); }
  void area(const PNT_2D*, const std::size_t*, std::size_t, FillRule) override {}

  void offer(SnapKind kind, const PNT_2D& at) {
    const double distance = at.dist(m_at);
    if (!(distance <= m_radius) || isClipped(at)) return;
    const double share = m_radius * kSame;
    if (m_best && distance > m_distance - share &&
        (distance > m_distance + share || kind >= m_best->kind))
      return;
    m_best = SNAP_POINT{kind, at, entity()};
    m_distance = distance;
  }

  void meet(const EDGE_3D& edge) {
    const PNT_2D at = edge.at(edge.nearest(m_at));
    const double distance = at.dist(m_at);
    if (!(distance <= m_radius) || isClipped(at)) return;
    if (!m_nearest || distance < m_nearest->at.dist(m_at))
      m_nearest = SNAP_POINT{SnapKind::Nearest, at, entity()};
    if (m_from) offerFeet(edge);
    m_near.push_back({edge, entity(), distance});
  }

  // The directions from there to the feet on a circle pass its center.
  void offerFeet(const EDGE_3D& edge) {
    if (!edge.isArc()) {
      const PNT_2D step = edge.p2 - edge.p1;
      const double square = step.x * step.x + step.y * step.y;
      const PNT_2D way = *m_from - edge.p1;
      const double t = square > 0 ? (way.x * step.x + way.y * step.y) / square : -1;
      if (t >= 0 && t <= 1) offer(SnapKind::Perpendicular, edge.at(t));
      return;
    }
    const double distance = m_from->dist(edge.center);
    if (distance == 0) return;
    for (const double side : {-1.0, 1.0}) {
      const double k = side * edge.radius / distance;
      const PNT_2D foot(edge.center.x + k * (m_from->x - edge.center.x),
                        edge.center.y + k * (m_from->y - edge.center.y));
      if (edge.dist(foot) <= kSame * m_radius) offer(SnapKind::Perpendicular, foot);
    }
  }

  void intersectAll() {
    const std::size_t count = std::min(m_near.size(), kMostNear);
    std::partial_sort(m_near.begin(), m_near.begin() + static_cast<std::ptrdiff_t>(count),
                      m_near.end(),
                      [](const Near& a, const Near& b) { return a.distance < b.distance; });
    std::vector<EDGE_CROSSING> crossings;
    for (std::size_t i = 0; i < count; ++i) {
      for (std::size_t k = 0; k < i; ++k) {
        crossings.clear();
        m_near[i].edge.intersect(m_near[k].edge, crossings, 0);
        setEntity(m_near[i].ent);
        for (const EDGE_CROSSING& crossing : crossings) offer(SnapKind::Intersection, crossing.pnt);
      }
    }
  }

  static constexpr double kSame = 1e-6;  // share of the radius within which points are the same

  const PNT_2D m_at;
  const double m_radius;
  const std::optional<PNT_2D> m_from;
  std::optional<SNAP_POINT> m_best, m_nearest;
  double m_distance = 0;  // of the best
  std::vector<Near> m_near;
};

}  // namespace
}  // namespace vek0::detail

std::vector<PICK_HIT> pickEntities(const AreaDrawer& draw, const PNT_2D& at, double radius) {
  vek0::detail::DistancePainter painter(at);
  draw(vek0::detail::boxAround(at, radius), painter, vek0::detail::pickOptions());
  struct Ranked {
    PICK_HIT hit;
    std::size_t order;
  };
  std::vector<Ranked> ranked;
  for (const auto& [ent, found] : painter.found())
    if (found.distance <= radius) ranked.push_back({{ent, found.distance}, found.order});
  std::sort(ranked.begin(), ranked.end(), [](const Ranked& a, const Ranked& b) {
    return a.hit.distance != b.hit.distance ? a.hit.distance < b.hit.distance : a.order > b.order;
  });
  std::vector<PICK_HIT> hits;
  for (const Ranked& one : ranked) hits.push_back(one.hit);
  return hits;
}

std::vector<CEnt*> entitiesCrossing(const AreaDrawer& draw, const RECT_2D& box) {
  vek0::detail::CrossingPainter painter(box);
  draw(box, painter, vek0::detail::pickOptions());
  return painter.takeFound();
}

std::vector<CEnt*> entitiesWithin(
    const AreaDrawer& draw, const std::function<void(CEnt& ent, IPainter& painter)>& drawWhole,
    const RECT_2D& box) {
  std::vector<CEnt*> found = entitiesCrossing(draw, box);
  const auto isOutside = [&](CEnt* ent) {
    const RECT_3D& extents = ent->getBdry();
    if (extents.validRegion() &&
        box.inside(RECT_2D(extents.min.x, extents.min.y, extents.max.x, extents.max.y)))
      return false;
    vek0::detail::OutsidePainter painter(box);
    drawWhole(*ent, painter);
    return painter.isOutside();
  };
  found.erase(std::remove_if(found.begin(), found.end(), isOutside), found.end());
  return found;
}

std::optional<SNAP_POINT> snapTo(const AreaDrawer& draw, const PNT_2D& at, double radius,
                                 const std::optional<PNT_2D>& from) {
  vek0::detail::SnapPainter painter(at, radius, from);
  DRAW_OPTIONS options = vek0::detail::pickOptions();
  options.middleLines = true;
  draw(vek0::detail::boxAround(at, radius), painter, options);
  return painter.best();
}
