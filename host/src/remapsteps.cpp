#include <algorithm>

#include "vek0host/editsteps.h"
#include "vek0host/layerchoice.h"
#include "vek0host/textvalues.h"

namespace vek0::host {
namespace {

struct Names {
  std::string from, to;  // `from` is a pattern
};

std::string readNames(const std::string& text, Names& names) {
  const auto sides = splitUnquoted(text, '=');
  if (!sides || sides->size() != 2) return "'" + text + "' is not of the form OLD=NEW";
  names = {unquoted((*sides)[0]), unquoted((*sides)[1])};
  return names.from.empty() || names.to.empty() ? "'" + text + "' is not of the form OLD=NEW" : "";
}

const zim::WString& fullNameOf(const CLayer& layer) { return layer.getFullName(); }
const zim::WString& fullNameOf(const CLtype& ltype) { return ltype.getFullName(); }
const zim::WString& fullNameOf(const CStyle& style) { return style.getName(); }

// The item of exactly that name, possibly a fixed one; otherwise those that match it as a pattern.
template <class Item, class Walk>
std::vector<Item*> matching(Item* exact, Walk walk, const std::string& name) {
  if (exact != nullptr) return {exact};
  const zim::WString pattern = zim::WString::fromUtf8(name);
  std::vector<Item*> items;
  for (; *walk != nullptr; ++walk)
    if (matchesPattern(fullNameOf(**walk), pattern)) items.push_back(*walk);
  return items;
}

template <class Item>
StepOutcome remap(Editing& editing, const std::vector<Item*>& from, Item& to, const char* one,
                  const char* many) {
  CTableRemapper remapper(editing.data, false);
  const long before = to.getEntities();
  for (Item* item : from) remapper.ChangeInto(item, &to);
  if (!remapper.Remap(editing.undo)) return StepOutcome::noMemory();
  const long moved = std::max(to.getEntities() - before, 0L);
  return StepOutcome::done(counted(from.size(), one, many) + " replaced by " +
                           fullNameOf(to).toUtf8() + " in " +
                           countedEntities(static_cast<std::size_t>(moved)));
}

StepOutcome unknown(const char* what, const std::string& name) {
  return StepOutcome::failed(std::string("there is no ") + what + " " + name);
}

StepOutcome nothingToReplace(const char* what, const Names& names) {
  return unknown(what, names.from + " other than " + names.to);
}

// Excludes the replacement itself, which a pattern may match as well.
template <class Item>
std::vector<Item*> without(std::vector<Item*> items, const Item* item) {
  items.erase(std::remove(items.begin(), items.end(), item), items.end());
  return items;
}

StepOutcome remapLayers(Editing& editing, const Names& names) {
  const CData& data = editing.data;
  const zim::WString old = zim::WString::fromUtf8(names.from),
                     target = zim::WString::fromUtf8(names.to);
  const auto from =
      without(matching(getLayer(data, old), CData::CLayerIterator(data, true), names.from),
              getLayer(data, target));
  if (from.empty()) return nothingToReplace("layer", names);
  CLayer* to = needLayer(editing, target, from.front());
  return to ? remap(editing, from, *to, "layer", "layers") : unknown("layer", names.to);
}

// A layer that has one of the linetypes, or null.
const CLayer* layerWith(const std::vector<CLtype*>& ltypes, const CData& data) {
  for (CData::CLayerIterator it(data, false); const CLayer* layer = *it; ++it)
    if (std::find(ltypes.begin(), ltypes.end(), layer->getLtype()) != ltypes.end()) return layer;
  return nullptr;
}

// Patterns do not match BYLAYER and BYBLOCK, which only refer to a linetype elsewhere.
StepOutcome remapLtypes(Editing& editing, const Names& names) {
  const CData& data = editing.data;
  CLtype* to = getLtype(data, zim::WString::fromUtf8(names.to));
  if (to == nullptr) return unknown("linetype", names.to);
  CLtype* exact = getLtype(data, zim::WString::fromUtf8(names.from));
  const auto from =
      without(matching(exact, CData::CLtypeIterator(data, true, false), names.from), to);
  if (from.empty()) return nothingToReplace("linetype", names);
  if (to->isByLayer() || to->isByBlock()) {
    const CLayer* layer = layerWith(from, data);
    if (layer != nullptr)
      return StepOutcome::failed("layer " + layer->getFullName().toUtf8() + " has linetype " +
                                 layer->getLtype()->getFullName().toUtf8() +
                                 ", and a layer cannot have " + to->getFullName().toUtf8());
  }
  return remap(editing, from, *to, "linetype", "linetypes");
}

StepOutcome remapStyles(Editing& editing, const Names& names) {
  const CData& data = editing.data;
  CStyle* to = getStyle(data, zim::WString::fromUtf8(names.to));
  if (to == nullptr) return unknown("text style", names.to);
  CStyle* exact = getStyle(data, zim::WString::fromUtf8(names.from));
  const auto from = without(matching(exact, CData::CStyleIterator(data, false), names.from), to);
  if (from.empty()) return nothingToReplace("text style", names);
  return remap(editing, from, *to, "text style", "text styles");
}

std::string readRemap(const std::string& text, StepOutcome (*work)(Editing&, const Names&),
                      EditStep& step) {
  Names names;
  std::string problem = readNames(text, names);
  step = [names, work](Editing& editing) { return work(editing, names); };
  return problem;
}

}  // namespace

std::string readRemapLayer(const std::string& text, EditStep& step) {
  return readRemap(text, remapLayers, step);
}

std::string readRemapLtype(const std::string& text, EditStep& step) {
  return readRemap(text, remapLtypes, step);
}

std::string readRemapStyle(const std::string& text, EditStep& step) {
  return readRemap(text, remapStyles, step);
}

}  // namespace vek0::host
