#include "vek0host/linetypelist.h"

#include <cmath>

#include "vek0host/reports.h"
#include "vek0host/visibletext.h"

namespace vek0::host {
namespace {

constexpr double kDegPerRad = 57.295779513082321;

// Rounded to the six decimals of the files, because the conversion is inexact.
double degrees(double angleRad) { return std::round(angleRad * kDegPerRad * 1e6) / 1e6; }

Json elementToJson(const ILtypeComplexDash& dash) {
  const TEXT_3D* const text = dash.GetText();
  if (!text) return dash.GetValue();
  const CStyle* const style = text->getStyle();
  const CTextContext& context = text->getContext();
  return {{"text", context.getString().toUtf8()},
          {"style", style ? Json(style->getName().toUtf8()) : nullptr},
          {"scale", context.getHeight()},
          {"rotation", degrees(context.getRotate())},
          {"offset", {text->x, text->y}}};
}

Json linetypeToJson(const CLtype& ltype) {
  Json elements = Json::array();
  for (int i = 0; i < ltype.getNoDashes(); ++i) elements.push_back(elementToJson(*ltype[i]));
  return {{"name", ltype.getName().toUtf8()},
          {"description", ltype.getDesc().toUtf8()},
          {"length", ltype.getPatternLen()},
          {"elements", elements}};
}

Json ltypeReportToJson(const CFileReport& report) {
  Json entries = Json::array();
  for (const auto& entry : report.entries()) {
    entries.push_back({{"code", textOf(entry.code)},
                       {"line", entry.firstLine},
                       {"count", entry.count},
                       {"sample", entry.sample.toUtf8()}});
  }
  return entries;
}

Json faultToJson(const InputFault& fault) {
  if (!fault.kind) return nullptr;
  return Json{{"kind", fault.kind}, {"line", 0}, {"message", fault.message}};
}

// Numbers as JSON writes them: short, and with a point in every locale.
std::string elementToText(const ILtypeComplexDash& dash) {
  const TEXT_3D* const text = dash.GetText();
  if (!text) return Json(dash.GetValue()).dump();
  return '"' + text->getContext().getString().toUtf8() + '"';
}

}  // namespace

Json linetypesToJson(const std::string& path, const CLtypeLoader& loader, const InputFault& fault) {
  Json linetypes = Json::array();
  for (int i = 0; i < loader.GetNoLtype(); ++i)
    linetypes.push_back(linetypeToJson(*loader.GetLtypeNo(i)));
  return {{"file", path},
          {"ok", !fault.kind},
          {"error", faultToJson(fault)},
          {"linetypes", linetypes},
          {"report", ltypeReportToJson(loader.GetReport())}};
}

std::string linetypesToText(const std::string& path, const CLtypeLoader& loader,
                            const InputFault& fault) {
  if (fault.kind)
    return visible(path) + ": error (" + fault.kind + "): " + visible(fault.message) + "\n";
  std::string text = visible(path) + ": " + std::to_string(loader.GetNoLtype()) + " linetypes\n";
  for (int i = 0; i < loader.GetNoLtype(); ++i) {
    const CLtype& ltype = *loader.GetLtypeNo(i);
    text += "  " + visible(ltype.getName()) + " (" + visible(ltype.getDesc()) + "):";
    for (int k = 0; k < ltype.getNoDashes(); ++k) text += " " + visible(elementToText(*ltype[k]));
    text += "\n";
  }
  if (!loader.GetReport().empty())
    text += "  skipped or repaired:\n" + reportToText(loader.GetReport());
  return text;
}

}  // namespace vek0::host
