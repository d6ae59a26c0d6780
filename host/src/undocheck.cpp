#include "vek0host/undocheck.h"

#include <sstream>

namespace vek0::host {
namespace {

// What a file of our form cannot hold: traits, and all of invisible entities.
std::string traitsOf(const CData& data) {
  std::ostringstream text;
  forEachEnt(data, [&](const CEnt& ent) {
    const ENT_TRAITS& t = ent.getTraits();
    const RECT_3D& box = ent.getBdry();
    text << ent.GetHandle() << ' ' << ent.getLayer() << ' ' << ent.getLtype() << ' '
         << ent.getColor() << ' ' << t.trueColor << ' ' << t.lineweight << ' ' << t.opacity << ' '
         << t.isVisible << ' ' << t.ltypeScale << ' ' << t.thickness << ' ' << box.min.x << ' '
         << box.min.y << ' ' << box.max.x << ' ' << box.max.y << '\n';
  });
  for (CData::CLayerIterator it(data, true); const CLayer* layer = *it; ++it) {
    const LAYER_TRAITS& t = layer->getTraits();
    text << layer << ' ' << t.trueColor << ' ' << t.lineweight << ' ' << t.opacity << ' '
         << t.isPlotted << '\n';
  }
  return text.str();
}

}  // namespace

std::string stateOf(const CData& data) {
  CFileMemory file(u"memory", 2);
  return SaveDXF(data, file, kSaveExchange) ? file.bytes() + traitsOf(data) : std::string();
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
