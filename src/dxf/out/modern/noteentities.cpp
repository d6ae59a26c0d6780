#include "dxf/out/modern/noteentities.h"

#include "dxf/out/modern/fileplan.h"
#include "dxf/out/savedvertexes.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"

namespace vek0::detail {

template <class Ent>
void EntityNotes::note(const Ent& ent) {
  if (!m_plan.filter.objection(ent)) m_plan.handles.note(ent.GetHandle());
}

void EntityNotes::noteInsert(const CEntInsertBase& ent) {
  if (m_plan.filter.objection(ent)) return;
  m_plan.handles.note(ent.GetHandle());
  bool any = false;
  for (unsigned i = 0; i < ent.GetNoAttribs(); ++i) {
    const CEntAttrib* attrib = ent.GetAttrib(i);
    if (!attrib || m_plan.filter.objection(*attrib)) continue;
    m_plan.handles.note(attrib->GetHandle());
    any = true;
  }
  if (any) m_plan.handles.noteEnd();
}

void EntityNotes::visit(CEntPnt& ent) { note(ent); }
void EntityNotes::visit(CEntLine& ent) { note(ent); }
void EntityNotes::visit(CEntCircle& ent) { note(ent); }
void EntityNotes::visit(CEntArc& ent) { note(ent); }
void EntityNotes::visit(CEntText& ent) { note(ent); }
void EntityNotes::visit(CEntAttdef& ent) { note(ent); }
void EntityNotes::visit(CEntFixedInsert& ent) { noteInsert(ent); }
void EntityNotes::visit(CEntInsertXRef& ent) { visit(static_cast<CEntInsert&>(ent)); }
void EntityNotes::visit(CEnt3DFace& ent) { note(ent); }

void EntityNotes::visit(CEntInsert& ent) {
  noteInsert(ent);
  if (!ent.isClipped() || m_plan.filter.objection(ent)) return;
  ++m_plan.noClips;
  constexpr int objectsOfClip = 3;
  for (int i = 0; i < objectsOfClip; ++i) m_plan.handles.noteEnd();
}

void EntityNotes::visit(CEntHatch& ent) {
  if (m_plan.isNative(ent))
    m_plan.handles.note(ent.GetHandle());
  else
    noteInsert(ent);
}

void EntityNotes::visit(CEntPolyline& ent) {
  const PolylineForm form = polylineForm(ent, false, true);
  if (m_plan.filter.objection(ent, form.finite)) return;
  m_plan.handles.note(ent.GetHandle());
  if (FilePlan::isLight(form)) return;
  forEachSaved(ent, form, [this](const SavedVertex& v) { m_plan.handles.note(v.handle); });
  m_plan.handles.noteEnd();
}

}  // namespace vek0::detail
