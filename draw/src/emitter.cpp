// The last step before the painter, which limits and counts. Painters need not handle coordinates
// so large that their own arithmetic would overflow; such primitives are dropped here. Effort is
// measured in points, because a picture of nested arrays can take any time. Costs of another kind
// (a new layer, a long stroke) are converted to points by the constants below.
#include "emitter.h"

#include <algorithm>
#include <cmath>

#include "pointcost.h"

namespace vek0::detail {
namespace {

// Cost of other operations, in points handed over. A new color is a new path, a new layer may be a
// new group in a file.
constexpr double kPointsPerLook = 0.1, kPointsPerItem = 0.25, kPointsPerColor = 3,
                 kPointsPerLayer = 32;

// The cost of a stroke grows with its length, here in pixels per unit of length. Chains cost more,
// because their segments share pixels.
constexpr double kPixelsPerLength = 27, kPixelsPerChainLength = 40;

// A fill is sorted line by line, more finely than pixels.
constexpr double kPixelsPerFillHeight = 150;

// Far outside the device, but products are still finite for painters.
constexpr double kFarthest = 1e150;

bool isNear(double value) { return std::fabs(value) <= kFarthest; }

bool isNear(const PNT_2D& p) { return isNear(p.x) && isNear(p.y); }

bool areNear(const std::vector<PNT_2D>& points) {
  return std::all_of(points.begin(), points.end(), [](const PNT_2D& p) { return isNear(p); });
}

// An infinite, NaN or zero determinant covers every other defect.
bool isSound(const AFFINE_2D& m) {
  const double area = m.a * m.d - m.b * m.c;
  return area != 0 && std::isfinite(area) && isNear({m.e, m.f});
}

}  // namespace

void Emitter::begin(const DrawItem& item) {
  m_item = item;
  // The painter is told of the item only if something of it is emitted.
  m_isTold = false;
}

bool Emitter::tryClip(const std::vector<PNT_2D>& points) {
  const bool isPushed = areNear(points) && m_painter.pushClip(points.data(), points.size());
  // A place counts as drawn only under the same clip.
  ++m_epoch;
  return isPushed;
}

bool Emitter::pushClip(const std::vector<PNT_2D>& points) {
  const bool isPushed = tryClip(points);
  if (!isPushed) noteUnclipped();
  return isPushed;
}

// Without a clip, the view would cover the sheet.
bool Emitter::pushViewClip(const std::vector<PNT_2D>& points) {
  if (tryClip(points)) return true;
  RECT_2D box;
  box.set(points.data(), static_cast<int>(points.size()));
  const bool isPushed =
      tryClip({box.min, PNT_2D(box.max.x, box.min.y), box.max, PNT_2D(box.min.x, box.max.y)});
  ++(isPushed ? m_result.boxed : m_result.blank);
  return isPushed;
}

void Emitter::popClip() {
  m_painter.popClip();
  ++m_epoch;
}

void Emitter::charge(double points) {
  if (!isUnfolding()) return;
  m_effort -= points;
  if (m_effort < 0) m_result.cut = true;
}

double Emitter::pointsOfLine() const {
  return 2 + (m_pixelsPerPoint > 0 ? m_longest * kPixelsPerLength / m_pixelsPerPoint : 0);
}

void Emitter::addEffort(double points) {
  m_effort += points;
  m_allEffort += points;
}

bool Emitter::look() {
  if (m_result.looked >= m_limit || m_result.emitted >= m_limit) m_result.cut = true;
  if (!m_result.cut) ++m_result.looked;
  charge(kPointsPerLook);
  return m_result.cut;
}

bool Emitter::spend(std::size_t points) {
  if (points > m_pointsLeft) m_result.cut = true;
  m_pointsLeft -= std::min(points, m_pointsLeft);
  m_result.points += points;
  charge(static_cast<double>(points));
  return !m_result.cut;
}

bool Emitter::admit() {
  if (m_result.emitted >= m_limit) m_result.cut = true;
  if (m_result.cut) return false;
  if (!m_isTold) tellItem();
  ++m_result.emitted;
  return true;
}

void Emitter::tellItem() {
  charge(kPointsPerItem);
  if (m_item.layer && m_item.layer != m_layer)
    charge(kPointsPerLayer + static_cast<double>(m_item.layer->view().size()));
  m_layer = m_item.layer;
  if (m_item.color != m_color || m_item.width != m_width || m_item.alpha != m_alpha)
    charge(kPointsPerColor);
  m_color = m_item.color;
  m_width = m_item.width;
  m_alpha = m_item.alpha;
  m_painter.begin(m_item);
  m_isTold = true;
}

// A stroke covers its length on the device, with a width of a few pixels.
void Emitter::chargeStroke(const std::vector<PNT_2D>& points, bool closed) {
  if (!isUnfolding() || m_pixelsPerPoint <= 0) return;
  double length = closed ? std::min(points.front().dist(points.back()), m_longest) : 0;
  // Painters clip, so only the part that fits on the device costs time.
  for (std::size_t i = 1; i < points.size(); ++i)
    length += std::min(points[i].dist(points[i - 1]), m_longest);
  const double pixels = points.size() == 2 ? kPixelsPerLength : kPixelsPerChainLength;
  charge(length * pixels / m_pixelsPerPoint);
}

void Emitter::chargeFill(const std::vector<PNT_2D>& points) {
  if (!isUnfolding() || m_pixelsPerPoint <= 0) return;
  RECT_2D box;
  box.set(points.data(), static_cast<int>(points.size()));
  double height = 0;
  for (std::size_t i = 1; i < points.size(); ++i)
    height += std::min(std::fabs(points[i].y - points[i - 1].y), m_longest);
  const double area =
      std::min(box.max.x - box.min.x, m_longest) * std::min(box.max.y - box.min.y, m_longest);
  charge((area + height * kPixelsPerFillHeight) / m_pixelsPerPoint);
}

void Emitter::stroke(const std::vector<PNT_2D>& points, bool closed) {
  if (!spend(points.size()) || points.size() < 2 || !areNear(points) || !admit()) return;
  chargeStroke(points, closed);
  m_painter.stroke(points.data(), points.size(), closed);
}

void Emitter::segments(std::vector<PNT_2D>& points) {
  double length = 0;
  std::size_t count = 0;
  for (std::size_t i = 0; i + 1 < points.size(); i += 2) {
    const PNT_2D from = points[i], to = points[i + 1];
    if (!spend(2) || !isNear(from) || !isNear(to) || !admit()) continue;
    length += std::min(from.dist(to), m_longest);
    points[count++] = from;
    points[count++] = to;
  }
  points.resize(count);
  if (count == 0) return;
  if (m_pixelsPerPoint > 0) charge(length * kPixelsPerLength / m_pixelsPerPoint);
  m_painter.segments(points.data(), count);
}

void Emitter::dashedStroke(const std::vector<PNT_2D>& points, const DrawDashes& dashes,
                           double distance) {
  if (!spend(points.size()) || points.size() < 2 || !areNear(points) || !admit()) return;
  m_painter.dashedStroke(points.data(), points.size(), dashes, distance);
}

bool Emitter::arc(const PNT_2D& center, double radius, double startRad, double sweepRad,
                  const DrawDashes& dashes) {
  const bool near = isNear(center) && isNear({radius, startRad}) && isNear(sweepRad);
  if (!spend(kPointsPerArc) || !near || !admit()) return true;
  const bool isDrawn = dashes.lengths.empty()
                           ? m_painter.arc(center, radius, startRad, sweepRad)
                           : m_painter.dashedArc(center, radius, startRad, sweepRad, dashes);
  if (!isDrawn) {
    --m_result.emitted;
    return false;
  }
  // On a page, a curve takes twice as long as the chords that it is worth.
  const double length = std::min(std::fabs(radius * sweepRad), 4 * m_longest);
  charge(m_pixelsPerPoint > 0 ? length * kPixelsPerChainLength / m_pixelsPerPoint
                              : static_cast<double>(kPointsPerArc));
  return true;
}

void Emitter::fill(const std::vector<PNT_2D>& points, const std::vector<std::size_t>& ends,
                   FillRule rule) {
  if (!spend(points.size()) || points.size() < 3 || !areNear(points) || !admit()) return;
  chargeFill(points);
  ++m_epoch;
  m_painter.fill(points.data(), ends.data(), ends.size(), rule);
}

void Emitter::dot(const PNT_2D& at) {
  charge(1);  // a stroke of no length
  if (spend(1) && isNear(at) && admit()) m_painter.dot(at);
}

bool Emitter::point(const PNT_2D& at) {
  if (!isNear(at) || !admit()) return true;
  if (!m_painter.point(at)) {
    --m_result.emitted;
    return false;
  }
  return spend(1);
}

void Emitter::disc(const PNT_2D& center, double diameter) {
  if (spend(1) && isNear(center) && admit()) m_painter.disc(center, diameter);
}

void Emitter::text(const DrawText& text) {
  const std::size_t letters = text.string->view().size();
  if (spend(kPointsPerLetter * (letters + 1)) && isSound(text.matrix) && admit())
    m_painter.text(text);
}

}  // namespace vek0::detail
