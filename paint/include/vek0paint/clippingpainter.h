#pragma once

#include <vector>

#include "vek0core/geometry/rect.h"
#include "vek0draw/painter.h"

namespace vek0::paint {

/// Keeps content far outside the sheet from a painter, which can then use small numbers: strokes
/// and fills are clipped to a box three times the sheet's size, so that clipped ends are invisible;
/// arcs that leave the box become strokes.
class ClippingPainter : public IPainter {
 public:
  void stroke(const PNT_2D* points, std::size_t count, bool closed) final;
  void segments(const PNT_2D* points, std::size_t count) final;
  bool arc(const PNT_2D& center, double radius, double startRad, double sweepRad) final;
  void fill(const PNT_2D* points, const std::size_t* ends, std::size_t rings, FillRule rule) final;
  void dot(const PNT_2D& at) final;
  void disc(const PNT_2D& center, double diameter) final;
  /// False beyond eight nested clips, each of which may cost as much memory as the sheet.
  bool pushClip(const PNT_2D* points, std::size_t count) final;
  void popClip() final;

 protected:
  ClippingPainter(double width, double height) { setSize(width, height); }

  void setSize(double width, double height) { m_box.set(-width, -height, 2 * width, 2 * height); }

  const RECT_2D& box() const { return m_box; }

  /// The same as in `IPainter`, with everything inside the box. For convex rings both rules are
  /// equivalent, and `rule` is then `NonZero` for up to four corners.
  virtual void plainStroke(const PNT_2D* points, std::size_t count, bool closed) = 0;
  virtual void plainSegments(const PNT_2D* points, std::size_t count) {
    for (std::size_t i = 0; i < count; i += 2) plainStroke(points + i, 2, false);
  }
  virtual void plainArc(const PNT_2D& center, double radius, double startRad, double sweepRad) = 0;
  virtual void plainFill(const PNT_2D* points, const std::size_t* ends, std::size_t rings,
                         FillRule rule) = 0;
  virtual void plainDot(const PNT_2D& at) = 0;
  virtual void plainDisc(const PNT_2D& center, double diameter) = 0;
  /// The same, with fewer than three points if nothing is visible; returns false to draw unclipped.
  virtual bool plainClip(const PNT_2D* points, std::size_t count) = 0;
  virtual void plainPopClip() = 0;
  bool isClipping() const { return m_openClips > 0; }

 private:
  static constexpr int kMostClips = 8;

  void strokePieces(const PNT_2D* points, std::size_t count, bool closed);
  void endPiece();

  RECT_2D m_box;
  std::vector<PNT_2D> m_piece, m_rings;
  std::vector<std::size_t> m_ends;
  int m_openClips = 0;
};

/// Whether the rings, all together, run from the x axis toward the y axis around their interior.
/// Overlapping fills of the same orientation are united by the non-zero rule.
bool turnLeft(const PNT_2D* points, const std::size_t* ends, std::size_t rings);

/// Clips the segment to the box; false if it is entirely outside.
bool clipSegment(const RECT_2D& box, PNT_2D& a, PNT_2D& b);

/// Appends the part of a ring inside the box to `out`; its pieces are joined along the box, which
/// preserves the interior by both rules.
void clipRing(const RECT_2D& box, const PNT_2D* points, std::size_t count,
              std::vector<PNT_2D>& out);

}  // namespace vek0::paint
