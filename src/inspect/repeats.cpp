// Overlaps. Lines are compared in groups of similar direction, each in a frame turned so that its
// boxes are flat: the point where a line begins then lies in few boxes besides those of lines that
// cover it. Arcs are grouped by their circles, and the angles of each circle are swept.
#include "inspect/repeats.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <tuple>
#include <unordered_map>

#include "geometry/boxindex.h"
#include "geometry/pointgrid.h"
#include "vek0core/geometry/angle.h"

namespace vek0::detail {
namespace {

constexpr int kDirections = 128;  // groups of lines
// Common parts are that much longer than the distance that counts as the same, so that the
// directions of lines that have one differ by less than a group.
constexpr double kLeastPart = 100;
static_assert(2 / kLeastPart < kPi / kDirections);
constexpr int kMostCovers = 1000;  // boxes of lines that are examined around a point

struct Straight {
  std::size_t curve, edge;
  double direction;  // in units of a group's width, 0 to kDirections
};

// A line in the frame of its group, from left to right.
struct Level {
  std::size_t line;
  PNT_2D start{0, 0}, end{0, 0};
  bool isReversed;
  bool isGuest;  // belongs to the group beside this one
};

double leastPart(const CURVE_LIMITS& limits) {
  return std::max(limits.tiny, kLeastPart * limits.same);
}

// Distance of a point from an infinite line.
double offLine(const PNT_2D& p, const Level& line) {
  const double x = line.end.x - line.start.x, y = line.end.y - line.start.y;
  return std::fabs(x * (p.y - line.start.y) - y * (p.x - line.start.x)) / std::hypot(x, y);
}

class StraightParts {
 public:
  StraightParts(const std::vector<PLACED_CURVE>& curves, const CURVE_LIMITS& limits,
                std::vector<CoveredPart>& out)
      : m_curves(curves), m_limits(limits), m_out(out) {}

  void find(std::vector<Straight> lines) {
    m_lines = std::move(lines);
    std::sort(m_lines.begin(), m_lines.end(), [](const Straight& a, const Straight& b) {
      return std::floor(a.direction) < std::floor(b.direction);
    });
    std::size_t firsts[kDirections + 1] = {};
    for (const Straight& line : m_lines) ++firsts[static_cast<int>(line.direction) + 1];
    for (int i = 0; i < kDirections; ++i) firsts[i + 1] += firsts[i];
    for (int group = 0; group < kDirections; ++group) {
      if (firsts[group] == firsts[group + 1]) continue;
      m_angle = -(group + 0.5) * kPi / kDirections;
      m_levels.clear();
      for (const int step : {0, -1, 1}) {
        const int from = (group + step + kDirections) % kDirections;
        for (std::size_t i = firsts[from]; i < firsts[from + 1]; ++i) add(i, step != 0);
      }
      compare();
    }
  }

 private:
  void add(std::size_t line, bool isGuest) {
    const EDGE_3D& edge = m_curves[m_lines[line].curve].path.edges[m_lines[line].edge];
    const double c = std::cos(m_angle), s = std::sin(m_angle);
    const auto turned = [&](const PNT_3D& p) {
      return PNT_2D(c * p.x - s * p.y, s * p.x + c * p.y);
    };
    const PNT_2D a = turned(edge.p1), b = turned(edge.p2);
    const bool isReversed = a.x > b.x;
    m_levels.push_back({line, isReversed ? b : a, isReversed ? a : b, isReversed, isGuest});
  }

  void compare() {
    std::vector<RECT_2D> boxes;
    boxes.reserve(m_levels.size());
    for (const Level& level : m_levels)
      boxes.emplace_back(level.start.x, level.start.y, level.end.x, level.end.y);
    const BoxIndex index(boxes);
    for (const Level& level : m_levels)
      if (!level.isGuest) compare(level, index);
  }

  void compare(const Level& level, const BoxIndex& index) {
    const Level* cover = nullptr;
    double end = level.start.x + leastPart(m_limits);
    int looked = 0;
    index.findWithin(RECT_2D(level.start.x, level.start.y, level.start.x, level.start.y),
                     m_limits.same, [&](std::size_t i) {
                       const Level& other = m_levels[i];
                       const double reach = std::min(level.end.x, other.end.x);
                       if (comesFirst(other, level) && reach > end && isOn(level, other, reach)) {
                         cover = &other;
                         end = reach;
                       }
                       return ++looked < kMostCovers;
                     });
    if (cover) take(level, *cover, end);
  }

  // Lines that begin together cover the later ones.
  bool comesFirst(const Level& a, const Level& b) const {
    if (std::fabs(a.start.x - b.start.x) <= m_limits.same) return a.line < b.line;
    return a.start.x < b.start.x;
  }

  bool isOn(const Level& level, const Level& other, double reach) const {
    return offLine(level.start, other) <= 2 * m_limits.same &&
           offLine(at(level, reach), other) <= 2 * m_limits.same;
  }

  static double shareAt(const Level& level, double x) {
    return std::clamp((x - level.start.x) / (level.end.x - level.start.x), 0.0, 1.0);
  }
  static PNT_2D at(const Level& level, double x) {
    const double t = shareAt(level, x);
    return {level.start.x + t * (level.end.x - level.start.x),
            level.start.y + t * (level.end.y - level.start.y)};
  }

  void take(const Level& level, const Level& cover, double reach) {
    const Straight &line = m_lines[level.line], &other = m_lines[cover.line];
    const EDGE_3D& edge = m_curves[line.curve].path.edges[line.edge];
    const double share = shareAt(level, reach);
    const double from = level.isReversed ? 1 - share : 0, to = level.isReversed ? 1 : share;
    m_out.push_back({line.curve, line.edge, other.curve, other.edge, from, to,
                     edge.at((from + to) / 2), share * edge.length()});
  }

  const std::vector<PLACED_CURVE>& m_curves;
  const CURVE_LIMITS& m_limits;
  std::vector<CoveredPart>& m_out;
  std::vector<Straight> m_lines;
  std::vector<Level> m_levels;
  double m_angle = 0;
};

struct Turn {
  std::size_t curve, edge;
  double start, end;  // counterclockwise, 0 to a full turn
  double from, to;    // parameters of the edge there
};

class TurnParts {
 public:
  TurnParts(const std::vector<PLACED_CURVE>& curves, const CURVE_LIMITS& limits,
            std::vector<CoveredPart>& out)
      : m_curves(curves), m_limits(limits), m_out(out), m_grid(limits.same, PNT_2D(0, 0)) {}

  void add(std::size_t curve, std::size_t edge) {
    const EDGE_3D& arc = m_curves[curve].path.edges[edge];
    std::uint32_t circle = static_cast<std::uint32_t>(m_circles.size());
    bool isNew = true;
    // Concentric circles share a cell, which holds them by radius.
    m_grid.find(
        arc.center, [](std::uint32_t) { return true; },
        [&](std::uint32_t center) {
          auto& radii = m_centers[center];
          const auto at = radii.lower_bound(arc.radius - m_limits.same);
          if (at == radii.end() || at->first > arc.radius + m_limits.same) return;
          circle = std::min(circle, at->second);
          isNew = false;
        });
    if (isNew) addCircle(arc, circle);
    addTurns(arc, curve, edge, m_circles[circle]);
  }

  void find() {
    for (std::vector<Turn>& turns : m_circles) {
      std::sort(turns.begin(), turns.end(), [](const Turn& a, const Turn& b) {
        return std::tie(a.start, a.curve, a.edge) < std::tie(b.start, b.curve, b.edge);
      });
      const Turn* furthest = nullptr;
      for (const Turn& turn : turns) {
        if (furthest) take(turn, *furthest);
        if (!furthest || turn.end > furthest->end) furthest = &turn;
      }
    }
  }

 private:
  void addCircle(const EDGE_3D& arc, std::uint32_t circle) {
    m_circles.emplace_back();
    std::uint32_t center = static_cast<std::uint32_t>(m_centers.size());
    m_grid.find(
        arc.center, [](std::uint32_t) { return true; },
        [&](std::uint32_t known) { center = std::min(center, known); });
    if (center == m_centers.size()) {
      m_centers.emplace_back();
      m_grid.add(arc.center, center);
    }
    m_centers[center].emplace(arc.radius, circle);
  }

  // One that passes the positive x axis is two.
  static void addTurns(const EDGE_3D& arc, std::size_t curve, std::size_t edge,
                       std::vector<Turn>& turns) {
    const double sweep = std::fabs(arc.sweep);
    const double low = arc.sweep > 0 ? arc.startAngle : arc.startAngle + arc.sweep;
    double start = std::fmod(low, kTwoPi);
    if (start < 0) start += kTwoPi;
    if (sweep >= kTwoPi) start = 0;
    const double end = std::min(start + sweep, kTwoPi), share = (end - start) / sweep;
    const bool isForward = arc.sweep > 0;
    turns.push_back({curve, edge, start, end, isForward ? 0 : 1 - share, isForward ? share : 1});
    if (start + sweep > kTwoPi)
      turns.push_back({curve, edge, 0, start + sweep - kTwoPi, isForward ? share : 0,
                       isForward ? 1 : 1 - share});
  }

  void take(const Turn& turn, const Turn& cover) {
    const EDGE_3D& arc = m_curves[turn.curve].path.edges[turn.edge];
    const double end = std::min(turn.end, cover.end), common = end - turn.start;
    // One that was split is one again when the parts of a pair are added up.
    if (common * arc.radius <= kLeastPart * m_limits.same) return;
    const double share = common / (turn.end - turn.start) * (turn.to - turn.from);
    const double from = arc.sweep > 0 ? turn.from : turn.to - share, to = from + share;
    m_out.push_back({turn.curve, turn.edge, cover.curve, cover.edge, from, to,
                     arc.at((from + to) / 2), common * arc.radius});
  }

  const std::vector<PLACED_CURVE>& m_curves;
  const CURVE_LIMITS& m_limits;
  std::vector<CoveredPart>& m_out;
  PointGrid m_grid;                                        // of centers
  std::vector<std::map<double, std::uint32_t>> m_centers;  // circles by radius
  std::vector<std::vector<Turn>> m_circles;
};

// Between 0 and the number of groups, whatever the rounding.
double directionOf(const EDGE_3D& edge) {
  const double angle = std::atan2(edge.p2.y - edge.p1.y, edge.p2.x - edge.p1.x);
  const double share = (angle < 0 ? angle + kPi : angle) / kPi;
  return share >= 1 ? 0 : share * kDirections;
}

using CurvePair = std::pair<std::size_t, std::size_t>;

}  // namespace

std::vector<CoveredPart> coveredParts(const std::vector<PLACED_CURVE>& curves,
                                      const CURVE_LIMITS& limits, const std::vector<bool>& isIn) {
  std::vector<CoveredPart> parts;
  std::vector<Straight> lines;
  TurnParts turns(curves, limits, parts);
  for (std::size_t i = 0; i < curves.size(); ++i) {
    if (!isIn[i]) continue;
    const std::vector<EDGE_3D>& edges = curves[i].path.edges;
    for (std::size_t k = 0; k < edges.size(); ++k) {
      if (edges[k].length() <= leastPart(limits)) continue;
      if (edges[k].isArc())
        turns.add(i, k);
      else
        lines.push_back({i, k, directionOf(edges[k])});
    }
  }
  StraightParts(curves, limits, parts).find(std::move(lines));
  turns.find();
  return parts;
}

void findRepeats(const std::vector<PLACED_CURVE>& curves, const CURVE_LIMITS& limits,
                 const std::vector<std::uint32_t>& firsts, std::vector<CURVE_FAULT>& faults) {
  std::vector<bool> isFirst(curves.size());
  for (std::size_t i = 0; i < curves.size(); ++i) {
    isFirst[i] = firsts[i] == i;
    if (isFirst[i]) continue;
    const PATH_3D& path = curves[i].path;
    faults.push_back(
        {CurveFault::Duplicate, {firsts[i], i}, path.edges.front().at(0.5), path.length()});
  }
  std::map<CurvePair, CURVE_FAULT> overlaps;
  for (const CoveredPart& part : coveredParts(curves, limits, isFirst)) {
    const CurvePair pair(std::minmax(part.curve, part.other));
    CURVE_FAULT& fault = overlaps[pair];
    if (fault.curves.empty()) {
      fault = {CurveFault::Overlap, {pair.first}, part.middle, 0};
      if (pair.second != pair.first) fault.curves.push_back(pair.second);
    }
    fault.value += part.length;
  }
  for (auto& [pair, fault] : overlaps)
    if (fault.value > leastPart(limits)) faults.push_back(std::move(fault));
}

}  // namespace vek0::detail
