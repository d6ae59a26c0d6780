#include "vek0core/dxf/in/parse/filedxfiimportdatasemantor.h"

#include <string>
#include <unordered_set>

#include "vek0core/drawing/data.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blocktable.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/enttable.h"

namespace {

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
  if (!isPrivateName(name)) return IFileDXFIDataSemantor::findBlock(name);
  const auto own = m_ownNames.find(name);
  return own == m_ownNames.end() ? nullptr : getBlockTable().get(own->second);
}

CBlock* CFileDXFIImportDataSemantor::createBlockHurried(const zim::WString& name, long flags) {
  return IFileDXFIDataSemantor::createBlockHurried(isPrivateName(name) ? ownName(name) : name,
                                                   flags);
}

void CFileDXFIImportDataSemantor::createBlock(const zim::WString& name, const PNT_3D& base,
                                              long flags, std::list<CEnt*>& entities) {
  const zim::WString& own = isPrivateName(name) ? ownName(name) : name;
  CBlock* block = nullptr;
  if (!isXRefName(own)) {
    block = getBlockTable().get(own);
    if (!block) return createFreshBlock(own, base, flags, entities);
    if (isPlaceholder(*block)) return redefineBlock(*block, base, flags, entities);
    note(ReportCode::BlockKept, name);
  }
  discard(entities);
}
