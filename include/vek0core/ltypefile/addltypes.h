#pragma once

#include "vek0core/export.h"

class CData;
class CLtypeLoader;

/// Adds copies of the loaded linetypes to the drawing and returns how many. Those without a name,
/// and those whose name the drawing (or an earlier one of them) has already, ignoring case, are
/// left out: what the drawing defines stays. Texts get the drawing's style of the same name, or
/// none when it has no such style.
VEK0_API int addLtypes(CData& data, const CLtypeLoader& loader);

/// Adds the fourteen line types of ISO 128 for a line width of 1 mm, "ACAD_ISO02W100"
/// to "ACAD_ISO15W100", in the way of `addLtypes`. No drawing has them unasked. The same
/// definitions stand in samples/iso.lin.
VEK0_API int addIsoLtypes(CData& data);
