#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "zim0lang/casefold.h"
#include "zim0lang/export.h"

namespace zim {

/// Text of UTF-16 code units: the type of every name and string in a drawing.
///
/// A value type: copies are deep, and assignment throws nothing but `std::bad_alloc`. All units are
/// kept, unpaired surrogates included; those become U+FFFD only on conversion to UTF-8.
class ZIM0LANG_API WString {
 public:
  WString() = default;
  /// Copies up to the terminator; null yields the empty text.
  WString(const Char* text) {  // NOLINT(google-explicit-constructor): u"..." is a name
    if (text) m_text = text;
  }
  /// Copies the first `length` units of `text`, which may contain zeros.
  WString(const Char* text, std::size_t length) : m_text(text, length) {}
  explicit WString(std::u16string_view text) : m_text(text) {}

  /// From UTF-8. Every malformed byte becomes U+FFFD.
  static WString fromUtf8(std::string_view utf8);
  /// As UTF-8. Every unpaired surrogate becomes U+FFFD.
  std::string toUtf8() const;

#if defined(_WIN32)
  /// From the platform's 16-bit text.
  WString(const wchar_t* text) : WString(reinterpret_cast<const Char*>(text)) {}
#endif

  /// The null-terminated units; valid until this text changes.
  const Char* c_str() const { return m_text.c_str(); }
  std::size_t Length() const { return m_text.size(); }  ///< in units
  bool empty() const { return m_text.empty(); }
  /// Makes room for a text of that length. Assigning one that finds room allocates nothing.
  void reserve(std::size_t length) {
    if (length > m_text.capacity()) m_text.reserve(length);
  }
  /// The unit at `i`, which may be `Length()`: that returns 0.
  Char operator[](std::size_t i) const { return m_text[i]; }
  std::u16string_view view() const { return m_text; }
  operator std::u16string_view() const { return m_text; }  // NOLINT: a text is a view of itself

  /// Compares by units: returns a negative value, zero or a positive value.
  int Compare(const WString& other) const { return m_text.compare(other.m_text); }
  bool Equals(const WString& other) const { return m_text == other.m_text; }
  /// Equality by `foldCase`: how every table of a drawing compares names.
  bool EqualsIgnoreCase(const WString& other) const {
    return equalsIgnoreCase(m_text, other.m_text);
  }

  /// Returns this text followed by `other`.
  WString Concat(const WString& other) const;
  WString& operator+=(std::u16string_view other) {
    m_text += other;
    return *this;
  }
  friend WString operator+(WString a, std::u16string_view b) { return a += b; }

  /// Replaces this text with the message of that id (see `CStringLoader`). If there is none, clears
  /// the text and returns false.
  bool LoadStr(long id);

  friend bool operator==(const WString& a, const WString& b) { return a.m_text == b.m_text; }
  friend bool operator!=(const WString& a, const WString& b) { return a.m_text != b.m_text; }
  friend bool operator<(const WString& a, const WString& b) { return a.m_text < b.m_text; }

 private:
  std::u16string m_text;
};

}  // namespace zim

/// \cond  Doxygen takes this for a class without a namespace.
template <>
struct std::hash<zim::WString> {
  std::size_t operator()(const zim::WString& text) const {
    return std::hash<std::u16string_view>()(text.view());
  }
};
/// \endcond
