#include "edittracker.h"

namespace vek0::web {

EditTracker::EditTracker(CData& data) : m_data(data), m_looks(layerLooks()), m_vars(varsLook()) {}

EditTracker::Look EditTracker::lookOf(const CLayer& layer) {
  return {layer.getColor(), layer.getTraits(), layer.getLtype()};
}

EditTracker::VarsLook EditTracker::varsLook() const {
  const CDataVariables& vars = m_data.getVars();
  return {vars.getLtypeScale(), vars.getPointSize(), vars.getPointMode(),
          vars.getDefaultLineweight()};
}

std::unordered_map<const CLayer*, EditTracker::Look> EditTracker::layerLooks() const {
  std::unordered_map<const CLayer*, Look> looks;
  for (CData::CLayerIterator it(m_data, true); const CLayer* layer = *it; ++it)
    looks.emplace(layer, lookOf(*layer));
  return looks;
}

// Listeners must not throw: without memory for the list, everything counts as changed.
void EditTracker::touched(CEnt& ent) try {
  m_isAnything = true;
  if (CBlock* owner = ent.getOwnerBlock()) {
    m_blocks.insert(owner);
  } else if (ent.getType() == CEntAttrib::kType) {
    m_isStale = true;
  } else {
    m_ents[CEntTable::getRank(ent)] = ent.isHeld() ? &ent : nullptr;
  }
} catch (const std::bad_alloc&) {
  m_isStale = true;
}

// A hatch is touched itself when its block changes.
void EditTracker::touched(CBlock& block) try {
  m_isAnything = true;
  if (!isHatchName(block.getName())) m_blocks.insert(&block);
} catch (const std::bad_alloc&) {
  m_isStale = true;
}

void EditTracker::touched(CNamedItem& item) {
  m_isAnything = true;
  if (dynamic_cast<CLayer*>(&item))
    m_areLayersTouched = true;
  else
    m_isStale = m_isStale || item.getEntities() > 0;
}

void EditTracker::touched(CLayout&) { m_isStale = m_isAnything = true; }

void EditTracker::touchedVars() {
  m_isAnything = true;
  const VarsLook look = varsLook();
  m_isStale = m_isStale || look != m_vars;
  m_vars = look;
}

EditTracker::Changes EditTracker::take() {
  Changes changes;
  changes.ents = m_ents;
  changes.isStale = m_isStale;
  changes.isAnything = m_isAnything;
  if (!m_blocks.empty()) addUsersOfBlocks(changes);
  if (m_areLayersTouched) {
    std::unordered_map<const CLayer*, Look> looks = layerLooks();
    std::unordered_set<const CLayer*> changed;
    for (const auto& [layer, look] : looks) {
      const auto at = m_looks.find(layer);
      if (at != m_looks.end() && at->second != look) changed.insert(layer);
    }
    if (!changed.empty()) addUsersOfLayers(changed, changes);
    m_looks = std::move(looks);
  }
  m_ents.clear();
  m_blocks.clear();
  m_areLayersTouched = m_isStale = m_isAnything = false;
  return changes;
}

// Blocks that show a changed one, at any depth, have changed too.
void EditTracker::addUsersOfBlocks(Changes& changes) const {
  std::unordered_map<const CBlock*, bool> known;
  constexpr int deepest = 200;  // what is drawn
  const auto shows = [&](const auto& self, const CBlock& block, int depth) -> bool {
    const auto [at, isNew] = known.try_emplace(&block, m_blocks.contains(&block));
    if (!isNew || at->second) return at->second;
    bool found = false;
    for (unsigned i = 0; i < block.size() && !found; ++i) {
      const CEntInsertBase* insert = block[i]->getEntInsert();
      found = insert && insert->getBlock() && depth < deepest &&
              self(self, *insert->getBlock(), depth + 1);
    }
    return known[&block] = found;
  };
  for (CEnt* ent : m_data.getEntTable().getEntityTbl()) {
    const CEntInsertBase* insert = ent->getEntInsert();
    if (insert && insert->getBlock() && shows(shows, *insert->getBlock(), 0))
      changes.ents[CEntTable::getRank(*ent)] = ent;
  }
}

// Inserts may show entities on any layer.
void EditTracker::addUsersOfLayers(const std::unordered_set<const CLayer*>& layers,
                                   Changes& changes) const {
  for (CEnt* ent : m_data.getEntTable().getEntityTbl())
    if (ent->getEntInsert() || layers.contains(ent->getLayer()))
      changes.ents[CEntTable::getRank(*ent)] = ent;
}

}  // namespace vek0::web
