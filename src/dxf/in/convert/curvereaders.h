#pragma once

#include <cstddef>
#include <vector>

#include "dxf/in/recordreader.h"
#include "vek0core/geometry/spline.h"

namespace vek0::detail {

class DimStyle;

/// Reads curves of unsupported kinds as polylines within the chord error of the policy: ELLIPSE,
/// SPLINE and HELIX, and LEADER, whose path may be a spline.
///
/// Every vertex has its own z. The chord error is relative to the semi-major axis of an ellipse,
/// and to half the longest side of the controls' box of a spline. Buffers are reused from curve to
/// curve.
class CurveReader {
 public:
  explicit CurveReader(RecordReader& in) : m_in(in) {}

  EntPtr readEllipse();
  EntPtr readSpline();
  /// A HELIX record begins with its spline; turns and radii are ignored.
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
  bool m_isSpline = true;       // kind of the current record
};

}  // namespace vek0::detail
