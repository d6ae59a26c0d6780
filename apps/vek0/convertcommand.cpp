#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "linetypefile.h"
#include "saving.h"
#include "units.h"

namespace vek0::tool {
namespace {

struct ConvertOptions {
  std::string in, out;
  std::vector<std::string> linetypes;
  std::string toUnits, fromUnits;
  SaveOptions save;
};

bool addAllLinetypes(CData& data, const ConvertOptions& options, Session& session) {
  return std::all_of(options.linetypes.begin(), options.linetypes.end(),
                     [&](const std::string& path) { return addLinetypes(data, path, session); });
}

// What a file says of its unit is often wrong, so that `--from-units` goes before it.
bool changeUnits(CData& data, const ConvertOptions& options, long stated, Session& session) {
  if (options.toUnits.empty()) return true;
  const char* name = unitName(stated);
  const auto from = unitInMetres(!options.fromUnits.empty() ? options.fromUnits : name ? name : "");
  if (!from) {
    Session::complain(options.in + ": the drawing does not state its unit; use --from-units");
    session.failed(kDrawingFailed);
    return false;
  }
  scaleDrawing(data, *from / *unitInMetres(options.toUnits));
  return true;
}

}  // namespace

void addConvertCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<ConvertOptions>();
  CLI::App* verb = app.add_subcommand("convert", "Load a drawing and save it as DXF R12");
  verb->add_option("IN", options->in, "DXF file; - is the standard input")->required();
  verb->add_option("OUT", options->out, "File to write; - is the standard output")->required();
  verb->add_option(
          "--linetypes", options->linetypes,
          "Definition file whose linetypes are added; those the drawing has stay as they are")
      ->type_name("FILE.lin")
      ->allow_extra_args(false);
  CLI::Option* toUnits =
      verb->add_option("--to-units", options->toUnits,
                       "Scale the drawing to this unit: mm, cm, m, in, ft and others")
          ->check(CLI::IsMember(unitNames()))
          ->type_name("UNIT");
  verb->add_option("--from-units", options->fromUnits, "The drawing's unit, whatever it states")
      ->check(CLI::IsMember(unitNames()))
      ->type_name("UNIT")
      ->needs(toUnits);
  addSaveOptions(*verb, options->save);
  verb->footer(
      "Examples:\n"
      "  vek0 convert plan.dxf plan_r12.dxf\n"
      "  vek0 convert --flatten --visible-only - - < in.dxf > out.dxf\n"
      "  vek0 convert --linetypes pipes.lin plan.dxf plan_with_pipes.dxf\n"
      "  vek0 convert --to-units mm --from-units in part.dxf part_mm.dxf\n\n"
      "The output appears whole or not at all. Nothing is written for a file with an error.");
  verb->callback([options, &session] {
    rewrite(options->in, options->out, options->save, session,
            [&](CData& data, const ReadResult& result) {
              return addAllLinetypes(data, *options, session) &&
                     changeUnits(data, *options, result.outcome.units, session);
            });
  });
}

}  // namespace vek0::tool
