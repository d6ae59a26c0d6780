#pragma once

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"
#include "vek0core/tables/textcontext.h"

class CStyle;

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
class VEK0_API TEXT_3D : public PNT_3D {
 public:
  static constexpr long kJustifications = 12;

  TEXT_3D(const CTextContext& context, CStyle* style, double px, double py, double pz,
          long justification);
  TEXT_3D(const zim::WString& string, CStyle* style, double px, double py, double pz, double height,
          double oblique, double widthScale, double rotate, long justification);

  /// Exact comparison of point, string, proportions, style and justification.
  bool operator==(const TEXT_3D& t) const;
  bool operator!=(const TEXT_3D& t) const { return !(*this == t); }

  const CTextContext& getContext() const { return m_context; }
  void setContext(const CTextContext& context) { m_context = context; }
  CStyle* getStyle() const { return m_style; }
  void setStyle(CStyle* style) { m_style = style; }
  /// Index of the justification. `setAlign` uses 0 for an index out of range.
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

  /// Offset from the insertion point to the start of the string as drawn; zero without a style.
  void getDeltaXY(double& dx, double& dy) const;
  /// Start of the string as drawn.
  PNT_3D getBasePoint() const;
  /// Length of the string along its baseline in drawing units, negative when it is
  /// written backward.
  double getStringLength() const;

  /// Corners of the text's box, counterclockwise from the lower left as written: from the descent
  /// to the text height, sheared by the oblique angle and rotated. For an empty string, all four
  /// are the insertion point. `corners` must have room for four.
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

  CTextContext m_context;
  CStyle* m_style;
  long m_justification;
};
