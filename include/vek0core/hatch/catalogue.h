#pragma once

#include <cstdint>

#include "vek0core/export.h"
#include "zim0lang/wstring.h"

/// One line family of a hatch pattern: equally spaced parallel lines with the same dashes.
///
/// Line k goes through (x0, y0) + k * (dx * u + dy * n), where u is the direction of the lines and
/// n is u rotated left by a quarter turn; its dashes start there. Lengths are in pattern units: a
/// hatch applies its own scale and angle. These are the conventions of pattern definition files,
/// except that those state the angle in degrees.
struct HATCH_LINE {
  double angle;          ///< direction of the lines, radians, counterclockwise from the x axis
  double x0, y0;         ///< a point of one of the lines
  double dx;             ///< shift of the dashes from one line to the next, along the lines
  double dy;             ///< distance from one line to the next, across them; may be negative
  double dash[6];        ///< > 0 a dash of that length, < 0 a gap, 0 a dot; repeated
  std::int32_t numDash;  ///< number of dashes in use, 0 to 6; 0 for continuous lines
};

/// A hatch pattern: a name and superimposed line families.
///
/// Does not own what it points to. Patterns are identified by address: two records with equal
/// content are two patterns.
struct HATCH_TYPE {
  const zim::Char* name;         ///< upper case in the catalogue
  const zim::Char* description;  ///< human-readable
  const HATCH_LINE* lines;
  std::int32_t numLines;  ///< 1 to 21 in the catalogue
};

/// Pattern `index` of the catalogue; null unless 0 <= index < 68.
///
/// The catalogue is the same in every program. It is available before static objects are
/// constructed, lives as long as the program, and never changes. Its lengths are in inches, those
/// of the "ACAD_ISO" patterns in millimeters.
VEK0_API const HATCH_TYPE* getHatch(long index);
/// The first pattern of that name, ignoring case; null if there is none. Logarithmic in the size of
/// the catalogue.
VEK0_API const HATCH_TYPE* getHatch(const zim::WString& name);
/// The index of a record of the catalogue; -1 for any other, even a copy of one.
VEK0_API long getHatch(const HATCH_TYPE& type);
