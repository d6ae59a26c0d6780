#pragma once

#include "dxf/keep/editcontext.h"
#include "dxf/keep/itemedits.h"

namespace vek0::detail {

/// Plans the repairs of what is damaged in the source apart from the edits: items that entities use
/// but no table declares, repeated handles, objects without an
/// owner, texts in undeclared styles, pointers to nothing, a missing end. Call it when the
/// other edits are planned. Linear in the file.
void repair(EditContext& context, ItemEdits& items);

}  // namespace vek0::detail
