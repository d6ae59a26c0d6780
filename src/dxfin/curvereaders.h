#pragma once

#include <cstddef>
#include <vector>

#include "dxfin/recordreader.h"
#include "vek0core/geometry/spline.h"

namespace vek0::detail {

class DimStyle;

/// Reads the curves that a drawing has no class for, as polylines within the chord error of the
/// policy: ELLIPSE, SPLINE and HELIX, and LEADER, whose path may be one.
///
/// Every vertex has its own z. The chord error is a share of the semi-axis of an ellipse and of
/// half the longest side of the controls' box of a spline. Its buffers serve curve after curve.
class CurveReader {
 public:
  explicit CurveReader(RecordReader& in) : m_in(in) {}

  EntPtr readEllipse();
  EntPtr readSpline();
  /// A HELIX record begins with the spline that draws it; what it says of turns and radii
  /// is left out.
  EntPtr readHelix();
  EntPtr readLeader();

 private:
  bool readSplineRecord();
  void takeSplinePair(long code);
  EntPtr buildSpline(const zim::WString& kind);
  bool fit(bool closed);
  void addChords();
  void keepWithinRoom();
  EntPtr finish(bool closed, const zim::WString& kind);
  std::vector<EntPtr> buildPolyline(bool closed);
  void addHead(const DimStyle& style, std::vector<EntPtr>& built);
  double chordError() const;

  RecordReader& m_in;
  SPLINE_3D m_spline;
  std::vector<PNT_3D> m_fits;   // points that the curve passes through
  std::vector<PNT_3D> m_chain;  // points of the polyline
  bool m_isSpline = true;       // what the pairs of a record are about
};

}  // namespace vek0::detail
