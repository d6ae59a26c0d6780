#include "emitter.h"

#include <algorithm>
#include <cmath>

namespace vek0::detail {
namespace {

constexpr std::size_t kPointsPerLetter = 16;  // about what painting one costs
constexpr std::size_t kPointsPerArc = 16;

// Far off the device, and painters can still multiply what they are given.
constexpr double kFarthest = 1e150;

bool isNear(double value) { return std::fabs(value) <= kFarthest; }

bool isNear(const PNT_2D& p) { return isNear(p.x) && isNear(p.y); }

bool areNear(const std::vector<PNT_2D>& points) {
  return std::all_of(points.begin(), points.end(), [](const PNT_2D& p) { return isNear(p); });
}

// An infinite or missing determinant tells of every other fault too.
bool isSound(const AFFINE_2D& m) {
  const double area = m.a * m.d - m.b * m.c;
  return area != 0 && std::isfinite(area) && isNear({m.e, m.f});
}

}  // namespace

void Emitter::begin(const DrawItem& item) {
  m_item = item;
  m_isTold = false;
}

bool Emitter::pushClip(const std::vector<PNT_2D>& points) {
  const bool isPushed = areNear(points) && m_painter.pushClip(points.data(), points.size());
  if (!isPushed) noteUnclipped();
  return isPushed;
}

bool Emitter::look() {
  if (m_result.looked >= m_limit || m_result.emitted >= m_limit) m_result.cut = true;
  if (!m_result.cut) ++m_result.looked;
  return m_result.cut;
}

bool Emitter::spend(std::size_t points) {
  if (points > m_pointsLeft) m_result.cut = true;
  m_pointsLeft -= std::min(points, m_pointsLeft);
  return !m_result.cut;
}

bool Emitter::admit() {
  if (m_result.emitted >= m_limit) m_result.cut = true;
  if (m_result.cut) return false;
  if (!m_isTold) m_painter.begin(m_item);
  m_isTold = true;
  ++m_result.emitted;
  return true;
}

void Emitter::stroke(const std::vector<PNT_2D>& points, bool closed) {
  if (!spend(points.size()) || points.size() < 2 || !areNear(points) || !admit()) return;
  m_painter.stroke(points.data(), points.size(), closed);
}

bool Emitter::arc(const PNT_2D& center, double radius, double startRad, double sweepRad) {
  const bool near = isNear(center) && isNear({radius, startRad}) && isNear(sweepRad);
  if (!spend(kPointsPerArc) || !near || !admit()) return true;
  if (m_painter.arc(center, radius, startRad, sweepRad)) return true;
  --m_result.emitted;
  return false;
}

void Emitter::fill(const std::vector<PNT_2D>& points, const std::vector<std::size_t>& ends,
                   FillRule rule) {
  if (!spend(points.size()) || points.size() < 3 || !areNear(points) || !admit()) return;
  m_painter.fill(points.data(), ends.data(), ends.size(), rule);
}

void Emitter::dot(const PNT_2D& at) {
  if (spend(1) && isNear(at) && admit()) m_painter.dot(at);
}

void Emitter::disc(const PNT_2D& center, double diameter) {
  if (spend(1) && isNear(center) && admit()) m_painter.disc(center, diameter);
}

void Emitter::text(const DrawText& text) {
  const std::size_t letters = text.string->view().size();
  if (spend(kPointsPerLetter * letters) && isSound(text.matrix) && admit()) m_painter.text(text);
}

}  // namespace vek0::detail
