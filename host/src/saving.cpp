#include "vek0host/saving.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>

#include "vek0host/drawingfile.h"
#include "vek0host/losslog.h"
#include "vek0host/outputfile.h"
#include "vek0host/paths.h"
#include "vek0host/reports.h"

namespace vek0::host {

unsigned SaveOptions::flags() const {
  return (flatten ? kSaveFlatten : 0u) | (visibleOnly ? kSaveVisibleOnly : 0u) |
         (noTables ? kSaveNoTables : 0u) | (plain ? 0u : kSaveExchange) |
         (keepNames ? kSaveKeepNames : 0u);
}

namespace {

constexpr const char* kVersionNames[] = {"r12", "2000", "2004", "2007", "2010", "2013", "2018"};
static_assert(std::size(kVersionNames) == kDxfVersions);
constexpr const char* kKeep = "keep";

std::string problemOf(CDXFSource::Outcome outcome, const std::string& in, const std::string& out) {
  switch (outcome) {
    case CDXFSource::Outcome::Saved:
      return {};
    case CDXFSource::Outcome::NotLoaded:
      return "'" + in + "' cannot be kept; use --to";
    case CDXFSource::Outcome::Incomplete:
      return "'" + in + "' is not complete enough for another version";
    case CDXFSource::Outcome::Changed:
      return "'" + in + "' has changed since it was read";
    case CDXFSource::Outcome::NotWritten:
      break;
  }
  return "'" + out + "' cannot be written";
}

// A drawing with the file that it comes from, if that or its records are to be kept.
class RewrittenDrawing {
 public:
  RewrittenDrawing(const std::string& in, const SaveOptions& options, Session& session)
      : m_in(in), m_options(options), m_session(session), data(newDrawing()) {
    if (options.isR12()) return;
    m_source.emplace(openForReading(in, session));
    const bool isNew = options.form == SaveForm::New;
    if (isNew && (session.reading.hatchOutlines || !m_source->isComplete())) m_source.reset();
  }

  ~RewrittenDrawing() { keepUntilExit(std::move(data)); }
  RewrittenDrawing(const RewrittenDrawing&) = delete;
  RewrittenDrawing& operator=(const RewrittenDrawing&) = delete;

  /// Whether what is not read stays in the file.
  bool isCarriedOver() const { return m_source.has_value(); }

  ReadResult load() {
    ReadResult result =
        m_source ? loadFile(*data, *m_source, m_in, m_session) : loadFile(*data, m_in, m_session);
    m_isFromR12 = result.outcome.version.view() <= u"AC1009";
    return result;
  }

  bool save(OutputFile& output) const {
    CFileReport report;
    const std::string problem = write(output, report);
    if (m_options.isR12() && !m_isFromR12) noteHatches(report);
    if (m_session.log) {
      m_session.log->begin(m_in);
      m_session.log->add(LossLog::Write, report);
    }
    if (!problem.empty()) {
      m_session.fail(kOutputFailed, problem);
      if (!report.empty()) m_session.notify("reasons:", reportToText(report));
      return false;
    }
    if (!backUp(output.path()) || !output.commit()) {
      if (!output.error().empty()) m_session.fail(kOutputFailed, output.error());
      return false;
    }
    if (!report.empty())
      m_session.notify("not everything could be written unchanged:", reportToText(report));
    return true;
  }

 private:
  // The core reads them back as hatches, but other programs see inserts. In R12 files they have
  // been inserts in the first place.
  void noteHatches(CFileReport& report) const {
    const auto note = [&](const CEnt& ent) {
      if (ent.getType() == CEntHatch::kType && ent.getTraits().isVisible)
        report.add(ReportCode::KindReplaced, 0, u"HATCH");
    };
    vek0::forEachEnt(*data, note);
    for (int i = 0; i < data->getLayouts().size(); ++i)
      vek0::forEachEnt(data->getLayouts()[i].getBlock(), note);
  }
  bool backUp(const std::string& path) const {
    if (!m_options.backup || OutputFile::isDryRun()) return true;
    std::filesystem::path copy = toPath(path);
    copy += ".bak";
    std::error_code failure;
    std::filesystem::copy_file(toPath(path), copy,
                               std::filesystem::copy_options::overwrite_existing, failure);
    if (failure)
      m_session.fail(kOutputFailed, "'" + path + ".bak' cannot be written: " + failure.message());
    return !failure;
  }
  std::string write(OutputFile& output, CFileReport& report) const {
    const auto damage = m_options.repair ? CDXFSource::Damage::Repaired : CDXFSource::Damage::Kept;
    if (m_source) {
      const bool isKept = m_options.form == SaveForm::Kept;
      const CDXFSource::Outcome outcome =
          isKept ? m_source->save(*data, output.file(), &report, damage)
                 : m_source->saveAs(*data, output.file(), m_options.version, &report);
      return problemOf(outcome, m_in, output.path());
    }
    if (SaveDXF(*data, output.file(), {m_options.version, m_options.flags(), &report})) return {};
    return "'" + output.path() + "' cannot be written";
  }

  const std::string& m_in;
  const SaveOptions& m_options;
  Session& m_session;
  std::optional<CDXFSource> m_source;
  bool m_isFromR12 = false;

 public:
  Drawing data;
};

}  // namespace

std::vector<std::string> targetNames() {
  std::vector<std::string> names(std::begin(kVersionNames), std::end(kVersionNames));
  names.emplace_back(kKeep);
  return names;
}

void SaveOptions::setTarget(const std::string& name) {
  form = name == kKeep ? SaveForm::Kept : SaveForm::New;
  if (form == SaveForm::Kept) return;
  const auto found = std::find(std::begin(kVersionNames), std::end(kVersionNames), name);
  version = static_cast<DxfVersion>(found - std::begin(kVersionNames));
}

std::string SaveOptions::targetName() const {
  if (form == SaveForm::Kept) return "the file";
  return isR12() ? "R12" : kVersionNames[static_cast<std::size_t>(version)];
}

std::string SaveOptions::misplacedOption() const {
  if (isR12()) return {};
  if (flatten) return "--flatten";
  if (visibleOnly) return "--visible-only";
  if (noTables) return "--no-tables";
  return plain ? "--plain" : "";
}

void warnOfLosses(const std::string& in, const ReadResult& result, const Session& session) {
  const std::string losses = lossesToText(result.report);
  if (!losses.empty()) session.notify(in + ": lost or changed in the output:", losses);
}

std::uintmax_t rewrite(const std::string& in, const std::string& out, const SaveOptions& options,
                       Session& session,
                       const std::function<bool(CData&, const ReadResult&)>& change) {
  if (const std::string misplaced = options.misplacedOption(); !misplaced.empty()) {
    session.fail(kWrongUsage, misplaced + " requires --to r12");
    return 0;
  }
  session.readsTwice = session.readsTwice || !options.isR12();
  if (session.log) session.log->setTarget(options.targetName());
  RewrittenDrawing drawing(in, options, session);
  session.keepsSource = drawing.isCarriedOver();
  OutputFile output(out, options.force);
  if (!output.error().empty()) {
    session.fail(kOutputFailed, output.error());
    return 0;
  }
  const ReadResult result = drawing.load();
  if (!result.ok()) {
    session.fail(kDrawingFailed, in + ": " + result.message());
    return 0;
  }
  if (!drawing.isCarriedOver()) warnOfLosses(in, result, session);
  return change(*drawing.data, result) && drawing.save(output) ? output.size() : 0;
}

}  // namespace vek0::host
