#pragma once

#include <string_view>

#include "vek0core/tables/nameditem.h"

/// Table of named items of one kind, for code that keeps items outside a drawing. `T` derives from
/// `CNamedItem`.
///
/// It owns its items and cannot be copied: a copy of the base would be a view, and copying an item
/// is up to the item's factory.
template <class T>
class CNamedItemTable : public CNamedItemTableImp {
 public:
  CNamedItemTable() = default;
  CNamedItemTable(const CNamedItemTable&) = delete;
  CNamedItemTable& operator=(const CNamedItemTable&) = delete;

  /// Takes ownership of the item.
  void add(T* item) { CNamedItemTableImp::add(item); }
  /// Removes it; the caller owns it afterwards.
  void remove(T* item) { CNamedItemTableImp::remove(item); }
  /// First item added with that name, ignoring case; null if there is none.
  T* get(std::u16string_view name) const { return static_cast<T*>(CNamedItemTableImp::get(name)); }
  /// Item `i` in order of addition; unchecked.
  T* operator[](int i) const { return static_cast<T*>(CNamedItemTableImp::operator[](i)); }
};
