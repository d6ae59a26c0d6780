#include <algorithm>
#include <memory>
#include <optional>
#include <unordered_set>

#include "vek0host/editsteps.h"
#include "vek0host/entitycounts.h"
#include "vek0host/layerchoice.h"
#include "vek0host/textvalues.h"

namespace vek0::host {
namespace {

struct Criteria {
  std::vector<std::string> layers;  // patterns; none: any layer
  std::vector<std::string> kinds;   // none: any kind
  std::vector<std::string> window;  // four numbers, or none
  std::optional<RECT_2D> box;       // of the window
};

// The list for a keyword; null for other words.
std::vector<std::string>* listOf(Criteria& criteria, const std::string& word) {
  if (word == "layer") return &criteria.layers;
  if (word == "kind") return &criteria.kinds;
  return word == "window" ? &criteria.window : nullptr;
}

// Assigns the values to the preceding keywords. Returns the error, if any.
std::string sortValues(const std::string& text, Criteria& criteria) {
  const auto items = splitUnquoted(text, ',');
  if (!items) return "unclosed quote in " + text;
  std::vector<std::string>* list = nullptr;
  for (const std::string& item : *items) {
    const auto sides = *splitUnquoted(item, '=');
    if (sides.size() > 1) list = listOf(criteria, sides[0]);
    if (list == nullptr || sides.size() > 2)
      return "'" + item + "' is not all, layer=..., kind=... or window=...";
    list->push_back(unquoted(sides.back()));
    if (list->back().empty()) return "missing value in " + text;
  }
  return {};
}

std::string checkKind(std::string& kind) {
  const zim::WString wide = zim::WString::fromUtf8(kind);
  std::string all;
  for (const char* known : EntityCounts::kKinds) {
    all += (all.empty() ? "" : ", ") + std::string(known);
    if (!zim::equalsIgnoreCase(wide, zim::WString::fromUtf8(known))) continue;
    kind = known;
    return {};
  }
  return "'" + kind + "' is not one of " + all;
}

std::string readWindow(Criteria& criteria) {
  if (criteria.window.empty()) return {};
  std::string joined;
  for (const std::string& number : criteria.window) joined += (joined.empty() ? "" : ",") + number;
  const auto numbers = numbersIn(joined);
  if (!numbers || numbers->size() != 4) return "'" + joined + "' is not a window like 0,0,20,10";
  const auto [x1, x2] = std::minmax((*numbers)[0], (*numbers)[2]);
  const auto [y1, y2] = std::minmax((*numbers)[1], (*numbers)[3]);
  criteria.box = RECT_2D(x1, y1, x2, y2);
  return {};
}

std::string readCriteria(const std::string& text, Criteria& criteria) {
  std::string problem = sortValues(text, criteria);
  for (std::string& kind : criteria.kinds)
    if (problem.empty()) problem = checkKind(kind);
  return problem.empty() ? readWindow(criteria) : problem;
}

// Finds the layers that the patterns match, or returns a pattern that matches none.
std::string layersOf(const CData& data, const std::vector<std::string>& patterns,
                     std::unordered_set<const CLayer*>& layers) {
  for (const std::string& name : patterns) {
    const zim::WString pattern = zim::WString::fromUtf8(name);
    bool found = false;
    for (CData::CLayerIterator it(data, true); const CLayer* layer = *it; ++it) {
      if (!matchesPattern(layer->getFullName(), pattern)) continue;
      found = true;
      layers.insert(layer);
    }
    if (!found) return name;
  }
  return {};
}

bool isWithin(const RECT_2D& window, const CEnt& ent) {
  const RECT_3D& box = ent.getBdry();
  return box.validRegion() && window.min.x <= box.min.x && window.min.y <= box.min.y &&
         box.max.x <= window.max.x && box.max.y <= window.max.y;
}

StepOutcome select(Editing& editing, const Criteria& criteria) {
  std::unordered_set<const CLayer*> layers;
  const std::string unknown = layersOf(editing.data, criteria.layers, layers);
  if (!unknown.empty()) return StepOutcome::failed("no layer is named " + unknown);
  const auto& all = editing.data.getEntTable().getEntityTbl();
  const auto fits = [&](CEnt* ent) {
    const auto& kinds = criteria.kinds;
    return (layers.empty() || layers.count(ent->getLayer()) != 0) &&
           (kinds.empty() ||
            std::find(kinds.begin(), kinds.end(), kindNameOf(*ent)) != kinds.end()) &&
           (!criteria.box || isWithin(*criteria.box, *ent));
  };
  editing.chosen.clear();
  std::copy_if(all.begin(), all.end(), std::back_inserter(editing.chosen), fits);
  if (editing.chosen.empty()) return StepOutcome::failed("no entity matches");
  return StepOutcome::done(countedEntities(editing.chosen.size()) + " selected");
}

}  // namespace

std::string readSelect(const std::string& text, EditStep& step) {
  Criteria criteria;
  if (text != "all") {
    std::string problem = readCriteria(text, criteria);
    if (!problem.empty()) return problem;
  }
  step = [criteria](Editing& editing) { return select(editing, criteria); };
  return {};
}

}  // namespace vek0::host
