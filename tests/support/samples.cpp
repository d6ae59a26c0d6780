#include "support/samples.h"

namespace vek0::test {

// The folder is known to this file alone, so that a compiler cache serves every checkout.
std::string samplePath(const std::string& name) {
  return name.empty() ? VEK0_SAMPLES : std::string(VEK0_SAMPLES) + "/" + name;
}

}  // namespace vek0::test
