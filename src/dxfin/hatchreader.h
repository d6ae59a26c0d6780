#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "dxfin/hatchpattern.h"
#include "dxfin/recordreader.h"
#include "vek0core/hatch/loops.h"

namespace vek0::detail {

/// Reads HATCH records.
///
/// Pattern lines, loops and seed points come in counted groups with a fixed order of
/// codes; the counts say when a group ends and nothing else. A pair that does not fit is
/// error 20.
class HatchReader {
 public:
  /// How many points all curves of boundaries become at most, in a file and in a record:
  /// a curve takes a line of the file and gives up to a thousand points.
  static constexpr std::size_t kFileCurvePoints = 10'000'000, kRecordCurvePoints = 1'000'000;

  explicit HatchReader(RecordReader& in) : m_in(in) {}

  EntPtr read();

 private:
  void takeGroup(long code);
  bool expect(long code);
  bool takeReal(long code, double& value);
  bool takeInteger(long code, long& value);
  bool takePoint(long code, PNT_3D& pnt);
  void readPatternLines();
  bool readPatternLine();
  void readLoops();
  bool readLoop();
  bool readPolylineLoop();
  bool readEdge();
  bool took(bool added);
  bool readLine();
  bool readArc();
  bool readEllipse();
  bool readSpline();
  bool readControls(SPLINE_3D& spline, long noControls, bool rational);
  bool skipSources();
  void readSeeds();
  PatternRecord patternRecord() const;
  EntPtr build();

  RecordReader& m_in;
  std::vector<PatternLine> m_lines;
  std::vector<HATCH_RING> m_rings;
  HatchLoopBuilder m_loop;
  bool m_refused = false;                      // an edge of the loop
  std::size_t m_curveRoom = kFileCurvePoints;  // that is left to curves of the file
};

}  // namespace vek0::detail
