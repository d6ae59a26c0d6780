#include "vek0core/entities/entline.h"

#include <new>

#include "vek0core/entities/entvisitor.h"

CEntLine::CEntLine(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color,
                   const LINE_3D& line)
    : CEnt(handle, layer, ltype, color), m_line(line) {
  CEntLine::calcBdry();
}

// Drawings consist mostly of lines, and one more byte would make each 16 bytes larger.
static_assert(sizeof(CEntLine) == sizeof(CEnt) + sizeof(LINE_3D));

CEntLine::CEntLine(const CEntLine& src, vek0::Handle handle)
    : CEnt(src, handle), m_line(src.m_line) {
  setOwnByte(src.getOwnByte());
}

void CEntLine::accept(IEntVisitor& visitor) { visitor.visit(*this); }

void CEntLine::setMemento(CData&, const IEntDerivedMemento* memento) {
  const auto* state = vek0::detail::mementoOf<CEntLine, CEntLineMemento>(memento);
  if (state == nullptr) return;
  setReach(state->getReach());
  setLine(state->value());
}

bool CEntLineMemento::operator==(const CEnt& ent) const {
  return ValueMemento::operator==(ent) && static_cast<const CEntLine&>(ent).getReach() == m_reach;
}

void CEntLine::calcBdry() {
  RECT_3D box;
  m_line.calc_bdry(box);
  setBdry(box);
}

IEntDerivedMemento* CEntLine::createDerivedMemento() const {
  return new (std::nothrow) CEntLineMemento(*this);
}

// Renderers that select by extents must handle infinite lines separately, so watchers are notified.
void CEntLine::setReach(LineReach reach) {
  if (reach == getReach()) return;
  setOwnByte(static_cast<unsigned char>(reach));
  dirtyBdry();
}

void CEntLine::setLine(const LINE_3D& line) {
  m_line = line;
  calcBdry();
}

void CEntLine::setLine(double x1, double y1, double z1, double x2, double y2, double z2) {
  m_line.set(x1, y1, z1, x2, y2, z2);
  calcBdry();
}

void CEntLine::getLine(double& x1, double& y1, double& z1, double& x2, double& y2,
                       double& z2) const {
  m_line.get(x1, y1, z1, x2, y2, z2);
}

CEnt* CEntLine::clone(IHandleGestor&, CEntFactory&, CBlockFactory&, CBlockTable&,
                      vek0::Handle handle) const {
  return new (std::nothrow) CEntLine(*this, handle);
}
