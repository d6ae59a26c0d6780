#pragma once

#include "vek0core/geometry/pnt.h"
#include "zim0lang/wstring.h"

class CFileDXFOWriter;

namespace vek0::detail {

/// Bit of a block's flags: an external reference.
inline constexpr long kExternal = 4;

/// The head of a block definition; `path` is that of an external reference.
void beginBlock(CFileDXFOWriter& writer, const zim::WString& name, long flags, const PNT_3D& base,
                const zim::WString& path);

/// Its end, with a layer in the exchange form.
void endBlock(CFileDXFOWriter& writer, bool withLayer);

}  // namespace vek0::detail
