#include "pointcost.h"

#include "vek0core/vek0core.h"

namespace vek0::detail {
namespace {

double pointsOfText(const CEnt& ent) {
  const zim::WString& string = static_cast<const CEntText&>(ent).getText().getContext().getString();
  return static_cast<double>(kPointsPerLetter * (1 + string.view().size()));
}

double pointsOfHatch(const CEntHatch& hatch) {
  const CBlock* lines = hatch.getBlock();
  if (isSolid(hatch.getHatchType()) || !lines) return static_cast<double>(hatch.getNoPnts());
  return 2 * static_cast<double>(lines->size());
}

double pointsOfAttributes(const CEntInsertBase& insert) {
  double points = 0;
  for (unsigned i = 0; i < insert.GetNoAttribs(); ++i) points += pointsOfText(*insert.GetAttrib(i));
  return points;
}

}  // namespace

double pointsOf(const CEnt& ent) {
  constexpr double corners = 8, ends = 2;
  switch (ent.getType()) {
    case CEntPolyline::kType:
      return static_cast<double>(static_cast<const CEntPolyline&>(ent).getNoVisibleVertexes());
    case CEntText::kType:
    case CEntAttdef::kType:
    case CEntAttrib::kType:
      return pointsOfText(ent);
    case CEntCircle::kType:
    case CEntArc::kType:
      return static_cast<double>(kPointsPerArc);
    case CEntHatch::kType:
      return pointsOfHatch(static_cast<const CEntHatch&>(ent));
    case CEntPnt::kType:
    case CEnt3DFace::kType:
      return corners;
    default:
      return ent.getEntInsert() ? pointsOfAttributes(*ent.getEntInsert()) : ends;
  }
}

}  // namespace vek0::detail
