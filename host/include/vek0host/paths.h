#pragma once

#include <filesystem>
#include <string>

#include "vek0core/files/filename.h"

namespace vek0::host {

/// A path from an argument: UTF-8, or whatever bytes names of the platform have.
inline std::filesystem::path toPath(const std::string& argument) {
#ifdef _WIN32
  return std::filesystem::path(std::u8string(argument.begin(), argument.end()));
#else
  return std::filesystem::path(argument);
#endif
}

/// A path in UTF-8, or whatever bytes names of the platform have.
inline std::string toUtf8(const std::filesystem::path& path) {
#ifdef _WIN32
  const std::u8string text = path.u8string();
  return std::string(text.begin(), text.end());
#else
  return path.native();
#endif
}

/// The name to pass to the library's file classes.
inline zim::WString toName(const std::filesystem::path& path) {
#ifdef _WIN32
  return zim::WString(std::u16string_view(path.u16string()));
#else
  return fileNameFromBytes(path.native());
#endif
}

}  // namespace vek0::host
