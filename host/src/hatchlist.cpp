#include "vek0host/hatchlist.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "degrees.h"
#include "vek0core/hatch/catalogue.h"
#include "zim0lang/wstring.h"

namespace vek0::host {
namespace {

std::string utf8(const zim::Char* text) { return zim::WString(text).toUtf8(); }

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

}  // namespace

Json hatchPatternsToJson() {
  Json all = Json::array();
  for (long i = 0; const HATCH_TYPE* type = getHatch(i); ++i) all.push_back(toJson(*type));
  return all;
}

std::string hatchPatternsToText() {
  std::string text;
  for (long i = 0; const HATCH_TYPE* type = getHatch(i); ++i) {
    std::string name = utf8(type->name), families = std::to_string(type->numLines);
    name.resize(std::max<std::size_t>(name.size(), 16), ' ');
    families.insert(0, families.size() < 2 ? 2 - families.size() : 0, ' ');
    text += name + " " + families + "  " + utf8(type->description) + "\n";
  }
  return text;
}

}  // namespace vek0::host
