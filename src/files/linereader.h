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
/// Lines end at LF, CR LF (any number of CRs before the LF) or a lone CR, which is converted to an
/// LF. NULs are dropped; Ctrl-Z ends the text if it is alone on its line, and is dropped after the
/// last line. A UTF-8 byte order mark is dropped; after a UTF-16 one, everything is converted to
/// UTF-8.
class VEK0_API LineReader {
 public:
  static constexpr long kEnd = 0;          ///< source: end of data
  static constexpr long kNotOffered = -1;  ///< source: byte access is not supported
  static constexpr long kFailed = -2;      ///< source: reading failed

  /// Reads up to a number of bytes and returns their count or one of the above.
  using Source = std::function<long(char*, long)>;

  /// Byte order mark at the start of the source.
  enum class Mark { None, Utf8, Utf16Le, Utf16Be };

  /// `block` is the size of the buffer and of the longest line returned in one piece; at least 64.
  /// Nothing is read or allocated before `begin`.
  LineReader(Source source, std::size_t block);

  /// Reads the start of the source and detects its byte order mark. Returns false if it does not
  /// support byte access; later calls return the same.
  bool begin();

  Mark mark() const { return m_mark; }
  /// Whether reading failed; the line being read is then lost.
  bool failed() const { return m_failed; }

  /// Returns the next line with its line end, valid until the next call; false if there is none. A
  /// line without an LF is the last one, or a piece of a line longer than the buffer, never cut
  /// inside a UTF-8 sequence; the next call continues it.
  bool next(std::string_view& line) {
    const char* const end = findEnd();
    if (end == m_end || *m_position == kCtrlZ) return nextAfterFill(line);
    line = std::string_view(m_position, static_cast<std::size_t>(end + 1 - m_position));
    m_position = end + 1;
    return true;
  }

  /// Consumes the next line if it is entirely in the buffer and consists only of blanks and up to
  /// four digits, like nearly every group code.
  bool nextIfShortNumber(long& number) {
    const char* p = m_position;  // the LF after the block stops every loop
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
  const char* m_position = nullptr;  // first byte not yet returned
  char* m_end = nullptr;             // one past the last byte, where the sentinel LF is
  std::size_t m_heldCrs = 0;         // CRs after m_end whose following byte is not known yet
  std::string m_prefix;              // read by begin, not yet in the buffer
  Mark m_mark = Mark::None;
  bool m_begun = false;
  bool m_offered = false;
  bool m_ended = false;
  bool m_failed = false;
};

}  // namespace vek0::detail
