// Drawings hold entities in drawing order, so the order of the file is changed once, at the end,
// and everything that copies, saves or lists entities follows it.
#include "dxf/in/parse/draworder.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <limits>
#include <unordered_map>

#include "dxf/layoutname.h"
#include "files/number.h"
#include "vek0core/entities/blocks/block.h"

namespace vek0::detail {
namespace {

constexpr auto kFirst = [](const auto& a, const auto& b) { return a.first < b.first; };

// The last element with that key.
template <class Pairs, class Key>
auto findLast(const Pairs& pairs, const Key& key) {
  const auto isLess = [](const Key& a, const auto& b) { return std::less<Key>()(a, b.first); };
  const auto next = std::upper_bound(pairs.begin(), pairs.end(), key, isLess);
  const bool isFound = next != pairs.begin() && std::prev(next)->first == key;
  return isFound ? std::prev(next) : pairs.end();
}

}  // namespace

// Entities that are imported get new handles, which may be handles of the file by accident.
void DrawOrder::note(const CEnt& ent, vek0::Handle handle) {
  if (handle == 0) return;
  const bool isKept = ent.GetHandle() == handle && m_in.semantor.shouldRespectHandles();
  if (!isKept) m_handles.emplace_back(&ent, static_cast<Key>(handle));
}

// The last handle of an owner before the entries is that of the block record.
void DrawOrder::readTable() {
  const long line = m_in.lexer.getLine();
  Key owner = 0, ent = 0;
  std::vector<Entry> entries;
  bool isWhole = true;
  for (long code = m_in.read(); code != 0 && !m_in.failed(); code = m_in.read()) {
    const Key value = parseHex(m_in.lexer.getBytes());
    const bool isBefore = ent == 0 && entries.empty();
    if (code == 330 && isBefore) owner = value;
    if (code == 331) {
      isWhole = isWhole && ent == 0;
      ent = value;
    }
    // A handle before the first entry is the table's own.
    if (code != 5 || isBefore) continue;
    if (ent != 0) entries.emplace_back(ent, value);
    isWhole = isWhole && ent != 0;
    ent = 0;
  }
  if (!isWhole || ent != 0) m_in.noteAt(line, ReportCode::DrawOrderDropped, u"331");
  if (entries.empty()) return;
  Table& table = m_tables[owner];
  if (table.entries.empty()) table.line = line;
  table.entries.insert(table.entries.end(), entries.begin(), entries.end());
}

void DrawOrder::settle() {
  std::vector<std::pair<CBlock*, Table>> tables;
  std::unordered_map<CBlock*, std::size_t> places;
  for (auto& [owner, table] : m_tables) {
    CBlock* block = nullptr;
    if (!findBlock(owner, table.line, block)) continue;
    // Several records may name one block.
    const auto [place, isNew] = places.try_emplace(block, tables.size());
    if (isNew) tables.emplace_back(block, Table{{}, table.line});
    std::vector<Entry>& entries = tables[place->second].second.entries;
    entries.insert(entries.end(), table.entries.begin(), table.entries.end());
  }
  std::stable_sort(m_handles.begin(), m_handles.end(), [](const auto& a, const auto& b) {
    return std::less<const CEnt*>()(a.first, b.first);
  });
  for (auto& sorted : tables) {
    sortEntries(sorted.second);
    m_in.semantor.reorder(
        sorted.first, [&](std::vector<CEnt*>& entities) { return sort(entities, sorted.second); });
  }
}

// Null for model space. False if there is nothing to sort.
bool DrawOrder::findBlock(Key owner, long line, CBlock*& block) const {
  const zim::WString name = m_names.blockName(owner);
  if (name.empty()) {
    m_in.noteAt(line, ReportCode::DrawOrderDropped, u"330");
    return false;
  }
  const bool isModel = isLayoutBlock(name, kModelBlock);
  const bool isCurrent =
      isLayoutBlock(name, kPaperBlock) && name.view().size() == 1 + kPaperBlock.size();
  if (m_options.policy.paperSpace ? isCurrent : isModel) return true;
  block = isModel ? nullptr : m_in.semantor.findBlock(name);
  // The content of references is not in the file.
  return block && !block->isXRef();
}

// Of contradicting entries, the last holds.
void DrawOrder::sortEntries(Table& table) const {
  std::stable_sort(table.entries.begin(), table.entries.end(), kFirst);
  const auto contradict = [](const Entry& a, const Entry& b) {
    return a.first == b.first && a.second != b.second;
  };
  if (std::adjacent_find(table.entries.begin(), table.entries.end(), contradict) !=
      table.entries.end())
    m_in.noteAt(table.line, ReportCode::DrawOrderDropped, u"5");
}

// Entities without a handle, such as the parts that approximate an entity, follow the one before.
bool DrawOrder::sort(std::vector<CEnt*>& entities, const Table& table) const {
  constexpr Key last = std::numeric_limits<Key>::max();
  std::vector<std::pair<Key, CEnt*>> placed;
  placed.reserve(entities.size());
  Key place = 0;
  for (CEnt* ent : entities) {
    if (const Key handle = handleOf(*ent)) {
      const auto entry = findLast(table.entries, handle);
      place = entry == table.entries.end() ? handle : entry->second;
      // Other programs draw these on top of everything.
      if (place == 0) place = last;
    }
    placed.emplace_back(place, ent);
  }
  if (std::is_sorted(placed.begin(), placed.end(), kFirst)) return false;
  std::stable_sort(placed.begin(), placed.end(), kFirst);
  std::transform(placed.begin(), placed.end(), entities.begin(),
                 [](const auto& entry) { return entry.second; });
  return true;
}

DrawOrder::Key DrawOrder::handleOf(const CEnt& ent) const {
  const auto known = findLast(m_handles, &ent);
  if (known != m_handles.end()) return known->second;
  // The others were in the drawing before the import.
  return m_in.semantor.shouldRespectHandles() ? static_cast<Key>(ent.GetHandle()) : 0;
}

}  // namespace vek0::detail
