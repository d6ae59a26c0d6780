#include "dxf/keep/renames.h"

#include <algorithm>
#include <unordered_set>
#include <vector>

#include "compare/heldents.h"
#include "dxf/keep/fingerprint.h"
#include "vek0core/drawing/data.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blocktable.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/files/textcodec.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/ltype.h"
#include "vek0core/tables/style.h"
#include "zim0lang/casefold.h"

namespace vek0::detail {
namespace {

// Names in the drawing: those that only one of the two has may be the same item.
template <class Item>
using Items = std::unordered_map<std::string, Item*>;

template <class Iterator, class... Args>
auto itemsOf(const CData& data, Args... args) {
  Items<std::remove_pointer_t<decltype(*std::declval<Iterator&>())>> items;
  for (Iterator it(data, args...); *it; ++it) items.emplace(nameKey((*it)->getName().view()), *it);
  return items;
}

// Blocks with a name of their own.
Items<CBlock> blocksIn(const CData& data) {
  Items<CBlock> items;
  const CBlockTable& table = data.getBlockTable();
  for (int i = 0; i < static_cast<int>(table.size()); ++i)
    if (!table[i]->isXRef() && table[i]->getName()[0] != u'*')
      items.emplace(nameKey(table[i]->getName().view()), table[i]);
  return items;
}

// The only new item to which all entities of a lost item have gone, for each.
template <class Item>
class Moves {
 public:
  Moves(Items<Item> before, Items<Item> after) {
    for (const auto& [key, item] : before)
      if (!after.contains(key)) m_lost.insert(item);
    for (const auto& [key, item] : after)
      if (!before.contains(key)) m_new.insert(item);
  }
  bool any() const { return !m_lost.empty() && !m_new.empty(); }
  void note(Item* before, Item* after) {
    if (!m_lost.contains(before)) return;
    const auto [found, isFirst] = m_to.emplace(before, m_new.contains(after) ? after : nullptr);
    if (!isFirst && found->second != after) found->second = nullptr;
  }
  // What is left when two items became one.
  std::vector<std::pair<Item*, Item*>> found() const {
    std::unordered_map<Item*, int> uses;
    for (const auto& [from, to] : m_to) ++uses[to];
    std::vector<std::pair<Item*, Item*>> pairs;
    for (const auto& [from, to] : m_to)
      if (to && uses[to] == 1) pairs.emplace_back(from, to);
    return pairs;
  }

 private:
  std::unordered_set<Item*> m_lost, m_new;
  std::unordered_map<Item*, Item*> m_to;
};

CBlock* shownBy(const CEnt& ent) {
  const CEntInsertBase* insert = ent.getEntInsert();
  return insert ? insert->getBlock() : nullptr;
}

// Whether two items are equal. The content of blocks is compared entity by entity.
template <class Item>
bool isEqual(const Item& a, const Item& b) {
  return printOf(a) == printOf(b);
}
bool isEqual(const CBlock&, const CBlock&) { return true; }

}  // namespace

std::string nameKey(std::u16string_view name) {
  std::u16string key(name);
  for (char16_t& unit : key) unit = zim::foldCase(unit);
  return zim::WString(key).toUtf8();
}

bool Renames::empty() const {
  return std::all_of(m_names.begin(), m_names.end(),
                     [](const auto& names) { return names.empty(); });
}

template <class Item>
void Renames::take(Table table, Item& item, const Item& renamed) {
  const zim::WString was = item.getName();
  item.setName(renamed.getName());
  if (isEqual(item, renamed))
    m_names[table].emplace(nameKey(was.view()), Name{renamed.getName()});
  else
    item.setName(was);
}

void Renames::find(CData& pristine, const CData& edited) {
  const auto between = [&](const auto& items) { return Moves(items(pristine), items(edited)); };
  auto layers = between([](const CData& d) { return itemsOf<CData::CLayerIterator>(d, false); });
  auto ltypes =
      between([](const CData& d) { return itemsOf<CData::CLtypeIterator>(d, false, false); });
  auto styles = between([](const CData& d) { return itemsOf<CData::CStyleIterator>(d, false); });
  auto blocks = between(blocksIn);
  if (!layers.any() && !ltypes.any() && !styles.any() && !blocks.any()) return;
  const HeldEnts before(pristine), after(edited);
  for (const HeldEnt& was : before.all()) {
    const HeldEnt* is = after.find(was.ent->GetHandle());
    if (!is) continue;
    layers.note(was.ent->getLayer(), is->ent->getLayer());
    ltypes.note(was.ent->getLtype(), is->ent->getLtype());
    styles.note(was.ent->getStyle(), is->ent->getStyle());
    blocks.note(shownBy(*was.ent), shownBy(*is->ent));
    blocks.note(const_cast<CBlock*>(was.container.block), const_cast<CBlock*>(is->container.block));
  }
  for (const auto& [from, to] : layers.found()) take(Layers, *from, *to);
  for (const auto& [from, to] : ltypes.found()) take(Ltypes, *from, *to);
  for (const auto& [from, to] : styles.found()) take(Styles, *from, *to);
  for (const auto& [from, to] : blocks.found()) take(Blocks, *from, *to);
}

const zim::WString* Renames::nameOf(Table table, const std::string& key) const {
  const auto found = m_names[table].find(key);
  return found == m_names[table].end() ? nullptr : &found->second.name;
}

void Renames::encode(const CTextDecoder& decoder,
                     const std::function<std::string(std::u16string_view)>& encoded) {
  m_decoder = &decoder;
  for (auto& names : m_names)
    for (auto& [key, name] : names) name.encoded = encoded(name.name.view());
}

namespace {

// The table that a pair of a record names an item of; `kTables` for none.
Renames::Table namedBy(const SourceRecord& record, SourceSection section, long code) {
  constexpr long layerOfData = 1003;
  const bool isGraphic = section == SourceSection::Entities || section == SourceSection::Blocks;
  const bool isPlain = isGraphic || section == SourceSection::Header;
  const bool isLayerList = record.is("LAYER_FILTER") || record.is("LAYER_INDEX");
  if (code == layerOfData || (code == 8 && (isPlain || isLayerList))) return Renames::Layers;
  if (code == 6 && (isPlain || record.is("LAYER"))) return Renames::Ltypes;
  if (code == 7 && isPlain) return Renames::Styles;
  if (record.is("BLOCK") && (code == 2 || code == 3)) return Renames::Blocks;
  if (code != 2) return Renames::kTables;
  if (record.is("LAYER")) return Renames::Layers;
  if (record.is("LTYPE")) return Renames::Ltypes;
  if (record.is("STYLE")) return Renames::Styles;
  const bool showsBlock = record.is("INSERT") || record.is("MINSERT") ||
                          record.is("BLOCK_RECORD") || record.is("DIMENSION");
  return showsBlock ? Renames::Blocks : Renames::kTables;
}

}  // namespace

bool Renames::apply(SourceRecord& record, SourceSection section) const {
  bool isChanged = false;
  for (std::size_t i = 1; i < record.pairs.size(); ++i) {
    const SourcePair& pair = record.pairs[i];
    const Table table = namedBy(record, section, pair.code);
    if (table == kTables || m_names[table].empty()) continue;
    CTextDecoder decoder = *m_decoder;
    const auto found = m_names[table].find(nameKey(decoder.decodeText(pair.value).view()));
    if (found == m_names[table].end()) continue;
    record.setText(i, found->second.encoded);
    isChanged = true;
  }
  return isChanged;
}

}  // namespace vek0::detail
