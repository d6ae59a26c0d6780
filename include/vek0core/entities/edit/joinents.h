#pragma once

#include <memory>
#include <vector>

#include "vek0core/entities/entpolyline.h"
#include "vek0core/export.h"
#include "vek0core/tables/handle.h"

class CEnt;
class CEntFactory;

/// A polyline and the entities it was joined from, in order along it.
struct JOINED_ENT {
  std::unique_ptr<CEntPolyline> polyline;
  std::vector<const CEnt*> parts;
};

/// Which entities may be joined: those of one layer, or of all visible layers. Entities on a frozen
/// or hidden layer are joined only within that layer, so that nothing disappears or appears.
enum class JOIN_LAYERS { apart, together };

/// What happens where more than two ends meet: the nearest ones are joined, or all stay apart.
enum class JOIN_BRANCHES { joined, kept };

/// Maximum distance between ends that count as meeting: 1e-9 of the longest side of the entities'
/// extents.
VEK0_API double joinTolerance(const std::vector<CEnt*>& ents);

/// Joins lines, arcs and open polylines whose ends meet within `tolerance` (drawing units, in
/// space) into new polylines, each of at least two entities.
///
/// Entities are processed in order, layer by layer if layers are kept apart. A polyline has the
/// properties and direction of the first of its parts, is extended at its end, then at
/// its start, and is closed if its ends meet. Where several ends meet at a point and branches are
/// joined, the nearest is, the earliest among equals. Joined ends get the point of the part that
/// came first. Other kinds, closed polylines, null, and entities no longer than the tolerance are
/// skipped. The entities are not changed; new ones have handle 0 and are in no table.
///
/// Near-linear: ends are found by hashing. Where more than 256 ends lie in a square of the
/// tolerance's size, not all of them are examined.
VEK0_API std::vector<JOINED_ENT> joinEnts(IHandleGestor& gestor, CEntFactory& factory,
                                          const std::vector<CEnt*>& ents, double tolerance,
                                          JOIN_LAYERS layers = JOIN_LAYERS::apart,
                                          JOIN_BRANCHES branches = JOIN_BRANCHES::joined);
