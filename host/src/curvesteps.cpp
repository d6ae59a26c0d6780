#include <memory>
#include <optional>
#include <unordered_set>

#include "vek0host/editsteps.h"
#include "vek0host/textvalues.h"

namespace vek0::host {
namespace {

// Reports the number of entities that a step skipped.
std::string skipped(std::size_t count) {
  return count == 0 ? "" : ", " + countedEntities(count) + " skipped";
}

// Adds a new entity to the drawing and to the next selection.
bool take(Editing& editing, std::unique_ptr<CEnt> made, std::vector<CEnt*>& chosen) {
  CEnt* ent = made.get();
  if (!editing.undo.add(ent)) return false;
  static_cast<void>(made.release());
  chosen.push_back(ent);
  return true;
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
      if (!take(editing, std::move(part), chosen)) return StepOutcome::noMemory();
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
    if (!take(editing, std::move(each.polyline), chosen)) return StepOutcome::noMemory();
  const std::size_t left = editing.chosen.size() - parts.size();
  editing.chosen = std::move(chosen);
  return StepOutcome::done(countedEntities(parts.size()) + " joined into " +
                           counted(joined.size(), "polyline", "polylines") + skipped(left));
}

// Positive distances are outside closed curves, whatever their direction.
double towards(const PATH_3D& path, double distance) {
  return path.closed && path.area() < 0 ? -distance : distance;
}

StepOutcome offset(Editing& editing, double distance, const OFFSET_OPTIONS& options) {
  CData& data = editing.data;
  std::vector<CEnt*> chosen;
  std::size_t left = 0;
  for (const CEnt* ent : editing.chosen) {
    PATH_3D path;
    std::vector<PATH_3D> parallels;
    if (!getEntPath(*ent, path) || !offsetPath(path, towards(path, distance), options, parallels))
      ++left;
    for (const PATH_3D& parallel : parallels) {
      std::unique_ptr<CEnt> made(
          createEntFromPath(data.getHandleGestor(), data.getEntFactory(), parallel, *ent));
      if (!take(editing, std::move(made), chosen)) return StepOutcome::noMemory();
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
  step = onChosen([distance = distance->front(), options](Editing& editing) {
    return offset(editing, distance, options);
  });
  return {};
}

}  // namespace vek0::host
