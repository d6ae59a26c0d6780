// Fills a boundary with the lines of a pattern, family by family. In the coordinates of a family,
// lines are parallel to one axis and counted along the other, so that each edge of the boundary
// knows at once which lines it crosses. The crossings of a line, sorted, are the ends of its pieces
// by the even-odd rule, and dashes divide these. The number of pieces is estimated before any is
// made: a dense pattern would fill the memory.
#include "vek0core/hatch/fill.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>

#include "hatch/ringedges.h"
#include "vek0core/hatch/boundary.h"

namespace {

using Points = std::vector<PNT_3D>;

// Lines and periods are counted in doubles, which are exact up to here.
constexpr double kCountLimit = 4503599627370496.0;  // 2^52

// Every family visits every edge, and a file can define hundreds of thousands of both. In practice,
// the largest pattern has some twenty families, the largest boundaries a million edges.
constexpr double kVisitLimit = 1e8;

// Memory limit, independent of the caller's limit.
constexpr double kPieceLimit = 1e9;

// Products of two lengths are finite up to here.
constexpr double kFarthest = 1e150;

// Extent of a boundary in one direction.
struct Range {
  double min, max;
  double length() const { return max - min; }
  double farthest() const { return std::max(std::fabs(min), std::fabs(max)); }
};

// A line family in drawing units, in the coordinate system of its lines: "along" is the coordinate
// in their direction, "across" the one to the left. Lines are counted in the direction of "across",
// whatever the sign of the spacing.
struct Family {
  Family(const HATCH_LINE& line, double scale, double rotate)
      : ux(std::cos(line.angle + rotate)),
        uy(std::sin(line.angle + rotate)),
        // The start rotates with the hatch like the lines, so the hatch's angle cancels out.
        along0(scale * (line.x0 * std::cos(line.angle) + line.y0 * std::sin(line.angle))),
        across0(scale * (line.y0 * std::cos(line.angle) - line.x0 * std::sin(line.angle))),
        shift(scale * (line.dy < 0 ? -line.dx : line.dx)),
        spacing(scale * std::fabs(line.dy)) {
    for (int i = 0; i < line.numDash; ++i) {
      dashStart[i] = period;
      // Negative lengths are gaps, but -0 is a dot like 0.
      isDrawn[i] = !std::signbit(line.dash[i]) || line.dash[i] == 0;
      period += scale * std::fabs(line.dash[i]);
      dashEnd[i] = period;
    }
    numDash = line.numDash;
    // Only the position within a period matters, and a small shift keeps later products exact.
    if (numDash > 0) shift = std::fmod(shift, period);
  }

  double along(const PNT_3D& p) const { return p.x * ux + p.y * uy; }
  double across(const PNT_3D& p) const { return p.y * ux - p.x * uy; }
  double acrossOf(double lineNumber) const { return std::fma(lineNumber, spacing, across0); }

  // Start of a dash period on a line, reduced to near 0: a shift accumulated over millions of lines
  // must not cost digits.
  double phaseOf(double lineNumber) const {
    const double whole = lineNumber * shift;
    // fma yields the rounding error of the product, which is added back after the reduction.
    const double lost = std::fma(lineNumber, shift, -whole);
    return std::fmod(whole, period) + lost + std::fmod(along0, period);
  }

  bool isUsable() const {
    const double lengths[] = {along0, across0, shift, spacing, period};
    if (spacing == 0 || (numDash > 0 && period == 0)) return false;  // scaled to zero
    return std::isfinite(ux) && std::all_of(std::begin(lengths), std::end(lengths), [](double v) {
             return std::fabs(v) <= kFarthest;  // false for NaN
           });
  }

  double ux, uy;
  double along0, across0;
  double shift, spacing;
  double period = 0;
  int numDash;
  double dashStart[6], dashEnd[6];  // from the start of the period
  bool isDrawn[6];
};

bool isValid(const HATCH_LINE& line) {
  return line.dy != 0 && line.numDash >= 0 && line.numDash <= 6;
}

bool isValid(const HATCH_TYPE& type, double scale, double rotate) {
  if (!(scale > 0) || !std::isfinite(scale) || !std::isfinite(rotate)) return false;
  return type.numLines > 0 && type.lines != nullptr &&
         std::all_of(type.lines, type.lines + type.numLines, [&](const HATCH_LINE& line) {
           return isValid(line) && Family(line, scale, rotate).isUsable();
         });
}

template <typename Project>
Range rangeOf(const Points& boundary, Project project) {
  Range range = {project(boundary[0]), project(boundary[0])};
  for (const PNT_3D& p : boundary) {
    range.min = std::min(range.min, project(p));
    range.max = std::max(range.max, project(p));
  }
  return range;
}

// Range of the line numbers that may meet the boundary.
Range lineNumbers(const Family& family, const Range& across) {
  // Rounded outward: a superfluous line crosses no edge, but none may be missing.
  return {std::floor((across.min - family.across0) / family.spacing),
          std::ceil((across.max - family.across0) / family.spacing)};
}

// Number of pieces into which the edges cut the lines: an edge meets one line per spacing, and
// every second crossing starts a piece.
double countCuts(const std::vector<vek0::detail::RingEdge>& edges, const Family& family) {
  double meetings = 0;
  for (const auto& edge : edges) {
    meetings += std::fabs(family.across(*edge.to) - family.across(*edge.from)) / family.spacing;
  }
  return meetings / 2;
}

// Infinite if lines or dashes are too fine to be distinguished.
double estimateFamily(const Points& boundary, const std::vector<vek0::detail::RingEdge>& edges,
                      const Family& family) {
  const Range along = rangeOf(boundary, [&](const PNT_3D& p) { return family.along(p); });
  const Range across = rangeOf(boundary, [&](const PNT_3D& p) { return family.across(p); });
  const double periods = family.numDash > 0 ? along.length() / family.period : 1;
  const bool tellsApart = lineNumbers(family, across).farthest() < kCountLimit &&
                          (family.numDash == 0 || along.farthest() / family.period < kCountLimit);
  if (!tellsApart) return HUGE_VAL;
  // About one piece per line and period in the bounding box, or one per pair of crossings if the
  // boundary is complicated, whichever is more.
  const double lines = across.length() / family.spacing;
  return std::max(std::max(lines, 1.0) * std::max(periods, 1.0), countCuts(edges, family));
}

// Draws one family. Every edge is recorded for all lines that it crosses, line after line in one
// array; sorted along the line, each pair of crossings bounds a piece of the interior.
class FamilyFiller {
 public:
  FamilyFiller(const Family& family, const Points& boundary,
               const std::vector<vek0::detail::RingEdge>& edges, IHatchSink& sink)
      : m_family(family), m_z(boundary[0].z), m_sink(sink) {
    const Range across = rangeOf(boundary, [&](const PNT_3D& p) { return family.across(p); });
    layLines(lineNumbers(family, across));
    for (const auto& edge : edges) addEdge(*edge.from, *edge.to);
  }

  void fill() {
    enterCrossings();
    for (std::size_t line = 0; line < m_across.size(); ++line) fillLine(line);
  }

 private:
  // An edge with its ends in the order in which the family crosses it. Both areas beside an edge
  // treat it identically, whatever their direction, and so cut lines at equal points.
  struct Edge {
    const PNT_3D* from;
    const PNT_3D* to;
    double acrossFrom, acrossTo;
    std::size_t firstLine, endLine;  // the lines with acrossFrom <= across < acrossTo
  };
  struct Crossing {
    double along;
    std::size_t edge;
    bool operator<(const Crossing& c) const {
      // Ties are broken by the edge, so that the result does not depend on the sort.
      return along != c.along ? along < c.along : edge < c.edge;
    }
  };

  void layLines(const Range& numbers) {
    m_firstNumber = numbers.min;
    const auto count = static_cast<std::size_t>(numbers.length()) + 1;
    for (std::size_t i = 0; i < count; ++i) m_across.push_back(m_family.acrossOf(numberOf(i)));
    m_firstCrossing.assign(count + 1, 0);
  }

  double numberOf(std::size_t line) const { return m_firstNumber + static_cast<double>(line); }

  std::size_t firstLineFrom(double across) const {
    const auto line = std::lower_bound(m_across.begin(), m_across.end(), across);
    return static_cast<std::size_t>(line - m_across.begin());
  }

  void addEdge(const PNT_3D& a, const PNT_3D& b) {
    Edge edge = {&a, &b, m_family.across(a), m_family.across(b), 0, 0};
    if (edge.acrossTo < edge.acrossFrom) {
      std::swap(edge.from, edge.to);
      std::swap(edge.acrossFrom, edge.acrossTo);
    }
    // Half-open: a line through a vertex crosses one of the two edges if the boundary passes
    // through it, and none or both if the boundary only touches it.
    edge.firstLine = firstLineFrom(edge.acrossFrom);
    edge.endLine = firstLineFrom(edge.acrossTo);
    if (edge.firstLine < edge.endLine) m_edges.push_back(edge);
  }

  // Counts the crossings of each line, assigns it its part of the array, and fills that.
  void enterCrossings() {
    for (const Edge& edge : m_edges) {
      for (std::size_t line = edge.firstLine; line < edge.endLine; ++line) {
        ++m_firstCrossing[line + 1];
      }
    }
    for (std::size_t line = 1; line < m_firstCrossing.size(); ++line) {
      m_firstCrossing[line] += m_firstCrossing[line - 1];
    }
    m_crossings.resize(m_firstCrossing.back());
    // A counting sort by line: two passes over the edges instead of a vector per line.
    std::vector<std::size_t> next(m_firstCrossing.begin(), m_firstCrossing.end() - 1);
    for (std::size_t i = 0; i < m_edges.size(); ++i) {
      for (std::size_t line = m_edges[i].firstLine; line < m_edges[i].endLine; ++line) {
        m_crossings[next[line]++] = {crossingAlong(m_edges[i], line), i};
      }
    }
  }

  // Fraction of the edge at which the line crosses it: 0 at its start, always less than 1.
  double fractionAt(const Edge& edge, std::size_t line) const {
    return (m_across[line] - edge.acrossFrom) / (edge.acrossTo - edge.acrossFrom);
  }

  double crossingAlong(const Edge& edge, std::size_t line) const {
    const double from = m_family.along(*edge.from);
    return from + fractionAt(edge, line) * (m_family.along(*edge.to) - from);
  }

  // The point on the edge; exact if the edge is parallel to an axis.
  PNT_3D crossingPoint(const Crossing& crossing, std::size_t line) const {
    const Edge& edge = m_edges[crossing.edge];
    const double t = fractionAt(edge, line);
    return {edge.from->x + t * (edge.to->x - edge.from->x),
            edge.from->y + t * (edge.to->y - edge.from->y), m_z};
  }

  // A piece that ends where the next one starts is merged with it: the boundary only touches there.
  void fillLine(std::size_t line) {
    const auto first = m_crossings.begin() + static_cast<std::ptrdiff_t>(m_firstCrossing[line]);
    const auto last = m_crossings.begin() + static_cast<std::ptrdiff_t>(m_firstCrossing[line + 1]);
    std::sort(first, last);
    for (auto start = first; start != last;) {
      auto end = start + 1;
      // The next piece needs both a start and an end.
      while (last - end > 2 && end[1].along == end->along) end += 2;
      if (start->along < end->along) fillSpan(*start, *end, line);
      start = end + 1;
    }
  }

  void fillSpan(const Crossing& start, const Crossing& end, std::size_t line) {
    const PNT_3D from = crossingPoint(start, line), to = crossingPoint(end, line);
    if (m_family.numDash == 0) return drawLine(from, to);
    const double phase = m_family.phaseOf(numberOf(line));
    // One more period on both sides, because divisions round and the last dot of a period may
    // coincide with the start of the next one.
    // Counted in doubles, which kCountLimit keeps exact.
    const double lastPeriod = std::floor((end.along - phase) / m_family.period) + 1;
    for (double period = std::floor((start.along - phase) / m_family.period) - 1;
         period <= lastPeriod; ++period) {
      // Computed from a whole number of periods each time, because sums of dashes would drift.
      const double base = std::fma(period, m_family.period, phase);
      for (int i = 0; i < m_family.numDash; ++i) {
        if (m_family.isDrawn[i]) drawDash(base, i, start.along, end.along, from, to, line);
      }
    }
  }

  void drawDash(double base, int i, double start, double end, const PNT_3D& from, const PNT_3D& to,
                std::size_t line) {
    const double dashStart = base + m_family.dashStart[i], dashEnd = base + m_family.dashEnd[i];
    if (m_family.dashStart[i] == m_family.dashEnd[i]) {
      // Half-open, so that areas that share an edge draw a dot on it only once.
      if (start <= dashStart && dashStart < end) m_sink.dot(pointAt(dashStart, line));
      return;
    }
    if (std::max(dashStart, start) >= std::min(dashEnd, end)) return;
    // Ends on the boundary use the point on the edge, which adjacent areas share to the last bit; a
    // point computed along the line could differ in its last digits.
    drawLine(dashStart <= start ? from : pointAt(dashStart, line),
             dashEnd >= end ? to : pointAt(dashEnd, line));
  }

  PNT_3D pointAt(double along, std::size_t line) const {
    const double across = m_across[line];
    return {along * m_family.ux - across * m_family.uy, along * m_family.uy + across * m_family.ux,
            m_z};
  }

  void drawLine(const PNT_3D& from, const PNT_3D& to) {
    // A dash reduced to a point by rounding would look like a dot of the pattern.
    if (from != to) m_sink.line(from, to);
  }

  const Family& m_family;
  double m_z;
  IHatchSink& m_sink;
  double m_firstNumber = 0;                  // of the first line
  std::vector<double> m_across;              // of each line
  std::vector<Edge> m_edges;                 // those that meet a line
  std::vector<std::size_t> m_firstCrossing;  // of each line; one more for the end
  std::vector<Crossing> m_crossings;
};

HatchEstimate estimate(const HATCH_TYPE& type, double scale, double rotate, const Points& boundary,
                       const std::vector<vek0::detail::RingEdge>& edges) {
  if (!isValid(type, scale, rotate)) return {HatchStatus::BadPattern, 0};
  if (!vek0::detail::hasUsableCoordinates(boundary)) return {HatchStatus::BadBoundary, 0};
  if (edges.empty()) return {HatchStatus::Done, 0};
  if (static_cast<double>(edges.size()) * type.numLines > kVisitLimit) {
    return {HatchStatus::TooDense, 0};
  }
  double pieces = 0;
  for (std::int32_t i = 0; i < type.numLines; ++i) {
    pieces += estimateFamily(boundary, edges, Family(type.lines[i], scale, rotate));
  }
  if (!std::isfinite(pieces)) return {HatchStatus::TooDense, 0};
  return {HatchStatus::Done, pieces};
}

}  // namespace

HatchEstimate estimateHatch(const HATCH_TYPE& type, double scale, double rotate,
                            const Points& boundary) {
  return estimate(type, scale, rotate, boundary, vek0::detail::ringEdges(boundary));
}

HatchStatus fillHatch(const HATCH_TYPE& type, double scale, double rotate, const Points& boundary,
                      double limit, IHatchSink& sink) {
  const std::vector<vek0::detail::RingEdge> edges = vek0::detail::ringEdges(boundary);
  const HatchEstimate expected = estimate(type, scale, rotate, boundary, edges);
  if (expected.status != HatchStatus::Done) return expected.status;
  if (!(expected.pieces <= std::min(limit, kPieceLimit))) return HatchStatus::TooDense;
  for (std::int32_t i = 0; i < type.numLines && !edges.empty(); ++i) {
    const Family family(type.lines[i], scale, rotate);
    FamilyFiller(family, boundary, edges, sink).fill();
  }
  return HatchStatus::Done;
}
