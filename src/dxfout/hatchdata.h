#pragma once

#include "vek0core/tables/handle.h"

class CEntHatch;
class CFileDXFOWriter;

namespace vek0::detail {

/// Whether what the data would say makes sense: a boundary, and no number that files
/// have no form for.
bool hasHatchData(const CEntHatch& hatch);

/// Writes the extended data by which the INSERT before it is known to be a hatch, in the
/// one order that our reader takes: pattern, scale, angle, a point inside, the boundary
/// ring by ring, and the lines of a pattern that is not in the catalogue.
///
/// `handle` is the one written for the hatch. With `flatten` the boundary's Z is 0; `exact`
/// says how the writer writes numbers.
void writeHatchData(CFileDXFOWriter& writer, const CEntHatch& hatch, vek0::Handle handle,
                    bool flatten, bool exact);

}  // namespace vek0::detail
