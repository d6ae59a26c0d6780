// Repairs curves for machines that follow them: nothing is drawn twice, and contours close.
#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <optional>
#include <unordered_set>
#include <utility>

#include "vek0host/editsteps.h"
#include "vek0host/textvalues.h"

namespace vek0::host {
namespace {

struct HealOptions {
  double tolerance = 0;
  bool isAcross = false;    // all layers together
  bool withHidden = false;  // also those that are off or frozen
};

constexpr std::size_t kMostChanges = 10'000;  // that the report lists one by one

bool isPlainCurve(EntRecord record) {
  return record == EntRecord::Own || record == EntRecord::Lwpolyline ||
         record == EntRecord::Polyline || record == EntRecord::Circle || record == EntRecord::Arc;
}

// Curves at different heights neither repeat nor meet each other.
std::optional<double> heightOf(const PATH_3D& path) {
  const double z = path.edges.front().p1.z;
  for (const EDGE_3D& edge : path.edges)
    if (edge.p1.z != z || edge.p2.z != z) return {};
  return z;
}

bool enclosesArea(const PATH_3D& path) {
  return path.edges.size() > 2 || std::any_of(path.edges.begin(), path.edges.end(),
                                              [](const EDGE_3D& edge) { return edge.isArc(); });
}

// Moves the end to the beginning; an arc becomes a circle.
void closeOver(PATH_3D& path) {
  EDGE_3D& last = path.edges.back();
  if (path.edges.size() > 1)
    last = EDGE_3D(last.p1, path.start(), last.bulge());
  else
    last = EDGE_3D(last.center, last.radius, last.startAngle,
                   std::copysign(vek0::detail::kTwoPi, last.sweep), last.p1.z, last.p1.z);
  path.closed = true;
}

class Healer {
 public:
  Healer(Editing& editing, const HealOptions& options) : m_editing(editing), m_options(options) {}

  StepOutcome run() {
    choose();
    sortIntoGroups();
    for (const std::vector<PLACED_CURVE>& group : m_groups)
      if (!trim(group)) return StepOutcome::noMemory();
    if (!gather() || !join() || !close()) return StepOutcome::noMemory();
    StepOutcome outcome = StepOutcome::done(summary());
    outcome.changes = std::move(m_changes);
    m_editing.chosen = std::move(m_curves);
    return outcome;
  }

 private:
  using Key = std::pair<const CLayer*, double>;

  // Chooses the curves that may be healed.
  void choose() {
    PATH_3D path;
    for (CEnt* ent : m_editing.chosen)
      if (pathOf(*ent, path))
        m_curves.push_back(ent);
      else
        ++m_left;
  }

  void sortIntoGroups() {
    std::map<Key, std::size_t> places;
    std::vector<PLACED_CURVE> all;
    m_groups.clear();
    for (CEnt* ent : m_curves) {
      PLACED_CURVE curve{{}, ent, ent->getLayer()};
      const std::optional<double> height = pathOf(*ent, curve.path);
      if (!height) continue;
      const Key key(m_options.isAcross ? nullptr : curve.layer, *height);
      const auto [place, isNew] = places.try_emplace(key, m_groups.size());
      if (isNew) m_groups.emplace_back();
      m_groups[place->second].push_back(curve);
      all.push_back(std::move(curve));
    }
    m_limits = defaultLimits(all);
    m_limits.gap = m_options.tolerance;
    constexpr double tiny = 0.1;  // of the tolerance, as for checks
    m_limits.tiny = tiny * m_options.tolerance;
  }

  // The height of a curve that may be healed.
  std::optional<double> pathOf(const CEnt& ent, PATH_3D& path) const {
    const CLayer* layer = ent.getLayer();
    const bool isHidden =
        !ent.getTraits().isVisible || (layer && (layer->isFrozen() || layer->isOff()));
    if ((isHidden && !m_options.withHidden) || !isPlainCurve(ent.getRecord())) return {};
    if (!getEntPath(ent, path) || !path.isFinite()) return {};
    return heightOf(path);
  }

  // Removes what is drawn twice.
  bool trim(const std::vector<PLACED_CURVE>& group) {
    std::unordered_set<const CEnt*> gone;
    std::vector<CEnt*> pieces;
    for (const TRIMMED_CURVE& trimmed : trimRepeats(group, m_limits)) {
      auto* ent = const_cast<CEnt*>(group[trimmed.curve].ent);  // borrowed from the selection
      const std::string length = roundedText(trimmed.covered);
      m_covered += trimmed.covered;
      ++(trimmed.isDuplicate ? m_duplicates : m_overlaps);
      if (trimmed.isDuplicate)
        note("duplicate removed", *ent, "removed, as it repeats another curve");
      else
        note("overlap removed", *ent, "shortened by " + length + ", which other curves cover");
      if (!replace(*ent, trimmed.remains, pieces, gone)) return false;
    }
    forget(gone);
    m_curves.insert(m_curves.end(), pieces.begin(), pieces.end());
    return true;
  }

  // Gives an entity the first path in place, if its kind allows that, and adds the others.
  bool replace(CEnt& ent, const std::vector<PATH_3D>& paths, std::vector<CEnt*>& made,
               std::unordered_set<const CEnt*>& gone) {
    CData& data = m_editing.data;
    const bool isKept = !paths.empty() && m_editing.undo.keep(ent) &&
                        setEntPath(data.getHandleGestor(), data.getEntFactory(), paths[0], ent);
    for (std::size_t i = isKept ? 1 : 0; i < paths.size(); ++i) {
      std::unique_ptr<CEnt> piece(
          createEntFromPath(data.getHandleGestor(), data.getEntFactory(), paths[i], ent));
      if (!addEnt(m_editing, std::move(piece), made)) return false;
    }
    if (isKept) return true;
    gone.insert(&ent);
    return m_editing.undo.remove(&ent);
  }

  // Moves ends to where others meet; those are not joined.
  bool gather() {
    CData& data = m_editing.data;
    sortIntoGroups();
    for (std::vector<PLACED_CURVE>& group : m_groups)
      for (const END_SHIFT& shift : gatherEnds(group, m_limits)) {
        PATH_3D& path = group[shift.curve].path;
        EDGE_3D& edge = shift.isStart ? path.edges.front() : path.edges.back();
        PNT_3D& end = shift.isStart ? edge.p1 : edge.p2;
        const double gap = end.PNT_2D::dist(shift.to);
        end.set(shift.to.x, shift.to.y, end.z);
        edge = EDGE_3D(edge.p1, edge.p2, edge.bulge());
        auto* ent = const_cast<CEnt*>(group[shift.curve].ent);
        note("gap closed", *ent, "extended over a gap of " + roundedText(gap));
        ++m_gaps;
        if (!m_editing.undo.keep(*ent) ||
            !setEntPath(data.getHandleGestor(), data.getEntFactory(), path, *ent))
          return false;
      }
    return true;
  }

  void forget(const std::unordered_set<const CEnt*>& gone) {
    std::erase_if(m_curves, [&](const CEnt* ent) { return gone.count(ent) > 0; });
  }

  bool join() {
    CData& data = m_editing.data;
    std::vector<JOINED_ENT> joined = joinEnts(
        data.getHandleGestor(), data.getEntFactory(), m_curves, m_options.tolerance,
        m_options.isAcross ? JOIN_LAYERS::together : JOIN_LAYERS::apart, JOIN_BRANCHES::kept);
    std::unordered_set<const CEnt*> gone;
    std::vector<CEnt*> made;
    for (JOINED_ENT& each : joined) {
      m_parts += each.parts.size();
      const double gap = largestGap(each);
      note("curves joined", *each.parts.front(),
           "joined with " + countedEntities(each.parts.size() - 1) +
               (gap > m_limits.same ? ", over gaps of up to " + roundedText(gap) : ""));
      for (const CEnt* part : each.parts) {
        gone.insert(part);
        if (!m_editing.undo.remove(const_cast<CEnt*>(part))) return false;
      }
      if (!addEnt(m_editing, std::move(each.polyline), made)) return false;
    }
    m_joined = joined.size();
    forget(gone);
    m_curves.insert(m_curves.end(), made.begin(), made.end());
    return true;
  }

  // Counts the gaps between the parts of a polyline on the way.
  double largestGap(const JOINED_ENT& joined) {
    double largest = 0;
    const auto between = [&](const PATH_3D& a, const PATH_3D& b) {
      double least = a.end().dist(b.start());
      for (const PNT_3D& end : {a.start(), a.end()})
        for (const PNT_3D& start : {b.start(), b.end()}) least = std::min(least, end.dist(start));
      if (least > m_limits.same) ++m_gaps;
      largest = std::max(largest, least);
    };
    PATH_3D first, last, next;
    getEntPath(*joined.parts.front(), first);
    last = first;
    for (std::size_t i = 1; i < joined.parts.size(); ++i) {
      getEntPath(*joined.parts[i], next);
      between(last, next);
      std::swap(last, next);
    }
    if (joined.polyline->isClosed() && joined.parts.size() > 2) between(last, first);
    return largest;
  }

  // Closes curves that end next to where they begin.
  bool close() {
    constexpr double leastTurns = 3;  // shorter curves are just short
    std::unordered_set<const CEnt*> gone;
    std::vector<CEnt*> made;
    for (CEnt* ent : m_curves) {
      PATH_3D path;
      if (!getEntPath(*ent, path) || path.closed || !enclosesArea(path)) continue;
      const double gap = path.start().dist(path.end());
      if (gap > m_options.tolerance || path.length() <= leastTurns * gap) continue;
      closeOver(path);
      note("contour closed", *ent, "closed over a gap of " + roundedText(gap));
      ++m_closed;
      if (!replace(*ent, {path}, made, gone)) return false;
    }
    forget(gone);
    m_curves.insert(m_curves.end(), made.begin(), made.end());
    return true;
  }

  std::string summary() const {
    return counted(m_duplicates, "duplicate", "duplicates") + " and " +
           counted(m_overlaps, "overlap", "overlaps") + " removed (a length of " +
           roundedText(m_covered) + "), " + countedEntities(m_parts) + " joined into " +
           counted(m_joined, "polyline", "polylines") + ", " + counted(m_gaps, "gap", "gaps") +
           " and " + counted(m_closed, "contour", "contours") + " closed" +
           (m_left > 0 ? ", " + countedEntities(m_left) + " skipped" : "");
  }

  void note(const char* code, const CEnt& ent, const std::string& what) {
    if (m_changes.size() >= kMostChanges) return;
    const std::string handle = hexText(ent.GetHandle());
    m_changes.push_back({code, zim::WString::fromUtf8(handle), handle + " was " + what});
  }

  Editing& m_editing;
  const HealOptions m_options;
  CURVE_LIMITS m_limits;
  std::vector<std::vector<PLACED_CURVE>> m_groups;
  std::vector<CEnt*> m_curves;  // that may be healed, in drawing order, then new ones
  std::vector<StepOutcome::Change> m_changes;
  double m_covered = 0;
  std::size_t m_left = 0, m_duplicates = 0, m_overlaps = 0, m_parts = 0, m_joined = 0, m_gaps = 0,
              m_closed = 0;
};

}  // namespace

std::string readHeal(const std::string& text, EditStep& step) {
  std::size_t at = text.find(',');
  const auto tolerance = numbersIn(std::string_view(text).substr(0, at));
  HealOptions options;
  bool isValid = tolerance && tolerance->front() >= 0;
  while (isValid && at != std::string::npos) {
    const std::size_t from = at + 1;
    at = text.find(',', from);
    const std::string word = text.substr(from, at == std::string::npos ? at : at - from);
    isValid = word == "across" || word == "hidden";
    (word == "across" ? options.isAcross : options.withHidden) = true;
  }
  if (!isValid)
    return "'" + text + "' is not a tolerance like 0.01, followed by across or hidden or both";
  options.tolerance = tolerance->front();
  step = onChosen([options](Editing& editing) { return Healer(editing, options).run(); });
  return {};
}

}  // namespace vek0::host
