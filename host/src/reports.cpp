#include "vek0host/reports.h"

#include "vek0host/visibletext.h"

namespace vek0::host {
namespace {

std::string linesOf(const CFileReport& report, ReportSeverity least) {
  std::string text;
  for (const auto& entry : report.entries()) {
    const ReportSeverity severity = severityOf(entry.code);
    if (severity < least) continue;
    text += "    " + std::string(nameOf(severity)) + ": " + textOf(entry.code);
    if (!entry.sample.empty()) text += " '" + visible(entry.sample) + "'";
    text += " (" + std::to_string(entry.count) + (entry.count == 1 ? " time" : " times");
    if (entry.firstLine > 0) text += ", first at line " + std::to_string(entry.firstLine);
    text += ")\n";
  }
  return text;
}

}  // namespace

Json errorToJson(const ReadResult& result) {
  if (result.ok()) return nullptr;
  return Json{{"kind", result.kind()},
              {"line", result.error.GetErrorLine()},
              {"message", result.message()}};
}

Json reportToJson(const CFileReport& report) {
  Json entries = Json::array();
  for (const auto& entry : report.entries()) {
    entries.push_back({{"code", textOf(entry.code)},
                       {"severity", nameOf(severityOf(entry.code))},
                       {"count", entry.count},
                       {"line", entry.firstLine > 0 ? Json(entry.firstLine) : Json()},
                       {"sample", entry.sample.toUtf8()}});
  }
  return entries;
}

std::string lossesToText(const CFileReport& report) {
  return linesOf(report, ReportSeverity::Change);
}

std::string reportToText(const CFileReport& report) {
  return linesOf(report, ReportSeverity::Fault);
}

CFileReport auditOf(const std::string& path, const Session& session) {
  CFileReport report;
  auditDXF(*openForReading(path, session), report, session.reading.codePage);
  return report;
}

Json checkToJson(const std::string& path, const ReadResult& result, const CFileReport& audit) {
  return {{"file", path},
          {"ok", result.ok()},
          {"error", errorToJson(result)},
          {"report", reportToJson(result.report)},
          {"audit", reportToJson(audit)}};
}

std::string checkToText(const std::string& path, const ReadResult& result,
                        const CFileReport& audit) {
  if (result.ok())
    return visible(path) + ": ok\n" + reportToText(result.report) + reportToText(audit);
  return visible(path) + ": error (" + result.kind() + "): " + visible(result.message()) + "\n";
}

}  // namespace vek0::host
