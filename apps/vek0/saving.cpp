#include "saving.h"

#include "drawingfile.h"
#include "outputfile.h"
#include "summary.h"

namespace vek0::tool {

unsigned SaveOptions::flags() const {
  return (flatten ? kSaveFlatten : 0u) | (visibleOnly ? kSaveVisibleOnly : 0u) |
         (noTables ? kSaveNoTables : 0u) | (plain ? 0u : kSaveExchange);
}

void addSaveOptions(CLI::App& verb, SaveOptions& options) {
  verb.add_flag("--flatten", options.flatten, "Write every point with Z = 0");
  verb.add_flag("--visible-only", options.visibleOnly,
                "Leave out entities on layers that are frozen or off");
  verb.add_flag("--no-tables", options.noTables, "Write blocks and entities only");
  verb.add_flag("--plain", options.plain,
                "Write the classic form: six decimals, chords for arcs in polylines");
  verb.add_flag("-f,--force", options.force, "Replace the output file if it exists");
}

namespace {

bool save(const CData& data, OutputFile& output, const SaveOptions& options, Session& session) {
  CFileReport report;
  if (!SaveDXF(data, output.file(), options.flags(), &report)) {
    Session::complain("'" + output.path() + "' cannot be written");
    session.failed(kOutputFailed);
    return false;
  }
  if (!output.commit()) {
    Session::complain(output.error());
    session.failed(kOutputFailed);
    return false;
  }
  if (!session.quiet && !report.empty()) {
    Session::complain("not everything could be written as it was:", reportToText(report));
  }
  return true;
}

}  // namespace

void tellLosses(const std::string& in, const ReadResult& result, const Session& session) {
  const std::string losses = lossesToText(result.report);
  if (!session.quiet && !losses.empty())
    Session::complain(in + ": what is written will lack or change:", losses);
}

std::uintmax_t rewrite(const std::string& in, const std::string& out, const SaveOptions& options,
                       Session& session,
                       const std::function<bool(CData&, const ReadResult&)>& change) {
  OutputFile output(out, options.force);
  if (!output.error().empty()) {
    Session::complain(output.error());
    session.failed(kOutputFailed);
    return 0;
  }
  const Drawing data = newDrawing();
  const ReadResult result = loadFile(*data, in, session);
  if (!result.ok()) {
    Session::complain(in + ": " + result.message());
    session.failed(kDrawingFailed);
    return 0;
  }
  tellLosses(in, result, session);
  return change(*data, result) && save(*data, output, options, session) ? output.size() : 0;
}

}  // namespace vek0::tool
