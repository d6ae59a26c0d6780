#include "dxf/out/savedsolid.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "dxf/ocs.h"
#include "dxf/out/exactnumbers.h"
#include "vek0core/entities/ent3dface.h"

namespace vek0::detail {
namespace {

// Maximum distance of a corner from the plane of the others, as a fraction of the largest
// coordinate.
constexpr double kOffPlane = 1e-9;

bool isLevel(const PNT_3D (&p)[4]) {
  return p[1].z == p[0].z && p[2].z == p[0].z && p[3].z == p[0].z;
}

// Makes a drawing that is saved, read and saved again yield the same digits. Avoids -0.
PNT_3D steadyPoint(const PNT_3D& p, double size) {
  return PNT_3D(steady(p.x, size) + 0.0, steady(p.y, size) + 0.0, steady(p.z, size) + 0.0);
}

// Perpendicular to the diagonals, pointing upward; the Z axis if they are parallel.
PNT_3D normalOf(const PNT_3D (&p)[4]) {
  const PNT_3D a(p[2] - p[0]), b(p[3] - p[1]);
  const PNT_3D n(a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x);
  const PlaneAxes plane(n.z < 0 ? PNT_3D(-n.x, -n.y, -n.z) : n);
  return steadyPoint(plane.z, 1);
}

PNT_3D inPlane(const PlaneAxes& plane, const PNT_3D& p) {
  const auto along = [&p](const PNT_3D& axis) {
    return p.x * axis.x + p.y * axis.y + p.z * axis.z;
  };
  return PNT_3D(along(plane.x), along(plane.y), along(plane.z));
}

// False if they are not in the plane. Otherwise their heights differ only by rounding, and the
// format needs a single one.
bool putInPlane(const PlaneAxes& plane, PNT_3D (&p)[4]) {
  double size = 0;
  for (PNT_3D& corner : p) {
    size = std::max({size, std::fabs(corner.x), std::fabs(corner.y), std::fabs(corner.z)});
    corner = inPlane(plane, corner);
  }
  for (PNT_3D& corner : p) {
    if (!(std::fabs(corner.z - p[0].z) <= kOffPlane * size)) return false;
    corner.z = p[0].z;
    corner = steadyPoint(corner, size);
  }
  return true;
}

}  // namespace

bool savedSolid(const CEnt3DFace& face, bool flatten, SavedSolid& out) {
  for (long i = 0; i < 4; ++i) {
    out.corners[i] = face.getVertex(i);
    if (flatten) out.corners[i].z = 0;
  }
  out.normal = PNT_3D(0, 0, 1);
  if (!isLevel(out.corners)) {
    out.normal = normalOf(out.corners);
    if (!putInPlane(PlaneAxes(out.normal), out.corners)) return false;
  }
  std::swap(out.corners[2], out.corners[3]);
  return true;
}

}  // namespace vek0::detail
