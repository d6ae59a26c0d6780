#include "vek0host/summary.h"

#include <cmath>

#include "degrees.h"
#include "vek0host/editing.h"
#include "vek0host/entitycounts.h"
#include "vek0host/propertytext.h"
#include "vek0host/reports.h"
#include "vek0host/textvalues.h"
#include "vek0host/units.h"
#include "vek0host/visibletext.h"

namespace vek0::host {
namespace {

// Every drawing has some initial items. For a failed file they are listed only if they are used.
bool isListed(const CNamedItem& item, const CData& data, const ReadResult& result) {
  const bool isGiven = item.isHeld() && &item != data.getStyleTable().getStyleStandard();
  return result.ok() || isGiven || item.getEntities() > 0;
}

Json layersToJson(const CData& data, const ReadResult& result) {
  Json layers = Json::array();
  for (CData::CLayerIterator it(data, true); const CLayer* layer = *it; ++it) {
    if (!isListed(*layer, data, result)) continue;
    layers.push_back(
        {{"name", layer->getFullName().toUtf8()},
         {"color", layer->getColor()},
         {"rgb", colorText(colorOnWhite(layer->getTraits().trueColor, layer->getColor()))},
         {"lineweight", weightInMm(data, layer->getTraits().lineweight)},
         {"plot", layer->getTraits().isPlotted},
         {"linetype", ltypeName(layer->getLtype())},
         {"frozen", layer->isFrozen()},
         {"locked", layer->isLocked()},
         {"off", layer->isOff()}});
  }
  return layers;
}

Json ltypesToJson(const CData& data, const ReadResult& result) {
  Json names = Json::array();
  for (CData::CLtypeIterator it(data, true, true); const CLtype* ltype = *it; ++it) {
    if (isListed(*ltype, data, result)) names.push_back(ltypeName(ltype));
  }
  return names;
}

Json stylesToJson(const CData& data, const ReadResult& result) {
  Json names = Json::array();
  // External references have a "STANDARD" of their own each, which no file names.
  for (CData::CStyleIterator it(data, false); const CStyle* style = *it; ++it) {
    if (isListed(*style, data, result)) names.push_back(style->getName().toUtf8());
  }
  return names;
}

Json blocksToJson(const CData& data) {
  Json blocks = Json::array();
  const CBlockTable& table = data.getBlockTable();
  for (int i = 0; i < static_cast<int>(table.size()); ++i) {
    if (table[i]->isSheet() || table[i]->isOfRecord()) continue;
    blocks.push_back({{"name", table[i]->getName().toUtf8()}, {"entities", table[i]->size()}});
  }
  return blocks;
}

// A number that JSON can hold.
Json finite(double value) { return std::isfinite(value) ? Json(value) : Json(); }
Json finite(const PNT_2D& point) { return Json::array({finite(point.x), finite(point.y)}); }

Json viewportToJson(const VIEWPORT& viewport) {
  Json frozen = Json::array();
  for (const CLayer* layer : viewport.frozen) frozen.push_back(layer->getFullName().toUtf8());
  return {{"center", finite(viewport.center)},
          {"width", finite(viewport.width)},
          {"height", finite(viewport.height)},
          {"view_center", finite(viewport.viewCenter)},
          {"view_height", finite(viewport.viewHeight)},
          {"twist", finite(degreesOf(viewport.twistRad))},
          {"frozen", frozen}};
}

Json layoutsToJson(const CData& data) {
  Json layouts = Json::array();
  for (int i = 0; i < data.getLayouts().size(); ++i) {
    const CLayout& layout = data.getLayouts()[i];
    const PLOT_SETTINGS& plot = layout.getPlot();
    Json viewports = Json::array();
    for (const VIEWPORT& viewport : layout.getViewports())
      viewports.push_back(viewportToJson(viewport));
    layouts.push_back({{"name", layout.getName().toUtf8()},
                       {"paper", finite(PNT_2D(plot.width, plot.height))},
                       {"scale", finite(plot.scale)},
                       {"entities", layout.getBlock().size()},
                       {"viewports", viewports}});
  }
  return layouts;
}

Json referencesToJson(const CData& data) {
  Json references = Json::array();
  const CBlockXRefTable& table = data.getBlockXRefTable();
  for (int i = 0; i < table.size(); ++i) {
    references.push_back({{"name", table[i]->getName().toUtf8()},
                          {"path", table[i]->getPath().toUtf8()},
                          {"overlay", table[i]->isOverlay()}});
  }
  return references;
}

Json unitsOf(const ReadResult& result) {
  const char* name = unitName(result.outcome.units);
  return name ? Json(name) : Json();
}

Json metricOf(const ReadResult& result) {
  return result.outcome.measurement < 0 ? Json() : Json(result.outcome.measurement == 1);
}

// One "name: a, b, c" line, broken off after a screenful of names.
std::string listLine(const char* title, const std::vector<std::string>& names) {
  constexpr std::size_t kShown = 20;
  std::string line = std::string("  ") + title + " (" + std::to_string(names.size()) + "):";
  for (std::size_t i = 0; i < names.size() && i < kShown; ++i)
    line += (i ? ", " : " ") + visible(names[i]);
  if (names.size() > kShown) line += ", ...";
  return line + "\n";
}

std::vector<std::string> namesIn(const Json& rows) {
  std::vector<std::string> names;
  for (const Json& row : rows) {
    names.push_back(row.is_string() ? row.get<std::string>() : row["name"].get<std::string>());
  }
  return names;
}

std::string layerLines(const Json& layers) {
  std::string text = "  layers (" + std::to_string(layers.size()) + "):\n";
  for (const Json& layer : layers) {
    text += "    " + visible(layer["name"].get<std::string>()) + ": color " +
            layer["color"].dump() + ", linetype " + visible(layer["linetype"].get<std::string>());
    for (const char* state : {"frozen", "locked", "off"}) {
      if (layer[state].get<bool>()) text += std::string(", ") + state;
    }
    text += "\n";
  }
  return text;
}

std::string referenceLines(const Json& references) {
  std::string text = "  external references (" + std::to_string(references.size()) + "):\n";
  for (const Json& reference : references) {
    text += "    " + visible(reference["name"].get<std::string>()) + ": " +
            visible(reference["path"].get<std::string>()) +
            (reference["overlay"].get<bool>() ? ", overlay\n" : "\n");
  }
  return text;
}

std::string layoutLines(const Json& layouts) {
  std::string text = "  layouts (" + std::to_string(layouts.size()) + "):\n";
  for (const Json& layout : layouts) {
    const Json &paper = layout["paper"], &scale = layout["scale"];
    const std::size_t entities = layout["entities"].get<std::size_t>();
    text += "    " + visible(layout["name"].get<std::string>()) + ": ";
    text += paper == Json{0.0, 0.0} ? "no paper size"
                                    : paper[0].dump() + " x " + paper[1].dump() + " mm, " +
                                          scale.dump() + " mm per unit";
    text += ", " + counted(entities, "entity", "entities") + ", " +
            counted(layout["viewports"].size(), "viewport", "viewports") + "\n";
  }
  return text;
}

std::string number(double value) {
  const Json json = value;
  return json.dump();
}

std::string extentsLine(const RECT_3D& box) {
  if (!box.validRegion()) return "  extents: none\n";
  const auto point = [](const PNT_3D& p) {
    return "(" + number(p.x) + ", " + number(p.y) + ", " + number(p.z) + ")";
  };
  return "  extents: " + point(box.min) + " to " + point(box.max) + "\n";
}

std::string variableLines(const CData& data) {
  const CDataVariables& vars = data.getVars();
  const auto onOff = [](bool on) { return on ? "on" : "off"; };
  const PNT_2D &low = vars.getLimMin(), &high = vars.getLimMax();
  std::string text = "  limits: (" + number(low.x) + ", " + number(low.y) + ") to (" +
                     number(high.x) + ", " + number(high.y) + ")\n";
  text += "  linetype scale: " + number(vars.getLtypeScale()) +
          ", polyline width: " + number(vars.getPLineWid()) +
          ", polyline linetype generation: " + onOff(vars.isPLineGen()) + "\n";
  text += "  angles: base " + number(vars.getAngDir() * 57.29577951308233) + " degrees, " +
          (vars.isAngClockWise() ? "clockwise" : "counter-clockwise") + ", format " +
          std::to_string(vars.getAngFormat()) + "; ortho " + onOff(vars.isOrtho()) + "\n";
  text += "  current: layer " +
          (vars.getCurLayer() ? visible(vars.getCurLayer()->getFullName()) : "-") + ", linetype " +
          visible(ltypeName(vars.getCurLtype())) + ", style " +
          (vars.getCurStyle() ? visible(vars.getCurStyle()->getName()) : "-") + ", color " +
          std::to_string(vars.getCurColor()) + "\n";
  return text;
}

std::string unitsText(const ReadResult& result) {
  const Json units = unitsOf(result), metric = metricOf(result);
  std::string text;
  if (!units.is_null()) text += ", units: " + units.get<std::string>();
  if (!metric.is_null()) text += metric.get<bool>() ? ", metric" : ", imperial";
  return text;
}

}  // namespace

ModelSummary::ModelSummary() { m_extents.initRegion(); }

ModelSummary::ModelSummary(CData& data) : ModelSummary() { addAll(data); }

void ModelSummary::add(CEnt& ent) {
  m_isEmpty = false;
  m_counts.add(ent);
  if (!ent.getLayer() || !ent.getLayer()->isFrozen()) m_extents.updateRegion(ent.getBdry());
}

void ModelSummary::addAll(CData& data) {
  for (CEnt* ent : data.getEntTable().getEntityTbl()) add(*ent);
}

ReadResult summarizeFile(Drawing& data, ModelSummary& model, const std::string& path,
                         const Session& session) {
  ReadResult result = passFile(
      data, path, session, [&](CEnt& ent) { model.add(ent); }, [&] { model = ModelSummary(); });
  model.addAll(*data);
  return result;
}

Json summaryToJson(const std::string& path, CData& data, const ReadResult& result,
                   const ModelSummary& model) {
  Json summary;
  summary["file"] = path;
  summary["ok"] = result.ok();
  summary["version"] = result.outcome.version.toUtf8();
  summary["encoding"] = result.outcome.encoding;
  summary["units"] = unitsOf(result);
  summary["metric"] = metricOf(result);
  summary["error"] = errorToJson(result);
  summary["report"] = reportToJson(result.report);
  summary["layers"] = layersToJson(data, result);
  summary["linetypes"] = ltypesToJson(data, result);
  summary["styles"] = stylesToJson(data, result);
  summary["blocks"] = blocksToJson(data);
  summary["layouts"] = layoutsToJson(data);
  summary["references"] = referencesToJson(data);
  summary["entities"] = model.counts().toJson();
  summary["extents"] = extentsToJson(model.extents());
  return summary;
}

std::string summaryToText(const std::string& path, CData& data, const ReadResult& result,
                          const ModelSummary& model) {
  const std::string version = result.outcome.version.toUtf8();
  std::string text = visible(path) +
                     "\n  version: " + (version.empty() ? "not stated" : visible(version)) +
                     ", encoding: " + result.outcome.encoding + unitsText(result) + "\n";
  text += layerLines(layersToJson(data, result));
  text += listLine("linetypes", namesIn(ltypesToJson(data, result)));
  text += listLine("text styles", namesIn(stylesToJson(data, result)));
  text += listLine("blocks", namesIn(blocksToJson(data)));
  const Json layouts = layoutsToJson(data);
  if (!layouts.empty()) text += layoutLines(layouts);
  const Json references = referencesToJson(data);
  if (!references.empty()) text += referenceLines(references);
  text += "  entities: " + model.counts().toText();
  if (model.isEmpty() && !result.elsewhere().empty()) text += "; " + result.elsewhere();
  text += "\n";
  text += extentsLine(model.extents()) + variableLines(data);
  if (!result.report.empty()) text += "  skipped or repaired:\n" + reportToText(result.report);
  return text;
}

}  // namespace vek0::host
