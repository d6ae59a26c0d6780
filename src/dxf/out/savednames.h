#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "vek0core/dxf/out/nameacadconverter.h"
#include "vek0core/files/textcodec.h"

namespace vek0::detail {

/// The converted names of one kind of item in the encoding of the file. Drawings refer to a few
/// layers a million times: recently written names are cached. A view is valid until the next
/// request.
template <class Item>
class EncodedNames {
 public:
  explicit EncodedNames(const CNameAcadConverter& converter)
      : m_converter(converter), m_slots(kSlots) {}

  std::string_view operator()(const Item* item) {
    Slot& slot = m_slots[std::hash<const Item*>()(item) % kSlots];
    if (!slot.known || slot.item != item) {
      slot.name.clear();
      encodeText(m_converter.GetName(item), slot.name);
      slot.item = item;
      slot.known = true;
    }
    return slot.name;
  }

 private:
  // Prime, because item addresses are regularly spaced. A table that grew with the drawing would
  // not fit the processor cache.
  static constexpr std::size_t kSlots = 509;

  struct Slot {
    const Item* item = nullptr;
    bool known = false;
    std::string name;
  };

  const CNameAcadConverter& m_converter;
  std::vector<Slot> m_slots;
};

class SavedNames {
 public:
  explicit SavedNames(const CNameAcadConverter& converter)
      : layer(converter), ltype(converter), style(converter), block(converter) {}

  EncodedNames<CLayer> layer;
  EncodedNames<CLtype> ltype;
  EncodedNames<CStyle> style;
  EncodedNames<CBlock> block;
};

}  // namespace vek0::detail
