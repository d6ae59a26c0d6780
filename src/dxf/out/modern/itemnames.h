#pragma once

#include <string_view>
#include <vector>

#include "zim0lang/wstring.h"

class CFileReport;

namespace vek0::detail {

/// A name of a table, and the part of it that the rules leave alone.
struct OwnName {
  zim::WString name;
  bool isDependent = false;  ///< of an external reference, and therefore with a '|'
  /// Replaces the part before the '|', unless empty: the name under which the reference is written.
  zim::WString reference = {};
};

/// The names under which the items are written: unique, ignoring case, different from `reserved`,
/// not empty, at most 255 units, and without characters that the format forbids. Valid names stay,
/// except for repetitions; the others are corrected and numbered. Reports changed names. A leading
/// '*' is allowed if `stars`. Linear in the names on average.
std::vector<zim::WString> itemNames(const std::vector<OwnName>& own,
                                    const std::vector<std::u16string_view>& reserved, bool stars,
                                    CFileReport* report);

}  // namespace vek0::detail
