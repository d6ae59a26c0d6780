#include "vek0core/dxf/reportcodes.h"

#include <algorithm>
#include <iterator>

namespace {

struct Code {
  std::string_view name;
  ReportSeverity severity;
};

constexpr auto kNote = ReportSeverity::Note, kRepair = ReportSeverity::Repair,
               kChange = ReportSeverity::Change;

// All others are losses.
constexpr Code kCodes[] = {
    {"block renamed", kNote},         {"section skipped", kNote},
    {"reference overlaid", kNote},    {"reference renamed", kNote},
    {"layer undeclared", kRepair},    {"style unknown", kRepair},
    {"font unknown", kNote},          {"block undefined", kRepair},
    {"version unknown", kNote},       {"encoding differs", kRepair},
    {"sequence cut", kRepair},        {"stray line", kRepair},
    {"blank line", kRepair},          {"number repaired", kRepair},
    {"number replaced", kRepair},     {"color replaced", kRepair},
    {"flags replaced", kRepair},      {"layer missing", kRepair},
    {"code missing", kRepair},        {"hatch open", kRepair},
    {"curve without frame", kRepair}, {"text fitted", kChange},
    {"mesh as faces", kChange},       {"kind replaced", kChange},
    {"dimension drawn", kChange},     {"text empty", kNote},
    {"curve as polyline", kChange},   {"color approximated", kChange},
    {"name changed", kChange},        {"endless line cut", kChange},
};

}  // namespace

ReportSeverity severityOf(std::string_view code) {
  const auto known = std::find_if(std::begin(kCodes), std::end(kCodes),
                                  [&](const Code& entry) { return entry.name == code; });
  return known == std::end(kCodes) ? ReportSeverity::Loss : known->severity;
}

const char* nameOf(ReportSeverity severity) {
  switch (severity) {
    case ReportSeverity::Note:
      return "note";
    case ReportSeverity::Repair:
      return "repair";
    case ReportSeverity::Change:
      return "change";
    default:
      return "loss";
  }
}
