#include "vek0host/selection.h"

#include <algorithm>

#include "vek0host/entitycounts.h"
#include "vek0host/layerchoice.h"
#include "vek0host/textvalues.h"

namespace vek0::host {
namespace {

bool isWithin(const RECT_2D& window, const RECT_3D& box) {
  return box.validRegion() && window.min.x <= box.min.x && window.min.y <= box.min.y &&
         box.max.x <= window.max.x && box.max.y <= window.max.y;
}

bool contains(const std::vector<std::string>& list, const std::string& text) {
  return std::find(list.begin(), list.end(), text) != list.end();
}

}  // namespace

std::string Selection::parse(const std::string& text) {
  *this = {};
  if (text == "all") return {};
  std::vector<std::string> window;
  std::string problem = sortValues(text, window);
  for (std::string& kind : m_kinds)
    if (problem.empty()) problem = checkKind(kind);
  return problem.empty() ? readWindow(window) : problem;
}

// Assigns the values to the preceding keywords. Returns the error, if any.
std::string Selection::sortValues(const std::string& text, std::vector<std::string>& window) {
  const auto items = splitUnquoted(text, ',');
  if (!items) return "unclosed quote in " + text;
  const auto listOf = [&](const std::string& word) -> std::vector<std::string>* {
    if (word == "layer") return &m_patterns;
    if (word == "kind") return &m_kinds;
    return word == "window" ? &window : nullptr;
  };
  std::vector<std::string>* list = nullptr;
  for (const std::string& item : *items) {
    const auto sides = *splitUnquoted(item, '=');
    if (sides.size() > 1) list = listOf(sides[0]);
    if (list == nullptr || sides.size() > 2)
      return "'" + item + "' is not all, layer=..., kind=... or window=...";
    list->push_back(unquoted(sides.back()));
    if (list->back().empty()) return "missing value in " + text;
  }
  return {};
}

std::string Selection::checkKind(std::string& kind) {
  const zim::WString wide = zim::WString::fromUtf8(kind);
  std::string all;
  for (const char* known : entityKinds()) {
    all += (all.empty() ? "" : ", ") + std::string(known);
    if (!zim::equalsIgnoreCase(wide, zim::WString::fromUtf8(known))) continue;
    kind = known;
    return {};
  }
  return "'" + kind + "' is not one of " + all;
}

std::string Selection::readWindow(const std::vector<std::string>& window) {
  if (window.empty()) return {};
  std::string joined;
  for (const std::string& number : window) joined += (joined.empty() ? "" : ",") + number;
  const auto numbers = numbersIn(joined);
  if (!numbers || numbers->size() != 4) return "'" + joined + "' is not a window like 0,0,20,10";
  const auto [x1, x2] = std::minmax((*numbers)[0], (*numbers)[2]);
  const auto [y1, y2] = std::minmax((*numbers)[1], (*numbers)[3]);
  m_window = RECT_2D(x1, y1, x2, y2);
  return {};
}

std::string Selection::findLayers(const CData& data) {
  m_layers.clear();
  for (const std::string& name : m_patterns) {
    const zim::WString pattern = zim::WString::fromUtf8(name);
    bool found = false;
    for (CData::CLayerIterator it(data, true); const CLayer* layer = *it; ++it) {
      if (!matchesPattern(layer->getFullName(), pattern)) continue;
      found = true;
      m_layers.insert(layer);
    }
    if (!found) return "no layer is named " + name;
  }
  return {};
}

bool Selection::includes(CEnt& ent) const { return includes(ent, ent.getBdry()); }

bool Selection::includes(CEnt& ent, const RECT_3D& box) const {
  if (!m_patterns.empty() && m_layers.count(ent.getLayer()) == 0) return false;
  const bool isKind =
      m_kinds.empty() || contains(m_kinds, kindNameOf(ent)) || contains(m_kinds, recordNameOf(ent));
  return isKind && (!m_window || isWithin(*m_window, box));
}

}  // namespace vek0::host
