#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "options.h"
#include "vek0host/drawingfile.h"
#include "vek0host/saving.h"

namespace vek0::tool {
namespace {

struct ImportOptions {
  std::string base, out;
  std::vector<std::string> files;
  SaveOptions save;
};

// Importing modifies the drawing, so a damaged file would leave half of its content behind: it is
// first read into a separate drawing.
bool canBeLoaded(const std::string& path, const Session& session, std::string& message) {
  const Drawing trial = newDrawing();
  const ReadResult result = loadFile(*trial, path, session);
  message = result.message();
  return result.ok();
}

void mergeOne(CData& base, const std::string& path, Session& session) {
  std::string message;
  const bool good = canBeLoaded(path, session, message);
  if (good) {
    const ReadResult result = importFile(base, path, session);
    message = result.message();
    tellLosses(path, result, session);
  }
  if (message.empty()) return;
  session.complain(path + ": " + message + (good ? "" : " It is left out."));
  session.failed(kDrawingFailed);
}

void run(const ImportOptions& options, Session& session) {
  session.readsTwice = true;
  rewrite(options.base, options.out, options.save, session, [&](CData& base, const ReadResult&) {
    for (const std::string& path : options.files) mergeOne(base, path, session);
    return true;
  });
}

}  // namespace

void addImportCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<ImportOptions>();
  CLI::App* verb = app.add_subcommand("import", "Merge drawings into a base drawing");
  verb->add_option("BASE", options->base, "Drawing whose definitions win")->required();
  verb->add_option("FILE", options->files, "Drawings to merge in, in this order")->required();
  verb->add_option("-o,--output", options->out, "File to write; - is the standard output")
      ->required();
  addSaveOptions(*verb, options->save);
  verb->footer(
      "Examples:\n"
      "  vek0 import frame.dxf part1.dxf part2.dxf -o sheet.dxf\n\n"
      "Layers, linetypes, styles and named blocks of BASE win over those of the same name;\n"
      "anonymous blocks get fresh names. A file with an error is left out and the others go on.");
  verb->callback([options, &session] { run(*options, session); });
}

}  // namespace vek0::tool
