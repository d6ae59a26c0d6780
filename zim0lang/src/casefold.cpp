#include "zim0lang/casefold.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace zim {
namespace {

// Every `step`-th unit from `first` to `last` folds to itself plus `offset`.
struct FoldRange {
  Char first, last;
  int step, offset;
};

// Sorted and apart. Generated, since nobody can check two hundred rows by eye.
constexpr FoldRange kRanges[] = {
#include "casefoldranges.inc"
};

Char foldBeyondAscii(Char unit) {
  const auto* range = std::upper_bound(std::begin(kRanges), std::end(kRanges), unit,
                                       [](Char u, const FoldRange& r) { return u < r.first; });
  if (range == std::begin(kRanges)) return unit;
  --range;
  const bool folds = unit <= range->last && (unit - range->first) % range->step == 0;
  return folds ? static_cast<Char>(unit + range->offset) : unit;
}

}  // namespace

Char foldCase(Char unit) {
  if (unit >= u'A' && unit <= u'Z') return static_cast<Char>(unit + 32);
  return unit < 0x80 ? unit : foldBeyondAscii(unit);
}

bool equalsIgnoreCase(std::u16string_view a, std::u16string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i] != b[i] && foldCase(a[i]) != foldCase(b[i])) return false;
  }
  return true;
}

int compareIgnoreCase(std::u16string_view a, std::u16string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    const int difference = static_cast<int>(foldCase(a[i])) - static_cast<int>(foldCase(b[i]));
    if (difference != 0) return difference;
  }
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

std::size_t hashIgnoreCase(std::u16string_view text) {
  std::uint64_t hash = 0xcbf29ce484222325u;
  for (const Char unit : text) hash = (hash ^ foldCase(unit)) * 0x100000001b3u;
  return static_cast<std::size_t>(hash ^ (hash >> 32));
}

}  // namespace zim
