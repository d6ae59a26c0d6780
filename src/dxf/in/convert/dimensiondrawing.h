#pragma once

#include <vector>

#include "dxf/in/convert/arrowheads.h"
#include "dxf/in/convert/dimstyles.h"
#include "dxf/in/convert/mtextreader.h"
#include "dxf/ocs.h"

namespace vek0::detail {

/// What a dimension measures: code 70 without its flag bits, and the kinds with separate records.
enum class DimensionType {
  Linear,
  Aligned,
  Angular,
  Diameter,
  Radius,
  AngularByPoints,
  Ordinate,
  Arc,
  LargeRadius
};

/// Draws a dimension that has no block, from the points of the current record, according to its
/// style: extension lines, the line or arc with its heads, the text.
class DimensionDrawing {
 public:
  DimensionDrawing(RecordReader& in, DimensionType type, const DimStyle& style);

  /// `text` replaces the measurement; "<>" in it stands for the measurement.
  void draw(const MTextRecord& text);

  std::vector<EntPtr> built;

 private:
  /// The sector being measured: from angle to angle around a point, counterclockwise.
  struct Sweep {
    PNT_3D center;
    double radius = 0, start = 0, sweep = 0;
    PNT_3D at(double angle) const;
  };

  PNT_3D worldPoint(long i) const;
  PNT_3D planePoint(long i) const;
  double angleOf(const PNT_3D& from, const PNT_3D& to) const;

  void drawLinear();
  void drawAngle();
  void drawRadius();
  void drawOrdinate();

  void drawExtension(const PNT_3D& from, const PNT_3D& to, DimStyle::Code suppression);
  void drawBetween(const PNT_3D& from, const PNT_3D& to);
  void drawBroken(const PNT_3D& from, const PNT_3D& to);
  void drawBroken(const Sweep& arc);
  void drawChords(const Sweep& arc);
  void drawOutside(int end, const PNT_3D& tip, double angle);
  void drawArc(const Sweep& arc);
  void drawLeader(const PNT_3D& tip);
  void drawLine(const PNT_3D& from, const PNT_3D& to);
  void drawText(const MTextRecord& given);
  void setColor(DimStyle::Code code);

  double lineAngle() const;
  Sweep sweep() const;
  bool findCenter(PNT_3D& center) const;
  double textReach(double angle) const;
  PNT_3D textPoint() const;
  double textAngle() const;
  double measurement() const;
  std::u16string measured() const;

  RecordReader& m_in;
  PlaneAxes m_axes;
  DimensionType m_type;
  const DimStyle& m_style;
  ArrowHeads m_heads;
  short m_color;
  std::uint32_t m_trueColor;
  double m_textHeight, m_textWidth = 0;
  PNT_3D m_middle;  // default position of the text, in the plane
};

}  // namespace vek0::detail
