#pragma once

#include "emitter.h"
#include "vek0core/drawing/datavariables.h"

namespace vek0::detail {

/// How the points of a drawing look: by its point mode and point size, upright on the device
/// whatever the view.
///
/// The mode's lowest bits say what marks the middle: a dot, nothing, a plus, a cross or an
/// upward stroke; 32 adds a circle, 64 a square. Circle and square are as wide as the size,
/// plus and cross twice as much, the stroke half.
class PointFigure {
 public:
  /// `unit` is the size of a drawing unit, `height` that of the window, `least` what points
  /// measure at least, all on the device.
  PointFigure(const CDataVariables& vars, double unit, double height, double least);

  /// How far it reaches from the point, device units.
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
