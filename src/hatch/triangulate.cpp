#include "vek0core/hatch/triangulate.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <queue>
#include <set>
#include <utility>

#include "hatch/ringedges.h"

// A line sweeps over the boundary from bottom to top and maintains the left-to-right order of the
// sides that it cuts. The order changes only where a side ends, starts or crosses its neighbor;
// between two such events the interior consists of trapezoids.
//
// Because of rounding, sides that nearly touch may temporarily be in the wrong order. Nothing
// relies on the order: neighbors found in the wrong order at a height are swapped immediately.
// Their correct order changes at most once, where they cross, so no two sides are swapped more than
// twice for it. So the sweep terminates, and its errors are of the order of the rounding.

namespace {

using Points = std::vector<PNT_3D>;

// Anything thinner than this fraction of the largest coordinate is rounding error.
constexpr double kSliver = 1e-15;

struct Spot {
  double x, y;
};

Spot spotOf(const PNT_3D& p) { return {p.x, p.y}; }

bool operator==(const Spot& a, const Spot& b) { return a.x == b.x && a.y == b.y; }

// The order in which the sweep meets points. At equal heights the left one comes first, as if the
// sweep line were slightly tilted: so no side is horizontal.
bool isBefore(const Spot& a, const Spot& b) { return a.y != b.y ? a.y < b.y : a.x < b.x; }

struct Side;

// A position in the order of the sides that the sweep line cuts. Positions persist when sides
// change.
struct Place {
  mutable Side* side;
  mutable int winding;   // of the boundary around what is between this place and the next
  mutable double since;  // the height from which this is valid for the current sides
};

// Two sides that start at one point.
struct Fork {
  Spot at;
  Side* left;
  Side* right;
};

struct PlaceOrder {
  using is_transparent = void;
  // Places keep their insertion positions.
  bool operator()(const Place&, const Place&) const { return false; }
  bool operator()(const Place& place, const Fork& fork) const;
};

using Places = std::multiset<Place, PlaceOrder>;

// An edge of the boundary; the sweep reaches `low` first.
struct Side {
  Spot low, high;
  int turns = 0;       // winding to its right less that to its left
  bool isCut = false;  // by the sweep line now
  Places::iterator place{};

  // Twice the area of the triangle low, high, p: positive if p is to the left.
  double leftness(const Spot& p) const {
    return (high.x - low.x) * (p.y - low.y) - (high.y - low.y) * (p.x - low.x);
  }

  double xAt(double y) const {
    // Clamped, because extrapolating an almost horizontal side could yield any x.
    if (y <= low.y) return low.x;
    if (y >= high.y) return high.x;
    return low.x + (y - low.y) / (high.y - low.y) * (high.x - low.x);
  }
};

// Positive when b points to the left of a.
double turn(const Side& a, const Side& b) {
  return (a.high.x - a.low.x) * (b.high.y - b.low.y) - (a.high.y - a.low.y) * (b.high.x - b.low.x);
}

bool PlaceOrder::operator()(const Place& place, const Fork& fork) const {
  // If the point lies on the side, at a shared vertex for example, the directions decide.
  const double leftness = place.side->leftness(fork.at);
  return leftness != 0 ? leftness < 0 : turn(*place.side, *fork.left) < 0;
}

// Whether sides in this order are reversed where the upper of them starts.
bool startsExchanged(const Side& left, const Side& right) {
  return isBefore(left.low, right.low) ? left.leftness(right.low) > 0
                                       : right.leftness(left.low) < 0;
}

// The same where the lower of them ends.
bool endsExchanged(const Side& left, const Side& right) {
  if (left.high == right.high) return false;
  return isBefore(left.high, right.high) ? right.leftness(left.high) < 0
                                         : left.leftness(right.high) > 0;
}

// Where two sides cross, clamped to their ends; identical for (b, a) to the last bit. Computed on
// the flatter one, whose heights may differ by less than the rounding on the other.
Spot crossing(const Side& a, const Side& b) {
  const double aRise = a.high.y - a.low.y, bRise = b.high.y - b.low.y;
  if (bRise < aRise || (bRise == aRise && &b < &a)) return crossing(b, a);
  const double turned = turn(a, b);
  // Parallel sides in the wrong order overlap up to rounding; any common point will do.
  if (turned == 0) return a.low;
  // b.leftness(a.low) is the distance still to go, in the units of `turned`.
  const double t = std::clamp(b.leftness(a.low) / turned, 0.0, 1.0);
  const Spot at = {a.low.x + t * (a.high.x - a.low.x), a.low.y + t * (a.high.y - a.low.y)};
  // The crossing must not lie above the lower upper end, or the swap would come too late.
  const Spot& firstEnd = isBefore(a.high, b.high) ? a.high : b.high;
  return isBefore(firstEnd, at) ? firstEnd : at;
}

class SolidSweep {
 public:
  SolidSweep(const Points& boundary, double limit, std::vector<HatchFace>& faces, InsideRule rule)
      : m_z(boundary[0].z), m_limit(limit), m_faces(faces), m_rule(rule) {
    for (const PNT_3D& p : boundary) {
      m_sliver = std::max({m_sliver, kSliver * std::fabs(p.x), kSliver * std::fabs(p.y)});
    }
    addSides(vek0::detail::ringEdges(boundary));
  }

  // False if the limit is exceeded.
  bool run() {
    for (const Vertex& vertex : m_vertices) {
      // Crossings below the vertex come first, because handling it assumes the order at its height.
      exchangeUpTo(vertex.at);
      if (isTooDense()) return false;
      m_now = vertex.at;
      handle(vertex);
    }
    return !isTooDense();
  }

 private:
  enum class Kind { End, Pass, Start };  // in processing order for vertices at the same spot
  struct Vertex {
    Spot at;
    Kind kind;
    Side* a;  // for a Pass vertex, the one that ends
    Side* b;
  };
  struct Meeting {
    Spot at;
    Side* left;
    Side* right;
    bool operator<(const Meeting& m) const { return isBefore(m.at, at); }  // first on top
  };

  bool isTooDense() const {
    return !(static_cast<double>(m_faces.size()) <= m_limit) || m_exchanges > m_limit;
  }

  // --- setting up

  void addSides(const std::vector<vek0::detail::RingEdge>& edges) {
    // Other structures refer to sides by pointer, so the vector must not grow afterwards.
    m_sides.resize(edges.size());
    for (std::size_t i = 0; i < edges.size(); ++i) {
      m_sides[i].low = spotOf(*edges[i].from);
      m_sides[i].high = spotOf(*edges[i].to);
      const bool isDownward = isBefore(m_sides[i].high, m_sides[i].low);
      if (isDownward) std::swap(m_sides[i].low, m_sides[i].high);
      m_sides[i].turns = isDownward ? 1 : -1;
    }
    std::size_t ringStart = 0;
    for (std::size_t i = 0; i < edges.size(); ++i) {
      const bool isRingEnd = i + 1 == edges.size() || edges[i + 1].from != edges[i].to;
      addVertex(spotOf(*edges[i].to), m_sides[i], m_sides[isRingEnd ? ringStart : i + 1]);
      if (isRingEnd) ringStart = i + 1;
    }
    // Stable, so that the result does not depend on the implementation of the sort.
    std::stable_sort(m_vertices.begin(), m_vertices.end(), [](const Vertex& a, const Vertex& b) {
      return a.at == b.at ? a.kind < b.kind : isBefore(a.at, b.at);
    });
  }

  void addVertex(const Spot& at, Side& a, Side& b) {
    const bool aStarts = a.low == at, bStarts = b.low == at;
    if (aStarts == bStarts) {
      m_vertices.push_back({at, aStarts ? Kind::Start : Kind::End, &a, &b});
    } else if (aStarts) {
      m_vertices.push_back({at, Kind::Pass, &b, &a});
    } else {
      m_vertices.push_back({at, Kind::Pass, &a, &b});
    }
  }

  // --- the sweep

  void handle(const Vertex& vertex) {
    switch (vertex.kind) {
      case Kind::End:
        return end(*vertex.a, *vertex.b);
      case Kind::Pass:
        return pass(*vertex.a, *vertex.b);
      case Kind::Start:
        return start(*vertex.a, *vertex.b);
    }
  }

  void start(Side& a, Side& b) {
    const bool aIsLeft = turn(a, b) <= 0;
    const Fork fork = {m_now, aIsLeft ? &a : &b, aIsLeft ? &b : &a};
    const auto next = m_places.lower_bound(fork);
    // The new sides divide the trapezoid to their left, so it ends here.
    cutBefore(next);
    const int outside = windingBefore(next);
    const auto left =
        m_places.emplace_hint(next, Place{nullptr, outside + fork.left->turns, m_now.y});
    const auto right = m_places.emplace_hint(next, Place{nullptr, outside, m_now.y});
    put(*fork.left, left);
    put(*fork.right, right);
    watchBefore(left);
    watch(right);
  }

  void pass(Side& ending, Side& starting) {
    const auto place = ending.place;
    cutBefore(place);
    cut(place);
    ending.isCut = false;
    // The starting side takes over the place: the order of the other sides is unchanged.
    put(starting, place);
    watchBefore(place);
    watch(place);
  }

  void end(Side& a, Side& b) {
    const bool aIsLeft = isLeftOf(a.place, b.place);
    Side& left = aIsLeft ? a : b;
    Side& right = aIsLeft ? b : a;
    // Sides still between them have been passed, up to rounding.
    while (std::next(left.place) != right.place) exchange(left.place);
    cutBefore(left.place);
    cut(left.place);
    cut(right.place);
    left.isCut = right.isCut = false;
    m_places.erase(left.place);
    const auto next = m_places.erase(right.place);
    if (next != m_places.begin()) watch(std::prev(next));
  }

  // Searches in both directions at once: usually they are neighbors.
  bool isLeftOf(Places::iterator a, Places::iterator b) const {
    for (auto back = a, ahead = a;;) {
      if (ahead != m_places.end() && ++ahead == b) return true;
      if (back != m_places.begin() && --back == b) return false;
    }
  }

  // Swaps the side at a place with the one to its right.
  void exchange(Places::iterator left) {
    const auto right = std::next(left);
    // Counted, because a file could make every pair of sides cross.
    ++m_exchanges;
    cutBefore(left);
    cut(left);
    cut(right);
    Side* const side = left->side;
    put(*right->side, left);
    put(*side, right);
    left->winding = windingBefore(left) + left->side->turns;
    watchBefore(left);
    watch(left);
    watch(right);
  }

  void exchangeUpTo(const Spot& at) {
    while (!m_meetings.empty() && !isBefore(at, m_meetings.top().at) && !isTooDense()) {
      // A copy, because exchanging pushes further meetings.
      const Meeting meeting = m_meetings.top();
      m_meetings.pop();
      // Meetings are not removed when the order changes, so outdated ones are skipped here.
      if (!meeting.left->isCut || !meeting.right->isCut) continue;
      if (std::next(meeting.left->place) != meeting.right->place) continue;
      // Rounding may put a crossing below the sweep line, which must not move back.
      if (isBefore(m_now, meeting.at)) m_now = meeting.at;
      exchange(meeting.left->place);
    }
  }

  int windingBefore(Places::iterator place) const {
    return place == m_places.begin() ? 0 : std::prev(place)->winding;
  }

  bool isInside(int winding) const {
    return m_rule == InsideRule::NonZero ? winding != 0 : winding % 2 != 0;
  }

  static void put(Side& side, Places::iterator place) {
    place->side = &side;
    side.place = place;
    side.isCut = true;
  }

  // Records where the side at a place must be swapped with the one to its right.
  void watch(Places::iterator place) {
    const auto next = std::next(place);
    if (next == m_places.end()) return;
    Side &left = *place->side, &right = *next->side;
    const bool before = startsExchanged(left, right), after = endsExchanged(left, right);
    // In order at both ends, so they do not cross.
    if (!before && !after) return;
    const Spot at = crossing(left, right);
    if (!before) return m_meetings.push({at, &left, &right});
    // Out of order up to the crossing, or throughout: swapped at once, unless the sweep has
    // already passed the crossing.
    if (after || isBefore(m_now, at)) m_meetings.push({m_now, &left, &right});
  }

  void watchBefore(Places::iterator place) {
    if (place != m_places.begin()) watch(std::prev(place));
  }

  // --- trapezoids

  // Ends the trapezoid to the right of a place here; the next one starts.
  void cut(Places::iterator place) {
    const auto next = std::next(place);
    if (isInside(place->winding) && next != m_places.end()) {
      addFace(*place->side, *next->side, place->since, m_now.y);
    }
    place->since = m_now.y;
  }

  void cutBefore(Places::iterator place) {
    if (place != m_places.begin()) cut(std::prev(place));
  }

  void addFace(const Side& left, const Side& right, double bottom, double top) {
    // Also skips the trapezoids between events at the same height.
    if (top - bottom <= m_sliver) return;
    const double x0 = left.xAt(bottom), x1 = right.xAt(bottom);
    const double x2 = right.xAt(top), x3 = left.xAt(top);
    const bool hasBottom = x1 - x0 > m_sliver, hasTop = x2 - x3 > m_sliver;
    if (!hasBottom && !hasTop) return;
    HatchFace face;
    std::size_t n = 0;
    face.p[n++] = {x0, bottom, m_z};
    if (hasBottom) face.p[n++] = {x1, bottom, m_z};
    face.p[n++] = {x2, top, m_z};
    if (hasTop) face.p[n++] = {x3, top, m_z};
    // A triangle is stored as a quad with its last corner repeated.
    if (n == 3) face.p[3] = face.p[2];
    m_faces.push_back(face);
  }

  double m_z;
  double m_limit;
  std::vector<HatchFace>& m_faces;
  const InsideRule m_rule;
  double m_sliver = 0;
  std::vector<Side> m_sides;
  std::vector<Vertex> m_vertices;  // as the sweep meets them
  std::priority_queue<Meeting> m_meetings;
  Places m_places;
  Spot m_now{};
  double m_exchanges = 0;
};

}  // namespace

HatchStatus fillSolid(const Points& boundary, double limit, std::vector<HatchFace>& faces,
                      InsideRule rule) {
  faces.clear();
  if (!vek0::detail::hasUsableCoordinates(boundary)) return HatchStatus::BadBoundary;
  if (boundary.empty()) return HatchStatus::Done;
  if (SolidSweep(boundary, limit, faces, rule).run()) return HatchStatus::Done;
  faces.clear();
  return HatchStatus::TooDense;
}
