#pragma once

#include <cstdint>
#include <deque>
#include <list>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "vek0_web.h"
#include "vek0core/geometry/rect.h"
#include "vek0core/vek0core.h"
#include "vek0draw/painter.h"

namespace vek0::web {

/// A layer that something depends on.
struct LayerGate {
  const CLayer* layer;
  bool isHiddenByOff;  ///< otherwise only by frozen

  bool operator==(const LayerGate&) const = default;
};

/// The styles and dashes of a scene: what several shapes look like.
class SceneStyles {
 public:
  /// The style of what follows, by its path through inserts.
  std::uint32_t styleOf(const DrawItem& item, std::uint32_t dash);
  std::uint32_t dashOf(const DrawDashes& dashes);

  bool isTransparent(std::uint32_t style) const { return m_styles[style].alpha < 255; }
  /// Brings visibility and positions of layers up to date.
  void refresh(const CData& data);

  const std::vector<vek0_style>& styles() const { return m_styles; }
  const std::vector<vek0_dash>& dashes() const { return m_dashes; }
  const std::vector<float>& lengths() const { return m_lengths; }
  std::size_t bytes() const;

 private:
  struct Key {
    std::uint32_t color = 0;
    float weight = 0;
    std::uint32_t gates = 0, dash = 0, flags = 0;

    bool operator==(const Key&) const = default;
  };
  struct KeyHash {
    std::size_t operator()(const Key& key) const;
  };

  std::uint32_t gatesOf(const DrawItem& item);

  std::vector<vek0_style> m_styles;
  std::vector<std::uint32_t> m_gatesOfStyle;  // by style
  std::unordered_map<Key, std::uint32_t, KeyHash> m_known;
  std::vector<std::vector<LayerGate>> m_gates;
  std::map<std::vector<std::pair<const CLayer*, bool>>, std::uint32_t> m_knownGates;
  std::vector<vek0_dash> m_dashes{{0, 0, 0, 0}};  // the first is continuous
  std::vector<float> m_lengths;
  std::vector<DrawDashes> m_givenDashes{{}};                          // as they were given
  std::unordered_multimap<std::size_t, std::uint32_t> m_knownDashes;  // by hash

  // Of the last item, because most entities are like the one before.
  const CLayer* m_lastLayer = nullptr;
  bool m_isLastPlain = false;
  std::uint32_t m_lastGates = 0;
  Key m_lastKey{};
  std::uint32_t m_lastStyle = 0xffffffff;
};

/// Sorts shapes into batches by place, so that a page draws only those in view, and stores them
/// relative to the middle of their cell. Large shapes go into larger cells.
class BatchStore {
 public:
  /// Cells for about `shapes` shapes in the middle of `area`, which has `margins` times their
  /// extents; a single cell if there are none.
  BatchStore(const RECT_2D& area, double shapes, double margins);

  void segment(const PNT_2D& a, const PNT_2D& b, double from, std::uint32_t slot,
               std::uint32_t style, std::uint32_t flags);
  /// False if a 32-bit float cannot hold it well enough: it must become segments.
  bool arc(const PNT_2D& center, double radius, double start, double sweep, const RECT_2D& box,
           double from, std::uint32_t slot, std::uint32_t style, std::uint32_t flags);
  void triangle(const PNT_2D& a, const PNT_2D& b, const PNT_2D& c, std::uint32_t slot,
                std::uint32_t style, std::uint32_t flags);
  /// `box` bounds it; `height` is that of capitals.
  void glyph(const AFFINE_2D& map, std::uint32_t glyph, const RECT_2D& box, double height,
             std::uint32_t slot, std::uint32_t style, std::uint32_t flags);
  void point(const PNT_2D& at, std::int32_t mark, std::uint32_t slot, std::uint32_t style,
             std::uint32_t flags);
  void run(const DrawText& text, double unit, std::uint32_t slot, std::uint32_t style);

  /// The batches that are full, or all; valid until the next call. What is not full waits for
  /// more: a frame has no time for many small batches.
  const std::vector<vek0_batch>& take(bool isAll);
  const std::vector<vek0_run>& runs() const { return m_runs; }
  /// Frees the batches and runs that were taken.
  void forget();
  /// Largest rounding error of the coordinates of all batches so far.
  double precision() const { return m_precision; }
  std::size_t bytes() const { return m_bytes; }

 private:
  struct Batch {
    std::uint64_t key;
    PNT_2D origin;
    float box[4];
    float largest = 0;
    std::uint32_t kind, flags, count = 0;
    std::vector<unsigned char> data;
  };
  static constexpr std::uint32_t kMost = 16384;  // shapes of a batch

  template <class Shape>
  void add(std::uint32_t kind, std::uint32_t flags, const RECT_2D& box, float largest,
           const Shape& shape);
  Batch& batchFor(std::uint32_t kind, std::uint32_t flags, const RECT_2D& box);
  Batch& newBatch(std::uint64_t key, const PNT_2D& origin, std::uint32_t kind, std::uint32_t flags);
  void forgetTaken();
  static void sortGlyphs(Batch& batch);

  RECT_2D m_area;
  double m_side;
  int m_levels = 0;
  std::list<Batch> m_batches;
  std::unordered_map<std::uint64_t, Batch*> m_open;
  std::uint64_t m_lastKey = ~std::uint64_t{0};
  Batch* m_last = nullptr;
  std::vector<vek0_batch> m_taken;
  std::list<Batch> m_given;
  std::deque<std::string> m_texts;
  std::vector<vek0_run> m_runs;
  double m_precision = 0;
  std::size_t m_bytes = 0;
};

}  // namespace vek0::web
