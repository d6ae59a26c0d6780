#pragma once

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
};

}  // namespace vek0::detail
