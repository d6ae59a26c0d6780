#pragma once

namespace vek0::detail {

// Bits of code 70 of table items that belong to external references, and one that says whether
// anything refers to the item. None is kept in memory as read.
inline constexpr long kOfXRef = 16, kResolved = 32, kReferenced = 64;

}  // namespace vek0::detail
