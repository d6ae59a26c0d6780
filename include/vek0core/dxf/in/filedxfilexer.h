#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "vek0core/export.h"
#include "vek0core/files/file.h"
#include "vek0core/files/reportcode.h"
#include "vek0core/files/smartstring.h"
#include "vek0core/files/textcodec.h"
#include "vek0core/tables/handle.h"
#include "zim0lang/wstring.h"

class CFileDXFIError;
class CFileReport;

namespace vek0::detail {
class BinaryText;
class LineReader;
}  // namespace vek0::detail

/// Splits a file into pairs of group code and value.
///
/// Errors are recorded, never thrown, and a sentinel is returned: callers check `HasAnError` before
/// they continue. The file is read from its position at the first `read`: in blocks of bytes if it
/// supports that, otherwise by lines; both yield the same pairs. The value is not decoded until its
/// text is requested.
///
/// A copy continues in the same file: each pair is returned to whichever copy reads first, and each
/// keeps its current pair.
class VEK0_API CFileDXFILexer {
 public:
  /// Units of the value buffer, terminator included. A longer value is cut to its first 8191 units
  /// and reported ("line cut").
  static constexpr long kBufferUnits = 8192;

  /// Bytes that are read at once.
  static constexpr std::size_t kBlockBytes = std::size_t{256} * 1024;

  /// Both are borrowed; the error record may be null, and errors are then not recorded. A smaller
  /// block suits short texts: it must hold their longest line, in UTF-8.
  CFileDXFILexer(IFile& file, CFileDXFIError* err, std::size_t block = kBlockBytes);
  CFileDXFILexer(const CFileDXFILexer& other);
  CFileDXFILexer& operator=(const CFileDXFILexer&) = delete;
  ~CFileDXFILexer();

  /// Reads the next pair that is not a comment (999) and returns its group code, which is within 32
  /// bits. Returns -1 with error 5 if the code's line is empty, and with error 13 at the end of the
  /// file or if reading fails; the value is then empty, and code and line count reflect the part of
  /// the pair that was read.
  long read();

  /// The code of the current pair.
  long getGroupValue() const { return m_group; }
  /// Lines read so far, comments included.
  long getLine() const { return m_line; }

  /// The value without trailing blanks, tabs and line end, decoded but otherwise unchanged: escapes
  /// are kept. Invalidated by every `read`.
  const SmartString& getString() const;

  /// The value's bytes without trailing blanks, in the encoding of the file, or in UTF-8 if the
  /// file is read by lines or is UTF-16. Valid until the next `read`. Keywords and caches compare
  /// these.
  std::string_view getBytes() const { return m_value; }

  /// Whether the value equals that keyword, ignoring case. The keyword must be uppercase ASCII.
  bool isKeyword(std::string_view keyword) const {
    // Most comparisons fail, and the first letter decides that unless the value is indented.
    constexpr char caseless = '_', blank = ' ';
    const char first = m_value.empty() ? blank : m_value.front();
    return (((first ^ keyword.front()) & caseless) == 0 || first <= blank) && equals(keyword);
  }

  /// The value as text: decoded, escapes and carets replaced.
  zim::WString getText() const;

  /// The value as a number: 0 for junk. An empty value is error 6, a non-finite number error 15
  /// (see `refuseJunk`); both return 0.
  double getDouble() const;
  /// The value as a 32-bit integer: 0 for junk; -1 with error 6 if it is empty.
  long getInt() const;
  /// The value as an unchecked hexadecimal number, modulo the range of `long`; -1
  /// with error 6 when it is empty.
  vek0::Handle getHex() const;

  /// Sets the code page for decoding from now on, as the header declares it. A byte order mark at
  /// the start of the file takes precedence. Under `setTolerant`, texts that turn out not to be
  /// UTF-8, contrary to the page, are decoded with the other one.
  void setCodePage(int page, int otherPage = kCodePageAuto);
  /// The encoding used so far, such as "utf-8" or "windows-1252"; "utf-16" for a file read by
  /// lines, whose bytes are not visible here.
  std::string getEncodingName() const;

  /// Forces this code page, whatever the file declares.
  void fixCodePage(int page);
  /// Whether a text contradicted the header's declaration (detected only under `setTolerant`).
  bool isEncodingOther() const { return m_decoder.differs(); }

  /// Makes a value that does not begin with a number error 15 where a number is expected.
  void refuseJunk() { m_refusesJunk = true; }

  /// For pairs that no reader uses: error 15 if the group code is numeric and the value is
  /// non-empty but does not begin with a number.
  void checkNumber() const;

  /// Enables tolerant reading, before the first `read`: binary files are read as the text files
  /// with the same pairs, two lines each; lines that cannot be group codes are skipped, keywords
  /// may be indented, numbers may have a decimal comma or a D exponent, and texts may be UTF-8
  /// contrary to the header. The end of the file reads as the pair (0, "EOF"); a last value line
  /// without its line end is then dropped, unless it is that mark itself. All of this is reported.
  void setTolerant();
  /// Before the first `read`: lets another thread find the lines of files beyond a megabyte and
  /// read their numbers. The pairs are the same. The file is read by the calling thread alone, but
  /// a megabyte farther ahead. Without effect where there are no threads.
  void splitAhead();
  /// Treats the current position as the end of the file, without a report entry.
  void stop() { m_stopped = true; }
  bool isStopped() const { return m_stopped; }

  /// Whether the file ended without its end mark.
  bool isCut() const { return m_cut; }
  /// The form of the file judging by its first line, a `CFileDXFIError::Form`: anything but text
  /// DXF is not read.
  int getForm() const { return m_form; }

  /// Sets the report that receives cut values; null, the default, for none. Borrowed.
  void setReport(CFileReport* report) { m_report = report; }

 private:
  bool equals(std::string_view keyword) const;
  void start();
  bool readLine(std::string_view& line, bool& whole);
  bool readLineOfFile(std::string_view& line, bool& whole);
  bool readCode();
  bool readValue();
  bool takeValue(bool whole);
  long fail();
  long endFile();
  bool passStrayLine(std::string_view line);
  bool isForeign(std::string_view line);
  double repairedDouble() const;
  bool alignPair();
  void finishLongValue(bool whole);
  bool skipRestOfLine();
  void keepValue() const;
  bool isNumberMissing() const;
  void setError(int kind) const;
  void note(ReportCode code, std::string_view sample = {}) const;

  IFile& m_file;
  CFileDXFIError* m_error;
  CFileReport* m_report = nullptr;
  std::shared_ptr<vek0::detail::BinaryText> m_bytes;  // shared with copies, as is m_lines
  std::shared_ptr<vek0::detail::LineReader> m_lines;
  bool m_started = false;
  bool m_byBytes = false;  // known once started
  bool m_tolerant = false;
  bool m_refusesJunk = false;
  bool m_pageFixed = false;
  bool m_stopped = false;
  bool m_cut = false;
  int m_form = 0;
  long m_blankLines = 0;
  mutable CTextDecoder m_decoder;

  long m_line = 0;
  long m_group = 0;
  mutable std::string_view m_value;  // a view into m_lines or of the front of m_own
  mutable std::string m_own;         // holds the value if m_lines does not keep it
  double m_number = 0;
  bool m_isNumber = false;                       // the value is m_number
  std::string m_scratch;                         // by lines: the line just read, as UTF-8
  mutable std::unique_ptr<zim::Char[]> m_units;  // the value buffer, allocated when first needed
  mutable SmartString m_string;
  mutable bool m_widened = false;  // m_units holds the current value
};
