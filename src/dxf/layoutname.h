#pragma once

#include <algorithm>
#include <string_view>

#include "zim0lang/casefold.h"

namespace vek0::detail {

/// Whether it is "Model", or "Layout1" and so on, which every file has.
inline bool isUsualLayoutName(std::u16string_view name) {
  constexpr std::u16string_view model = u"MODEL", sheet = u"LAYOUT";
  const std::u16string_view number = name.substr(std::min(sheet.size(), name.size()));
  return zim::equalsIgnoreCase(name, model) ||
         (zim::equalsIgnoreCase(name.substr(0, sheet.size()), sheet) &&
          number.find_first_not_of(u"0123456789") == std::u16string_view::npos);
}

}  // namespace vek0::detail
