#pragma once

#include <string>

namespace vek0::host {

/// Why an input cannot be read at all.
struct InputFault {
  const char* kind = nullptr;  ///< "file missing", "folder" or "file unreadable"; null: none
  std::string message;         ///< one sentence
};

/// Checks whether `path` ("-": standard input) can be read. Opens only regular files, since
/// examining a pipe consumes data.
InputFault inputFault(const std::string& path);

}  // namespace vek0::host
