#pragma once

#include <filesystem>
#include <string>

#include "zim0lang/wstring.h"

namespace vek0::tool {

/// A path from the UTF-8 that arguments are in.
inline std::filesystem::path toPath(const std::string& utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

/// The name that the library's files take.
inline zim::WString toName(const std::filesystem::path& path) {
  return zim::WString(std::u16string_view(path.u16string()));
}

}  // namespace vek0::tool
