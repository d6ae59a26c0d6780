#pragma once

#include <span>

#include "dxf/keep/sourcerecord.h"
#include "dxf/keep/spacemap.h"

namespace vek0::detail {

/// Transforms a record of an entity, with the records that belong to it (VERTEX, ATTRIB and SEQEND,
/// after it), in their own form: points of its plane stay points of a plane, a spline stays a
/// spline, and everything that the map does not concern stays as it is. Extended data moves where
/// its codes say so (1011 to 1013, 1041, 1042). Pairs whose value does not change are not touched.
///
/// Returns false, with nothing changed, if the kind is unknown, or cannot express the map: circles,
/// texts and other kinds need a uniform scale; mirroring is expressed where the kind can.
bool transformRecords(std::span<SourceRecord> records, const SpaceMap& map);

}  // namespace vek0::detail
