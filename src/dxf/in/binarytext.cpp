// A binary file is a mark of 22 bytes and the pairs. Group codes have one byte, or three if the
// first is 255, up to version 12, and two bytes since. The code determines the type of the value:
// texts end with a zero, numbers are little-endian, chunks begin with their length.
#include "dxf/in/binarytext.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>

#include "files/bits.h"
#include "files/number.h"

namespace vek0::detail {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kMark = " Binary DXF\r\n\x1A\0"sv;
constexpr std::size_t kMarkEnd = 22;  // of the whole mark
constexpr std::size_t kBlock = std::size_t{64} * 1024;
constexpr long kComment = 999, kHighestCode = 1071;
constexpr std::uint64_t kLongCode = 255;  // announces a code of two bytes in older files

enum class Type { Text, Real, Short, Long, Huge, Byte, Chunk };

struct Range {
  long first, last;
  Type type;
};

// Every other code has a text.
constexpr Range kRanges[] = {
    {10, 59, Type::Real},      {60, 79, Type::Short},    {90, 99, Type::Long},
    {110, 149, Type::Real},    {160, 169, Type::Huge},   {170, 179, Type::Short},
    {210, 239, Type::Real},    {270, 289, Type::Short},  {290, 299, Type::Byte},
    {310, 319, Type::Chunk},   {370, 389, Type::Short},  {400, 409, Type::Short},
    {420, 429, Type::Long},    {440, 459, Type::Long},   {460, 469, Type::Real},
    {1004, 1004, Type::Chunk}, {1010, 1059, Type::Real}, {1060, 1070, Type::Short},
    {1071, 1071, Type::Long},
};

Type typeOf(long code) {
  for (const Range& range : kRanges)
    if (code >= range.first && code <= range.last) return range.type;
  return Type::Text;
}

std::size_t sizeOf(Type type) {
  switch (type) {
    case Type::Real:
    case Type::Huge:
      return 8;
    case Type::Long:
      return 4;
    case Type::Short:
      return 2;
    default:
      return 1;
  }
}

std::uint64_t unsignedAt(const char* bytes, std::size_t size) {
  std::uint64_t value = 0;
  for (std::size_t i = size; i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[i]);
  return value;
}

template <class Number>
void append(std::string& out, Number value) {
  char digits[32];
  out.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
  out += '\n';
}

void append(std::string& out, double value) {
  char digits[kShortestRoom];
  out.append(digits, formatShortest(digits, value));
  out += '\n';
}

void appendNumber(std::string& out, std::uint64_t value, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) out += static_cast<char>(value >> 8 * i & 0xFF);
}

int digitOf(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  constexpr int ten = 10;
  const char letter = static_cast<char>(c & ~0x20);
  return letter >= 'A' && letter <= 'F' ? letter - 'A' + ten : 0;
}

void appendChunk(std::string& out, std::string_view digits) {
  out += static_cast<char>(digits.size() / 2);
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
    out += static_cast<char>(digitOf(digits[i]) << 4 | digitOf(digits[i + 1]));
}

// A caret and a letter stand for a control character.
void appendZeroEnded(std::string& out, std::string_view text) {
  constexpr char letters = '@', beyond = '_';
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isControl =
        text[i] == '^' && i + 1 < text.size() && text[i + 1] > letters && text[i + 1] <= beyond;
    out += isControl ? static_cast<char>(text[++i] - letters) : text[i];
  }
  out += '\0';
}

}  // namespace

std::size_t binaryStart(std::string_view bytes) {
  return bytes.size() >= kMarkEnd && bytes.substr(0, kMarkEnd).ends_with(kMark) ? kMarkEnd : 0;
}

// The first pair is that of a section, unless it is a comment.
bool isWideBinary(std::string_view pairs) {
  if (pairs.size() < 2) return false;
  const std::uint64_t code = unsignedAt(pairs.data(), 2);
  return code == 0 || code == std::uint64_t{kComment};
}

std::size_t binaryPairSize(std::string_view pairs, bool isWide) {
  std::size_t at = isWide ? 2 : 1;
  if (pairs.size() < at) return 0;
  std::uint64_t code = unsignedAt(pairs.data(), at);
  if (!isWide && code == kLongCode) {
    at = 3;
    if (pairs.size() < at) return 0;
    code = unsignedAt(pairs.data() + 1, 2);
  }
  const Type type = typeOf(static_cast<long>(code));
  if (type == Type::Text) {
    const std::size_t end = pairs.find('\0', at);
    return end == std::string_view::npos ? 0 : end + 1;
  }
  if (pairs.size() <= at) return 0;
  const std::size_t length = type == Type::Chunk ? static_cast<unsigned char>(pairs[at]) : 0;
  const std::size_t size = at + sizeOf(type) + length;
  return size <= pairs.size() ? size : 0;
}

void appendBinaryPair(std::string& out, long code, std::string_view value, bool isWide) {
  const auto bits = static_cast<std::uint64_t>(code);
  const bool isLong = !isWide && bits >= kLongCode;
  if (isLong) out += static_cast<char>(kLongCode);
  appendNumber(out, bits, isWide || isLong ? 2 : 1);
  switch (const Type type = typeOf(code)) {
    case Type::Text:
      return appendZeroEnded(out, value);
    case Type::Chunk:
      return appendChunk(out, value);
    case Type::Real:
      return appendNumber(out, bitsOf(parseDouble(value).value), sizeof(double));
    default:
      appendNumber(out, static_cast<std::uint64_t>(parseLong(value)), sizeOf(type));
  }
}

long BinaryText::read(char* out, long room) {
  if (!m_started) {
    const long got = start();
    if (got < 0) return got;
  }
  const auto most = static_cast<std::size_t>(room);
  if (!m_isBinary) {
    if (m_position == m_raw.size()) return m_source(out, room);
    const std::size_t count = rest().copy(out, most);
    m_position += count;
    return static_cast<long>(count);
  }
  while (m_passed == m_text.size()) {
    m_text.clear();
    m_passed = 0;
    if (!convert()) return 0;
  }
  const std::size_t count = std::string_view(m_text).substr(m_passed).copy(out, most);
  m_passed += count;
  return static_cast<long>(count);
}

// Returns what the source does if it has no bytes.
long BinaryText::start() {
  m_started = true;
  if (!m_recognizes) return 0;
  while (m_raw.size() < kMarkEnd + 2) {
    const long got = fill();
    if (got < 0) return got;
    if (got == 0) break;
  }
  m_isBinary = binaryStart(m_raw) != 0;
  if (!m_isBinary) return 0;
  m_position = kMarkEnd;
  m_isWide = have(2) && isWideBinary(rest());
  return 0;
}

long BinaryText::fill() {
  m_raw.erase(0, m_position);
  m_position = 0;
  const std::size_t kept = m_raw.size();
  m_raw.resize(kept + kBlock);
  const long got = m_source(m_raw.data() + kept, static_cast<long>(kBlock));
  m_raw.resize(kept + static_cast<std::size_t>(std::max(got, 0L)));
  return got;
}

bool BinaryText::have(std::size_t count) {
  while (rest().size() < count)
    if (fill() <= 0) return false;
  return true;
}

// Converts some pairs; false at the end.
bool BinaryText::convert() {
  while (!m_isEnded && m_text.size() < kBlock) m_isEnded = !convertPair();
  return !m_text.empty();
}

bool BinaryText::convertPair() {
  const std::size_t before = m_text.size();
  const bool isWhole = m_inText ? takeText() : takeCode();
  // The code of a pair without a value would be taken for a cut line.
  if (!isWhole && !m_inText) m_text.resize(before);
  return isWhole;
}

bool BinaryText::takeCode() {
  if (!have(m_isWide ? 2 : 1)) return false;
  m_code = static_cast<long>(unsignedAt(rest().data(), m_isWide ? 2 : 1));
  m_position += m_isWide ? 2 : 1;
  if (!m_isWide && m_code == static_cast<long>(kLongCode)) {
    if (!have(2)) return false;
    m_code = static_cast<long>(unsignedAt(rest().data(), 2));
    m_position += 2;
  }
  if (m_code > kHighestCode) return false;
  append(m_text, m_code);
  const Type type = typeOf(m_code);
  if (type == Type::Text) return m_inText = true;
  if (type == Type::Chunk) return takeChunk();
  if (!have(sizeOf(type))) return false;
  const char* const bytes = rest().data();
  m_position += sizeOf(type);
  switch (type) {
    case Type::Real: {
      const std::uint64_t bits = unsignedAt(bytes, sizeof bits);
      double value;
      std::memcpy(&value, &bits, sizeof value);
      append(m_text, value);
      return true;
    }
    case Type::Huge:
      append(m_text, static_cast<std::int64_t>(unsignedAt(bytes, 8)));
      return true;
    case Type::Long:
      append(m_text, static_cast<std::int32_t>(unsignedAt(bytes, 4)));
      return true;
    case Type::Short:
      append(m_text, static_cast<std::int16_t>(unsignedAt(bytes, 2)));
      return true;
    default:
      append(m_text, static_cast<int>(unsignedAt(bytes, 1)));
      return true;
  }
}

// As much of a text as was read: a damaged file may have no end of it.
bool BinaryText::takeText() {
  if (!have(1)) return false;
  const std::string_view text = rest();
  const std::size_t end = std::min(text.find('\0'), text.size());
  for (const char c : text.substr(0, end)) {
    constexpr unsigned char blank = ' ', letters = '@';
    if (static_cast<unsigned char>(c) >= blank) {
      m_text += c;
    } else {
      m_text += '^';
      m_text += static_cast<char>(c + letters);
    }
  }
  m_position += end;
  if (end == text.size()) return true;
  ++m_position;
  m_text += '\n';
  m_inText = false;
  return true;
}

bool BinaryText::takeChunk() {
  if (!have(1)) return false;
  const auto length = static_cast<std::size_t>(unsignedAt(rest().data(), 1));
  if (!have(1 + length)) return false;
  for (const char c : rest().substr(1, length)) {
    const auto byte = static_cast<unsigned char>(c);
    m_text += "0123456789ABCDEF"[byte >> 4];
    m_text += "0123456789ABCDEF"[byte & 15];
  }
  m_text += '\n';
  m_position += 1 + length;
  return true;
}

}  // namespace vek0::detail
