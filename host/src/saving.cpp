#include "vek0host/saving.h"

#include <algorithm>
#include <iterator>

#include "vek0host/drawingfile.h"
#include "vek0host/outputfile.h"
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

bool save(const CData& data, OutputFile& output, const SaveOptions& options, Session& session) {
  CFileReport report;
  if (!SaveDXF(data, output.file(), {options.version, options.flags(), &report})) {
    session.fail(kOutputFailed, "'" + output.path() + "' cannot be written");
    return false;
  }
  if (!output.commit()) {
    session.fail(kOutputFailed, output.error());
    return false;
  }
  if (!report.empty()) {
    session.notify("not everything could be written unchanged:", reportToText(report));
  }
  return true;
}

}  // namespace

std::vector<std::string> versionNames() {
  return {std::begin(kVersionNames), std::end(kVersionNames)};
}

DxfVersion versionOf(const std::string& name) {
  const auto found = std::find(std::begin(kVersionNames), std::end(kVersionNames), name);
  return static_cast<DxfVersion>(found - std::begin(kVersionNames));
}

void warnOfLosses(const std::string& in, const ReadResult& result, const Session& session) {
  const std::string losses = lossesToText(result.report);
  if (!losses.empty()) session.notify(in + ": lost or changed in the output:", losses);
}

std::uintmax_t rewrite(const std::string& in, const std::string& out, const SaveOptions& options,
                       Session& session,
                       const std::function<bool(CData&, const ReadResult&)>& change) {
  OutputFile output(out, options.force);
  if (!output.error().empty()) {
    session.fail(kOutputFailed, output.error());
    return 0;
  }
  const Drawing data = newDrawing();
  const ReadResult result = loadFile(*data, in, session);
  if (!result.ok()) {
    session.fail(kDrawingFailed, in + ": " + result.message());
    return 0;
  }
  warnOfLosses(in, result, session);
  return change(*data, result) && save(*data, output, options, session) ? output.size() : 0;
}

}  // namespace vek0::host
