#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "edittracker.h"
#include "scenepainter.h"
#include "scenestore.h"
#include "vek0draw/drawindex.h"
#include "vek0draw/picking.h"
#include "vek0paint/glyphfont.h"

namespace vek0::web {

/// What a layout shows, as batches of shapes. See vek0_web.h.
class Scene {
 public:
  /// All are borrowed; a null layout is the model.
  Scene(CData& data, CDrawIndex& index, const GlyphTable& glyphs, const CLayout* layout,
        std::uint32_t background);

  ~Scene();

  /// Draws the next entities; false once there are no more. The model must not be edited until
  /// then: `isStale` says so afterwards.
  bool step(std::size_t entities);
  bool isComplete() const { return m_isComplete; }
  /// Draws a part.
  void drawWindow(const RECT_2D& window, double deviation);
  /// Draws what has changed, and hides what it replaces.
  void apply(const EditTracker::Changes& changes);
  void release();

  const vek0_scene& current() const { return m_current; }
  /// Where an entity is in the table of slots.
  std::vector<vek0_slots> slotsOf(const CEnt& ent) const;
  std::size_t bytes() const;
  /// Draws a part for picking.
  AreaDrawer drawer();
  void drawWhole(CEnt& ent, IPainter& painter);

 private:
  struct Range {
    std::uint32_t first = 0, count = 0;
    std::uint32_t order = VEK0_OWN_ORDER;  // VEK0_OWN_ORDER: has none yet
  };
  class NewSlots;
  class KnownSlots;

  DRAW_OPTIONS options(double deviation) const;
  ScenePainter painterFor(BatchStore& batches, ISlots& slots, double deviation);
  void draw(const RECT_2D& area, IPainter& painter, const DRAW_OPTIONS& options);
  Range* rangeOf(const CEnt& ent);
  const Range* rangeOf(const CEnt& ent) const;
  Range& needRange(const CEnt& ent);
  void hide(Range& range);
  void publish(BatchStore& batches);

  CData& m_data;
  CDrawIndex& m_index;
  const GlyphTable& m_glyphs;
  const CLayout* m_layout;
  const RGB_COLOR m_background;
  RECT_2D m_area;  // of everything, and of infinite lines as far as they are drawn
  double m_size;   // of the drawing
  SceneStyles m_styles;
  std::unique_ptr<BatchStore> m_batches;  // of the last step, window or change
  std::unique_ptr<NewSlots> m_slots;
  std::vector<CEnt*> m_order;  // of the model, while it is drawn
  std::size_t m_next = 0;
  bool m_isComplete = false, m_isStale = false;
  std::vector<Range> m_byRank;                                  // of the model
  std::unordered_map<const CEnt*, std::vector<Range>> m_byEnt;  // of a sheet
  std::uint32_t m_slotCount = 0, m_deadSlots = 0;
  std::vector<vek0_slots> m_edits;
  double m_precision = 0;
  vek0_scene m_current{};
};

}  // namespace vek0::web
