#pragma once

#include <cstddef>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"

/// A vertex of a wide polyline: its position, and the full widths at the beginning and the end of
/// the segment that starts there. Drawing units.
struct WIDE_VERTEX {
  PNT_3D pnt;
  double widthStart, widthEnd;
};

/// Outline of a wide polyline.
///
/// Each segment is a quadrilateral with half its widths to either side: its body. The rings enclose
/// the bodies and the joins between them, to be filled by the non-zero rule; nothing extends beyond
/// their box. Where the width does not change, the outer sides of a turn meet in a miter if that
/// point lies outside both bodies and within four widths of the vertex; sharper corners are
/// beveled. Where the width jumps, bodies end square and are not joined.
///
/// Segments of zero length are skipped. An open polyline has one ring (along the left side, back
/// along the right), a closed one two (the left side, then the right, which subtracts its interior
/// when reversed). A polyline of zero length has one ring of its vertices; one without vertices has
/// none.
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
