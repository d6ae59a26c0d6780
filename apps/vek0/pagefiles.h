#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace vek0::tool {

/// The folder with the page that shows drawings in browsers: `given`, or what VEK0_PAGE names, or
/// where it is installed or built beside this program. Nothing, with the reason in `error`, if
/// there is none.
std::optional<std::filesystem::path> findPage(const std::string& given, std::string& error);

/// The content of a file; nothing if it cannot be read.
std::optional<std::string> bytesOfFile(const std::filesystem::path& path);

}  // namespace vek0::tool
