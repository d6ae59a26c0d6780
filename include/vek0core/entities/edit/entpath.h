#pragma once

#include "vek0core/export.h"
#include "vek0core/geometry/path.h"
#include "vek0core/tables/handle.h"

class CEnt;
class CEntFactory;

/// The curve of a line, circle, arc or polyline (its visible vertices, arcs as arcs) for
/// constructions and offsets. Returns false, with `out` unchanged, for other kinds and for a
/// polyline of fewer than two vertices.
VEK0_API bool getEntPath(const CEnt& ent, PATH_3D& out);

/// Creates an entity along the path, with the properties of another: a line, arc or
/// circle if the path is a single edge, otherwise a polyline of zero width. It has handle 0 and is
/// in no table; the caller owns it. Null for an empty path or when out of memory.
VEK0_API CEnt* createEntFromPath(IHandleGestor& gestor, CEntFactory& factory, const PATH_3D& path,
                                 const CEnt& like);

/// Gives a line, an arc, a circle or a plain polyline that path in place, so that it keeps its
/// handle and its properties. Returns false, with nothing changed, if the kind cannot have the
/// path: a line needs a straight edge, an arc and a circle an arc or a full turn of their own kind,
/// and a polyline must have one width. Then `createEntFromPath` replaces it.
VEK0_API bool setEntPath(IHandleGestor& gestor, CEntFactory& factory, const PATH_3D& path,
                         CEnt& ent);
