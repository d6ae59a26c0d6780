#include "scenestore.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <iterator>
#include <numeric>

namespace vek0::web {
namespace {

constexpr int kMostLevels = 12;
constexpr double kLeastCells = 16;       // for the sake of precision
constexpr double kShapesPerCell = 4096;  // fewer would make more calls than a frame has time for
constexpr double kMostRadii = 16;        // of an arc, in sides of its cell

float narrow(double value) { return static_cast<float>(value); }

RECT_2D boxOf(const PNT_2D& a, const PNT_2D& b) { return RECT_2D(a, b); }

std::uint32_t packed(const RGB_COLOR& color, std::uint8_t alpha) {
  constexpr unsigned byte = 8;
  return color.r | static_cast<std::uint32_t>(color.g) << byte |
         static_cast<std::uint32_t>(color.b) << 2 * byte |
         static_cast<std::uint32_t>(alpha) << 3 * byte;
}

// The finalizer of SplitMix64.
std::uint64_t mixed(std::uint64_t value) {
  value = (value ^ value >> 30) * 0xbf58476d1ce4e5b9;
  value = (value ^ value >> 27) * 0x94d049bb133111eb;
  return value ^ value >> 31;
}

}  // namespace

// --- Styles

// What hides an entity, besides being invisible: its own layer, and those of the inserts around it.
std::uint32_t SceneStyles::gatesOf(const DrawItem& item) {
  const CEntInsertStackState& path = *item.path;
  const CLayer* own = path.ResolveLayer(*item.ent);
  const bool isPlain = path.GetNoInsert() == 0;
  if (isPlain && m_isLastPlain && own == m_lastLayer) return m_lastGates;
  std::vector<std::pair<const CLayer*, bool>> key;
  key.emplace_back(own, true);
  CEntInsertStack outer(1);
  for (int i = 0; i < path.GetNoInsert(); ++i) {
    const CEntInsertBase* insert = path.GetInsert(i);
    const bool isWhole = insert->getType() == CEntHatch::kType ||
                         (insert->getBlock() && insert->getBlock()->isOfDimension());
    key.emplace_back(outer.ResolveLayer(*insert), isWhole);
    outer.Push(insert, 0, 0);
  }
  const auto [at, isNew] =
      m_knownGates.try_emplace(key, static_cast<std::uint32_t>(m_gates.size()));
  if (isNew) {
    std::vector<LayerGate>& gates = m_gates.emplace_back();
    for (const auto& [layer, isWhole] : key) gates.push_back({layer, isWhole});
  }
  m_lastLayer = own;
  m_isLastPlain = isPlain;
  m_lastGates = at->second;
  return at->second;
}

std::uint32_t SceneStyles::styleOf(const DrawItem& item, std::uint32_t dash) {
  constexpr std::uint32_t foreground = VEK0_FOREGROUND;
  const std::uint32_t flags = VEK0_VISIBLE | (item.isForeground ? foreground : 0);
  const Key key{packed(item.color, item.alpha), static_cast<float>(item.weightMm), gatesOf(item),
                dash, flags};
  if (m_lastStyle < m_styles.size() && key == m_lastKey) return m_lastStyle;
  const auto [at, isNew] = m_known.try_emplace(key, static_cast<std::uint32_t>(m_styles.size()));
  if (isNew) {
    m_styles.push_back({item.color.r, item.color.g, item.color.b, item.alpha, narrow(item.weightMm),
                        0, dash, flags, 0});
    m_gatesOfStyle.push_back(key.gates);
  }
  m_lastKey = key;
  m_lastStyle = at->second;
  return at->second;
}

std::size_t SceneStyles::KeyHash::operator()(const Key& key) const {
  std::uint64_t hash = std::hash<float>{}(key.weight);
  for (const std::uint32_t part : {key.color, key.gates, key.dash, key.flags})
    hash = mixed(hash ^ part);
  return static_cast<std::size_t>(hash);
}

std::uint32_t SceneStyles::dashOf(const DrawDashes& dashes) {
  std::uint64_t hash = mixed(std::hash<double>{}(dashes.phase));
  for (const double length : dashes.lengths) hash = mixed(hash ^ std::hash<double>{}(length));
  const auto [first, last] = m_knownDashes.equal_range(static_cast<std::size_t>(hash));
  for (auto at = first; at != last; ++at) {
    const DrawDashes& known = m_givenDashes[at->second];
    if (known.lengths == dashes.lengths && known.phase == dashes.phase) return at->second;
  }
  const auto index = static_cast<std::uint32_t>(m_dashes.size());
  m_knownDashes.emplace(static_cast<std::size_t>(hash), index);
  m_givenDashes.push_back(dashes);
  const double period = std::accumulate(dashes.lengths.begin(), dashes.lengths.end(), 0.0);
  m_dashes.push_back({static_cast<std::uint32_t>(m_lengths.size()),
                      static_cast<std::uint32_t>(dashes.lengths.size()), narrow(period),
                      narrow(dashes.phase)});
  for (const double length : dashes.lengths) m_lengths.push_back(narrow(length));
  return index;
}

void SceneStyles::refresh(const CData& data) {
  std::unordered_map<const CLayer*, std::uint32_t> positions;
  for (CData::CLayerIterator it(data, true); const CLayer* layer = *it; ++it)
    positions.emplace(layer, static_cast<std::uint32_t>(positions.size()));
  // A layer that is gone has no entities to hide.
  const auto isOpen = [&](const LayerGate& gate) {
    if (!gate.layer || !positions.contains(gate.layer)) return true;
    return !gate.layer->isFrozen() && !(gate.isHiddenByOff && gate.layer->isOff());
  };
  for (std::size_t i = 0; i < m_styles.size(); ++i) {
    const std::vector<LayerGate>& gates = m_gates[m_gatesOfStyle[i]];
    const bool isVisible = std::all_of(gates.begin(), gates.end(), isOpen);
    constexpr std::uint32_t visible = VEK0_VISIBLE;
    m_styles[i].flags = (m_styles[i].flags & ~visible) | (isVisible ? visible : 0);
    const auto at = positions.find(gates.front().layer);
    m_styles[i].layer = at != positions.end() ? at->second : 0;
  }
}

std::size_t SceneStyles::bytes() const {
  return m_styles.capacity() * sizeof(vek0_style) + m_lengths.capacity() * sizeof(float);
}

// --- Batches

BatchStore::BatchStore(const RECT_2D& area, double shapes, double margins) : m_area(area) {
  m_side = std::max({area.max.x - area.min.x, area.max.y - area.min.y, 1e-300});
  if (shapes == 0) return;
  const double cells = std::max(kLeastCells, shapes / kShapesPerCell);
  m_levels =
      std::min(static_cast<int>(std::ceil(std::log2(margins * std::sqrt(cells)))), kMostLevels);
}

// Shapes lie in the smallest cell that is as large as they are, by their middle, and may extend
// beyond it by half of its side.
BatchStore::Batch& BatchStore::batchFor(std::uint32_t kind, std::uint32_t flags,
                                        const RECT_2D& box) {
  const double size = std::max(box.max.x - box.min.x, box.max.y - box.min.y);
  int level = m_levels;
  double side = std::ldexp(m_side, -level);
  for (; level > 0 && size > side; side *= 2) --level;
  const double most = std::ldexp(1.0, level) - 1;
  const auto index = [&](double low, double high, double from) {
    return std::clamp(std::floor(((low + high) / 2 - from) / side), 0.0, most);
  };
  const double column = index(box.min.x, box.max.x, m_area.min.x);
  const double row = index(box.min.y, box.max.y, m_area.min.y);
  const std::uint64_t key =
      static_cast<std::uint64_t>(column) | static_cast<std::uint64_t>(row) << 16 |
      static_cast<std::uint64_t>(level) << 32 | static_cast<std::uint64_t>(kind) << 40 |
      static_cast<std::uint64_t>(flags) << 48;
  if (key == m_lastKey && m_last->count < kMost) return *m_last;
  const auto at = m_open.find(key);
  m_lastKey = key;
  if (at != m_open.end() && at->second->count < kMost) return *(m_last = at->second);
  m_precision = std::max(m_precision, std::ldexp(side, -23));
  const PNT_2D origin(m_area.min.x + (column + 0.5) * side, m_area.min.y + (row + 0.5) * side);
  return *(m_last = &newBatch(key, origin, kind, flags));
}

BatchStore::Batch& BatchStore::newBatch(std::uint64_t key, const PNT_2D& origin, std::uint32_t kind,
                                        std::uint32_t flags) {
  constexpr float far = 3e38f;
  Batch& batch = m_batches.emplace_back();
  batch.origin = origin;
  batch.box[0] = batch.box[1] = far;
  batch.box[2] = batch.box[3] = -far;
  batch.key = key;
  batch.kind = kind;
  batch.flags = flags;
  m_open[key] = &batch;
  return batch;
}

template <class Shape>
void BatchStore::add(std::uint32_t kind, std::uint32_t flags, const RECT_2D& box, float largest,
                     const Shape& shape) {
  Batch& batch = batchFor(kind, flags, box);
  const auto record = shape(batch.origin);
  const auto* bytes = reinterpret_cast<const unsigned char*>(&record);
  batch.data.insert(batch.data.end(), bytes, bytes + sizeof record);
  ++batch.count;
  batch.largest = std::max(batch.largest, largest);
  batch.box[0] = std::min(batch.box[0], narrow(box.min.x - batch.origin.x));
  batch.box[1] = std::min(batch.box[1], narrow(box.min.y - batch.origin.y));
  batch.box[2] = std::max(batch.box[2], narrow(box.max.x - batch.origin.x));
  batch.box[3] = std::max(batch.box[3], narrow(box.max.y - batch.origin.y));
}

void BatchStore::segment(const PNT_2D& a, const PNT_2D& b, double from, std::uint32_t slot,
                         std::uint32_t style, std::uint32_t flags) {
  add(VEK0_SEGMENTS, flags, boxOf(a, b), 0, [&](const PNT_2D& o) {
    return vek0_segment{narrow(a.x - o.x),
                        narrow(a.y - o.y),
                        narrow(b.x - o.x),
                        narrow(b.y - o.y),
                        narrow(from),
                        0,
                        slot,
                        style};
  });
}

bool BatchStore::arc(const PNT_2D& center, double radius, double start, double sweep,
                     const RECT_2D& box, double from, std::uint32_t slot, std::uint32_t style,
                     std::uint32_t flags) {
  const double size = std::max(box.max.x - box.min.x, box.max.y - box.min.y);
  if (!(radius <= kMostRadii * size)) return false;
  add(VEK0_ARCS, flags, box, narrow(radius), [&](const PNT_2D& o) {
    return vek0_arc{narrow(center.x - o.x), narrow(center.y - o.y), narrow(radius), narrow(start),
                    narrow(sweep),          narrow(from),           slot,           style};
  });
  return true;
}

void BatchStore::triangle(const PNT_2D& a, const PNT_2D& b, const PNT_2D& c, std::uint32_t slot,
                          std::uint32_t style, std::uint32_t flags) {
  RECT_2D box(a, b);
  box.updateRegion(c);
  add(VEK0_TRIANGLES, flags, box, 0, [&](const PNT_2D& o) {
    return vek0_triangle{narrow(a.x - o.x),
                         narrow(a.y - o.y),
                         narrow(b.x - o.x),
                         narrow(b.y - o.y),
                         narrow(c.x - o.x),
                         narrow(c.y - o.y),
                         slot,
                         style};
  });
}

void BatchStore::glyph(const AFFINE_2D& map, std::uint32_t glyph, const RECT_2D& box, double height,
                       std::uint32_t slot, std::uint32_t style, std::uint32_t flags) {
  add(VEK0_GLYPHS, flags, box, narrow(height), [&](const PNT_2D& o) {
    return vek0_glyph_instance{narrow(map.e - o.x),
                               narrow(map.f - o.y),
                               narrow(map.a),
                               narrow(map.b),
                               narrow(map.c),
                               narrow(map.d),
                               glyph,
                               slot,
                               style};
  });
}

void BatchStore::point(const PNT_2D& at, std::int32_t mark, std::uint32_t slot, std::uint32_t style,
                       std::uint32_t flags) {
  add(VEK0_POINTS, flags, boxOf(at, at), 0, [&](const PNT_2D& o) {
    return vek0_point{narrow(at.x - o.x), narrow(at.y - o.y), mark, {}, slot, style};
  });
}

void BatchStore::run(const DrawText& text, double unit, std::uint32_t slot, std::uint32_t style) {
  const AFFINE_2D& m = text.matrix;
  m_texts.push_back(text.string->toUtf8());
  m_runs.push_back({m.e, m.f, m.a * unit, m.b * unit, m.c * unit, m.d * unit, slot, style,
                    m_texts.back().c_str(), 0});
}

// Drawn glyph by glyph.
void BatchStore::sortGlyphs(Batch& batch) {
  std::vector<vek0_glyph_instance> glyphs(batch.count);
  std::memcpy(glyphs.data(), batch.data.data(), batch.data.size());
  std::stable_sort(glyphs.begin(), glyphs.end(),
                   [](const auto& a, const auto& b) { return a.glyph < b.glyph; });
  std::memcpy(batch.data.data(), glyphs.data(), batch.data.size());
}

const std::vector<vek0_batch>& BatchStore::take(bool isAll) {
  forgetTaken();
  m_lastKey = ~std::uint64_t{0};
  for (auto at = m_batches.begin(); at != m_batches.end();) {
    const auto next = std::next(at);
    if (isAll || at->count >= kMost) {
      const auto open = m_open.find(at->key);
      if (open->second == &*at) m_open.erase(open);
      m_given.splice(m_given.end(), m_batches, at);
    }
    at = next;
  }
  for (Batch& batch : m_given) {
    if (batch.kind == VEK0_GLYPHS) sortGlyphs(batch);
    m_bytes += batch.data.capacity();
    m_taken.push_back({batch.origin.x, batch.origin.y, batch.box[0], batch.box[1], batch.box[2],
                       batch.box[3], batch.largest, batch.kind, batch.count, batch.flags,
                       batch.data.data()});
  }
  return m_taken;
}

void BatchStore::forget() {
  forgetTaken();
  m_runs.clear();
  m_texts.clear();
}

void BatchStore::forgetTaken() {
  m_given.clear();
  m_taken.clear();
  m_bytes = 0;
}

}  // namespace vek0::web
