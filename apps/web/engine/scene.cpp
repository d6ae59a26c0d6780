#include "scene.h"

#include <algorithm>
#include <cmath>

#include "vek0draw/areadrawing.h"

namespace vek0::web {
namespace {

constexpr double kChordShare = 1e-6;  // of the drawing's size, for what the page cannot refine
constexpr double kDetailShare = 1.0 / 4000;  // smaller content of excessive inserts becomes dots
constexpr double kFinestPattern = 1e-6;
constexpr double kDetailPixels = 10;  // deviations that are about a pixel
constexpr double kFar = 2;            // infinite lines reach beyond the drawing by so many sizes
constexpr double kMargins = 2 * kFar + 1;

RGB_COLOR unpacked(std::uint32_t rgb) {
  constexpr unsigned byte = 8, mask = 255;
  return {static_cast<std::uint8_t>(rgb >> 2 * byte & mask),
          static_cast<std::uint8_t>(rgb >> byte & mask), static_cast<std::uint8_t>(rgb & mask)};
}

RECT_2D extentsOf(const CData& data, const CLayout* layout) {
  RECT_2D box;
  if (layout) {
    box = layout->getBdry();
    const RECT_2D paper = layout->getPaper();
    if (paper.validRegion()) box.updateRegion(paper);
  } else {
    DRAW_OPTIONS options;
    options.hiddenLayers = true;
    box = drawnExtents(data, CPOProjector(), options);
  }
  return box.validRegion() ? box : RECT_2D(0, 0, 1, 1);
}

}  // namespace

// Gives every entity a range of new slots: one, or several where the order of its own parts
// matters.
class Scene::NewSlots final : public ISlots {
 public:
  explicit NewSlots(Scene& scene) : m_scene(scene) {}

  std::uint32_t slotOf(const DrawItem& item, std::uint32_t style) override {
    const bool isNews = item.top != m_top;
    if (!isNews && style == m_style) return m_scene.m_slotCount - 1;
    if (isNews) begin(*item.top);
    m_style = style;
    ++m_range->count;
    return m_scene.m_slotCount++;
  }
  // Another run of the same entity is a range of its own.
  void restart() { m_top = nullptr; }

 private:
  void begin(const CEnt& top) {
    m_top = &top;
    m_range = &m_scene.needRange(top);
    m_range->first = m_scene.m_slotCount;
    m_range->count = 0;
    // Until they are edited, entities are in the order of their slots.
    if (m_range->order == VEK0_OWN_ORDER) m_range->order = m_range->first;
  }

  Scene& m_scene;
  const CEnt* m_top = nullptr;
  std::uint32_t m_style = 0;
  Range* m_range = nullptr;
};

// The slots that entities have in the scene.
class Scene::KnownSlots final : public ISlots {
 public:
  explicit KnownSlots(const Scene& scene) : m_scene(scene) {}

  std::uint32_t slotOf(const DrawItem& item, std::uint32_t style) override {
    if (item.top != m_top) {
      const Range* range = m_scene.rangeOf(*item.top);
      m_top = item.top;
      m_range = range ? *range : Range{};
      m_at = 0;
    } else if (style != m_style) {
      ++m_at;
    }
    m_style = style;
    return m_range.first + (m_range.count > 0 ? std::min(m_at, m_range.count - 1) : 0);
  }

 private:
  const Scene& m_scene;
  const CEnt* m_top = nullptr;
  std::uint32_t m_style = 0, m_at = 0;
  Range m_range;
};

Scene::Scene(CData& data, CDrawIndex& index, const GlyphTable& glyphs, const CLayout* layout,
             std::uint32_t background)
    : m_data(data),
      m_index(index),
      m_glyphs(glyphs),
      m_layout(layout),
      m_background(unpacked(background)),
      m_area(extentsOf(data, layout)) {
  m_size = std::max(m_area.max.x - m_area.min.x, m_area.max.y - m_area.min.y);
  if (!(m_size > 0)) m_size = 1;
  m_area.inflate(kFar * m_size, kFar * m_size);
  m_slots = std::make_unique<NewSlots>(*this);
  m_batches = std::make_unique<BatchStore>(
      m_area, 1 + static_cast<double>(data.getEntTable().getEntityTbl().size()), kMargins);
  if (layout) return;
  const std::list<CEnt*>& entities = data.getEntTable().getEntityTbl();
  m_order.assign(entities.begin(), entities.end());
  if (!m_order.empty()) m_byRank.resize(CEntTable::getRank(*m_order.back()) + 1);
}

Scene::~Scene() = default;

DRAW_OPTIONS Scene::options(double deviation) const {
  DRAW_OPTIONS options;
  options.background = m_background;
  options.hiddenLayers = true;
  options.penReach = options.leastPoint = 0;
  options.chordError = deviation;
  options.finestDetail = m_size * kDetailShare;
  options.finestPattern = m_size * kFinestPattern;
  return options;
}

ScenePainter Scene::painterFor(BatchStore& batches, ISlots& slots, double deviation) {
  return ScenePainter({m_styles, batches, slots, m_glyphs, deviation,
                       static_cast<std::int32_t>(m_data.getVars().getPointMode())});
}

// --- The whole

bool Scene::step(std::size_t entities) {
  if (m_isComplete) return false;
  const double deviation = m_size * kChordShare;
  ScenePainter painter = painterFor(*m_batches, *m_slots, deviation);
  if (m_layout) {
    ::drawArea(m_data, *m_layout, m_area, painter, options(deviation));
    m_isComplete = true;
  } else {
    const std::size_t end = std::min(m_order.size(), m_next + entities);
    const std::vector<CEnt*> some(m_order.begin() + static_cast<std::ptrdiff_t>(m_next),
                                  m_order.begin() + static_cast<std::ptrdiff_t>(end));
    m_index.drawEntities(some, m_area, painter, options(deviation));
    m_next = end;
    m_isComplete = end == m_order.size();
  }
  if (m_isComplete) std::vector<CEnt*>().swap(m_order);
  m_edits.clear();
  m_precision = m_batches->precision();
  publish(*m_batches);
  return !m_isComplete;
}

void Scene::publish(BatchStore& batches) {
  m_styles.refresh(m_data);
  const std::vector<vek0_batch>& made = batches.take(m_isComplete);
  const auto count = [](const auto& list) { return static_cast<std::uint32_t>(list.size()); };
  m_current = {m_precision,
               m_data.getVars().getPointSize(),
               m_slotCount,
               count(made),
               count(m_styles.styles()),
               count(m_styles.dashes()),
               count(m_styles.lengths()),
               count(batches.runs()),
               count(m_edits),
               m_isStale,
               made.data(),
               m_styles.styles().data(),
               m_styles.dashes().data(),
               m_styles.lengths().data(),
               batches.runs().data(),
               m_edits.data()};
}

void Scene::release() {
  m_batches->forget();
  m_edits.clear();
  m_current.batches = nullptr;
  m_current.runs = nullptr;
  m_current.edits = nullptr;
  m_current.batch_count = m_current.run_count = m_current.edit_count = 0;
}

// --- Parts

void Scene::drawWindow(const RECT_2D& window, double deviation) {
  m_batches = std::make_unique<BatchStore>(window, 0, 1);
  KnownSlots slots(*this);
  ScenePainter painter = painterFor(*m_batches, slots, deviation);
  const PNT_2D corners[] = {
      window.min, {window.max.x, window.min.y}, window.max, {window.min.x, window.max.y}};
  painter.pushClip(corners, 4);
  DRAW_OPTIONS fine = options(deviation);
  fine.finestDetail = fine.finestPattern = kDetailPixels * deviation;
  draw(window, painter, fine);
  painter.popClip();
  m_edits.clear();
  publish(*m_batches);
}

void Scene::draw(const RECT_2D& area, IPainter& painter, const DRAW_OPTIONS& drawOptions) {
  if (m_layout)
    ::drawArea(m_data, *m_layout, area, painter, drawOptions);
  else
    m_index.drawArea(area, painter, drawOptions);
}

AreaDrawer Scene::drawer() {
  return [this](const RECT_2D& area, IPainter& painter, const DRAW_OPTIONS& drawOptions) {
    if (m_layout) return ::drawArea(m_data, *m_layout, area, painter, drawOptions);
    return m_index.drawArea(area, painter, drawOptions);
  };
}

void Scene::drawWhole(CEnt& ent, IPainter& painter) {
  DRAW_OPTIONS plain;
  plain.penReach = plain.leastPoint = 0;
  plain.chordError = m_size * kChordShare;
  m_index.drawEntities({&ent}, m_area, painter, plain);
}

// --- Changes

Scene::Range* Scene::rangeOf(const CEnt& ent) {
  return const_cast<Range*>(static_cast<const Scene*>(this)->rangeOf(ent));
}

const Scene::Range* Scene::rangeOf(const CEnt& ent) const {
  if (m_layout) {
    const auto at = m_byEnt.find(&ent);
    return at != m_byEnt.end() ? &at->second.front() : nullptr;
  }
  const std::size_t rank = CEntTable::getRank(ent);
  return rank < m_byRank.size() && m_byRank[rank].order != VEK0_OWN_ORDER ? &m_byRank[rank]
                                                                          : nullptr;
}

Scene::Range& Scene::needRange(const CEnt& ent) {
  if (m_layout) return m_byEnt[&ent].emplace_back();
  const std::size_t rank = CEntTable::getRank(ent);
  if (rank >= m_byRank.size()) m_byRank.resize(rank + 1);
  return m_byRank[rank];
}

void Scene::hide(Range& range) {
  if (range.count > 0) m_edits.push_back({range.first, range.count, range.order, 1});
  m_deadSlots += range.count;
  range.count = 0;
}

void Scene::apply(const EditTracker::Changes& changes) {
  // Sheets show the model through any number of viewports, and are redrawn.
  const bool isDrawnAnew = changes.isStale || !m_isComplete || m_layout;
  m_isStale = m_isStale || (changes.isAnything && isDrawnAnew);
  // Its entities may be gone.
  if (!m_isComplete && m_isStale) {
    m_order.clear();
    m_isComplete = true;
  }
  m_edits.clear();
  m_batches = std::make_unique<BatchStore>(m_area, 1, kMargins);
  if (!m_isStale && !changes.ents.empty()) {
    std::vector<CEnt*> drawn;
    for (const auto& [rank, ent] : changes.ents) {
      if (rank < m_byRank.size()) hide(m_byRank[rank]);
      if (ent) drawn.push_back(ent);
    }
    const std::uint32_t before = m_slotCount;
    const double deviation = m_size * kChordShare;
    m_slots->restart();
    ScenePainter painter = painterFor(*m_batches, *m_slots, deviation);
    m_index.drawEntities(drawn, m_area, painter, options(deviation));
    for (const CEnt* ent : drawn) {
      const Range* range = rangeOf(*ent);
      // Slots of new entities are in order already.
      if (range && range->count > 0 && range->order < before)
        m_edits.push_back({range->first, range->count, range->order, 0});
    }
    m_precision = std::max(m_precision, m_batches->precision());
    m_isStale = m_deadSlots > m_slotCount / 2 + 100'000;
  }
  publish(*m_batches);
}

std::vector<vek0_slots> Scene::slotsOf(const CEnt& ent) const {
  std::vector<vek0_slots> slots;
  const auto add = [&](const Range& range) {
    if (range.count > 0) slots.push_back({range.first, range.count, range.order, 0});
  };
  if (m_layout) {
    const auto at = m_byEnt.find(&ent);
    if (at != m_byEnt.end()) std::for_each(at->second.begin(), at->second.end(), add);
  } else if (const Range* range = rangeOf(ent)) {
    add(*range);
  }
  return slots;
}

std::size_t Scene::bytes() const {
  return m_batches->bytes() + m_styles.bytes() + m_byRank.capacity() * sizeof(Range) +
         m_order.capacity() * sizeof(CEnt*);
}

}  // namespace vek0::web
