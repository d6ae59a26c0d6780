#pragma once

#include <memory>
#include <vector>

#include "vek0core/entities/entpolyline.h"
#include "vek0core/export.h"
#include "vek0core/tables/handle.h"

class CEnt;
class CEntFactory;

/// A polyline and the entities that went into it, in the order in which it runs.
struct JOINED_ENT {
  std::unique_ptr<CEntPolyline> polyline;
  std::vector<const CEnt*> parts;
};

/// Which entities may become one polyline: those of one layer, or of all layers that are
/// shown. What is on a frozen or hidden layer only ever joins its own layer, so that nothing
/// vanishes and nothing appears.
enum class JOIN_LAYERS { apart, together };

/// How far apart ends may be that count as meeting: 1e-9 of the longest side of the
/// entities' extents.
VEK0_API double joinTolerance(const std::vector<CEnt*>& ents);

/// Joins lines, arcs and open polylines whose ends meet within `tolerance` (drawing units,
/// in space) into as few new polylines as that gives, each of two entities at least.
///
/// Entities are taken in order, layer after layer where layers stay apart: a polyline has layer,
/// linetype and color of the first of its parts and its direction, goes on at its end, then at its
/// start, and is closed when its ends meet. Where several ends meet at one point, the nearest goes
/// on, the earliest among equals. Joined ends get the point of the part that came first. Other
/// kinds, closed polylines, null, and what is no longer than the tolerance are passed over. The
/// entities stay as they are; new ones have handle 0 and are in no table.
///
/// Near-linear: ends are found by hashing. Where more than 256 ends crowd a square of the
/// tolerance's size, not all of them are looked at.
VEK0_API std::vector<JOINED_ENT> joinEnts(IHandleGestor& gestor, CEntFactory& factory,
                                          const std::vector<CEnt*>& ents, double tolerance,
                                          JOIN_LAYERS layers = JOIN_LAYERS::apart);
