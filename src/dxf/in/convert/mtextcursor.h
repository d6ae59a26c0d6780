#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "files/number.h"
#include "vek0core/files/textcodec.h"
#include "zim0lang/wstring.h"

namespace vek0::detail {

/// Reads the text of an MTEXT from its front.
class MTextCursor {
 public:
  explicit MTextCursor(std::u16string_view text) : m_rest(text) {}

  bool empty() const { return m_rest.empty(); }
  std::u16string_view rest() const { return m_rest; }
  char16_t peek(std::size_t i = 0) const { return i < m_rest.size() ? m_rest[i] : u'\0'; }
  char16_t take() {
    const char16_t c = m_rest[0];
    m_rest.remove_prefix(1);
    return c;
  }
  void skip(std::size_t n) { m_rest.remove_prefix(std::min(n, m_rest.size())); }
  bool skipIf(char16_t c) {
    const bool is = !m_rest.empty() && m_rest[0] == c;
    if (is) m_rest.remove_prefix(1);
    return is;
  }

  /// The number at the front, and whether there is one.
  bool takeNumber(double& value) {
    std::size_t n = 0;
    while (n < m_rest.size() && (isNumberUnit(m_rest[n]) || isExponent(n))) ++n;
    const ParsedDouble number = parseDouble(m_rest.substr(0, n));
    m_rest.remove_prefix(n);
    value = number.value;
    return n > 0 && number.finite;
  }
  /// Removes and returns the text before the next semicolon, or all of it if there is none; the
  /// semicolon is removed too.
  std::u16string_view takeArgument() {
    const std::size_t n = std::min(m_rest.find(u';'), m_rest.size());
    const std::u16string_view argument = m_rest.substr(0, n);
    skip(n + 1);
    return argument;
  }
  /// Appends the text of a character escape or caret escape at the front.
  bool takeEscape(std::u16string& out) {
    const std::size_t length = escapeLength();
    const std::u16string_view escape = m_rest.substr(0, length);
    const std::u16string unit = decodeEscapes(escape);
    if (unit == escape) return false;
    out += unit;
    skip(length);
    return true;
  }

 private:
  static bool isNumberUnit(char16_t c) {
    return (c >= u'0' && c <= u'9') || c == u'.' || c == u'-' || c == u'+';
  }
  // "^I", "\U+20AC" or "\M+1A0B2", as far as the front may be one; 0 if it cannot.
  std::size_t escapeLength() const {
    if (peek() == u'^') return 2;
    if (peek(1) == u'U') return 7;
    return peek(1) == u'M' ? 8 : 0;
  }
  bool isExponent(std::size_t n) const {
    return n > 0 && zim::foldCase(m_rest[n]) == zim::foldCase(u'e') && n + 1 < m_rest.size() &&
           isNumberUnit(m_rest[n + 1]);
  }

  std::u16string_view m_rest;
};

}  // namespace vek0::detail
