#pragma once

#include <cstdint>

class CData;
class CEnt;
class CLayer;
class CLtype;
class CStyle;

namespace vek0::detail {

/// 64-bit numbers that stand for the state of objects: equal states have equal numbers, and
/// different ones, by chance, nearly never. Items are known by name, so that the numbers of two
/// drawings compare. Selection, host data and extents do not count.
struct EntPrint {
  std::uint64_t properties;  ///< layer, linetype, color and traits, those of attributes included
  std::uint64_t shape;       ///< everything else but the handle

  bool operator==(const EntPrint&) const = default;
};
EntPrint printOf(const CEnt& ent);

std::uint64_t printOf(const CLayer& layer);
std::uint64_t printOf(const CLtype& ltype);
std::uint64_t printOf(const CStyle& style);
/// Everything in the drawing that a file can hold. Linear in the drawing.
std::uint64_t printOf(const CData& data);

}  // namespace vek0::detail
