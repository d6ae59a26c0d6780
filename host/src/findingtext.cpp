#include <algorithm>
#include <map>

#include "vek0host/inspection.h"
#include "vek0host/textvalues.h"
#include "vek0host/units.h"
#include "vek0host/visibletext.h"

namespace vek0::host {
namespace {

constexpr std::size_t kMostListed = 100;  // of one code

const char* levelName(const Finding& finding) { return finding.isError ? "error" : "warning"; }

Json handlesOf(const Finding& finding) {
  Json handles = Json::array();
  for (const CEnt* ent : finding.ents) handles.push_back(hexText(ent->GetHandle()));
  return handles;
}

std::string numbered(std::size_t count, const char* what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace

const std::vector<std::string>& purposeNames() {
  static const std::vector<std::string> names = {"r12", "laser", "print", "gis"};
  return names;
}

std::optional<BedSize> bedOf(const std::string& text) {
  std::size_t end = text.size();
  while (end > 0 && text[end - 1] != 'x' && !(text[end - 1] >= '0' && text[end - 1] <= '9') &&
         text[end - 1] != '.')
    --end;
  double size[2];
  BedSize bed;
  bed.unit = text.substr(end);
  const bool isSize = parseNumbers(std::string_view(text).substr(0, end), 'x', size, 2) &&
                      size[0] > 0 && size[1] > 0;
  if (!isSize || (!bed.unit.empty() && !unitInMeters(bed.unit))) return std::nullopt;
  bed.width = size[0];
  bed.height = size[1];
  return bed;
}

bool Inspection::hasErrors() const {
  return std::any_of(findings.begin(), findings.end(),
                     [](const Finding& finding) { return finding.isError; });
}

Json findingsToJson(const Inspection& inspection) {
  Json all = Json::array();
  for (const Finding& finding : inspection.findings) {
    Json one{{"code", finding.code},
             {"severity", levelName(finding)},
             {"layer", finding.layer.empty() ? Json() : Json(finding.layer)},
             {"handles", handlesOf(finding)},
             {"point", nullptr},
             {"value", finding.value ? Json(*finding.value) : Json()},
             {"message", finding.message}};
    if (finding.point) one["point"] = {finding.point->x, finding.point->y};
    if (!finding.layout.empty()) one["layout"] = finding.layout;
    all.push_back(std::move(one));
  }
  return all;
}

std::string findingsToText(const Inspection& inspection) {
  std::string text;
  std::map<std::string_view, std::size_t> counts;
  std::size_t errors = 0, number = 0;
  for (const Finding& finding : inspection.findings) {
    ++number;
    errors += finding.isError ? 1 : 0;
    if (++counts[finding.code] > kMostListed) continue;
    text += "    " + std::to_string(number) + " " + levelName(finding) + ": " + finding.code +
            ": " + visible(finding.message);
    if (!finding.layer.empty()) text += ", layer " + visible(finding.layer);
    if (!finding.layout.empty()) text += ", layout " + visible(finding.layout);
    text += "\n";
  }
  for (const auto& [code, count] : counts)
    if (count > kMostListed)
      text += "    " + std::string(code) + ": " + std::to_string(count - kMostListed) + " more\n";
  const std::size_t warnings = inspection.findings.size() - errors;
  if (inspection.isCut) text += "    the drawing shows too much to examine all of it\n";
  return text + "    " + numbered(errors, "error") + ", " + numbered(warnings, "warning") + "\n";
}

}  // namespace vek0::host
