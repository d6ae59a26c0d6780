#include "vek0core/entities/entarc.h"

#include <new>

#include "vek0core/entities/entvisitor.h"

CEntArc::CEntArc(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color, const ARC_3D& arc)
    : CEnt(handle, layer, ltype, color), m_arc(arc) {
  CEntArc::calcBdry();
}

CEntArc::CEntArc(const CEntArc& src, vek0::Handle handle) : CEnt(src, handle), m_arc(src.m_arc) {}

void CEntArc::accept(IEntVisitor& visitor) { visitor.visit(*this); }

void CEntArc::setMemento(CData&, const IEntDerivedMemento* memento) {
  const auto* state = vek0::detail::mementoOf<CEntArc, CEntArcMemento>(memento);
  if (state != nullptr) setArc(state->value());
}

void CEntArc::calcBdry() {
  RECT_3D box;
  m_arc.calc_bdry(box);
  setBdry(box);
}

IEntDerivedMemento* CEntArc::createDerivedMemento() const {
  return new (std::nothrow) CEntArcMemento(m_arc);
}

void CEntArc::setArc(const ARC_3D& arc) {
  m_arc = arc;
  calcBdry();
}

void CEntArc::setArc(double cx, double cy, double cz, double radius, double startAngle,
                     double endAngle) {
  m_arc.set(cx, cy, cz, radius, startAngle, endAngle);  // reduces the angles
  calcBdry();
}

void CEntArc::getArc(double& cx, double& cy, double& cz, double& radius, double& startAngle,
                     double& endAngle) const {
  m_arc.get(cx, cy, cz, radius, startAngle, endAngle);
}

CEnt* CEntArc::clone(IHandleGestor&, CEntFactory&, CBlockFactory&, CBlockTable&,
                     vek0::Handle handle) const {
  return new (std::nothrow) CEntArc(*this, handle);
}
