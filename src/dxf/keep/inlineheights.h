#pragma once

#include "dxf/keep/recordmapper.h"

namespace vek0::detail {

/// Scales the heights that formatting codes (`\H2.5;`) set within the text of a record, which is
/// divided among pairs: any number with the code `part`, then one with the code `last`. Heights
/// relative to the text's (`\H2x;`) stay.
void scaleInlineHeights(RecordMapper& mapper, long part, long last);

}  // namespace vek0::detail
