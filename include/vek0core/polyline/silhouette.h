#pragma once

#include <cstddef>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"

/// A vertex of a wide polyline: where it is, and the full widths at the beginning and
/// the end of the segment that starts there. Drawing units.
struct WIDE_VERTEX {
  PNT_3D pnt;
  double widthStart, widthEnd;
};

/// Outline of a polyline that has widths.
///
/// Each segment is a quadrilateral with half its widths to either side: its body. The rings
/// run around the bodies and around what joins them, so that everything within is what they
/// run around at all (the non-zero rule); by their box nothing sticks out. Where the
/// width does not change, the outer sides of a turn meet in a mitre as long as that point
/// lies outside of both bodies and within four widths of the vertex; sharper corners are
/// bevelled. Where the width jumps, bodies end square and nothing joins them.
///
/// Segments without length are left out. An open polyline has one ring (left side there,
/// right side back), a closed one two (the left side, then the right, whose inside is taken
/// off when it is turned round). A polyline without any length has one ring of its vertices;
/// one without vertices has none.
class VEK0_API CPolylineSilhouette {
 public:
  /// Linear in the number of vertices, which must be finite.
  CPolylineSilhouette(const std::vector<WIDE_VERTEX>& vertexes, bool closed);

  std::size_t getNoRuns() const { return m_runs.size(); }
  /// The points of ring `i`, without repeating the first at the end.
  const std::vector<PNT_3D>& getRun(std::size_t i) const { return m_runs[i]; }

 private:
  std::vector<std::vector<PNT_3D>> m_runs;
};
