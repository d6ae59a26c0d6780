#pragma once

#include <cstddef>
#include <vector>

#include "vek0draw/draw.h"
#include "vek0draw/painter.h"

namespace vek0::detail {

/// Hands to a painter what is not absurdly far away and within the limits, and keeps the
/// account.
class Emitter {
 public:
  Emitter(IPainter& painter, const DRAW_OPTIONS& options)
      : m_painter(painter),
        m_limit(options.limit),
        m_pointsLeft(options.pointLimit),
        m_pixelsPerPoint(options.pixelsPerPoint) {
    addEffort(options.effort);
  }

  /// What the next things belong to; the painter hears of it with the first of them.
  void begin(const DrawItem& item);

  void stroke(const std::vector<PNT_2D>& points, bool closed);
  /// False when the painter has no arcs; then nothing was emitted.
  bool arc(const PNT_2D& center, double radius, double startRad, double sweepRad);
  void fill(const std::vector<PNT_2D>& points, const std::vector<std::size_t>& ends, FillRule rule);
  void dot(const PNT_2D& at);
  void disc(const PNT_2D& center, double diameter);
  /// Text that is flattened to a line is left out.
  void text(const DrawText& text);

  /// False, and counted, when what follows cannot be clipped.
  bool pushClip(const std::vector<PNT_2D>& points);
  void popClip();
  void noteUnclipped() { ++m_result.unclipped; }

  /// To be called for everything that is looked at, so that blocks that insert nothing a
  /// million times come to an end as well. True when the limit is reached.
  bool look();
  /// To be called for points that are looked at as well; what is handed over here counts
  /// by itself. False when there were too many.
  bool spend(std::size_t points);
  bool isCut() const { return m_result.cut; }
  void cut() { m_result.cut = true; }
  bool skips(const RECT_2D& box) const { return m_painter.skips(box); }

  /// The longer side of the device: what lies outside of it costs nothing.
  void setLongest(double side) { m_longest = side; }
  /// What comes between the two is more than its part of the file: what inserts, hatches and
  /// linetypes make of it. Only that is charged. They nest.
  void beginUnfolding() { ++m_unfolding; }
  void endUnfolding() { --m_unfolding; }
  bool isUnfolding() const { return m_unfolding > 0; }
  /// In points; what may be charged at first is in the options. The picture is cut when it is
  /// used up.
  void charge(double points);
  void addEffort(double points);
  /// Whether that many points would use up more than half of what is left.
  bool isScarce(double points) const { return 2 * points > m_effort; }
  /// Whether half of all is used up.
  bool isLow() const { return 2 * m_effort < m_allEffort; }

  /// What a stroke across the device costs.
  double pointsOfLine() const;

  void noteSimplified() { ++m_result.simplified; }
  void noteMissing() { ++m_result.missing; }
  /// A number that grows whenever something may have been covered, or is clipped otherwise.
  std::size_t epoch() const { return m_epoch; }

  const DRAW_RESULT& result() const { return m_result; }

 private:
  bool admit();
  void tellItem();
  void chargeStroke(const std::vector<PNT_2D>& points);
  void chargeFill(const std::vector<PNT_2D>& points);

  IPainter& m_painter;
  std::size_t m_limit, m_pointsLeft;
  double m_pixelsPerPoint;
  double m_longest = 0;  // side of the device
  double m_effort = 0, m_allEffort = 0;
  int m_unfolding = 0;
  std::size_t m_epoch = 0;
  const zim::WString* m_layer = nullptr;  // that the painter was told of last
  DrawItem m_item;
  bool m_isTold = false;
  DRAW_RESULT m_result;
};

}  // namespace vek0::detail
