#include "vek0core/entities/vertex.h"

#include <new>

#include "vek0core/entities/entvisitor.h"

CVertex::CVertex(const PNT_3D& pnt, double widthStart, double widthEnd, vek0::Handle handle)
    : IHandleEnt(handle), m_pnt(pnt), m_widthStart(widthStart), m_widthEnd(widthEnd) {}

CVertex::CVertex(const CVertex& src) = default;

CVertex::CVertex(const CVertex& src, vek0::Handle handle)
    : CVertex(src.m_pnt, src.m_widthStart, src.m_widthEnd, handle) {}

CVertex& CVertex::operator=(const CVertex& src) = default;

CVertex::~CVertex() = default;

void CVertex::accept(IEntVisitor& visitor) { visitor.visit(*this); }

CVertexMemento* CVertex::createMemento() const {
  return new (std::nothrow) CVertexMemento(m_pnt, m_widthStart, m_widthEnd);
}

void CVertex::setMemento(const CVertexMemento* memento) {
  if (memento == nullptr) return;
  m_pnt = memento->m_pnt;
  m_widthStart = memento->m_widthStart;
  m_widthEnd = memento->m_widthEnd;
}

CVertexMemento::CVertexMemento(const PNT_3D& pnt, double widthStart, double widthEnd)
    : m_pnt(pnt), m_widthStart(widthStart), m_widthEnd(widthEnd) {}

bool CVertexMemento::operator==(const CVertex& vertex) const {
  return vertex.getPnt() == m_pnt && vertex.GetWidthStart() == m_widthStart &&
         vertex.GetWidthEnd() == m_widthEnd;
}
