#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vek0::tool {

/// The bytes as a gzip stream; nothing if this build has no compression, or memory runs out.
std::optional<std::string> gzipped(std::string_view bytes);

}  // namespace vek0::tool
