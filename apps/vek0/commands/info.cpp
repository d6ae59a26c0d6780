#include <cstdio>
#include <memory>
#include <string>

#include "batch.h"
#include "commands.h"
#include "terminal.h"
#include "vek0host/summary.h"

namespace vek0::tool {
namespace {

struct InfoOptions {
  BatchOptions batch;
  bool json = false;
};

void describe(const std::string& path, const InfoOptions& options, Session& session) {
  Drawing data = newDrawing();
  ModelSummary model;
  const ReadResult result = summarizeFile(data, model, path, session);
  if (!result.ok()) session.failed(kDrawingFailed);
  if (options.json) {
    std::printf("%s\n", toLine(summaryToJson(path, *data, result, model)).c_str());
    return;
  }
  if (!result.ok()) session.complain(path + ": " + result.message());
  if (result.opened()) print(summaryToText(path, *data, result, model));
}

}  // namespace

void addInfoCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<InfoOptions>();
  CLI::App* verb = app.add_subcommand(
      "info", "Describe drawings: version, tables, blocks, entities, extents, variables");
  verb->add_option("FILE", options->batch.files, "DXF files; - is the standard input");
  verb->add_flag("--json", options->json, "One JSON object per file, one per line");
  addBatchOptions(*verb, options->batch);
  verb->footer(
      "Examples:\n"
      "  vek0 info plan.dxf\n"
      "  vek0 info --json *.dxf | jq -r 'select(.entities.INSERT > 100) | .file'\n\n"
      "A file with an error is described as far as it could be read; the exit code is then 1.\n"
      "Files may be larger than memory, unless they have errors or come from a pipe.");
  verb->callback([options, &session] {
    runBatch(jobsOf(options->batch, "", session), options->batch, session,
             [&](const BatchJob& job) { describe(job.in, *options, session); });
  });
}

}  // namespace vek0::tool
