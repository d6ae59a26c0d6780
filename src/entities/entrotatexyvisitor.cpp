#include "vek0core/entities/entrotatexyvisitor.h"

#include <cmath>

#include "entities/hatchtransform.h"
#include "entities/oneturn.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entinsert.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/entities/enttext.h"

namespace {

using vek0::detail::oneTurn;

void rotateText(CEntText& ent, const PNT_3D& centre, double angle) {
  ent.getText().rotate(centre, angle);
  ent.calcBdry();
}

template <class Insert>
void rotateInsert(Insert& ent, const PNT_3D& centre, double angle) {
  PNT_3D pnt = ent.getPnt();
  pnt.rotate(centre, angle);
  ent.setRotate(oneTurn(ent.getRotate() + angle));
  ent.setPnt(pnt);
}

}  // namespace

// A turn by nothing changes nothing, which is what becomes of one that is no turn.
CEntRotateXYVisitor::CEntRotateXYVisitor(const PNT_3D& centre, double angle)
    : m_centre(centre), m_angle(angle) {
  if (!std::isfinite(centre.x) || !std::isfinite(centre.y) || !std::isfinite(angle)) {
    m_centre.set(0, 0, 0);
    m_angle = 0;
  }
}

void CEntRotateXYVisitor::visit(CEntPnt& ent) {
  ent.getPnt().rotate(m_centre, m_angle);
  ent.calcBdry();
}

void CEntRotateXYVisitor::visit(CEntLine& ent) {
  ent.getLine().rotate(m_centre, m_angle);
  ent.calcBdry();
}

void CEntRotateXYVisitor::visit(CEntCircle& ent) {
  ent.getCircle().rotate(m_centre, m_angle);
  ent.calcBdry();
}

void CEntRotateXYVisitor::visit(CEntArc& ent) {
  ent.getArc().rotate(m_centre, m_angle);
  ent.calcBdry();
}

void CEntRotateXYVisitor::visit(CEntPolyline& ent) {
  ent.rotate(m_centre, m_angle);
  ent.calcBdry();
}

void CEntRotateXYVisitor::visit(CEntText& ent) { rotateText(ent, m_centre, m_angle); }

void CEntRotateXYVisitor::visit(CEntAttdef& ent) { rotateText(ent, m_centre, m_angle); }

void CEntRotateXYVisitor::visit(CEntAttrib& ent) { rotateText(ent, m_centre, m_angle); }

void CEntRotateXYVisitor::visit(CEntInsert& ent) { rotateInsert(ent, m_centre, m_angle); }

void CEntRotateXYVisitor::visit(CEntFixedInsert& ent) { rotateInsert(ent, m_centre, m_angle); }

void CEntRotateXYVisitor::visit(CEntInsertXRef& ent) { rotateInsert(ent, m_centre, m_angle); }

void CEntRotateXYVisitor::visit(CEntHatch& ent) {
  vek0::detail::transformHatch(ent, *this, [this](PNT_3D& p) { p.rotate(m_centre, m_angle); });
  ent.setHatchRotate(ARC_3D::normal(ent.getHatchRotate() + m_angle));
}

void CEntRotateXYVisitor::visit(CEnt3DFace& ent) {
  for (long i = 0; i < 4; ++i) ent.getVertex(i).rotate(m_centre, m_angle);
  ent.calcBdry();
}
