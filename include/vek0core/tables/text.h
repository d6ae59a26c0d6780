#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"
#include "vek0core/tables/textcontext.h"

class CStyle;

/// What changes to let a text span a given length in any font.
enum class TextFit : std::uint8_t {
  None,   ///< nothing: the length depends on the font
  Width,  ///< the width factor; "fit" in dialogs
  Size,   ///< the height, and the width with it; "aligned" in dialogs
};

/// A character of a vertical text with the marks that combine with it.
struct STACKED_CHARACTER {
  std::size_t first, end;  ///< its part of the string without codes (`vek0::decodeTextCodes`)
  PNT_3D base;             ///< start of its baseline
  double width;            ///< in drawing units, negative when it is written backward
};

/// A placed text: an insertion point (the base class), a string with its proportions, a style
/// (borrowed, may be null) and one of twelve justifications.
///
///    0 "Left"      3 "Top left"     6 "Middle left"     9 "Bottom left"
///    1 "Center"    4 "Top center"   7 "Middle center"  10 "Bottom center"
///    2 "Right"     5 "Top right"    8 "Middle right"   11 "Bottom right"
///
/// Horizontal codes: 0 left, 1 center, 2 right. Vertical codes: 0 baseline, 1 bottom, 2 middle, 3
/// top. Middle is half the capital height above the baseline. Texts without a style, or whose style
/// has no font, use the default metrics of `ICADFont`.
///
/// The string is measured as displayed, without its codes (`vek0::decodeTextCodes`).
///
/// A left text can have a length to span (`setFit`). The length is relative to height and width
/// factor, so it follows every transformation.
class VEK0_API TEXT_3D : public PNT_3D {
 public:
  static constexpr long kJustifications = 12;

  TEXT_3D(const CTextContext& context, CStyle* style, double px, double py, double pz,
          long justification);
  TEXT_3D(const zim::WString& string, CStyle* style, double px, double py, double pz, double height,
          double oblique, double widthScale, double rotate, long justification);

  /// Exact comparison of point, string, proportions, style, justification and length to span.
  bool operator==(const TEXT_3D& t) const;
  bool operator!=(const TEXT_3D& t) const { return !(*this == t); }

  const CTextContext& getContext() const { return m_context; }
  void setContext(const CTextContext& context) { m_context = context; }
  CStyle* getStyle() const { return m_style; }
  void setStyle(CStyle* style) { m_style = style; }
  /// Index of the justification. `setAlign` uses 0 for an index out of range. Setting it ends the
  /// fit.
  long getAlign() const { return m_justification; }
  void setAlign(long justification);

  long getHorizAlign() const;
  long getVertAlign() const;
  /// Changes one code and keeps the other.
  void setHorizAlign(long horizontal);
  void setVertAlign(long vertical);
  /// First justification with these codes; 0 if there is none.
  static long findJustify(long horizontal, long vertical);
  /// "Top center" and so on; that of justification 0 for an index out of range.
  static zim::WString getAlignName(long justification);
  zim::WString getAlignName() const { return getAlignName(m_justification); }

  TextFit getFit() const { return m_fit; }
  /// Makes the text left-justified and lets it span `length` drawing units along its baseline. A
  /// text of no height or width, a length that is not positive and finite, and `None` end the fit.
  void setFit(TextFit fit, double length);
  /// The length to span in drawing units; 0 if there is none.
  double getFitLength() const;
  /// The context as drawn in the font of the style: the height or the width factor of a fitted text
  /// makes the string span its length, and the rotation is that of the characters. A string without
  /// width stays as it is.
  CTextContext getShownContext() const;
  double getShownHeight() const;

  /// Offset from the insertion point to the start of the string as drawn; zero without a style.
  void getDeltaXY(double& dx, double& dy) const;
  /// Start of the string as drawn.
  PNT_3D getBasePoint() const;
  /// Length of the string along its baseline in drawing units, negative when it is
  /// written backward.
  double getStringLength() const;

  /// Whether the characters stand one below the other, as the flag of the style says. Such a text
  /// has no length to span. Only its horizontal justification applies: the insertion point is at
  /// the center of the column, at its top (left), in the middle or at its bottom (right). Rotated
  /// by 270 degrees it is upright as well, because programs write the direction of the column.
  bool isVertical() const;
  /// The characters of a vertical text from top to bottom. Each is centered in the column, and
  /// baselines are 1.5 heights apart, as in stroke fonts.
  std::vector<STACKED_CHARACTER> getStack() const;

  /// Corners of the text's box, counterclockwise from the lower left as written: from the descent
  /// to the text height as drawn, sheared by the oblique angle and rotated. For an empty string,
  /// all four are the insertion point. `corners` must have room for four.
  void getExtremes(PNT_3D* corners) const;
  void calc_bdry(RECT_2D& box) const;
  void calc_bdry(RECT_3D& box) const;

  /// Scales the point about `center` and the height by the factor's magnitude; a
  /// negative factor also adds half a turn.
  void scale(const PNT_3D& center, double factor);
  /// Rotates the point about the vertical axis through `center` and adds the angle to the rotation.
  void rotate(const PNT_3D& center, double angleRad);

 private:
  double unitScale() const;
  double stretch() const;
  double shownRotation() const;
  double columnLength(std::size_t count) const;
  // In the text's own directions.
  struct Box {
    double left, right, low, high;
  };
  Box columnBox() const;

  CTextContext m_context;
  CStyle* m_style;
  std::int32_t m_justification;
  TextFit m_fit = TextFit::None;
  double m_span = 0;  // length to span, relative to height and width factor
};
