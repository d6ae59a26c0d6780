#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "terminal.h"
#include "vek0host/linetypefile.h"
#include "vek0host/linetypelist.h"

namespace vek0::tool {
namespace {

struct LinetypesOptions {
  std::vector<std::string> files;
  std::string saveTo;
  bool json = false;
  bool force = false;
};

// If saved to the standard output, nothing else may be printed there.
bool listsFiles(const LinetypesOptions& options, const Session& session) {
  return options.saveTo != "-" && (options.json || !session.quiet);
}

void runFile(const LinetypesOptions& options, const std::string& path, Session& session) {
  CStyleTable styles;
  CStyleFactory styleFactory;
  CLtypeFactory ltypeFactory;
  StyleMaker maker(styles, styleFactory);
  CLtypeLoader loader(styles, ltypeFactory);
  loader.SetNotifier(&maker);
  const InputFault fault = loadLinetypes(loader, path);
  if (session.log) session.log->begin(path);
  logLinetypes(loader, fault, session);
  if (listsFiles(options, session)) {
    if (options.json)
      std::printf("%s\n", toLine(linetypesToJson(path, loader, fault)).c_str());
    else
      print(linetypesToText(path, loader, fault));
  } else if (fault.kind) {
    session.complain(path + ": " + fault.message);
  }
  if (fault.kind) return session.failed(kDrawingFailed);
  if (!options.saveTo.empty()) saveLinetypes(loader, options.saveTo, options.force, session);
}

void run(const LinetypesOptions& options, Session& session) {
  if (!options.saveTo.empty() && options.files.size() > 1) {
    return session.fail(kWrongUsage, "--save requires exactly one definition file");
  }
  for (const std::string& path : options.files) runFile(options, path, session);
}

}  // namespace

void addLinetypesCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<LinetypesOptions>();
  CLI::App* verb =
      app.add_subcommand("linetypes", "List and check linetype definition files, or rewrite one");
  verb->add_option("FILE", options->files, "Definition files (.lin); - is the standard input")
      ->required();
  verb->add_flag("--json", options->json, "One JSON object per file, one per line");
  verb->add_option("--save", options->saveTo,
                   "Write the definitions that were read; - is the standard output")
      ->type_name("OUT");
  verb->add_flag("-f,--force", options->force, "Replace the output file if it exists");
  verb->footer(
      "Examples:\n"
      "  vek0 linetypes pipes.lin                   the linetypes, and what could not be read\n"
      "  vek0 linetypes pipes.lin --save clean.lin  the same definitions, normalized\n\n"
      "vek0 convert --linetypes adds the linetypes of a file to a drawing.");
  verb->callback([options, &session] { run(*options, session); });
}

}  // namespace vek0::tool
