#pragma once

#include <string>
#include <string_view>

#include "vek0core/export.h"
#include "zim0lang/wstring.h"

/// The name of a file from the bytes that the platform knows it by, which are UTF-8 as a rule.
///
/// A byte that is no part of UTF-8 becomes a unit from U+DC80 to U+DCFF, which no text has, so that
/// every name can be told and comes back from `fileNameToBytes`.
VEK0_API zim::WString fileNameFromBytes(std::string_view bytes);

/// The bytes of a name: UTF-8, but for units from U+DC80 to U+DCFF that stand alone.
VEK0_API std::string fileNameToBytes(const zim::WString& name);
