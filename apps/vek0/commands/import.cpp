#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "options.h"
#include "vek0host/merging.h"
#include "vek0host/saving.h"

namespace vek0::tool {
namespace {

struct ImportOptions {
  std::string base, out;
  std::vector<std::string> files;
  SaveOptions save;
};

void run(const ImportOptions& options, Session& session) {
  session.readsTwice = true;
  rewrite(options.base, options.out, options.save, session, [&](CData& base, const ReadResult&) {
    for (const std::string& path : options.files) mergeFile(base, path, session);
    return true;
  });
}

}  // namespace

void addImportCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<ImportOptions>();
  CLI::App* verb = app.add_subcommand("import", "Merge drawings into a base drawing");
  verb->add_option("BASE", options->base, "Base drawing, whose definitions take precedence")
      ->required();
  verb->add_option("FILE", options->files, "Drawings to merge into it, in this order")->required();
  verb->add_option("-o,--output", options->out, "File to write; - is the standard output")
      ->required();
  addSaveOptions(*verb, options->save);
  addTargetOption(*verb, options->save);
  verb->footer(
      "Examples:\n"
      "  vek0 import frame.dxf part1.dxf part2.dxf -o sheet.dxf\n\n"
      "Layers, linetypes, styles and named blocks of BASE take precedence over those of the\n"
      "same name; anonymous blocks get new names. A file with an error is skipped; the others\n"
      "are still merged.");
  verb->callback([options, &session] { run(*options, session); });
}

}  // namespace vek0::tool
