#include "zim0lang/casefold.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace zim {
namespace {

// How the capitals of a range relate to their small letters.
enum class Pairing {
  kOffset,     // small = capital + offset
  kAlternate,  // capitals at even distance from `first`, each followed by its small letter
};

struct FoldRange {
  Char first, last;
  Pairing pairing;
  int offset;
};

// Simple foldings of the Unicode character database, gathered into ranges and
// sorted. Letters whose partner has another length, and those of scripts that
// drawings hardly name layers in, are left out: they only match themselves.
constexpr FoldRange kRanges[] = {
    {0x0041, 0x005A, Pairing::kOffset,    32  }, // Basic Latin
    {0x00C0, 0x00D6, Pairing::kOffset,    32  }, // Latin-1
    {0x00D8, 0x00DE, Pairing::kOffset,    32  },
    {0x0100, 0x012F, Pairing::kAlternate, 0   }, // Latin Extended-A
    {0x0132, 0x0137, Pairing::kAlternate, 0   },
    {0x0139, 0x0148, Pairing::kAlternate, 0   },
    {0x014A, 0x0177, Pairing::kAlternate, 0   },
    {0x0178, 0x0178, Pairing::kOffset,    -121},
    {0x0179, 0x017E, Pairing::kAlternate, 0   },
    {0x01CD, 0x01DC, Pairing::kAlternate, 0   }, // Latin Extended-B (Pinyin, Romanian)
    {0x01DE, 0x01EF, Pairing::kAlternate, 0   },
    {0x0200, 0x021F, Pairing::kAlternate, 0   },
    {0x0222, 0x0233, Pairing::kAlternate, 0   },
    {0x0386, 0x0386, Pairing::kOffset,    38  }, // Greek with tonos
    {0x0388, 0x038A, Pairing::kOffset,    37  },
    {0x038C, 0x038C, Pairing::kOffset,    64  },
    {0x038E, 0x038F, Pairing::kOffset,    63  },
    {0x0391, 0x03A1, Pairing::kOffset,    32  }, // Greek
    {0x03A3, 0x03AB, Pairing::kOffset,    32  },
    {0x03C2, 0x03C2, Pairing::kOffset,    1   }, // final sigma is a sigma
    {0x0400, 0x040F, Pairing::kOffset,    80  }, // Cyrillic
    {0x0410, 0x042F, Pairing::kOffset,    32  },
    {0x0460, 0x0481, Pairing::kAlternate, 0   },
    {0x048A, 0x04BF, Pairing::kAlternate, 0   },
    {0x04C1, 0x04CE, Pairing::kAlternate, 0   },
    {0x04D0, 0x052F, Pairing::kAlternate, 0   },
    {0x0531, 0x0556, Pairing::kOffset,    48  }, // Armenian
    {0x1E00, 0x1E95, Pairing::kAlternate, 0   }, // Latin Extended Additional
    {0x1EA0, 0x1EFF, Pairing::kAlternate, 0   }, // Vietnamese
    {0x2160, 0x216F, Pairing::kOffset,    16  }, // Roman numerals
    {0x24B6, 0x24CF, Pairing::kOffset,    26  }, // circled letters
    {0xFF21, 0xFF3A, Pairing::kOffset,    32  }, // full-width Latin
};

Char foldBeyondAscii(Char unit) {
  const auto* range = std::upper_bound(std::begin(kRanges), std::end(kRanges), unit,
                                       [](Char u, const FoldRange& r) { return u < r.first; });
  if (range == std::begin(kRanges)) return unit;
  --range;
  if (unit > range->last) return unit;
  if (range->pairing == Pairing::kOffset) return static_cast<Char>(unit + range->offset);
  const bool capital = (unit - range->first) % 2 == 0;
  return capital ? static_cast<Char>(unit + 1) : unit;
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
