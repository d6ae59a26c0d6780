#pragma once

// All that a test includes besides internal headers and the helpers of its room. Precompiled: most
// of the time of compiling a test would go into these.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <list>
#include <map>
#include <memory>
#include <new>
#include <numbers>
#include <numeric>
#include <optional>
#include <ostream>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "support/dxftext.h"
#include "support/named.h"
#include "support/quietasserts.h"
#include "support/rows.h"
#include "support/samples.h"
#include "vek0core/vek0core.h"

namespace vek0::test {

inline constexpr double kInf = std::numeric_limits<double>::infinity();
inline constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kUntouched = 77;  ///< preset value of outputs that a call may leave alone

}  // namespace vek0::test

// Every test file is about these names.
using namespace vek0::test;
