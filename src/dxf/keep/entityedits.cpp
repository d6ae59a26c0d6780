#include "dxf/keep/entityedits.h"

#include <algorithm>

#include "dxf/keep/entmap.h"
#include "dxf/keep/fingerprint.h"
#include "dxf/keep/forgetting.h"
#include "dxf/keep/newrecords.h"
#include "dxf/keep/propertypatch.h"
#include "dxf/keep/recorddiff.h"
#include "dxf/keep/recordtransform.h"
#include "dxf/layoutname.h"
#include "dxf/out/modern/fileplan.h"
#include "files/mixer.h"
#include "vek0core/drawing/data.h"
#include "vek0core/drawing/handlemanager.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/edit/entexplodervisitor.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/entities/enttext.h"
#include "vek0core/tables/style.h"

namespace vek0::detail {
namespace {

// Whether our writers form the same kind of record as the file has, apart from its plane.
bool isOwnKind(EntRecord record) {
  constexpr EntRecord kinds[] = {EntRecord::Own, EntRecord::Lwpolyline, EntRecord::Polyline,
                                 EntRecord::Circle, EntRecord::Arc};
  return std::find(std::begin(kinds), std::end(kinds), record) != std::end(kinds);
}

// An insert that only stands for a record.
bool isWhole(const CEnt& ent) {
  const CEntInsertBase* insert = ent.getEntInsert();
  return insert && insert->getBlock() && insert->getBlock()->isOfRecord();
}

bool isOldPolyline(const std::vector<SourceRecord>& records) { return records[0].is("POLYLINE"); }

const CBlock* blockOf(const CEnt& ent) {
  const CEntInsertBase* insert = ent.getEntInsert();
  return insert ? insert->getBlock() : nullptr;
}

// Whether extended data holds places or sizes, which follow the entity.
bool hasPlaces(const SourceRecord& record) {
  constexpr long codes[] = {1011, 1012, 1013, 1041, 1042};
  return std::any_of(record.pairs.begin(), record.pairs.end(), [&](const SourcePair& pair) {
    return std::find(std::begin(codes), std::end(codes), pair.code) != std::end(codes);
  });
}

// Whether a record says more than the entity that stands for it, so that it moves rather than what
// differs is written: exact places of attributes, meshes, widths for all vertices, and texts upside
// down or without a second point.
bool saysMore(const std::vector<SourceRecord>& records) {
  constexpr long alignment = 11, flags = 70, generation = 71, startWidth = 40, endWidth = 41;
  constexpr long spatial = 8 | 16 | 64;
  const SourceRecord& record = records.front();
  if (std::any_of(records.begin(), records.end(), hasPlaces)) return true;
  if (isOldPolyline(records))
    return (record.integerOf(flags) & spatial) != 0 || record.realOf(startWidth) != 0 ||
           record.realOf(endWidth) != 0;
  if (record.is("INSERT")) return records.size() > 1;
  if (!record.is("TEXT") && !record.is("ATTDEF")) return false;
  return record.integerOf(generation) != 0 || record.find(alignment) == SourceRecord::kNone;
}

// Blocks hold their content relative to the base point, their records do not.
void shift(std::vector<SourceRecord>& records, const PNT_3D& base) {
  if (base == PNT_3D(0, 0, 0)) return;
  SpaceMap map;
  map.origin = base;
  const std::span<SourceRecord> all(records);
  for (std::size_t from = 0, to; from < all.size(); from = to) {
    to = from + 1;
    while (to < all.size() && isPart(all[to])) ++to;
    transformRecords(all.subspan(from, to - from), map);
  }
}

// Makes a dimension show that block; an empty name leaves it its own.
void setBlock(std::vector<SourceRecord>& records, const std::string& block) {
  const std::size_t name = records[0].find(2);
  if (!block.empty() && name != SourceRecord::kNone) records[0].setText(name, block);
}

}  // namespace

EntityEdits::EntityEdits(EditContext& context, ItemEdits& items)
    : m_on(context), m_items(items), m_before(*context.pristine), m_after(context.data) {
  // New entities keep their handles, so fresh ones are above.
  Handle highest = 0;
  for (const HeldEnt& held : m_after.all()) highest = std::max(highest, held.ent->GetHandle());
  m_on.edits.setSeed(highest + 1);
}

void EntityEdits::plan() {
  for (const HeldEnt& held : m_before.all()) {
    if (const CBlock* block = blockOf(*held.ent)) ++m_users[block];
    const std::size_t entry = m_on.entries.find(held.ent);
    if (entry != SourceIndex::kNone && held.container.block)
      m_contents[held.container.block].push_back(entry);
  }
  for (const HeldEnt& held : m_before.all()) {
    const std::size_t entry = m_on.entries.find(held.ent);
    if (entry != SourceIndex::kNone) planEntity(held, entry);
  }
  if (!m_left.empty()) dropPrivateBlocks();
}

void EntityEdits::planEntity(const HeldEnt& before, std::size_t entry) {
  // A block goes as a whole, or stays as it is because a record that stays names it.
  if (isOfGoneBlock(before.container)) {
    m_ofGone.push_back(entry);
    leaveBlockOf(*before.ent);
    return;
  }
  const HeldEnt* after = m_after.find(before.ent->GetHandle());
  if (!after || !isSamePlace(before.container, after->container)) {
    leaveBlockOf(*before.ent);
    return remove(entry);
  }
  const EntPrint was = printOf(*before.ent), is = printOf(*after->ent);
  if (was == is) return;
  Action& action = m_actions[entry];
  action.before = before.ent;
  action.after = after->ent;
  if (before.container.block && !before.container.isSheet)
    action.base = before.container.block->getPnt();
  m_on.edits.rewrite(entry);
  m_items.need(*after->ent, before.ent);
  if (was.shape == is.shape) return;
  if (isWhole(*after->ent)) return planPieces(entry, action);
  planBlockOf(action, false);
  if (after->ent->getType() != CEntPolyline::kType || !m_on.index.is(entry, "POLYLINE")) return;
  const auto& polyline = static_cast<const CEntPolyline&>(*after->ent);
  const long had = static_cast<long>(m_on.index.afterEntity(entry) - entry);
  m_reserved += std::max(0L, polyline.getNoTotalVertexes() + 2 - had);
}

bool EntityEdits::isOfGoneBlock(const Container& container) const {
  return container.block && !container.isSheet &&
         !m_on.data.getBlockTable().get(container.block->getName());
}

void EntityEdits::leaveBlockOf(const CEnt& ent) {
  const CBlock* block = blockOf(ent);
  if (block && block->getName()[0] == u'*') m_left.insert(block);
}

void EntityEdits::removeOwnedByGone() {
  for (const std::size_t entry : m_ofGone)
    if (m_on.edits.isRemoved(entry)) remove(entry);
}

// The pieces stand in for a record that cannot be where it is now.
void EntityEdits::planPieces(std::size_t entry, Action& action) {
  std::vector<SourceRecord> records;
  for (std::size_t i = entry; i < m_on.index.afterEntity(entry); ++i)
    records.push_back(m_on.edits.read(i));
  if (patchShape(action, records)) return;
  action.pieces = writeWhole(*action.after);
  m_reserved += static_cast<Handle>(action.pieces.size());
}

std::vector<SourceRecord> EntityEdits::writeWhole(const CEnt& ent) {
  CData& room = *m_on.pristine;
  CEntExploderVisitor exploder(room.getHandleGestor(), room.getEntFactory(), room.getBlockFactory(),
                               room.getBlockTable());
  const_cast<CEnt&>(ent).accept(exploder);  // visitors take non-const entities; this one only reads
  std::vector<SourceRecord> all;
  for (const std::unique_ptr<CEnt>& piece : exploder.getEnts()) {
    m_items.need(*piece);
    std::vector<SourceRecord> records =
        isWhole(*piece) ? writeWhole(*piece) : m_on.after->write(*piece, false);
    std::move(records.begin(), records.end(), std::back_inserter(all));
  }
  return all;
}

// The content of a dimension's block is where the dimension is. Other dimensions keep theirs. An
// insert of such a block is where its insertion point is.
void EntityEdits::planBlockOf(Action& action, bool isCopy) {
  const CBlock* block = blockOf(*action.before);
  if (!block || !block->isOfDimension() || action.before->getRecord() == EntRecord::Own) return;
  const std::optional<SpaceMap> map = mapBetween(*action.before, *action.after);
  if (!map) return;
  if (isCopy || m_users[block] > 1) return planCopy(action, *block, *map);
  for (const std::size_t entry : m_contents[block]) {
    m_actions[entry].map = map;
    m_on.edits.rewrite(entry);
  }
}

// Dimensions that moved in the same way go on sharing.
void EntityEdits::planCopy(Action& action, const CBlock& block, const SpaceMap& map) {
  Mixer mix;
  for (const PNT_3D* p : {&map.x, &map.y, &map.z, &map.origin, &map.from})
    for (const double number : {p->x, p->y, p->z}) mix.add(number);
  const auto [copy, isNew] = m_copies[&block].try_emplace(mix.value());
  if (isNew) copy->second = m_items.copyBlock(block, m_contents[&block], map);
  action.block = copy->second;
}

// Blocks without a name of their own go with the last insert.
void EntityEdits::dropPrivateBlocks() {
  std::unordered_set<std::u16string_view> used;
  for (const HeldEnt& held : m_after.all())
    if (const CBlock* block = blockOf(*held.ent)) used.insert(block->getName().view());
  for (const CBlock* block : m_left)
    if (!used.contains(block->getName().view())) m_items.drop(*block);
}

void EntityEdits::remove(std::size_t entry) {
  const SourceIndex& index = m_on.index;
  for (std::size_t i = entry; i < index.afterEntity(entry); ++i) {
    m_on.edits.remove(i);
    if (index[i].handle != 0) m_on.edits.forgotten().insert(index[i].handle);
    if (index[i].dictionary != 0) removeOwned(index[i].dictionary);
  }
}

// The object and all that it owns.
void EntityEdits::removeOwned(Handle object) {
  const SourceIndex& index = m_on.index;
  if (m_owned.empty())
    for (std::size_t i = 0; i < index.entries().size(); ++i)
      if (index[i].section == SourceSection::Objects && index[i].owner != 0)
        m_owned[index[i].owner].push_back(i);
  std::vector<Handle> open{object};
  while (!open.empty()) {
    const Handle handle = open.back();
    open.pop_back();
    const std::size_t entry = index.withHandle(handle);
    const bool isObject = entry != SourceIndex::kNone &&
                          index[entry].section == SourceSection::Objects &&
                          !m_on.edits.isRemoved(entry);
    if (!isObject) continue;
    m_on.edits.remove(entry);
    m_on.edits.forgotten().insert(handle);
    for (const std::size_t owned : m_owned[handle])
      if (index[owned].handle != 0) open.push_back(index[owned].handle);
  }
}

// -- changed entities ----------------------------------------------------------

std::vector<SourceRecord> EntityEdits::rewrite(std::size_t entry,
                                               std::vector<SourceRecord> records) {
  const Action& action = m_actions.at(entry);
  if (action.before && printOf(*action.before).shape != printOf(*action.after).shape) {
    std::vector<SourceRecord> edited = records;
    if (!patchShape(action, edited)) return replacement(action, records);
    records = std::move(edited);
  }
  if (action.map && !transformRecords(records, *action.map))
    m_on.note(ReportCode::EntityDropped, zim::WString::fromUtf8(records[0].kind()));
  setBlock(records, action.block);
  if (action.before)
    patchProperties(records, *action.before, *action.after, *m_on.after, m_on.version, m_on.report);
  return records;
}

// A formatted text without formats, of which only the string differs.
bool EntityEdits::reword(const Action& action, SourceRecord& record) const {
  constexpr long string = 1, chunk = 3;
  const bool isPlain = record.is("MTEXT") && action.before->getType() == CEntText::kType &&
                       action.after->getType() == CEntText::kType &&
                       record.find(chunk) == SourceRecord::kNone;
  const std::size_t at = record.find(string);
  if (!isPlain || at == SourceRecord::kNone) return false;
  const TEXT_3D& after = static_cast<const CEntText&>(*action.after).getText();
  TEXT_3D changed = static_cast<const CEntText&>(*action.before).getText();
  const zim::WString was = changed.getContext().getString();
  CTextContext context = changed.getContext();
  context.setString(after.getContext().getString());
  changed.setContext(context);
  // Each drawing has styles of its own.
  const CStyle *style = changed.getStyle(), *other = after.getStyle();
  if (style && other && style->getName() == other->getName()) changed.setStyle(after.getStyle());
  CTextDecoder decoder = m_on.decoder;
  if (changed != after || decoder.decodeText(record.pairs[at].value) != was) return false;
  std::u16string text;
  for (const char16_t unit : after.getContext().getString().view()) {
    if (unit == u'\\' || unit == u'{' || unit == u'}') text += u'\\';
    text += unit;
  }
  record.setText(at, m_on.after->encoded(text));
  return true;
}

bool EntityEdits::patchShape(const Action& action, std::vector<SourceRecord>& records) {
  if (reword(action, records[0])) return true;
  if (saysMore(records) && followMap(action, records)) return true;
  const bool isAtOrigin = action.base == PNT_3D(0, 0, 0);
  if (isOwnKind(action.before->getRecord()) && !isWhole(*action.before) && isAtOrigin) {
    const bool isOld = isOldPolyline(records);
    std::vector<SourceRecord> patched = records;
    if (patchRecords(patched, m_on.before->write(*action.before, isOld),
                     m_on.after->write(*action.after, isOld))) {
      records = std::move(patched);
      return true;
    }
  }
  return followMap(action, records);
}

bool EntityEdits::followMap(const Action& action, std::vector<SourceRecord>& records) {
  std::optional<SpaceMap> map = mapBetween(*action.before, *action.after);
  if (!map || isIdentity(*map)) return false;
  map->from = map->from + action.base;
  map->origin = map->origin + action.base;
  return transformRecords(records, *map);
}

// What the entity became, under its old handle.
std::vector<SourceRecord> EntityEdits::replacement(const Action& action,
                                                   const std::vector<SourceRecord>& records) {
  const bool isPieces = isWhole(*action.after);
  std::vector<SourceRecord> fresh =
      isPieces ? action.pieces : m_on.after->write(*action.after, isOldPolyline(records));
  shift(fresh, action.base);
  if (fresh.empty()) {
    if (isPieces) m_on.note(ReportCode::RecordLeft, zim::WString::fromUtf8(records[0].kind()));
    return records;
  }
  const auto valueOf = [](const SourceRecord& record, long code) {
    const std::size_t at = record.find(code);
    return at == SourceRecord::kNone ? std::string() : record.pairs[at].value;
  };
  const auto set = [](SourceRecord& record, long code, const std::string& value) {
    const std::size_t at = record.find(code);
    if (at != SourceRecord::kNone && !value.empty()) record.setText(at, value);
  };
  const std::string handle = valueOf(records[0], 5), owner = valueOf(records[0], 330);
  std::string main = handle;
  for (std::size_t i = 0; i < fresh.size(); ++i) {
    const bool isOwn = i > 0 && i < records.size() && !isPieces;
    std::string own = i == 0 ? handle : std::string();
    if (isOwn) own = valueOf(records[i], 5);
    if (own.empty() && i > 0) own = hexOf(m_on.edits.takeHandle());
    const bool isMain = i == 0 || !isPart(fresh[i]);
    if (isMain) main = own;
    set(fresh[i], 5, own);
    set(fresh[i], 330, isMain ? owner : main);
  }
  m_on.note(ReportCode::KindReplaced, zim::WString::fromUtf8(records[0].kind()));
  return fresh;
}

// -- new entities --------------------------------------------------------------

void EntityEdits::addNew() {
  for (const HeldEnt& held : m_after.all()) {
    const HeldEnt* before = m_before.find(held.ent->GetHandle());
    if (before && isSamePlace(before->container, held.container)) continue;
    const Target target = targetOf(held.container);
    if (target.before == SourceIndex::kNone) {
      if (!isNewBlock(held.container)) m_on.note(ReportCode::EntityDropped, {});
      continue;
    }
    m_items.need(*held.ent);
    std::vector<SourceRecord> records = copyOf(held);
    if (records.empty()) {
      records = isWhole(*held.ent) ? writeWhole(*held.ent) : m_on.after->write(*held.ent, false);
      shift(records, target.base);
    }
    if (records.empty() && held.ent->getRecord() == EntRecord::Opaque)
      m_on.note(ReportCode::RecordLeft, opaqueKindOf(*held.ent));
    setFrames(records, m_on.handleFor(*held.ent), target.owner, m_on.edits);
    if (!records.empty()) addClip(*held.ent, records.front());
    for (SourceRecord& record : records) {
      if (target.isOnPaper) {
        const std::size_t layer = record.find(8);
        record.insert(layer == SourceRecord::kNone ? 1 : layer, 67, "1");
      }
      m_on.edits.addBefore(target.before, record);
    }
  }
}

// The clip of a new insert is in objects that its extension dictionary leads to.
void EntityEdits::addClip(const CEnt& ent, SourceRecord& record) {
  const auto* insert = dynamic_cast<const CEntInsert*>(&ent);
  if (!insert || !insert->isClipped()) return;
  const std::size_t end = m_items.endOf(SourceSection::Objects);
  const std::size_t handle = record.find(5);
  if (end == SourceIndex::kNone || handle == SourceRecord::kNone || m_on.version.isOld)
    return m_on.note(ReportCode::ClipLost, u"INSERT");
  SavedClip clip(*insert);
  clip.insert = handleOf(record.pairs[handle]);
  for (Handle* object : {&clip.dictionary, &clip.filters, &clip.filter})
    *object = m_on.edits.takeHandle();
  for (const SourceRecord& object : m_on.after->write(clip)) m_on.edits.addBefore(end, object);
  record.insert(handle + 1, kGroupCode, "{ACAD_XDICTIONARY");
  record.insert(handle + 2, 360, hexOf(clip.dictionary));
  record.insert(handle + 3, kGroupCode, "}");
}

// The entity of the source that this one was copied from, directly or not; null if there is none.
const HeldEnt* EntityEdits::originOf(const CEnt& ent) const {
  const auto* manager = dynamic_cast<const CHandleManager*>(&m_on.data.getHandleGestor());
  Handle handle = manager ? manager->originOf(ent.GetHandle()) : 0;
  // A copy is younger than its origin, so this ends.
  while (handle != 0 && !m_before.find(handle)) handle = manager->originOf(handle);
  return handle != 0 ? m_before.find(handle) : nullptr;
}

// The record of the origin, changed like it; nothing if the entity is no copy, or became something
// else.
std::vector<SourceRecord> EntityEdits::copyOf(const HeldEnt& held) {
  std::vector<SourceRecord> records;
  const HeldEnt* origin = originOf(*held.ent);
  const std::size_t entry = origin ? m_on.entries.find(origin->ent) : SourceIndex::kNone;
  if (entry == SourceIndex::kNone || !isSamePlace(origin->container, held.container))
    return records;
  Action action;
  action.before = origin->ent;
  action.after = held.ent;
  if (held.container.block && !held.container.isSheet)
    action.base = origin->container.block->getPnt();
  for (std::size_t i = entry; i < m_on.index.afterEntity(entry); ++i) {
    records.push_back(m_on.edits.read(i));
    detach(records.back());
  }
  if (printOf(*action.before).shape != printOf(*action.after).shape) {
    if (!patchShape(action, records)) return {};
    planBlockOf(action, true);
  }
  setBlock(records, action.block);
  patchProperties(records, *action.before, *action.after, *m_on.after, m_on.version, m_on.report);
  return records;
}

// Whether the content has been written with the block, or belongs to no block of the file.
bool EntityEdits::isNewBlock(const Container& container) const {
  return container.block && !container.isSheet &&
         m_items.findBlock(m_on.after->encoded(container.block->getName())) == SourceIndex::kNone;
}

EntityEdits::Target EntityEdits::targetOf(const Container& container) {
  const auto [found, isNew] = m_targets.try_emplace(container.block);
  if (isNew) found->second = findTarget(container);
  return found->second;
}

EntityEdits::Target EntityEdits::findTarget(const Container& container) {
  const SourceIndex& index = m_on.index;
  const std::string block =
      container.block ? m_on.after->encoded(container.block->getName()) : "*Model_Space";
  Target target;
  const std::size_t record = m_items.find("BLOCK_RECORD", block);
  if (record != SourceIndex::kNone) target.owner = index[record].handle;
  const bool isCurrent =
      container.block && container.isSheet &&
      isLayoutBlock(container.block->getName(), kPaperBlock) &&
      container.block->getName().Length() == static_cast<int>(1 + kPaperBlock.size());
  const bool isInSection = !container.block || isCurrent;
  target.isOnPaper = container.isSheet;
  const std::size_t begin = isInSection ? 0 : m_items.findBlock(block);
  if (begin == SourceIndex::kNone) return target;
  target.before = isInSection ? endOfEntities() : endOfBlock(begin);
  if (isInSection) return target;
  if (const CBlock* was = m_on.pristine->getBlockTable().get(container.block->getName()))
    target.base = was->getPnt();
  return target;
}

// Before the end of the section, which is closed if it has none.
std::size_t EntityEdits::endOfEntities() {
  const SourceIndex& index = m_on.index;
  std::size_t last = SourceIndex::kNone;
  for (std::size_t i = 0; i < index.entries().size(); ++i) {
    if (index[i].section != SourceSection::Entities) continue;
    if (index.is(i, "ENDSEC")) return i;
    last = i;
  }
  if (last == SourceIndex::kNone) return last;
  const std::size_t end = index.is(last, "EOF") ? last : last + 1;
  if (index.isFragment()) return end;
  m_on.edits.close(end);
  m_on.note(ReportCode::SectionCut, {});
  return end;
}

std::size_t EntityEdits::endOfBlock(std::size_t begin) const {
  const SourceIndex& index = m_on.index;
  for (std::size_t i = begin + 1; i < index.entries().size() && index[i].group == begin; ++i)
    if (index.is(i, "ENDBLK")) return i;
  return SourceIndex::kNone;
}

}  // namespace vek0::detail
