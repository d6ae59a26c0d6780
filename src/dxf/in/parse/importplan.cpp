// Decides in the order of use: styles, linetypes that show texts in them, layers, blocks, so that
// whether an item refers to a renamed one is known when it is its turn.
#include "vek0core/dxf/in/parse/importplan.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <unordered_set>
#include <utility>

#include "compare/itemcomparer.h"
#include "entities/blocks/collectblocks.h"
#include "geometry/vector.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/entities/blocks/blockgraph.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/files/report.h"

namespace {

constexpr std::size_t kNamedTables = 4;

// By table.
constexpr ReportCode kKept[kNamedTables] = {ReportCode::LayerKept, ReportCode::LinetypeKept,
                                            ReportCode::StyleKept, ReportCode::BlockKept};
constexpr ReportCode kReplaced[kNamedTables] = {
    ReportCode::LayerReplaced, ReportCode::LinetypeReplaced, ReportCode::StyleReplaced,
    ReportCode::BlockReplaced};
constexpr ReportCode kRenamed[kNamedTables] = {ReportCode::LayerRenamed,
                                               ReportCode::LinetypeRenamed,
                                               ReportCode::StyleRenamed, ReportCode::BlockRenamed};

}  // namespace

using vek0::detail::EntComparer;
using vek0::detail::NameMap;
using vek0::detail::SharedIds;
using vek0::detail::TableLists;

class CImportPlan::Planner {
 public:
  Planner(CImportPlan& plan, const CData& data, const CData& file, const IMPORT_POLICY& policy,
          const CFileReport* reading)
      : m_plan(plan), m_data(data), m_file(file), m_policy(policy), m_lists(data, file) {
    if (!reading) return;
    for (const CFileReport::Entry& entry : reading->entries())
      if (entry.code == ReportCode::LayerUndeclared) m_undeclared.try_emplace(entry.sample, 0);
  }

  void run() {
    pairUp(ItemTable::Styles, m_lists.styles.after, m_ids.styles);
    pairUp(ItemTable::Linetypes, m_lists.ltypes.after, m_ids.ltypes);
    pairUp(ItemTable::Layers, m_lists.layers.after, m_ids.layers);
    pairUp(ItemTable::Blocks, m_lists.blocks.after, m_ids.blocks);
    for (const CStyle* style : m_lists.styles.after) decide(ItemTable::Styles, *style);
    for (const CLtype* ltype : m_lists.ltypes.after) decide(ItemTable::Linetypes, *ltype);
    for (const CLayer* layer : m_lists.layers.after) decide(ItemTable::Layers, *layer);
    decideBlocks();
  }

 private:
  using Changes = std::vector<VALUE_CHANGE>;

  const CStyle* own(const CStyle&, const zim::WString& name) const {
    return getStyle(m_data, name);
  }
  const CLtype* own(const CLtype&, const zim::WString& name) const {
    return getLtype(m_data, name);
  }
  const CLayer* own(const CLayer&, const zim::WString& name) const {
    return getLayer(m_data, name);
  }
  const CBlock* own(const CBlock&, const zim::WString& name) const {
    return m_data.getBlockTable().get(name);
  }

  static bool isFixed(const CStyle& style) { return style.isStandard(); }
  static bool isFixed(const CLtype& ltype) {
    return ltype.isContinuous() || ltype.isByLayer() || ltype.isByBlock();
  }
  bool isFixed(const CLayer& layer) const { return &layer == m_file.getLayerTable().getLayer0(); }
  static bool isFixed(const CBlock&) { return false; }

  template <class Item>
  zim::WString targetOf(const Item& item) const {
    return isFixed(item) ? item.getName() : m_policy.prefix + item.getName();
  }

  // Items that will have equal names count as the same, and these names are taken.
  template <class Item>
  void pairUp(ItemTable table, const std::vector<const Item*>& items,
              vek0::detail::ItemIds<Item>& ids) {
    for (const Item* item : items) {
      const zim::WString target = targetOf(*item);
      m_taken[static_cast<int>(table)].try_emplace(target, 0);
      if (m_policy.prefix.empty()) continue;
      if (const Item* known = own(*item, target)) ids.rename(*known, *item);
    }
  }

  // -- what differs

  bool isSpare(const CStyle& style) const {
    return style.isStandard() && style.getEntities() == 0 && style.getDashes() == 0;
  }
  bool isSpare(const CLtype& ltype) const { return isFixed(ltype); }
  bool isSpare(const CLayer& layer) const {
    return m_undeclared.contains(layer.getName()) || (isFixed(layer) && layer.getEntities() == 0);
  }

  template <class Item>
  Changes changesOf(const Item& known, const Item& item) {
    return isSpare(item) ? Changes() : vek0::detail::changesBetween(known, item, m_ids);
  }
  Changes changesOf(const CBlock& known, const CBlock& block) {
    if (isSameContent(known, block)) return {};
    return {{"content", {}, {}}};
  }

  bool isSameContent(const CBlock& known, const CBlock& block) {
    constexpr double share = 1e-9;
    constexpr std::size_t least = 1000000, perEnt = 16;
    vek0::detail::Closeness closeness;
    if (const RECT_3D& box = known.getBdry(); box.validRegion()) {
      const PNT_3D diagonal = box.max - box.min;
      const double size = vek0::detail::length(diagonal);
      if (size > 0 && std::isfinite(size)) closeness.size = size;
    }
    closeness.tolerance = share * closeness.size;
    return EntComparer(closeness, m_ids, least + perEnt * known.size()).isSameContent(known, block);
  }

  // -- what refers to renamed items

  bool isRenamed(const void* item) const { return m_renamed.contains(item); }
  VALUE_CHANGE renamed(const char* what, ItemTable table, const CNamedItem& item) const {
    return {what, item.getName(), m_plan.nameFor(table, item.getName())};
  }

  Changes followed(const CStyle&) const { return {}; }
  Changes followed(const CLtype& ltype) const {
    for (int i = 0; i < ltype.getNoDashes(); ++i) {
      const TEXT_3D* text = ltype[i]->GetText();
      if (text && isRenamed(text->getStyle()))
        return {renamed("style", ItemTable::Styles, *text->getStyle())};
    }
    return {};
  }
  Changes followed(const CLayer& layer) const {
    if (!isRenamed(layer.getLtype())) return {};
    return {renamed("linetype", ItemTable::Linetypes, *layer.getLtype())};
  }
  Changes followed(const CBlock& block) const {
    if (!refersToRenamed(block)) return {};
    return {{"content", {}, {}}};
  }

  bool refersToRenamed(const CEnt& ent) const {
    if (isRenamed(ent.getLayer()) || isRenamed(ent.getLtype()) || isRenamed(ent.getStyle()))
      return true;
    const CEntInsertBase* insert = ent.getEntInsert();
    if (insert && isRenamed(insert->getBlock())) return true;
    for (unsigned i = 0; insert && i < insert->GetNoAttribs(); ++i)
      if (refersToRenamed(*insert->GetAttrib(i))) return true;
    return false;
  }
  bool refersToRenamed(const CBlock& block) const {
    for (unsigned i = 0; i < block.size(); ++i)
      if (refersToRenamed(*block[i])) return true;
    return false;
  }

  // -- what becomes of it

  template <class Item>
  void decide(ItemTable table, const Item& item) {
    const zim::WString& name = item.getName();
    const zim::WString target = targetOf(item);
    const Item* known = own(item, target);
    Changes changes = known ? changesOf(*known, item) : Changes();
    const bool renames = m_policy.onConflict == ImportConflict::Rename;
    if (known && changes.empty() && renames && !isFixed(item)) changes = followed(item);
    using Fate = IMPORT_ITEM::Fate;
    if (changes.empty()) {
      if (target != name) m_plan.add({table, Fate::Renamed, name, target, {}});
    } else if (renames && std::is_same_v<Item, CLayer> && isFixed(item)) {
      // Layer "0" means the layer of the insert; no other layer does.
      m_plan.add({table, Fate::Kept, name, target, std::move(changes)});
    } else if (renames) {
      m_renamed.insert(&item);
      m_plan.add({table, Fate::Renamed, name, freeName(table, item, target), std::move(changes)});
    } else {
      const bool isBase = m_policy.onConflict == ImportConflict::Base;
      m_plan.add({table, isBase ? Fate::Kept : Fate::Replaces, name, target, std::move(changes)});
    }
  }

  template <class Item>
  zim::WString freeName(ItemTable table, const Item& item, const zim::WString& target) {
    NameMap<int>& taken = m_taken[static_cast<int>(table)];
    long& number = m_numbers[static_cast<int>(table)][target];
    zim::WString name;
    do {
      name = target + u"_" + zim::WString::fromUtf8(std::to_string(++number));
    } while (own(item, name) || !taken.try_emplace(name, 0).second);
    return name;
  }

  // Each after those that it inserts. Private ones are always imported, but refer to others.
  void decideBlocks() {
    vek0::detail::CollectBlocks collected;
    m_file.getBlockTable().getBlockGraph().VisitUndep(collected);
    const std::unordered_set<const CBlock*> named(m_lists.blocks.after.begin(),
                                                  m_lists.blocks.after.end());
    for (const CBlock* block : collected.blocks) {
      if (named.contains(block))
        decide(ItemTable::Blocks, *block);
      else if (!m_renamed.empty() && refersToRenamed(*block))
        m_renamed.insert(block);
    }
  }

  CImportPlan& m_plan;
  const CData &m_data, &m_file;
  const IMPORT_POLICY& m_policy;
  TableLists m_lists;
  SharedIds m_ids;
  NameMap<int> m_undeclared;
  NameMap<int> m_taken[kTables];
  NameMap<long> m_numbers[kTables];
  std::unordered_set<const void*> m_renamed;
};

CImportPlan::CImportPlan(const CData& data, const CData& file, const IMPORT_POLICY& policy,
                         const CFileReport* reading) {
  Planner(*this, data, file, policy, reading).run();
}

void CImportPlan::add(IMPORT_ITEM item) {
  m_byName[static_cast<int>(item.table)].try_emplace(item.name, m_items.size());
  m_items.push_back(std::move(item));
}

bool CImportPlan::hasConflicts() const {
  return std::any_of(m_items.begin(), m_items.end(),
                     [](const IMPORT_ITEM& item) { return item.isConflict(); });
}

const IMPORT_ITEM* CImportPlan::find(ItemTable table, const zim::WString& name) const {
  const Index& index = m_byName[static_cast<int>(table)];
  const auto found = index.find(name);
  return found == index.end() ? nullptr : &m_items[found->second];
}

const zim::WString& CImportPlan::nameFor(ItemTable table, const zim::WString& name) const {
  const IMPORT_ITEM* item = find(table, name);
  return item ? item->newName : name;
}

bool CImportPlan::replaces(ItemTable table, const zim::WString& name) const {
  const IMPORT_ITEM* item = find(table, name);
  return item && item->fate == IMPORT_ITEM::Fate::Replaces;
}

void CImportPlan::addTo(CFileReport& report) const {
  for (const IMPORT_ITEM& item : m_items) {
    const auto table = static_cast<std::size_t>(item.table);
    if (item.fate == IMPORT_ITEM::Fate::Renamed)
      report.add(kRenamed[table], 0, item.name + u" -> " + item.newName);
    else
      report.add(item.fate == IMPORT_ITEM::Fate::Kept ? kKept[table] : kReplaced[table], 0,
                 item.newName);
  }
}
