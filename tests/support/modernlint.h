#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vek0::test {

/// Lists what a strict reader of version "AC1015" or later could reject in a file that we wrote:
/// handles that are missing, repeated or not below `$HANDSEED`, pointers to handles that do not
/// exist, entities whose owner does not, wrong counts of tables, and sections or blocks without an
/// end.
std::vector<std::string> lintModern(std::string_view file);

}  // namespace vek0::test
