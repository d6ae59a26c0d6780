#pragma once

#include "vek0core/export.h"
#include "vek0core/geometry/path.h"
#include "vek0core/tables/handle.h"

class CEnt;
class CEntFactory;

/// The curve of a line, circle, arc or polyline (its visible vertices, arcs as arcs) for
/// constructions and offsets. False, and `out` unchanged, for other kinds and for a
/// polyline of fewer than two vertices.
VEK0_API bool getEntPath(const CEnt& ent, PATH_3D& out);

/// A new entity along the path, with layer, linetype and color of another: a line, arc or
/// circle where the path is one edge, otherwise a polyline without widths. Handle 0, in no
/// table, the caller owns it. Null for an empty path or without memory.
VEK0_API CEnt* createEntFromPath(IHandleGestor& gestor, CEntFactory& factory, const PATH_3D& path,
                                 const CEnt& like);
