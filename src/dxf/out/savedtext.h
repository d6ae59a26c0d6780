#pragma once

#include "vek0core/geometry/pnt.h"
#include "zim0lang/wstring.h"

class CEntAttrib;
class CEntInsertBase;
class CStyle;
class TEXT_3D;

namespace vek0::detail {

/// The contents of a text record beyond the common properties.
struct SavedText {
  const zim::WString* string;  ///< borrowed
  const CStyle* style;         ///< borrowed, may be null
  PNT_3D base, insertion;      ///< start of the string as drawn, and the point that it is placed at
                               ///< or, for fitted texts, the end of the string
  double height, widthScale, rotationRad, obliqueRad;
  long horizontal, vertical;
  bool losesFit = false;  ///< whether it had a length to span
};

/// `exact` is the number format of the writer.
SavedText savedText(const TEXT_3D& text, bool exact);

/// The same for an attribute, which the drawing holds in block coordinates, but a file in those of
/// the drawing.
SavedText savedAttrib(const CEntInsertBase& insert, const CEntAttrib& attrib, bool exact);

}  // namespace vek0::detail
