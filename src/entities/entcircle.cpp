#include "vek0core/entities/entcircle.h"

#include <new>

#include "vek0core/entities/entvisitor.h"

CEntCircle::CEntCircle(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color,
                       const CIRCLE_3D& circle)
    : CEnt(handle, layer, ltype, color), m_circle(circle) {
  CEntCircle::calcBdry();
}

CEntCircle::CEntCircle(const CEntCircle& src, vek0::Handle handle)
    : CEnt(src, handle), m_circle(src.m_circle) {}

void CEntCircle::accept(IEntVisitor& visitor) { visitor.visit(*this); }

void CEntCircle::setMemento(CData&, const IEntDerivedMemento* memento) {
  const auto* state = vek0::detail::mementoOf<CEntCircle, CEntCircleMemento>(memento);
  if (state != nullptr) setCircle(state->value());
}

void CEntCircle::calcBdry() {
  RECT_3D box;
  m_circle.calc_bdry(box);
  setBdry(box);
}

IEntDerivedMemento* CEntCircle::createDerivedMemento() const {
  return new (std::nothrow) CEntCircleMemento(m_circle);
}

void CEntCircle::setCircle(const CIRCLE_3D& circle) {
  m_circle = circle;
  calcBdry();
}

void CEntCircle::setCircle(double cx, double cy, double cz, double radius) {
  m_circle.set(cx, cy, cz, radius);
  calcBdry();
}

void CEntCircle::getCircle(double& cx, double& cy, double& cz, double& radius) const {
  m_circle.get(cx, cy, cz, radius);
}

CEnt* CEntCircle::clone(IHandleGestor&, CEntFactory&, CBlockFactory&, CBlockTable&,
                        vek0::Handle handle) const {
  return new (std::nothrow) CEntCircle(*this, handle);
}
