#pragma once

#include <stdexcept>
#include <string>

namespace vek0::python {

/// What reaches Python as `vek0.Error`.
struct Fault : std::runtime_error {
  Fault(std::string givenKind, const std::string& message, long givenLine = 0,
        std::string givenFile = {})
      : std::runtime_error(message),
        kind(std::move(givenKind)),
        line(givenLine),
        file(std::move(givenFile)) {}

  std::string kind;
  long line;  ///< 0: none
  std::string file;
};

/// What reaches Python as `vek0.UnknownNameError`: a layer, block or the like does not exist.
struct UnknownName : Fault {
  explicit UnknownName(const std::string& message) : Fault("unknown name", message) {}
};

}  // namespace vek0::python
