// The simple offset: each segment is shifted, and adjacent ones meet at their intersection.
// Segments are dropped where the corner would exceed the miter limit or a segment would be
// reversed. Other self-intersections remain; `offsetPath` handles those.
#include "vek0core/polyline/offset.h"

#include <cmath>
#include <cstddef>
#include <limits>

namespace {

constexpr double kSame = 1e-12;       // on each axis, drawing units
constexpr double kLongestMitre = 10;  // lengths of either segment
constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// Also false for NaN, so that such segments are skipped.
bool areApart(const PNT_2D& a, const PNT_2D& b) {
  return std::fabs(a.x - b.x) > kSame || std::fabs(a.y - b.y) > kSame;
}

double heightOf(const PNT_2D&) { return 0; }
double heightOf(const PNT_3D& p) { return p.z; }

void place(PNT_2D& out, double x, double y, double) { out.set(x, y); }
void place(PNT_3D& out, double x, double y, double z) { out.set(x, y, z); }

// The parallel of a segment: its line, the heights of its ends, and the indices of the original
// points, which identify the corners of the chain.
struct Ray {
  PAR_LINE_2D line;
  double z1, z2;
  int from, to;
  std::size_t before, after;  // among the rays that remain
  double u;                   // parameter of the corner at its start, once accepted
};

struct Corner {
  bool accepted;
  double t, u;
};

class Parallel {
 public:
  template <class Pnt>
  Parallel(const Pnt* pts, int n, double dist, bool closed) : m_closed(closed) {
    if (n < 2) return;
    m_rays.reserve(static_cast<std::size_t>(n) + 1);
    for (int i = 0; i + 1 < n; ++i) add(pts, i, i + 1);
    // One segment has no second corner at which it could close.
    if (m_rays.size() == 1) m_closed = false;
    if (m_closed) {
      add(pts, n - 1, 0);
      // Repeated, so that the corner where the chain closes also joins two adjacent rays.
      add(pts, 0, 1);
    }
    shift(dist);
    dropReversed();
  }

  template <class Put>
  void write(Put put) const {
    if (m_first == kNone) return;
    const Ray& first = m_rays[m_first];
    if (!m_closed) put(first.line.x0, first.line.y0, first.z1);
    std::size_t i = m_first;
    for (; m_rays[i].after != kNone; i = m_rays[i].after) {
      const Ray &a = m_rays[i], &b = m_rays[a.after];
      const double t = cornerOf(a, b, 0).t;
      // Adjacent segments meet at the height of their common vertex. Where segments between them
      // were dropped, the height is interpolated along the first one.
      const double z = a.to == b.from ? a.z2 : a.z1 + t * (a.z2 - a.z1);
      put(a.line.x0 + t * a.line.dx, a.line.y0 + t * a.line.dy, z);
    }
    const Ray& last = m_rays[i];
    if (!m_closed) put(last.line.x0 + last.line.dx, last.line.y0 + last.line.dy, last.z2);
  }

 private:
  template <class Pnt>
  void add(const Pnt* pts, int from, int to) {
    if (!areApart(pts[from], pts[to])) return;
    const PAR_LINE_2D line(pts[from], pts[to]);
    m_rays.push_back({line, heightOf(pts[from]), heightOf(pts[to]), from, to, kNone, kNone, 0});
  }

  void shift(double dist) {
    std::size_t kept = 0;
    for (Ray& ray : m_rays) {
      LINE_2D line(ray.line);
      TranslateLine(line, dist);
      // Adding a large distance can make the ends of a short segment equal.
      if (!areApart(line.p1, line.p2)) continue;
      ray.line.x0 = line.p1.x;
      ray.line.y0 = line.p1.y;
      m_rays[kept++] = ray;
    }
    m_rays.resize(kept);
    for (std::size_t i = 0; i < kept; ++i) {
      m_rays[i].before = i == 0 ? kNone : i - 1;
      m_rays[i].after = i + 1 == kept ? kNone : i + 1;
    }
    m_first = kept == 0 ? kNone : 0;
  }

  static Corner cornerOf(const Ray& a, const Ray& b, double u0) {
    double t = 1, u = 0;
    if (a.line.intersect(b.line, t, u) == 0) return {false, t, u};
    // t before the segment's own start corner means that the segment would run backward.
    return {t >= u0 && t <= kLongestMitre && u <= kLongestMitre, t, u};
  }

  // Removing a ray does not affect the corners before it, so the scan continues from there:
  // restarting each time would be quadratic.
  void dropReversed() {
    if (m_first == kNone) return;
    std::size_t i = m_first;
    while (m_rays[i].after != kNone) {
      Ray &a = m_rays[i], &b = m_rays[a.after];
      const Corner corner = cornerOf(a, b, a.u);
      if (corner.accepted) {
        b.u = corner.u;
        i = a.after;
        // Of two segments that do not meet, the shorter one is dropped: it changes the shape less.
      } else if (a.line.length() < b.line.length()) {
        i = remove(i);
      } else {
        remove(a.after);
      }
    }
  }

  // Returns where to continue: before the ray, or at the new first one.
  std::size_t remove(std::size_t i) {
    const std::size_t before = m_rays[i].before, after = m_rays[i].after;
    if (after != kNone) m_rays[after].before = before;
    if (before != kNone) {
      m_rays[before].after = after;
      return before;
    }
    m_first = after;
    m_rays[after].u = 0;
    return after;
  }

  std::vector<Ray> m_rays;
  std::size_t m_first = kNone;
  bool m_closed;
};

template <class Pnt>
int parallelInto(const Pnt* pts, int n, double dist, bool closed, Pnt* out) {
  int count = 0;
  Parallel(pts, n, dist, closed).write([&](double x, double y, double z) {
    place(out[count++], x, y, z);
  });
  return count;
}

template <class Pnt>
std::vector<Pnt> parallelOf(const std::vector<Pnt>& pts, double dist, bool closed) {
  std::vector<Pnt> out;
  if (pts.size() > static_cast<std::size_t>(std::numeric_limits<int>::max() - 2)) return out;
  Parallel(pts.data(), static_cast<int>(pts.size()), dist, closed)
      .write([&](double x, double y, double z) {
        out.emplace_back();
        place(out.back(), x, y, z);
      });
  return out;
}

}  // namespace

void TranslateLine(LINE_2D& line, double dist) {
  const double dx = line.p2.x - line.p1.x, dy = line.p2.y - line.p1.y;
  const double length = std::sqrt(dx * dx + dy * dy);
  if (length == 0) return;
  const PNT_2D by(dist * (dy / length), -dist * (dx / length));
  line.set(line.p1 + by, line.p2 + by);
}

LINE_2D CalcParalLineAt(const LINE_2D& line, double dist) {
  LINE_2D shifted = line;
  TranslateLine(shifted, dist);
  return shifted;
}

LINE_3D CalcParalLineAtPlane(const LINE_3D& line, double dist) {
  const LINE_2D flat = CalcParalLineAt(LINE_2D(line.p1, line.p2), dist);
  return {flat.p1.x, flat.p1.y, line.p1.z, flat.p2.x, flat.p2.y, line.p2.z};
}

int CalcParalLine(const PNT_2D* pts, int n, double dist, bool closed, PNT_2D* out) {
  return parallelInto(pts, n, dist, closed, out);
}

int CalcParalLine(const PNT_3D* pts, int n, double dist, bool closed, PNT_3D* out) {
  return parallelInto(pts, n, dist, closed, out);
}

std::vector<PNT_2D> CalcParalLine(const std::vector<PNT_2D>& pts, double dist, bool closed) {
  return parallelOf(pts, dist, closed);
}

std::vector<PNT_3D> CalcParalLine(const std::vector<PNT_3D>& pts, double dist, bool closed) {
  return parallelOf(pts, dist, closed);
}
