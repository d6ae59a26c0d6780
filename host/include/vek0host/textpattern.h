#pragma once

#include <optional>
#include <regex>
#include <string>
#include <string_view>

namespace vek0::host {

/// What to look for in texts, and how.
struct PatternOptions {
  std::string pattern;   ///< UTF-8: an ECMAScript regular expression
  bool isFixed = false;  ///< the pattern is a plain string instead
  bool ignoresCase = false;
  bool wholeWords = false;  ///< a match is neither preceded nor followed by a letter or digit
};

/// A search pattern. Characters are code points where `wchar_t` holds them, and code units
/// elsewhere.
///
/// Matching takes time proportional to text and pattern together, and no stack that grows with the
/// text. An exception are expressions with back references, whose time has no useful bound: they
/// are matched with the first 1000 characters of a text only.
class TextPattern {
 public:
  explicit TextPattern(const PatternOptions& options);

  /// Why the pattern is invalid; empty if it is valid.
  const std::string& error() const { return m_error; }

  /// Whether the text contains a match; false if the pattern is invalid.
  bool isIn(std::u16string_view text) const;

 private:
  void compile(const std::wstring& pattern, bool wholeWords);

  bool m_ignoresCase;
  bool m_backtracks = false;
  std::wstring m_literal;  // searched for if there is no expression
  std::optional<std::wregex> m_expression;
  std::string m_error;
};

}  // namespace vek0::host
