#pragma once

#include <cstddef>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "vek0core/export.h"

namespace vek0::detail {

/// Splits the bytes of a source into lines, a block at a time.
///
/// Lines end at LF, CR LF (any number of CRs before the LF) or a lone CR, which is
/// turned into an LF. NULs are left out; Ctrl-Z ends the text where nothing else is on
/// its line, and is left out behind the last line. A UTF-8 byte order mark is left out;
/// behind one of UTF-16 everything arrives as UTF-8.
class VEK0_API LineReader {
 public:
  static constexpr long kEnd = 0;          ///< source: there is nothing more
  static constexpr long kNotOffered = -1;  ///< source: it never had bytes
  static constexpr long kFailed = -2;      ///< source: reading failed

  /// Reads up to a number of bytes and returns their count or one of the above.
  using Source = std::function<long(char*, long)>;

  /// What stood at the start of the source.
  enum class Mark { None, Utf8, Utf16Le, Utf16Be };

  /// `block` is the buffer's size and the longest line that comes in one piece; at
  /// least 64. Nothing is read or allocated before `begin`.
  LineReader(Source source, std::size_t block);

  /// Reads what tells how the source begins. False when it does not offer bytes;
  /// later calls repeat the answer.
  bool begin();

  Mark mark() const { return m_mark; }
  /// Whether reading failed; the line that was being read is lost then.
  bool failed() const { return m_failed; }

  /// The next line with its end, valid until the next call; false when there is
  /// none. A line without an LF is the last one, or a piece of a line longer than
  /// the buffer, never cut inside a UTF-8 sequence; the next call goes on in it.
  bool next(std::string_view& line) {
    const char* const end = findEnd();
    if (end == m_end || *m_position == kCtrlZ) return nextAfterFill(line);
    line = std::string_view(m_position, static_cast<std::size_t>(end + 1 - m_position));
    m_position = end + 1;
    return true;
  }

  /// Takes the next line when it is nothing but blanks and up to four digits, as
  /// nearly every group code is, and lies in the buffer as a whole.
  bool nextIfShortNumber(long& number) {
    const char* p = m_position;  // the LF behind the block stops every loop
    while (*p == ' ') ++p;
    unsigned value = 0;
    const char* const digits = p;
    for (unsigned digit; (digit = static_cast<unsigned char>(*p) - unsigned{'0'}) < 10; ++p) {
      value = value * 10 + digit;
    }
    const std::ptrdiff_t count = p - digits;
    if (*p == '\r') ++p;
    if (*p != '\n' || p == m_end || count == 0 || count > 4) return false;
    number = static_cast<long>(value);
    m_position = p + 1;
    return true;
  }

 private:
  static constexpr char kCtrlZ = 0x1A;  // ends texts of old systems

  const char* findEnd() const {
    const auto bytes = static_cast<std::size_t>(m_end - m_position) + 1;
    return static_cast<const char*>(std::memchr(m_position, '\n', bytes));
  }
  bool nextAfterFill(std::string_view& line);
  bool isText(std::string_view line);
  bool fill();
  std::size_t readBlock(char* out, std::size_t room);
  std::size_t readPlain(char* out, std::size_t room);
  std::size_t readUtf16(char* out, std::size_t room);
  std::size_t clean(char* bytes, std::size_t count);

  Source m_source;
  std::size_t m_block;
  std::unique_ptr<char[]> m_buffer;  // m_block bytes and one LF that never moves past m_end
  const char* m_position = nullptr;  // first byte not handed out
  char* m_end = nullptr;             // behind the last one, where an LF stands
  std::size_t m_heldCrs = 0;         // CRs behind m_end that wait for what follows them
  std::string m_prefix;              // read by begin, not yet in the buffer
  Mark m_mark = Mark::None;
  bool m_begun = false;
  bool m_offered = false;
  bool m_ended = false;
  bool m_failed = false;
};

}  // namespace vek0::detail
