#pragma once

#include <cstddef>
#include <vector>

#include "dxfin/recordreader.h"
#include "vek0core/geometry/spline.h"

namespace vek0::detail {

/// Reads the curves that a drawing has no class for, as polylines within the chord error of
/// the policy: ELLIPSE, SPLINE and HELIX, and LEADER, whose path may be one.
///
/// Every vertex has its own z. The chord error is a share of the half axis of an ellipse and
/// of half the longest side of the controls' box of a spline. Its buffers serve curve after curve.
class CurveReader {
 public:
  /// How many points all curves of a file become at most: an ellipse takes a few lines of
  /// it and gives up to a thousand. Curves beyond that have few chords.
  static constexpr std::size_t kFilePoints = 10'000'000;

  /// `room` is how many points they become here.
  explicit CurveReader(RecordReader& in, std::size_t room = kFilePoints) : m_in(in), m_room(room) {}

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
  double chordError() const;

  RecordReader& m_in;
  std::size_t m_room;
  SPLINE_3D m_spline;
  std::vector<PNT_3D> m_fits;   // points that the curve passes through
  std::vector<PNT_3D> m_chain;  // points of the polyline
  bool m_isSpline = true;       // what the pairs of a record are about
};

}  // namespace vek0::detail
