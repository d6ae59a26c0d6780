#pragma once

#include "dxf/keep/recordmapper.h"

// How the kinds of records are transformed, by family. Each function returns whether the record can
// express the map; otherwise what it leaves is of no use.
namespace vek0::detail {

/// Where the normal (210) of a record comes from.
enum class NormalRule {
  None,      ///< the record has none, or its roles say enough
  Plane,     ///< from the images of the plane's axes
  Extruded,  ///< from the image of the extrusion, which has the length of the thickness (39)
};

/// A kind that roles of its codes describe.
struct KindRule {
  std::string_view kind;
  Roles roles;
  NormalRule normal = NormalRule::None;
  Anchors anchors = {};  ///< what the normal follows
  /// What else there is to do, after the roles.
  void (*special)(RecordMapper& mapper) = nullptr;
  /// Of a record with letters, which stay readable when it is mirrored: its normal does not turn
  /// around, and afterwards this makes the letters cover the mirrored area.
  void (*turnLetters)(SourceRecord& record, const MeasuredPlane& plane) = nullptr;
};

bool transformByRule(SourceRecord& record, const MeasuredMap& map, const KindRule& rule);

/// Null for kinds of other families.
const KindRule* planeRule(std::string_view kind);
const KindRule* noteRule(std::string_view kind);

/// `KindRule::turnLetters` of texts and of formatted texts.
void turnText(SourceRecord& record, const MeasuredPlane& plane);
void turnMText(SourceRecord& record, const MeasuredPlane& plane);

bool transformInsert(SourceRecord& record, const MeasuredMap& map);
bool transformTable(SourceRecord& record, const MeasuredMap& map);
bool transformEllipse(SourceRecord& record, const MeasuredMap& map);
bool transformHelix(SourceRecord& record, const MeasuredMap& map);
bool transformHatch(SourceRecord& record, const MeasuredMap& map);
bool transformMultileader(SourceRecord& record, const MeasuredMap& map);
/// The polyline and its vertices, which lie in its plane; records of other kinds stay as they are.
bool transformPolyline(std::span<SourceRecord> records, const MeasuredMap& map);

}  // namespace vek0::detail
