// The map from a block to the space of its insert: the base point goes to the insertion point, axes
// are scaled, then rotated about z. For a cell of an array, the offset of the cell is rotated too,
// but not scaled.
#include "vek0core/entities/blocks/insertmatrix.h"

#include <cmath>

#include "vek0core/entities/blocks/blockxref.h"
#include "vek0core/entities/blocks/entinsert.h"

CEntInsertMatrix::CEntInsertMatrix() { set(PNT_3D(0, 0, 0), 1, 1, 1, 0, PNT_3D(0, 0, 0)); }

CEntInsertMatrix::CEntInsertMatrix(double pixelSize, const CEntInsertBase& insert, long row,
                                   long col) {
  PNT_3D point;
  double sx, sy, sz, rotation;
  insert.getInsertParams(pixelSize, point, sx, sy, sz, rotation);
  set(basePoint(insert), sx, sy, sz, rotation, point);
  if (row == 0 && col == 0) return;

  long columns, rows;
  double columnSpacing, rowSpacing;
  insert.getArray(columns, rows, columnSpacing, rowSpacing);
  // In double precision, where the product of index and spacing cannot overflow.
  const double dx = static_cast<double>(col) * columnSpacing;
  const double dy = static_cast<double>(row) * rowSpacing;
  const double c = std::cos(rotation), s = std::sin(rotation);
  move(PNT_3D(c * dx - s * dy, s * dx + c * dy, 0));
}

void CEntInsertMatrix::set(const PNT_3D& base, double sx, double sy, double sz, double rotation,
                           const PNT_3D& insertion) {
  const double c = std::cos(rotation), s = std::sin(rotation);
  m_m00 = c * sx;
  m_m01 = -s * sy;
  m_m10 = s * sx;
  m_m11 = c * sy;
  m_mz = sz;
  // The base point maps to the insertion point.
  m_tx = insertion.x - (c * sx * base.x - s * sy * base.y);
  m_ty = insertion.y - (s * sx * base.x + c * sy * base.y);
  m_tz = insertion.z - sz * base.z;
  m_isotropic = sx == sy;
  m_scale = sx;
  m_rotation = rotation;
}

void CEntInsertMatrix::transform(const PNT_3D& p, PNT_3D& out) const {
  const double x = m_m00 * p.x + m_m01 * p.y + m_tx;
  const double y = m_m10 * p.x + m_m11 * p.y + m_ty;
  out.set(x, y, m_mz * p.z + m_tz);
}

void CEntInsertMatrix::transform(const RECT_3D& box, RECT_3D& out) const {
  // A copy, because `out` may be `box`.
  const RECT_3D in = box;
  out.initRegion();
  // The corners of an empty box are large numbers, which would map to a huge, valid box.
  if (!in.validRegion()) return;
  for (int corner = 0; corner < 8; ++corner) {
    PNT_3D p((corner & 1) ? in.max.x : in.min.x, (corner & 2) ? in.max.y : in.min.y,
             (corner & 4) ? in.max.z : in.min.z);
    transform(p, p);
    out.updateRegion(p);
  }
}

bool CEntInsertMatrix::invert(const PNT_3D& p, PNT_3D& out) const {
  const double det = m_m00 * m_m11 - m_m01 * m_m10;
  // A scale of 0 flattens the block and cannot be inverted.
  if (det == 0 || m_mz == 0) return false;
  const double dx = p.x - m_tx, dy = p.y - m_ty;
  out.set((m_m11 * dx - m_m01 * dy) / det, (m_m00 * dy - m_m10 * dx) / det, (p.z - m_tz) / m_mz);
  return true;
}

void CEntInsertMatrix::move(const PNT_3D& delta) {
  m_tx += delta.x;
  m_ty += delta.y;
  m_tz += delta.z;
}

CEntInsertMatrix CEntInsertMatrix::operator*(const CEntInsertMatrix& inner) const {
  CEntInsertMatrix m;
  m.m_m00 = m_m00 * inner.m_m00 + m_m01 * inner.m_m10;
  m.m_m01 = m_m00 * inner.m_m01 + m_m01 * inner.m_m11;
  m.m_m10 = m_m10 * inner.m_m00 + m_m11 * inner.m_m10;
  m.m_m11 = m_m10 * inner.m_m01 + m_m11 * inner.m_m11;
  m.m_mz = m_mz * inner.m_mz;
  m.m_tx = m_m00 * inner.m_tx + m_m01 * inner.m_ty + m_tx;
  m.m_ty = m_m10 * inner.m_tx + m_m11 * inner.m_ty + m_ty;
  m.m_tz = m_mz * inner.m_tz + m_tz;
  m.m_isotropic = m_isotropic && inner.m_isotropic;
  m.m_scale = m_scale * inner.m_scale;
  m.m_rotation = m_rotation + inner.m_rotation;
  return m;
}

PNT_3D CEntInsertMatrix::basePoint(const CEntInsertBase& insert) {
  // Ordinary blocks store entities relative to the base point, references do not.
  const CBlock* block = insert.getBlock();
  if (block == nullptr || !block->isXRef()) return PNT_3D(0, 0, 0);
  return static_cast<const CBlockXRef*>(block)->getContentBase();
}
