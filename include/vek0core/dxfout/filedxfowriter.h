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
class IFile;

/// Formats DXF group pairs, two lines each, and hands them to a file.
///
/// Every line reaches the file at once unless `setBuffered` collects them. A failed write
/// is remembered; everything after it is dropped. Numbers do not depend on the locale.
class VEK0_API CFileDXFOWriter {
 public:
  /// Writes to `file`, which is borrowed and must be open whenever something is written
  /// or handed over.
  explicit CFileDXFOWriter(IFile& file);
  CFileDXFOWriter(const CFileDXFOWriter&) = delete;
  CFileDXFOWriter& operator=(const CFileDXFOWriter&) = delete;
  /// Flushes. Whether that failed the file knows (`IFile::fail`).
  ~CFileDXFOWriter();

  /// Value in decimal.
  void write(long code, long value);
  /// Value 1 or 0.
  void write(long code, bool value);
  /// Fixed notation with six decimals, never an exponent, as "%.6f" gives it;
  /// the shortest exact decimal after `setExact(true)`. `value` must be finite:
  /// other numbers have no form that readers take and are written as 0.
  void write(long code, double value);
  /// The text in the encoding of the file; null is the empty text.
  void write(long code, const zim::Char* text);
  /// The same with a length. Control characters become carets (`^J`), so no text
  /// can end its line; a text longer than the 8190 bytes that every reader takes
  /// is cut there and reported.
  void writeText(long code, std::u16string_view text);
  /// The value of `hexBits` in upper-case hexadecimal without leading zeros.
  void writeHex(long code, vek0::Handle value);
  /// The low 32 bits of a negative number that has no more, as in programs whose handles
  /// have 32 bits; all 64 bits of any other.
  static std::uint64_t hexBits(vek0::Handle value);
  /// A value that is already in the encoding of the file, without a line end and
  /// at most 8190 bytes long.
  void writeEncoded(long code, std::string_view value);

  /// Whether real numbers are written as the shortest decimals that read back
  /// exactly; off at first.
  void setExact(bool exact) { m_exact = exact; }

  /// Where cut texts are reported; null (at first) for nowhere. Borrowed.
  void setReport(CFileReport* report) { m_report = report; }

  /// Whether output is collected in a buffer of 64 KiB, which is several times faster; off
  /// at first. Then call `flush` before the file is closed.
  void setBuffered(bool buffered) { m_buffered = buffered; }
  /// Hands what is buffered to the file. False when this or an earlier write
  /// failed.
  bool flush();
  /// Whether a write failed.
  bool fail() const { return m_failed; }

 protected:
  /// The line of the group code: right-aligned in three columns.
  void writeGroup(long code);

 private:
  char* room(std::size_t bytes);
  void endLine(char* end);
  std::string_view encoded(std::u16string_view text);

  IFile& m_file;
  std::unique_ptr<char[]> m_buffer;
  std::size_t m_used = 0;
  std::string m_text;  // the text being encoded; its room is kept
  CFileReport* m_report = nullptr;
  bool m_exact = false;
  bool m_buffered = false;
  bool m_failed = false;
};
