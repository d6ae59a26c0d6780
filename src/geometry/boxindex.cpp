#include "geometry/boxindex.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>

namespace vek0::detail {
namespace {

// More cells would not improve the tree; 16 bits per axis fit a 32-bit code.
constexpr double kCells = 65535;  // per axis, only for the order

// Spreads 16 bits to the even places of 32.
std::uint32_t spread(std::uint32_t v) {
  v = (v | (v << 8)) & 0x00ff00ffu;
  v = (v | (v << 4)) & 0x0f0f0f0fu;
  v = (v | (v << 2)) & 0x33333333u;
  return (v | (v << 1)) & 0x55555555u;
}

std::uint32_t cellOf(double v, double low, double high) {
  const double share = high > low ? (v - low) / (high - low) : 0;
  // A box with NaN or infinite coordinates falls into cell 0, where it is found like any other.
  return share >= 0 && share <= 1 ? static_cast<std::uint32_t>(share * kCells) : 0;
}

// Halved before adding, so that large coordinates do not overflow.
PNT_2D middle(const RECT_2D& b) { return {b.min.x / 2 + b.max.x / 2, b.min.y / 2 + b.max.y / 2}; }

}  // namespace

BoxIndex::BoxIndex(const std::vector<RECT_2D>& boxes) : m_order(boxes.size()) {
  RECT_2D all;
  all.initRegion();
  for (const RECT_2D& box : boxes) all.updateRegion(middle(box));
  std::vector<std::uint32_t> codes(boxes.size());
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    const PNT_2D p = middle(boxes[i]);
    codes[i] = spread(cellOf(p.x, all.min.x, all.max.x)) | spread(cellOf(p.y, all.min.y, all.max.y))
                                                               << 1;
  }
  std::iota(m_order.begin(), m_order.end(), 0u);
  // Neighbors along the curve of interleaved bits are neighbors in the plane, so nodes stay
  // compact.
  std::stable_sort(m_order.begin(), m_order.end(),
                   [&](std::uint32_t a, std::uint32_t b) { return codes[a] < codes[b]; });

  constexpr double inf = std::numeric_limits<double>::infinity();
  m_leaves = std::bit_ceil(std::max<std::size_t>(boxes.size(), 1));
  // Nodes without boxes are inside out, so no query meets them.
  m_nodes.assign(2 * m_leaves, Node{inf, inf, -inf, -inf});
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    const RECT_2D& b = boxes[m_order[i]];
    m_nodes[m_leaves + i] = {b.min.x, b.min.y, b.max.x, b.max.y};
  }
  for (std::size_t i = m_leaves - 1; i > 0; --i) {
    const Node &l = m_nodes[2 * i], &r = m_nodes[2 * i + 1];
    m_nodes[i] = {std::min(l.x1, r.x1), std::min(l.y1, r.y1), std::max(l.x2, r.x2),
                  std::max(l.y2, r.y2)};
  }
}

}  // namespace vek0::detail
