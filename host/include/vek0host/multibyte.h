#pragma once

#include <string>
#include <string_view>

namespace vek0::host {

/// Decodes the East Asian code pages by the system's converter; see `MultiByteDecoder`. Invalid
/// bytes become U+FFFD.
bool decodeMultiByte(int page, std::string_view bytes, std::u16string& out);

}  // namespace vek0::host
