#pragma once

#include <vector>

#include "vek0core/hatch/hatchtypetable.h"
#include "zim0lang/wstring.h"

namespace vek0::detail {

/// One line of a HATCH record's pattern definition: absolute angle in degrees, base point and
/// offset in drawing units, scaled and rotated, dashes in drawing units.
struct PatternLine {
  double angleDeg = 0;
  double base[2] = {0, 0};
  double offset[2] = {0, 0};
  std::vector<double> dashes;
};

/// The pattern data of a HATCH record.
struct PatternRecord {
  /// Values of code 76.
  enum Kind : long { UserDefined = 0, Predefined = 1, Custom = 2 };

  zim::WString name;
  bool solid = false;
  bool crossed = false;  ///< user-defined: with a second, perpendicular family
  long kind = Predefined;
  double scale = 1;  ///< of a user-defined pattern: its spacing
  double angleRad = 0;
  std::vector<PatternLine> lines;
};

/// A pattern as stored in a drawing.
struct Pattern {
  const HATCH_TYPE* type;
  double scale;
};

/// Determines the pattern of the record, without the hatch's scale and angle.
///
/// A catalogue pattern of that name matches only if it has the same lines, up to a common factor
/// that is included in the scale: files in millimeters carry the inch patterns 25.4 times as large
/// under the same names. Otherwise the record's own lines are kept in `types`, rounded to 1e-9
/// degrees and 1e-10 of the family's size, so that hatches of the same pattern share it whatever
/// their scale and angle. An unknown name without lines yields a pattern without lines.
Pattern findPattern(const PatternRecord& record, CHatchTypeTable& types);

}  // namespace vek0::detail
