// The offset of a path consists of the points at the given distance from it. Each edge contributes
// its parallel and each outer corner a join. From each such piece, the parts too close to any edge
// or inside a miter are removed (`keepOutside`); the rest is linked at common ends. Vanishing
// corners, loops and self-crossings need no other rule, and open paths no winding numbers. The path
// is first moved to the origin, and "too close" has a margin for rounding (`m_margin`): a piece
// must not be cut by its own edge.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "geometry/boxindex.h"
#include "geometry/pointgrid.h"
#include "geometry/vector.h"
#include "polyline/offsetzone.h"
#include "vek0core/geometry/angle.h"
#include "vek0core/polyline/offset.h"

namespace vek0::detail {
namespace {

constexpr double kDepth = 1e-12;      // fraction of the distance that counts as too near
constexpr double kShortest = 1e-8;    // length of the shortest piece as a fraction of the distance
constexpr double kRounding = 4e-15;   // of the path's size
constexpr double kPlaces = 1e-15;     // of its coordinates, for the rounding of the input
constexpr double kFinest = 1e-9;      // fraction of the size below which a distance counts as zero
constexpr double kStraightOn = 1e-9;  // radians
// Bounds the time for paths that overlap themselves thousands of times.
constexpr double kMostTests = 4e8;
constexpr std::size_t kNearby = 4;  // edges to either side that are examined first
constexpr std::size_t kNone = static_cast<std::size_t>(-1);

PNT_2D rightOf(const PNT_2D& d) { return {d.y, -d.x}; }
PNT_2D times(const PNT_2D& d, double k) { return {d.x * k, d.y * k}; }
PNT_3D shifted(const PNT_3D& p, const PNT_2D& by) { return {p.x + by.x, p.y + by.y, p.z}; }

double turnOf(const PNT_2D& from, const PNT_2D& to) {
  return std::atan2(cross(from, to), dot(from, to));
}

struct Span {
  double from, to;
};

// The parallel of an edge, or the join between two adjacent parallels.
struct Piece {
  EDGE_3D edge;
  std::size_t source;  // the edge, or the edge that begins at the corner
  bool isJoin;
  bool isChord;  // is drawn as the segment between its ends
};

class Offset {
 public:
  Offset(const PATH_3D& path, double dist, const OFFSET_OPTIONS& options)
      : m_dist(dist), m_options(options), m_closed(path.closed) {
    RECT_2D box = path.bdry();
    m_middle = PNT_3D((box.min.x + box.max.x) / 2, (box.min.y + box.max.y) / 2, 0);
    m_size = std::max(box.max.x - box.min.x, box.max.y - box.min.y);
    const double farthest = std::max(
        {std::fabs(box.min.x), std::fabs(box.min.y), std::fabs(box.max.x), std::fabs(box.max.y)});
    m_margin = kDepth * dist + kRounding * m_size + kPlaces * farthest;
    // Adjacent pieces that meet at such a flat angle that neither is too near to the other may
    // overlap by this much: an angle t causes an overlap of d * t / 2, at a depth of d * t * t / 4.
    m_meeting = 4 * std::sqrt(m_margin * dist);
    takeEdges(path);
    makeZones();
    makePieces();
  }

  bool run(std::vector<PATH_3D>& out) {
    const BoxIndex edges(edgeBoxes()), mitres(mitreBoxes());
    for (std::size_t i = 0; i < m_pieces.size(); ++i) {
      keepOutside(m_pieces[i], edges, mitres);
      if (m_tests > kMostTests) return false;
      for (const Span& span : m_spans) addSlice(m_pieces[i], span);
    }
    link();
    collect(out);
    return true;
  }

 private:
  // --- What is given

  void takeEdges(const PATH_3D& path) {
    m_edges.reserve(path.edges.size());
    for (EDGE_3D edge : path.edges) {
      // Edges shorter than the rounding of coordinates have no reliable direction.
      if (!(edge.length() > kRounding * m_size)) continue;
      edge.move(-m_middle);
      m_edges.push_back(edge);
    }
  }

  std::size_t count() const { return m_edges.size(); }
  bool hasCorner(std::size_t i) const { return m_closed || i > 0; }  // where edge i begins
  const EDGE_3D& before(std::size_t i) const { return m_edges[(i + count() - 1) % count()]; }

  // Angle by which the path turns where edge i begins; a reversal counts as a left turn, so that
  // the right side goes around.
  double cornerTurn(std::size_t i) const {
    const double turn = turnOf(before(i).direction(1), m_edges[i].direction(0));
    // Angles near -pi and pi are the same reversal, whose side must not depend on rounding.
    return turn < kStraightOn - kPi ? kPi : turn;
  }

  bool hasMitre(double turn) const {
    // The tip is 1 / cos(turn / 2) distances from the corner.
    return m_options.join == OFFSET_JOIN::mitre && std::fabs(turn) > kStraightOn &&
           std::cos(turn / 2) * m_options.mitreLimit >= 1;
  }

  PNT_2D mitreTip(std::size_t i, double turn) const {
    const PNT_2D a = before(i).direction(1);
    const double side = turn > 0 ? m_dist : -m_dist;
    return m_edges[i].p1 + times(rightOf(a), side) +
           times(a, m_dist * std::tan(std::fabs(turn) / 2));
  }

  void makeZones() {
    m_edgeZones.reserve(count());
    for (const EDGE_3D& edge : m_edges) m_edgeZones.emplace_back(edge, m_dist);
    for (std::size_t i = 0; i < count(); ++i) {
      if (!hasCorner(i)) continue;
      const double turn = cornerTurn(i);
      if (!hasMitre(turn)) continue;
      const double side = turn > 0 ? m_dist : -m_dist;
      const PNT_2D corner = m_edges[i].p1;
      PNT_2D end = corner + times(rightOf(before(i).direction(1)), side);
      PNT_2D start = corner + times(rightOf(m_edges[i].direction(0)), side);
      if (turn < 0) std::swap(start, end);
      m_mitreZones.emplace_back(corner, end, mitreTip(i, turn), start);
      m_mitreOf.push_back(turn > 0 ? i : kNone);
    }
  }

  void makePieces() {
    m_joinOf.assign(count(), kNone);
    for (std::size_t i = 0; i < count(); ++i) {
      if (hasCorner(i)) addJoin(i);
      EDGE_3D parallel = m_edges[i];
      if (offsetEdge(parallel)) m_pieces.push_back({parallel, i, false, false});
    }
  }

  // False for an arc whose offset reaches its center: points beyond are nearer to its ends.
  bool offsetEdge(EDGE_3D& edge) const {
    if (edge.isArc()) {
      const double radius = edge.radius + (edge.sweep > 0 ? m_dist : -m_dist);
      if (!(radius > m_margin)) return false;
      edge = EDGE_3D(edge.center, radius, edge.startAngle, edge.sweep, edge.p1.z, edge.p2.z);
      return true;
    }
    const PNT_2D by = times(rightOf(edge.direction(0)), m_dist);
    edge.p1 = shifted(edge.p1, by);
    edge.p2 = shifted(edge.p2, by);
    return true;
  }

  void addJoin(std::size_t i) {
    const double turn = cornerTurn(i);
    // At inner corners the parallels cross each other; the removal of close parts shortens them.
    if (turn <= kStraightOn) return;
    const PNT_3D corner = m_edges[i].p1;
    const PNT_2D from = rightOf(before(i).direction(1));
    if (hasMitre(turn)) {
      const PNT_3D tip = shifted(PNT_3D(0, 0, corner.z), mitreTip(i, turn));
      const PNT_2D to = rightOf(m_edges[i].direction(0));
      m_pieces.push_back({EDGE_3D(shifted(corner, times(from, m_dist)), tip), i, true, false});
      m_pieces.push_back({EDGE_3D(tip, shifted(corner, times(to, m_dist))), i, true, false});
      return;
    }
    m_joinOf[i] = m_pieces.size();
    const EDGE_3D arc(corner, m_dist, std::atan2(from.y, from.x), turn, corner.z, corner.z);
    m_pieces.push_back({arc, i, true, m_options.join != OFFSET_JOIN::round});
  }

  std::vector<RECT_2D> edgeBoxes() const {
    std::vector<RECT_2D> boxes;
    for (const EDGE_3D& edge : m_edges) boxes.push_back(edge.bdry());
    return boxes;
  }

  std::vector<RECT_2D> mitreBoxes() const {
    std::vector<RECT_2D> boxes;
    for (const MitreZone& zone : m_mitreZones) boxes.push_back(zone.bdry());
    return boxes;
  }

  // --- What remains of a piece

  void keepOutside(const Piece& piece, const BoxIndex& edges, const BoxIndex& mitres) {
    m_piece = &piece;
    m_spans.assign(1, Span{0, 1});
    // Nearby edges remove most of what a winding path removes at all.
    for (std::size_t k = 1; k <= std::min(kNearby, count() - 1) && !m_spans.empty(); ++k) {
      leaveEdge((piece.source + k) % count());
      if (!m_spans.empty()) leaveEdge((piece.source + count() - k) % count());
    }
    const std::vector<Span> remaining = m_spans;
    std::vector<Span> kept;
    for (const Span& span : remaining) {
      m_spans.assign(1, span);
      const RECT_2D box = piece.edge.part(span.from, span.to).bdry();
      // Looked up span by span, because the box of a span is much smaller than that of the piece.
      edges.findWithin(box, m_dist, [&](std::size_t j) {
        leaveEdge(j);
        return !m_spans.empty() && m_tests <= kMostTests;
      });
      mitres.find(box, [&](std::size_t j) {
        leave(
            m_mitreZones[j], [&](const PNT_2D& p) { return isSpareBesideMitre(j, p); },
            [](EdgeCuts&) {});
        return !m_spans.empty();
      });
      kept.insert(kept.end(), m_spans.begin(), m_spans.end());
    }
    m_spans = kept;
  }

  void leaveEdge(std::size_t j) {
    // An edge cannot cut its own parallel, which lies exactly on the border of its zone.
    if (m_piece->isJoin || j != m_piece->source) {
      const EdgeZone& zone = m_edgeZones[j];
      leave(
          zone, [&](const PNT_2D& p) { return isSpareBesideEdge(zone, j, p); }, [](EdgeCuts&) {});
    }
    leaveVertex(m_edges[j].p1, j);
    // Each edge covers the vertex at its start; an open path has one more at its end.
    if (!m_closed && j + 1 == count()) leaveVertex(m_edges[j].p2, kNone);
  }

  void leaveVertex(const PNT_2D& at, std::size_t j) {
    // A join lies on the border of the zone of its own vertex.
    if (m_piece->isJoin && j == m_piece->source) return;
    const VertexZone zone(at, m_dist);
    const bool isTwin = isTwinJoin(at, j);
    leave(
        zone, [&](const PNT_2D& p) { return isSpareBesideVertex(zone, j, isTwin, p); },
        [&](EdgeCuts& cuts) {
          if (!isTwin) return;
          cuts.addLine(at, m_pieces[m_joinOf[j]].edge.p1);
          cuts.addLine(at, m_pieces[m_joinOf[j]].edge.p2);
        });
  }

  // A passage with sources on both sides at exactly the distance has no width.
  bool isBetween(const PNT_2D& p, const PNT_2D& source) const {
    return cross(m_piece->edge.direction(m_piece->edge.paramOf(p)), source - p) < 0;
  }

  // A path that retraces itself yields its parallel once; joins yield to edges.
  bool isSpareBesideEdge(const EdgeZone& zone, std::size_t j, const PNT_2D& p) const {
    if (isBetween(p, zone.source(p))) return true;
    if (m_piece->isJoin && m_piece->edge.isArc()) return false;
    if (!m_piece->isJoin && j >= m_piece->source) return false;
    return dot(zone.direction(p), m_piece->edge.direction(m_piece->edge.paramOf(p))) > 0;
  }

  bool isTwinJoin(const PNT_2D& at, std::size_t j) const {
    return m_piece->isJoin && m_piece->edge.isArc() && j < m_piece->source &&
           m_joinOf[j] != kNone && at.dist(m_piece->edge.center) <= m_margin;
  }

  bool isSpareBesideVertex(const VertexZone& zone, std::size_t j, bool isTwin,
                           const PNT_2D& p) const {
    if (isBetween(p, zone.source(p))) return true;
    if (!isTwin) return false;
    const double t = m_pieces[m_joinOf[j]].edge.paramOf(p);
    return t >= 0 && t <= 1;
  }

  bool isSpareBesideMitre(std::size_t j, const PNT_2D& p) const {
    if (isBetween(p, m_mitreZones[j].middle())) return true;
    return m_piece->isJoin && m_mitreOf[j] < m_piece->source;
  }

  // Removes from the spans the parts inside the zone, and redundant parts along its border.
  template <class Zone, class Spare, class MoreCuts>
  void leave(const Zone& zone, Spare spare, MoreCuts moreCuts) {
    m_left.clear();
    bool isChanged = false;
    for (const Span& span : m_spans) isChanged |= leave(zone, span, spare, moreCuts);
    if (isChanged) m_spans.swap(m_left);
  }

  template <class Zone, class Spare, class MoreCuts>
  bool leave(const Zone& zone, const Span& span, Spare& spare, MoreCuts& moreCuts) {
    ++m_tests;
    const EDGE_3D& edge = m_piece->edge;
    const PNT_2D middle = edge.at((span.from + span.to) / 2);
    const double reach = edge.length() * (span.to - span.from) / 2;
    // Cheap tests on discs decide most cases without computing any cut.
    if (zone.misses(middle, reach + m_margin)) {
      m_left.push_back(span);
      return false;
    }
    if (zone.swallows(middle, reach, m_margin)) return true;
    EdgeCuts cuts(edge, span.from, span.to);
    zone.addCuts(cuts);
    moreCuts(cuts);
    const std::vector<double>& at = cuts.sorted();
    // Between adjacent cuts the piece is entirely inside or outside, so its middle decides.
    bool isChanged = false, isOpen = false;
    for (std::size_t i = 0; i + 1 < at.size(); ++i) {
      if (isTaken(zone, at[i], at[i + 1], spare)) {
        isChanged = true;
        isOpen = false;
        // Rejoins adjacent parts, so that cuts that removed nothing leave no trace.
      } else if (isOpen) {
        m_left.back().to = at[i + 1];
      } else {
        m_left.push_back({at[i], at[i + 1]});
        isOpen = true;
      }
    }
    return isChanged;
  }

  template <class Zone, class Spare>
  bool isTaken(const Zone& zone, double from, double to, Spare& spare) const {
    const EDGE_3D& edge = m_piece->edge;
    const PNT_2D middle = edge.at((from + to) / 2);
    const double depth = zone.depth(middle);
    if (depth > m_margin) return true;
    if (depth < -m_margin) return false;
    // Distinguishes running along the border from just touching it in the middle.
    const auto isAlong = [&](double share) {
      return std::fabs(zone.depth(edge.at(from + (to - from) * share))) <= m_margin;
    };
    return isAlong(0.25) && isAlong(0.75) && spare(middle);
  }

  // --- From pieces to paths

  void addSlice(const Piece& piece, const Span& span) {
    const double shortest = kShortest * m_dist + kRounding * m_size;
    // Such remains are rounding errors where pieces cross.
    if ((span.to - span.from) * piece.edge.length() < shortest) return;
    EDGE_3D edge = piece.edge.part(span.from, span.to);
    m_in.push_back(edge.direction(1));
    m_out.push_back(edge.direction(0));
    // Only now: a bevel is cut as the arc that it replaces, whose parameters the spans refer to.
    if (piece.isChord) edge = EDGE_3D(edge.p1, edge.p2);
    m_slices.push_back(edge);
  }

  void link() {
    PointGrid starts(m_meeting, PNT_2D(0, 0));
    // Gaps below this are considered equal, and the directions decide.
    const double here = kShortest * m_dist;
    for (std::size_t i = 0; i < m_slices.size(); ++i)
      starts.add(m_slices[i].p1, static_cast<std::uint32_t>(i));
    m_next.assign(m_slices.size(), kNone);
    m_isFollowed.assign(m_slices.size(), false);
    for (std::size_t i = 0; i < m_slices.size(); ++i) {
      double least = m_meeting, best = -2 * kPi;
      starts.find(
          m_slices[i].p2, [&](std::uint32_t j) { return !m_isFollowed[j]; },
          [&](std::uint32_t j) {
            // Of several slices that begin here, the one closest to the path continues, so that
            // results may touch but never cross.
            const double gap = std::max(m_slices[i].p2.PNT_2D::dist(m_slices[j].p1), here);
            // A reversal is the worst continuation, whichever sign rounding gives it.
            double turn = turnOf(m_in[i], m_out[j]);
            if (turn > kPi - kStraightOn) turn = -kPi;
            if (gap > least || (gap == least && turn <= best)) return;
            least = gap;
            best = turn;
            m_next[i] = j;
          });
      // Each slice is followed by at most one other, so the links form chains and rings.
      if (m_next[i] != kNone) m_isFollowed[m_next[i]] = true;
    }
  }

  void collect(std::vector<PATH_3D>& out) {
    m_isUsed.assign(m_slices.size(), false);
    // Chains first, from slices without a predecessor; the slices left over form rings.
    for (std::size_t i = 0; i < m_slices.size(); ++i)
      if (!m_isFollowed[i]) collectFrom(i, out);
    for (std::size_t i = 0; i < m_slices.size(); ++i)
      if (!m_isUsed[i]) collectFrom(i, out);
  }

  void collectFrom(std::size_t first, std::vector<PATH_3D>& out) {
    PATH_3D path;
    std::size_t i = first;
    for (; i != kNone && !m_isUsed[i]; i = m_next[i]) {
      m_isUsed[i] = true;
      EDGE_3D edge = m_slices[i];
      if (!path.empty()) {
        // Closes the gap that rounding left by moving the start of the next edge.
        beginAt(edge, path.end());
        path.edges.back().p2.z = edge.p1.z;
      }
      path.edges.push_back(edge);
    }
    path.closed = i != kNone;
    if (path.closed) {
      beginAt(path.edges.front(), path.end());
      path.edges.back().p2.z = path.start().z;
    }
    // Results this short are rounding errors.
    if (path.length() < 4 * m_meeting) return;
    for (EDGE_3D& edge : path.edges) edge.move(m_middle);
    out.push_back(std::move(path));
  }

  static void beginAt(EDGE_3D& edge, const PNT_3D& p) {
    if (edge.isArc() && edge.p1 != p) edge = edge.part(edge.paramOf(p), 1);
    // Where parallels of different heights meet, neither is right.
    const double z = edge.p1.z / 2 + p.z / 2;
    edge.p1 = p;
    edge.p1.z = z;
  }

  double m_dist;
  OFFSET_OPTIONS m_options;
  bool m_closed;
  PNT_3D m_middle;  // coordinates are relative to it: far from the origin they would lose digits
  double m_size, m_margin, m_meeting;
  std::vector<EDGE_3D> m_edges;
  std::vector<EdgeZone> m_edgeZones;
  std::vector<MitreZone> m_mitreZones;
  std::vector<std::size_t> m_mitreOf;  // the edge that begins there; none on the other side
  std::vector<Piece> m_pieces;
  std::vector<std::size_t> m_joinOf;  // for each edge, the arc about its beginning
  double m_tests = 0;

  const Piece* m_piece = nullptr;
  std::vector<Span> m_spans, m_left;

  std::vector<EDGE_3D> m_slices;
  std::vector<PNT_2D> m_in, m_out;  // directions at end and start of each
  std::vector<std::size_t> m_next;
  std::vector<bool> m_isFollowed, m_isUsed;
};

}  // namespace
}  // namespace vek0::detail

bool offsetPath(const PATH_3D& path, double dist, const OFFSET_OPTIONS& options,
                std::vector<PATH_3D>& out) {
  constexpr double largest = 1e100;
  if (!(std::fabs(dist) < largest) || !path.isFinite()) return false;
  // Indices have 32 bits, and each edge yields several pieces.
  if (path.edges.size() > std::numeric_limits<std::uint32_t>::max() / 8) return false;
  const RECT_2D box = path.bdry();
  if (!box.validRegion() || !(path.length() > 0)) return true;
  const double size = std::max(box.max.x - box.min.x, box.max.y - box.min.y);
  if (std::fabs(dist) < vek0::detail::kFinest * size) {
    out.push_back(path);
    return true;
  }
  std::vector<PATH_3D> found;
  const bool isLeft = dist < 0;
  // The algorithm handles the right side only; the left is the right of the reversed path.
  vek0::detail::Offset offset(isLeft ? path.reversed() : path, std::fabs(dist), options);
  if (!offset.run(found)) return false;
  if (isLeft) std::reverse(found.begin(), found.end());
  for (PATH_3D& result : found) out.push_back(isLeft ? result.reversed() : std::move(result));
  return true;
}
