#include "dxf/keep/itemedits.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include "dxf/keep/fingerprint.h"
#include "dxf/keep/forgetting.h"
#include "dxf/keep/newrecords.h"
#include "dxf/keep/recorddiff.h"
#include "dxf/keep/recordtransform.h"
#include "dxf/out/itemlists.h"
#include "vek0core/drawing/data.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blocktable.h"
#include "vek0core/entities/blocks/blockxref.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/ltype.h"
#include "vek0core/tables/style.h"

namespace vek0::detail {
namespace {

constexpr long kExternalBits = 4;

std::vector<const CLayer*> layersIn(const CData& data) {
  std::vector<const CLayer*> items;
  for (CData::CLayerIterator it(data, false); *it; ++it) items.push_back(*it);
  return items;
}

std::vector<const CLtype*> ltypesIn(const CData& data) {
  std::vector<const CLtype*> items;
  for (CData::CLtypeIterator it(data, false, false); *it; ++it) items.push_back(*it);
  return items;
}

std::vector<const CStyle*> stylesIn(const CData& data) {
  std::vector<const CStyle*> items;
  for (CData::CStyleIterator it(data, false); *it; ++it) items.push_back(*it);
  return items;
}

SourceRecord written(RecordWriter& writer, const CLayer* layer) { return writer.write(*layer); }
SourceRecord written(RecordWriter& writer, const CLtype* ltype) { return writer.write(*ltype); }
SourceRecord written(RecordWriter& writer, const CStyle* style) {
  return writer.write(ListedStyle{style, style->getName(), style->getFlags()});
}

std::string nameIn(RecordWriter& writer, const CNamedItem* item) {
  return writer.encoded(item->getName());
}

template <class Item>
std::string keyOf(const Item* item) {
  return nameKey(item->getName().view());
}

constexpr std::pair<std::string_view, Renames::Table> kRenamed[] = {
    {"LAYER", Renames::Layers}, {"LTYPE", Renames::Ltypes},        {"STYLE", Renames::Styles},
    {"BLOCK", Renames::Blocks}, {"BLOCK_RECORD", Renames::Blocks},
};

}  // namespace

ItemEdits::ItemEdits(EditContext& context) : m_on(context) {
  const SourceIndex& index = m_on.index;
  for (std::size_t i = 0; i < index.entries().size(); ++i) {
    const SourceEntry& entry = index[i];
    if (index.is(i, "BLOCK")) m_blocks.emplace(currentKey("BLOCK", index.nameOf(i)), i);
    if (entry.section != SourceSection::Tables || index.is(i, "SECTION")) continue;
    const std::string name = upperCase(index.nameOf(entry.group));
    Table& table = m_tables[name];
    if (index.is(i, "TABLE"))
      table.begin = i;
    else if (index.is(i, "ENDTAB"))
      table.end = i;
    else
      table.records.emplace(currentKey(name, index.nameOf(i)), i);
  }
}

std::string ItemEdits::keyOfText(std::string_view text) const {
  return detail::keyOfText(m_on, text);
}

// The key of the name that an item of the source has today.
std::string ItemEdits::currentKey(std::string_view table, std::string_view name) const {
  std::string key = keyOfText(name);
  for (const auto& [known, number] : kRenamed) {
    const zim::WString* renamed = table == known ? m_on.renames.nameOf(number, key) : nullptr;
    if (renamed) return nameKey(renamed->view());
  }
  return key;
}

std::size_t ItemEdits::find(const std::string& table, std::string_view name) const {
  return findKey(table, currentKey(table, name));
}

std::size_t ItemEdits::findKey(const std::string& table, const std::string& key) const {
  const auto known = m_tables.find(table);
  if (known == m_tables.end()) return SourceIndex::kNone;
  const auto found = known->second.records.find(key);
  return found == known->second.records.end() ? SourceIndex::kNone : found->second;
}

std::size_t ItemEdits::findBlock(std::string_view name) const {
  const auto found = m_blocks.find(currentKey("BLOCK", name));
  return found == m_blocks.end() ? SourceIndex::kNone : found->second;
}

void ItemEdits::plan() {
  const auto isSpelled = [this](std::size_t entry, const auto* item) {
    return entry != SourceIndex::kNone && keyOfText(m_on.index.nameOf(entry)) == keyOf(item);
  };
  for (const CLayer* layer : layersIn(m_on.data))
    if (const std::size_t entry = findKey("LAYER", keyOf(layer)); isSpelled(entry, layer))
      m_on.after->spell(layer, m_on.index.nameOf(entry));
  for (const CLtype* ltype : ltypesIn(m_on.data))
    if (const std::size_t entry = findKey("LTYPE", keyOf(ltype)); isSpelled(entry, ltype))
      m_on.after->spell(ltype, m_on.index.nameOf(entry));
  // Texts of linetypes refer to their styles by handle.
  planTable("STYLE", stylesIn(*m_on.pristine), stylesIn(m_on.data));
  planTable("LTYPE", ltypesIn(*m_on.pristine), ltypesIn(m_on.data));
  planTable("LAYER", layersIn(*m_on.pristine), layersIn(m_on.data));
  planBlocks();
  if (!m_gone.empty()) removeUnused();
}

template <class Item>
SourceRecord ItemEdits::recordOf(RecordWriter& writer, const Item* item) {
  return written(writer, item);
}

// The writer has handles of its own.
SourceRecord ItemEdits::recordOf(RecordWriter& writer, const CLtype* ltype) {
  constexpr long styleHandle = 340;
  SourceRecord record = written(writer, ltype);
  std::size_t at = 0;
  for (int i = 0; i < ltype->getNoDashes(); ++i) {
    const TEXT_3D* text = (*ltype)[i]->GetText();
    if (!text || !text->getStyle()) continue;
    while (at < record.pairs.size() && record.pairs[at].code != styleHandle) ++at;
    if (at < record.pairs.size()) record.setText(at++, hexOf(handleOf(*text->getStyle())));
  }
  return record;
}

// Of the style's record, which is added if there is none.
Handle ItemEdits::handleOf(const CStyle& style) {
  const std::string key = keyOf(&style);
  const auto known = m_newStyles.find(key);
  if (known != m_newStyles.end()) return known->second;
  const std::size_t entry = findKey("STYLE", key);
  if (entry != SourceIndex::kNone) return m_on.index[entry].handle;
  add("STYLE", recordOf(*m_on.after, &style));
  return m_newStyles[key];
}

template <class Item>
void ItemEdits::planTable(const std::string& table, const std::vector<Item>& before,
                          const std::vector<Item>& after) {
  std::unordered_map<std::string, Item> was;
  for (const Item& item : before) was.emplace(keyOf(item), item);
  for (const Item& item : after) {
    const auto known = was.find(keyOf(item));
    if (known == was.end()) {
      add(table, recordOf(*m_on.after, item));
      continue;
    }
    const Item old = known->second;
    was.erase(known);
    if (printOf(*old) == printOf(*item)) continue;
    const std::size_t entry = findKey(table, keyOf(old));
    if (entry == SourceIndex::kNone)
      add(table, recordOf(*m_on.after, item));
    else
      patchEntry(m_on.edits.change(entry), recordOf(*m_on.before, old),
                 recordOf(*m_on.after, item));
  }
  for (const auto& [name, item] : was) {
    const std::size_t entry = findKey(table, name);
    if (entry != SourceIndex::kNone) leave(table, entry);
  }
}

void ItemEdits::add(const std::string& name, SourceRecord record) {
  Table& table = m_tables[name];
  const std::string item = record.pairs[std::min(record.find(2), record.pairs.size() - 1)].value;
  if (!table.records.emplace(keyOfText(item), table.end).second) return;
  const Handle handle = m_on.version.hasHandles ? m_on.edits.takeHandle() : 0;
  setFrame(record, handle, table.begin == SourceIndex::kNone ? 0 : m_on.index[table.begin].handle);
  if (name == "STYLE") m_newStyles.emplace(keyOfText(item), handle);
  ++table.change;
  if (table.end == SourceIndex::kNone)
    table.added.push_back(std::move(record));
  else
    m_on.edits.addBefore(table.end, record);
}

// Every program knows layer 0, the fixed linetypes and the standard style.
void ItemEdits::need(const CEnt& ent, const CEnt* before) {
  const CLayer* layer = ent.getLayer();
  const auto isNew = [](const auto* item, const auto* old) {
    return item && !(old && keyOf(old) == keyOf(item));
  };
  const bool isLayer0 = layer == &m_on.data.getLayer0() || layer == &m_on.pristine->getLayer0();
  if (!isLayer0 && isNew(layer, before ? before->getLayer() : nullptr)) needItem("LAYER", layer);
  const CLtype* ltype = ent.getLtype();
  const bool isFixed = ltype && (ltype->isByLayer() || ltype->isByBlock() || ltype->isContinuous());
  if (!isFixed && isNew(ltype, before ? before->getLtype() : nullptr)) needItem("LTYPE", ltype);
  const CStyle* style = ent.getStyle();
  const bool isStandard = style && style->isStandard();
  if (!isStandard && isNew(style, before ? before->getStyle() : nullptr)) needItem("STYLE", style);
}

template <class Item>
void ItemEdits::needItem(const std::string& table, const Item& item) {
  if (findKey(table, keyOf(item)) == SourceIndex::kNone) add(table, recordOf(*m_on.after, item));
}

void ItemEdits::finish() {
  constexpr long number = 70;
  for (const auto& [name, table] : m_tables) {
    if (table.change == 0 || table.begin == SourceIndex::kNone) continue;
    SourceRecord& record = m_on.edits.change(table.begin);
    const std::size_t at = record.find(number);
    if (at != SourceRecord::kNone) record.setInteger(at, record.integerOf(number) + table.change);
  }
  // A file of nothing but entities has no place for anything else.
  if (m_on.index.isFragment()) {
    for (const SourceRecord& record : m_newBlocks)
      if (record.is("BLOCK")) m_on.note(ReportCode::BlockDropped, {});
    return;
  }
  addTables();
  if (m_newBlocks.empty()) return;
  const std::size_t end = endOf(SourceSection::Blocks);
  const std::size_t place = end != SourceIndex::kNone ? end : placeOf(SourceSection::Blocks);
  const auto add = [&](const SourceRecord& record) { m_on.edits.addBefore(place, record); };
  if (end == SourceIndex::kNone) add({{pairOf(0, "SECTION"), pairOf(2, "BLOCKS")}});
  for (const SourceRecord& record : m_newBlocks) add(record);
  if (end == SourceIndex::kNone) add({{pairOf(0, "ENDSEC")}});
}

// Tables that the file does not have, in the order that programs expect.
void ItemEdits::addTables() {
  const std::size_t end = endOf(SourceSection::Tables);
  const std::size_t place = end != SourceIndex::kNone ? end : placeOf(SourceSection::Tables);
  bool isBegun = end != SourceIndex::kNone;
  const auto add = [&](const SourceRecord& record) { m_on.edits.addBefore(place, record); };
  for (const char* name : {"LTYPE", "LAYER", "STYLE"}) {
    Table& table = m_tables[name];
    if (table.added.empty()) continue;
    if (!isBegun) add({{pairOf(0, "SECTION"), pairOf(2, "TABLES")}});
    isBegun = true;
    SourceRecord head{{pairOf(0, "TABLE"), pairOf(2, name)}};
    const Handle handle = m_on.version.isOld ? 0 : m_on.edits.takeHandle();
    if (handle != 0) head.pairs.push_back(pairOf(5, hexOf(handle)));
    if (handle != 0) head.pairs.push_back(pairOf(100, "AcDbSymbolTable"));
    head.pairs.push_back(pairOf(70, std::to_string(table.added.size())));
    add(head);
    for (SourceRecord& record : table.added) {
      if (const std::size_t owner = record.find(330); owner != SourceRecord::kNone)
        record.setText(owner, hexOf(handle));
      add(record);
    }
    add({{pairOf(0, "ENDTAB")}});
  }
  if (isBegun && end == SourceIndex::kNone) add({{pairOf(0, "ENDSEC")}});
}

std::size_t ItemEdits::endOf(SourceSection section) const {
  const SourceIndex& index = m_on.index;
  for (std::size_t i = index.entries().size(); i-- > 0;)
    if (index[i].section == section && index.is(i, "ENDSEC")) return i;
  return SourceIndex::kNone;
}

// Where a section comes that the file does not have: before the next one.
std::size_t ItemEdits::placeOf(SourceSection section) const {
  const SourceIndex& index = m_on.index;
  for (std::size_t i = 0; i < index.entries().size(); ++i)
    if (index[i].section > section && index[i].section != SourceSection::Other) return i;
  return 0;
}

// -- blocks --------------------------------------------------------------------

void ItemEdits::planBlocks() {
  const auto isOfFile = [this](const CBlock* block) {
    return !block->isOfRecord() && (m_on.version.isOld || !isHatchName(block->getName()));
  };
  std::unordered_map<std::string, const CBlock*> was;
  for (const CBlock* block : blocksOf(*m_on.pristine)) was.emplace(keyOf(block), block);
  for (const CBlockXRef* xref : xrefsOf(*m_on.pristine)) was.emplace(keyOf(xref), xref);
  std::vector<const CBlock*> is = blocksOf(m_on.data);
  for (const CBlockXRef* xref : xrefsOf(m_on.data)) is.push_back(xref);
  for (const CBlock* block : is) {
    const auto known = was.find(keyOf(block));
    if (known == was.end()) {
      if (isOfFile(block)) addBlock(*block);
      continue;
    }
    if (block->isXRef() || known->second->isXRef()) patchXRef(*known->second, *block);
    was.erase(known);
  }
  for (const auto& [name, block] : was) {
    const auto entry = m_blocks.find(name);
    if (entry != m_blocks.end()) leave("BLOCK", entry->second);
  }
}

std::size_t ItemEdits::endOfBlock(std::size_t entry) const {
  std::size_t end = entry + 1;
  while (end < m_on.index.entries().size() && m_on.index[end].group == entry) {
    if (m_on.index.is(end, "ENDBLK")) return end;
    ++end;
  }
  return end;
}

// The content follows as that of any other block.
void ItemEdits::addBlock(const CBlock& block) {
  const std::string name = nameIn(*m_on.after, &block);
  const bool isNew = !m_on.version.isOld;
  const Handle owner = isNew ? m_on.edits.takeHandle() : 0;
  if (isNew) addBlockRecord(name, owner);
  const auto head = [&](const char* kind, const char* subclass) {
    SourceRecord record;
    record.pairs.push_back(pairOf(0, kind));
    if (m_on.version.hasHandles) record.pairs.push_back(pairOf(5, hexOf(m_on.edits.takeHandle())));
    if (m_on.version.hasOwners) record.pairs.push_back(pairOf(330, hexOf(owner)));
    if (isNew) record.pairs.push_back(pairOf(100, "AcDbEntity"));
    record.pairs.push_back(pairOf(8, "0"));
    if (isNew) record.pairs.push_back(pairOf(100, subclass));
    return record;
  };
  SourceRecord begin = head("BLOCK", "AcDbBlockBegin");
  constexpr long fileBits = 0x7F;
  long flags = block.getFlags() & fileBits;
  if (block.isXRef()) flags |= kExternalBits;
  begin.pairs.push_back(pairOf(2, name));
  begin.pairs.push_back(pairOf(70, std::to_string(flags)));
  const PNT_3D base = block.isXRef() ? block.getPnt() : PNT_3D(0, 0, 0);
  const double xyz[] = {base.x, base.y, base.z};
  for (long axis = 0; axis < 3; ++axis)
    begin.pairs.push_back(pairOf(10 + 10 * axis, shortestText(xyz[axis])));
  begin.pairs.push_back(pairOf(3, name));
  const auto* xref = block.isXRef() ? static_cast<const CBlockXRef*>(&block) : nullptr;
  begin.pairs.push_back(pairOf(1, xref ? m_on.after->encoded(xref->getPath()) : std::string()));
  m_newBlocks.push_back(std::move(begin));
  for (unsigned i = 0; !xref && i < block.size(); ++i) {
    need(*block[i]);
    std::vector<SourceRecord> records = m_on.after->write(*block[i], false);
    setFrames(records, m_on.handleFor(*block[i]), owner, m_on.edits);
    for (SourceRecord& record : records) m_newBlocks.push_back(std::move(record));
  }
  m_newBlocks.push_back(head("ENDBLK", "AcDbBlockEnd"));
}

std::string ItemEdits::copyBlock(const CBlock& block, const std::vector<std::size_t>& contents,
                                 const SpaceMap& map) {
  const auto known = m_blocks.find(keyOf(&block));
  if (known == m_blocks.end()) return {};
  const std::size_t source = known->second;
  std::string name;
  do name = "*D" + std::to_string(++m_lastCopy);
  while (!m_blocks.emplace(keyOfText(name), source).second);
  const Handle owner = m_on.version.isOld ? 0 : m_on.edits.takeHandle();
  if (owner != 0) addBlockRecord(name, owner);
  const auto add = [&](std::vector<SourceRecord> records) {
    for (SourceRecord& record : records) detach(record);
    setFrames(records, m_on.edits.takeHandle(), owner, m_on.edits);
    std::move(records.begin(), records.end(), std::back_inserter(m_newBlocks));
  };
  SourceRecord begin = m_on.edits.read(source);
  for (const long code : {2, 3})
    if (const std::size_t at = begin.find(code); at != SourceRecord::kNone) begin.setText(at, name);
  add({std::move(begin)});
  for (const std::size_t entry : contents) {
    std::vector<SourceRecord> records;
    for (std::size_t i = entry; i < m_on.index.afterEntity(entry); ++i)
      records.push_back(m_on.edits.read(i));
    transformRecords(records, map);
    add(std::move(records));
  }
  const std::size_t end = endOfBlock(source);
  if (m_on.index.is(end, "ENDBLK")) add({m_on.edits.read(end)});
  return name;
}

void ItemEdits::drop(const CBlock& block) {
  const auto known = m_blocks.find(keyOf(&block));
  if (known != m_blocks.end()) leave("BLOCK", known->second);
}

void ItemEdits::addBlockRecord(const std::string& name, Handle handle) {
  Table& table = m_tables["BLOCK_RECORD"];
  if (table.end == SourceIndex::kNone) return;
  SourceRecord record;
  record.pairs = {pairOf(0, "BLOCK_RECORD"), pairOf(5, hexOf(handle))};
  if (m_on.version.hasOwners && table.begin != SourceIndex::kNone)
    record.pairs.push_back(pairOf(330, hexOf(m_on.index[table.begin].handle)));
  for (const char* subclass : {"AcDbSymbolTableRecord", "AcDbBlockTableRecord"})
    record.pairs.push_back(pairOf(100, subclass));
  record.pairs.push_back(pairOf(2, name));
  if (m_on.version.hasOwners) record.pairs.push_back(pairOf(340, "0"));
  m_on.edits.addBefore(table.end, record);
  ++table.change;
}

void ItemEdits::patchXRef(const CBlock& before, const CBlock& after) {
  const auto pathOf = [](const CBlock& block) {
    return block.isXRef() ? static_cast<const CBlockXRef&>(block).getPath() : zim::WString();
  };
  const auto known = m_blocks.find(keyOf(&before));
  const std::size_t entry = known == m_blocks.end() ? SourceIndex::kNone : known->second;
  if (entry == SourceIndex::kNone) return;
  const bool isBound = before.isXRef() && !after.isXRef();
  const zim::WString path = pathOf(after);
  if (pathOf(before) == path && !isBound) return;
  SourceRecord& record = m_on.edits.change(entry);
  const std::size_t at = record.find(1);
  if (at == SourceRecord::kNone)
    record.insert(record.extendedData(), 1, m_on.after->encoded(path));
  else
    record.setText(at, m_on.after->encoded(path));
  if (isBound) becomeBlock(record);
}

// The content comes as that of any other block, relative to the base point.
void ItemEdits::becomeBlock(SourceRecord& record) {
  constexpr long flags = 70, bitsOfReferences = 4 | 8 | 16 | 32;
  const std::size_t at = record.find(flags);
  if (at != SourceRecord::kNone) record.setInteger(at, record.integerOf(flags) & ~bitsOfReferences);
  for (const long code : {10, 20, 30})
    if (const std::size_t base = record.find(code); base != SourceRecord::kNone)
      record.setReal(base, 0);
}

// -- removal -------------------------------------------------------------------

// An item goes with its record in a table and, if it is a block, its content.
void ItemEdits::leave(const std::string& table, std::size_t entry) {
  GoneItem item{table, keyOfText(m_on.index.nameOf(entry)), entry, entry, entry};
  if (table == "BLOCK") {
    item.last = std::min(endOfBlock(entry), m_on.index.entries().size() - 1);
    item.entry = findKey("BLOCK_RECORD", item.key);
  }
  m_gone.push_back(std::move(item));
}

void ItemEdits::removeUnused() {
  markUsed(m_on, m_gone);
  const auto remove = [this](std::size_t entry) {
    m_on.edits.remove(entry);
    if (m_on.index[entry].handle != 0) m_on.edits.forgotten().insert(m_on.index[entry].handle);
  };
  for (const GoneItem& item : m_gone) {
    if (item.isUsed) continue;
    for (std::size_t i = item.first; i <= item.last; ++i) remove(i);
    if (item.entry == SourceIndex::kNone) continue;
    remove(item.entry);
    --m_tables[item.table == "BLOCK" ? "BLOCK_RECORD" : item.table].change;
  }
}

}  // namespace vek0::detail
