#include "vek0host/textpattern.h"

#include <algorithm>

#include "zim0lang/casefold.h"
#include "zim0lang/wstring.h"

namespace vek0::host {
namespace {

// The standard library translates expressions recursively.
constexpr std::size_t kLongestPattern = 1000;
constexpr std::size_t kLongestBacktracked = 1000;
constexpr std::wstring_view kSpecial = L"\\^$.|?*+()[]{}";

std::wstring widened(std::u16string_view text) {
  constexpr char16_t high = 0xD800, low = 0xDC00, end = 0xE000;
  std::wstring wide;
  wide.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i];
    const bool isPair = sizeof(wchar_t) > sizeof(char16_t) && unit >= high && unit < low &&
                        i + 1 < text.size() && text[i + 1] >= low && text[i + 1] < end;
    if (!isPair) {
      wide += static_cast<wchar_t>(unit);
      continue;
    }
    constexpr char32_t beyond = 0x10000;
    const auto upper = static_cast<char32_t>(unit - high);
    wide += static_cast<wchar_t>(beyond + (upper << 10) + static_cast<char32_t>(text[++i] - low));
  }
  return wide;
}

wchar_t folded(wchar_t c) {
  const auto code = static_cast<char32_t>(c);
  return code < 0x10000 ? static_cast<wchar_t>(zim::foldCase(static_cast<char16_t>(code))) : c;
}

// Not what follows a backslash: \D means the opposite of \d.
void foldPattern(std::wstring& pattern, bool isFixed) {
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (!isFixed && pattern[i] == L'\\')
      ++i;
    else
      pattern[i] = folded(pattern[i]);
  }
}

std::wstring escaped(const std::wstring& text) {
  std::wstring out;
  for (const wchar_t c : text) {
    if (kSpecial.find(c) != std::wstring_view::npos) out += L'\\';
    out += c;
  }
  return out;
}

// What stands in brackets for letters, digits and underscores. \w knows those of ASCII alone.
std::wstring wordCharacters() {
  const auto last = static_cast<wchar_t>(sizeof(wchar_t) > sizeof(char16_t) ? 0x10FFFF : 0xFFFF);
  return L"\\w\u00aa\u00b5\u00ba\u00c0-\u00d6\u00d8-\u00f6\u00f8-\u1fff\u2c00-\u2dff\u3040-" +
         std::wstring(1, last);
}

std::string reasonOf(const std::regex_error& fault) {
  using namespace std::regex_constants;
  const auto code = fault.code();
  if (code == error_paren) return "a parenthesis has no partner";
  if (code == error_brack) return "a bracket has no partner";
  if (code == error_brace || code == error_badbrace) return "wrong repetition in braces";
  if (code == error_badrepeat) return "nothing to repeat";
  if (code == error_range) return "wrong range in brackets";
  if (code == error_ctype || code == error_collate) return "unknown name in brackets";
  if (code == error_escape) return "wrong escape";
  if (code == error_backref) return "reference to a group that does not exist";
  if (code == error_space || code == error_complexity || code == error_stack)
    return "it is too complex";
  return fault.what();
}

}  // namespace

TextPattern::TextPattern(const PatternOptions& options) : m_ignoresCase(options.ignoresCase) {
  std::wstring pattern = widened(zim::WString::fromUtf8(options.pattern).view());
  if (m_ignoresCase) foldPattern(pattern, options.isFixed);
  const bool isLiteral = options.isFixed || pattern.find_first_of(kSpecial) == std::wstring::npos;
  if (pattern.size() > kLongestPattern) {
    m_error = "the pattern is longer than " + std::to_string(kLongestPattern) + " characters";
  } else if (isLiteral && !options.wholeWords) {
    m_literal = pattern;
  } else {
    compile(isLiteral ? escaped(pattern) : pattern, options.wholeWords);
  }
}

void TextPattern::compile(const std::wstring& pattern, bool wholeWords) {
  const auto plain = std::regex_constants::ECMAScript;
  auto safe = plain | std::regex_constants::nosubs;
#ifdef __GLIBCXX__
  // Follows all alternatives at once, instead of one after the other with a stack frame for each
  // character. Refuses back references.
  safe |= std::regex_constants::__polynomial;
#else
  m_backtracks = true;
#endif
  // The prefix lets one pass find a match anywhere; starting anew at every character would take
  // quadratic time.
  const std::wstring word = wordCharacters();
  const std::wstring prefix =
      wholeWords ? L"(?:[\\s\\S]*[^" + word + L"])?(?:" : std::wstring(L"[\\s\\S]*(?:");
  const std::wstring suffix = wholeWords ? L")(?![" + word + L"])" : std::wstring(L")");
  try {
    const std::wregex valid(pattern, plain);  // alone: "a)(b" would be valid with the prefix
    try {
      m_expression.emplace(prefix + pattern + suffix, safe);
    } catch (const std::regex_error&) {
      m_backtracks = true;
      m_expression.emplace(prefix + pattern + suffix, plain);
    }
  } catch (const std::regex_error& fault) {
    m_error = "invalid expression: " + reasonOf(fault);
  }
}

bool TextPattern::isIn(std::u16string_view text) const {
  if (!m_error.empty()) return false;
  if (m_backtracks) text = text.substr(0, kLongestBacktracked);
  std::wstring wide = widened(text);
  if (m_ignoresCase) std::transform(wide.begin(), wide.end(), wide.begin(), folded);
  if (!m_expression) return wide.find(m_literal) != std::wstring::npos;
  try {
    return std::regex_search(wide, *m_expression, std::regex_constants::match_continuous);
  } catch (const std::regex_error&) {  // some libraries give up during the match
    return false;
  }
}

}  // namespace vek0::host
