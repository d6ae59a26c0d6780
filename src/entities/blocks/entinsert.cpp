// Inserts of three kinds. An insert counts as a use of its block from `addTbls` to `removeTbls`, so
// an insert held by an undo step does not keep the block in use.
#include "vek0core/entities/blocks/entinsert.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

#include "entities/entservices.h"
#include "entities/newornull.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blockxref.h"
#include "vek0core/entities/blocks/insertmatrix.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/entities/entvisitor.h"
#include "vek0core/geometry/finite.h"

CEntInsertBase::CEntInsertBase(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color,
                               CBlock* block)
    : CEnt(handle, layer, ltype, color), m_block(block) {
  dirtyBdry();
}

CEntInsertBase::CEntInsertBase(IHandleGestor& gestor, CEntFactory& factory,
                               const CEntInsertBase& src, vek0::Handle handle)
    : CEnt(src, handle), m_block(src.m_block) {
  m_attribs.reserve(src.m_attribs.size());
  for (const auto& attrib : src.m_attribs) {
    m_attribs.emplace_back(factory.createEntAttrib(gestor, *attrib));
    // A factory reports a lack of memory by null, which a constructor cannot return.
    if (!m_attribs.back()) throw std::bad_alloc();
  }
  copyRecord(src);
}

CEntInsertBase::CEntInsertBase(const CEntInsertBase& src, CBlock* block, vek0::Handle handle)
    : CEnt(src, handle), m_block(block) {
  dirtyBdry();
}

CEntInsertBase::~CEntInsertBase() = default;

void CEntInsertBase::copyRecord(const CEntInsertBase& src) {
  if (src.m_block && src.m_block->isOfRecord()) setRecord(src.getRecord());
}

zim::WString opaqueKindOf(const CEnt& ent) {
  constexpr std::size_t prefix = 2;  // "*K"
  const CEntInsertBase* insert = ent.getEntInsert();
  const bool isOpaque = ent.getRecord() == EntRecord::Opaque && insert && insert->getBlock();
  if (!isOpaque) return {};
  std::u16string_view kind = insert->getBlock()->getName().view().substr(prefix);
  while (kind.ends_with(vek0::detail::kNextName)) kind.remove_suffix(1);
  return zim::WString(kind);
}

void CEntInsertBase::addTbls(IHandleGestor& gestor) const {
  CEnt::addTbls(gestor);
  std::size_t done = 0;
  try {
    for (; done < m_attribs.size(); ++done) m_attribs[done]->addTbls(gestor);
  } catch (const std::bad_alloc&) {
    while (done-- > 0) m_attribs[done]->removeTbls(gestor);
    CEnt::removeTbls(gestor);
    throw;
  }
  if (m_block != nullptr) m_block->addEntity();
  m_gestor = &gestor;
}

void CEntInsertBase::removeTbls(IHandleGestor& gestor) const {
  m_gestor = nullptr;
  for (const auto& attrib : m_attribs) attrib->removeTbls(gestor);
  if (m_block != nullptr) m_block->decEntity();
  CEnt::removeTbls(gestor);
}

void CEntInsertBase::calcBdry() {
  RECT_3D box;
  DoCalcBdry(1, box);
  setBdry(box);
}

void CEntInsertBase::add(CEntAttrib* attrib) {
  if (attrib == nullptr) return;
  m_attribs.emplace_back();
  try {
    // An insert that is already registered must register later attributes itself.
    if (m_gestor != nullptr) attrib->addTbls(*m_gestor);
  } catch (const std::bad_alloc&) {
    m_attribs.pop_back();
    throw;
  }
  m_attribs.back().reset(attrib);
  dirtyBdry();
}

unsigned CEntInsertBase::GetNoAttribs() const { return static_cast<unsigned>(m_attribs.size()); }

CEntAttrib* CEntInsertBase::GetAttrib(unsigned i) const {
  return i < m_attribs.size() ? m_attribs[i].get() : nullptr;
}

void CEntInsertBase::getArray(long& columns, long& rows, double& columnSpacing,
                              double& rowSpacing) const {
  columns = rows = 1;
  columnSpacing = rowSpacing = 0;
}

void CEntInsertBase::setBlock(CBlock* block) {
  if (m_gestor != nullptr) countReference(block, true);  // first: only this can fail
  if (m_gestor != nullptr) countReference(m_block, false);
  if (m_block != nullptr) m_block->decEntity();
  m_block = block;
  if (m_block != nullptr) m_block->addEntity();
  dirtyBdry();
}

void CEntInsertBase::countReference(CBlock*, bool) const {}

void CEntInsertBase::replaceBlock(CBlock* block) {
  if (m_gestor != nullptr) return setBlock(block);
  m_block = block;
  dirtyBdry();
}

void CEntInsertBase::DoCalcBdry(double pixelSize, RECT_3D& box) const {
  box.initRegion();
  RECT_3D part;
  if (m_block != nullptr) {
    const RECT_3D inner = static_cast<const CBlock&>(*m_block).getBdry();
    long columns, rows;
    double columnSpacing, rowSpacing;
    getArray(columns, rows, columnSpacing, rowSpacing);
    // A cell's offset is linear in row and column, so the four corner cells have the extents of the
    // whole array.
    const long lastColumn = std::max(columns, 1L) - 1, lastRow = std::max(rows, 1L) - 1;
    for (int corner = 0; corner < 4; ++corner) {
      const long row = (corner & 1) ? lastRow : 0, column = (corner & 2) ? lastColumn : 0;
      if (corner != 0 && row == 0 && column == 0) continue;
      CEntInsertMatrix(pixelSize, *this, row, column).transform(inner, part);
      box.updateRegion(part);
    }
  }
  if (!m_attribs.empty()) {
    const CEntInsertMatrix matrix(pixelSize, *this, 0, 0);
    for (const auto& attrib : m_attribs) {
      matrix.transform(attrib->getBdry(), part);
      box.updateRegion(part);
    }
  }
  // Huge scales overflow; empty extents keep the rest of the drawing reachable.
  if (!vek0::detail::isFinite(box)) box.initRegion();
}

CEntInsert::CEntInsert(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color,
                       CBlock* block, const PNT_3D& pnt, double sx, double sy, double sz,
                       double rotation, long columns, long rows, double columnSpacing,
                       double rowSpacing)
    : CEntInsertBase(handle, layer, ltype, color, block),
      m_pnt(pnt),
      m_sx(sx),
      m_sy(sy),
      m_sz(sz),
      m_rotation(rotation),
      m_columnSpacing(columnSpacing),
      m_rowSpacing(rowSpacing),
      m_columns(columns),
      m_rows(rows) {}

CEntInsert::CEntInsert(IHandleGestor& gestor, CEntFactory& factory, const CEntInsert& src,
                       vek0::Handle handle)
    : CEntInsertBase(gestor, factory, src, handle),
      m_pnt(src.m_pnt),
      m_sx(src.m_sx),
      m_sy(src.m_sy),
      m_sz(src.m_sz),
      m_rotation(src.m_rotation),
      m_columnSpacing(src.m_columnSpacing),
      m_rowSpacing(src.m_rowSpacing),
      m_columns(src.m_columns),
      m_rows(src.m_rows),
      m_clip(src.m_clip) {}

void CEntInsert::accept(IEntVisitor& visitor) { visitor.visit(*this); }

void CEntInsert::setMemento(CData& data, const IEntDerivedMemento* memento) {
  const auto* state = vek0::detail::mementoOf<CEntInsert, CEntInsertMemento>(memento);
  if (state == nullptr) return;
  const auto displaced = replaceParts(data, *memento);
  state->m_attribs.restore(data, *this);
  setInsert(state->m_pnt, state->m_sx, state->m_sy, state->m_sz, state->m_rotation);
  setArray(state->m_columns, state->m_rows, state->m_columnSpacing, state->m_rowSpacing);
  setClip(state->m_clip);
}

std::unique_ptr<vek0::detail::EntParts> CEntInsert::replaceParts(
    CData& data, const IEntDerivedMemento& memento) {
  const auto* state = vek0::detail::mementoOf<CEntInsert, CEntInsertMemento>(&memento);
  return state != nullptr ? state->m_attribs.replaceAttribs(data, *this) : nullptr;
}

IEntDerivedMemento* CEntInsert::createDerivedMemento() const {
  return vek0::detail::newOrNull<CEntInsertMemento>(*this);
}

void CEntInsert::getInsertParams(double, PNT_3D& point, double& sx, double& sy, double& sz,
                                 double& rotation) const {
  point = m_pnt;
  getScale(sx, sy, sz);
  rotation = m_rotation;
}

void CEntInsert::getArray(long& columns, long& rows, double& columnSpacing,
                          double& rowSpacing) const {
  columns = m_columns;
  rows = m_rows;
  columnSpacing = m_columnSpacing;
  rowSpacing = m_rowSpacing;
}

void CEntInsert::setPnt(const PNT_3D& pnt) {
  m_pnt = pnt;
  dirtyBdry();
}

void CEntInsert::getScale(double& sx, double& sy, double& sz) const {
  sx = m_sx;
  sy = m_sy;
  sz = m_sz;
}

void CEntInsert::setScale(double sx, double sy, double sz) {
  m_sx = sx;
  m_sy = sy;
  m_sz = sz;
  dirtyBdry();
}

void CEntInsert::setRotate(double rotation) {
  m_rotation = rotation;
  dirtyBdry();
}

void CEntInsert::setArray(long columns, long rows, double columnSpacing, double rowSpacing) {
  m_columns = columns;
  m_rows = rows;
  m_columnSpacing = columnSpacing;
  m_rowSpacing = rowSpacing;
  dirtyBdry();
}

void CEntInsert::setInsert(const PNT_3D& pnt, double sx, double sy, double sz, double rotation) {
  m_pnt = pnt;
  m_rotation = rotation;
  setScale(sx, sy, sz);
}

CEnt* CEntInsert::clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory&,
                        CBlockTable&, vek0::Handle handle) const {
  return new (std::nothrow) CEntInsert(gestor, entFactory, *this, handle);
}

CEntFixedInsert::CEntFixedInsert(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color,
                                 CBlock* block, const PNT_3D& pnt, double refSize, double pixels,
                                 double rotation)
    : CEntInsertBase(handle, layer, ltype, color, block),
      m_pnt(pnt),
      m_refSize(refSize),
      m_pixels(pixels),
      m_rotation(rotation) {}

CEntFixedInsert::CEntFixedInsert(IHandleGestor& gestor, CEntFactory& factory,
                                 const CEntFixedInsert& src, vek0::Handle handle)
    : CEntInsertBase(gestor, factory, src, handle),
      m_pnt(src.m_pnt),
      m_refSize(src.m_refSize),
      m_pixels(src.m_pixels),
      m_rotation(src.m_rotation) {}

void CEntFixedInsert::accept(IEntVisitor& visitor) { visitor.visit(*this); }

void CEntFixedInsert::setMemento(CData& data, const IEntDerivedMemento* memento) {
  const auto* state = vek0::detail::mementoOf<CEntFixedInsert, CEntFixedInsertMemento>(memento);
  if (state == nullptr) return;
  const auto displaced = replaceParts(data, *memento);
  state->m_attribs.restore(data, *this);
  m_refSize = state->m_refSize;
  setInsert(state->m_pnt, state->m_pixels, state->m_rotation);
}

void CEntFixedInsert::GetBdry(double pixelSize, RECT_3D& box) const { DoCalcBdry(pixelSize, box); }

void CEntFixedInsert::calcBdry() {
  // Depends on the zoom: only the insertion point counts for the drawing's extents.
  RECT_3D box;
  m_pnt.calc_bdry(box);
  setBdry(box);
}

std::unique_ptr<vek0::detail::EntParts> CEntFixedInsert::replaceParts(
    CData& data, const IEntDerivedMemento& memento) {
  const auto* state = vek0::detail::mementoOf<CEntFixedInsert, CEntFixedInsertMemento>(&memento);
  return state != nullptr ? state->m_attribs.replaceAttribs(data, *this) : nullptr;
}

IEntDerivedMemento* CEntFixedInsert::createDerivedMemento() const {
  return vek0::detail::newOrNull<CEntFixedInsertMemento>(*this);
}

void CEntFixedInsert::getInsertParams(double pixelSize, PNT_3D& point, double& sx, double& sy,
                                      double& sz, double& rotation) const {
  point = m_pnt;
  // The size in pixels is fixed, so the scale depends on the size of a pixel.
  sx = sy = sz = m_refSize == 0 ? 0 : m_pixels / m_refSize * pixelSize;
  rotation = m_rotation;
}

void CEntFixedInsert::setPnt(const PNT_3D& pnt) {
  m_pnt = pnt;
  dirtyBdry();
}

void CEntFixedInsert::setInsert(const PNT_3D& pnt, double pixels, double rotation) {
  m_pixels = pixels;
  m_rotation = rotation;
  setPnt(pnt);
}

CEnt* CEntFixedInsert::clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory&,
                             CBlockTable&, vek0::Handle handle) const {
  return new (std::nothrow) CEntFixedInsert(gestor, entFactory, *this, handle);
}

CEntInsertXRef::CEntInsertXRef(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color,
                               CBlockXRefDepend& depend, CBlockXRef* xref, const PNT_3D& pnt,
                               double sx, double sy, double sz, double rotation, long columns,
                               long rows, double columnSpacing, double rowSpacing)
    : CEntInsert(handle, layer, ltype, color, xref, pnt, sx, sy, sz, rotation, columns, rows,
                 columnSpacing, rowSpacing),
      m_depend(depend) {}

CEntInsertXRef::CEntInsertXRef(IHandleGestor& gestor, CEntFactory& factory,
                               const CEntInsertXRef& src, vek0::Handle handle)
    : CEntInsert(gestor, factory, src, handle), m_depend(src.m_depend) {}

void CEntInsertXRef::accept(IEntVisitor& visitor) {
  // If it now shows an ordinary block, it is just an insert.
  getXRef() != nullptr ? visitor.visit(*this) : CEntInsert::accept(visitor);
}

void CEntInsertXRef::addTbls(IHandleGestor& gestor) const {
  countReference(getBlock(), true);  // first: only this can fail
  CEntInsert::addTbls(gestor);
}

void CEntInsertXRef::removeTbls(IHandleGestor& gestor) const {
  countReference(getBlock(), false);
  CEntInsert::removeTbls(gestor);
}

void CEntInsertXRef::countReference(CBlock* block, bool on) const {
  CBlockXRef* xref =
      block != nullptr && block->isXRef() ? static_cast<CBlockXRef*>(block) : nullptr;
  on ? m_depend.add(xref) : m_depend.remove(xref);
}

CBlockXRef* CEntInsertXRef::getXRef() const {
  CBlock* block = getBlock();
  return block != nullptr && block->isXRef() ? static_cast<CBlockXRef*>(block) : nullptr;
}

CEnt* CEntInsertXRef::clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory&,
                            CBlockTable&, vek0::Handle handle) const {
  return new (std::nothrow) CEntInsertXRef(gestor, entFactory, *this, handle);
}

CEntInsertMemento::CEntInsertMemento(const CEntInsert& ent)
    : m_attribs(ent),
      m_pnt(ent.m_pnt),
      m_sx(ent.m_sx),
      m_sy(ent.m_sy),
      m_sz(ent.m_sz),
      m_rotation(ent.m_rotation),
      m_columnSpacing(ent.m_columnSpacing),
      m_rowSpacing(ent.m_rowSpacing),
      m_columns(ent.m_columns),
      m_rows(ent.m_rows),
      m_clip(ent.m_clip) {}

bool CEntInsertMemento::operator==(const CEnt& ent) const {
  if (ent.getType() != CEntInsert::kType) return false;
  const auto& insert = static_cast<const CEntInsert&>(ent);
  return insert.m_pnt == m_pnt && insert.m_sx == m_sx && insert.m_sy == m_sy &&
         insert.m_sz == m_sz && insert.m_rotation == m_rotation && insert.m_columns == m_columns &&
         insert.m_rows == m_rows && insert.m_columnSpacing == m_columnSpacing &&
         insert.m_rowSpacing == m_rowSpacing && insert.m_clip == m_clip &&
         m_attribs.matches(insert);
}

CEntFixedInsertMemento::CEntFixedInsertMemento(const CEntFixedInsert& ent)
    : m_attribs(ent),
      m_pnt(ent.m_pnt),
      m_refSize(ent.m_refSize),
      m_pixels(ent.m_pixels),
      m_rotation(ent.m_rotation) {}

bool CEntFixedInsertMemento::operator==(const CEnt& ent) const {
  if (ent.getType() != CEntFixedInsert::kType) return false;
  const auto& insert = static_cast<const CEntFixedInsert&>(ent);
  return insert.m_pnt == m_pnt && insert.m_refSize == m_refSize && insert.m_pixels == m_pixels &&
         insert.m_rotation == m_rotation && m_attribs.matches(insert);
}
