#include "vek0core/hatch/catalogue.h"

#include <algorithm>
#include <array>
#include <functional>
#include <numeric>

#include "hatch/patterns.h"
#include "zim0lang/casefold.h"

using vek0::detail::kNoPatterns;
using vek0::detail::kPatterns;

namespace {

// The indexes sorted by name; equal names, if any, in catalogue order.
const std::array<long, kNoPatterns>& byName() {
  static const auto sorted = [] {
    std::array<long, kNoPatterns> indexes;
    std::iota(indexes.begin(), indexes.end(), 0L);
    std::stable_sort(indexes.begin(), indexes.end(), [](long a, long b) {
      return zim::compareIgnoreCase(kPatterns[a].name, kPatterns[b].name) < 0;
    });
    return indexes;
  }();
  return sorted;
}

}  // namespace

const HATCH_TYPE* getHatch(long index) {
  return index >= 0 && index < kNoPatterns ? &kPatterns[index] : nullptr;
}

const HATCH_TYPE* getHatch(const zim::WString& name) {
  const auto& indexes = byName();
  const auto found = std::lower_bound(
      indexes.begin(), indexes.end(), name.view(), [](long i, std::u16string_view sought) {
        return zim::compareIgnoreCase(kPatterns[i].name, sought) < 0;
      });
  if (found == indexes.end() || !zim::equalsIgnoreCase(kPatterns[*found].name, name))
    return nullptr;
  return &kPatterns[*found];
}

// Records outside the catalogue are compared by address too, for which plain `<` is undefined.
long getHatch(const HATCH_TYPE& type) {
  const std::less<const HATCH_TYPE*> before;
  if (before(&type, kPatterns) || !before(&type, kPatterns + kNoPatterns)) return -1;
  return static_cast<long>(&type - kPatterns);
}
