#include "vek0core/inspect/curvefaults.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "inspect/chains.h"
#include "inspect/crossings.h"
#include "inspect/repeats.h"

namespace vek0::detail {
namespace {

// Shares of the extent, as the header states them.
constexpr double kGap = 1e-4, kTiny = 1e-5, kSame = 1e-7;

PNT_2D between(const PNT_2D& a, const PNT_2D& b) { return {(a.x + b.x) / 2, (a.y + b.y) / 2}; }

std::vector<std::size_t> inOrder(std::size_t a, std::size_t b) {
  if (a == b) return {a};
  return {std::min(a, b), std::max(a, b)};
}

PNT_2D middleOf(const PATH_3D& path) {
  const RECT_2D box = path.bdry();
  return between(PNT_2D(box.min.x, box.min.y), PNT_2D(box.max.x, box.max.y));
}

// Curves that meet or nearly do, by their first.
class OpenChains {
 public:
  OpenChains(const std::vector<PLACED_CURVE>& curves, const Chains& chains)
      : m_curves(curves), m_chains(chains), m_sets(curves.size()) {}

  void find(std::vector<CURVE_FAULT>& faults) {
    for (const Chains::Gap& gap : m_chains.gaps()) {
      m_sets.unite(gap.end / 2, gap.other / 2);
      const PNT_2D middle = between(m_chains.pointOf(gap.end), m_chains.pointOf(gap.other));
      faults.push_back(
          {CurveFault::OpenContour, inOrder(gap.end / 2, gap.other / 2), middle, gap.size});
    }
    m_chains.forEachMeeting(
        [this](std::uint32_t a, std::uint32_t b) { m_sets.unite(a / 2, b / 2); });
    collect();
    for (std::size_t i = 0; i < m_all.size(); ++i)
      if (!m_all[i].ends.empty()) faults.push_back(faultOf(m_all[i]));
  }

 private:
  struct Chain {
    std::vector<std::size_t> curves;
    std::vector<std::uint32_t> ends;  // open ones that are not paired
  };

  void collect() {
    std::vector<std::uint32_t> placeOf(m_curves.size(), Chains::kNone);
    for (std::uint32_t i = 0; i < m_curves.size(); ++i) {
      if (!m_chains.isOpen(i)) continue;
      std::uint32_t& place = placeOf[m_sets.find(i)];
      if (place == Chains::kNone) {
        place = static_cast<std::uint32_t>(m_all.size());
        m_all.emplace_back();
      }
      m_all[place].curves.push_back(i);
      for (const std::uint32_t end : {2 * i, 2 * i + 1})
        if (m_chains.isFree(end) && !m_chains.isPaired(end)) m_all[place].ends.push_back(end);
    }
  }

  CURVE_FAULT faultOf(Chain& chain) const {
    const std::uint32_t first = chain.ends.front();
    std::uint32_t other = first ^ 1;
    double least = std::numeric_limits<double>::infinity();
    const PNT_2D p = m_chains.pointOf(first);
    for (const std::uint32_t end : chain.ends) {
      const double distance = p.dist(m_chains.pointOf(end));
      if (end == first || distance >= least) continue;
      least = distance;
      other = end;
    }
    const PNT_2D q = m_chains.pointOf(other);
    return {CurveFault::OpenContour, std::move(chain.curves), between(p, q), p.dist(q)};
  }

  const std::vector<PLACED_CURVE>& m_curves;
  const Chains& m_chains;
  DisjointSets m_sets;
  std::vector<Chain> m_all;
};

void findShort(const std::vector<PLACED_CURVE>& curves, const CURVE_LIMITS& limits,
               std::vector<CURVE_FAULT>& faults) {
  for (std::size_t i = 0; i < curves.size(); ++i) {
    const PATH_3D& path = curves[i].path;
    const double length = path.length();
    const bool isZero = length <= limits.same;
    if (isZero || length < limits.tiny)
      faults.push_back(
          {isZero ? CurveFault::ZeroLength : CurveFault::Tiny, {i}, middleOf(path), length});
  }
}

void findUnclosed(const std::vector<PLACED_CURVE>& curves, const CURVE_LIMITS& limits,
                  std::vector<CURVE_FAULT>& faults) {
  for (std::size_t i = 0; i < curves.size(); ++i) {
    const PATH_3D& path = curves[i].path;
    const PNT_2D start = path.start(), end = path.end();
    const double gap = start.dist(end), length = path.length();
    const bool isRing = !path.closed && gap <= std::max(limits.gap, limits.same) &&
                        length > std::max(kLeastTurns * gap, limits.same);
    // A line there and back encloses nothing.
    if (isRing && std::fabs(path.area()) > limits.same * length)
      faults.push_back({CurveFault::UnclosedRing, {i}, between(start, end), gap});
  }
}

}  // namespace
}  // namespace vek0::detail

CURVE_LIMITS defaultLimits(const std::vector<PLACED_CURVE>& curves) {
  using namespace vek0::detail;
  RECT_2D box;
  box.initRegion();
  for (const PLACED_CURVE& curve : curves) box.updateRegion(curve.path.bdry());
  const double size =
      box.validRegion() ? std::max(box.max.x - box.min.x, box.max.y - box.min.y) : 0;
  return {kGap * size, kTiny * size, std::max(kSame * size, std::numeric_limits<double>::min())};
}

CURVE_FAULTS findCurveFaults(const std::vector<PLACED_CURVE>& curves, const CURVE_LIMITS& limits) {
  using namespace vek0::detail;
  CURVE_FAULTS found;
  // A repeated side would close no contour: where it ends, three curves would meet.
  const std::vector<std::uint32_t> firsts = firstOfSame(curves, limits.same);
  std::vector<std::uint32_t> groups(curves.size());
  for (std::size_t i = 0; i < curves.size(); ++i) groups[i] = firsts[i] == i ? 1 : 0;
  const Chains chains(curves, limits, groups);
  OpenChains(curves, chains).find(found.faults);
  findRepeats(curves, limits, firsts, found.faults);
  found.isCut = !findCrossings(curves, chains, limits, found.faults);
  findShort(curves, limits, found.faults);
  findUnclosed(curves, limits, found.faults);
  return found;
}
