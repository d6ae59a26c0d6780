// Joins open chains whose ends meet. Ends are in a grid of cells as wide as the tolerance, so that
// each search examines few candidates. A chain grows from its first entity, first at its end, then
// at its start, always by the nearest free end.
#include "vek0core/entities/edit/joinents.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <unordered_map>

#include "entities/edit/openchain.h"
#include "geometry/pointgrid.h"
#include "vek0core/entities/ent.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/entities/entline.h"
#include "vek0core/geometry/finite.h"
#include "vek0core/tables/layer.h"

namespace {

using vek0::detail::isFinite;
using vek0::detail::OpenChain;
using vek0::detail::PointGrid;

constexpr double kShare = 1e-9;
constexpr double kFinest = 1e-12;  // fraction of the extents, only for the size of cells
constexpr std::size_t kNone = static_cast<std::size_t>(-1);

struct Part {
  const CEnt* ent;
  PNT_3D start, end;
  bool isLine;
};

double sizeOf(const std::vector<Part>& parts, PNT_2D& lowest) {
  RECT_3D box;
  box.initRegion();
  for (const Part& part : parts) {
    box.updateRegion(part.start);
    box.updateRegion(part.end);
  }
  lowest.set(box.min.x, box.min.y);
  return std::max({box.max.x - box.min.x, box.max.y - box.min.y, box.max.z - box.min.z});
}

// Groups of entities that may be joined, in order of their first members.
std::vector<std::vector<const CEnt*>> groupsOf(const std::vector<CEnt*>& ents, JOIN_LAYERS layers) {
  std::vector<std::vector<const CEnt*>> groups;
  std::unordered_map<const CLayer*, std::size_t> places;
  for (const CEnt* ent : ents) {
    if (!ent) continue;
    const CLayer* layer = ent->getLayer();
    const bool isShown = !layer || !(layer->isFrozen() || layer->isOff());
    // All shown layers form one group; hidden layers are joined separately.
    if (layers == JOIN_LAYERS::together && isShown) layer = nullptr;
    const auto [place, isNew] = places.try_emplace(layer, groups.size());
    if (isNew) groups.emplace_back();
    groups[place->second].push_back(ent);
  }
  return groups;
}

// End 2 * i is the start of part i, 2 * i + 1 its end.
class Joiner {
 public:
  Joiner(const std::vector<const CEnt*>& ents, double tolerance) : m_tolerance(tolerance) {
    OpenChain chain;
    for (const CEnt* ent : ents) {
      if (!chain.take(*ent, tolerance)) continue;
      // Ends with invalid coordinates cannot meet anything.
      if (isFinite(chain.start()) && isFinite(chain.end()))
        m_parts.push_back({ent, chain.start(), chain.end(), ent->getType() == CEntLine::kType});
    }
    m_isUsed.assign(m_parts.size(), false);
  }

  void run(IHandleGestor& gestor, CEntFactory& factory, JOIN_BRANCHES branches,
           std::vector<JOINED_ENT>& joined) {
    // Indices of ends have 32 bits in the grid.
    if (m_parts.empty() || m_parts.size() > std::numeric_limits<std::uint32_t>::max() / 4) return;
    PNT_2D lowest(0, 0);
    const double size = sizeOf(m_parts, lowest);
    PointGrid ends(std::max({m_tolerance, kFinest * size, std::numeric_limits<double>::min()}),
                   lowest);
    ends.reserve(2 * m_parts.size());
    // The last one added is found first, so the earliest entities are added last.
    for (std::size_t i = m_parts.size(); i-- > 0;) {
      ends.add(m_parts[i].end, static_cast<std::uint32_t>(2 * i + 1));
      ends.add(m_parts[i].start, static_cast<std::uint32_t>(2 * i));
    }
    m_isBranch.assign(2 * m_parts.size(), false);
    if (branches == JOIN_BRANCHES::kept) findBranches(ends);
    for (std::size_t i = 0; i < m_parts.size(); ++i) {
      if (m_isUsed[i]) continue;
      JOINED_ENT made = joinFrom(i, ends, gestor, factory);
      if (made.polyline) joined.push_back(std::move(made));
    }
  }

 private:
  JOINED_ENT joinFrom(std::size_t first, PointGrid& ends, IHandleGestor& gestor,
                      CEntFactory& factory) {
    OpenChain chain, next;
    std::vector<const CEnt*> onwards, backwards;
    use(first, chain, onwards);
    bool isClosed = false;
    std::size_t last = 2 * first + 1;
    for (std::size_t end; !isClosed && (end = nearestEnd(ends, last, chain.end())) != kNone;) {
      use(end / 2, next, onwards);
      last = end ^ 1;
      // An even number is a start, which continues the chain forward.
      end % 2 == 0 ? chain.append(next) : chain.appendReversed(next);
      isClosed = chain.close(m_tolerance);
    }
    last = 2 * first;
    for (std::size_t end; !isClosed && (end = nearestEnd(ends, last, chain.start())) != kNone;) {
      use(end / 2, next, backwards);
      last = end ^ 1;
      end % 2 == 1 ? chain.prepend(next) : chain.prependReversed(next);
      isClosed = chain.close(m_tolerance);
    }
    JOINED_ENT made;
    // A single entity is already what it would become.
    if (onwards.size() + backwards.size() < 2) return made;
    const CEnt& like = *m_parts[first].ent;
    const short flags = isClosed ? CEntPolyline::kClosed : short{0};
    made.polyline.reset(factory.createEntPolyline(gestor, like.getLayer(), like.getLtype(),
                                                  like.getColor(), flags, 0, 0));
    if (!made.polyline) return made;
    made.polyline->copyExtras(like);
    chain.write(gestor, factory, *made.polyline);
    // The entities before the first one were found in reverse order.
    made.parts.assign(backwards.rbegin(), backwards.rend());
    made.parts.insert(made.parts.end(), onwards.begin(), onwards.end());
    return made;
  }

  void use(std::size_t i, OpenChain& chain, std::vector<const CEnt*>& parts) {
    const Part& part = m_parts[i];
    m_isUsed[i] = true;
    // Most parts are lines: their entities, which are all over the memory, are not read again.
    if (part.isLine)
      chain.takeLine(part.start, part.end);
    else
      chain.take(*part.ent, m_tolerance);
    parts.push_back(part.ent);
  }

  PNT_3D pointOf(std::size_t end) const {
    const Part& part = m_parts[end / 2];
    return end % 2 == 0 ? part.start : part.end;
  }

  // Ends that more than one other end meets.
  void findBranches(PointGrid& ends) {
    for (std::size_t end = 0; end < m_isBranch.size(); ++end) {
      const PNT_3D p = pointOf(end);
      std::size_t others = 0;
      ends.find(
          p, [](std::uint32_t) { return true; },
          [&](std::uint32_t other) {
            if (other != end && p.dist(pointOf(other)) <= m_tolerance) ++others;
          });
      m_isBranch[end] = others > 1;
    }
  }

  // The end that continues `from`, which is at `p`.
  std::size_t nearestEnd(PointGrid& ends, std::size_t from, const PNT_3D& p) {
    if (m_isBranch[from]) return kNone;
    std::size_t best = kNone;
    double least = m_tolerance;
    ends.find(
        p, [this](std::uint32_t end) { return !m_isUsed[end / 2]; },
        [&](std::uint32_t end) {
          const double off =
              m_isBranch[end] ? std::numeric_limits<double>::infinity() : p.dist(pointOf(end));
          // Of equally near ends the earliest wins, so that the result does not depend on the grid.
          if (off > least || (off == least && end > best)) return;
          least = off;
          best = end;
        });
    return best;
  }

  double m_tolerance;
  std::vector<Part> m_parts;
  std::vector<bool> m_isUsed;
  std::vector<bool> m_isBranch;  // by end
};

}  // namespace

double joinTolerance(const std::vector<CEnt*>& ents) {
  RECT_3D box;
  box.initRegion();
  for (const CEnt* ent : ents)
    if (ent) box.updateRegion(ent->getBdry());
  if (!box.validRegion()) return 0;
  const PNT_3D sides = box.max - box.min;
  return kShare * std::max({sides.x, sides.y, sides.z});
}

std::vector<JOINED_ENT> joinEnts(IHandleGestor& gestor, CEntFactory& factory,
                                 const std::vector<CEnt*>& ents, double tolerance,
                                 JOIN_LAYERS layers, JOIN_BRANCHES branches) {
  std::vector<JOINED_ENT> joined;
  if (!(tolerance >= 0) || !std::isfinite(tolerance)) return joined;
  for (const std::vector<const CEnt*>& group : groupsOf(ents, layers))
    Joiner(group, tolerance).run(gestor, factory, branches, joined);
  return joined;
}
