#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "dxf/in/convert/hatchpattern.h"
#include "dxf/in/recordreader.h"
#include "vek0core/hatch/loops.h"

namespace vek0::detail {

/// Reads HATCH records.
///
/// Pattern lines, loops and seed points are counted groups with a fixed order of codes; only the
/// counts determine where a group ends. A pair that does not fit is error 20.
class HatchReader {
 public:
  /// Maximum number of points generated from boundary curves, per file and per record: a curve
  /// takes a line of the file and yields up to a thousand points.
  static constexpr std::size_t kFileCurvePoints = 10'000'000, kRecordCurvePoints = 1'000'000;

  explicit HatchReader(RecordReader& in) : m_in(in) {}

  EntPtr read();
  /// MPOLYGON: the outlines of its rings, as polylines, and the hatch inside, if it has a fill.
  /// Differs from HATCH in the code for solid fills and in the order of a loop's flags.
  EntPtr readMpolygon();

 private:
  /// Number of groups of pairs that follow. If the number is invalid, all groups that begin with
  /// `code`.
  struct Count {
    long left, code;
  };

  bool readRecord();
  void takeGroup(long code);
  void takeGradient(long code);
  bool expect(long code);
  bool takeReal(long code, double& value);
  bool takeInteger(long code, long& value);
  bool takePoint(long code, PNT_3D& pnt);
  bool takeSpare(long code, double& value);
  Count takeCount(long code);
  bool goesOn(Count& count);
  void readPatternLines();
  bool readPatternLine();
  bool readDashes(PatternLine& line);
  void readLoops();
  void toNextLoop();
  bool readLoop();
  bool readPolylineLoop();
  bool readEdge();
  bool took(bool added);
  bool readLine();
  bool readArc();
  bool readEllipse();
  bool readSpline();
  bool readControls(SPLINE_3D& spline, long noControls, bool rational);
  bool readFits(std::vector<PNT_3D>& fits);
  bool skipSources();
  void readSeeds();
  PatternRecord patternRecord() const;
  void placeInWorld();
  bool finishRings();
  bool isOutlined(const PatternRecord& pattern) const;
  EntPtr build();

  RecordReader& m_in;
  std::vector<PatternLine> m_lines;
  std::vector<HATCH_RING> m_rings;
  HatchLoopBuilder m_loop;
  enum class Gradient { None, Begun, Indexed } m_gradient = Gradient::None;  // colors read
  bool m_refused = false;                                                    // an edge of the loop
  bool m_isMpolygon = false;                   // kind of the current record; otherwise HATCH
  std::size_t m_curveRoom = kFileCurvePoints;  // remaining points for curves of the file
};

}  // namespace vek0::detail
