#include "vek0host/units.h"

#include <iterator>

#include "vek0core/vek0core.h"

namespace vek0::host {
namespace {

struct Unit {
  const char* name;
  double meters;
};

constexpr double kInch = 0.0254;

// In the order of their numbers in files; the first means none.
constexpr Unit kUnits[] = {
    {"", 0},
    {"in", kInch},
    {"ft", 12 * kInch},
    {"mi", 5280 * 12 * kInch},
    {"mm", 1e-3},
    {"cm", 1e-2},
    {"m", 1},
    {"km", 1e3},
    {"uin", 1e-6 * kInch},
    {"mil", 1e-3 * kInch},
    {"yd", 36 * kInch},
    {"angstrom", 1e-10},
    {"nm", 1e-9},
    {"um", 1e-6},
    {"dm", 1e-1},
    {"dam", 1e1},
    {"hm", 1e2},
    {"Gm", 1e9},
    {"au", 149597870700.0},
    {"ly", 9460730472580800.0},
    {"pc", 3.0856775814913673e16},
    {"ft-us", 1200.0 / 3937},
    {"in-us", 100.0 / 3937},
    {"yd-us", 3600.0 / 3937},
    {"mi-us", 5280 * 1200.0 / 3937},
};

void scaleVariables(CDataVariables& variables, double factor) {
  const PNT_2D min = variables.getLimMin(), max = variables.getLimMax();
  variables.setLimMin(PNT_2D(min.x * factor, min.y * factor));
  variables.setLimMax(PNT_2D(max.x * factor, max.y * factor));
  const PNT_3D base = variables.getInsertionBase();
  variables.setInsertionBase(PNT_3D(base.x * factor, base.y * factor, base.z * factor));
  variables.setLtypeScale(variables.getLtypeScale() * factor);
  variables.setPLineWid(variables.getPLineWid() * factor);
  if (variables.getPointSize() > 0) variables.setPointSize(variables.getPointSize() * factor);
}

// Sheets keep their size and show the same.
void scaleViews(CLayout& layout, double factor) {
  std::vector<VIEWPORT> viewports = layout.setViewports({});
  for (VIEWPORT& viewport : viewports) {
    viewport.viewHeight *= factor;
    viewport.viewCenter = PNT_2D(viewport.viewCenter.x * factor, viewport.viewCenter.y * factor);
    viewport.target = PNT_2D(viewport.target.x * factor, viewport.target.y * factor);
  }
  layout.setViewports(std::move(viewports));
}

}  // namespace

const char* unitName(long code) {
  return code > 0 && code < static_cast<long>(std::size(kUnits)) ? kUnits[code].name : nullptr;
}

std::vector<std::string> unitNames() {
  std::vector<std::string> names;
  for (auto unit = std::begin(kUnits) + 1; unit != std::end(kUnits); ++unit)
    names.emplace_back(unit->name);
  return names;
}

std::optional<double> unitInMeters(std::string_view name) {
  for (const Unit& unit : kUnits)
    if (unit.meters > 0 && unit.name == name) return unit.meters;
  return std::nullopt;
}

void scaleDrawing(CData& data, double factor) {
  CEntScaleVisitor scaler(PNT_3D(0, 0, 0), factor);
  CEntTable& entities = data.getEntTable();
  entities.invalidateBdry();
  for (CEnt* ent : entities.getEntityTbl()) ent->accept(scaler);
  entities.recalcBdry();
  for (CData::CStyleIterator it(data, false); CStyle* style = *it; ++it) {
    style->setFixedHeight(style->getFixedHeight() * factor);
    style->setLastHeight(style->getLastHeight() * factor);
  }
  scaleVariables(data.getVars(), factor);
  for (int i = 0; i < data.getLayouts().size(); ++i) scaleViews(data.getLayouts()[i], factor);
}

bool convertUnits(CData& data, long stated, const std::string& from, const std::string& to) {
  const char* name = unitName(stated);
  const auto source = unitInMeters(from.empty() && name ? name : from);
  const auto target = unitInMeters(to);
  if (!source || !target) return false;
  scaleDrawing(data, *source / *target);
  for (long code = 1; unitName(code) != nullptr; ++code)
    if (to == unitName(code)) data.getVars().setUnits(static_cast<short>(code));
  return true;
}

}  // namespace vek0::host
