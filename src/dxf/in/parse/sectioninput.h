#pragma once

#include <memory>
#include <string_view>

#include "dxf/in/parse/filedxfiversionloader.h"
#include "vek0core/dxf/in/filedxfierror.h"
#include "vek0core/dxf/in/filedxfilexer.h"
#include "vek0core/dxf/in/filedxfioptions.h"
#include "vek0core/dxf/in/filedxfisemantor.h"
#include "vek0core/files/reportcode.h"
#include "zim0lang/wstring.h"

namespace vek0::detail {

/// The pairs of a file as the readers of its sections see them, and what happens where the file
/// breaks the rules: here the policy decides whether that is an error or an entry of the report, so
/// that the section readers follow the same steps under both policies.
///
/// Everything is borrowed.
class SectionInput {
 public:
  SectionInput(CFileDXFILexer& fileLexer, IFileDXFISemantor& fileSemantor, CFileDXFIError& err,
               const CFileDXFIOptions& options)
      : lexer(fileLexer), semantor(fileSemantor), m_err(err), m_options(options) {}

  CFileDXFILexer& lexer;
  IFileDXFISemantor& semantor;
  /// Reads what depends on the version; null until a section needs it.
  std::unique_ptr<CFileDXFIVersionLoader> loader;

  long read() { return lexer.read(); }
  long code() const { return lexer.getGroupValue(); }
  bool isKeyword(std::string_view keyword) const { return lexer.isKeyword(keyword); }
  /// Reads a pair, which must have this group code: otherwise error 13.
  bool expect(long code);

  /// Moves to the next record, unless `keepRecord` kept the current one.
  void nextRecord();
  /// Leaves the current record for the next `nextRecord`.
  void keepRecord(bool keep = true) { m_kept = keep; }
  /// Whether the current pair begins a record and no error is recorded: otherwise error 13.
  bool atRecord();
  /// Skips the current record.
  void skipRecord();
  /// Skips everything up to the record of that name.
  void skipTo(std::string_view keyword);
  /// Whether the current record ends the section; one that begins the next, or ends the file, does
  /// so under the tolerant policy and is kept.
  bool atSectionEnd();
  /// Whether the current record begins a section or ends the file.
  bool isBeyondSection() const { return isKeyword("SECTION") || isKeyword("EOF"); }
  /// Whether a table or block lacks its end: the current record begins another (`next`), or ends
  /// the section or the file. Never under the strict policy, where such a record is an error.
  bool isCutAt(std::string_view next) const;

  bool isTolerant() const { return m_options.policy.tolerant; }
  bool failed() const { return m_err.HasAnError(); }
  void fail(CFileDXFIError::TDXFErrors kind) { m_err.SetError(kind); }
  /// The same for an earlier line.
  void failAt(long line, CFileDXFIError::TDXFErrors kind);
  /// Line of the recorded error.
  long faultLine() const { return m_faultLine != 0 ? m_faultLine : lexer.getLine(); }

  void note(ReportCode code, const zim::WString& sample = {}) const;
  /// The same for an earlier line.
  void noteAt(long line, ReportCode code, const zim::WString& sample) const;
  /// Whether reading goes on despite a violation of the rules; under the strict policy it is an
  /// error. The caller notes how the violation was repaired.
  bool tolerates(CFileDXFIError::TDXFErrors kind);
  /// Under the tolerant policy, downgrades an error to a report entry; false if there was none, or
  /// a fatal one.
  bool forgive(ReportCode code, const zim::WString& sample);
  /// The same for an error in the current value, which is not a number: the pair is dropped.
  bool spareNumber();
  /// The same for an error in a record; continues with the next record.
  bool recover(ReportCode code, const zim::WString& sample);
  /// Under the tolerant policy, skips the current record, which is misplaced, whether or not there
  /// is an error.
  bool passRecord();

  /// The current value as flags; negative ones are read as 0 under the tolerant policy.
  long flags();
  /// For a pair that nothing reads: an invalid number in it is an error, which callers downgrade,
  /// under the tolerant policy only.
  void passPair();

 private:
  CFileDXFIError& m_err;
  const CFileDXFIOptions& m_options;
  bool m_kept = false;
  long m_faultLine = 0;  // 0: the error is at the lexer's current line
};

}  // namespace vek0::detail
