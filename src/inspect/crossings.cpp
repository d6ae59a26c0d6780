#include "inspect/crossings.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "geometry/boxindex.h"
#include "vek0core/geometry/angle.h"

namespace vek0::detail {
namespace {

constexpr std::size_t kMostCompared = 100'000'000;  // pairs of edges, each about 50 ns
constexpr std::size_t kMostFound = 1'000'000;
constexpr double kAlike = 1e-6;  // radians; curves that leave a point so closely do not cross there

// Chains of curves that continue one another, by their first curve.
class Contours {
 public:
  Contours(const std::vector<PLACED_CURVE>& curves, const Chains& chains)
      : m_sets(curves.size()), m_isClosed(curves.size(), true), m_noEdges(curves.size(), 0) {
    for (std::uint32_t end = 0; end < 2 * curves.size(); ++end)
      if (const std::uint32_t other = chains.next(end); other != Chains::kNone)
        m_sets.unite(end / 2, other / 2);
    for (std::uint32_t end = 0; end < 2 * curves.size(); ++end)
      if (!curves[end / 2].path.closed && chains.next(end) == Chains::kNone)
        m_isClosed[m_sets.find(end / 2)] = false;
    for (std::uint32_t i = 0; i < curves.size(); ++i)
      m_noEdges[m_sets.find(i)] += curves[i].path.edges.size();
  }

  std::uint32_t of(std::size_t curve) { return m_sets.find(static_cast<std::uint32_t>(curve)); }
  bool isClosed(std::uint32_t contour) const { return m_isClosed[contour]; }
  /// Whether there is anything that it might cross.
  bool canCross(std::uint32_t contour) const {
    return m_isClosed[contour] || m_noEdges[contour] > 1;
  }

 private:
  DisjointSets m_sets;
  std::vector<bool> m_isClosed;
  std::vector<std::size_t> m_noEdges;
};

class CrossingFinder {
 public:
  CrossingFinder(const std::vector<PLACED_CURVE>& curves, const Chains& chains,
                 const CURVE_LIMITS& limits, std::vector<CURVE_FAULT>& faults)
      : m_curves(curves),
        m_chains(chains),
        m_contours(curves, chains),
        m_same(limits.same),
        m_faults(faults) {}

  bool find() {
    std::vector<RECT_2D> boxes;
    for (std::size_t i = 0; i < m_curves.size(); ++i) {
      const std::uint32_t contour = m_contours.of(i);
      if (!m_chains.isIn(i) || !m_contours.canCross(contour)) continue;
      const std::vector<EDGE_3D>& edges = m_curves[i].path.edges;
      for (std::size_t k = 0; k < edges.size(); ++k) {
        m_places.push_back({i, k, contour});
        boxes.push_back(edges[k].bdry());
      }
    }
    const BoxIndex index(boxes);
    std::size_t compared = 0, before = m_faults.size();
    for (std::size_t i = 0; i < m_places.size(); ++i) {
      const bool isWhole = index.findWithin(boxes[i], m_same, [&](std::size_t k) {
        if (k > i) compare(m_places[i], m_places[k]);
        return ++compared < kMostCompared && m_faults.size() - before < kMostFound;
      });
      if (!isWhole) return false;
    }
    return true;
  }

 private:
  struct Place {
    std::size_t curve, edge;
    std::uint32_t contour;
  };

  // Where a contour passes a point: the directions in which it leaves on both sides.
  struct Pass {
    bool isThrough = false;
    PNT_2D ways[2] = {PNT_2D(0, 0), PNT_2D(0, 0)};
  };

  const EDGE_3D& edgeAt(const Place& place) const {
    return m_curves[place.curve].path.edges[place.edge];
  }

  void compare(const Place& a, const Place& b) {
    const bool isBothClosed = m_contours.isClosed(a.contour) && m_contours.isClosed(b.contour);
    if (a.contour != b.contour && !isBothClosed) return;
    m_found.clear();
    edgeAt(a).intersect(edgeAt(b), m_found, m_same);
    for (const EDGE_CROSSING& crossing : m_found) {
      const Pass one = passOf(a, crossing.t), other = passOf(b, crossing.u);
      if (!one.isThrough || !other.isThrough || !areCrossing(one, other)) continue;
      m_faults.push_back({CurveFault::SelfIntersection, {a.curve}, crossing.pnt, 0});
      if (a.curve != b.curve) m_faults.back().curves.push_back(b.curve);
    }
  }

  Pass passOf(const Place& place, double t) const {
    const EDGE_3D& edge = edgeAt(place);
    Pass pass;
    if (t > 0 && t < 1) {
      const PNT_2D way = edge.direction(t);
      pass = {true, {way, PNT_2D(-way.x, -way.y)}};
      return pass;
    }
    // A corner counts once: where the later of its edges begins or ends.
    const int side = t > 0 ? 1 : 0;
    std::size_t curve, edgeOther;
    int sideOther;
    if (!neighbor(place, side, curve, edgeOther, sideOther)) return pass;
    const auto key = [](std::size_t c, std::size_t e, int s) { return std::make_tuple(c, e, s); };
    if (key(place.curve, place.edge, side) > key(curve, edgeOther, sideOther)) return pass;
    const EDGE_3D& other = m_curves[curve].path.edges[edgeOther];
    return {true, {leaving(edge, side), leaving(other, sideOther)}};
  }

  static PNT_2D leaving(const EDGE_3D& edge, int side) {
    const PNT_2D way = edge.direction(side);
    return side == 0 ? way : PNT_2D(-way.x, -way.y);
  }

  // The edge on the other side of a corner, and which of its ends is there.
  bool neighbor(const Place& place, int side, std::size_t& curve, std::size_t& edge,
                int& sideOther) const {
    const PATH_3D& path = m_curves[place.curve].path;
    const std::size_t count = path.edges.size();
    curve = place.curve;
    sideOther = 1 - side;
    const bool isInside = side == 0 ? place.edge > 0 : place.edge + 1 < count;
    if (isInside || path.closed) {
      edge = (place.edge + (side == 0 ? count - 1 : 1)) % count;
      return count > 1 || path.edges[0].isArc();
    }
    const auto end = static_cast<std::uint32_t>(2 * place.curve) + static_cast<std::uint32_t>(side);
    const std::uint32_t next = m_chains.next(end);
    if (next == Chains::kNone) return false;
    curve = next / 2;
    sideOther = static_cast<int>(next % 2);
    edge = sideOther == 0 ? 0 : m_curves[curve].path.edges.size() - 1;
    return true;
  }

  // Whether the directions of one separate those of the other around the point.
  static bool areCrossing(const Pass& a, const Pass& b) {
    const auto angle = [](const PNT_2D& way) { return std::atan2(way.y, way.x); };
    const double zero = angle(a.ways[0]);
    const auto turn = [&](const PNT_2D& way) {
      const double off = angle(way) - zero;
      return off < 0 ? off + kTwoPi : off;
    };
    const double across = turn(a.ways[1]);
    int left = 0;
    for (const PNT_2D& way : b.ways) {
      const double at = turn(way);
      if (at < kAlike || at > kTwoPi - kAlike || std::fabs(at - across) < kAlike) return false;
      left += at < across ? 1 : 0;
    }
    return left == 1;
  }

  const std::vector<PLACED_CURVE>& m_curves;
  const Chains& m_chains;
  Contours m_contours;
  double m_same;
  std::vector<CURVE_FAULT>& m_faults;
  std::vector<Place> m_places;
  std::vector<EDGE_CROSSING> m_found;
};

}  // namespace

bool findCrossings(const std::vector<PLACED_CURVE>& curves, const Chains& chains,
                   const CURVE_LIMITS& limits, std::vector<CURVE_FAULT>& faults) {
  return CrossingFinder(curves, chains, limits, faults).find();
}

}  // namespace vek0::detail
