// Puts the parser's results into a drawing; the two derived classes decide where loading and
// importing differ. Inserts may precede the definitions of their blocks, so unknown names get an
// empty block as a placeholder, which the definition fills or an external reference replaces
// (`repoint`). Hatches share a limit per file on generated lines, because a few bytes can request
// millions.
#include "vek0core/dxf/in/parse/filedxfidatasemantor.h"

#include <algorithm>
#include <memory>
#include <new>
#include <unordered_map>

#include "dxf/in/parse/falsexrefs.h"
#include "entities/blocks/hatchblock.h"
#include "tables/addnew.h"
#include "vek0core/drawing/data.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/dxf/in/filedxfierror.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blockfactory.h"
#include "vek0core/entities/blocks/blocktable.h"
#include "vek0core/entities/blocks/blockxref.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/entities/enttable.h"
#include "vek0core/files/report.h"
#include "vek0core/hatch/hatchtypetable.h"
#include "vek0core/tables/font.h"

using vek0::detail::addNew;

namespace {

constexpr short kUndeclaredColor = 7;

// Temporarily lowers the drawing's limit.
class HatchLimit {
 public:
  HatchLimit(CData& data, double limit) : m_data(data), m_before(data.getHatchLimit()) {
    data.setHatchLimit(std::min(limit, m_before));
  }
  ~HatchLimit() { m_data.setHatchLimit(m_before); }
  HatchLimit(const HatchLimit&) = delete;
  HatchLimit& operator=(const HatchLimit&) = delete;

 private:
  CData& m_data;
  double m_before;
};

}  // namespace

IFileDXFIDataSemantor::IFileDXFIDataSemantor(CData& data, CFileDXFIError* err,
                                             const CFileDXFIOptions& options)
    : m_data(data),
      m_err(err),
      m_options(options),
      m_hatchRoom(vek0::detail::kHatchesShare * data.getHatchLimit()) {}

// The semantor has no line number for the report.
void IFileDXFIDataSemantor::note(ReportCode code, const zim::WString& sample) const {
  if (m_options.report) m_options.report->add(code, 0, sample);
}

void IFileDXFIDataSemantor::fail(int kind) const {
  if (m_err) m_err->SetError(static_cast<CFileDXFIError::TDXFErrors>(kind));
}

CDataVariables* IFileDXFIDataSemantor::getVars() { return &m_data.getVars(); }
CLtypeByLayer* IFileDXFIDataSemantor::getLtypeByLayer() { return &m_data.getLtypeByLayer(); }
CStyle* IFileDXFIDataSemantor::getStyleStandard() { return ::getStyleStandard(m_data); }
CBlockFactory& IFileDXFIDataSemantor::getBlockFactory() { return m_data.getBlockFactory(); }
CBlockTable& IFileDXFIDataSemantor::getBlockTable() { return m_data.getBlockTable(); }
CBlockXRefDepend& IFileDXFIDataSemantor::getDepend() { return m_data.getDepend(); }
IHandleGestor& IFileDXFIDataSemantor::getHandleGestor() { return m_data.getHandleGestor(); }
CEntFactory& IFileDXFIDataSemantor::getEntFactory() { return m_data.getEntFactory(); }
void IFileDXFIDataSemantor::add(CEnt* ent) {
  if (!m_options.onPassing || !isSettled(*ent)) return m_data.getEntTable().add(ent);
  m_options.onPassing(*ent);
  delete ent;
}

// Whether the end of the file changes nothing about an entity that nothing refers to.
bool IFileDXFIDataSemantor::isSettled(CEnt& ent) const {
  const CEntInsertBase* insert = ent.getEntInsert();
  if (!insert) return true;
  return ent.getType() != CEntHatch::kType && insert->getBlock() &&
         !isPlaceholder(*insert->getBlock());
}

// -- layers, linetypes, styles ---------------------------------------------------

CLayer* IFileDXFIDataSemantor::getLayer(const zim::WString& name) {
  if (CLayer* layer = m_data.getLayerTable().get(name)) return layer;
  zim::WString xref, local;
  CBlockXRef* owner = scomposeName(name, xref, local) ? findXRef(xref) : nullptr;
  return owner ? owner->getLayerTable().get(local) : nullptr;
}

CLtype* IFileDXFIDataSemantor::getLtype(const zim::WString& name) {
  if (CLtype* ltype = m_data.getLtypeTable().get(name)) return ltype;
  zim::WString xref, local;
  CBlockXRef* owner = scomposeName(name, xref, local) ? findXRef(xref) : nullptr;
  return owner ? owner->getLtypeTable().get(local) : nullptr;
}

CStyle* IFileDXFIDataSemantor::getStyle(const zim::WString& name) {
  return ::getStyle(m_data, name);
}

void IFileDXFIDataSemantor::createLayer(const zim::WString& name, CLtype* ltype, short colour,
                                        long flags) {
  if (!ltype) ltype = &m_data.getLtypeContinuous();
  if (CLayer* known = m_data.getLayerTable().get(name)) {
    // A layer that was only implied by a name gets its properties from its declaration; otherwise
    // the first declaration applies.
    if (m_hurriedLayers.erase(known) == 0) return;
    known->setLtype(ltype);
    known->setColor(colour);
    known->setFlags(flags);
  } else {
    addNew(m_data.getLayerTable(), m_data.getLayerFactory().create(name, ltype, colour, flags));
  }
}

void IFileDXFIDataSemantor::createLayerXRef(const zim::WString& xref, const zim::WString& name,
                                            CLtype* ltype, short colour, long flags) {
  CBlockXRef* owner = needXRef(xref);
  if (!owner) return;
  if (!ltype) ltype = &m_data.getLtypeContinuous();
  if (CLayer* known = owner->getLayerTable().get(name)) {
    if (m_hurriedLayers.erase(known) == 0) return;
    known->setLtype(ltype);
    known->setColor(colour);
    known->setFlags(flags);
  } else {
    addNew(owner->getLayerTable(),
           m_data.getLayerFactory().createXRef(*owner, name, ltype, colour, flags));
  }
}

CLayer* IFileDXFIDataSemantor::createLayerHurried(const zim::WString& name) {
  // Layers that entities name without a declaration are continuous, with the default color.
  CLtype* continuous = getLtype(u"continuous");
  zim::WString xref, local;
  if (scomposeName(name, xref, local))
    createLayerXRef(xref, local, continuous, kUndeclaredColor, 0);
  else
    createLayer(name, continuous, kUndeclaredColor, 0);
  CLayer* layer = getLayer(name);
  if (layer) m_hurriedLayers.insert(layer);
  return layer;
}

void IFileDXFIDataSemantor::createLtype(const zim::WString& name, const zim::WString& description,
                                        CLtypeComplexDashSeq& dashes, long flags) {
  // The first definition of a name applies.
  if (m_data.getLtypeTable().get(name)) return;
  addNew(m_data.getLtypeTable(), m_data.getLtypeFactory().create(name, description, dashes, flags));
}

void IFileDXFIDataSemantor::createLtypeXRef(const zim::WString& xref, const zim::WString& name,
                                            const zim::WString& description,
                                            CLtypeComplexDashSeq& dashes, long flags) {
  CBlockXRef* owner = needXRef(xref);
  if (!owner || owner->getLtypeTable().get(name)) return;
  addNew(owner->getLtypeTable(),
         m_data.getLtypeFactory().createXRef(*owner, name, description, dashes, flags));
}

void IFileDXFIDataSemantor::createStyle(const zim::WString& name, const ICADFont* font,
                                        double fixedHeight, double widthScale, double oblique,
                                        double lastHeight, long flags) {
  if (getStyle(name)) return;
  addNew(m_data.getStyleTable(),
         m_data.getStyleFactory().create(name, font, fixedHeight, widthScale, oblique, lastHeight,
                                         flags));
}

const ICADFont* IFileDXFIDataSemantor::getFont(const zim::WString& name) {
  const CFontTable& fonts = CFontTable::getInstance();
  if (!m_options.policy.keepFontNames) return fonts.get(name, true);
  if (const ICADFont* font = fonts.get(name, false)) return font;
  note(ReportCode::FontUnknown, name);
  return m_data.needFont(name.empty() ? zim::WString(u"txt") : name);
}

// -- external references -----------------------------------------------------------

CBlockXRef* IFileDXFIDataSemantor::findXRef(const zim::WString& name) const {
  return m_data.getBlockXRefTable().get(name);
}

CBlockXRef* IFileDXFIDataSemantor::getXRef(const zim::WString& name) {
  CBlockXRef* xref = findXRef(name);
  if (!xref) fail(CFileDXFIError::XRefNotFound);
  return xref;
}

CBlockXRef* IFileDXFIDataSemantor::addXRef(const zim::WString& name, const zim::WString& path,
                                           const PNT_3D& base, long flags) {
  return addNew(m_data.getBlockXRefTable(),
                m_data.getBlockFactory().createXRef(
                    m_data.getLtypeContinuous(), m_data.getLtypeByLayer(), m_data.getLtypeByBlock(),
                    m_data.getLayer0(), name, path, base, flags));
}

// Tables precede the blocks that declare the references of dependent items.
CBlockXRef* IFileDXFIDataSemantor::needXRef(const zim::WString& name) {
  constexpr long xrefBlock = 4;
  if (CBlockXRef* xref = findXRef(name)) return xref;
  CBlockXRef* xref = addXRef(name, {}, PNT_3D(0, 0, 0), xrefBlock);
  if (xref) m_announcedXRefs.insert(xref);
  return xref;
}

void IFileDXFIDataSemantor::createBlockXRef(const zim::WString& name, const zim::WString& path,
                                            const PNT_3D& base, long flags) {
  CBlock* block = m_data.getBlockTable().get(name);
  Placeholder* placeholder = block ? findPlaceholder(*block) : nullptr;
  if (block && (!placeholder || placeholder->defined)) return fail(CFileDXFIError::XRefNotCreated);
  CBlockXRef* xref = findXRef(name);
  if (!xref)
    xref = addXRef(name, path, base, flags);
  else if (xref->getPath().empty())
    m_data.getBlockFactory().initXRef(*xref, path, base, flags);
  m_announcedXRefs.erase(xref);
  if (placeholder) placeholder->xref = xref;
}

bool IFileDXFIDataSemantor::isDeclared(const CBlockXRef* xref) const {
  return xref && m_announcedXRefs.count(xref) == 0;
}

bool IFileDXFIDataSemantor::isXRefName(const zim::WString& name) {
  if (!isDeclared(findXRef(name))) return false;
  fail(CFileDXFIError::XRefNotFound);
  return true;
}

// -- blocks ----------------------------------------------------------------------

CBlock* IFileDXFIDataSemantor::getBlock(const zim::WString& name) {
  CBlock* block = m_data.getBlockTable().get(name);
  if (!block) fail(CFileDXFIError::BlockNotFound);
  return block;
}

void IFileDXFIDataSemantor::freeHatchName(const zim::WString& name) {
  if (name.Length() > 2 && name[0] == u'*' && (name[1] == u'K' || name[1] == u'k'))
    freeRecordName(name);
  if (m_hatchBlocks.empty()) return;
  CBlock* block = m_data.getBlockTable().get(name);
  if (block && m_hatchBlocks.count(block) != 0)
    block->setName(getHatchName(m_data.getBlockTable()));
}

// Files do not use the names for the blocks of records, but they may.
void IFileDXFIDataSemantor::freeRecordName(const zim::WString& name) {
  CBlockTable& blocks = m_data.getBlockTable();
  CBlock* block = blocks.get(name);
  if (!block || !block->isOfRecord()) return;
  zim::WString free = block->getName();
  do {
    free += vek0::detail::kNextName;
  } while (blocks.get(free));
  block->setName(free);
}

// A hatch that cannot be generated keeps its data from the file.
CEntHatch* IFileDXFIDataSemantor::createHatch(CLayer* layer, CLtype* ltype, short colour,
                                              const HATCH_TYPE& type, double scale, double rotate,
                                              const std::vector<PNT_3D>& boundary,
                                              vek0::Handle handle) {
  std::unique_ptr<CBlock> block = generate({&type, scale, rotate}, boundary);
  std::unique_ptr<CEntHatch> hatch;
  if (!block) {
    note(ReportCode::HatchEmpty, type.name);
    hatch.reset(IFileDXFISemantor::createHatch(layer, ltype, colour, type, scale, rotate, boundary,
                                               handle));
  } else {
    hatch.reset(getEntFactory().createEntHatch(getHandleGestor(), layer, ltype, colour, block.get(),
                                               type, scale, rotate, boundary, handle));
    if (hatch && !vek0::detail::addHatchBlock(getBlockTable(), block)) hatch.reset();
  }
  if (!hatch) {
    fail(CFileDXFIError::GeneralError);
    return nullptr;
  }
  m_hatchBlocks.insert(hatch->getBlock());
  return hatch.release();
}

// A few lines in a file can request millions of pieces, and there can be many such hatches.
std::unique_ptr<CBlock> IFileDXFIDataSemantor::generate(
    const vek0::detail::HatchParameters& parameters, const std::vector<PNT_3D>& boundary) {
  m_hatchRoom += vek0::detail::kShareOfEachHatch * m_data.getHatchLimit();
  constexpr double cutsPerPiece = 20;  // which take as long as making a piece
  const double cuts = static_cast<double>(boundary.size()) * parameters.type->numLines;
  if (cuts > m_hatchRoom * cutsPerPiece) return nullptr;
  m_hatchRoom -= cuts / cutsPerPiece;
  const HatchLimit limit(m_data, m_hatchRoom);
  std::unique_ptr<CBlock> block(
      vek0::detail::makeHatchBlock(getHatchName(getBlockTable()), parameters, boundary, m_data));
  if (block) m_hatchRoom -= static_cast<double>(block->size());
  return block;
}

CHatchTypeTable& IFileDXFIDataSemantor::getHatchTypeTable() { return m_data.getHatchTypeTable(); }

CBlock* IFileDXFIDataSemantor::findBlock(const zim::WString& name) {
  freeHatchName(name);
  CBlockXRef* xref = findXRef(name);
  return isDeclared(xref) ? xref : m_data.getBlockTable().get(name);
}

CBlock* IFileDXFIDataSemantor::createBlockHurried(const zim::WString& name, long flags) {
  CBlock* block = addNew(m_data.getBlockTable(), m_data.getBlockFactory().create(name, flags));
  m_placeholderIndex.emplace(block, m_placeholders.size());
  m_placeholders.push_back({block, false, nullptr});
  return block;
}

IFileDXFIDataSemantor::Placeholder* IFileDXFIDataSemantor::findPlaceholder(const CBlock& block) {
  const auto found = m_placeholderIndex.find(&block);
  return found == m_placeholderIndex.end() ? nullptr : &m_placeholders[found->second];
}

bool IFileDXFIDataSemantor::isPlaceholder(const CBlock& block) const {
  return m_placeholderIndex.count(&block) != 0;
}

void IFileDXFIDataSemantor::createFreshBlock(const zim::WString& name, const PNT_3D& base,
                                             long flags, std::list<CEnt*>& entities) {
  std::unique_ptr<CBlock> block(m_data.getBlockFactory().create(name, base, flags));
  if (!block) {
    discard(entities);
    return fail(CFileDXFIError::GeneralError);
  }
  for (; !entities.empty(); entities.pop_front()) block->add(entities.front());
  addNew(m_data.getBlockTable(), block.release());
}

// Drops inserts that would make the block contain itself. Each block is checked once, and none if
// all of them together are harmless.
void IFileDXFIDataSemantor::dropCircles(CBlock& block, std::list<CEnt*>& entities) const {
  const CBlockTable& blocks = m_data.getBlockTable();
  if (blocks.canRedefine(&block, entities)) return;
  std::unordered_map<CBlock*, bool> circles;
  const auto isCircle = [&](CBlock* inserted) {
    const auto [known, isNew] = circles.try_emplace(inserted, false);
    if (isNew) known->second = !blocks.getBlockGraph().canSubstitute(block, {inserted});
    return known->second;
  };
  entities.remove_if([&](CEnt* ent) {
    const CEntInsertBase* insert = ent->getEntInsert();
    if (!insert || !insert->getBlock() || !isCircle(insert->getBlock())) return false;
    note(ReportCode::InsertDropped, insert->getBlock()->getName());
    delete ent;
    return true;
  });
}

void IFileDXFIDataSemantor::redefineBlock(CBlock& block, const PNT_3D& base, long flags,
                                          std::list<CEnt*>& entities) {
  const std::unique_ptr<CBlockMemento> old(block.createMemento());
  if (m_options.policy.tolerant) dropCircles(block, entities);
  if (!old || m_data.getBlockTable().Redefine(&block, base, flags, entities) != 0) {
    discard(entities);
    return fail(old ? CFileDXFIError::BlockNotFound : CFileDXFIError::GeneralError);
  }
  entities.clear();
  old->destroyEntity();
  if (Placeholder* placeholder = findPlaceholder(block)) placeholder->defined = true;
}

void IFileDXFIDataSemantor::discard(std::list<CEnt*>& entities) {
  for (CEnt* ent : entities) delete ent;
  entities.clear();
}

std::vector<CBlock*> IFileDXFIDataSemantor::undefinedBlocks() const {
  std::vector<CBlock*> blocks;
  for (const Placeholder& placeholder : m_placeholders)
    if (!placeholder.defined && !placeholder.xref) blocks.push_back(placeholder.block);
  return blocks;
}

void IFileDXFIDataSemantor::dropBlock(CBlock& block) {
  m_placeholderIndex.erase(&block);
  m_data.getBlockTable().remove(&block);
  delete &block;
}

// -- the end of the file -----------------------------------------------------------

void IFileDXFIDataSemantor::settle() {
  dropFalseXRefs();
  repointInserts();
  dropUnusedHatchBlocks();
  refillSolids();
  m_data.getBlockTable().recalcBdry();
  m_data.getEntTable().invalidateBdry();
}

// Items are read before the blocks that determine whether "X|L" is a layer of the reference X or
// just has that name, as after binding a reference manually.
void IFileDXFIDataSemantor::dropFalseXRefs() {
  std::vector<CBlockXRef*> wrong;
  const CBlockXRefTable& xrefs = m_data.getBlockXRefTable();
  for (int i = 0; i < xrefs.size() && !m_announcedXRefs.empty(); ++i)
    if (!isDeclared(xrefs[i]) && m_data.getBlockTable().get(xrefs[i]->getName()))
      wrong.push_back(xrefs[i]);
  vek0::detail::dropFalseXRefs(m_data, wrong);
  m_announcedXRefs.clear();
}

// Deletes blocks of hatches that were not added to the drawing: in paper space, or in a rejected
// block.
void IFileDXFIDataSemantor::dropUnusedHatchBlocks() {
  for (CBlock* block : m_hatchBlocks)
    if (block->getEntities() == 0) dropBlock(*block);
  m_hatchBlocks.clear();
}

void IFileDXFIDataSemantor::adoptHatch(CEntHatch& hatch) {
  if (isSolid(hatch.getHatchType()) && hatch.getBlock()) m_solidBlocks.insert(hatch.getBlock());
}

void IFileDXFIDataSemantor::refillSolids() {
  if (m_solidBlocks.empty()) return;
  const auto look = [this](const CEntInsertBase* insert) {
    if (insert && insert->getType() == CEntHatch::kType && m_solidBlocks.count(insert->getBlock()))
      refill(static_cast<const CEntHatch&>(*insert));
  };
  const CBlockTable& blocks = m_data.getBlockTable();
  for (int i = 0; i < static_cast<int>(blocks.size()); ++i)
    for (CBlock::CInsertIterator insert(*blocks[i]); *insert; ++insert) look(*insert);
  for (CEnt* ent : m_data.getEntTable().getEntityTbl()) look(ent->getEntInsert());
}

// Strict reading skips the records of filled faces, and the classic form has outlines instead.
void IFileDXFIDataSemantor::refill(const CEntHatch& hatch) {
  CBlock& block = *hatch.getBlock();
  if (block.size() == 0) {
    const std::unique_ptr<CBlock> fresh =
        generate({&hatch.getHatchType(), hatch.getHatchScale(), hatch.getHatchRotate()},
                 hatch.getBoundary());
    if (!fresh) return note(ReportCode::HatchEmpty, hatch.getHatchType().name);
    std::list<CEnt*> pieces;
    for (unsigned i = 0; i < fresh->size(); ++i) pieces.push_back((*fresh)[i]);
    fresh->clearEntities();
    try {
      return redefineBlock(block, block.getPnt(), block.getFlags(), pieces);
    } catch (const std::bad_alloc&) {
      discard(pieces);
      throw;
    }
  }
  for (unsigned i = 0; i < block.size(); ++i) {
    if (block[i]->getType() != CEnt3DFace::kType) continue;
    auto& face = static_cast<CEnt3DFace&>(*block[i]);
    face.setFlags(CEnt3DFace::kNoEdges);
    if (!face.isFilled()) face.setFill(FaceFill::Solid);
  }
}

void IFileDXFIDataSemantor::reorder(CBlock* block, const EntSorter& sorter) {
  CEntTable& table = m_data.getEntTable();
  std::vector<CEnt*> entities(block ? 0 : table.getEntityTbl().size());
  if (!block) std::copy(table.getEntityTbl().begin(), table.getEntityTbl().end(), entities.begin());
  for (unsigned i = 0; block && i < block->size(); ++i) entities.push_back((*block)[i]);
  if (!sorter(entities)) return;
  if (!block) return table.reorder(entities);
  // The block keeps its memory, so that nothing can fail.
  block->clearEntities();
  for (CEnt* ent : entities) block->restore(ent);
}

bool IFileDXFIDataSemantor::repoint(CEntInsertBase& insert) {
  Placeholder* placeholder = insert.getBlock() ? findPlaceholder(*insert.getBlock()) : nullptr;
  if (!placeholder || !placeholder->xref) return false;
  insert.setBlock(placeholder->xref);
  return true;
}

// An insert may precede the entry that declares its block as an external reference.
void IFileDXFIDataSemantor::repointInserts() {
  const auto isXRef = [](const Placeholder& placeholder) { return placeholder.xref != nullptr; };
  if (std::none_of(m_placeholders.begin(), m_placeholders.end(), isXRef)) return;
  CBlockTable& blocks = m_data.getBlockTable();
  for (int i = 0; i < static_cast<int>(blocks.size()); ++i) {
    bool changed = false;
    for (CBlock::CInsertIterator insert(*blocks[i]); *insert; ++insert)
      changed = repoint(**insert) || changed;
    if (changed) blocks.updateBlock(blocks[i]);
  }
  for (CEnt* ent : m_data.getEntTable().getEntityTbl())
    if (CEntInsertBase* insert = ent->getEntInsert()) repoint(*insert);
  for (const Placeholder& placeholder : m_placeholders)
    if (placeholder.xref) dropBlock(*placeholder.block);
  m_placeholders.clear();
}
