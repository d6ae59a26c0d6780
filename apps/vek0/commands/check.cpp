#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "batch.h"
#include "commands.h"
#include "terminal.h"
#include "vek0host/losslog.h"
#include "vek0host/reports.h"

namespace vek0::tool {
namespace {

struct CheckOptions {
  BatchOptions batch;
  bool json = false;
};

Hue hueOf(std::string_view line) {
  if (line.find(": error (") != line.npos) return Hue::Bad;
  if (line.ends_with(": ok\n")) return Hue::Good;
  const bool isNotable = line.starts_with("    fault: ") || line.starts_with("    loss: ");
  return isNotable ? Hue::Notable : Hue::Plain;
}

void check(const std::string& path, const CheckOptions& options, Session& session) {
  session.readsTwice = true;
  const Drawing data = newDrawing();
  const ReadResult result = loadFile(*data, path, session);
  if (!result.ok()) session.failed(kDrawingFailed);
  const bool isAudited = result.ok() && (options.json || !session.quiet);
  const CFileReport audit = isAudited ? auditOf(path, session) : CFileReport();
  if (session.log) session.log->add(LossLog::Read, audit);
  if (options.json)
    std::printf("%s\n", toLine(checkToJson(path, result, audit)).c_str());
  else if (!session.quiet || !result.ok())
    printLines(checkToText(path, result, audit), hueOf);
}

}  // namespace

void addCheckCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<CheckOptions>();
  CLI::App* verb =
      app.add_subcommand("check", "Check drawings: print ok, or the error and its line");
  verb->add_option("FILE", options->batch.files, "DXF files; - is the standard input");
  verb->add_flag("--json", options->json, "One JSON object per file, one per line");
  addBatchOptions(*verb, options->batch);
  verb->footer(
      "Examples:\n"
      "  vek0 check *.dxf             one line per file; exit code 1 if any file fails\n"
      "  vek0 check --json a.dxf      "
      "{\"file\":\"a.dxf\",\"ok\":true,\"error\":null,\"report\":[],\"audit\":[]}\n\n"
      "Repairs, changes and losses are listed below the line of their file, and so are faults "
      "that\n"
      "an audit finds in it: repeated handles, missing owners, dangling pointers, undeclared "
      "names.\n"
      "Faults do not change the exit code. With --strict, a file that violates the format fails.");
  verb->callback([options, &session] {
    runBatch(jobsOf(options->batch, "", session), options->batch, session,
             [&](const BatchJob& job) { check(job.in, *options, session); });
  });
}

}  // namespace vek0::tool
