#include <cstdio>
#include <memory>
#include <string>

#include "batch.h"
#include "commands.h"
#include "terminal.h"
#include "vek0host/drawingfile.h"
#include "vek0host/entitylist.h"

namespace vek0::tool {
namespace {

struct ListOptions {
  BatchOptions batch;
  std::string place, where = "all";
  bool json = false;
};

void list(const std::string& path, const ListOptions& options, Session& session) {
  const Drawing data = newDrawing();
  session.reading.wholeRecords = true;
  const ReadResult result = loadFile(*data, path, session);
  if (!result.ok()) session.fail(kDrawingFailed, path + ": " + result.message());
  if (!result.opened()) return;
  Selection selection;
  selection.parse(options.where);
  if (!options.json) print(tableHead());
  const auto show = [&](const ListedEntity& entity) {
    if (options.json)
      std::printf("%s\n", toLine(toJson(entity)).c_str());
    else
      print(toTableLine(entity));
  };
  const std::string problem = listEntities(*data, options.place, selection, show);
  if (!problem.empty()) session.fail(kDrawingFailed, path + ": " + problem);
}

}  // namespace

void addListCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<ListOptions>();
  CLI::App* verb = app.add_subcommand(
      "list", "List the entities of a drawing: handle, kind, layer, color, lineweight, linetype");
  verb->add_option("FILE", options->batch.files, "DXF files; - is the standard input");
  verb->add_option("--in", options->place, "Only those of this block or layout; Model is a layout")
      ->type_name("BLOCK|LAYOUT");
  const auto check = [](const std::string& text) { return Selection().parse(text); };
  verb->add_option("--where", options->where,
                   "Only the entities of a selection, as for vek0 edit --select")
      ->type_name("layer=...,kind=...,window=...")
      ->check(check);
  verb->add_flag("--json", options->json, "One JSON object per entity, one per line");
  addBatchOptions(*verb, options->batch);
  verb->footer(
      "Examples:\n"
      "  vek0 list plan.dxf\n"
      "  vek0 list plan.dxf --where 'layer=WALL*,kind=lwpolyline'\n"
      "  vek0 list plan.dxf --in DOOR\n"
      "  vek0 list --json plan.dxf | jq -r 'select(.lineweight > 0.5) | .handle'\n\n"
      "Color, lineweight, linetype and visibility are those that an entity is drawn with, for\n"
      "black on white. The kind is that of the record in the file. Attributes follow their\n"
      "insert, whose handle is in \"of\"; viewports follow the entities of their layout.\n"
      "Entities of a block are listed as if it were inserted on layer 0.");
  verb->callback([options, &session] {
    runBatch(jobsOf(options->batch, "", session), options->batch, session,
             [&](const BatchJob& job) { list(job.in, *options, session); });
  });
}

}  // namespace vek0::tool
