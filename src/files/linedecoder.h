#pragma once

#include <cstddef>
#include <string>

#include "files/linereader.h"
#include "vek0core/export.h"
#include "vek0core/files/textcodec.h"

namespace vek0::detail {

/// Reads a source of bytes as lines of text, the way `IFile::readLn` gives them.
class VEK0_API LineDecoder {
 public:
  explicit LineDecoder(LineReader::Source source);

  /// Puts the next line, or what `n` leaves of it, into `buf`, never half a
  /// surrogate pair unless `n` is 2. False, and `buf` untouched, when there is
  /// nothing more.
  bool readLn(zim::Char* buf, long n);

 private:
  bool fetch();

  LineReader m_lines;
  CTextDecoder m_decoder;
  std::u16string m_line;   // decoded, its line end included
  std::size_t m_used = 0;  // units of it that were handed out
};

}  // namespace vek0::detail
