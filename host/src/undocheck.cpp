#include "vek0host/undocheck.h"

#include <limits>
#include <sstream>

namespace vek0::host {
namespace {

std::ostream& operator<<(std::ostream& text, const ENT_TRAITS& t) {
  return text << t.trueColor << ' ' << t.lineweight << ' ' << t.opacity << ' ' << t.isVisible << ' '
              << t.ltypeScale << ' ' << t.thickness;
}

std::ostream& operator<<(std::ostream& text, const PNT_2D& p) { return text << p.x << ' ' << p.y; }

void addLayout(std::ostream& text, const CLayout& layout) {
  const PLOT_SETTINGS& plot = layout.getPlot();
  text << layout.getName().toUtf8() << ' ' << plot.width << ' ' << plot.height << ' ' << plot.left
       << ' ' << plot.bottom << ' ' << plot.right << ' ' << plot.top << ' ' << plot.origin << ' '
       << plot.scale << ' ' << static_cast<int>(plot.area) << ' ' << plot.window.min << ' '
       << plot.window.max << ' ' << plot.isCentered << plot.viewportsFirst << plot.hasLineweights
       << '\n';
  for (const VIEWPORT& v : layout.getViewports()) {
    text << v.handle << ' ' << v.center << ' ' << v.width << ' ' << v.height << ' ' << v.viewCenter
         << ' ' << v.viewHeight << ' ' << v.target << ' ' << v.twistRad << ' ' << v.isOn << v.isPlan
         << ' ' << v.layer << ' ' << v.ltype << ' ' << v.color << ' ' << v.traits;
    for (const PNT_2D& corner : v.boundary) text << ' ' << corner;
    for (const CLayer* layer : v.frozen) text << ' ' << layer;
    text << '\n';
  }
}

// What a file of our form cannot hold: traits, layouts and variables of newer versions.
std::string modernStateOf(const CData& data) {
  std::ostringstream text;
  text.precision(std::numeric_limits<double>::max_digits10);
  forEachEnt(data, [&](const CEnt& ent) {
    text << ent.GetHandle() << ' ' << ent.getLayer() << ' ' << ent.getLtype() << ' '
         << ent.getColor() << ' ' << ent.getTraits() << '\n';
  });
  for (CData::CLayerIterator it(data, true); const CLayer* layer = *it; ++it) {
    const LAYER_TRAITS& t = layer->getTraits();
    text << layer << ' ' << layer->getColor() << ' ' << layer->getLineWidth() << ' ' << t.trueColor
         << ' ' << t.lineweight << ' ' << t.opacity << ' ' << t.isPlotted << '\n';
  }
  for (int i = 0; i < data.getLayouts().size(); ++i) addLayout(text, data.getLayouts()[i]);
  const CDataVariables& vars = data.getVars();
  const PNT_3D& base = vars.getInsertionBase();
  text << vars.getUnits() << ' ' << vars.getCurLtypeScale() << ' ' << vars.getDefaultLineweight()
       << ' ' << vars.isLineweightShown() << ' ' << vars.isPaperLtypeScale() << ' ' << base.x << ' '
       << base.y << ' ' << base.z << '\n';
  return text.str();
}

std::string saved(const CData& data) {
  CFileMemory file(u"memory", 2);
  return SaveDXF(data, file, kSaveExchange) ? file.bytes() : std::string();
}

// The drawing with what saving leaves out: invisible entities are shown, and the sheets are blocks.
std::string hiddenStateOf(const CData& data) {
  const CDataPtr copy(cloneData(data));
  if (!copy) return {};
  forEachEnt(*copy, [](CEnt& ent) {
    ENT_TRAITS traits = ent.getTraits();
    traits.isVisible = true;
    ent.setTraits(traits);
  });
  copy->getLayouts().clearAll();
  return saved(*copy);
}

}  // namespace

std::string stateOf(const CData& data) {
  const std::string file = saved(data), hidden = hiddenStateOf(data);
  return file.empty() || hidden.empty() ? std::string() : file + hidden + modernStateOf(data);
}

std::string checkUndo(CData& data, CUndoStack& undo, const std::string& before) {
  const std::string after = stateOf(data);
  if (before.empty() || after.empty()) return "the drawing cannot be saved for the comparison";
  while (undo.getNoUndo() > 0)
    if (!undo.undo()) return "a step cannot be undone";
  if (stateOf(data) != before) return "undoing did not restore the drawing";
  while (undo.getNoRedo() > 0)
    if (!undo.redo()) return "a step cannot be redone";
  return stateOf(data) == after ? "" : "redoing produced a different drawing";
}

}  // namespace vek0::host
