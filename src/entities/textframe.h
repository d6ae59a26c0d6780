#pragma once

#include "vek0core/geometry/pnt.h"

class CTextContext;

namespace vek0::detail {

/// The shape of a text, apart from its string and place: a baseline u, pointing backward
/// for a negative width factor, and an upright n + tan(oblique) u with n square to u, both
/// of length 1 in u and n. Height and width are factors beside them, so that texts of
/// height or width 0 lose nothing.
struct TextFrame {
  double height, widthScale, rotation, oblique;

  explicit TextFrame(const CTextContext& context);

  /// Maps the frame by a matrix that is given by the images of the unit vectors. Mirroring
  /// changes the sign of the width factor. A rotation that changes is in [-pi, pi] then.
  /// Where nothing of the text is left, or not a number, all stays as it is.
  void map(const PNT_2D& x, const PNT_2D& y);
  void store(CTextContext& context) const;
};

}  // namespace vek0::detail
