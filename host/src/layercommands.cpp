// Commands that change layers and what is drawn next, and those that undo and redo.
#include <cmath>
#include <utility>

#include "commandkinds.h"
#include "vek0host/commandline.h"
#include "vek0host/editsteps.h"
#include "vek0host/layerchoice.h"
#include "vek0host/propertytext.h"

namespace vek0::host {
namespace {

// Changes the drawing's own layers whose names match.
StepOutcome changeLayers(Editing& editing, const std::string& pattern,
                         const std::function<void(CLayer&)>& change) {
  const zim::WString wide = zim::WString::fromUtf8(pattern);
  std::size_t count = 0;
  for (CData::CLayerIterator at(editing.data, false); *at; ++at) {
    CLayer& layer = **at;
    if (!matchesPattern(layer.getFullName(), wide)) continue;
    if (!editing.undo.keep(layer)) return StepOutcome::noMemory();
    change(layer);
    ++count;
  }
  if (count == 0) return StepOutcome::failed("there is no layer " + pattern);
  editing.data.getEntTable().invalidateBdry();
  return StepOutcome::done(counted(count, "layer", "layers") + " changed");
}

StepOutcome makeCurrent(Editing& editing, const std::string& name) {
  CLayer* layer = needLayer(editing, zim::WString::fromUtf8(name), nullptr);
  if (!layer) return StepOutcome::failed("there is no layer " + name);
  if (!editing.undo.keepVars()) return StepOutcome::noMemory();
  setCurLayer(editing.data, layer);
  return StepOutcome::done("layer " + layer->getFullName().toUtf8() + " is current");
}

StepOutcome addLayer(Editing& editing, const std::string& name) {
  const CLayer* layer = needLayer(editing, zim::WString::fromUtf8(name), nullptr);
  if (!layer) return StepOutcome::failed("'" + name + "' cannot be the name of a layer");
  return StepOutcome::done("layer " + layer->getFullName().toUtf8() + " exists");
}

StepOutcome deleteLayer(Editing& editing, const std::string& name) {
  CLayer* layer = getLayer(editing.data, zim::WString::fromUtf8(name));
  if (!layer) return StepOutcome::failed("there is no layer " + name);
  if (!editing.undo.remove(layer)) return StepOutcome::failed("layer " + name + " is used");
  return StepOutcome::done("layer " + name + " deleted");
}

StepOutcome renameLayer(Editing& editing, const std::string& name, const std::string& text) {
  const zim::WString fresh = zim::WString::fromUtf8(text);
  CLayer* layer = getLayer(editing.data, zim::WString::fromUtf8(name));
  if (!layer || layer->isXRef()) return StepOutcome::failed("there is no layer " + name);
  if (layer->is0()) return StepOutcome::failed("layer 0 keeps its name");
  const CLayer* other = getLayer(editing.data, fresh);
  if ((other && other != layer) || fresh.empty() || isPattern(fresh))
    return StepOutcome::failed("'" + text + "' is not a free name");
  if (!editing.undo.keep(*layer)) return StepOutcome::noMemory();
  layer->setName(fresh);
  return StepOutcome::done("layer " + name + " is now " + text);
}

StepOutcome setLayerLinetype(Editing& editing, const std::string& pattern,
                             const std::string& name) {
  CLtype* ltype = getLtype(editing.data, zim::WString::fromUtf8(name));
  if (!ltype) return StepOutcome::failed("there is no linetype " + name);
  return changeLayers(editing, pattern, [ltype](CLayer& layer) { layer.setLtype(ltype); });
}

struct LayerFlag {
  const char* word;
  void (*set)(CLayer& layer);
};
constexpr LayerFlag kLayerFlags[] = {
    {"on", [](CLayer& layer) { layer.setOff(false); }},
    {"off", [](CLayer& layer) { layer.setOff(true); }},
    {"freeze", [](CLayer& layer) { layer.setFrozen(true); }},
    {"thaw", [](CLayer& layer) { layer.setFrozen(false); }},
    {"lock", [](CLayer& layer) { layer.setLocked(true); }},
    {"unlock", [](CLayer& layer) { layer.setLocked(false); }},
};

short readColor(CommandWords& words, short least, short most) {
  const std::string text = words.word("the color");
  const short color = colorNumberOf(text);
  if (color < least || color > most) words.complain("'" + text + "' is not a color like 3 or red");
  return color;
}

// Millimeters in the hundredths of a layer.
short readWeight(CommandWords& words) {
  if (words.take("default")) return ENT_TRAITS::kWeightDefault;
  const double hundredths = std::round(words.number("the lineweight") * 100);
  if (hundredths >= 0 && hundredths <= ENT_TRAITS::kWidestWeight)
    return static_cast<short>(hundredths);
  words.complain("a lineweight is from 0 to 2.11 mm, or default");
  return 0;
}

EditStep readLayerChange(CommandWords& words) {
  if (words.take("color")) {
    const std::string name = words.word("the layer");
    const short color = readColor(words, 1, 255);
    return [=](Editing& editing) {
      return changeLayers(editing, name, [=](CLayer& layer) { layer.setColor(color); });
    };
  }
  if (words.take("linetype")) {
    const std::string name = words.word("the layer"), ltype = words.word("the linetype");
    return [=](Editing& editing) { return setLayerLinetype(editing, name, ltype); };
  }
  if (words.take("lineweight")) {
    const std::string name = words.word("the layer");
    const short weight = readWeight(words);
    return [=](Editing& editing) {
      return changeLayers(editing, name, [=](CLayer& layer) {
        LAYER_TRAITS traits = layer.getTraits();
        traits.lineweight = weight;
        layer.setTraits(traits);
      });
    };
  }
  for (const LayerFlag& flag : kLayerFlags)
    if (words.take(flag.word))
      return [name = words.word("the layer"), set = flag.set](Editing& editing) {
        return changeLayers(editing, name, set);
      };
  return {};
}

// Repeats a travel of the undo stack. What was selected may no longer exist.
EditStep travelStep(CommandWords& words, bool (CUndoStack::*travel)(), const char* done) {
  const double count = words.numberOr(1);
  if (count < 1 || count > 1e9 || count != std::floor(count))
    words.complain("the number of commands is a whole number from 1");
  return [=](Editing& editing) {
    double taken = 0;
    while (taken < count && (editing.undo.*travel)()) ++taken;
    if (taken == 0) return StepOutcome::failed(std::string("nothing can be ") + done);
    editing.chosen.clear();
    return StepOutcome::done(counted(static_cast<std::size_t>(taken), "command ", "commands ") +
                             done);
  };
}

}  // namespace

EditStep readLayerCommand(CommandWords& words) {
  if (EditStep change = readLayerChange(words)) return change;
  if (words.take("new"))
    return [name = words.word("the layer")](Editing& editing) { return addLayer(editing, name); };
  if (words.take("delete"))
    return
        [name = words.word("the layer")](Editing& editing) { return deleteLayer(editing, name); };
  if (words.take("rename")) {
    const std::string name = words.word("the layer"), fresh = words.word("the new name");
    return [=](Editing& editing) { return renameLayer(editing, name, fresh); };
  }
  words.take("set");
  return [name = words.word("the layer")](Editing& editing) { return makeCurrent(editing, name); };
}

EditStep readColorCommand(CommandWords& words) {
  const short color = readColor(words, 0, 256);
  return [=](Editing& editing) {
    if (!editing.undo.keepVars()) return StepOutcome::noMemory();
    setCurColor(editing.data, color);
    return StepOutcome::done("what is drawn next is " + CColors::getInstance()[color].toUtf8());
  };
}

EditStep readLinetypeCommand(CommandWords& words) {
  const std::string name = words.word("the linetype");
  return [=](Editing& editing) {
    CLtype* ltype = getLtype(editing.data, zim::WString::fromUtf8(name));
    if (!ltype) return StepOutcome::failed("there is no linetype " + name);
    if (!editing.undo.keepVars()) return StepOutcome::noMemory();
    setCurLtype(editing.data, ltype);
    return StepOutcome::done("what is drawn next has linetype " + ltype->getFullName().toUtf8());
  };
}

EditStep readUndoCommand(CommandWords& words) {
  return travelStep(words, &CUndoStack::undo, "undone");
}

EditStep readRedoCommand(CommandWords& words) {
  return travelStep(words, &CUndoStack::redo, "redone");
}

EditStep readHelpCommand(CommandWords&) {
  return [](Editing&) { return StepOutcome::done(commandHelp()); };
}

}  // namespace vek0::host
