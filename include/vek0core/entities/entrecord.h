#pragma once

#include "vek0core/export.h"

/// The kind of record that an entity of a file had, if it is not the one that an entity of its
/// class is saved as.
enum class EntRecord : unsigned char {
  Own,  ///< the one that it is saved as
  Lwpolyline,
  Polyline,
  Circle,
  Arc,
  Hatch,
  Spline,
  Ellipse,
  Leader,
  Mline,
  Mesh,
  Mpolygon,
  Helix,
  MText,
  Dimension,
  ArcDimension,
  LargeRadialDimension,
  Multileader,
  Mleader,
  Tolerance,
  Table,
  Viewport,  ///< of the frame of a viewport, see `createFrame`
  Opaque,    ///< of an unsupported kind, which its block names, see `opaqueKindOf`
};

/// Number of values.
inline constexpr unsigned char kEntRecords = static_cast<unsigned char>(EntRecord::Opaque) + 1;

/// The name of the record in files, such as "LWPOLYLINE"; empty for `Own`, "OPAQUE" for `Opaque`.
VEK0_API const char* nameOf(EntRecord record);
