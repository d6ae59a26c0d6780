#include "vek0core/entities/blocks/entmovevisitor.h"

#include <cmath>

#include "entities/blocks/hatchtransform.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/entities/enttext.h"

namespace {

// TEXT_3D is its own insertion point.
void moveText(CEntText& ent, const PNT_3D& delta) {
  ent.getText().move(delta);
  ent.moveBdry(delta);
}

template <class Insert>
void moveInsert(Insert& ent, const PNT_3D& delta) {
  ent.setPnt(ent.getPnt() + delta);
}

}  // namespace

// A non-finite move is replaced by a zero move, which has no effect.
CEntMoveVisitor::CEntMoveVisitor(const PNT_3D& delta) : m_delta(delta) {
  if (!std::isfinite(delta.x) || !std::isfinite(delta.y) || !std::isfinite(delta.z))
    m_delta.set(0, 0, 0);
}

void CEntMoveVisitor::visit(CEntPnt& ent) {
  ent.getPnt().move(m_delta);
  ent.calcBdry();
}

void CEntMoveVisitor::visit(CEntLine& ent) {
  ent.getLine().move(m_delta);
  ent.calcBdry();
}

void CEntMoveVisitor::visit(CEntCircle& ent) {
  ent.getCircle().move(m_delta);
  ent.calcBdry();
}

void CEntMoveVisitor::visit(CEntArc& ent) {
  ent.getArc().move(m_delta);
  ent.calcBdry();
}

void CEntMoveVisitor::visit(CEntPolyline& ent) {
  ent.translate(m_delta);
  ent.moveBdry(m_delta);
}

void CEntMoveVisitor::visit(CEntText& ent) { moveText(ent, m_delta); }

void CEntMoveVisitor::visit(CEntAttdef& ent) { moveText(ent, m_delta); }

void CEntMoveVisitor::visit(CEntAttrib& ent) { moveText(ent, m_delta); }

void CEntMoveVisitor::visit(CEntInsert& ent) { moveInsert(ent, m_delta); }

void CEntMoveVisitor::visit(CEntFixedInsert& ent) { moveInsert(ent, m_delta); }

void CEntMoveVisitor::visit(CEntInsertXRef& ent) { moveInsert(ent, m_delta); }

void CEntMoveVisitor::visit(CEntHatch& ent) {
  vek0::detail::transformHatch(ent, *this, [this](PNT_3D& p) { p.move(m_delta); });
}

void CEntMoveVisitor::visit(CEnt3DFace& ent) {
  for (long i = 0; i < 4; ++i) ent.getVertex(i).move(m_delta);
  ent.moveBdry(m_delta);
}
