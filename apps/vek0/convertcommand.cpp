#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "linetypefile.h"
#include "saving.h"

namespace vek0::tool {
namespace {

struct Options {
  std::string in, out;
  std::vector<std::string> linetypes;
  SaveOptions save;
};

}  // namespace

void addConvertCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<Options>();
  CLI::App* verb = app.add_subcommand("convert", "Load a drawing and save it as DXF R12");
  verb->add_option("IN", options->in, "DXF file; - is the standard input")->required();
  verb->add_option("OUT", options->out, "File to write; - is the standard output")->required();
  verb->add_option(
          "--linetypes", options->linetypes,
          "Definition file whose linetypes are added; those the drawing has stay as they are")
      ->type_name("FILE.lin")
      ->allow_extra_args(false);
  addSaveOptions(*verb, options->save);
  verb->footer(
      "Examples:\n"
      "  vek0 convert plan.dxf plan_r12.dxf\n"
      "  vek0 convert --flatten --visible-only - - < in.dxf > out.dxf\n"
      "  vek0 convert --linetypes pipes.lin plan.dxf plan_with_pipes.dxf\n\n"
      "The output appears whole or not at all. Nothing is written for a file with an error.");
  verb->callback([options, &session] {
    const auto addAll = [&](CData& data) {
      return std::all_of(
          options->linetypes.begin(), options->linetypes.end(),
          [&](const std::string& path) { return addLinetypes(data, path, session); });
    };
    rewrite(options->in, options->out, options->save, session, addAll);
  });
}

}  // namespace vek0::tool
