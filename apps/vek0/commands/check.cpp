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
  session.readsTwice = true;
  long failures = 0;
  for (const std::string& path : options.files) {
    const Drawing data = newDrawing();
    const ReadResult result = loadFile(*data, path, session);
    if (!result.ok()) {
      ++failures;
      session.failed(kDrawingFailed);
    }
    const bool isAudited = result.ok() && (options.json || !session.quiet);
    const CFileReport audit = isAudited ? auditOf(path, session) : CFileReport();
    if (options.json) {
      std::printf("%s\n", toLine(checkToJson(path, result, audit)).c_str());
    } else if (!session.quiet || !result.ok()) {
      print(checkToText(path, result, audit));
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
      app.add_subcommand("check", "Check drawings: print ok, or the error and its line");
  verb->add_option("FILE", options->files, "DXF files; - is the standard input")->required();
  verb->add_flag("--json", options->json, "One JSON object per file, one per line");
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
  verb->callback([options, &session] { run(*options, session); });
}

}  // namespace vek0::tool
