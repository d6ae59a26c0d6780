#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "vek0core/export.h"
#include "vek0core/files/file.h"
#include "vek0core/files/smartstring.h"
#include "vek0core/files/textcodec.h"
#include "vek0core/tables/handle.h"
#include "zim0lang/wstring.h"

class CFileDXFIError;
class CFileReport;

namespace vek0::detail {
class LineReader;
}

/// Turns a file into pairs of group code and value.
///
/// Errors are recorded, never thrown, and a sentinel is returned: callers test
/// `HasAnError` before they go on. The file is read from where it stands when
/// `read` is first called: in blocks of bytes when it offers bytes, else by lines;
/// both give the same pairs. The value stays bytes until its text is asked for.
///
/// A copy goes on in the same file: each pair comes to whoever reads first, and
/// both keep their current pair.
class VEK0_API CFileDXFILexer {
 public:
  /// Units of the value buffer, terminator included. Of a longer value the first
  /// 8191 units are kept and the report told ("line cut").
  static constexpr long kBufferUnits = 8192;

  /// Both are borrowed; the error record may be null, then nobody is told.
  CFileDXFILexer(IFile& file, CFileDXFIError* err);
  CFileDXFILexer(const CFileDXFILexer& other);
  CFileDXFILexer& operator=(const CFileDXFILexer&) = delete;
  ~CFileDXFILexer();

  /// Reads the next pair that is not a comment (999) and returns its group code,
  /// which is within 32 bits. Returns -1 with error 5 when the code's line is empty,
  /// and with error 13 at the end of the file or when reading fails; the value is
  /// empty then, code and line count stand as far as the pair was read.
  long read();

  /// The code of the current pair.
  long getGroupValue() const { return m_group; }
  /// Lines read so far, comments included.
  long getLine() const { return m_line; }

  /// The value without trailing blanks, tabs and line end, decoded and otherwise as
  /// it stands: escapes are kept. Ask anew after every `read`.
  const SmartString& getString() const;

  /// The value's bytes, trailing blanks gone, in the encoding of the file, or in
  /// UTF-8 when the file is read by lines or is UTF-16. Valid until the next
  /// `read`. What keywords and caches compare.
  std::string_view getBytes() const { return m_value; }

  /// Whether the value is that keyword, which is upper-case ASCII, in any case.
  bool isKeyword(std::string_view keyword) const {
    // Most are asked about in vain, which the first letter tells, unless it is indented.
    constexpr char caseless = '_', blank = ' ';
    const char first = m_value.empty() ? blank : m_value.front();
    return (((first ^ keyword.front()) & caseless) == 0 || first <= blank) && equals(keyword);
  }

  /// The value as text: decoded, escapes and carets replaced.
  zim::WString getText() const;

  /// The value as a number: 0 for junk. An empty value is error 6, a number that is
  /// not finite error 15 (see `refuseJunk`); 0 is returned then.
  double getDouble() const;
  /// The value as a whole number within 32 bits: 0 for junk; -1 with error 6 when it is empty.
  long getInt() const;
  /// The value as an unchecked hexadecimal number, modulo the range of `long`; -1
  /// with error 6 when it is empty.
  vek0::Handle getHex() const;

  /// How bytes from now on are taken as text: what the header declares. A byte
  /// order mark at the start of the file wins over it. Texts that turn out not to be UTF-8
  /// against the page are of the other one (`setTolerant` alone looks).
  void setCodePage(int page, int otherPage = kCodePageAuto);
  /// How bytes were taken as text so far, as "utf-8" or "windows-1252"; "utf-16" of
  /// a file that is read by lines, whose bytes are not seen here.
  std::string getEncodingName() const;

  /// Reads what is written as the encoding says, whatever the file declares.
  void fixCodePage(int page);
  /// Whether a text contradicted what the header declares (`setTolerant` alone looks).
  bool isEncodingOther() const { return m_decoder.differs(); }

  /// Makes a value that does not even begin with a number error 15 where one is asked for.
  void refuseJunk() { m_refusesJunk = true; }

  /// For pairs that nobody reads: error 15 when the group code is one of numbers and the value,
  /// unless it is empty, begins with none.
  void checkNumber() const;

  /// Makes the best of a file: lines that cannot be group codes are left out, keywords may
  /// be indented, numbers may have a decimal comma or an exponent after a D, texts may be
  /// UTF-8 against what the header says. The end of the file reads as the pair (0, "EOF");
  /// a value line that lacks its end is left out then, unless it is that very mark. The
  /// report is told.
  void setTolerant();
  /// Reads nothing more: the file ends here, without a word in the report.
  void stop() { m_stopped = true; }
  bool isStopped() const { return m_stopped; }

  /// Whether the file ended without its end mark.
  bool isCut() const { return m_cut; }
  /// What the first line shows the file to be, a `CFileDXFIError::Form`: nothing is read of
  /// what is no text DXF.
  int getForm() const { return m_form; }

  /// Where cut values are reported; null, as at first, for nowhere. Borrowed.
  void setReport(CFileReport* report) { m_report = report; }

 private:
  bool equals(std::string_view keyword) const;
  void start();
  bool readLine(std::string_view& line, bool& whole);
  bool readLineOfFile(std::string_view& line, bool& whole);
  bool readCode();
  bool readValue();
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
  void note(const char* code, std::string_view sample = {}) const;

  IFile& m_file;
  CFileDXFIError* m_error;
  CFileReport* m_report = nullptr;
  std::shared_ptr<vek0::detail::LineReader> m_lines;  // shared with copies
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
  mutable std::string_view m_value;              // into m_lines, or all of m_own's front
  mutable std::string m_own;                     // the value where m_lines does not keep it
  std::string m_scratch;                         // by lines: the line just read, as UTF-8
  mutable std::unique_ptr<zim::Char[]> m_units;  // the value buffer, made when first needed
  mutable SmartString m_string;
  mutable bool m_widened = false;  // m_units holds the current value
};
