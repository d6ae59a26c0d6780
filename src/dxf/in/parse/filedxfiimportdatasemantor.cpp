#include "vek0core/dxf/in/parse/filedxfiimportdatasemantor.h"

#include <string>
#include <unordered_set>

#include "vek0core/drawing/data.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blocktable.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/enttable.h"

namespace {

const zim::WString kStandard(u"STANDARD");
constexpr double kUsualHeight = 0.2;

bool isPrivateName(const zim::WString& name) { return !name.empty() && name[0] == u'*'; }

// "*D12" without its number: "*D".
zim::WString prefixOf(const zim::WString& name) {
  std::u16string_view prefix = name;
  while (!prefix.empty() && prefix.back() >= u'0' && prefix.back() <= u'9') prefix.remove_suffix(1);
  return zim::WString(prefix);
}

// Recounted, because the blocks' own counts are only hints.
std::unordered_set<const CBlock*> insertedBlocks(const CData& data) {
  std::unordered_set<const CBlock*> inserted;
  const CBlockTable& blocks = data.getBlockTable();
  for (int i = 0; i < static_cast<int>(blocks.size()); ++i)
    for (CBlock::CInsertIterator insert(*blocks[i]); *insert; ++insert)
      inserted.insert((*insert)->getBlock());
  for (const CEnt* ent : data.getEntTable().getEntityTbl())
    if (const CEntInsertBase* insert = ent->getEntInsert()) inserted.insert(insert->getBlock());
  return inserted;
}

}  // namespace

CFileDXFIImportDataSemantor::CFileDXFIImportDataSemantor(CData& data, CFileDXFIError* err,
                                                         const CFileDXFIOptions& options,
                                                         const CImportPlan& plan)
    : IFileDXFIDataSemantor(data, err, options), m_plan(&plan) {
  for (const IMPORT_ITEM& item : plan.items())
    if (item.fate == IMPORT_ITEM::Fate::Replaces) prepare(item);
}

void CFileDXFIImportDataSemantor::prepare(const IMPORT_ITEM& item) {
  if (item.table == ItemTable::Layers) {
    CLayer* layer = ::getLayer(data(), item.newName);
    if (!layer) return;
    layer->setTraits({});
    awaitLayer(*layer);
  } else if (item.table == ItemTable::Linetypes) {
    CLtype* ltype = ::getLtype(data(), item.newName);
    if (!ltype) return;
    ltype->GetDashSeq().ClearDashes();
    m_outdated.insert(ltype);
  } else if (item.table == ItemTable::Styles) {
    m_outdated.insert(::getStyle(data(), item.newName));
  } else if (CBlock* block = getBlockTable().get(item.newName)) {
    // Blocks of the file come in any order, and the drawing's may insert each other the other way
    // round.
    std::list<CEnt*> none;
    redefineBlock(*block, block->getPnt(), block->getFlags(), none);
    m_outdated.insert(block);
  }
}

bool CFileDXFIImportDataSemantor::replaces(ItemTable table, const zim::WString& name) const {
  return m_plan && m_plan->replaces(table, name);
}

const zim::WString& CFileDXFIImportDataSemantor::plannedName(ItemTable table,
                                                             const zim::WString& name) const {
  return m_plan ? m_plan->nameFor(table, name) : name;
}

// -- items that the plan renames or replaces

void CFileDXFIImportDataSemantor::createLayer(const zim::WString& name, CLtype* ltype, short colour,
                                              long flags) {
  IFileDXFIDataSemantor::createLayer(plannedName(ItemTable::Layers, name), ltype, colour, flags);
}

void CFileDXFIImportDataSemantor::createLayer0(CLtype* ltype, short colour, long flags) {
  if (!replaces(ItemTable::Layers, u"0")) return;
  CLayer0& layer = data().getLayer0();
  if (ltype) layer.setLtype(ltype);
  layer.setColor(colour);
  layer.setFlags(flags);
}

void CFileDXFIImportDataSemantor::createLtype(const zim::WString& name,
                                              const zim::WString& description,
                                              CLtypeComplexDashSeq& dashes, long flags) {
  const zim::WString& own = plannedName(ItemTable::Linetypes, name);
  CLtype* known = data().getLtypeTable().get(own);
  if (!known || m_outdated.erase(known) == 0)
    return IFileDXFIDataSemantor::createLtype(own, description, dashes, flags);
  known->setDesc(description);
  known->GetDashSeq() = dashes;
  known->setFlags(flags);
}

void CFileDXFIImportDataSemantor::createStyle(const zim::WString& name, const ICADFont* font,
                                              double fixedHeight, double widthScale, double oblique,
                                              double lastHeight, long flags) {
  const zim::WString& own = plannedName(ItemTable::Styles, name);
  CStyle* known = ::getStyle(data(), own);
  if (!known || m_outdated.erase(known) == 0)
    return IFileDXFIDataSemantor::createStyle(own, font, fixedHeight, widthScale, oblique,
                                              lastHeight, flags);
  known->setFont(font);
  known->setFixedHeight(fixedHeight);
  known->setWidthScale(widthScale);
  known->setOblique(oblique);
  known->setLastHeight(lastHeight);
  known->setFlags(flags);
}

void CFileDXFIImportDataSemantor::createStyleStandard(const ICADFont* font, double fixedHeight,
                                                      double widthScale, double oblique,
                                                      double lastHeight, long flags) {
  const bool isRenamed = plannedName(ItemTable::Styles, kStandard) != kStandard;
  if (isRenamed || replaces(ItemTable::Styles, kStandard))
    createStyle(kStandard, font, fixedHeight, widthScale, oblique, lastHeight, flags);
}

CLayer* CFileDXFIImportDataSemantor::getLayer(const zim::WString& name) {
  return IFileDXFIDataSemantor::getLayer(plannedName(ItemTable::Layers, name));
}

CLtype* CFileDXFIImportDataSemantor::getLtype(const zim::WString& name) {
  return IFileDXFIDataSemantor::getLtype(plannedName(ItemTable::Linetypes, name));
}

CStyle* CFileDXFIImportDataSemantor::getStyle(const zim::WString& name) {
  return IFileDXFIDataSemantor::getStyle(plannedName(ItemTable::Styles, name));
}

// A file need not define the style, which then is as in a new drawing.
CStyle* CFileDXFIImportDataSemantor::getStyleStandard() {
  const zim::WString& own = plannedName(ItemTable::Styles, kStandard);
  if (own == kStandard) return IFileDXFIDataSemantor::getStyleStandard();
  if (!::getStyle(data(), own))
    IFileDXFIDataSemantor::createStyle(own, CFontTable::getInstance().getDefault(), 0, 1, 0,
                                       kUsualHeight, 0);
  return ::getStyle(data(), own);
}

CBlock* CFileDXFIImportDataSemantor::getBlock(const zim::WString& name) {
  return IFileDXFIDataSemantor::getBlock(plannedName(ItemTable::Blocks, name));
}

// -- blocks

// An undefined block may have been inserted only by definitions that the drawing's own replaced.
void CFileDXFIImportDataSemantor::transition() {
  const std::vector<CBlock*> undefined = undefinedBlocks();
  if (!undefined.empty()) {
    const std::unordered_set<const CBlock*> inserted = insertedBlocks(data());
    for (CBlock* block : undefined) {
      if (inserted.count(block) != 0)
        note(ReportCode::BlockUndefined, block->getName());
      else
        dropBlock(*block);
    }
  }
  settle();
}

zim::WString CFileDXFIImportDataSemantor::freeName(const zim::WString& prefix) {
  long& number = m_lastNumbers[prefix];
  zim::WString name;
  do {
    name = prefix + zim::WString::fromUtf8(std::to_string(++number));
  } while (getBlockTable().get(name));
  return name;
}

// The drawing's name for an anonymous block of the file.
const zim::WString& CFileDXFIImportDataSemantor::ownName(const zim::WString& fileName) {
  const auto [place, isNew] = m_ownNames.try_emplace(fileName);
  if (isNew) {
    place->second = freeName(prefixOf(fileName));
    if (!place->second.EqualsIgnoreCase(fileName)) note(ReportCode::BlockRenamed, fileName);
  }
  return place->second;
}

CBlock* CFileDXFIImportDataSemantor::findBlock(const zim::WString& name) {
  if (!isPrivateName(name))
    return IFileDXFIDataSemantor::findBlock(plannedName(ItemTable::Blocks, name));
  const auto own = m_ownNames.find(name);
  return own == m_ownNames.end() ? nullptr : getBlockTable().get(own->second);
}

CBlock* CFileDXFIImportDataSemantor::createBlockHurried(const zim::WString& name, long flags) {
  return IFileDXFIDataSemantor::createBlockHurried(
      isPrivateName(name) ? ownName(name) : plannedName(ItemTable::Blocks, name), flags);
}

void CFileDXFIImportDataSemantor::createBlock(const zim::WString& name, const PNT_3D& base,
                                              long flags, std::list<CEnt*>& entities) {
  const zim::WString& own =
      isPrivateName(name) ? ownName(name) : plannedName(ItemTable::Blocks, name);
  if (!isXRefName(own)) {
    CBlock* block = getBlockTable().get(own);
    if (!block) return createFreshBlock(own, base, flags, entities);
    if (isPlaceholder(*block) || m_outdated.erase(block) != 0)
      return redefineBlock(*block, base, flags, entities);
    // Whoever made a plan knows which blocks differ.
    if (!m_plan) note(ReportCode::BlockKept, name);
  }
  discard(entities);
}
