#pragma once

#include "vek0core/export.h"

class CData;
class CLtypeLoader;

/// Adds copies of the loaded linetypes to the drawing and returns how many. Linetypes without a
/// name, or with a name already used by the drawing or an earlier one of them (ignoring case), are
/// skipped: existing definitions are kept. Texts get the drawing's style of the same name, or none
/// if there is no such style.
VEK0_API int addLtypes(CData& data, const CLtypeLoader& loader);

/// Adds the fourteen line types of ISO 128 for a line width of 1 mm, "ACAD_ISO02W100" to
/// "ACAD_ISO15W100", as `addLtypes` does. Drawings do not contain them by default. samples/iso.lin
/// has the same definitions.
VEK0_API int addIsoLtypes(CData& data);
