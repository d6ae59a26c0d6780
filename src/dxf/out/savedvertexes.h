#pragma once

#include <functional>

#include "vek0core/entities/entpolyline.h"
#include "vek0core/tables/handle.h"

namespace vek0::detail {

/// The values of a vertex in the file.
struct SavedVertex {
  PNT_3D pnt;
  double widthStart, widthEnd;
  double bulge;
  vek0::Handle handle;
  long flags;  // code 70 of VERTEX
};

/// How a polyline is written, determined in one pass over its vertices.
struct PolylineForm {
  bool exact = true;     // numbers are written exactly
  bool finite = true;    // every coordinate and width is a number
  bool solid = false;    // has an extent in z that must be written
  bool sloping = false;  // the same, or only wide vertices, which lie flat, differ in z
  bool bulges = false;   // arcs are written as one vertex with a bulge
  bool framed = false;   // control points are written before the visible vertices
  bool inChain = false;  // control points are also visible vertices
  bool empty = true;     // no vertex is written
  double elevation = 0;  // z of the first visible vertex
  long noBulged = 0;     // visible vertices, if arcs are written as such
  bool widthConstant = true;
  double width = 0;  // of every vertex when constant
  short curve = 0;   // 0, `kFit` or `kSpline`; other curves are written as plain chains
};

/// Determines how `ent` is written. `flatten`: points lose their z. `exchange`: numbers are exact,
/// and arcs are written as such, except in 3D polylines, which cannot have them.
PolylineForm polylineForm(const CEntPolyline& ent, bool flatten, bool exchange);

/// Passes every vertex to be written to `sink`, in order. Does not unpack.
void forEachSaved(const CEntPolyline& ent, const PolylineForm& form,
                  const std::function<void(const SavedVertex&)>& sink);

}  // namespace vek0::detail
