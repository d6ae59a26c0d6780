#include <cmath>
#include <memory>
#include <optional>
#include <unordered_set>

#include "commandkinds.h"
#include "vek0host/editsteps.h"
#include "vek0host/textvalues.h"

namespace vek0::host {
namespace {

// Reports the number of entities that a step skipped.
std::string skipped(std::size_t count) {
  return count == 0 ? "" : ", " + countedEntities(count) + " skipped";
}

StepOutcome explode(Editing& editing) {
  CData& data = editing.data;
  CEntExploderVisitor exploder(data.getHandleGestor(), data.getEntFactory(), data.getBlockFactory(),
                               data.getBlockTable());
  std::vector<CEnt*> chosen, ents = editing.chosen;
  std::string unsupported;
  const std::string problem = leaveUnsupported(editing, true, "exploded", ents, unsupported);
  if (!problem.empty()) return StepOutcome::failed(problem);
  std::size_t exploded = 0, parts = 0;
  auto next = ents.begin();
  for (CEnt* ent : editing.chosen) {
    // What is left stays selected.
    if (next == ents.end() || *next != ent) {
      chosen.push_back(ent);
      continue;
    }
    ++next;
    ent->accept(exploder);
    if (exploder.isRefused())
      return StepOutcome::failed("more than " + std::to_string(CEntExploderVisitor::kLimit) +
                                 " entities and vertices would result, an external reference would "
                                 "be sheared, a nested entity of an unsupported kind would be "
                                 "transformed, or memory ran out");
    // Nothing to explode: the entity stays selected.
    if (exploder.getEnts().empty()) {
      chosen.push_back(ent);
      continue;
    }
    ++exploded;
    parts += exploder.getEnts().size();
    for (auto& part : exploder.getEnts())
      if (!addEnt(editing, std::move(part), chosen)) return StepOutcome::noMemory();
    exploder.getEnts().clear();
    if (!editing.undo.remove(ent)) return StepOutcome::noMemory();
  }
  const std::size_t left = ents.size() - exploded;
  editing.chosen = std::move(chosen);
  const long unclipped = exploder.getNoLostClips();
  return StepOutcome::done(countedEntities(exploded) + " exploded into " + std::to_string(parts) +
                           skipped(left) + unsupported +
                           (unclipped > 0 ? ", clips lost: " + std::to_string(unclipped) : ""));
}

StepOutcome join(Editing& editing, std::optional<double> tolerance, JOIN_LAYERS layers) {
  auto joined =
      joinEnts(editing.data.getHandleGestor(), editing.data.getEntFactory(), editing.chosen,
               tolerance ? *tolerance : joinTolerance(editing.chosen), layers);
  std::unordered_set<const CEnt*> parts;
  for (const JOINED_ENT& each : joined) parts.insert(each.parts.begin(), each.parts.end());
  std::vector<CEnt*> chosen;
  for (CEnt* ent : editing.chosen) {
    if (parts.count(ent) == 0)
      chosen.push_back(ent);
    else if (!editing.undo.remove(ent))
      return StepOutcome::noMemory();
  }
  for (JOINED_ENT& each : joined)
    if (!addEnt(editing, std::move(each.polyline), chosen)) return StepOutcome::noMemory();
  const std::size_t left = editing.chosen.size() - parts.size();
  editing.chosen = std::move(chosen);
  return StepOutcome::done(countedEntities(parts.size()) + " joined into " +
                           counted(joined.size(), "polyline", "polylines") + skipped(left));
}

// How far to the right of a path its parallel is.
using DistanceOf = std::function<double(const PATH_3D& path)>;

// Positive distances are outside closed curves, whatever their direction.
DistanceOf outside(double distance) {
  return [distance](const PATH_3D& path) {
    return path.closed && path.area() < 0 ? -distance : distance;
  };
}

// The side of a path on which a point is: 1 on the right, -1 on the left. At a corner, the
// directions of both edges count.
double sideOf(const PATH_3D& path, const PNT_2D& p) {
  std::size_t edge = 0;
  double t = 0;
  path.nearest(p, edge, t);
  const std::size_t count = path.edges.size();
  const PNT_3D foot = path.edges[edge].at(t);
  PNT_2D direction = path.edges[edge].direction(t);
  const auto turn = [&](std::size_t other, double end) {
    const PNT_2D further = path.edges[other].direction(end);
    direction = PNT_2D(direction.x + further.x, direction.y + further.y);
  };
  if (t >= 1 && (edge + 1 < count || path.closed)) turn((edge + 1) % count, 0);
  if (t <= 0 && (edge > 0 || path.closed)) turn((edge + count - 1) % count, 1);
  return direction.x * (p.y - foot.y) - direction.y * (p.x - foot.x) < 0 ? 1 : -1;
}

DistanceOf towards(const PNT_2D& p, double distance) {
  return [p, distance](const PATH_3D& path) { return std::fabs(distance) * sideOf(path, p); };
}

StepOutcome offset(Editing& editing, const DistanceOf& distanceOf, const OFFSET_OPTIONS& options) {
  CData& data = editing.data;
  std::vector<CEnt*> chosen;
  std::size_t left = 0;
  for (const CEnt* ent : editing.chosen) {
    PATH_3D path;
    std::vector<PATH_3D> parallels;
    if (!getEntPath(*ent, path) || !offsetPath(path, distanceOf(path), options, parallels)) ++left;
    for (const PATH_3D& parallel : parallels) {
      std::unique_ptr<CEnt> made(
          createEntFromPath(data.getHandleGestor(), data.getEntFactory(), parallel, *ent));
      if (!addEnt(editing, std::move(made), chosen)) return StepOutcome::noMemory();
    }
  }
  const std::size_t taken = editing.chosen.size() - left;
  editing.chosen = std::move(chosen);
  return StepOutcome::done(counted(editing.chosen.size(), "parallel", "parallels") + " of " +
                           countedEntities(taken) + " added" + skipped(left));
}

bool readCorners(std::string_view text, OFFSET_JOIN& join) {
  if (text == "round") join = OFFSET_JOIN::round;
  if (text == "mitre") join = OFFSET_JOIN::mitre;
  if (text == "bevel") join = OFFSET_JOIN::bevel;
  return text == "round" || text == "mitre" || text == "bevel";
}

}  // namespace

std::string readExplode(const std::string&, EditStep& step) {
  step = onChosen(explode);
  return {};
}

std::string readJoin(const std::string& text, EditStep& step) {
  const std::size_t comma = text.find(',');
  const std::string first = text.substr(0, comma);
  std::optional<double> tolerance;
  if (first != "auto") {
    const auto numbers = numbersIn(first);
    if (!numbers || numbers->front() < 0)
      return "'" + first + "' is neither a tolerance like 0.01 nor auto";
    tolerance = numbers->front();
  }
  const bool isAcross = comma != std::string::npos;
  if (isAcross && text.substr(comma + 1) != "across")
    return "'" + text + "' is not a tolerance like 0.01 or 0.01,across";
  const JOIN_LAYERS layers = isAcross ? JOIN_LAYERS::together : JOIN_LAYERS::apart;
  step =
      onChosen([tolerance, layers](Editing& editing) { return join(editing, tolerance, layers); });
  return {};
}

std::string readOffset(const std::string& text, EditStep& step) {
  const std::size_t comma = text.find(',');
  const auto distance = numbersIn(std::string_view(text).substr(0, comma));
  OFFSET_OPTIONS options;
  if (!distance || (comma != std::string::npos &&
                    !readCorners(std::string_view(text).substr(comma + 1), options.join)))
    return "'" + text + "' is not a distance like 2.5 or -2.5,mitre";
  if (distance->front() == 0) return "a parallel at distance 0 is the curve itself";
  step = onChosen([distanceOf = outside(distance->front()), options](Editing& editing) {
    return offset(editing, distanceOf, options);
  });
  return {};
}

EditStep readOffsetCommand(CommandWords& words) {
  const double distance = words.number("the distance");
  if (distance == 0) words.complain("a parallel at distance 0 is the curve itself");
  OFFSET_OPTIONS options;
  for (const char* corners : {"round", "mitre", "bevel"})
    if (words.take(corners)) readCorners(corners, options.join);
  if (!words.isPoint())
    return onChosen([distanceOf = outside(distance), options](Editing& editing) {
      return offset(editing, distanceOf, options);
    });
  return onChosen([distance, options, side = words.point()](Editing& editing) {
    const PNT_3D p = side.from(editing.last);
    return offset(editing, towards(p, distance), options);
  });
}

}  // namespace vek0::host
