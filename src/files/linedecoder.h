#pragma once

#include <cstddef>
#include <string>

#include "files/linereader.h"
#include "vek0core/export.h"
#include "vek0core/files/textcodec.h"

namespace vek0::detail {

/// Reads a source of bytes as lines of text, as specified by `IFile::readLn`.
class VEK0_API LineDecoder {
 public:
  explicit LineDecoder(LineReader::Source source);

  /// Writes the next line, or as much as fits into `n` units, to `buf`, never half a surrogate pair
  /// unless `n` is 2. Returns false, with `buf` unchanged, at the end.
  bool readLn(zim::Char* buf, long n);

 private:
  bool fetch();

  LineReader m_lines;
  CTextDecoder m_decoder;
  std::u16string m_line;   // decoded, its line end included
  std::size_t m_used = 0;  // units of it already returned
};

}  // namespace vek0::detail
