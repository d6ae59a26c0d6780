#include "vek0core/entities/edit/entpolyaddervisitor.h"

#include "entities/edit/openchain.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpolyline.h"

using vek0::detail::OpenChain;

CEntPolyAdderVisitor::CEntPolyAdderVisitor(CEntPolyline& polyline, double tolerance)
    : m_polyline(polyline), m_tolerance(tolerance), m_chain(std::make_unique<OpenChain>()) {
  if (polyline.isCurve() || !m_chain->take(polyline, tolerance)) m_chain.reset();
}

CEntPolyAdderVisitor::~CEntPolyAdderVisitor() = default;

bool CEntPolyAdderVisitor::add(const CEnt& ent) {
  OpenChain other;
  if (!m_chain || &ent == &m_polyline || !other.take(ent, m_tolerance)) return false;
  const auto meet = [this](const PNT_3D& a, const PNT_3D& b) { return a.dist(b) <= m_tolerance; };
  if (meet(m_chain->end(), other.start()))
    m_chain->append(other);
  else if (meet(m_chain->end(), other.end()))
    m_chain->appendReversed(other);
  else if (meet(m_chain->start(), other.end()))
    m_chain->prepend(other);
  else if (meet(m_chain->start(), other.start()))
    m_chain->prependReversed(other);
  else
    return false;
  m_isChanged = true;
  return true;
}

bool CEntPolyAdderVisitor::finish(IHandleGestor& gestor, CEntFactory& factory) {
  if (!m_isChanged) return m_polyline.isClosed();
  const bool isClosed = m_chain->close(m_tolerance);
  m_chain->write(gestor, factory, m_polyline);
  if (isClosed) m_polyline.close(gestor, factory, false);
  m_isChanged = false;
  if (isClosed) m_chain.reset();
  return isClosed;
}

void CEntPolyAdderVisitor::visit(CEntLine& ent) { m_isAdded = add(ent); }

void CEntPolyAdderVisitor::visit(CEntArc& ent) { m_isAdded = add(ent); }

void CEntPolyAdderVisitor::visit(CEntPolyline& ent) { m_isAdded = add(ent); }

void CEntPolyAdderVisitor::visit(CEntPnt&) { m_isAdded = false; }

void CEntPolyAdderVisitor::visit(CEntCircle&) { m_isAdded = false; }

void CEntPolyAdderVisitor::visit(CEntText&) { m_isAdded = false; }

void CEntPolyAdderVisitor::visit(CEntAttdef&) { m_isAdded = false; }

void CEntPolyAdderVisitor::visit(CEntInsert&) { m_isAdded = false; }

void CEntPolyAdderVisitor::visit(CEntFixedInsert&) { m_isAdded = false; }

void CEntPolyAdderVisitor::visit(CEntInsertXRef&) { m_isAdded = false; }

void CEntPolyAdderVisitor::visit(CEntAttrib&) { m_isAdded = false; }

void CEntPolyAdderVisitor::visit(CEntHatch&) { m_isAdded = false; }

void CEntPolyAdderVisitor::visit(CEnt3DFace&) { m_isAdded = false; }
