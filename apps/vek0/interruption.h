#pragma once

namespace vek0::tool {

/// From now on, a signal that ends the tool also removes the unfinished output.
void removeOutputsOnInterruption();

}  // namespace vek0::tool
