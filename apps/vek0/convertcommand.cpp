#include <memory>
#include <string>

#include "commands.h"
#include "saving.h"

namespace vek0::tool {
namespace {

struct Options {
  std::string in, out;
  SaveOptions save;
};

}  // namespace

void addConvertCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<Options>();
  CLI::App* verb = app.add_subcommand("convert", "Load a drawing and save it as DXF R12");
  verb->add_option("IN", options->in, "DXF file; - is the standard input")->required();
  verb->add_option("OUT", options->out, "File to write; - is the standard output")->required();
  addSaveOptions(*verb, options->save);
  verb->footer(
      "Examples:\n"
      "  vek0 convert plan.dxf plan_r12.dxf\n"
      "  vek0 convert --flatten --visible-only - - < in.dxf > out.dxf\n\n"
      "The output appears whole or not at all. Nothing is written for a file with an error.");
  verb->callback([options, &session] {
    rewrite(options->in, options->out, options->save, session, [](CData&) { return true; });
  });
}

}  // namespace vek0::tool
