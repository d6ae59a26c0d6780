#pragma once

#include <cstddef>
#include <vector>

#include "vek0draw/draw.h"
#include "vek0draw/painter.h"

namespace vek0::detail {

/// Passes items within range and limits to a painter, and counts them.
class Emitter {
 public:
  Emitter(IPainter& painter, const DRAW_OPTIONS& options)
      : m_painter(painter),
        m_limit(options.limit),
        m_pointsLeft(options.pointLimit),
        m_pixelsPerPoint(options.pixelsPerPoint) {
    addEffort(options.effort);
  }

  /// Sets the source of the next items; passed to the painter with the first of them.
  void begin(const DrawItem& item);

  void stroke(const std::vector<PNT_2D>& points, bool closed);
  /// Returns false, emitting nothing, if the painter has no arcs.
  bool arc(const PNT_2D& center, double radius, double startRad, double sweepRad);
  void fill(const std::vector<PNT_2D>& points, const std::vector<std::size_t>& ends, FillRule rule);
  void dot(const PNT_2D& at);
  void disc(const PNT_2D& center, double diameter);
  /// Text that collapses to a line is skipped.
  void text(const DrawText& text);

  /// Returns false, and counts it, if the following content cannot be clipped.
  bool pushClip(const std::vector<PNT_2D>& points);
  void popClip();
  void noteUnclipped() { ++m_result.unclipped; }

  /// Call it for every visited entity, so that blocks that insert nothing a million times terminate
  /// as well. Returns true when the limit is reached.
  bool look();
  /// Call it for other points that are processed; emitted ones are counted automatically. Returns
  /// false if there were too many.
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
  void chargeStroke(const std::vector<PNT_2D>& points, bool closed);
  void chargeFill(const std::vector<PNT_2D>& points);

  IPainter& m_painter;
  std::size_t m_limit, m_pointsLeft;
  double m_pixelsPerPoint;
  double m_longest = 0;  // side of the device
  double m_effort = 0, m_allEffort = 0;
  int m_unfolding = 0;
  std::size_t m_epoch = 0;
  const zim::WString* m_layer = nullptr;  // that the painter was told of last
  RGB_COLOR m_color{};                    // likewise
  DrawItem m_item;
  bool m_isTold = false;
  DRAW_RESULT m_result;
};

}  // namespace vek0::detail
