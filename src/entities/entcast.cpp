#include "vek0core/entities/entcast.h"

#include "vek0core/entities/ent.h"

namespace vek0::detail {

template <class Kind>
Kind* ExactKindVisitor<Kind>::find(CEnt* ent) {
  m_found = nullptr;
  if (ent != nullptr) ent->accept(*this);
  return m_found;
}

}  // namespace vek0::detail

CEntPnt* CGetPntVisitor::getPnt(CEnt* ent) { return find(ent); }
CEntLine* CGetLineVisitor::getLine(CEnt* ent) { return find(ent); }
CEntCircle* CGetCircleVisitor::getCircle(CEnt* ent) { return find(ent); }
CEntArc* CGetArcVisitor::getArc(CEnt* ent) { return find(ent); }
CEntPolyline* CGetPolylineVisitor::getPolyline(CEnt* ent) { return find(ent); }
CEntText* CGetTextVisitor::getText(CEnt* ent) { return find(ent); }
CEntAttdef* CGetAttdefVisitor::getAttdef(CEnt* ent) { return find(ent); }
CEntAttrib* CGetAttribVisitor::getAttrib(CEnt* ent) { return find(ent); }
CEntHatch* CGetHatchVisitor::getHatch(CEnt* ent) { return find(ent); }
CEnt3DFace* CGet3DFaceVisitor::get3DFace(CEnt* ent) { return find(ent); }

CEntPnt* castPnt(CEnt* ent) { return CGetPntVisitor().getPnt(ent); }
CEntLine* castLine(CEnt* ent) { return CGetLineVisitor().getLine(ent); }
CEntCircle* castCircle(CEnt* ent) { return CGetCircleVisitor().getCircle(ent); }
CEntArc* castArc(CEnt* ent) { return CGetArcVisitor().getArc(ent); }
CEntPolyline* castPolyline(CEnt* ent) { return CGetPolylineVisitor().getPolyline(ent); }
CEntText* castText(CEnt* ent) { return CGetTextVisitor().getText(ent); }
CEntAttdef* castAttdef(CEnt* ent) { return CGetAttdefVisitor().getAttdef(ent); }
CEntAttrib* castAttrib(CEnt* ent) { return CGetAttribVisitor().getAttrib(ent); }
CEntHatch* castHatch(CEnt* ent) { return CGetHatchVisitor().getHatch(ent); }
CEnt3DFace* cast3DFace(CEnt* ent) { return CGet3DFaceVisitor().get3DFace(ent); }
