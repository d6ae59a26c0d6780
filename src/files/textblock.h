#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vek0::detail {

constexpr char kCtrlZ = 0x1A;  ///< ends texts of old systems

/// A line that has been found, and read if it is a number.
struct SplitLine {
  enum class Kind : std::uint32_t {
    Other,
    ShortNumber,  ///< blanks and up to four digits, like nearly every group code
    Real,         ///< another finite number, and nothing else
    EndMark,      ///< begins with a Ctrl-Z, which may end the text
  };
  double number;                ///< of a ShortNumber or Real
  std::uint32_t end;            ///< one past its LF, from the start of the block
  std::uint32_t trailing : 30;  ///< length of its line end and the blanks before that
  Kind kind : 2;
};
static_assert(sizeof(SplitLine) == 16);

/// Reads a line of blanks and up to four digits, and returns one past its LF; null for another
/// line. An LF has to follow somewhere.
inline const char* readShortNumber(const char* p, long& number) {
  while (*p == ' ') ++p;
  unsigned value = 0;
  const char* const digits = p;
  for (unsigned digit; (digit = static_cast<unsigned char>(*p) - unsigned{'0'}) < 10; ++p) {
    value = value * 10 + digit;
  }
  const std::ptrdiff_t count = p - digits;
  if (*p == '\r') ++p;
  if (*p != '\n' || count == 0 || count > 4) return nullptr;
  number = static_cast<long>(value);
  return p + 1;
}

/// Without its line end and the blanks and tabs before that.
inline std::string_view withoutTrailing(std::string_view line) {
  const char* const begin = line.data();
  const char* end = begin + line.size();
  while (end != begin &&
         (end[-1] == '\n' || end[-1] == '\r' || end[-1] == ' ' || end[-1] == '\t')) {
    --end;
  }
  return {begin, static_cast<std::size_t>(end - begin)};
}

/// Bytes of a text without NULs, whose lines end at LF or CR LF, and an LF after them.
struct TextBlock {
  std::unique_ptr<char[]> bytes;
  std::size_t count = 0;
  bool ended = false;            ///< no more can be read
  bool failed = false;           ///< because of an error
  std::vector<SplitLine> lines;  ///< the lines with an LF, or none if it has not been split

  /// What follows the last LF.
  std::string_view tail() const {
    const std::string_view text(bytes.get(), count);
    return text.substr(text.rfind('\n') + 1);  // npos + 1 is 0
  }
};

/// Reads the bytes of a source block by block. See `LineReader`.
class BlockReader {
 public:
  static constexpr long kEnd = 0;          ///< source: end of data
  static constexpr long kNotOffered = -1;  ///< source: byte access is not supported
  static constexpr long kFailed = -2;      ///< source: reading failed

  /// Reads up to a number of bytes and returns their count or one of the above.
  using Source = std::function<long(char*, long)>;

  /// Byte order mark at the start of the source.
  enum class Mark { None, Utf8, Utf16Le, Utf16Be };

  BlockReader(Source source, std::size_t size);

  /// As those of `LineReader`.
  bool begin();
  Mark mark() const { return m_mark; }

  /// A block without bytes.
  TextBlock emptyBlock() const;
  std::size_t size() const { return m_size; }
  /// Fills the block with `kept`, which may be a part of it, and what the source has next. False if
  /// there is no room for more.
  bool read(std::string_view kept, TextBlock& block);

 private:
  std::size_t readBytes(char* out, std::size_t room);
  std::size_t readPlain(char* out, std::size_t room);
  std::size_t readUtf16(char* out, std::size_t room);
  std::size_t clean(char* bytes, std::size_t count);

  Source m_source;
  std::size_t m_size;
  std::size_t m_heldCrs = 0;  // CRs after the last block whose following byte is not known yet
  std::string m_prefix;       // read by begin, not yet in a block
  Mark m_mark = Mark::None;
  bool m_begun = false;
  bool m_offered = false;
  bool m_ended = false;
  bool m_failed = false;
};

/// Finds and reads the lines of a block.
void splitLines(TextBlock& block);

}  // namespace vek0::detail
