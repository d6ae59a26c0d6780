// Entities without a partner by handle are sorted by keys that equal ones share: what has to be the
// same is hashed, and of the coordinates there is one weighted average, since that differs by no
// more than they do. It falls into cells much wider than the tolerance; where it is close to the
// border of its cell, the neighbor is searched as well.
#include "compare/entmatcher.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <tuple>

#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/enttext.h"

namespace vek0::detail {
namespace {

constexpr std::uint32_t bitOf(EntAspect aspect) {
  return std::uint32_t{1} << static_cast<int>(aspect);
}

constexpr std::uint32_t kProperties =
    bitOf(EntAspect::Layer) | bitOf(EntAspect::Color) | bitOf(EntAspect::Linetype) |
    bitOf(EntAspect::Lineweight) | bitOf(EntAspect::LinetypeScale) |
    bitOf(EntAspect::Transparency) | bitOf(EntAspect::Visible) | bitOf(EntAspect::Thickness);
constexpr std::uint32_t kContent = bitOf(EntAspect::Text) | bitOf(EntAspect::Style) |
                                   bitOf(EntAspect::Pattern) | bitOf(EntAspect::Block) |
                                   bitOf(EntAspect::Attributes);

// Classes, and the kinds of record that an insert stands for.
int kindOf(const CEnt& ent) {
  constexpr int records = 100;
  const CEntInsertBase* insert = ent.getEntInsert();
  const bool isRecord = insert && insert->getBlock() && insert->getBlock()->isOfRecord();
  return isRecord ? records + static_cast<int>(ent.getRecord()) : ent.getType();
}

// What has a point by which it is known.
bool isAnchored(const CEnt& ent) {
  const short type = ent.getType();
  return type == CEntText::kType || type == CEntAttdef::kType || type == CEntInsert::kType ||
         type == CEntCircle::kType || type == CEntArc::kType;
}

}  // namespace

struct EntMatcher::Pass {
  enum Points { InPlace, Anywhere, SameAnchor } points;
  std::uint32_t mayDiffer;  // bits of aspects
};

struct EntMatcher::Key {
  std::uint64_t key;
  std::int32_t index;

  bool operator<(const Key& other) const {
    return std::tie(key, index) < std::tie(other.key, other.index);
  }
};

// Makes the keys of one pass.
class EntMatcher::KeyMaker {
 public:
  KeyMaker(EntComparer& comparer, const Pass& pass, Side side)
      : m_ids(comparer.ids()), m_pass(pass), m_side(side), m_figure(comparer.closeness()) {
    constexpr double cells = 16, finest = 1e-13;
    // Of relative coordinates, both points may be off.
    m_room = comparer.closeness().tolerance * (pass.points == Pass::Anywhere ? 2 : 1);
    m_cell = std::max(cells * m_room, finest * comparer.closeness().size);
  }

  /// The key of the entity's cell and, if it is near the border, of the cell beyond; none if it
  /// does not take part.
  std::pair<std::optional<std::uint64_t>, std::optional<std::uint64_t>> keys(const MatchEnt& held) {
    if (m_pass.points == Pass::SameAnchor && !isAnchored(*held.ent)) return {};
    m_figure.read(*held.ent);
    const Mixer mix = hashed(held);
    const double cells = average() / m_cell, cell = std::floor(cells), room = m_room / m_cell;
    const auto keyOf = [&](double number) {
      Mixer own = mix;
      own.add(number + 0.0);  // no negative zero
      return own.value();
    };
    std::optional<std::uint64_t> beyond;
    if (cells - cell <= room) beyond = keyOf(cell - 1);
    if (cell + 1 - cells <= room) beyond = keyOf(cell + 1);
    return {keyOf(cell), beyond};
  }

 private:
  Mixer hashed(const MatchEnt& held) {
    Mixer mix;
    mix.addInteger(held.place);
    mix.addInteger(kindOf(*held.ent));
    if (m_pass.points == Pass::SameAnchor) return mix;
    mix.add(m_figure.words.value());
    mix.add(std::uint64_t{m_figure.points.size()});
    mix.add(std::uint64_t{m_figure.lengths.size()});
    if ((m_pass.mayDiffer & kProperties) == 0) addProperties(mix, *held.ent);
    if ((m_pass.mayDiffer & kContent) == 0) addContent(mix);
    return mix;
  }
  // Those that are compared exactly.
  void addProperties(Mixer& mix, const CEnt& ent) {
    const ENT_TRAITS& traits = ent.getTraits();
    mix.addInteger(m_ids.layers(m_side, ent.getLayer()));
    mix.addInteger(m_ids.ltypes(m_side, ent.getLtype()));
    mix.addInteger(traits.hasTrueColor() ? static_cast<long>(traits.trueColor) : -ent.getColor());
    mix.addInteger(traits.lineweight);
    mix.addInteger(traits.opacity);
    mix.addInteger(traits.isVisible);
  }
  void addContent(Mixer& mix) {
    mix.add(m_figure.texts.value());
    mix.add(m_figure.family.value());
    for (const CStyle* style : m_figure.styles) mix.addInteger(m_ids.styles(m_side, style));
    for (const CBlock* block : m_figure.blocks)
      mix.addInteger(block && isPrivate(*block) ? -1 : m_ids.blocks(m_side, block));
  }

  double average() const {
    const std::vector<PNT_3D>& points = m_figure.points;
    Average average;
    PNT_3D from(0, 0, 0);
    if (m_pass.points == Pass::Anywhere && !points.empty()) from = points[0];
    for (const PNT_3D& p : points) {
      for (const double number : {p.x - from.x, p.y - from.y, p.z - from.z}) average.add(number);
      if (m_pass.points == Pass::SameAnchor) return average.value();
    }
    for (const double length : m_figure.lengths) average.add(length);
    return average.value();
  }

  // With weights from 1/2 to 1 of no pattern and of both signs.
  class Average {
   public:
    void add(double number) {
      constexpr std::uint64_t step = 0x9E3779B97F4A7C15U;
      constexpr double whole = 18446744073709551616.0;
      m_seed += step;
      const double spread = static_cast<double>(m_seed * m_seed) / whole;
      const double weight = 0.5 + 0.5 * spread;
      m_sum += (m_seed & 1 << 20 ? weight : -weight) * number;
      m_weights += weight;
    }
    double value() const { return m_weights > 0 ? m_sum / m_weights : 0; }

   private:
    std::uint64_t m_seed = 0;
    double m_sum = 0, m_weights = 0;
  };

  SharedIds& m_ids;
  const Pass& m_pass;
  Side m_side;
  EntFigure m_figure;
  double m_room, m_cell;
};

// -- handles -------------------------------------------------------------------

std::vector<std::pair<std::int32_t, std::int32_t>> EntMatcher::sharedHandles() const {
  const auto sorted = [](const MatchEnts& all) {
    std::vector<std::pair<Handle, std::int32_t>> handles;
    for (std::size_t i = 0; i < all.size(); ++i)
      if (all[i].handle != 0) handles.emplace_back(all[i].handle, static_cast<std::int32_t>(i));
    if (!std::is_sorted(handles.begin(), handles.end())) std::sort(handles.begin(), handles.end());
    return handles;
  };
  const auto before = sorted(m_before), after = sorted(m_after);
  std::vector<std::pair<std::int32_t, std::int32_t>> shared;
  for (auto a = before.begin(), b = after.begin(); a != before.end() && b != after.end();) {
    if (a->first == b->first) shared.emplace_back(a->second, b->second);
    const Handle was = a->first, is = b->first;
    if (was <= is) ++a;
    if (is <= was) ++b;
  }
  return shared;
}

bool EntMatcher::matchHandles() {
  auto pairs = sharedHandles();
  const std::size_t shared = pairs.size();
  std::erase_if(pairs, [this](const auto& pair) {
    return kindOf(*m_before[static_cast<std::size_t>(pair.first)].ent) !=
           kindOf(*m_after[static_cast<std::size_t>(pair.second)].ent);
  });
  if (pairs.empty() || 2 * pairs.size() < shared || !explainsMost(pairs)) return false;
  for (const auto& [before, after] : pairs) join(before, after);
  return true;
}

bool EntMatcher::explainsMost(const std::vector<std::pair<std::int32_t, std::int32_t>>& pairs) {
  const auto countKept = [&](std::size_t step) {
    std::size_t kept = 0, seen = 0;
    for (std::size_t i = 0; i < pairs.size(); i += step, ++seen) {
      const ENT_CHANGE change =
          m_comparer.compare(*m_before[static_cast<std::size_t>(pairs[i].first)].ent,
                             *m_after[static_cast<std::size_t>(pairs[i].second)].ent);
      if (!change.has(EntAspect::Geometry) || change.by) ++kept;
    }
    return std::pair(kept, seen);
  };
  // Nearly always a few of them tell.
  constexpr std::size_t sample = 1000;
  const auto [keptOfSample, seen] = countKept(pairs.size() / sample + 1);
  if (2 * keptOfSample >= seen) return true;
  MatchEnts before = m_before, after = m_after;
  EntMatcher byPlace(m_comparer, before, after);
  for (const std::uint32_t mayDiffer : {0U, kProperties, kProperties | kContent})
    byPlace.run({Pass::InPlace, mayDiffer}, false);
  const auto inPlace = std::count_if(before.begin(), before.end(), [](const MatchEnt& held) {
    return held.partner != MatchEnt::kAlone;
  });
  return countKept(1).first >= static_cast<std::size_t>(inPlace);
}

void EntMatcher::join(std::int32_t before, std::int32_t after) {
  m_before[static_cast<std::size_t>(before)].partner = after;
  m_after[static_cast<std::size_t>(after)].partner = before;
}

// -- geometry ------------------------------------------------------------------

void EntMatcher::matchGeometry(bool byHandles) {
  constexpr std::uint32_t moved = bitOf(EntAspect::Geometry);
  const Pass passes[] = {
      {Pass::InPlace, 0},
      {Pass::InPlace, kProperties},
      {Pass::InPlace, kProperties | kContent},
      {Pass::Anywhere, moved},
      {Pass::Anywhere, moved | kProperties},
      {Pass::SameAnchor, moved | kProperties | kContent},
  };
  matchInOrder();
  for (const Pass& pass : passes) run(pass, byHandles);
}

// Most files keep their order, and following it is many times faster than sorting. Where nothing
// near is equal, both sides go on; where that happens too often, it is left to sorting.
void EntMatcher::matchInOrder() {
  constexpr std::size_t lookAhead = 4;
  std::size_t i = 0, j = 0;
  long patience = 1000;
  const auto isEqual = [this](std::size_t a, std::size_t b) {
    return a < m_before.size() && b < m_after.size() && m_before[a].partner == MatchEnt::kAlone &&
           m_after[b].partner == MatchEnt::kAlone &&
           fits({Pass::InPlace, 0}, m_before[a], m_after[b]);
  };
  while (i < m_before.size() && j < m_after.size() && patience > 0) {
    if (m_before[i].partner != MatchEnt::kAlone) {
      ++i;
      continue;
    }
    if (m_after[j].partner != MatchEnt::kAlone) {
      ++j;
      continue;
    }
    std::size_t a = i, b = j;
    bool isFound = isEqual(a, b);
    for (std::size_t k = 1; !isFound && k <= lookAhead; ++k) {
      a = i;
      b = j + k;
      if ((isFound = isEqual(a, b))) break;
      a = i + k;
      b = j;
      isFound = isEqual(a, b);
    }
    patience += isFound ? 1 : -2;
    i = isFound ? a + 1 : i + 1;
    j = isFound ? b + 1 : j + 1;
    if (!isFound) continue;
    join(static_cast<std::int32_t>(a), static_cast<std::int32_t>(b));
    m_before[a].isSame = true;
  }
}

std::vector<EntMatcher::Key> EntMatcher::keysOf(const Pass& pass, Side side) {
  const MatchEnts& all = side == Side::Before ? m_before : m_after;
  KeyMaker maker(m_comparer, pass, side);
  std::vector<Key> keys;
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (all[i].partner != MatchEnt::kAlone) continue;
    const auto [own, beyond] = maker.keys(all[i]);
    if (own) keys.push_back({*own, static_cast<std::int32_t>(i)});
    // It is enough that one of the two looks beyond its cell.
    if (beyond && side == Side::After) keys.push_back({*beyond, static_cast<std::int32_t>(i)});
  }
  std::sort(keys.begin(), keys.end());
  return keys;
}

void EntMatcher::run(const Pass& pass, bool byHandles) {
  const auto isAlone = [](const MatchEnt& held) { return held.partner == MatchEnt::kAlone; };
  if (std::none_of(m_before.begin(), m_before.end(), isAlone) ||
      std::none_of(m_after.begin(), m_after.end(), isAlone))
    return;
  const std::vector<Key> before = keysOf(pass, Side::Before), after = keysOf(pass, Side::After);
  const Key *a = before.data(), *b = after.data();
  const Key *aEnd = a + before.size(), *bEnd = b + after.size();
  const auto endOf = [](const Key* from, const Key* end) {
    return std::find_if(from, end, [&](const Key& key) { return key.key != from->key; });
  };
  while (a != aEnd && b != bEnd) {
    const Key *aNext = endOf(a, aEnd), *bNext = endOf(b, bEnd);
    const std::uint64_t was = a->key, is = b->key;
    if (was == is) pairUp(pass, byHandles, a, aNext, b, bNext);
    if (was <= is) a = aNext;
    if (is <= was) b = bNext;
  }
}

void EntMatcher::pairUp(const Pass& pass, bool byHandles, const Key* before, const Key* beforeEnd,
                        const Key* after, const Key* afterEnd) {
  // Chance gives few entities the same key, so those that do not fit the first ones fit none.
  constexpr int mostTrials = 32;
  std::vector<std::int32_t> open;
  for (const Key* key = before; key != beforeEnd; ++key)
    if (m_before[static_cast<std::size_t>(key->index)].partner == MatchEnt::kAlone)
      open.push_back(key->index);
  // Those that are left are linked, so that each is passed once.
  constexpr std::size_t end = static_cast<std::size_t>(-1);
  std::vector<std::size_t> next(open.size() + 1);
  for (std::size_t i = 0; i < next.size(); ++i) next[i] = i < open.size() ? i : end;
  for (; after != afterEnd; ++after) {
    const MatchEnt& is = m_after[static_cast<std::size_t>(after->index)];
    if (is.partner != MatchEnt::kAlone) continue;
    int trials = 0;
    for (std::size_t at = 0; next[at] != end && trials < mostTrials; ++trials) {
      const std::size_t found = next[at];
      const MatchEnt& was = m_before[static_cast<std::size_t>(open[found])];
      const bool areOthers = byHandles && pass.points != Pass::InPlace && was.handle && is.handle;
      if (!areOthers && fits(pass, was, is)) {
        join(open[found], after->index);
        next[at] = next[found + 1];
        break;
      }
      at = found + 1;
    }
  }
}

bool EntMatcher::fits(const Pass& pass, const MatchEnt& before, const MatchEnt& after) {
  if (before.place != after.place || kindOf(*before.ent) != kindOf(*after.ent)) return false;
  if (pass.points == Pass::SameAnchor) return m_comparer.hasSameAnchor(*before.ent, *after.ent);
  const ENT_CHANGE change = m_comparer.compare(*before.ent, *after.ent);
  return (change.aspects & ~pass.mayDiffer) == 0 && (!change.has(EntAspect::Geometry) || change.by);
}

}  // namespace vek0::detail
