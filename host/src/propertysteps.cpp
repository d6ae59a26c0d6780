#include "vek0core/tables/colors.h"
#include "vek0host/editsteps.h"
#include "vek0host/propertytext.h"

namespace vek0::host {
namespace {

// Lets `set` change every chosen entity.
template <class Set>
StepOutcome setAll(Editing& editing, const std::string& what, const Set& set) {
  for (CEnt* ent : editing.chosen) {
    if (!editing.undo.keepProperties(*ent)) return StepOutcome::noMemory();
    set(*ent);
  }
  // A frozen layer excludes its entities from the extents.
  editing.data.getEntTable().invalidateBdry();
  return StepOutcome::done(countedEntities(editing.chosen.size()) + what);
}

}  // namespace

std::string readSetLayer(const std::string& text, EditStep& step) {
  if (text.empty()) return "the layer name is empty";
  step = onChosen([text](Editing& editing) {
    CLayer* layer = needLayer(editing, zim::WString::fromUtf8(text), nullptr);
    if (layer == nullptr) return StepOutcome::failed("there is no layer " + text);
    return setAll(editing, " moved to layer " + layer->getFullName().toUtf8(),
                  [layer](CEnt& ent) { ent.setLayer(layer); });
  });
  return {};
}

std::string readSetColor(const std::string& text, EditStep& step) {
  const short color = colorNumberOf(text);
  if (color < 0) return "'" + text + "' is not a color like 3, red, bylayer or byblock";
  step = onChosen([color](Editing& editing) {
    return setAll(editing, " colored " + CColors::getInstance()[color].toUtf8(),
                  [color](CEnt& ent) { ent.setColor(color); });
  });
  return {};
}

std::string readSetLtype(const std::string& text, EditStep& step) {
  if (text.empty()) return "the linetype name is empty";
  step = onChosen([text](Editing& editing) {
    CLtype* ltype = getLtype(editing.data, zim::WString::fromUtf8(text));
    if (ltype == nullptr)
      return StepOutcome::failed("there is no linetype " + text +
                                 "; vek0 convert --linetypes adds those of a definition file");
    return setAll(editing, " set to linetype " + ltype->getFullName().toUtf8(),
                  [ltype](CEnt& ent) { ent.setLtype(ltype); });
  });
  return {};
}

}  // namespace vek0::host
