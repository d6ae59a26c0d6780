// Rotates entities about z. Angles in drawings are mostly whole degrees; adding radians would leave
// 89.99999999 where a user expects 90. So a rotation that is given in degrees (`byDegrees`) adds
// degrees to those that the drawing states and removes the noise of the conversion.
#include "vek0core/entities/edit/entrotatexyvisitor.h"

#include <cmath>

#include "entities/blocks/hatchtransform.h"
#include "entities/oneturn.h"
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
#include "vek0core/geometry/angle.h"

using vek0::detail::oneTurn;
using vek0::detail::withoutNoise;

// A non-finite rotation is replaced by a zero rotation, which has no effect.
CEntRotateXYVisitor::CEntRotateXYVisitor(const PNT_3D& centre, double angle)
    : m_centre(centre), m_angle(angle) {
  if (!std::isfinite(centre.x) || !std::isfinite(centre.y) || !std::isfinite(angle)) {
    m_centre.set(0, 0, 0);
    m_angle = 0;
  }
}

CEntRotateXYVisitor CEntRotateXYVisitor::byDegrees(const PNT_3D& centre, double degrees) {
  const double rest = std::fmod(degrees, 360.0);
  CEntRotateXYVisitor visitor(centre, rest * vek0::detail::kPi / 180);
  if (visitor.m_angle != 0) visitor.m_degrees = rest;
  return visitor;
}

double CEntRotateXYVisitor::degreesFrom(double stated) const {
  return withoutNoise(stated / kRadiansPerDegree + m_degrees);
}

double CEntRotateXYVisitor::turned(double stated) const {
  return oneTurn(degreesFrom(stated), 360) * kRadiansPerDegree;
}

double CEntRotateXYVisitor::normalTurned(double stated) const {
  return m_degrees != 0 ? turned(ARC_3D::normal(stated)) : ARC_3D::normal(stated + m_angle);
}

void CEntRotateXYVisitor::rotateText(CEntText& ent) const {
  TEXT_3D& text = ent.getText();
  CTextContext context(text.getContext());  // first: this alone can fail
  context.setRotate(degreesFrom(context.getRotate()) * kRadiansPerDegree);
  text.rotate(m_centre, m_angle);
  if (m_degrees != 0) text.setContext(context);
  ent.invalidateBdry();
}

template <class Insert>
void CEntRotateXYVisitor::rotateInsert(Insert& ent) const {
  PNT_3D pnt = ent.getPnt();
  pnt.rotate(m_centre, m_angle);
  ent.setRotate(m_degrees != 0 ? turned(ent.getRotate()) : oneTurn(ent.getRotate() + m_angle));
  ent.setPnt(pnt);
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
  ARC_3D& arc = ent.getArc();
  arc.CIRCLE_3D::rotate(m_centre, m_angle);
  arc.startAngle = normalTurned(arc.startAngle);
  arc.endAngle = normalTurned(arc.endAngle);
  ent.calcBdry();
}

void CEntRotateXYVisitor::visit(CEntPolyline& ent) {
  ent.rotate(m_centre, m_angle);
  ent.invalidateBdry();
}

void CEntRotateXYVisitor::visit(CEntText& ent) { rotateText(ent); }

void CEntRotateXYVisitor::visit(CEntAttdef& ent) { rotateText(ent); }

void CEntRotateXYVisitor::visit(CEntAttrib& ent) { rotateText(ent); }

void CEntRotateXYVisitor::visit(CEntInsert& ent) { rotateInsert(ent); }

void CEntRotateXYVisitor::visit(CEntFixedInsert& ent) { rotateInsert(ent); }

void CEntRotateXYVisitor::visit(CEntInsertXRef& ent) { rotateInsert(ent); }

void CEntRotateXYVisitor::visit(CEntHatch& ent) {
  vek0::detail::transformHatch(ent, *this, [this](PNT_3D& p) { p.rotate(m_centre, m_angle); });
  ent.setHatchRotate(normalTurned(ent.getHatchRotate()));
}

void CEntRotateXYVisitor::visit(CEnt3DFace& ent) {
  for (long i = 0; i < 4; ++i) ent.getVertex(i).rotate(m_centre, m_angle);
  ent.calcBdry();
}
