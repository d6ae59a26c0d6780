#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "files/linereader.h"

namespace vek0::detail {

/// Passes on the bytes of a file, and those of binary DXF as the lines that a text file with the
/// same pairs would have, so that only this class knows binary files. Control characters in texts
/// become carets and a letter, as in text files. Binary chunks become hexadecimal digits.
class BinaryText {
 public:
  explicit BinaryText(LineReader::Source source) : m_source(std::move(source)) {}

  /// Lets it recognize binary files, which it passes on as they are otherwise. Call it before the
  /// first `read`.
  void recognize() { m_recognizes = true; }

  /// As `LineReader::Source`. A binary file that is cut, or damaged so that a code is out of
  /// range, ends after the last complete pair.
  long read(char* out, long room);

 private:
  long start();
  bool convert();
  bool convertPair();
  bool takeCode();
  bool takeText();
  bool takeChunk();
  bool have(std::size_t count);
  long fill();
  std::string_view rest() const { return std::string_view(m_raw).substr(m_position); }

  LineReader::Source m_source;
  bool m_recognizes = false, m_started = false, m_isBinary = false;
  bool m_isWide = false;   // group codes have two bytes
  bool m_inText = false;   // within a text
  bool m_isEnded = false;  // nothing more to convert
  long m_code = 0;
  std::string m_raw;  // read and, from m_position on, not yet passed on or converted
  std::size_t m_position = 0;
  std::string m_text;  // converted and, from m_passed on, not yet passed on
  std::size_t m_passed = 0;
};

/// Offset of the first pair of a binary file; 0 if the bytes are not the start of one.
std::size_t binaryStart(std::string_view bytes);
/// Whether group codes have two bytes, judging by the first pair.
bool isWideBinary(std::string_view pairs);
/// Size of the pair at the front of the bytes; 0 if it is cut or damaged.
std::size_t binaryPairSize(std::string_view pairs, bool isWide);
/// Appends a pair, the inverse of the conversion into text.
void appendBinaryPair(std::string& out, long code, std::string_view value, bool isWide);

}  // namespace vek0::detail
