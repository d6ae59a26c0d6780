#include "vek0draw/painter.h"

#include <cmath>

#include "vek0core/geometry/angle.h"

void IPainter::segments(const PNT_2D* points, std::size_t count) {
  for (std::size_t i = 0; i + 1 < count; i += 2) stroke(points + i, 2, false);
}

void IPainter::disc(const PNT_2D& center, double diameter) {
  constexpr std::size_t corners = 16;
  PNT_2D ring[corners];
  for (std::size_t i = 0; i < corners; ++i) {
    const double angle = 2 * vek0::detail::kPi * static_cast<double>(i) / corners;
    ring[i].set(center.x + diameter / 2 * std::cos(angle),
                center.y + diameter / 2 * std::sin(angle));
  }
  fill(ring, &corners, 1, FillRule::NonZero);
}
