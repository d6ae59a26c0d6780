#pragma once

#include <string>

namespace vek0::tool {

/// Why nothing of an input can be read.
struct InputFault {
  const char* kind = nullptr;  ///< "file missing", "folder" or "file unreadable"; null: none
  std::string message;         ///< one sentence
};

/// What keeps `path` ("-": standard input) from being read. Opens regular files, and only
/// these, since looking into a pipe takes something out of it.
InputFault inputFault(const std::string& path);

}  // namespace vek0::tool
