#include "dxf/out/modern/noteentities.h"

#include "dxf/out/modern/fileplan.h"
#include "dxf/out/savedvertexes.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/blocks/entinsert.h"

namespace vek0::detail {

EntityNotes::EntityNotes(FilePlan& plan)
    : HandleCollector(plan.handles, plan.filter, false, true), m_plan(plan) {}

void EntityNotes::visit(CEntInsertXRef& ent) { visit(static_cast<CEntInsert&>(ent)); }

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
  if (m_plan.objection(ent, form)) return;
  m_plan.handles.note(ent.GetHandle());
  if (FilePlan::isLight(form)) return;
  forEachSaved(ent, form, [this](const SavedVertex& v) { m_plan.handles.noteVertex(v.handle); });
  m_plan.handles.noteEnd();
}

}  // namespace vek0::detail
