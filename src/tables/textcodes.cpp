#include "vek0core/tables/textcodes.h"

#include <string>
#include <string_view>

namespace vek0 {
namespace {

bool isDigit(zim::Char unit) { return unit >= u'0' && unit <= u'9'; }

class Decoder {
 public:
  explicit Decoder(std::u16string_view text) : m_rest(text) {}

  DecodedText run() {
    while (!m_rest.empty()) step();
    // Lines that are not ended extend to the end of the text.
    for (const TextRule each : {TextRule::Under, TextRule::Over, TextRule::Through}) close(each);
    m_result.string = zim::WString(m_seen);
    return std::move(m_result);
  }

 private:
  static constexpr std::size_t kNone = std::u16string_view::npos;
  static constexpr int kFirstPrinted = 32;  // lower codes are control characters

  void step() {
    // Unknown codes are shown literally.
    if (m_rest.size() > 2 && m_rest.substr(0, 2) == u"%%" && takeCode(m_rest[2])) return;
    m_seen += m_rest[0];
    m_rest.remove_prefix(1);
  }

  bool takeCode(zim::Char code) {
    switch (code) {
      case u'd':
      case u'D':
        return put(u'\u00B0');
      case u'p':
      case u'P':
        return put(u'\u00B1');
      case u'c':
      case u'C':
        return put(u'\u00D8');
      case u'%':
        return put(u'%');
      case u'u':
      case u'U':
        return rule(TextRule::Under);
      case u'o':
      case u'O':
        return rule(TextRule::Over);
      case u'k':
      case u'K':
        return rule(TextRule::Through);
      default:
        return takeNumber();
    }
  }

  bool takeNumber() {
    if (m_rest.size() < 5 || !isDigit(m_rest[2]) || !isDigit(m_rest[3]) || !isDigit(m_rest[4]))
      return false;
    const int number = (m_rest[2] - u'0') * 100 + (m_rest[3] - u'0') * 10 + (m_rest[4] - u'0');
    // Control characters have no glyph.
    if (number >= kFirstPrinted) m_seen += static_cast<zim::Char>(number);
    m_rest.remove_prefix(5);
    return true;
  }

  // Every such code has three characters.
  bool put(zim::Char unit) {
    m_seen += unit;
    m_rest.remove_prefix(3);
    return true;
  }

  bool rule(TextRule which) {
    m_rest.remove_prefix(3);
    std::size_t& since = m_since[static_cast<std::size_t>(which)];
    if (since == kNone)
      since = m_seen.size();
    else
      close(which);
    return true;
  }

  void close(TextRule which) {
    std::size_t& since = m_since[static_cast<std::size_t>(which)];
    if (since != kNone && since < m_seen.size())
      m_result.ruled.push_back({since, m_seen.size(), which});
    since = kNone;
  }

  std::u16string_view m_rest;
  std::u16string m_seen;
  std::size_t m_since[3] = {kNone, kNone, kNone};  // where the lines begin, by `TextRule`
  DecodedText m_result;
};

}  // namespace

bool hasTextCodes(const zim::WString& text) {
  return text.view().find(u"%%") != std::u16string_view::npos;
}

DecodedText decodeTextCodes(const zim::WString& text) {
  if (!hasTextCodes(text)) return {text, {}};
  return Decoder(text).run();
}

}  // namespace vek0
