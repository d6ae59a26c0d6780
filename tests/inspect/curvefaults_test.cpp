// Faults of curves: cases drawn by hand, and laws that compare random sets with all pairs.

#include "support/test.h"

using vek0::detail::kPi;

namespace {

using Curves = std::vector<PLACED_CURVE>;

constexpr CURVE_LIMITS kLimits{0.5, 0.05, 1e-6};

const char* nameOf(CurveFault fault) {
  static constexpr const char* names[] = {"open",       "duplicate", "overlap", "crossing",
                                          "zerolength", "tiny",      "unclosed"};
  return names[static_cast<int>(fault)];
}

// "0,0 4,0" a chain of lines, "0,0 4,0 4,4 close" a ring, "circle 0,0 5", "arc 0,0 5 0 90" by
// degrees.
PATH_3D pathOf(const std::string& text) {
  std::istringstream words(text);
  std::vector<PNT_3D> points;
  std::vector<double> numbers;
  std::string kind, word;
  bool isClosed = false;
  for (; words >> word; isClosed = word == "close") {
    const std::size_t comma = word.find(',');
    if (comma != std::string::npos)
      points.emplace_back(std::stod(word), std::stod(word.substr(comma + 1)), 0);
    else if (std::isalpha(static_cast<unsigned char>(word[0])))
      kind = word;
    else
      numbers.push_back(std::stod(word));
  }
  if (kind == "circle") return PATH_3D(CIRCLE_3D(points[0].x, points[0].y, 0, numbers[0]));
  if (kind == "arc")
    return PATH_3D(ARC_3D(points[0].x, points[0].y, 0, numbers[0], numbers[1] * kPi / 180,
                          numbers[2] * kPi / 180));
  return PATH_3D(points, {}, isClosed);
}

// "open 0,1 0.2|tiny 3 0.01"
std::string textOf(const CURVE_FAULTS& found) {
  std::ostringstream text;
  for (const CURVE_FAULT& fault : found.faults) {
    text << (text.tellp() > 0 ? "|" : "") << nameOf(fault.fault) << ' ';
    for (const std::size_t i : fault.curves) text << (i == fault.curves.front() ? "" : ",") << i;
    if (fault.fault != CurveFault::SelfIntersection)
      text << ' ' << std::round(fault.value * 1e4) / 1e4;
  }
  return text.str();
}

// Turned, so that nothing lies on an axis or at a round number.
Curves curvesOf(const std::vector<PATH_3D>& paths, double angleRad) {
  Curves curves;
  for (const PATH_3D& path : paths) {
    PLACED_CURVE curve;
    const auto turned = [&](const PNT_3D& p) {
      return PNT_3D(p.x * std::cos(angleRad) - p.y * std::sin(angleRad),
                    p.x * std::sin(angleRad) + p.y * std::cos(angleRad), 0);
    };
    curve.path.closed = path.closed;
    for (const EDGE_3D& edge : path.edges) {
      const PNT_3D center = turned(PNT_3D(edge.center.x, edge.center.y, 0));
      if (edge.isArc())
        curve.path.edges.emplace_back(PNT_2D(center.x, center.y), edge.radius,
                                      edge.startAngle + angleRad, edge.sweep, 0, 0);
      else
        curve.path.edges.emplace_back(turned(edge.p1), turned(edge.p2));
    }
    curves.push_back(std::move(curve));
  }
  return curves;
}

std::size_t count(const CURVE_FAULTS& found, CurveFault fault) {
  return static_cast<std::size_t>(
      std::count_if(found.faults.begin(), found.faults.end(),
                    [fault](const CURVE_FAULT& each) { return each.fault == fault; }));
}

double sum(const CURVE_FAULTS& found, CurveFault fault) {
  double total = 0;
  for (const CURVE_FAULT& each : found.faults) total += each.fault == fault ? each.value : 0;
  return total;
}

// Lengths along one line or circle, covered at least once.
double covered(std::vector<std::pair<double, double>> parts) {
  std::sort(parts.begin(), parts.end());
  double total = 0, end = -1e9;
  for (const auto& [from, to] : parts) {
    total += std::max(0.0, to - std::max(from, end));
    end = std::max(end, to);
  }
  return total;
}

}  // namespace

TEST(CurveFaults, AreThoseOfTheTable) {
  for (const Row& t : rows()) {
    std::vector<PATH_3D> paths;
    for (const std::string& text : t.list("curves")) paths.push_back(pathOf(text));
    for (const double angleRad : {0.0, 1.0})
      EXPECT_EQ(textOf(findCurveFaults(curvesOf(paths, angleRad), kLimits)), t.text("faults"));
  }
}

TEST(CurveFaults, RepeatedLengthIsThatOfAllPairs) {
  std::mt19937 random(7);
  for (const int round : rounds(60)) {
    std::set<std::array<int, 5>> shapes;
    std::vector<PATH_3D> paths;
    std::map<std::array<int, 4>, std::vector<std::pair<double, double>>> carriers;
    double length = 0, repeated = 0;
    for (int i = 0; i < 80; ++i) {
      // Steps along a row, a column or a diagonal, or quarters of a circle.
      const int way = static_cast<int>(random() % 4), x = static_cast<int>(random() % 4);
      const int from = static_cast<int>(random() % 4), steps = static_cast<int>(random() % 4) + 1;
      const int dx = way == 1 ? 0 : 1, dy = way == 0 ? 0 : way == 1 ? 1 : -1;
      PATH_3D path;
      if (way < 3) {
        const PNT_3D a(way == 0   ? from
                       : way == 1 ? x
                                  : from,
                       way == 0 ? x : from * dy + (dx ? x : 0), 0);
        path = PATH_3D(LINE_3D(a, PNT_3D(a.x + steps * dx, a.y + steps * dy, 0)));
        if (random() % 2 == 0) path = path.reversed();
      } else {
        path = PATH_3D(ARC_3D(x, 9, 0, 1, from * kPi / 2, (from + steps) * kPi / 2));
        if (steps == 4) path = PATH_3D(CIRCLE_3D(x, 9, 0, 1));
      }
      paths.push_back(path);
      const bool isCircle = way == 3 && steps == 4;
      if (!shapes.insert({way, x, isCircle ? 0 : from, steps, 0}).second) {
        repeated += path.length();
        continue;
      }
      length += path.length();
      auto& parts = carriers[{way, x, 0, 0}];
      const double unit = path.length() / steps;
      for (int step = from; step < from + steps; ++step) {
        const int at = way == 3 ? step % 4 : step;
        parts.emplace_back(at * unit, (at + 1) * unit);
      }
    }
    double once = 0;
    for (const auto& [carrier, parts] : carriers) once += covered(parts);
    const Curves curves = curvesOf(paths, round * 0.37);
    // Without a least length, since parts of circles are cut at an axis.
    const CURVE_FAULTS found = findCurveFaults(curves, {kLimits.gap, 0, kLimits.same});
    EXPECT_EQ(count(found, CurveFault::Duplicate), paths.size() - shapes.size());
    EXPECT_NEAR(sum(found, CurveFault::Duplicate), repeated, 1e-6);
    EXPECT_NEAR(sum(found, CurveFault::Overlap), length - once, 1e-6);
  }
}

TEST(CurveFaults, GapsAreTheNearestOfAllPairsOfEnds) {
  std::mt19937 random(8);
  std::uniform_real_distribution<double> place(0, 12);
  for ([[maybe_unused]] const int round : rounds(60)) {
    std::vector<PATH_3D> paths;
    for (int i = 0; i < 30; ++i) {
      const PNT_3D a(place(random), place(random), 0), b(place(random), place(random), 0);
      if (a.dist(b) > 2) paths.emplace_back(LINE_3D(a, b));
    }
    struct Pair {
      double distance;
      std::size_t a, b;
    };
    const auto end = [&](std::size_t i) {
      return i % 2 ? paths[i / 2].end() : paths[i / 2].start();
    };
    std::vector<Pair> pairs;
    for (std::size_t a = 0; a < 2 * paths.size(); ++a)
      for (std::size_t b = a + 1; b < 2 * paths.size(); ++b)
        if (const double distance = end(a).dist(end(b)); distance <= kLimits.gap)
          pairs.push_back({distance, a, b});
    std::sort(pairs.begin(), pairs.end(),
              [](const Pair& a, const Pair& b) { return a.distance < b.distance; });
    std::set<std::size_t> used;
    std::vector<double> gaps, found;
    for (const Pair& pair : pairs)
      if (used.count(pair.a) + used.count(pair.b) == 0) {
        used.insert({pair.a, pair.b});
        gaps.push_back(pair.distance);
      }
    for (const CURVE_FAULT& fault : findCurveFaults(curvesOf(paths, 0), kLimits).faults)
      if (fault.fault == CurveFault::OpenContour && fault.value <= kLimits.gap)
        found.push_back(fault.value);
    EXPECT_EQ(found, gaps);
  }
}

TEST(CurveFaults, CrossingsAreThoseOfAllPairsOfEdges) {
  std::mt19937 random(9);
  std::uniform_real_distribution<double> place(0, 10), bulge(-0.8, 0.8);
  for ([[maybe_unused]] const int round : rounds(60)) {
    // Closed rings, some of them of separate pieces.
    std::vector<PATH_3D> paths;
    std::vector<std::vector<EDGE_3D>> rings;
    for (int i = 0; i < 12; ++i) {
      std::vector<PNT_3D> points;
      std::vector<double> bulges;
      for (int k = 0; k < 4; ++k) {
        points.emplace_back(place(random), place(random), 0);
        bulges.push_back(random() % 2 ? 0 : bulge(random));
      }
      const PATH_3D ring(points, bulges, true);
      rings.push_back(ring.edges);
      if (i % 2 == 0) paths.push_back(ring);
      for (std::size_t k = 0; i % 2 == 1 && k < ring.edges.size(); ++k)
        paths.emplace_back(k % 2 ? ring.edges[k] : ring.edges[k].reversed());
    }
    std::size_t expected = 0;
    for (std::size_t i = 0; i < rings.size(); ++i)
      for (std::size_t j = i; j < rings.size(); ++j)
        for (std::size_t a = 0; a < rings[i].size(); ++a)
          for (std::size_t b = i == j ? a + 1 : 0; b < rings[j].size(); ++b) {
            std::vector<EDGE_CROSSING> all;
            rings[i][a].intersect(rings[j][b], all, 1e-9);
            for (const EDGE_CROSSING& each : all)
              expected += each.t > 0 && each.t < 1 && each.u > 0 && each.u < 1 ? 1 : 0;
          }
    EXPECT_EQ(count(findCurveFaults(curvesOf(paths, 0), kLimits), CurveFault::SelfIntersection),
              expected);
  }
}
