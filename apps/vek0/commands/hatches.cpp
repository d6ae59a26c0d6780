#include <cstdio>
#include <memory>

#include "commands.h"
#include "terminal.h"
#include "vek0host/hatchlist.h"

namespace vek0::tool {

void addHatchesCommand(CLI::App& app, Session&) {
  auto json = std::make_shared<bool>(false);
  CLI::App* verb = app.add_subcommand(
      "hatches", "List the hatch patterns: name, number of line families, description");
  verb->add_flag("--json", *json,
                 "As JSON, with the line families: angle in degrees, base point, offset to the "
                 "next line (along the line and across it), dashes");
  verb->footer(
      "Examples:\n"
      "  vek0 hatches\n"
      "  vek0 hatches --json | jq '.[] | select(.name == \"BRICK\")'");
  verb->callback([json] {
    if (*json)
      std::printf("%s\n", hatchPatternsToJson().dump(2).c_str());
    else
      print(hatchPatternsToText());
  });
}

}  // namespace vek0::tool
