// Flat polylines are written as light ones. The old kind with separate vertices remains for those
// in space, for curves, and for wide ones whose vertices differ in height.
#include "dxf/out/modern/entityrecords.h"
#include "dxf/out/modern/fixedpairs.h"
#include "dxf/out/savedvertexes.h"

namespace vek0::detail {
namespace {

// Code 70 and 75 of POLYLINE, in addition to the bits of a drawing.
constexpr long kInSpace = 8, kQuadraticCurve = 5, kCubicCurve = 6;

long polylineFlags(const CEntPolyline& ent) {
  return ent.getFlags() & (CEntPolyline::kClosed | CEntPolyline::kLtGen);
}

}  // namespace

void EntityRecords::visit(CEntPolyline& ent) {
  const PolylineForm form = polylineForm(ent, false, true);
  if (const auto objection = m_plan.objection(ent, form)) return note(*objection, "POLYLINE");
  FilePlan::isLight(form) && !m_writesOld ? writeLight(ent, form) : writeOld(ent, form);
}

void EntityRecords::writeLight(const CEntPolyline& ent, const PolylineForm& form) {
  begin("LWPOLYLINE", ent, "AcDbPolyline");
  m_out.write(90, form.noBulged);
  m_out.write(70, polylineFlags(ent));
  if (form.widthConstant && form.width != 0) m_out.write(43, form.width);
  if (form.elevation != 0) m_out.write(38, form.elevation);
  writeThickness(ent);
  struct {
    CFileDXFOWriter& out;
    bool hasWidths;
  } run{m_out, !form.widthConstant};
  ent.forEachBulged([&run](const PNT_3D& p, double ws, double we, double bulge, Handle) {
    writePoint(run.out, 10, p.x, p.y);
    if (run.hasWidths) {
      run.out.write(40, ws);
      run.out.write(41, we);
    }
    if (bulge != 0) run.out.write(42, bulge);
  });
}

void EntityRecords::writeOld(const CEntPolyline& ent, const PolylineForm& form) {
  const Handle handle = begin("POLYLINE", ent, form.solid ? "AcDb3dPolyline" : "AcDb2dPolyline");
  m_out.write(66, 1L);
  writePoint(m_out, 10, 0, 0, form.solid ? 0 : form.elevation);
  form.solid ? dropThickness(ent) : writeThickness(ent);
  m_out.write(70, polylineFlags(ent) | form.curve | (form.solid ? kInSpace : 0));
  if (form.widthConstant && form.width != 0 && !form.solid) {
    m_out.write(40, form.width);
    m_out.write(41, form.width);
  }
  if (form.curve == CEntPolyline::kSpline)
    m_out.write(75, ent.getDegree() == 2 ? kQuadraticCurve : kCubicCurve);
  struct {
    EntityRecords& records;
    const CEnt& owner;
    Handle handle;
    const PolylineForm& form;
  } run{*this, ent, handle, form};
  forEachSaved(ent, form, [&run](const SavedVertex& v) {
    run.records.writeVertex(run.owner, run.handle, run.form, v);
  });
  writeEnd(ent, handle);
}

void EntityRecords::writeVertex(const CEnt& owner, Handle polyline, const PolylineForm& form,
                                const SavedVertex& vertex) {
  begin("VERTEX", m_plan.handles.takeVertex(vertex.handle), polyline);
  m_out.writeEncoded(8, m_plan.layers[owner.getLayer()].name);
  m_out.writeEncoded(100, "AcDbVertex");
  m_out.writeEncoded(100, form.solid ? "AcDb3dPolylineVertex" : "AcDb2dVertex");
  writePoint(m_out, 10, vertex.pnt.x, vertex.pnt.y, vertex.pnt.z);
  if (!form.solid && (!form.widthConstant || form.width != 0)) {
    m_out.write(40, vertex.widthStart);
    m_out.write(41, vertex.widthEnd);
  }
  if (vertex.bulge != 0) m_out.write(42, vertex.bulge);
  m_out.write(70, vertex.flags);
}

void EntityRecords::writeEnd(const CEnt& owner, Handle handle) {
  begin("SEQEND", m_plan.handles.takeEnd(), handle);
  m_out.writeEncoded(8, m_plan.layers[owner.getLayer()].name);
}

}  // namespace vek0::detail
