// Points are drawn as the variables of the drawing say: the low bits of the mode choose a figure,
// two more add a circle and a square around it. Sizes are either in drawing units or a percentage
// of the window.
#include "pointfigure.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "vek0core/geometry/angle.h"

namespace vek0::detail {
namespace {

enum Middle : long { kDot = 0, kNothing = 1, kPlus = 2, kCross = 3, kUpward = 4 };
constexpr long kMiddleBits = 7, kCircleBit = 32, kSquareBit = 64;
constexpr double kUsualPercent = 5;  // of the window's height, where the size is 0
constexpr int kChords = 32;          // of a circle, for painters without arcs

double sizeOf(double pointSize, double unit, double height) {
  if (pointSize > 0) return pointSize * unit;
  return (pointSize < 0 ? -pointSize : kUsualPercent) / 100 * height;
}

}  // namespace

PointFigure::PointFigure(const CDataVariables& vars, double unit, double height, double least)
    : m_middle(vars.getPointMode() & kMiddleBits),
      m_hasCircle((vars.getPointMode() & kCircleBit) != 0),
      m_hasSquare((vars.getPointMode() & kSquareBit) != 0),
      m_size(std::max(sizeOf(vars.getPointSize(), unit, height), least)),
      m_least(least),
      m_reach(least) {
  if (m_middle > kUpward) m_middle = kDot;
  const bool isCrossed = m_middle == kPlus || m_middle == kCross;
  const bool isFramed = m_hasCircle || m_hasSquare || m_middle == kUpward;
  if (isFramed) m_reach = std::max(m_least, m_size / 2);
  if (isCrossed) m_reach = std::max(m_least, m_size);
}

void PointFigure::draw(const PNT_2D& at, Emitter& out) const {
  if (out.point(at)) return;
  const double x = m_size, half = m_size / 2;
  if (m_middle == kDot) out.disc(at, m_least);
  if (m_middle == kPlus) {
    stroke({at.x - x, at.y}, {at.x + x, at.y}, out);
    stroke({at.x, at.y - x}, {at.x, at.y + x}, out);
  }
  if (m_middle == kCross) {
    stroke({at.x - x, at.y - x}, {at.x + x, at.y + x}, out);
    stroke({at.x - x, at.y + x}, {at.x + x, at.y - x}, out);
  }
  if (m_middle == kUpward) stroke(at, {at.x, at.y - std::max(half, m_least)}, out);
  if (m_hasCircle) circle(at, out);
  if (m_hasSquare) {
    out.stroke({{at.x - half, at.y - half},
                {at.x + half, at.y - half},
                {at.x + half, at.y + half},
                {at.x - half, at.y + half}},
               true);
  }
}

void PointFigure::stroke(const PNT_2D& from, const PNT_2D& to, Emitter& out) const {
  out.stroke({from, to}, false);
}

void PointFigure::circle(const PNT_2D& at, Emitter& out) const {
  const double radius = m_size / 2;
  if (out.arc(at, radius, 0, 2 * kPi)) return;
  std::vector<PNT_2D> ring;
  for (int i = 0; i < kChords; ++i) {
    const double angle = 2 * kPi * i / kChords;
    ring.emplace_back(at.x + radius * std::cos(angle), at.y + radius * std::sin(angle));
  }
  out.stroke(ring, true);
}

}  // namespace vek0::detail
