// Decodes the bytes of a file. The header's code page is often wrong, so a decoder that senses
// looks at each text: valid UTF-8 outside ASCII hardly occurs by accident, and decides against the
// declared page; text that is not valid UTF-8 decides against UTF-8. What was found stays recorded
// for the report. Double-byte pages are decoded by the host (`setMultiByteDecoder`); without one
// their texts are read as 1252, unless they look like UTF-8.
#include "vek0core/files/textcodec.h"

#include "files/surrogates.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <optional>

#include "files/codepages.h"
#include "files/number.h"
#include "zim0lang/utf8.h"

using vek0::detail::labelOf;
using vek0::detail::UpperHalf;
using vek0::detail::upperHalfOf;

namespace {

std::atomic<MultiByteDecoder> g_multiByteDecoder{nullptr};

unsigned char byteOf(char c) { return static_cast<unsigned char>(c); }

bool isAscii(std::string_view bytes) {
  return std::none_of(bytes.begin(), bytes.end(), [](char c) { return byteOf(c) >= 0x80; });
}

zim::Char unitOf(char c, const UpperHalf& upper) {
  const unsigned char byte = byteOf(c);
  return byte < 0x80 ? zim::Char{byte} : upper[byte - 0x80u];
}

const UpperHalf& upperHalfOf1252() {
  static const UpperHalf& half = *upperHalfOf(kCodePage1252);
  return half;
}

void decodeSingleByte(std::string_view bytes, const UpperHalf& upper, std::u16string& out) {
  for (const char c : bytes) out += unitOf(c, upper);
}

// A malformed byte is decoded as 1252: some programs declare UTF-8 but insert other bytes, which
// are usually Western.
void decodeUtf8(std::string_view bytes, std::u16string& out) {
  while (!bytes.empty()) {
    const char first = bytes.front();
    bool valid = true;
    const char32_t c = zim::takeUtf8(bytes, valid);
    if (valid) {
      zim::appendUtf16(out, c);
    } else {
      out += unitOf(first, upperHalfOf1252());
    }
  }
}

bool decodeMultiByte(int page, std::string_view bytes, std::u16string& out) {
  const MultiByteDecoder decoder = g_multiByteDecoder;
  if (!decoder) return false;
  const std::size_t before = out.size();
  if (decoder(page, bytes, out)) return true;
  out.resize(before);
  return false;
}

// Reduces a name to lowercase letters and digits for comparison.
std::string simplified(std::string_view name) {
  std::string out;
  for (const char c : name) {
    if (c >= 'A' && c <= 'Z') {
      out += static_cast<char>(c - 'A' + 'a');
    } else if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) {
      out += c;
    }
  }
  return out;
}

struct PageName {
  const char* name;
  int page;
};

constexpr PageName kPageNames[] = {
    {"utf8", kCodePageUtf8}, {"big5", 950},        {"gb2312", 936},   {"gbk", 936},
    {"ksc5601", 949},        {"johab", 1361},      {"shiftjis", 932}, {"mac", 10000},
    {"macroman", 10000},     {"macintosh", 10000},
};

constexpr int kLatinBase = 28590;  // ISO 8859-n is code page 28590 + n

struct PagePrefix {
  const char* prefix;
  int base;  // added to the number that follows
};

constexpr PagePrefix kPagePrefixes[] = {
    {"ansi", 0},          {"dos", 0}, {"windows", 0},
    {"ibm", 0},           {"cp", 0},  {"iso8859", kLatinBase},
    {"8859", kLatinBase},
};

bool isDecimal(std::string_view text) {
  return !text.empty() &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::optional<unsigned> hexDigit(zim::Char c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'A' && c <= u'F') return c - u'A' + 10u;
  if (c >= u'a' && c <= u'f') return c - u'a' + 10u;
  return std::nullopt;
}

std::optional<zim::Char> hexUnit(std::u16string_view text) {
  if (text.size() < 4) return std::nullopt;
  unsigned value = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    const auto digit = hexDigit(text[i]);
    if (!digit) return std::nullopt;
    value = value * 16 + *digit;
  }
  return static_cast<zim::Char>(value);
}

constexpr std::size_t kUnitEscape = 7;       // length of \U+XXXX
constexpr std::size_t kMultiByteEscape = 8;  // length of \M+nXXXX

// Appends the text that the escape at the front represents; returns the escape's length, or 0 if
// there is none.
std::size_t takeBackslash(std::u16string_view text, std::u16string& out) {
  if (text.starts_with(u"\\U+")) {
    const auto unit = hexUnit(text.substr(3));
    if (unit) out += *unit;
    return unit ? kUnitEscape : 0;
  }
  if (!text.starts_with(u"\\M+") || text.size() < kMultiByteEscape) return 0;
  constexpr int kPageOfDigit[] = {932, 950, 949, 1361, 936};
  const unsigned index = text[3] - unsigned{u'1'};
  const auto code = hexUnit(text.substr(4));
  if (index >= std::size(kPageOfDigit) || !code) return 0;
  const char bytes[] = {static_cast<char>(*code >> 8), static_cast<char>(*code & 0xFF)};
  const std::string_view used(bytes[0] ? bytes : bytes + 1, bytes[0] ? 2 : 1);
  return decodeMultiByte(kPageOfDigit[index], used, out) ? kMultiByteEscape : 0;
}

// The same for carets. They denote control characters by the letter 64 above.
std::size_t takeCaret(std::u16string_view text, std::u16string& out) {
  if (text.size() < 2) return 0;
  const zim::Char second = text[1];
  if (second != u' ' && (second < u'@' || second > u'_')) return 0;
  out += second == u' ' ? u'^' : static_cast<zim::Char>(second - u'@');
  return 2;
}

// The byte of a character in 1252, if it has one. The five undefined bytes are not used: other
// programs may not support them.
std::optional<char> byteIn1252(zim::Char c) {
  if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<char>(c);
  if (c < 0xA0) return std::nullopt;
  const UpperHalf& upper = upperHalfOf1252();
  const auto end = upper.begin() + 0x20;
  const auto found = std::find(upper.begin(), end, c);
  if (found == end) return std::nullopt;
  return static_cast<char>(0x80 + (found - upper.begin()));
}

void appendUnitEscape(zim::Char c, std::string& out) {
  char digits[vek0::detail::kIntegerRoom];
  const auto count = static_cast<std::size_t>(vek0::detail::formatHex(digits, c) - digits);
  out += "\\U+";
  out.append(4 - count, '0');
  out.append(digits, count);
}

bool isUnpaired(std::u16string_view text, std::size_t i) {
  if (vek0::detail::isHighSurrogate(text[i]))
    return i + 1 == text.size() || !vek0::detail::isLowSurrogate(text[i + 1]);
  return vek0::detail::isLowSurrogate(text[i]) &&
         (i == 0 || !vek0::detail::isHighSurrogate(text[i - 1]));
}

// Appends the unit at i if it needs an escape in a value.
bool encodeSpecial(std::u16string_view text, std::size_t i, std::string& out) {
  const zim::Char c = text[i];
  if (c < 0x20 || c == u'^') {
    out += '^';
    out += c == u'^' ? ' ' : static_cast<char>(c + '@');
    return true;
  }
  // Readers strip trailing blanks of a value.
  if (c == u' ' && i + 1 == text.size()) {
    appendUnitEscape(c, out);
    return true;
  }
  std::u16string ignored;
  if (c != u'\\' || !takeBackslash(text.substr(i), ignored)) return false;
  appendUnitEscape(c, out);
  return true;
}

void encodeWith(std::u16string_view text, bool isValue, bool asciiOnly, std::string& out) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (isValue && encodeSpecial(text, i, out)) continue;
    const auto byte = byteIn1252(text[i]);
    if (byte && !(asciiOnly && text[i] >= 0x80)) {
      out += *byte;
    } else {
      appendUnitEscape(isUnpaired(text, i) ? zim::Char{zim::kReplacement} : text[i], out);
    }
  }
}

// Readers decode valid UTF-8 as such, so 1252 text that looks like UTF-8 is escaped.
void encode(std::u16string_view text, bool isValue, std::string& out) {
  const std::size_t start = out.size();
  encodeWith(text, isValue, false, out);
  const std::string_view made = std::string_view(out).substr(start);
  if (isAscii(made) || !zim::isValidUtf8(made)) return;
  out.resize(start);
  encodeWith(text, isValue, true, out);
}

// Whether the bytes are UTF-8 with a truncated last character: some programs cut text by bytes.
bool isCutUtf8(std::string_view bytes) {
  for (std::size_t cut = 1; cut < 4 && cut < bytes.size(); ++cut) {
    const std::string_view front = bytes.substr(0, bytes.size() - cut);
    if (byteOf(bytes[front.size()]) < 0x80) return false;
    if (zim::isValidUtf8(front)) return !isAscii(front);
  }
  return false;
}

}  // namespace

int codePageFromName(std::string_view name) {
  const std::string key = simplified(name);
  for (const PageName& known : kPageNames) {
    if (key == known.name) return known.page;
  }
  for (const PagePrefix& known : kPagePrefixes) {
    if (!key.starts_with(known.prefix)) continue;
    const std::string_view number =
        std::string_view(key).substr(std::string_view(known.prefix).size());
    if (!isDecimal(number)) continue;
    const std::int64_t page = std::int64_t{known.base} + vek0::detail::parseLong(number);
    if (page <= kCodePageUtf8 && labelOf(static_cast<int>(page))) return static_cast<int>(page);
  }
  return kCodePageAuto;
}

int codePageOfDrawing(std::string_view version, std::string_view name) {
  constexpr std::string_view kFirstUtf8Version = "AC1021";
  const bool isVersion = version.size() == kFirstUtf8Version.size() && version.starts_with("AC");
  if (isVersion && version >= kFirstUtf8Version) return kCodePageUtf8;
  return codePageFromName(name);
}

MultiByteDecoder setMultiByteDecoder(MultiByteDecoder decoder) {
  return g_multiByteDecoder.exchange(decoder);
}

std::string CTextDecoder::getName() const {
  if (const char* label = labelOf(differs() ? m_found : m_page)) return label;
  return labelOf(m_sawOther ? kCodePage1252 : kCodePageUtf8);
}

bool CTextDecoder::isAutoUtf8(std::string_view bytes) {
  const bool valid = zim::isValidUtf8(bytes);
  m_sawOther = m_sawOther || !valid;
  return valid;
}

// In double-byte code pages, two-byte sequences are often accidentally valid UTF-8; three-byte ones
// hardly ever.
bool CTextDecoder::isUtf8Anyway(std::string_view bytes) const {
  if (!zim::isValidUtf8(bytes)) return false;
  const auto beginsThree = [](char c) { return byteOf(c) >= 0xE0; };
  return upperHalfOf(m_page) || std::any_of(bytes.begin(), bytes.end(), beginsThree);
}

// Detects the page of a text that is not pure ASCII.
int CTextDecoder::pageOf(std::string_view bytes) {
  if (!m_sense || !labelOf(m_page)) return m_page;
  const bool isUtf8 = m_page == kCodePageUtf8 ? zim::isValidUtf8(bytes) : isUtf8Anyway(bytes);
  if (isUtf8 == (m_page == kCodePageUtf8)) return m_page;
  if (!isUtf8 && isCutUtf8(bytes)) return m_page;
  const bool hasOther = labelOf(m_otherPage) && m_otherPage != kCodePageUtf8;
  const int otherwise = hasOther ? m_otherPage : kCodePage1252;
  m_found = isUtf8 ? kCodePageUtf8 : otherwise;
  // The UTF-8 decoder already decodes malformed bytes as 1252, one by one.
  return m_found == kCodePage1252 ? m_page : m_found;
}

void CTextDecoder::decode(std::string_view bytes, std::u16string& out) {
  out.reserve(out.size() + bytes.size());
  if (isAscii(bytes)) {
    out.append(bytes.begin(), bytes.end());
    return;
  }
  const int page = pageOf(bytes);
  if (page == kCodePageUtf8) {
    decodeUtf8(bytes, out);
  } else if (const UpperHalf* upper = upperHalfOf(page)) {
    decodeSingleByte(bytes, *upper, out);
  } else if (!labelOf(page) || !decodeMultiByte(page, bytes, out)) {
    if (isAutoUtf8(bytes)) return decodeUtf8(bytes, out);
    decodeSingleByte(bytes, upperHalfOf1252(), out);
  }
}

std::size_t CTextDecoder::decode(std::string_view bytes, zim::Char* out, std::size_t room) {
  if (bytes.size() <= room && isAscii(bytes)) {
    std::copy(bytes.begin(), bytes.end(), out);
    return bytes.size();
  }
  std::u16string text;
  decode(bytes, text);
  std::size_t count = std::min(room, text.size());
  if (count > 0 && count < text.size() && vek0::detail::isHighSurrogate(text[count - 1])) --count;
  std::copy_n(text.data(), count, out);
  return count;
}

zim::WString CTextDecoder::decodeText(std::string_view bytes) {
  std::u16string text;
  decode(bytes, text);
  return zim::WString(decodeEscapes(text));
}

std::u16string decodeEscapes(std::u16string_view text) {
  std::u16string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const std::size_t plain = std::min(text.find_first_of(u"\\^"), text.size());
    out += text.substr(0, plain);
    text.remove_prefix(plain);
    if (text.empty()) break;
    std::size_t used = text[0] == u'^' ? takeCaret(text, out) : takeBackslash(text, out);
    if (used == 0) {
      out += text[0];
      used = 1;
    }
    text.remove_prefix(used);
  }
  return out;
}

void encodeText(std::u16string_view text, std::string& out) { encode(text, true, out); }

CTextEncoder::CTextEncoder(int page) : m_page(page) {
  if (page == kCodePageUtf8) return;
  m_codes.resize(0x10000);
  if (page == kCodePage1252) {
    for (unsigned unit = 0x80; unit < m_codes.size(); ++unit)
      if (const auto byte = byteIn1252(static_cast<zim::Char>(unit)))
        m_codes[unit] = static_cast<unsigned char>(*byte);
  } else if (const UpperHalf* upper = upperHalfOf(page)) {
    for (unsigned byte = 0x80; byte < 0x100; ++byte) {
      const zim::Char unit = (*upper)[byte - 0x80];
      if (unit >= 0xA0 && unit != zim::kReplacement)
        m_codes[unit] = static_cast<std::uint16_t>(byte);
    }
  } else {
    learn();
  }
}

// One line for each character of two bytes: line feeds are no second bytes.
void CTextEncoder::learn() {
  for (unsigned byte = 0x80; byte < 0x100; ++byte) {
    std::u16string decoded;
    if (!decodeMultiByte(m_page, std::string(1, static_cast<char>(byte)), decoded)) continue;
    const bool isOne = decoded.size() == 1 && decoded[0] >= 0xA0 && decoded[0] != zim::kReplacement;
    if (isOne) m_codes[decoded[0]] = static_cast<std::uint16_t>(byte);
  }
  constexpr unsigned firstLead = 0x81, lastLead = 0xFE, firstTrail = 0x40, lastTrail = 0xFE;
  for (unsigned lead = firstLead; lead <= lastLead; ++lead) {
    std::string bytes;
    for (unsigned trail = firstTrail; trail <= lastTrail; ++trail)
      bytes += {static_cast<char>(lead), static_cast<char>(trail), '\n'};
    std::u16string decoded;
    if (!decodeMultiByte(m_page, bytes, decoded)) return;
    std::u16string_view rest(decoded);
    for (unsigned trail = firstTrail; trail <= lastTrail && !rest.empty(); ++trail) {
      const std::size_t length = std::min(rest.find(u'\n'), rest.size());
      const bool isOne = length == 1 && rest[0] >= 0xA0 && rest[0] != zim::kReplacement;
      if (isOne && m_codes[rest[0]] == 0)
        m_codes[rest[0]] = static_cast<std::uint16_t>(lead << 8 | trail);
      rest.remove_prefix(std::min(length + 1, rest.size()));
    }
  }
}

std::string CTextEncoder::getName() const {
  constexpr int lastDosPage = 869, macintosh = 10000, johab = 1361;
  if (m_page == macintosh) return "mac-roman";
  if (m_page == johab) return "johab";
  if (m_page > kLatinBase && m_page < kCodePageUtf8)
    return "ISO8859-" + std::to_string(m_page - kLatinBase);
  const bool isDos = m_page <= lastDosPage;
  return (isDos ? "dos" : "ANSI_") +
         std::to_string(m_page == kCodePageUtf8 ? kCodePage1252 : m_page);
}

bool CTextEncoder::has(zim::Char unit) const {
  if (unit < 0x80) return true;
  return m_page == kCodePageUtf8 ? unit != 0x85 : m_codes[unit] != 0;
}

void CTextEncoder::append(std::u16string_view text, bool asciiOnly, std::string& out) const {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const zim::Char unit = text[i];
    if (encodeSpecial(text, i, out)) continue;
    if (!has(unit) || (asciiOnly && unit >= 0x80)) {
      appendUnitEscape(isUnpaired(text, i) ? zim::Char{zim::kReplacement} : unit, out);
    } else if (m_page == kCodePageUtf8) {
      std::u16string_view rest = text.substr(i);
      zim::appendUtf8(out, zim::takeUtf16(rest));
      i = text.size() - rest.size() - 1;
    } else {
      const unsigned code = unit < 0x80 ? unit : m_codes[unit];
      if (code > 0xFF) out += static_cast<char>(code >> 8);
      out += static_cast<char>(code & 0xFF);
    }
  }
}

// Readers may take bytes that are valid UTF-8 for that whatever the header says.
void CTextEncoder::encode(std::u16string_view text, std::string& out) const {
  const std::size_t start = out.size();
  append(text, false, out);
  const std::string_view made = std::string_view(out).substr(start);
  if (m_page == kCodePageUtf8 || isAscii(made) || !zim::isValidUtf8(made)) return;
  out.resize(start);
  append(text, true, out);
}

void encodeLine(std::u16string_view text, std::string& out) { encode(text, false, out); }
