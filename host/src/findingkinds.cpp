#include "findingkinds.h"

#include <iterator>

namespace vek0::host {
namespace {

constexpr FindingLevel kNo = FindingLevel::None;
constexpr FindingLevel kWarning = FindingLevel::Warning;
constexpr FindingLevel kError = FindingLevel::Error;

// In the order of `FindingKind`; the levels in that of `Purpose`: r12, laser, print, gis.
constexpr struct {
  const char* name;
  FindingLevel levels[4];
} kKinds[] = {
    {"open_contour", {kNo, kError, kNo, kWarning}},
    {"duplicate", {kNo, kError, kNo, kWarning}},
    {"overlap", {kNo, kError, kNo, kWarning}},
    {"self_intersection", {kNo, kError, kNo, kWarning}},
    {"zero_length", {kNo, kWarning, kNo, kWarning}},
    {"tiny", {kNo, kWarning, kNo, kWarning}},
    {"unclosed_ring", {kNo, kNo, kNo, kError}},
    {"text", {kError, kError, kWarning, kWarning}},
    {"unsupported_kind", {kError, kError, kWarning, kWarning}},
    {"no_units", {kNo, kError, kWarning, kError}},
    {"too_large", {kNo, kError, kError, kNo}},
    {"bad_name", {kError, kNo, kNo, kNo}},
    {"missing_font", {kNo, kNo, kWarning, kNo}},
    {"off_sheet", {kNo, kNo, kWarning, kNo}},
    {"does_not_plot", {kNo, kNo, kWarning, kNo}},
};
static_assert(std::size(kKinds) == static_cast<std::size_t>(FindingKind::DoesNotPlot) + 1);

bool isEndless(const CEnt& ent) {
  return ent.getType() == CEntLine::kType &&
         static_cast<const CEntLine&>(ent).getReach() != LineReach::Segment;
}

// R12 has dimensions, polygon meshes and polylines, of whatever record.
bool isUnknownToR12(EntRecord record) {
  switch (record) {
    case EntRecord::Hatch:
    case EntRecord::Spline:
    case EntRecord::Ellipse:
    case EntRecord::Leader:
    case EntRecord::Mline:
    case EntRecord::Mesh:
    case EntRecord::Mpolygon:
    case EntRecord::Helix:
    case EntRecord::ArcDimension:
    case EntRecord::LargeRadialDimension:
    case EntRecord::Multileader:
    case EntRecord::Mleader:
    case EntRecord::Tolerance:
    case EntRecord::Table:
    case EntRecord::Opaque:
      return true;
    default:
      return false;
  }
}

// What explains a drawing and is no feature of a map.
bool isAnnotation(EntRecord record) {
  switch (record) {
    case EntRecord::Dimension:
    case EntRecord::ArcDimension:
    case EntRecord::LargeRadialDimension:
    case EntRecord::Leader:
    case EntRecord::Multileader:
    case EntRecord::Mleader:
    case EntRecord::Tolerance:
    case EntRecord::Table:
      return true;
    default:
      return false;
  }
}

bool isOfDimension(const CEnt& ent) {
  const CEntInsertBase* insert = ent.getEntInsert();
  return insert && insert->getBlock() && insert->getBlock()->isOfDimension();
}

}  // namespace

const char* nameOf(FindingKind kind) { return kKinds[static_cast<std::size_t>(kind)].name; }

FindingLevel levelOf(FindingKind kind, Purpose purpose) {
  return kKinds[static_cast<std::size_t>(kind)].levels[static_cast<std::size_t>(purpose)];
}

bool isTextEntity(const CEnt& ent) {
  const short type = ent.getType();
  return type == CEntText::kType || type == CEntAttdef::kType || type == CEntAttrib::kType ||
         ent.getRecord() == EntRecord::MText;
}

bool isUnsupportedFor(const CEnt& ent, Purpose purpose) {
  const EntRecord record = ent.getRecord();
  switch (purpose) {
    case Purpose::R12:
      return isUnknownToR12(record) || isEndless(ent);
    case Purpose::Laser:
      return true;
    case Purpose::Print:
      return record == EntRecord::Opaque;
    case Purpose::Gis:
      return record == EntRecord::Opaque || isAnnotation(record) || isOfDimension(ent) ||
             isEndless(ent);
  }
  return false;
}

}  // namespace vek0::host
