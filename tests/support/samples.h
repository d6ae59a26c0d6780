#pragma once

#include <string>

namespace vek0::test {

/// Path of a file in the folder of sample drawings; without a name, of the folder itself.
std::string samplePath(const std::string& name = {});

/// The same in quotes, for a command line.
inline std::string quotedSample(const std::string& name) { return "'" + samplePath(name) + "'"; }

}  // namespace vek0::test
