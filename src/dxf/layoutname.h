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

/// Names of the blocks of layouts, without their first letter; those of further sheets go on with a
/// number.
inline constexpr std::u16string_view kModelBlock = u"model_space", kPaperBlock = u"paper_space";

/// Whether a block of that name holds the model (`kModelBlock`) or a sheet (`kPaperBlock`).
inline bool isLayoutBlock(std::u16string_view name, std::u16string_view kind) {
  return !name.empty() && zim::equalsIgnoreCase(name.substr(1, kind.size()), kind);
}

}  // namespace vek0::detail
