#include "pointcost.h"

#include <algorithm>

#include "vek0core/vek0core.h"

namespace vek0::detail {
namespace {

// Effort per point of an entity of a block, beyond that of the options: blocks are inserted some
// dozen times, and more often if they are small. Texts need more effort for their size in a file.
constexpr double kEffortPerPoint = 16, kEffortPerLetter = 32;
constexpr double kMostEffortOfLines = 1000;

double lettersOf(const CEnt& ent) {
  const zim::WString& string = static_cast<const CEntText&>(ent).getText().getContext().getString();
  return 1 + static_cast<double>(string.view().size());
}

double pointsOfText(const CEnt& ent) {
  return static_cast<double>(kPointsPerLetter) * lettersOf(ent);
}

double pointsOfHatch(const CEntHatch& hatch) {
  // A solid fill is drawn from its boundary.
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

// A file's hatches have a bounded number of lines, so hatches outside blocks may use what they
// need.
double effortOfLines(const CEntHatch& hatch) {
  constexpr double effortPerLine = 4;  // a stroke with its fixed costs
  return hatch.getBlock() ? effortPerLine * static_cast<double>(hatch.getBlock()->size()) : 0;
}

double effortOf(const CEnt& ent) {
  double effort = 0;
  switch (ent.getType()) {
    case CEntPolyline::kType:
      static_cast<const CEntPolyline&>(ent).forEachBulged(
          [&](const PNT_3D&, double, double, double bulge, vek0::Handle) {
            effort += kEffortPerPoint * (bulge == 0 ? 1 : static_cast<double>(kPointsPerArc));
          });
      return effort;
    case CEntText::kType:
    case CEntAttdef::kType:
    case CEntAttrib::kType:
      return kEffortPerLetter * lettersOf(ent);
    case CEntHatch::kType:
      return kEffortPerPoint * static_cast<double>(static_cast<const CEntHatch&>(ent).getNoPnts()) +
             std::min(effortOfLines(static_cast<const CEntHatch&>(ent)), kMostEffortOfLines);
    default:
      break;
  }
  const CEntInsertBase* insert = ent.getEntInsert();
  if (!insert) return kEffortPerPoint * pointsOf(ent);
  for (unsigned i = 0; i < insert->GetNoAttribs(); ++i)
    effort += kEffortPerLetter * lettersOf(*insert->GetAttrib(i));
  return effort;
}

}  // namespace vek0::detail
