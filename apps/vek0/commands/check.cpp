#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "terminal.h"
#include "vek0host/reports.h"

namespace vek0::tool {
namespace {

struct CheckOptions {
  std::vector<std::string> files;
  bool json = false;
};

void run(const CheckOptions& options, Session& session) {
  long failures = 0;
  for (const std::string& path : options.files) {
    const Drawing data = newDrawing();
    const ReadResult result = loadFile(*data, path, session);
    if (!result.ok()) {
      ++failures;
      session.failed(kDrawingFailed);
    }
    if (options.json) {
      std::printf("%s\n", toLine(checkToJson(path, result)).c_str());
    } else if (!session.quiet || !result.ok()) {
      print(checkToText(path, result));
    }
  }
  if (options.files.size() > 1 && !options.json && !session.quiet) {
    std::fprintf(stderr, "%zu files, %ld failed\n", options.files.size(), failures);
  }
}

}  // namespace

void addCheckCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<CheckOptions>();
  CLI::App* verb =
      app.add_subcommand("check", "Load each drawing and say ok, or what is wrong where");
  verb->add_option("FILE", options->files, "DXF files; - is the standard input")->required();
  verb->add_flag("--json", options->json, "One JSON object a line and file");
  verb->footer(
      "Examples:\n"
      "  vek0 check *.dxf             one line a file; exit code 1 if any fails\n"
      "  vek0 check --json a.dxf      "
      "{\"file\":\"a.dxf\",\"ok\":true,\"error\":null,\"report\":[]}\n\n"
      "What was repaired, changed or lost on the way stands behind the line of its file. With\n"
      "--strict a file that breaks a rule fails.");
  verb->callback([options, &session] { run(*options, session); });
}

}  // namespace vek0::tool
