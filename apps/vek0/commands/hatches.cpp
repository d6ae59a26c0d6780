#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "vek0core/geometry/angle.h"
#include "vek0core/hatch/catalogue.h"
#include "vek0host/summary.h"
#include "zim0lang/wstring.h"

namespace vek0::tool {
namespace {

std::string utf8(const zim::Char* text) { return zim::WString(text).toUtf8(); }

// The catalogue's angles have thirteen decimals; the original degrees have fewer.
double degreesOf(double angleRad) { return std::round(angleRad / kRadiansPerDegree * 1e9) / 1e9; }

Json toJson(const HATCH_LINE& line) {
  Json family;
  family["angle"] = degreesOf(line.angle);
  family["base"] = {line.x0, line.y0};
  family["offset"] = {line.dx, line.dy};
  family["dashes"] = std::vector<double>(line.dash, line.dash + line.numDash);
  return family;
}

Json toJson(const HATCH_TYPE& type) {
  Json pattern;
  pattern["name"] = utf8(type.name);
  pattern["description"] = utf8(type.description);
  pattern["families"] = Json::array();
  for (std::int32_t i = 0; i < type.numLines; ++i)
    pattern["families"].push_back(toJson(type.lines[i]));
  return pattern;
}

void list(bool json) {
  Json all = Json::array();
  for (long i = 0; const HATCH_TYPE* type = getHatch(i); ++i) {
    if (json)
      all.push_back(toJson(*type));
    else
      std::printf("%-16s %2d  %s\n", utf8(type->name).c_str(), static_cast<int>(type->numLines),
                  utf8(type->description).c_str());
  }
  if (json) std::printf("%s\n", all.dump(2).c_str());
}

}  // namespace

void addHatchesCommand(CLI::App& app, Session&) {
  auto json = std::make_shared<bool>(false);
  CLI::App* verb =
      app.add_subcommand("hatches", "List the hatch patterns: name, number of line families, use");
  verb->add_flag("--json", *json,
                 "With the families: angle in degrees, base point, offset to the next line (along "
                 "the line and across it), dashes");
  verb->footer(
      "Examples:\n"
      "  vek0 hatches\n"
      "  vek0 hatches --json | jq '.[] | select(.name == \"BRICK\")'");
  verb->callback([json] { list(*json); });
}

}  // namespace vek0::tool
