#pragma once

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"

class CEntInsertBase;

/// Affine placement of a block by an insert: a 2x2 matrix for x and y, a factor for z and a
/// translation.
///
/// A point is taken relative to the block's base point, scaled, rotated about z and moved to the
/// insertion point. The placement is isotropic if its x and y scales are exactly equal, including a
/// common negative scale (half a turn). Scale and rotation are then available separately from the
/// matrix, so that circles stay circles. Angles are radians.
class VEK0_API CEntInsertMatrix {
 public:
  /// The identity placement.
  CEntInsertMatrix();

  /// The placement of one cell of an insert's array. Cells are offset along the insert's rotated
  /// axes by multiples of the spacings, which are not scaled. The entities of a block are already
  /// stored relative to its base point, so the base is the origin; those of an external reference
  /// are not, so its base point applies. `row` and `col` may be outside the array.
  CEntInsertMatrix(double pixelSize, const CEntInsertBase& insert, long row, long col);

  void set(const PNT_3D& base, double sx, double sy, double sz, double rotation,
           const PNT_3D& insertion);

  /// `out` may be `p` itself.
  void transform(const PNT_3D& p, PNT_3D& out) const;
  /// Box of the eight mapped corners; an empty box stays empty. `out` may be `box`.
  void transform(const RECT_3D& box, RECT_3D& out) const;
  /// Computes the point that maps to `p`; returns false, with `out` unchanged, if the placement is
  /// singular. `out` may be `p` itself.
  bool invert(const PNT_3D& p, PNT_3D& out) const;

  /// The images of the unit vectors of x and y, without translation.
  void getAxes(PNT_2D& x, PNT_2D& y) const {
    x.set(m_m00, m_m10);
    y.set(m_m01, m_m11);
  }

  /// Adds to the translation.
  void move(const PNT_3D& delta);

  /// This placement applied after `inner`, for a block inserted in another block. Isotropic if both
  /// are, with the product of the scales and the sum of the rotations.
  CEntInsertMatrix operator*(const CEntInsertMatrix& inner) const;

  bool IsIsotropicXY() const { return m_isotropic; }
  /// Common scale of x and y; meaningful only when isotropic.
  double getScale() const { return m_scale; }
  /// Rotation of an isotropic placement, not reduced to any range.
  double getRotate() const { return m_rotation; }
  /// Factor of z.
  double getScaleZ() const { return m_mz; }

  /// Base point by which the insert's block is placed; see the constructor.
  static PNT_3D basePoint(const CEntInsertBase& insert);

 private:
  double m_m00, m_m01, m_m10, m_m11, m_mz;
  double m_tx, m_ty, m_tz;
  bool m_isotropic;
  double m_scale, m_rotation;
};
