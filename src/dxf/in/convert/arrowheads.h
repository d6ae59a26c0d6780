#pragma once

#include <vector>

#include "dxf/in/convert/dimstyles.h"
#include "dxf/in/convert/replacement.h"
#include "dxf/ocs.h"

namespace vek0::detail {

/// Draws the heads at the ends of dimension lines and of leaders, as a style specifies, with the
/// properties of the current record.
class ArrowHeads {
 public:
  /// `axes` is the plane that they lie in; it is borrowed.
  ArrowHeads(RecordReader& in, const DimStyle& style, const PlaneAxes& axes);

  /// Length of a head, in drawing units.
  double size() const { return m_size; }
  enum { kFirst, kSecond, kLeader, kEnds };

  /// Whether the line at that end runs up to the tip: next to a filled head it would be visible.
  bool isThin(int end) const { return m_kind[end] != Filled && m_kind[end] != Block; }
  /// Whether the line passes through the head.
  bool isStroke(int end) const { return m_kind[end] == Stroke; }

  /// Appends the head of an end. `tip` is in the coordinates of the plane, `angleRad` the direction
  /// in which the head points.
  void add(int end, const PNT_3D& tip, double angleRad, std::vector<EntPtr>& built) const;

 private:
  enum Kind { None, Filled, Outline, Open, Stroke, Dot, Block };

  Kind kindOf(const zim::WString& name, int end);
  PNT_3D place(const PNT_3D& tip, double angleRad, double along, double across) const;
  EntPtr buildDot(const PNT_3D& at) const;
  EntPtr insertBlock(int end, const PNT_3D& at, double angleRad) const;
  static void take(EntPtr ent, std::vector<EntPtr>& built);

  RecordReader& m_in;
  const PlaneAxes& m_axes;
  double m_size;
  Kind m_kind[kEnds];
  CBlock* m_block[kEnds] = {};
};

}  // namespace vek0::detail
