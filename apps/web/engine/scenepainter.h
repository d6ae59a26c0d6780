#pragma once

#include <cstdint>
#include <vector>

#include "clipregion.h"
#include "scenestore.h"
#include "vek0draw/painter.h"
#include "vek0paint/glyphfont.h"

namespace vek0::web {

using paint::GlyphTable;

/// Gives slots to what is drawn.
class ISlots {
 public:
  virtual ~ISlots() = default;
  /// The slot of the next shapes. Calls come in drawing order.
  virtual std::uint32_t slotOf(const DrawItem& item, std::uint32_t style) = 0;
};

/// Makes shapes of a drawing that is drawn in its own coordinates.
class ScenePainter final : public IPainter {
 public:
  struct Output {
    SceneStyles& styles;
    BatchStore& batches;
    ISlots& slots;
    const GlyphTable& glyphs;
    double deviation;     ///< of chords and glyphs that are not refined by the page
    std::int32_t marker;  ///< of points
  };
  explicit ScenePainter(const Output& output) : m_out(output) {}

  void begin(const DrawItem& item) override;
  void stroke(const PNT_2D* points, std::size_t count, bool closed) override;
  bool hasDashes() const override { return true; }
  void dashedStroke(const PNT_2D* points, std::size_t count, const DrawDashes& dashes,
                    double distance) override;
  bool arc(const PNT_2D& center, double radius, double startRad, double sweepRad) override;
  bool dashedArc(const PNT_2D& center, double radius, double startRad, double sweepRad,
                 const DrawDashes& dashes) override;
  void fill(const PNT_2D* points, const std::size_t* ends, std::size_t rings,
            FillRule rule) override;
  void dot(const PNT_2D& at) override { mark(at, -1); }
  bool point(const PNT_2D& at) override;
  void text(const DrawText& text) override;
  bool pushClip(const PNT_2D* points, std::size_t count) override;
  void popClip() override { m_clip.pop(); }

 private:
  struct Pen {
    std::uint32_t style, flags;
  };
  struct Curve {
    PNT_2D center;
    double radius, start, sweep;

    PNT_2D at(double share) const;
    RECT_2D box(double from, double to) const;
  };

  Pen dashedPen(const DrawDashes& dashes);
  void segment(const PNT_2D& a, const PNT_2D& b, double distance, const Pen& pen);
  void drawCurve(const Curve& curve, const Pen& pen);
  void divide(const Curve& curve, double from, double to, int depth, const Pen& pen);
  void mark(const PNT_2D& at, std::int32_t marker);
  void polygon(const ClipRegion::Corners& corners);
  void fan(const ClipRegion::Corners& corners);
  void glyph(std::uint32_t index, const AFFINE_2D& map);
  void cutGlyph(std::uint32_t index, const AFFINE_2D& map, double height);

  Output m_out;
  ClipRegion m_clip;
  DrawItem m_item;
  Pen m_pen{};
  std::uint32_t m_slot = 0;
  std::vector<GlyphTable::Placed> m_placed;  // scratch
};

}  // namespace vek0::web
