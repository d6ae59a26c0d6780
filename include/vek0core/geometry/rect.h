#pragma once

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"

/// Axis-aligned box in the plane, drawing units.
///
/// The empty box (`initRegion`) has huge limits of opposite sign, so that growing it needs no
/// special case. Constructors and `set` order the corners, which would turn an empty box into a
/// gigantic valid one: callers that map a box test `validRegion` first. The default constructor
/// leaves the corners unset. The box includes its borders. Comparison is exact.
class VEK0_API RECT_2D {
 public:
  RECT_2D() = default;
  RECT_2D(double x1, double y1, double x2, double y2) { set(x1, y1, x2, y2); }
  RECT_2D(const PNT_2D& a, const PNT_2D& b) { set(a, b); }

  bool operator==(const RECT_2D& r) const { return min == r.min && max == r.max; }
  bool operator!=(const RECT_2D& r) const { return !(*this == r); }

  void set(double x1, double y1, double x2, double y2);
  void set(const PNT_2D& a, const PNT_2D& b) { set(a.x, a.y, b.x, b.y); }
  /// Box of `n` points. `pts` may be null if n <= 0, which yields the empty box.
  void set(const PNT_2D* pts, int n);
  /// Box of four points given by their coordinates, four in each array.
  void set(const double* xs, const double* ys);

  void get(PNT_2D& lower, PNT_2D& upper) const {
    lower = min;
    upper = max;
  }
  void get(double& x1, double& y1, double& x2, double& y2) const {
    min.get(x1, y1);
    max.get(x2, y2);
  }

  void initRegion();
  /// Whether the box is not empty; looks at x alone.
  bool validRegion() const { return min.x <= max.x; }
  void updateRegion(const PNT_2D& p);
  void updateRegion(const RECT_2D& r);

  bool inside(const PNT_2D& p) const { return inside(p.x, p.y); }
  bool inside(double x, double y) const {
    return min.x <= x && x <= max.x && min.y <= y && y <= max.y;
  }
  /// Whether `r` lies in this box.
  bool inside(const RECT_2D& r) const;
  /// Whether the boxes touch or overlap.
  bool intersect(const RECT_2D& r) const;
  /// As above; also writes the common part to `out`, which is inverted if there is none.
  bool intersect(const RECT_2D& r, RECT_2D& out) const;

  void inflate(double dx, double dy);
  void shrink(double dx, double dy) { inflate(-dx, -dy); }

  PNT_2D min, max;
};

/// Narrows [t0, t1] to the part of the line `from` + t * `step` inside the box, borders included;
/// t0 and t1 may be infinite on entry. Returns false, with both meaningless, if there is none. A
/// zero step leaves them unchanged if `from` is inside.
VEK0_API bool clipLine(const RECT_2D& box, const PNT_2D& from, const PNT_2D& step, double& t0,
                       double& t1);

/// Axis-aligned box in space: the extents of entities. The remarks on `RECT_2D` apply.
class VEK0_API RECT_3D {
 public:
  RECT_3D() = default;
  RECT_3D(double x1, double y1, double z1, double x2, double y2, double z2) {
    set(x1, y1, z1, x2, y2, z2);
  }
  RECT_3D(const PNT_3D& a, const PNT_3D& b) { set(a, b); }

  bool operator==(const RECT_3D& r) const { return min == r.min && max == r.max; }
  bool operator!=(const RECT_3D& r) const { return !(*this == r); }

  void set(double x1, double y1, double z1, double x2, double y2, double z2);
  void set(const PNT_3D& a, const PNT_3D& b) { set(a.x, a.y, a.z, b.x, b.y, b.z); }
  /// Box of four points given by their coordinates, four in each array.
  void set(const double* xs, const double* ys, const double* zs);

  void get(PNT_3D& lower, PNT_3D& upper) const {
    lower = min;
    upper = max;
  }
  void get(double& x1, double& y1, double& z1, double& x2, double& y2, double& z2) const {
    min.get(x1, y1, z1);
    max.get(x2, y2, z2);
  }

  void initRegion();
  /// Whether the box is not empty; looks at x alone.
  bool validRegion() const { return min.x <= max.x; }
  void updateRegion(const PNT_3D& p);
  void updateRegion(const RECT_3D& r);
  bool inside(const PNT_3D& p) const;

  /// Moves both corners; an empty box is left unchanged.
  void move(const PNT_3D& delta);
  /// Scales both corners; a negative factor swaps them, so that min stays the lower. An empty box
  /// is left unchanged: scaled by 0, it would become a point.
  void scale(const PNT_3D& center, double factor);
  void calc_bdry(RECT_3D& out) const { out = *this; }

  PNT_3D min, max;
};
