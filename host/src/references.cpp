#include "vek0host/references.h"

#include "vek0host/paths.h"
#include "vek0host/reports.h"

namespace vek0::host {
namespace {

zim::WString nameOfDrawing(const std::string& path) {
  return path == "-" ? zim::WString() : toName(toPath(path));
}

}  // namespace

ReferenceReader::ReferenceReader(const std::string& path, const ReferenceOptions& options,
                                 const Session& session)
    : m_folders(nameOfDrawing(path)) {
  for (const std::string& folder : options.searched)
    m_folders.addSearchFolder(toName(toPath(folder)));
  for (const std::string& folder : options.allowed) m_folders.allowFolder(toName(toPath(folder)));
  m_options.reading = readingOptions(session);
  m_options.reading.policy.paperSpace = m_options.reading.policy.layouts = false;
  // Fonts are found by name, and bound content must keep its font names.
  m_options.reading.policy.keepFontNames = true;
  m_options.drawing = m_folders.getDrawing();
  m_options.report = &m_report;
  m_options.onRead = [this](const CBlockXRef& xref, const CFileDXFIResult&,
                            const CFileReport& report) {
    m_readings.emplace_back(toText(xref), report);
  };
}

long ReferenceReader::failures() const {
  long count = 0;
  for (const CFileReport::Entry& entry : m_report.entries())
    if (severityOf(entry.code) == ReportSeverity::Loss) count += entry.count;
  return count;
}

std::string ReferenceReader::failuresToText() const { return lossesToText(m_report); }

References::References(const CData& data) {
  const CBlockXRefTable& table = data.getBlockXRefTable();
  for (int i = 0; i < table.size(); ++i) all.push_back(table[i]);
  for (CBlockXRef* xref : all)
    if (xref->getShows() == 0 || data.getDepend().getCount(xref) > 0) own.push_back(xref);
}

const char* nameOf(CBlockXRef::Status status) {
  switch (status) {
    case CBlockXRef::Status::unresolved:
      return "unresolved";
    case CBlockXRef::Status::loaded:
      return "loaded";
    case CBlockXRef::Status::missing:
      return "missing";
    case CBlockXRef::Status::broken:
      return "broken";
    case CBlockXRef::Status::refused:
      return "refused";
  }
  return "";
}

std::string toText(const CBlockXRef& xref) {
  return xref.getName().toUtf8() + " (" + xref.getPath().toUtf8() +
         (xref.isOverlay() ? ", overlay)" : ")");
}

}  // namespace vek0::host
