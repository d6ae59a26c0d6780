#pragma once

#include "vek0core/geometry/pnt.h"

class CTextContext;

namespace vek0::detail {

/// The shape of a text without its string and position: a baseline u, reversed for a negative width
/// factor, and a vertical n + tan(oblique) u with n perpendicular to u, both u and n of unit
/// length. Height and width are separate factors, so that texts of height or width 0 lose nothing.
struct TextFrame {
  double height, widthScale, rotation, oblique;

  explicit TextFrame(const CTextContext& context);

  /// Maps the frame by a matrix that is given by the images of the unit vectors. Mirroring changes
  /// the sign of the width factor. A changed rotation is in [-pi, pi]. If the text collapses, or a
  /// result is NaN, nothing changes.
  void map(const PNT_2D& x, const PNT_2D& y);
  void store(CTextContext& context) const;
};

}  // namespace vek0::detail
