#include "dxf/out/savefilter.h"

#include "dxf/out/itemlists.h"
#include "vek0core/entities/blocks/blockxref.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/entities/enttext.h"
#include "vek0core/tables/text.h"

namespace vek0::detail {
namespace {

// A fixed insert has a scale only for a display.
constexpr double kPixelSize = 1;

}  // namespace

SaveFilter::SaveFilter(const CData& data, bool keepsInvisible) : m_keepsInvisible(keepsInvisible) {
  for (const CBlock* block : blocksOf(data)) m_blocks.insert(block);
  for (const CBlock* xref : xrefsOf(data)) m_blocks.insert(xref);
}

// Attributes have a flag for invisible ones.
std::optional<ReportCode> SaveFilter::objectionUnless(const CEnt& ent, bool finite) const {
  const bool isLost = !m_keepsInvisible && ent.getType() != CEntAttrib::kType;
  if (isLost && !ent.getTraits().isVisible) return ReportCode::EntityInvisible;
  if (finite) return std::nullopt;
  return ReportCode::EntityNotFinite;
}

std::optional<ReportCode> SaveFilter::objection(const CEntPnt& ent) const {
  return objectionUnless(ent, isFinite(ent.getPnt()));
}

std::optional<ReportCode> SaveFilter::objection(const CEntLine& ent) const {
  return objectionUnless(ent, isFinite(ent.getLine().p1) && isFinite(ent.getLine().p2));
}

std::optional<ReportCode> SaveFilter::objection(const CEntCircle& ent) const {
  return objectionUnless(ent, isFinite(ent.getCircle()) && isFinite(ent.getCircle().radius, 0));
}

std::optional<ReportCode> SaveFilter::objection(const CEntArc& ent) const {
  const ARC_3D& arc = ent.getArc();
  return objectionUnless(
      ent, isFinite(arc) && isFinite(arc.radius, 0) && isFinite(arc.startAngle, arc.endAngle));
}

std::optional<ReportCode> SaveFilter::objection(const CEnt3DFace& ent) const {
  return objectionUnless(ent, isFinite(ent.getVertex(0)) && isFinite(ent.getVertex(1)) &&
                                  isFinite(ent.getVertex(2)) && isFinite(ent.getVertex(3)));
}

std::optional<ReportCode> SaveFilter::objection(const CEntText& ent) const {
  const CTextContext& context = ent.getText().getContext();
  return objectionUnless(ent, isFinite(ent.getText()) &&
                                  isFinite(context.getHeight(), context.getWidthScale()) &&
                                  isFinite(context.getRotate(), context.getOblique()));
}

std::optional<ReportCode> SaveFilter::objection(const CEntInsertBase& ent) const {
  if (!m_blocks.contains(ent.getBlock())) return ReportCode::InsertWithoutBlock;
  PNT_3D pnt;
  double sx, sy, sz, rotationRad, columnSpacing, rowSpacing;
  long columns, rows;
  ent.getInsertParams(kPixelSize, pnt, sx, sy, sz, rotationRad);
  ent.getArray(columns, rows, columnSpacing, rowSpacing);
  return objectionUnless(ent, isFinite(pnt) && isFinite(sx, sy) && isFinite(sz, rotationRad) &&
                                  isFinite(columnSpacing, rowSpacing));
}

std::optional<ReportCode> SaveFilter::objection(const CEntPolyline& ent, bool finite) const {
  return objectionUnless(ent, finite);
}

}  // namespace vek0::detail
