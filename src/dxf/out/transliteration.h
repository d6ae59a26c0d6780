#pragma once

#include <string>
#include <string_view>

namespace vek0::detail {

/// The name in the Latin letters without accents that it is usually written in where there are no
/// others: umlauts as AE, OE and UE, Cyrillic and Greek letters by their sound, other letters
/// without their accents; in uppercase. Characters that have no such letters stay. A name without
/// any of these letters is returned as it is.
std::u16string transliterated(std::u16string_view name);

}  // namespace vek0::detail
