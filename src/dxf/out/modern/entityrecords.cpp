// The simple kinds; insertrecords.cpp and polylinerecords.cpp have the others. In a record, the
// common pairs come first, and every further class of the object begins with its name (100).
#include "dxf/out/modern/entityrecords.h"

#include <algorithm>
#include <cmath>

#include "dxf/out/exactnumbers.h"
#include "dxf/out/modern/fixedpairs.h"
#include "dxf/out/modern/hatchrecord.h"
#include "dxf/out/savedsolid.h"
#include "dxf/out/savedtext.h"
#include "geometry/vector.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"
#include "vek0core/tables/text.h"

namespace vek0::detail {
namespace {

constexpr long kBackwardText = 2;

// Of unit length. Directions that are so up to noise stay, because they were read from a file.
PNT_3D direction(const LINE_3D& line) {
  constexpr double noise = 1e-6, half = 0.5;
  PNT_3D d = line.p2 - line.p1;
  if (std::fabs(length(d) - 1) <= noise) return d;
  // The difference of huge coordinates overflows, as do the squares of large ones.
  if (!isFinite(d))
    d = PNT_3D(line.p2.x * half - line.p1.x * half, line.p2.y * half - line.p1.y * half,
               line.p2.z * half - line.p1.z * half);
  const double size = std::max({std::fabs(d.x), std::fabs(d.y), std::fabs(d.z)});
  d = PNT_3D(d.x / size, d.y / size, d.z / size);
  const double rest = length(d);
  return PNT_3D(d.x / rest, d.y / rest, d.z / rest);
}

void writeCorner(CFileDXFOWriter& out, long index, const PNT_3D& p) {
  writePoint(out, 10 + index, p.x, p.y, p.z);
}

}  // namespace

void EntityRecords::begin(const char* kind, Handle handle, Handle owner, Handle dictionary) {
  m_out.writeEncoded(0, kind);
  m_out.writeHex(5, handle);
  if (dictionary != 0) {
    m_out.writeEncoded(102, "{ACAD_XDICTIONARY");
    m_out.writeHex(360, dictionary);
    m_out.writeEncoded(102, "}");
  }
  m_out.writeHex(330, owner);
  m_out.writeEncoded(100, "AcDbEntity");
  if (m_isSheet) m_out.write(67, 1L);
}

Handle EntityRecords::begin(const char* kind, const CEnt& ent, const char* subclass) {
  return begin(kind, ent, subclass, m_record, 0);
}

Handle EntityRecords::begin(const char* kind, const CEnt& ent, const char* subclass, Handle owner,
                            Handle dictionary) {
  const Handle handle = m_plan.handles.take(ent.GetHandle());
  begin(kind, handle, owner, dictionary);
  m_properties.write(ent.getLayer(), ent.getLtype(), ent.getColor(), ent.getTraits());
  m_out.writeEncoded(100, subclass);
  if (m_plan.boundaries.empty()) return handle;
  const auto bounding = m_plan.boundaries.find(&ent);
  if (bounding != m_plan.boundaries.end()) bounding->second = handle;
  return handle;
}

void EntityRecords::writeThickness(const CEnt& ent) {
  const double thickness = ent.getTraits().thickness;
  if (thickness != 0 && std::isfinite(thickness))
    m_out.write(39, thickness);
  else if (thickness != 0)
    note(ReportCode::NumberNotFinite, "39");
}

// For kinds without a thickness.
void EntityRecords::dropThickness(const CEnt& ent) {
  if (ent.getTraits().thickness != 0) note(ReportCode::CodeDropped, "39");
}

void EntityRecords::writeAngle(long code, double angleRad) {
  m_out.write(code, exactDegrees(angleRad));
}

void EntityRecords::writePlane(const PNT_3D& normal) {
  if (normal != PNT_3D(0, 0, 1)) writePoint(m_out, 210, normal.x, normal.y, normal.z);
}

void EntityRecords::visit(CEntPnt& ent) {
  if (refuses(ent, "POINT")) return;
  begin("POINT", ent, "AcDbPoint");
  writeCorner(m_out, 0, ent.getPnt());
  writeThickness(ent);
}

void EntityRecords::visit(CEntLine& ent) {
  const LINE_3D& line = ent.getLine();
  const char* endless = ent.getReach() == LineReach::Ray ? "RAY" : "XLINE";
  const bool isSegment = ent.getReach() == LineReach::Segment;
  // An infinite line between equal points has no direction.
  if (isSegment || line.p1 == line.p2) {
    if (refuses(ent, "LINE")) return;
    if (!isSegment) note(ReportCode::EndlessLineCut, endless);
    begin("LINE", ent, "AcDbLine");
    writeThickness(ent);
    writeCorner(m_out, 0, line.p1);
    writeCorner(m_out, 1, line.p2);
    return;
  }
  if (refuses(ent, endless)) return;
  begin(endless, ent, ent.getReach() == LineReach::Ray ? "AcDbRay" : "AcDbXline");
  dropThickness(ent);
  writeCorner(m_out, 0, line.p1);
  writeCorner(m_out, 1, direction(line));
}

void EntityRecords::visit(CEntCircle& ent) {
  if (refuses(ent, "CIRCLE")) return;
  begin("CIRCLE", ent, "AcDbCircle");
  writeThickness(ent);
  writeCorner(m_out, 0, ent.getCircle());
  m_out.write(40, ent.getCircle().radius);
}

void EntityRecords::visit(CEntArc& ent) {
  if (refuses(ent, "ARC")) return;
  begin("ARC", ent, "AcDbCircle");
  writeThickness(ent);
  writeCorner(m_out, 0, ent.getArc());
  m_out.write(40, ent.getArc().radius);
  m_out.writeEncoded(100, "AcDbArc");
  writeAngle(50, ent.getArc().startAngle);
  writeAngle(51, ent.getArc().endAngle);
}

void EntityRecords::visit(CEnt3DFace& ent) {
  if (refuses(ent, "3DFACE")) return;
  if (ent.isFilled()) {
    const char* kind = ent.getFill() == FaceFill::Trace ? "TRACE" : "SOLID";
    if (writeSolid(ent, kind)) return;
    note(ReportCode::FillAsOutline, kind);
  }
  begin("3DFACE", ent, "AcDbFace");
  dropThickness(ent);
  for (long corner = 0; corner < 4; ++corner) writeCorner(m_out, corner, ent.getVertex(corner));
  if (ent.getFlags() != 0) m_out.write(70, ent.getFlags());
}

// False if its corners are not coplanar.
bool EntityRecords::writeSolid(const CEnt3DFace& ent, const char* kind) {
  SavedSolid solid;
  if (!savedSolid(ent, false, solid)) return false;
  begin(kind, ent, "AcDbTrace");
  for (long corner = 0; corner < 4; ++corner) writeCorner(m_out, corner, solid.corners[corner]);
  // Entities are thick along their normal, but those of a drawing along the Z axis.
  const bool isLevel = solid.normal == PNT_3D(0, 0, 1);
  isLevel ? writeThickness(ent) : dropThickness(ent);
  writePlane(solid.normal);
  return true;
}

void EntityRecords::visit(CEntText& ent) {
  if (refuses(ent, "TEXT")) return;
  begin("TEXT", ent, "AcDbText");
  writeText(ent, savedText(ent.getText(), true), {"AcDbText", 73});
}

void EntityRecords::visit(CEntAttdef& ent) {
  if (refuses(ent, "ATTDEF")) return;
  begin("ATTDEF", ent, "AcDbText");
  SavedText text = savedText(ent.getText(), true);
  text.string = &ent.getValue();
  TextKind kind{"AcDbAttributeDefinition", 74};
  kind.prompt = &ent.getPrompt();
  kind.tag = &ent.getTag();
  kind.flags = ent.getFlags();
  writeText(ent, text, kind);
}

void EntityRecords::writeText(const CEnt& ent, const SavedText& text, const TextKind& kind) {
  writeThickness(ent);
  const bool isPlaced = text.horizontal != 0 || text.vertical != 0;
  writeCorner(m_out, 0, text.base);
  m_out.write(40, text.height);
  m_out.writeText(1, *text.string);
  if (text.rotationRad != 0) writeAngle(50, text.rotationRad);
  if (std::fabs(text.widthScale) != 1) m_out.write(41, std::fabs(text.widthScale));
  if (text.obliqueRad != 0) writeAngle(51, text.obliqueRad);
  m_out.writeEncoded(7, m_plan.styles[text.style].name);
  // Backward texts have a positive width and a flag.
  if (text.widthScale < 0) m_out.write(71, kBackwardText);
  if (text.horizontal != 0) m_out.write(72, text.horizontal);
  if (isPlaced) writeCorner(m_out, 1, text.insertion);
  m_out.writeEncoded(100, kind.subclass);
  if (kind.tag) {
    if (m_plan.rules.attribVersions) m_out.write(280, 0L);
    if (kind.prompt) m_out.writeText(3, *kind.prompt);
    m_out.writeText(2, *kind.tag);
    m_out.write(70, kind.flags);
  }
  if (text.vertical != 0) m_out.write(kind.verticalCode, text.vertical);
  if (kind.tag && m_plan.rules.attribVersions) m_out.write(280, 0L);  // its place is not locked
}

void EntityRecords::visit(CEntHatch& ent) {
  if (!m_plan.isNative(ent)) {
    if (refuses(ent, "HATCH")) return;
    writeInsert(ent, 0);
    return note(ReportCode::HatchAsInsert, "HATCH");
  }
  begin("HATCH", ent, "AcDbHatch");
  dropThickness(ent);
  writeHatch(m_out, ent);
}

void EntityRecords::note(ReportCode code, const char* sample) {
  m_plan.note(code, zim::WString::fromUtf8(sample).view());
}

}  // namespace vek0::detail
