#pragma once

#include <cstddef>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/tables/handle.h"

class CEnt;
class CEntFactory;

/// The points by which users drag an entity into shape. They are the ends and the middle of a line
/// and of an arc, the center of a circle and of an arc, the quadrants of a circle, the vertices of
/// a plain polyline and the corners of a face. Points, texts and inserts have the one where they
/// are placed, and polylines that stand for another curve have their first vertex. Hatches and
/// attributes have none. Linear in the vertices.
VEK0_API std::vector<PNT_3D> gripsOf(CEnt& ent);

/// Moves the grip of that index to a point. The other ends and vertices of the entity stay, and so
/// do the bulges of a polyline; an arc keeps its other two points; a quadrant changes the radius.
/// The middle of a line, a center and the only grip of an entity move all of it. Returns false,
/// with nothing changed, if there is no such grip or no such shape: an arc through three points in
/// a line, a circle without a radius.
VEK0_API bool moveGrip(IHandleGestor& gestor, CEntFactory& factory, CEnt& ent, std::size_t grip,
                       const PNT_3D& to);
