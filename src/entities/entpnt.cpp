#include "vek0core/entities/entpnt.h"

#include <new>

#include "vek0core/entities/entvisitor.h"

CEntPnt::CEntPnt(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color, const PNT_3D& pnt)
    : CEnt(handle, layer, ltype, color), m_pnt(pnt) {
  CEntPnt::calcBdry();
}

CEntPnt::CEntPnt(const CEntPnt& src, vek0::Handle handle) : CEnt(src, handle), m_pnt(src.m_pnt) {}

void CEntPnt::accept(IEntVisitor& visitor) { visitor.visit(*this); }

void CEntPnt::setMemento(CData&, const IEntDerivedMemento* memento) {
  const auto* state = vek0::detail::mementoOf<CEntPnt, CEntPntMemento>(memento);
  if (state != nullptr) setPnt(state->value());
}

void CEntPnt::calcBdry() {
  RECT_3D box;
  m_pnt.calc_bdry(box);
  setBdry(box);
}

IEntDerivedMemento* CEntPnt::createDerivedMemento() const {
  return new (std::nothrow) CEntPntMemento(m_pnt);
}

void CEntPnt::setPnt(const PNT_3D& pnt) {
  m_pnt = pnt;
  calcBdry();
}

void CEntPnt::setPnt(double x, double y, double z) {
  m_pnt.set(x, y, z);
  calcBdry();
}

CEnt* CEntPnt::clone(IHandleGestor&, CEntFactory&, CBlockFactory&, CBlockTable&,
                     vek0::Handle handle) const {
  return new (std::nothrow) CEntPnt(*this, handle);
}
