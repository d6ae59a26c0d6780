#include "support/samples.h"

namespace vek0::test {

// The only file that contains the folder's path, so that a compiler cache works across checkouts.
std::string samplePath(const std::string& name) {
  return name.empty() ? VEK0_SAMPLES : std::string(VEK0_SAMPLES) + "/" + name;
}

}  // namespace vek0::test
