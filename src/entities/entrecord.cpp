#include "vek0core/entities/entrecord.h"

const char* nameOf(EntRecord record) {
  static constexpr const char* names[] = {
      "",
      "LWPOLYLINE",
      "POLYLINE",
      "CIRCLE",
      "ARC",
      "HATCH",
      "SPLINE",
      "ELLIPSE",
      "LEADER",
      "MLINE",
      "MESH",
      "MPOLYGON",
      "HELIX",
      "MTEXT",
      "DIMENSION",
      "ARC_DIMENSION",
      "LARGE_RADIAL_DIMENSION",
      "MULTILEADER",
      "MLEADER",
      "TOLERANCE",
      "ACAD_TABLE",
      "VIEWPORT",
      "OPAQUE",
  };
  return names[static_cast<unsigned char>(record)];
}
