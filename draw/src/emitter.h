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
      : m_painter(painter), m_limit(options.limit), m_pointsLeft(options.pointLimit) {}

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
  void popClip() { m_painter.popClip(); }
  void noteUnclipped() { ++m_result.unclipped; }

  /// To be called for everything that is looked at, so that blocks that insert nothing a
  /// million times come to an end as well. True when the limit is reached.
  bool look();
  /// To be called for points that are looked at as well; what is handed over here counts
  /// by itself. False when there were too many.
  bool spend(std::size_t points);
  bool isCut() const { return m_result.cut; }
  void cut() { m_result.cut = true; }
  const DRAW_RESULT& result() const { return m_result; }

 private:
  bool admit();

  IPainter& m_painter;
  std::size_t m_limit, m_pointsLeft;
  DrawItem m_item;
  bool m_isTold = false;
  DRAW_RESULT m_result;
};

}  // namespace vek0::detail
