#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "vek0core/dxfout/nameacadconverter.h"
#include "vek0core/files/textcodec.h"

namespace vek0::detail {

/// The converted names of one kind of item in the encoding of the file, computed
/// once an item: a drawing names a few layers a million times. The views stay valid
/// while this lives.
template <class Item>
class EncodedNames {
 public:
  explicit EncodedNames(const CNameAcadConverter& converter) : m_converter(converter) {}

  std::string_view operator()(const Item* item) {
    // Entities of one layer mostly stand together.
    if (!m_lastName.data() || item != m_last) m_lastName = find(item);
    m_last = item;
    return m_lastName;
  }

 private:
  std::string_view find(const Item* item) {
    const auto [known, isNew] = m_names.try_emplace(item);
    if (isNew) encodeText(m_converter.GetName(item), known->second);
    return known->second;
  }

  const CNameAcadConverter& m_converter;
  std::unordered_map<const Item*, std::string> m_names;
  const Item* m_last = nullptr;
  std::string_view m_lastName;
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
