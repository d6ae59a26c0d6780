#include "inspect/chains.h"

#include <algorithm>
#include <numeric>

#include "geometry/pointgrid.h"

namespace vek0::detail {
namespace {

// Of the ends near an open one; further ones are not its nearest.
constexpr std::size_t kNearest = 8;

}  // namespace

DisjointSets::DisjointSets(std::size_t count) : m_parents(count) {
  std::iota(m_parents.begin(), m_parents.end(), 0u);
}

std::uint32_t DisjointSets::find(std::uint32_t i) {
  while (m_parents[i] != i) {
    m_parents[i] = m_parents[m_parents[i]];
    i = m_parents[i];
  }
  return i;
}

void DisjointSets::unite(std::uint32_t a, std::uint32_t b) {
  a = find(a);
  b = find(b);
  m_parents[std::max(a, b)] = std::min(a, b);
}

bool isLoop(const PATH_3D& path, double same) {
  return path.closed || path.start().PNT_2D::dist(path.end()) <= same;
}

Chains::Chains(const std::vector<PLACED_CURVE>& curves, const CURVE_LIMITS& limits,
               const std::vector<std::uint32_t>& groups)
    : m_curves(curves),
      m_limits(limits),
      m_groups(groups),
      m_nodes(2 * curves.size(), kNone),
      m_isPaired(2 * curves.size(), false) {
  if (!curves.empty()) m_origin = curves.front().path.start();
  meet();
  pairEnds();
}

PNT_2D Chains::pointOf(std::uint32_t end) const {
  const PATH_3D& path = m_curves[end / 2].path;
  return end % 2 == 0 ? path.start() : path.end();
}

std::uint32_t Chains::next(std::uint32_t end) const {
  if (m_nodes[end] == kNone) return kNone;
  const Node& node = m_all[m_nodes[end]];
  if (node.degree != 2) return kNone;
  return node.first == end ? node.last : node.first;
}

bool Chains::isFree(std::uint32_t end) const {
  return m_nodes[end] != kNone && m_all[m_nodes[end]].degree == 1;
}

void Chains::meet() {
  // Numbers of points: ends that stand for a node. Two nodes of one end become one.
  PointGrid grid(m_limits.same, m_origin);
  std::vector<std::uint32_t> nodeOfPoint;
  DisjointSets nodes(m_nodes.size());
  std::vector<std::uint32_t> groupOfPoint;
  for (std::uint32_t end = 0; end < m_nodes.size(); ++end) {
    const PATH_3D& path = m_curves[end / 2].path;
    const std::uint32_t group = m_groups[end / 2];
    if (group == 0 || path.closed || path.length() <= m_limits.same) continue;
    const PNT_2D p = pointOf(end);
    std::uint32_t own = kNone;
    grid.find(
        p, [](std::uint32_t) { return true; },
        [&](std::uint32_t point) {
          if (groupOfPoint[point] != group) return;
          if (own == kNone)
            own = nodeOfPoint[point];
          else
            nodes.unite(own, nodeOfPoint[point]);
        });
    if (own == kNone) {
      own = static_cast<std::uint32_t>(nodeOfPoint.size());
      grid.add(p, own);
      nodeOfPoint.push_back(own);
      groupOfPoint.push_back(group);
    }
    m_nodes[end] = own;
  }
  m_all.resize(nodeOfPoint.size());
  for (std::uint32_t end = 0; end < m_nodes.size(); ++end) {
    if (m_nodes[end] == kNone) continue;
    Node& node = m_all[m_nodes[end] = nodes.find(m_nodes[end])];
    if (node.degree++ == 0) node.first = end;
    node.last = end;
  }
}

bool Chains::isOwnOther(std::uint32_t end, std::uint32_t node, double distance) const {
  return m_nodes[end ^ 1] == node && m_curves[end / 2].path.length() < kLeastTurns * distance;
}

void Chains::pairEnds() {
  if (!(m_limits.gap > m_limits.same)) return;
  PointGrid grid(m_limits.gap, m_origin);
  // The last one added is found first.
  for (std::size_t i = m_all.size(); i-- > 0;)
    if (m_all[i].degree > 0) grid.add(pointOf(m_all[i].first), static_cast<std::uint32_t>(i));
  std::vector<Gap> found, near;
  for (std::uint32_t end = 0; end < m_nodes.size(); ++end) {
    if (!isFree(end)) continue;
    near.clear();
    const PNT_2D p = pointOf(end);
    grid.find(
        p, [](std::uint32_t) { return true; },
        [&](std::uint32_t node) {
          const std::uint32_t other = m_all[node].first;
          const double distance = p.dist(pointOf(other));
          if (node == m_nodes[end] || m_groups[other / 2] != m_groups[end / 2]) return;
          if (!isOwnOther(end, node, distance)) near.push_back({end, other, distance});
        });
    const auto comesFirst = [](const Gap& a, const Gap& b) {
      return a.size != b.size ? a.size < b.size : a.other < b.other;
    };
    std::sort(near.begin(), near.end(), comesFirst);
    if (near.size() > kNearest) near.resize(kNearest);
    found.insert(found.end(), near.begin(), near.end());
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const Gap& a, const Gap& b) { return a.size < b.size; });
  for (const Gap& gap : found) {
    if (m_isPaired[gap.end] || m_isPaired[gap.other]) continue;
    m_isPaired[gap.end] = true;
    // Several ends may lie near a place where others meet.
    if (isFree(gap.other)) m_isPaired[gap.other] = true;
    m_gaps.push_back(gap);
  }
}

}  // namespace vek0::detail
