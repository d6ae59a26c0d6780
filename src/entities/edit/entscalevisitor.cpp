#include "vek0core/entities/edit/entscalevisitor.h"

#include <algorithm>
#include <cmath>
#include <limits>

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
#include "vek0core/geometry/angle.h"
#include "vek0core/geometry/finite.h"

namespace {

// The kernel multiplies radii by the signed factor; files contain radii of both signs, and the sign
// is preserved.
void scaleCircle(CIRCLE_3D& circle, const PNT_3D& centre, double factor) {
  const double radius = circle.radius * std::fabs(factor);
  circle.scale(centre, factor);
  circle.radius = radius;
}

void scaleText(CEntText& ent, const PNT_3D& centre, double factor) {
  ent.getText().scale(centre, factor);
  ent.invalidateBdry();
}

void scaleInsert(CEntInsert& ent, const PNT_3D& centre, double factor) {
  PNT_3D pnt = ent.getPnt();
  pnt.scale(centre, factor);
  double sx, sy, sz, columnSpacing, rowSpacing;
  long columns, rows;
  ent.getScale(sx, sy, sz);
  ent.getArray(columns, rows, columnSpacing, rowSpacing);
  ent.setInsert(pnt, sx * factor, sy * factor, sz * factor, ent.getRotate());
  ent.setArray(columns, rows, columnSpacing * factor, rowSpacing * factor);
}

}  // namespace

// An invalid factor is replaced by 1, which has no effect.
CEntScaleVisitor::CEntScaleVisitor(const PNT_3D& centre, double factor)
    : m_centre(centre), m_factor(factor) {
  if (factor == 0 || !std::isfinite(factor) || !vek0::detail::isFinite(centre)) {
    m_centre.set(0, 0, 0);
    m_factor = 1;
  }
}

// Comes first, because it may fail. The product stays finite.
void CEntScaleVisitor::scaleThickness(CEnt& ent) const {
  constexpr double most = std::numeric_limits<double>::max();
  ENT_TRAITS traits = ent.getTraits();
  if (traits.thickness == 0 || m_isInHatch) return;
  traits.thickness = std::clamp(traits.thickness * std::fabs(m_factor), -most, most);
  ent.setTraits(traits);
}

void CEntScaleVisitor::visit(CEntPnt& ent) {
  scaleThickness(ent);
  ent.getPnt().scale(m_centre, m_factor);
  ent.calcBdry();
}

void CEntScaleVisitor::visit(CEntLine& ent) {
  scaleThickness(ent);
  ent.getLine().scale(m_centre, m_factor);
  ent.calcBdry();
}

void CEntScaleVisitor::visit(CEntCircle& ent) {
  scaleThickness(ent);
  scaleCircle(ent.getCircle(), m_centre, m_factor);
  ent.calcBdry();
}

void CEntScaleVisitor::visit(CEntArc& ent) {
  scaleThickness(ent);
  ARC_3D& arc = ent.getArc();
  scaleCircle(arc, m_centre, m_factor);
  if (isHalfTurned()) {
    arc.startAngle = ARC_3D::normal(arc.startAngle + vek0::detail::kPi);
    arc.endAngle = ARC_3D::normal(arc.endAngle + vek0::detail::kPi);
  }
  ent.calcBdry();
}

void CEntScaleVisitor::visit(CEntPolyline& ent) {
  scaleThickness(ent);
  ent.scale(m_centre, m_factor);
  ent.invalidateBdry();
}

void CEntScaleVisitor::visit(CEntText& ent) {
  scaleThickness(ent);
  scaleText(ent, m_centre, m_factor);
}

void CEntScaleVisitor::visit(CEntAttdef& ent) {
  scaleThickness(ent);
  scaleText(ent, m_centre, m_factor);
}

void CEntScaleVisitor::visit(CEntAttrib& ent) {
  scaleThickness(ent);
  scaleText(ent, m_centre, m_factor);
}

void CEntScaleVisitor::visit(CEntInsert& ent) {
  scaleThickness(ent);
  scaleInsert(ent, m_centre, m_factor);
}

void CEntScaleVisitor::visit(CEntFixedInsert& ent) {
  scaleThickness(ent);
  PNT_3D pnt = ent.getPnt();
  pnt.scale(m_centre, m_factor);
  ent.setInsert(pnt, ent.GetNoPixel() * m_factor, ent.getRotate());
}

void CEntScaleVisitor::visit(CEntInsertXRef& ent) {
  scaleThickness(ent);
  scaleInsert(ent, m_centre, m_factor);
}

void CEntScaleVisitor::visit(CEntHatch& ent) {
  scaleThickness(ent);
  // Snapshots of a hatch have no properties of its lines.
  CEntScaleVisitor lines = *this;
  lines.m_isInHatch = true;
  vek0::detail::transformHatch(ent, lines, [this](PNT_3D& p) { p.scale(m_centre, m_factor); });
  ent.setHatchScale(ent.getHatchScale() * std::fabs(m_factor));
  if (isHalfTurned()) ent.setHatchRotate(ARC_3D::normal(ent.getHatchRotate() + vek0::detail::kPi));
}

void CEntScaleVisitor::visit(CEnt3DFace& ent) {
  scaleThickness(ent);
  for (long i = 0; i < 4; ++i) ent.getVertex(i).scale(m_centre, m_factor);
  ent.calcBdry();
}
