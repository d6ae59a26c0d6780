#include "vek0core/polyline/silhouettepieces.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

// Vertices in the pieces after the first. Such pieces fit into the processor's cache, and into
// memory that is not returned to the system each time.
constexpr std::size_t kMostNext = 2048;

// Maximum distance of a joint's outline from its vertex, in widths: that of a miter's corner, and
// much less where the turn is below a right angle and the width hardly changes.
constexpr double kSharpReach = 4.01, kBluntReach = 0.8;
constexpr double kEvenTaper = 0.2;  // change of the width along a segment, relative to its length

bool isEven(const WIDE_VERTEX& v, const PNT_3D& way) {
  const double change = v.widthEnd - v.widthStart;
  return change * change <= kEvenTaper * kEvenTaper * (way.x * way.x + way.y * way.y);
}

bool isWithin(const WIDE_VERTEX* joint, const RECT_3D& box) {
  const PNT_3D &at = joint[1].pnt, before = at - joint[0].pnt, after = joint[2].pnt - at;
  const bool isBlunt = before.x * after.x + before.y * after.y > 0 && isEven(joint[0], before) &&
                       isEven(joint[1], after);
  // The widest of both segments at the vertex bounds either side of the joint.
  const double width = std::max(std::fabs(joint[0].widthEnd), std::fabs(joint[1].widthStart));
  const double reach = width * (isBlunt ? kBluntReach : kSharpReach);
  return at.x - reach >= box.min.x && at.x + reach <= box.max.x && at.y - reach >= box.min.y &&
         at.y + reach <= box.max.y && at.z >= box.min.z && at.z <= box.max.z;
}

}  // namespace

CSilhouettePieces::CSilhouettePieces(Sink sink, std::size_t mostVertexes)
    : m_sink(std::move(sink)), m_most(mostVertexes) {}

void CSilhouettePieces::add(const WIDE_VERTEX& vertex) {
  if (m_vertexes.size() >= m_most) passOn();
  m_vertexes.push_back(vertex);
}

// Passes on the stretches of vertices whose joints are not within the box, each with a neighbor on
// either side.
void CSilhouettePieces::passOnOutside() {
  if (!m_box || m_vertexes.size() < 3) return m_sink(CPolylineSilhouette(m_vertexes, false));
  const WIDE_VERTEX* const vertexes = m_vertexes.data();
  const std::size_t last = m_vertexes.size() - 1;
  for (std::size_t i = 1; i < last; ++i) {
    const std::size_t first = i - 1;
    while (i < last && !isWithin(vertexes + i - 1, *m_box)) ++i;
    if (i > first + 1) m_sink(CPolylineSilhouette({vertexes + first, vertexes + i + 1}, false));
  }
}

// Keeps the last segment with a length, which the next joint needs; later vertices are at its end.
void CSilhouettePieces::passOn() {
  passOnOutside();
  m_most = std::min(m_most, kMostNext);
  const auto isSegment = [](const WIDE_VERTEX& a, const WIDE_VERTEX& b) {
    return std::hypot(b.pnt.x - a.pnt.x, b.pnt.y - a.pnt.y) > 0;
  };
  std::vector<WIDE_VERTEX> kept;
  for (std::size_t i = m_vertexes.size() - 1; i > 0 && kept.empty(); --i)
    if (isSegment(m_vertexes[i - 1], m_vertexes[i])) kept.push_back(m_vertexes[i - 1]);
  kept.push_back(m_vertexes.back());
  // The first segment of a closed polyline is repeated at the end, to join it with the last.
  if (m_first.empty() && kept.size() == 2) {
    const auto first = std::adjacent_find(m_vertexes.begin(), m_vertexes.end(), isSegment);
    m_first.assign(first, first + 2);
  }
  m_vertexes.swap(kept);
}

void CSilhouettePieces::finish(bool closed) {
  const bool isWhole = m_first.empty();
  if (closed && !isWhole)
    for (const WIDE_VERTEX& vertex : m_first) add(vertex);
  if (isWhole) return m_sink(CPolylineSilhouette(m_vertexes, closed));
  passOnOutside();
  m_sink(CPolylineSilhouette(
      {m_vertexes.end() - std::min<std::ptrdiff_t>(2, m_vertexes.end() - m_vertexes.begin()),
       m_vertexes.end()},
      false));
}
