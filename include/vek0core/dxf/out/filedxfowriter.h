#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "vek0core/export.h"
#include "vek0core/tables/handle.h"
#include "zim0lang/casefold.h"

class CFileReport;
class CTextEncoder;
class IFile;

namespace vek0::detail {
struct GroupPair;
class PairTape;
}  // namespace vek0::detail

/// Formats DXF group pairs, two lines each, and writes them to a file.
///
/// Every line is written immediately unless `setBuffered` enables buffering. A failed write is
/// remembered; everything after it is dropped. Numbers do not depend on the locale.
class VEK0_API CFileDXFOWriter {
 public:
  /// Writes to `file`, which is borrowed and must be open during every write and flush.
  explicit CFileDXFOWriter(IFile& file);
  CFileDXFOWriter(const CFileDXFOWriter&) = delete;
  CFileDXFOWriter& operator=(const CFileDXFOWriter&) = delete;
  /// Flushes. `IFile::fail` reports whether that failed.
  ~CFileDXFOWriter();

  /// Writes the value in decimal.
  void write(long code, long value);
  /// Writes 1 or 0.
  void write(long code, bool value);
  /// Writes fixed notation with six decimals and no exponent, like "%.6f", or the shortest exact
  /// decimal after `setExact(true)`. Numbers that are not finite have no form that readers
  /// accept: they are written as 0 and reported.
  void write(long code, double value);
  /// Writes the text in the encoding of the file; null counts as empty.
  void write(long code, const zim::Char* text);
  /// The same for a view. Control characters become caret escapes (`^J`), so no text can end its
  /// line; text beyond the 8190 bytes that every reader accepts is cut off and reported.
  void writeText(long code, std::u16string_view text);
  /// Writes the value of `hexBits` in uppercase hexadecimal without leading zeros.
  void writeHex(long code, vek0::Handle value);
  /// The low 32 bits of a negative number that fits in 32 bits, as written by programs with 32-bit
  /// handles; all 64 bits of any other.
  static std::uint64_t hexBits(vek0::Handle value);
  /// Writes a value already in the encoding of the file, without a line end and at most 8190 bytes
  /// long.
  void writeEncoded(long code, std::string_view value);

  /// Whether to write real numbers as the shortest decimals that read back exactly; off by default.
  void setExact(bool exact) { m_exact = exact; }

  /// Sets the encoding of texts (borrowed); null, the default, for windows-1252.
  void setEncoder(const CTextEncoder* encoder) { m_encoder = encoder; }

  /// Sets the report that receives cut texts and replaced numbers; null, the default, for none.
  /// Borrowed.
  void setReport(CFileReport* report) { m_report = report; }

  /// Whether to collect output in a buffer of 64 KiB, which is several times faster; off by
  /// default. If on, call `flush` before closing the file.
  void setBuffered(bool buffered) { m_buffered = buffered; }
  /// Whether another thread may format numbers, beyond the first 32,000 pairs; off by
  /// default. If on, output is buffered, in some megabytes. `IFile` is called by the calling thread
  /// alone, and the bytes are the same.
  void setThreads(bool allowed);
  /// Writes the buffer to the file. False if this or an earlier write failed.
  bool flush();
  /// Whether a write failed.
  bool fail() const { return m_failed; }

 protected:
  /// The line of the group code: right-aligned in three columns.
  void writeGroup(long code);

 private:
  void put(const vek0::detail::GroupPair& pair);
  void turn();
  void writeBytes(std::string_view bytes);
  char* room(std::size_t bytes);
  void endLine(char* end);
  std::string_view encoded(std::u16string_view text);

  IFile& m_file;
  std::unique_ptr<char[]> m_buffer;
  std::size_t m_used = 0;
  std::unique_ptr<vek0::detail::PairTape> m_tape;  // null if this thread formats
  std::string m_text;  // the text being encoded; a member to reuse its capacity
  const CTextEncoder* m_encoder = nullptr;
  CFileReport* m_report = nullptr;
  bool m_exact = false;
  bool m_buffered = false;
  bool m_failed = false;
};
