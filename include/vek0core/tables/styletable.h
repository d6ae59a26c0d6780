#pragma once

#include "vek0core/export.h"
#include "vek0core/tables/nameditem.h"
#include "vek0core/tables/style.h"

/// The text styles of a drawing. "STANDARD" exists from the start, first in the list, and is
/// otherwise an ordinary item.
class VEK0_API CStyleTable : public CNamedItemTableImp {
 public:
  using CNamedItemTableImp::contains;
  using CNamedItemTableImp::getPlace;
  /// Creates "STANDARD" with the font table's default font.
  CStyleTable();
  /// A view, see `CNamedItemTableImp`.
  CStyleTable(const CStyleTable& src) = default;

  /// Takes ownership of the style.
  void add(CStyle* style) { CNamedItemTableImp::add(style); }
  /// Removes it; the caller owns it afterwards. After its "STANDARD" is removed, the table has no
  /// standard style.
  void remove(CStyle* style);
  /// Puts a style back at its former place (`getPlace`); "STANDARD" becomes the standard style
  /// again.
  void restore(CStyle* style, const Place& place);
  /// First style added with that name, ignoring case; null if there is none.
  CStyle* get(std::u16string_view name) const {
    return static_cast<CStyle*>(CNamedItemTableImp::get(name));
  }
  /// Style `i` in order of addition; unchecked.
  CStyle* operator[](int i) const {
    return static_cast<CStyle*>(CNamedItemTableImp::operator[](i));
  }
  /// The style that the table made, or null after its removal.
  CStyleStandard* getStyleStandard() const { return m_standard; }
  void clearAll();

 private:
  CStyleStandard* m_standard;
};
