#include "vek0host/losslog.h"

#include <algorithm>
#include <utility>

namespace vek0::host {
namespace {

constexpr int kWorst = static_cast<int>(ReportSeverity::Loss);
constexpr const char* kStages[] = {"read", "write", "draw"};

Json newEntry(const std::string& code, ReportSeverity severity, LossLog::Stage stage, long count,
              const std::string& message) {
  // An audit's faults are in the file, whatever is done with it.
  if (severity == ReportSeverity::Fault) severity = ReportSeverity::Note;
  return {{"code", code},
          {"severity", nameOf(severity)},
          {"stage", kStages[stage]},
          {"count", count},
          {"line", nullptr},
          {"sample", nullptr},
          {"message", message},
          {"old", nullptr},
          {"new", nullptr}};
}

bool isRenaming(ReportCode code) {
  return code == ReportCode::NameChanged || code == ReportCode::BlockRenamed ||
         code == ReportCode::LayerRenamed || code == ReportCode::LinetypeRenamed ||
         code == ReportCode::StyleRenamed;
}

// "old -> new", where the names themselves may contain an arrow only in the classic form.
void splitNames(const std::string& sample, Json& entry) {
  constexpr std::string_view arrow = " -> ";
  const std::size_t at = sample.rfind(arrow);
  if (at == std::string::npos) return;
  entry["old"] = sample.substr(0, at);
  entry["new"] = sample.substr(at + arrow.size());
}

}  // namespace

void LossLog::begin(const std::string& file) {
  const auto known = std::find_if(m_drawings.begin(), m_drawings.end(),
                                  [&](const Drawing& drawing) { return drawing.file == file; });
  m_current = static_cast<std::size_t>(known - m_drawings.begin());
  if (m_current == m_drawings.size()) m_drawings.push_back({file});
}

void LossLog::add(Stage stage, const CFileReport& report) {
  for (const CFileReport::Entry& entry : report.entries()) {
    const ReportSeverity severity = severityOf(entry.code);
    Json made = newEntry(textOf(entry.code), severity, stage, entry.count,
                         messageOf(entry, stage == Write ? m_target : std::string()));
    if (entry.firstLine > 0) made["line"] = entry.firstLine;
    const std::string sample = entry.sample.toUtf8();
    if (!sample.empty()) made["sample"] = sample;
    if (isRenaming(entry.code)) splitNames(sample, made);
    add(std::move(made));
  }
}

void LossLog::addFailure(Stage stage, const std::string& kind, const std::string& message) {
  add(newEntry(kind, ReportSeverity::Loss, stage, 1, message));
}

void LossLog::addChange(const std::string& code, const zim::WString& sample,
                        const std::string& message) {
  Json entry = newEntry(code, ReportSeverity::Note, Write, 1, message);
  entry["sample"] = sample.toUtf8();
  add(std::move(entry));
}

void LossLog::addLoss(Stage stage, const std::string& code, long count,
                      const std::string& message) {
  add(newEntry(code, ReportSeverity::Loss, stage, count, message));
}

void LossLog::add(Json entry) {
  if (!m_drawings.empty()) m_drawings[m_current].entries.push_back(std::move(entry));
}

bool LossLog::has(ReportSeverity least) const {
  for (const Drawing& drawing : m_drawings)
    for (const Json& entry : drawing.entries)
      for (int severity = static_cast<int>(least); severity <= kWorst; ++severity)
        if (entry["severity"] == nameOf(static_cast<ReportSeverity>(severity))) return true;
  return false;
}

std::vector<Json> LossLog::toJson(const std::string& verb) const {
  std::vector<Json> objects;
  for (const Drawing& drawing : m_drawings)
    objects.push_back(
        {{"schema", 1}, {"file", drawing.file}, {"verb", verb}, {"entries", drawing.entries}});
  return objects;
}

std::string LossLog::toText() const {
  Json all = Json::array();
  for (const Drawing& drawing : m_drawings)
    all.push_back({{"file", drawing.file}, {"entries", drawing.entries}});
  return toLine(all);
}

void LossLog::addText(const std::string& text) {
  const Json all = Json::parse(text, nullptr, false);
  if (!all.is_array()) return;
  for (const Json& drawing : all) {
    begin(drawing["file"].get<std::string>());
    for (const Json& entry : drawing["entries"]) add(entry);
  }
}

}  // namespace vek0::host
