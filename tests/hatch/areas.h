#pragma once

#include "support/test.h"

namespace vek0::test {

using Points = std::vector<PNT_3D>;
using Rings = std::vector<Points>;

/// Parses points such as "0,0 10,0 10,10", each with an optional third coordinate.
inline Points pts(const std::string& text) {
  Points points;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    std::istringstream numbers(word);
    PNT_3D p(0, 0, 0);
    char comma;
    numbers >> p.x >> comma >> p.y >> comma >> p.z;
    points.push_back(p);
  }
  return points;
}

/// The same for several rings, separated by "/".
inline Rings rings(const std::string& text) {
  Rings result;
  std::istringstream parts(text);
  for (std::string part; std::getline(parts, part, '/');) result.push_back(pts(part));
  return result;
}

inline std::string text(const Points& points) {
  std::ostringstream out;
  for (const PNT_3D& p : points) out << (&p == points.data() ? "" : " ") << p.x << ',' << p.y;
  return out.str();
}

/// Whether an odd number of rings encloses the point. Casts a ray to the right, with numbers wider
/// than the library's where the machine has them.
inline bool contains(const Rings& area, long double x, long double y) {
  bool isInside = false;
  for (const Points& ring : area) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const PNT_3D &a = ring[i], &b = ring[(i + 1) % ring.size()];
      if ((a.y > y) == (b.y > y)) continue;
      const long double t = (y - a.y) / (static_cast<long double>(b.y) - a.y);
      if (x < a.x + t * (static_cast<long double>(b.x) - a.x)) isInside = !isInside;
    }
  }
  return isInside;
}

inline Rings turned(Rings area, double angle) {
  for (Points& ring : area)
    for (PNT_3D& p : ring) p.rotate(PNT_3D(0, 0, 0), angle);
  return area;
}

inline Rings moved(Rings area, double dx, double dy) {
  for (Points& ring : area)
    for (PNT_3D& p : ring) p.move(PNT_3D(dx, dy, 0));
  return area;
}

/// Makes random areas, determined by the seed.
class AreaMaker {
 public:
  explicit AreaMaker(unsigned seed) : m_random(seed) {}

  double number(double from, double to) {
    return std::uniform_real_distribution<double>(from, to)(m_random);
  }
  int whole(int from, int to) { return std::uniform_int_distribution<int>(from, to)(m_random); }

  /// A simple, usually concave ring, entirely visible from its center.
  Points star(int corners, double x, double y, double innerRadius, double outerRadius) {
    Points ring;
    for (int i = 0; i < corners; ++i) {
      const double angle = (i + number(0, 0.5)) * 6.283185307179586 / corners;
      const double radius = number(innerRadius, outerRadius);
      ring.emplace_back(x + radius * std::cos(angle), y + radius * std::sin(angle), 0);
    }
    return ring;
  }

  /// A star, with or without a hole and an island in it.
  Rings starArea() {
    const double x = number(-20, 20), y = number(-20, 20);
    Rings area = {star(whole(3, 40), x, y, 8, 12)};
    if (whole(0, 2) > 0) area.push_back(star(whole(8, 30), x, y, 3, 5));
    if (area.size() > 1 && whole(0, 1) > 0) area.push_back(star(whole(3, 20), x, y, 0.5, 2));
    return area;
  }

  /// Vertices on a coarse grid in any order. The area crosses and touches itself, overlaps itself
  /// and the lines of patterns, and revisits vertices.
  Rings gridArea() {
    Rings area;
    for (int n = whole(1, 3); n > 0; --n) {
      Points ring;
      for (int corners = whole(3, 12); corners > 0; --corners)
        ring.emplace_back(whole(-5, 5), whole(-5, 5), 0);
      area.push_back(ring);
    }
    return area;
  }

  /// Walls parallel to the axes, as in floor plans: every edge may lie on a pattern line.
  Rings stairArea() {
    Points ring = {{0, 0, 0}};
    const int steps = whole(2, 15);
    for (int i = 0; i < steps; ++i) {
      const double x = ring.back().x + whole(1, 3);
      ring.emplace_back(x, ring.back().y, 0);
      ring.emplace_back(x, i + 1 < steps ? whole(1, 9) : 10, 0);
    }
    ring.emplace_back(0, 10, 0);
    return {ring};
  }

  Rings area() {
    switch (whole(0, 2)) {
      case 0:
        return starArea();
      case 1:
        return gridArea();
      default:
        return stairArea();
    }
  }

 private:
  std::mt19937 m_random;
};

}  // namespace vek0::test
