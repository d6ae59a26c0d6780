#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"
#include "vek0draw/draw.h"

// What is near a point or in a box, by what is drawn there: entities on hidden layers and hidden
// parts of clipped inserts are not found, the content of inserts stands for the insert. Seen from
// above, in drawing units.
//
// All of these draw a small part of a drawing, so they cost what drawing that part costs.

/// Draws an area of a model or of a sheet, such as `CDrawIndex::drawArea` of an index that is kept.
using AreaDrawer =
    std::function<DRAW_RESULT(const RECT_2D& area, IPainter& painter, const DRAW_OPTIONS& options)>;

/// An entity near a point.
struct PICK_HIT {
  CEnt* ent;
  double distance;  ///< of the nearest thing that it shows; 0 within fills and texts
};

/// The entities that show something within `radius` of a point, each once, the nearest first and of
/// those at the same distance the one drawn last. What lies on the edge of its own fill is at
/// distance 0.
std::vector<PICK_HIT> pickEntities(const AreaDrawer& draw, const PNT_2D& at, double radius);

/// The entities that show something in the box, in drawing order.
std::vector<CEnt*> entitiesCrossing(const AreaDrawer& draw, const RECT_2D& box);

/// Those of them that show nothing outside it. Also costs what it takes to draw those that
/// `entitiesCrossing` finds, one by one, unless their extents are within the box; `drawWhole` draws
/// an entity without limits.
std::vector<CEnt*> entitiesWithin(
    const AreaDrawer& draw, const std::function<void(CEnt& ent, IPainter& painter)>& drawWhole,
    const RECT_2D& box);

/// A distinguished point of what is drawn.
enum class SnapKind { End, Intersection, Middle, Center, Perpendicular, Nearest };

struct SNAP_POINT {
  SnapKind kind;
  PNT_2D at;
  CEnt* ent;  ///< shows the line that the point is on, or one of the lines
};

/// The distinguished point nearest to a point, within `radius` of it: ends and vertices, middles of
/// segments and arcs, centers of arcs and circles, intersections of what is within the radius, and
/// with `from` the feet of perpendiculars from there. Of points at the same place the kind that
/// comes first in `SnapKind` counts. If there is none, the nearest point of a line within the
/// radius. Fills, texts and hatches have none; curves made of chords have their ends only. Of very
/// many lines within the radius only the nearest are intersected.
std::optional<SNAP_POINT> snapTo(const AreaDrawer& draw, const PNT_2D& at, double radius,
                                 const std::optional<PNT_2D>& from = {});
