#pragma once

#include <string>
#include <string_view>

#include "vek0core/export.h"
#include "zim0lang/wstring.h"

/// Converts a file name from the platform's bytes, which are usually UTF-8.
///
/// A byte that is not valid UTF-8 becomes a unit from U+DC80 to U+DCFF, which no valid text
/// contains, so that every name is representable and `fileNameToBytes` restores it exactly.
VEK0_API zim::WString fileNameFromBytes(std::string_view bytes);

/// The bytes of a name: UTF-8, except that unpaired units from U+DC80 to U+DCFF become the single
/// bytes that they stand for.
VEK0_API std::string fileNameToBytes(const zim::WString& name);
