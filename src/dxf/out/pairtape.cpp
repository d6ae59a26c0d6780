#include "dxf/out/pairtape.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <system_error>
#include <utility>

#include "files/number.h"

namespace vek0::detail {
namespace {

// A turn formats half a megabyte: much more than the start of a thread costs, and still in the
// caches of the processors.
constexpr std::size_t kFull = std::size_t{1} << 15;

static_assert(kValueRoom >= kFixedRoom && kValueRoom >= kShortestRoom &&
              kValueRoom >= kIntegerRoom && kGroupRoom >= kIntegerRoom);

using GroupLine = std::array<char, 3>;

constexpr char digit(int value) { return static_cast<char>('0' + value); }

constexpr GroupLine groupLine(int code) {
  return {code < 100 ? ' ' : digit(code / 100), code < 10 ? ' ' : digit(code / 10 % 10),
          digit(code % 10)};
}

constexpr int kShortGroups = 1000;

// These are a third of the lines of a file.
constexpr auto kGroupLines = [] {
  std::array<GroupLine, kShortGroups> lines{};
  for (int code = 0; code < kShortGroups; ++code)
    lines[static_cast<std::size_t>(code)] = groupLine(code);
  return lines;
}();

}  // namespace

char* formatGroup(char* out, long code) {
  if (code < 0 || code >= kShortGroups) return formatInteger(out, code);
  const GroupLine& line = kGroupLines[static_cast<std::size_t>(code)];
  return std::copy(line.begin(), line.end(), out);
}

char* formatValue(char* out, const GroupPair& pair) {
  switch (pair.kind) {
    case GroupPair::Kind::Integer:
      return formatInteger(out, pair.value.integer);
    case GroupPair::Kind::Hex:
      return formatHex(out, pair.value.bits);
    case GroupPair::Kind::Fixed:
      return formatFixed(out, pair.value.number);
    case GroupPair::Kind::Shortest:
      return formatShortest(out, pair.value.number);
    case GroupPair::Kind::Text:
      break;
  }
  return out;
}

void PairTape::add(long code, std::string_view text) {
  m_added.pairs.push_back(
      {{.length = text.size()}, static_cast<std::int32_t>(code), GroupPair::Kind::Text});
  m_added.texts += text;
}

bool PairTape::isFull() const {
  return m_added.pairs.size() >= kFull || m_added.texts.size() >= kFull * sizeof(GroupPair);
}

std::string_view PairTape::turn() {
  const bool isWorthThread = isFull();
  if (m_formatting.valid()) m_formatting.get();
  std::swap(m_lines, m_done);
  const std::string_view done(m_done.data(), std::exchange(m_size, 0));
  std::swap(m_added, m_taken);
  m_added.pairs.clear();
  m_added.texts.clear();
  try {
    const auto policy = isWorthThread ? std::launch::async : std::launch::deferred;
    m_formatting = std::async(policy, [this] { format(); });
  } catch (const std::system_error&) {
    format();  // no thread can be started
  }
  return done;
}

void PairTape::format() {
  const char* text = m_taken.texts.data();
  for (const GroupPair& pair : m_taken.pairs) {
    const bool isText = pair.kind == GroupPair::Kind::Text;
    const auto length = isText ? static_cast<std::size_t>(pair.value.length) : kValueRoom;
    const std::size_t room = kGroupRoom + length + 2;
    if (m_lines.size() - m_size < room) m_lines.resize(2 * m_lines.size() + room);
    char* out = formatGroup(m_lines.data() + m_size, pair.code);
    *out++ = '\n';
    if (isText) {
      out = std::copy_n(text, length, out);
      text += length;
    } else {
      out = formatValue(out, pair);
    }
    *out++ = '\n';
    m_size = static_cast<std::size_t>(out - m_lines.data());
  }
}

}  // namespace vek0::detail
