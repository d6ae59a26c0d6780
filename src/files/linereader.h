#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

#include "files/linesplitter.h"
#include "files/textblock.h"
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
  static constexpr long kEnd = BlockReader::kEnd;
  static constexpr long kNotOffered = BlockReader::kNotOffered;
  static constexpr long kFailed = BlockReader::kFailed;
  using Source = BlockReader::Source;
  using Mark = BlockReader::Mark;

  /// `block` is the size of the buffer and of the longest line returned in one piece; at least 64.
  /// Nothing is read or allocated before `begin`.
  LineReader(Source source, std::size_t block);
  ~LineReader();

  /// Reads the start of the source and detects its byte order mark. Returns false if it does not
  /// support byte access; later calls return the same.
  bool begin();

  /// Lets another thread find and read lines, once several blocks have been read. The source is
  /// still read by the calling thread, but farther ahead of the lines.
  void splitAhead() { m_splitsAhead = true; }

  Mark mark() const { return m_blocks.mark(); }
  /// Whether reading failed; the line being read is then lost.
  bool failed() const { return m_block.failed; }

  /// Returns the next line with its line end, valid until the next call; false if there is none. A
  /// line without an LF is the last one, or a piece of a line longer than the buffer, never cut
  /// inside a UTF-8 sequence; the next call continues it.
  bool next(std::string_view& line) {
    const char* const end = findEnd();
    if (end == m_end || *m_position == kCtrlZ) return nextAfterFill(line);
    line = std::string_view(m_position, static_cast<std::size_t>(end + 1 - m_position));
    moveTo(end + 1);
    return true;
  }

  /// Consumes the next line if it is entirely in the buffer and consists only of blanks and up to
  /// four digits, like nearly every group code.
  bool nextIfShortNumber(long& number) {
    if (m_split != m_splitEnd) {
      if (m_split->kind != SplitLine::Kind::ShortNumber) return false;
      number = static_cast<long>(m_split->number);
      moveTo(m_block.bytes.get() + m_split->end);
      return true;
    }
    const char* const end = readShortNumber(m_position, number);
    if (!end || end > m_end) return false;
    m_position = end;
    return true;
  }

  /// Consumes the next line if another thread has found it. `text` lacks its line end and the
  /// blanks before that.
  const SplitLine* nextIfSplit(std::string_view& text) {
    if (m_split == m_splitEnd || m_split->kind == SplitLine::Kind::EndMark) return nullptr;
    const SplitLine* const line = m_split;
    const char* const end = m_block.bytes.get() + line->end;
    text =
        std::string_view(m_position, static_cast<std::size_t>(end - m_position) - line->trailing);
    moveTo(end);
    return line;
  }

 private:
  const char* findEnd() const {
    const auto bytes = static_cast<std::size_t>(m_end - m_position) + 1;
    return static_cast<const char*>(std::memchr(m_position, '\n', bytes));
  }
  // To the next line.
  void moveTo(const char* position) {
    m_position = position;
    if (m_split != m_splitEnd) ++m_split;
  }
  bool nextAfterFill(std::string_view& line);
  bool isText(std::string_view line);
  bool fill();
  void startBlock();
  void readAhead();

  BlockReader m_blocks;
  TextBlock m_block;                   // of the next line
  const char* m_position = nullptr;    // first byte not yet returned
  const char* m_end = nullptr;         // one past the last byte, where the sentinel LF is
  const SplitLine* m_split = nullptr;  // of the next line, if the block has been split
  const SplitLine* m_splitEnd = nullptr;
  bool m_begun = false;
  bool m_ended = false;
  bool m_splitsAhead = false;
  std::size_t m_alone = 0;  // bytes of the blocks before splitting ahead
  TextBlock m_spare;        // for the next one to be read
  std::unique_ptr<LineSplitter> m_splitter;
};

}  // namespace vek0::detail
