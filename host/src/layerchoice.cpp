#include "vek0host/layerchoice.h"

#include <algorithm>

#include "vek0core/drawing/data.h"
#include "zim0lang/casefold.h"

namespace vek0::host {

bool matchesPattern(std::u16string_view name, std::u16string_view pattern) {
  std::size_t n = 0, p = 0, star = pattern.npos, resume = 0;
  while (n < name.size()) {
    if (p < pattern.size() && pattern[p] == u'*') {
      star = p++;
      resume = n;
    } else if (p < pattern.size() &&
               (pattern[p] == u'?' || zim::foldCase(pattern[p]) == zim::foldCase(name[n]))) {
      ++p;
      ++n;
    } else if (star != pattern.npos) {
      // Let the last star match one more character.
      p = star + 1;
      n = ++resume;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of(u'*', p) == pattern.npos;
}

bool isPattern(std::u16string_view name) { return name.find_first_of(u"*?") != name.npos; }

namespace {

bool isUnprinted(const CLayer& layer) {
  const zim::WString& name = layer.getFullName();
  return !layer.getTraits().isPlotted || matchesPattern(name, u"defpoints") ||
         matchesPattern(name, u"*|defpoints");
}

}  // namespace

LayerChoice::LayerChoice(const CData& data, const std::vector<std::string>& shown,
                         const std::vector<std::string>& hidden) {
  std::vector<CLayer*> layers;
  for (CData::CLayerIterator it(data, true); CLayer* layer = *it; ++it) layers.push_back(layer);
  const std::vector<bool> isShown = matching(layers, shown), isHidden = matching(layers, hidden);
  m_showsNone = !shown.empty() && std::find(isShown.begin(), isShown.end(), true) == isShown.end();
  for (std::size_t i = 0; i < layers.size(); ++i) {
    if (!shown.empty()) {
      layers[i]->setOff(!isShown[i]);
      if (isShown[i]) layers[i]->setFrozen(false);
    } else if (isUnprinted(*layers[i])) {
      if (m_unprinted.empty() && layers[i]->getEntities() > 0)
        m_unprinted = layers[i]->getFullName();
      layers[i]->setOff(true);
    }
    if (isHidden[i]) layers[i]->setOff(true);
    if (!layers[i]->isOff() && !layers[i]->isFrozen()) m_visible.push_back(layers[i]);
  }
  data.getEntTable().invalidateBdry();
}

std::vector<bool> LayerChoice::matching(const std::vector<CLayer*>& layers,
                                        const std::vector<std::string>& names) {
  std::vector<bool> result(layers.size());
  for (const std::string& name : names) {
    const zim::WString pattern = zim::WString::fromUtf8(name);
    bool found = false;
    for (std::size_t i = 0; i < layers.size(); ++i) {
      if (!matchesPattern(layers[i]->getFullName(), pattern)) continue;
      found = result[i] = true;
    }
    if (!found) m_unmatched.push_back(name);
  }
  return result;
}

void LayerChoice::showOnly(const CLayer* layer) const {
  for (CLayer* each : m_visible) each->setOff(each != layer);
}

}  // namespace vek0::host
