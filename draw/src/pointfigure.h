#pragma once

#include "emitter.h"
#include "vek0core/drawing/datavariables.h"

namespace vek0::detail {

/// Display of the points of a drawing: by its point mode and point size, upright on the device in
/// every view.
///
/// The lowest bits of the mode select the mark in the middle: a dot, nothing, a plus, a cross or an
/// upward stroke; 32 adds a circle, 64 a square. Circle and square are as wide as the size, plus
/// and cross twice as much, the stroke half.
class PointFigure {
 public:
  /// `unit` is the size of a drawing unit, `height` that of the window, `least` the minimum size of
  /// points, all on the device.
  PointFigure(const CDataVariables& vars, double unit, double height, double least);

  /// Extent from the point, in device units.
  double reach() const { return m_reach; }
  void draw(const PNT_2D& at, Emitter& out) const;

 private:
  void stroke(const PNT_2D& from, const PNT_2D& to, Emitter& out) const;
  void circle(const PNT_2D& at, Emitter& out) const;

  long m_middle;
  bool m_hasCircle, m_hasSquare;
  double m_size, m_least, m_reach;
};

}  // namespace vek0::detail
