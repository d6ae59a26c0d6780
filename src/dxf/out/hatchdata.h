#pragma once

#include "vek0core/tables/handle.h"

class CEntHatch;
class CFileDXFOWriter;

namespace vek0::detail {

/// Whether the hatch can be written: it has a boundary, and all numbers are finite.
bool hasHatchData(const CEntHatch& hatch);

/// Writes the extended data that marks the preceding INSERT as a hatch, in the only order that our
/// reader accepts: pattern, scale, angle, a point inside, the boundary ring by ring, and the lines
/// of a pattern that is not in the catalogue.
///
/// `handle` is the one written for the hatch. With `flatten` the boundary's Z is 0; `exact` is the
/// writer's number format.
void writeHatchData(CFileDXFOWriter& writer, const CEntHatch& hatch, vek0::Handle handle,
                    bool flatten, bool exact);

}  // namespace vek0::detail
