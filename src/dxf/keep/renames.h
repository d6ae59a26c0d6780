#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "dxf/keep/sourceindex.h"
#include "zim0lang/wstring.h"

class CData;
class CTextDecoder;

namespace vek0::detail {

/// The items that have another name in the edited drawing. Every record that names one follows.
class Renames {
 public:
  enum Table { Layers, Ltypes, Styles, Blocks, kTables };

  /// Finds the items of `pristine` that the edited drawing has under another name, and gives them
  /// that name: those whose entities are, with the same handles, on one new item that is equal
  /// otherwise. Linear in the drawings, and in the items if none is gone.
  void find(CData& pristine, const CData& edited);
  bool empty() const;

  /// The name that replaces one of the source, given as key (`nameKey`); null if none does.
  const zim::WString* nameOf(Table table, const std::string& key) const;
  /// Encodes the new names. Call it before `apply`.
  void encode(const CTextDecoder& decoder,
              const std::function<std::string(std::u16string_view)>& encoded);
  /// Changes the names in a record of that section; returns whether there were any.
  bool apply(SourceRecord& record, SourceSection section) const;

 private:
  struct Name {
    zim::WString name;
    std::string encoded = {};
  };

  template <class Item>
  void take(Table table, Item& item, const Item& renamed);

  std::array<std::unordered_map<std::string, Name>, kTables> m_names;
  const CTextDecoder* m_decoder = nullptr;
};

/// Files spell names in several ways, so items are known by their decoded names, case folded.
std::string nameKey(std::u16string_view name);

}  // namespace vek0::detail
