#include "dxf/in/parse/sectioninput.h"

#include <string>
#include <utility>

#include "vek0core/files/report.h"

namespace vek0::detail {

bool SectionInput::expect(long code) {
  const long found = read();
  if (!failed() && found != code) fail(CFileDXFIError::WrongStructure);
  return !failed();
}

// -- records -------------------------------------------------------------------

void SectionInput::nextRecord() {
  if (!std::exchange(m_kept, false)) read();
}

bool SectionInput::atRecord() {
  if (isTolerant() && code() != 0) skipRecord();
  if (!failed() && code() != 0) fail(CFileDXFIError::WrongStructure);
  return !failed();
}

void SectionInput::skipRecord() {
  do {
    read();
  } while (!failed() && code() != 0);
}

void SectionInput::skipTo(std::string_view keyword) {
  do {
    read();
    if (isTolerant() && code() == 0 && (atSectionEnd() || isKeyword("TABLE"))) {
      m_kept = !isKeyword(keyword);
      return;
    }
  } while (!failed() && (code() != 0 || !isKeyword(keyword)));
}

bool SectionInput::atSectionEnd() {
  if (isKeyword("ENDSEC") || lexer.isStopped()) return true;
  m_kept = isTolerant() && code() == 0 && isBeyondSection();
  if (m_kept) note(ReportCode::SectionCut);
  return m_kept;
}

bool SectionInput::isCutAt(std::string_view next) const {
  return isTolerant() && (isKeyword(next) || isKeyword("ENDSEC") || isBeyondSection());
}

// -- failures ------------------------------------------------------------------

void SectionInput::failAt(long line, CFileDXFIError::TDXFErrors kind) {
  m_faultLine = line;
  fail(kind);
}

void SectionInput::note(ReportCode code, const zim::WString& sample) const {
  if (m_options.report) m_options.report->add(code, lexer.getLine(), sample);
}

void SectionInput::noteAt(long line, ReportCode code, const zim::WString& sample) const {
  if (m_options.report) m_options.report->add(code, line, sample);
}

bool SectionInput::tolerates(CFileDXFIError::TDXFErrors kind) {
  if (!isTolerant()) fail(kind);
  return isTolerant();
}

// A host that is out of memory learns it under both policies.
bool SectionInput::forgive(ReportCode code, const zim::WString& sample) {
  if (!isTolerant() || !failed() || m_err.GetErrorType() == CFileDXFIError::GeneralError)
    return false;
  note(code, sample);
  m_err = CFileDXFIError();
  m_faultLine = 0;
  return true;
}

bool SectionInput::spareNumber() {
  const CFileDXFIError::TDXFErrors kind = m_err.GetErrorType();
  const bool isNumber = kind == CFileDXFIError::OutOfRange || kind == CFileDXFIError::EmptyNumber;
  return isNumber &&
         forgive(ReportCode::NumberDropped, zim::WString::fromUtf8(std::to_string(code())));
}

bool SectionInput::recover(ReportCode code, const zim::WString& sample) {
  if (!forgive(code, sample)) return false;
  if (this->code() != 0) skipRecord();
  return true;
}

bool SectionInput::passRecord() {
  if (!isTolerant()) return false;
  note(ReportCode::RecordSkipped, lexer.getText());
  skipRecord();
  return true;
}

// -- values --------------------------------------------------------------------

long SectionInput::flags() {
  const long flags = lexer.getInt();
  if (flags >= 0 || failed() || !isTolerant()) return flags;
  note(ReportCode::FlagsReplaced, lexer.getText());
  return 0;
}

void SectionInput::passPair() {
  if (isTolerant()) lexer.checkNumber();
}

}  // namespace vek0::detail
