// For hosts that draw the same drawing repeatedly. Entities are in a few trees of very different
// sizes, as in a log-structured store: a change makes an entity loose and outdates its entry in a
// tree, and another tree is built only when many are loose.
#include "vek0draw/drawindex.h"

#include <cstdint>
#include <map>
#include <new>
#include <unordered_map>
#include <utility>
#include <vector>

#include "blocktrees.h"
#include "boxtree.h"
#include "vek0core/vek0core.h"
#include "walker.h"

using vek0::detail::BlockTrees;
using vek0::detail::BoxTree;
using vek0::detail::Device;
using vek0::detail::isPlaced;
using vek0::detail::Placement;
using vek0::detail::RankedEnt;
using vek0::detail::Walker;
using vek0::detail::WalkerAids;

namespace {

constexpr std::size_t kMostLoose = 512;  // visited one by one in every frame

}  // namespace

// Spatial index of the entities. New and changed ones are initially loose. When there are many,
// they are merged into a tree, together with trees that are not much larger, so that there are few
// trees and each entity is rebuilt few times.
class CDrawIndex::Entities final : public IEntTableWatcher {
 public:
  explicit Entities(const CData& data) : m_data(data), m_table(data.getEntTable()) {}
  ~Entities() override {
    if (m_isWatching) m_table.unwatch(*this);
  }

  void added(CEnt& ent) override {
    orGiveUp([&] {
      // Fixed inserts have no box that is independent of the zoom.
      auto& place = ent.getType() == CEntFixedInsert::kType ? m_placeless : m_loose;
      place.emplace(CEntTable::getRank(ent), &ent);
    });
  }

  void removed(CEnt& ent) override {
    m_loose.erase(CEntTable::getRank(ent));
    m_placeless.erase(CEntTable::getRank(ent));
    orGiveUp([&] { outdate(ent); });
  }

  void reshaped(CEnt& ent) override {
    // Entities without a box are visited in every frame anyway.
    if (m_placeless.count(CEntTable::getRank(ent)) != 0) return;
    orGiveUp([&] {
      outdate(ent);
      m_loose.emplace(CEntTable::getRank(ent), &ent);
    });
  }

  void cleared() override {
    m_trees.clear();
    m_loose.clear();
    m_placeless.clear();
    m_outdated.clear();
  }

  BlockTrees& blocks() { return m_blocks; }

  /// Updates the trees; may be expensive.
  void prepare() {
    // Blocks with infinite lines have no bounded box, so their inserts must be classified anew.
    if (holdOthersEndless() || !m_isWhole) return build();
    const bool isMostlyOutdated = m_outdated.size() > size() / 2 + kMostLoose;
    if (m_loose.size() > kMostLoose || isMostlyOutdated) gather(isMostlyOutdated);
  }

  /// Whether the window shows so much that visiting all entities is no more expensive.
  bool isAllSeen(const Placement& place, const RECT_2D& window) const {
    // The largest tree stands for the whole drawing.
    return m_trees.empty() || window.inside(place.apply(m_trees.front().boxes.box()));
  }

  /// Everything visible in the window and possibly more, in drawing order.
  std::vector<CEnt*> find(const Placement& place, const RECT_2D& window) const {
    std::vector<RankedEnt> found;
    const auto meets = [&](const RECT_3D& box) { return place.apply(box).intersect(window); };
    for (const Tree& tree : m_trees) {
      tree.boxes.visit(meets, [&](const RankedEnt& entry) {
        if (isCurrent(tree, entry)) found.push_back(entry);
      });
    }
    for (const auto& [rank, ent] : m_loose) found.push_back({rank, ent});
    for (const auto& [rank, ent] : m_placeless) found.push_back({rank, ent});
    return vek0::detail::inOrder(std::move(found));
  }

 private:
  // If memory runs out during an edit, the index is rebuilt by the next frame.
  template <class Edit>
  void orGiveUp(const Edit& edit) try {
    edit();
  } catch (const std::bad_alloc&) {
    m_isWhole = false;
  }

  // Largest first.
  struct Tree {
    BoxTree boxes;
    std::uint64_t born;
  };
  using Items = std::vector<BoxTree::Item>;

  std::size_t size() const {
    std::size_t all = 0;
    for (const Tree& tree : m_trees) all += tree.boxes.size();
    return all;
  }

  // Marks entries for the entity in the existing trees, or for an earlier one at its address, as
  // outdated.
  void outdate(const CEnt& ent) { m_outdated[&ent] = m_now; }

  bool isCurrent(const Tree& tree, const RankedEnt& entry) const {
    if (m_outdated.empty()) return true;
    const auto at = m_outdated.find(entry.ent);
    return at == m_outdated.end() || tree.born > at->second;
  }

  // There is no notification when a block starts to contain infinite lines within its extents.
  bool holdOthersEndless() {
    std::vector<std::uint64_t> endless;
    const auto look = [&](const auto& table) {
      for (int i = 0; i < static_cast<int>(table.size()); ++i)
        if (table[i] && m_blocks.boxes().holdsEndless(*table[i]))
          endless.push_back(table[i]->getSerial());
    };
    look(m_data.getBlockTable());
    look(m_data.getBlockXRefTable());
    std::swap(m_endless, endless);
    return m_endless != endless;
  }

  void build() {
    // If the build runs out of memory, the next frame starts over.
    m_isWhole = false;
    cleared();
    Items items;
    items.reserve(m_table.getEntityTbl().size());
    for (CEnt* ent : m_table.getEntityTbl()) take({CEntTable::getRank(*ent), ent}, items);
    plant(items);
    if (!m_isWatching) m_table.watch(*this);
    m_isWatching = m_isWhole = true;
  }

  void gather(bool everything) {
    m_isWhole = false;
    Items items;
    for (const auto& [rank, ent] : m_loose) take({rank, ent}, items);
    m_loose.clear();
    // Merging with trees of at most twice the size moves each entity a logarithmic number of times.
    while (!m_trees.empty() && (everything || m_trees.back().boxes.size() < 2 * items.size())) {
      const Tree tree = std::move(m_trees.back());
      m_trees.pop_back();
      for (const RankedEnt& entry : tree.boxes.entries())
        if (isCurrent(tree, entry)) take(entry, items);
    }
    // Without older trees there is nothing left to outdate.
    if (m_trees.empty()) m_outdated.clear();
    plant(items);
    m_isWhole = true;
  }

  // An entity with an empty box is invisible until it is reported as reshaped.
  void take(const RankedEnt& entry, Items& items) {
    const RECT_3D box = m_blocks.boxes().of(*entry.ent, 0);
    if (!isPlaced(*entry.ent, box))
      m_placeless.emplace(entry.rank, entry.ent);
    else if (box.validRegion())
      items.push_back({entry, box});
  }

  void plant(const Items& items) {
    if (!items.empty()) m_trees.push_back({BoxTree(items), ++m_now});
  }

  const CData& m_data;
  const CEntTable& m_table;
  BlockTrees m_blocks;
  bool m_isWatching = false;
  bool m_isWhole = false;                // false if memory has run out, or before the first frame
  std::vector<std::uint64_t> m_endless;  // blocks that contain infinite lines
  std::uint64_t m_now = 0;               // number of trees made so far
  std::vector<Tree> m_trees;
  std::map<std::size_t, CEnt*> m_loose;      // by rank
  std::map<std::size_t, CEnt*> m_placeless;  // boxes depend on the pixel size, or are unbounded
  std::unordered_map<const CEnt*, std::uint64_t> m_outdated;  // since that tree
};

CDrawIndex::CDrawIndex(const CData& data)
    : m_data(data), m_entities(std::make_unique<Entities>(data)) {}

CDrawIndex::~CDrawIndex() = default;

DRAW_RESULT CDrawIndex::draw(const IProjector& projector, const CWndVpt& window, IPainter& painter,
                             const DRAW_OPTIONS& options) {
  BlockTrees& blocks = m_entities->blocks();
  Walker walker(m_data, projector, window, painter, options,
                WalkerAids(m_data, blocks.boxes(), &blocks));
  return run(walker);
}

DRAW_RESULT CDrawIndex::drawArea(const RECT_2D& area, IPainter& painter,
                                 const DRAW_OPTIONS& options) {
  BlockTrees& blocks = m_entities->blocks();
  Walker walker(m_data, CPOProjector(), Device(area), painter, options,
                WalkerAids(m_data, blocks.boxes(), &blocks));
  return run(walker);
}

DRAW_RESULT CDrawIndex::drawEntities(const std::vector<CEnt*>& entities, const RECT_2D& area,
                                     IPainter& painter, const DRAW_OPTIONS& options) {
  BlockTrees& blocks = m_entities->blocks();
  Walker walker(m_data, CPOProjector(), Device(area), painter, options,
                WalkerAids(m_data, blocks.boxes(), &blocks));
  return walker.run(entities);
}

DRAW_RESULT CDrawIndex::run(Walker& walker) {
  if (!walker.hasDevice()) return {};
  m_entities->prepare();
  if (m_entities->isAllSeen(walker.placement(), walker.window()))
    return walker.run(m_data.getEntTable().getEntityTbl());
  return walker.run(m_entities->find(walker.placement(), walker.window()));
}
