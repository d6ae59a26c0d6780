// One entity for each record. The pieces of a record move into a private block, and the record
// becomes an insert of it, so that all its properties and its place can be changed at once.
#include <algorithm>
#include <string>
#include <utility>

#include "dxf/in/records/entityreaders.h"
#include "tables/addnew.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blockfactory.h"
#include "vek0core/entities/blocks/blocktable.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/tables/colors.h"

namespace vek0::detail {
namespace {

const zim::WString kPrefix(u"*K");

// "*K" and the kind; a number would be the name for pieces.
zim::WString blockNameOf(const zim::WString& kind) {
  std::u16string name(kind.view());
  const auto isPlain = [](char16_t c) {
    return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
  };
  const auto isDigit = [](char16_t c) { return c >= u'0' && c <= u'9'; };
  std::replace_if(
      name.begin(), name.end(), [&](char16_t c) { return !isPlain(c); }, u'_');
  if (std::all_of(name.begin(), name.end(), isDigit)) name += u'_';
  return kPrefix + zim::WString(std::u16string_view(name));
}

}  // namespace

CBlock* EntityReader::createBlock(const zim::WString& name, std::vector<EntPtr> pieces) {
  IFileDXFISemantor& semantor = records.context().semantor;
  std::unique_ptr<CBlock> block(semantor.getBlockFactory().create(
      name, PNT_3D(0, 0, 0), CBlock::kAnonymous | CBlock::kOfRecord));
  for (EntPtr& piece : pieces) {
    if (!block) break;
    // The record's handle is that of the insert.
    piece->SetHandle(0);
    piece->setRecord(EntRecord::Own);
    addTo(*block, std::move(piece));
  }
  return addNew(semantor.getBlockTable(), block.release());
}

EntPtr EntityReader::whole(EntPtr first, EntRecord record) {
  if (records.further.empty() || records.failed()) return first;
  std::vector<EntPtr> pieces = std::exchange(records.further, {});
  if (first) pieces.insert(pieces.begin(), std::move(first));
  const CBlockTable& blocks = records.context().semantor.getBlockTable();
  zim::WString name;
  do {
    name = kPrefix + zim::WString::fromUtf8(std::to_string(++m_lastWhole));
  } while (blocks.get(name));
  CBlock* block = createBlock(name, std::move(pieces));
  const EntProperties& own = records.frame().properties;
  // Users are counted now that the block is in the table.
  for (unsigned i = 0; i < block->size(); ++i) inherit(*(*block)[i], own);
  EntPtr insert = records.make().insert(own, block, PNT_3D(0, 0, 0), 1, 1, 1, 0, 1, 1, 0, 0);
  if (insert) insert->setRecord(record);
  return insert;
}

// What a piece shares with the record follows the insert from now on.
void EntityReader::inherit(CEnt& piece, const EntProperties& from) const {
  IFileDXFISemantor& semantor = records.context().semantor;
  ENT_TRAITS traits = piece.getTraits();
  const bool sharesColor =
      piece.getColor() == from.color && traits.trueColor == from.traits.trueColor;
  if (sharesColor) traits.trueColor = ENT_TRAITS::kNoTrueColor;
  if (traits.lineweight == from.traits.lineweight) traits.lineweight = ENT_TRAITS::kWeightByBlock;
  if (traits.opacity == from.traits.opacity) traits.opacity = ENT_TRAITS::kOpacityByBlock;
  piece.setTraits(traits);
  if (sharesColor) piece.setColor(kColorByBlock);
  if (piece.getLtype() == from.ltype) piece.setLtype(semantor.getLtype(zim::WString(u"BYBLOCK")));
  if (piece.getLayer() == from.layer) piece.setLayer(semantor.getLayer(zim::WString(u"0")));
}

EntPtr EntityReader::opaque(const zim::WString& kind) {
  const CBlockTable& blocks = records.context().semantor.getBlockTable();
  zim::WString name = blockNameOf(kind);
  CBlock* block = blocks.get(name);
  for (; block && !block->isOfRecord(); block = blocks.get(name)) name += kNextName;
  if (!block) block = createBlock(name, {});
  EntPtr ent = records.make().insert(records.frame().properties, block, PNT_3D(0, 0, 0), 1, 1, 1, 0,
                                     1, 1, 0, 0);
  if (ent) ent->setRecord(EntRecord::Opaque);
  return ent;
}

}  // namespace vek0::detail
