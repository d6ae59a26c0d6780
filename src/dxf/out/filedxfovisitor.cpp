// Writes one record per entity. The classic form has six decimals and writes arcs of polylines as
// chords. The exchange form writes numbers that read back exactly. Numbers that were computed in
// between (attributes, for example, are stored relative to their insert) are first rounded to the
// precision of their inputs (`steady`), as each round trip would change their last digits
// otherwise.
#include "vek0core/dxf/out/filedxfovisitor.h"

#include <algorithm>
#include <cmath>

#include "dxf/out/endlessline.h"
#include "dxf/out/exactnumbers.h"
#include "dxf/out/hatchdata.h"
#include "dxf/out/savedcolor.h"
#include "dxf/out/savednames.h"
#include "dxf/out/savedsheet.h"
#include "dxf/out/savedsolid.h"
#include "dxf/out/savedtext.h"
#include "dxf/out/savedvertexes.h"
#include "dxf/out/savefilter.h"
#include "dxf/out/savehandles.h"
#include "vek0core/assert.h"
#include "vek0core/drawing/data.h"
#include "vek0core/dxf/out/filedxfowriter.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"
#include "vek0core/files/report.h"
#include "vek0core/tables/ltype.h"
#include "vek0core/tables/text.h"

using vek0::detail::classicDegrees;
using vek0::detail::exactDegrees;
using vek0::detail::savedAttrib;
using vek0::detail::SavedText;
using vek0::detail::savedText;
using vek0::detail::SavedVertex;

namespace {

// Files have no display; only inserts of fixed pixel size need a pixel size.
constexpr double kPixelSize = 1;

// Code 70 of POLYLINE, in addition to the bits of a drawing.
constexpr long kPolyline3D = 8;
// Code 75 of POLYLINE.
constexpr long kQuadratic = 5, kCubic = 6;
// Code 71 of texts.
constexpr long kBackward = 2;
// The codes of the string and of the vertical alignment differ by kind of text.
constexpr long kTextString = 1, kTagString = 2, kTextVertical = 73, kAttribVertical = 74;

}  // namespace

CFileDXFOVisitor::CFileDXFOVisitor(const CData& data, CFileDXFOWriter& writer, bool flatten)
    : m_data(data),
      m_writer(writer),
      m_filter(std::make_unique<vek0::detail::SaveFilter>(data)),
      m_flatten(flatten) {}

CFileDXFOVisitor::~CFileDXFOVisitor() = default;

void CFileDXFOVisitor::SetACADNameConverter(CNameAcadConverter* converter) {
  m_pACADNameConverter = converter;
  m_names = converter ? std::make_unique<vek0::detail::SavedNames>(*converter) : nullptr;
}

void CFileDXFOVisitor::visit(CEntPnt& ent) {
  if (refuses(ent, "POINT")) return;
  begin("POINT", ent);
  writePoint(0, ent.getPnt());
}

void CFileDXFOVisitor::visit(CEntLine& ent) {
  if (refuses(ent, "LINE")) return;
  const LINE_3D line = cut(ent);
  begin("LINE", ent);
  writePoint(0, line.p1);
  writePoint(1, line.p2);
}

// This version has no infinite lines.
LINE_3D CFileDXFOVisitor::cut(const CEntLine& ent) {
  if (ent.getReach() == LineReach::Segment) return ent.getLine();
  report(ReportCode::EndlessLineCut, ent.getReach() == LineReach::Ray ? "RAY" : "XLINE");
  const CBlock* owner = ent.getOwnerBlock();
  return vek0::detail::segmentOf(ent, owner ? owner->getBdry() : m_data.getEntTable().getBdry());
}

void CFileDXFOVisitor::visit(CEntCircle& ent) {
  if (refuses(ent, "CIRCLE")) return;
  begin("CIRCLE", ent);
  writePoint(0, ent.getCircle());
  m_writer.write(40, ent.getCircle().radius);
}

void CFileDXFOVisitor::visit(CEntArc& ent) {
  if (refuses(ent, "ARC")) return;
  begin("ARC", ent);
  writePoint(0, ent.getArc());
  m_writer.write(40, ent.getArc().radius);
  writeAngle(50, ent.getArc().startAngle);
  writeAngle(51, ent.getArc().endAngle);
}

void CFileDXFOVisitor::visit(CEnt3DFace& ent) {
  if (refuses(ent, "3DFACE")) return;
  if (ent.isFilled()) {
    const char* kind = ent.getFill() == FaceFill::Trace ? "TRACE" : "SOLID";
    // The classic form writes fills as outlines.
    if (m_exchange && solid_visit(ent, kind)) return;
    report(ReportCode::FillAsOutline, kind);
  }
  begin("3DFACE", ent);
  for (long corner = 0; corner < 4; ++corner) writePoint(corner, ent.getVertex(corner));
  m_writer.write(70, ent.getFlags());
}

// False if its corners are not coplanar.
bool CFileDXFOVisitor::solid_visit(const CEnt3DFace& ent, const char* kind) {
  vek0::detail::SavedSolid solid;
  if (!savedSolid(ent, m_flatten, solid)) return false;
  begin(kind, ent);
  for (long corner = 0; corner < 4; ++corner) writePoint(corner, solid.corners[corner]);
  if (solid.normal == PNT_3D(0, 0, 1)) return true;
  m_writer.write(210, solid.normal.x);
  m_writer.write(220, solid.normal.y);
  m_writer.write(230, solid.normal.z);
  return true;
}

void CFileDXFOVisitor::visit(CEntText& ent) {
  if (refuses(ent, "TEXT")) return;
  begin("TEXT", ent);
  txt_visit(savedText(ent.getText(), m_exchange), kTextString, kTextVertical);
}

void CFileDXFOVisitor::visit(CEntAttdef& ent) {
  if (refuses(ent, "ATTDEF")) return;
  begin("ATTDEF", ent);
  m_writer.write(70, ent.getFlags());
  m_writer.writeText(1, ent.getValue());
  m_writer.writeText(3, ent.getPrompt());
  txt_visit(savedText(ent.getText(), m_exchange), kTagString, kAttribVertical);
}

// This version has no hatches: writes an insert of the lines, with the data by which a reader
// recognizes the hatch.
void CFileDXFOVisitor::visit(CEntHatch& ent) {
  if (refuses(ent, "HATCH")) return;
  const vek0::Handle handle = insert_visit(ent);
  if (!vek0::detail::hasHatchData(ent)) return report(ReportCode::HatchAsInsert, "HATCH");
  vek0::detail::writeHatchData(m_writer, ent, handle, m_flatten, m_exchange);
}

void CFileDXFOVisitor::visit(CEntAttrib&) { ZORA_ASSERT(false); }

void CFileDXFOVisitor::visit(CEntInsert& ent) {
  if (refuses(ent, "INSERT")) return;
  insert_visit(ent);
  if (ent.isClipped()) report(ReportCode::ClipLost, "INSERT");
}

void CFileDXFOVisitor::visit(CEntInsertXRef& ent) { visit(static_cast<CEntInsert&>(ent)); }

void CFileDXFOVisitor::visit(CEntFixedInsert& ent) {
  if (refuses(ent, "INSERT")) return;
  insert_visit(ent);
  report(ReportCode::FixedInsert, "INSERT");
}

void CFileDXFOVisitor::visit(CEntPolyline& ent) {
  if (!isReady()) return;
  const auto form = vek0::detail::polylineForm(ent, m_flatten, m_exchange);
  if (const auto objection = m_filter->objection(ent, form.finite))
    return report(*objection, "POLYLINE");
  begin("POLYLINE", ent);
  writePoint(0, PNT_3D(0, 0, form.elevation));
  m_writer.write(70, (ent.getFlags() & (CEntPolyline::kClosed | CEntPolyline::kLtGen)) |
                         form.curve | (form.solid ? kPolyline3D : 0));
  if (form.curve == CEntPolyline::kSpline)
    m_writer.write(75, ent.getDegree() == 2 ? kQuadratic : kCubic);
  // A constant width is stated once, for all vertices.
  m_writer.write(40, form.widthConstant ? form.width : 0.0);
  m_writer.write(41, form.widthConstant ? form.width : 0.0);
  m_writer.write(66, 1L);
  struct {
    CFileDXFOVisitor& visitor;
    const CEnt& owner;
  } run{*this, ent};
  forEachSaved(ent, form, [&run](const SavedVertex& v) { run.visitor.vertex_visit(run.owner, v); });
  seq_visit(ent);
}

bool CFileDXFOVisitor::isReady() const {
  // The failure message contains the text of the condition.
  ZORA_ASSERT(m_pACADNameConverter != NULL);  // NOLINT(modernize-use-nullptr)
  return m_pACADNameConverter != nullptr;
}

vek0::Handle CFileDXFOVisitor::begin(const char* kind, const CEnt& ent) {
  m_writer.writeEncoded(0, kind);
  return def_visit(ent);
}

// This version has a thickness, which the classic form leaves out, but none of the others.
void CFileDXFOVisitor::writeTraits(const ENT_TRAITS& traits) {
  const ENT_TRAITS none;
  if (traits == none) return;
  const auto drop = [this](bool isLoss, const char* code) {
    if (isLoss) report(ReportCode::CodeDropped, code);
  };
  const bool isThick = traits.thickness != none.thickness;
  const bool isWritten = m_exchange && std::isfinite(traits.thickness);
  if (isThick && isWritten) m_writer.write(39, traits.thickness);
  drop(isThick && !isWritten, "39");
  drop(traits.ltypeScale != none.ltypeScale, "48");
  drop(traits.lineweight != none.lineweight, "370");
  drop(traits.opacity != none.opacity, "440");
}

// The color number nearest to a true color.
short CFileDXFOVisitor::colorOf(const CEnt& ent) {
  const std::uint32_t color = ent.getTraits().trueColor;
  if (color == ENT_TRAITS::kNoTrueColor) return ent.getColor();
  // Consecutive entities often share their color, and the search is slow.
  if (color != m_trueColor) {
    const vek0::detail::SavedColor saved = vek0::detail::savedColor(color);
    m_trueColor = color;
    m_nearest = saved.number;
    m_isApproximated = saved.isApproximated;
  }
  if (m_isApproximated) report(ReportCode::ColorApproximated, "");
  return m_nearest;
}

vek0::Handle CFileDXFOVisitor::def_visit(const CEnt& ent) {
  const vek0::Handle handle = writeHandle(ent.GetHandle());
  writeSpace();
  m_writer.writeEncoded(8, m_names->layer(ent.getLayer()));
  // BYLAYER is the default of files and is omitted.
  if (ent.getLtype() && !ent.getLtype()->isByLayer())
    m_writer.writeEncoded(6, m_names->ltype(ent.getLtype()));
  const short color = colorOf(ent);
  if (!vek0::detail::isEntityColor(color))
    report(ReportCode::ColorOutOfRange, "");
  else if (color != kColorByLayer)
    m_writer.write(62, static_cast<long>(color));
  writeTraits(ent.getTraits());
  return handle;
}

void CFileDXFOVisitor::txt_visit(const SavedText& text, long stringCode, long verticalCode) {
  m_writer.write(40, text.height);
  m_writer.writeText(stringCode, *text.string);
  writeAngle(50, text.rotationRad);
  m_writer.write(41, std::fabs(text.widthScale));
  writeAngle(51, text.obliqueRad);
  m_writer.writeEncoded(7, m_names->style(text.style));
  writePoint(0, text.base);
  // Backward texts have a positive width and a flag.
  if (text.widthScale < 0) m_writer.write(71, kBackward);
  m_writer.write(72, text.horizontal);
  m_writer.write(verticalCode, text.vertical);
  writePoint(1, text.insertion);
  if (text.losesFit) report(ReportCode::TextFitted, "TEXT");
}

vek0::Handle CFileDXFOVisitor::insert_visit(const CEntInsertBase& ent) {
  PNT_3D pnt;
  double sx, sy, sz, rotationRad, columnSpacing, rowSpacing;
  long columns, rows;
  ent.getInsertParams(kPixelSize, pnt, sx, sy, sz, rotationRad);
  ent.getArray(columns, rows, columnSpacing, rowSpacing);
  const vek0::Handle handle = begin("INSERT", ent);
  m_writer.writeEncoded(2, m_names->block(ent.getBlock()));
  writePoint(0, pnt);
  m_writer.write(41, sx);
  m_writer.write(42, sy);
  m_writer.write(43, sz);
  writeAngle(50, rotationRad);
  m_writer.write(70, columns);
  m_writer.write(71, rows);
  m_writer.write(44, columnSpacing);
  m_writer.write(45, rowSpacing);
  attribs_visit(ent);
  return handle;
}

void CFileDXFOVisitor::attribs_visit(const CEntInsertBase& ent) {
  m_sequence.clear();
  for (unsigned i = 0; i < static_cast<unsigned>(ent.GetNoAttribs()); ++i) {
    const CEntAttrib* attrib = ent.GetAttrib(i);
    // Attributes that cannot be written must not start a sequence.
    if (attrib && !refuses(*attrib, "ATTRIB")) m_sequence.push_back(attrib);
  }
  if (m_sequence.empty()) return;
  m_writer.write(66, 1L);
  for (const CEntAttrib* attrib : m_sequence) attrib_visit(ent, *attrib);
  seq_visit(ent);
}

void CFileDXFOVisitor::attrib_visit(const CEntInsertBase& ent, const CEntAttrib& attrib) {
  begin("ATTRIB", attrib);
  m_writer.write(70,
                 attrib.getFlags() | (attrib.getTraits().isVisible ? 0 : CEntAttrib::kInvisible));
  m_writer.writeText(2, attrib.getTag());
  txt_visit(savedAttrib(ent, attrib, m_exchange), kTextString, kAttribVertical);
}

void CFileDXFOVisitor::vertex_visit(const CEnt& owner, const SavedVertex& vertex) {
  m_writer.writeEncoded(0, "VERTEX");
  m_writer.writeHex(5, m_handles ? m_handles->takeVertex(vertex.handle) : vertex.handle);
  writeSpace();
  m_writer.writeEncoded(8, m_names->layer(owner.getLayer()));
  writePoint(0, vertex.pnt);
  m_writer.write(70, vertex.flags);
  m_writer.write(40, vertex.widthStart);
  m_writer.write(41, vertex.widthEnd);
  if (vertex.bulge != 0) m_writer.write(42, vertex.bulge);
}

void CFileDXFOVisitor::seq_visit(const CEnt& owner) {
  m_writer.writeEncoded(0, "SEQEND");
  m_writer.writeHex(5, m_handles ? m_handles->takeEnd() : 0);
  writeSpace();
  m_writer.writeEncoded(8, m_names->layer(owner.getLayer()));
}

void CFileDXFOVisitor::writeSpace() {
  if (m_isOnSheet) m_writer.write(67, 1L);
}

void CFileDXFOVisitor::viewports_visit(const CLayout& layout) {
  if (isReady() && m_handles)
    vek0::detail::SavedViewports(m_writer, *m_names, *m_handles, m_report)
        .write(layout, m_data.getLayer0());
}

void CFileDXFOVisitor::writePoint(long index, const PNT_3D& pnt) {
  m_writer.write(10 + index, pnt.x);
  m_writer.write(20 + index, pnt.y);
  m_writer.write(30 + index, m_flatten ? 0.0 : pnt.z);
}

void CFileDXFOVisitor::writeAngle(long code, double angleRad) {
  m_writer.write(code, degrees(angleRad));
}

double CFileDXFOVisitor::degrees(double angleRad) const {
  return m_exchange ? exactDegrees(angleRad) : classicDegrees(angleRad);
}

vek0::Handle CFileDXFOVisitor::writeHandle(vek0::Handle handle) {
  const vek0::Handle written = m_handles ? m_handles->take(handle) : handle;
  m_writer.writeHex(5, written);
  return written;
}

template <class Ent>
bool CFileDXFOVisitor::refuses(const Ent& ent, const char* kind) {
  if (!isReady()) return true;
  const std::optional<ReportCode> objection = m_filter->objection(ent);
  if (objection) report(*objection, kind);
  return objection.has_value();
}

void CFileDXFOVisitor::report(ReportCode code, const char* kind) {
  if (m_report) m_report->add(code, 0, zim::WString::fromUtf8(kind));
}
