#pragma once

#include <cstddef>
#include <string_view>

#include "zim0lang/casefold.h"

/// A non-owning view of a null-terminated text: a single pointer. Null (the default) compares and
/// counts as empty.
class SmartString {
 public:
  SmartString() = default;
  SmartString(const zim::Char* text) : m_text(text) {}  // NOLINT(google-explicit-constructor)
  SmartString(const SmartString&) = default;
  SmartString& operator=(const SmartString&) = default;
  SmartString& operator=(const zim::Char* text) {
    m_text = text;
    return *this;
  }

  /// The unit at `i`, which must not be past the terminator; the text must not be null.
  zim::Char operator[](int i) const { return m_text[i]; }
  const zim::Char* c_str() const { return m_text; }
  /// Number of units before the terminator. Linear: counted at every call.
  std::size_t size() const { return view().size(); }

  /// Case-insensitive equality. Both names mean that on purpose: every keyword comparison ignores
  /// case, whichever name a caller uses.
  bool equal_cs(SmartString other) const { return zim::equalsIgnoreCase(view(), other.view()); }
  bool equal_cs(const zim::Char* other) const { return equal_cs(SmartString(other)); }
  bool equal_ci(SmartString other) const { return equal_cs(other); }
  bool equal_ci(const zim::Char* other) const { return equal_cs(SmartString(other)); }

 private:
  std::u16string_view view() const {
    return m_text ? std::u16string_view(m_text) : std::u16string_view();
  }

  const zim::Char* m_text = nullptr;
};
