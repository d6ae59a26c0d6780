// Commands that cut, lengthen and connect the curves at the points that the user names.
#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <utility>

#include "commandkinds.h"
#include "vek0host/editsteps.h"

namespace vek0::host {
namespace {

struct Curve {
  CEnt* ent = nullptr;
  PATH_3D path = {};
};

bool isPickable(const CEnt& ent) {
  const CLayer* layer = ent.getLayer();
  return ent.getTraits().isVisible && (!layer || (!layer->isFrozen() && !layer->isOff()));
}

double distance(const RECT_3D& box, const PNT_2D& p) {
  const double dx = std::max({box.min.x - p.x, p.x - box.max.x, 0.0});
  const double dy = std::max({box.min.y - p.y, p.y - box.max.y, 0.0});
  return std::hypot(dx, dy);
}

double distance(const PATH_3D& path, const PNT_2D& p) {
  std::size_t edge = 0;
  double t = 0;
  path.nearest(p, edge, t);
  return path.edges[edge].at(t).PNT_2D::dist(p);
}

// The visible curve of model space nearest to a point, the last in drawing order among equals; no
// entity if there is none. Linear, but only curves whose boxes are near enough are measured.
Curve findCurve(const Editing& editing, const PNT_2D& p) {
  Curve found;
  double least = std::numeric_limits<double>::infinity();
  for (CEnt* ent : editing.data.getEntTable().getEntityTbl()) {
    PATH_3D path;
    if (!isPickable(*ent) || distance(ent->getBdry(), p) > least || !getEntPath(*ent, path))
      continue;
    const double here = distance(path, p);
    if (here > least) continue;
    least = here;
    found = {ent, std::move(path)};
  }
  return found;
}

// Replaces the curve of an entity by others, the first of which keeps the entity if its kind allows
// that, and `chosen` accordingly.
bool replaceCurve(Editing& editing, CEnt& ent, const std::vector<PATH_3D>& paths,
                  std::vector<CEnt*>& chosen) {
  CData& data = editing.data;
  const auto make = [&](const PATH_3D& path) {
    return std::unique_ptr<CEnt>(
        createEntFromPath(data.getHandleGestor(), data.getEntFactory(), path, ent));
  };
  if (!editing.undo.keep(ent)) return false;
  std::vector<CEnt*> made;
  const bool isKept = setEntPath(data.getHandleGestor(), data.getEntFactory(), paths.front(), ent);
  for (std::size_t i = isKept ? 1 : 0; i < paths.size(); ++i)
    if (!addEnt(editing, make(paths[i]), made)) return false;
  if (std::find(chosen.begin(), chosen.end(), &ent) != chosen.end())
    chosen.insert(chosen.end(), made.begin(), made.end());
  data.getEntTable().invalidateBdry();
  if (isKept) return true;
  chosen.erase(std::remove(chosen.begin(), chosen.end(), &ent), chosen.end());
  return editing.undo.remove(&ent);
}

// What may cut or bound `target`: the curves that are selected, or all visible ones.
std::vector<PATH_3D> otherCurves(const Editing& editing, const CEnt& target, bool isSelectedOnly,
                                 const std::function<bool(const CEnt&)>& isInReach) {
  const auto& all = editing.data.getEntTable().getEntityTbl();
  std::vector<PATH_3D> others;
  PATH_3D path;
  const auto take = [&](const CEnt* ent) {
    if (ent != &target && isPickable(*ent) && isInReach(*ent) && getEntPath(*ent, path))
      others.push_back(path);
  };
  if (isSelectedOnly)
    std::for_each(editing.chosen.begin(), editing.chosen.end(), take);
  else
    std::for_each(all.begin(), all.end(), take);
  return others;
}

// The curve at each point is changed by `change`, which returns what is wrong with it.
using CurveChange =
    std::function<std::string(Editing&, const Curve&, const PNT_2D&, std::vector<PATH_3D>& out)>;

StepOutcome changeCurves(Editing& editing, const std::vector<CommandPoint>& picks,
                         const CurveChange& change, const char* done) {
  std::vector<CEnt*> chosen = editing.chosen;
  for (const CommandPoint& pick : picks) {
    const PNT_3D p = pick.from(editing.last);
    const Curve curve = findCurve(editing, p);
    if (!curve.ent) return StepOutcome::failed("there is no curve");
    std::vector<PATH_3D> paths;
    const std::string problem = change(editing, curve, p, paths);
    if (!problem.empty()) return StepOutcome::failed(problem);
    if (!replaceCurve(editing, *curve.ent, paths, chosen)) return StepOutcome::noMemory();
  }
  editing.chosen = std::move(chosen);
  return StepOutcome::done(counted(picks.size(), "curve ", "curves ") + done);
}

EditStep curveStep(CommandWords& words, const char* done, CurveChange (*changeBy)(bool)) {
  const bool isSelectedOnly = words.take("selected");
  const auto picks = words.points();
  if (picks.empty()) words.complain("a point on the curve is missing");
  return [picks, done, change = changeBy(isSelectedOnly)](Editing& editing) {
    return changeCurves(editing, picks, change, done);
  };
}

CurveChange trimmer(bool isSelectedOnly) {
  return [isSelectedOnly](Editing& editing, const Curve& curve, const PNT_2D& pick,
                          std::vector<PATH_3D>& out) -> std::string {
    const RECT_3D box = curve.ent->getBdry();
    const auto cutters = otherCurves(editing, *curve.ent, isSelectedOnly, [&](const CEnt& ent) {
      const RECT_3D& other = ent.getBdry();
      return other.min.x <= box.max.x && box.min.x <= other.max.x && other.min.y <= box.max.y &&
             box.min.y <= other.max.y;
    });
    if (trimPath(curve.path, cutters, pick, out) && !out.empty()) return {};
    return "nothing cuts the curve there";
  };
}

CurveChange extender(bool isSelectedOnly) {
  return [isSelectedOnly](Editing& editing, const Curve& curve, const PNT_2D& pick,
                          std::vector<PATH_3D>& out) -> std::string {
    const auto bounds =
        otherCurves(editing, *curve.ent, isSelectedOnly, [](const CEnt&) { return true; });
    out = {curve.path};
    if (!curve.path.closed && extendPath(out.front(), bounds, pick)) return {};
    return "the curve meets nothing beyond that end";
  };
}

// --- Corners

// How two edges, or all of a path, get their corners.
struct CornerMaker {
  std::function<bool(const EDGE_3D&, const EDGE_3D&, const PNT_2D&, const PNT_2D&, EDGE_JOINT&)>
      join;
  std::function<int(PATH_3D&)> joinAll;
};

// A curve with the edge that was picked, and where.
struct PickedEdge {
  Curve curve;
  std::size_t edge = 0;
  PNT_2D pick{0, 0};

  const EDGE_3D& get() const { return curve.path.edges[edge]; }
};

PickedEdge pickEdge(Curve curve, const PNT_2D& pick) {
  PickedEdge picked{std::move(curve), 0, pick};
  double t = 0;
  if (picked.curve.ent) picked.curve.path.nearest(pick, picked.edge, t);
  return picked;
}

StepOutcome impossible() {
  return StepOutcome::failed("these curves cannot be connected like that");
}

// A corner within one polyline.
StepOutcome connectWithin(Editing& editing, PickedEdge a, PickedEdge b, const CornerMaker& maker) {
  PATH_3D path = a.curve.path;
  const std::size_t count = path.edges.size();
  if ((b.edge + 1) % count == a.edge && count > 1) std::swap(a, b);
  const bool isAround = a.edge + 1 == count && b.edge == 0 && path.closed;
  EDGE_JOINT joint;
  if ((a.edge + 1 != b.edge && !isAround) || !maker.join(a.get(), b.get(), a.pick, b.pick, joint))
    return impossible();
  path.edges[a.edge] = joint.first;
  path.edges[b.edge] = joint.second;
  if (joint.joint.length() > 0)
    path.edges.insert(path.edges.begin() + static_cast<std::ptrdiff_t>(a.edge) + 1, joint.joint);
  std::vector<CEnt*> chosen = editing.chosen;
  if (!replaceCurve(editing, *a.curve.ent, {path}, chosen)) return StepOutcome::noMemory();
  editing.chosen = std::move(chosen);
  return StepOutcome::done("corner changed");
}

StepOutcome connect(Editing& editing, const PickedEdge& a, const PickedEdge& b,
                    const CornerMaker& maker) {
  if (!a.curve.ent || !b.curve.ent) return StepOutcome::failed("there is no curve");
  if (a.curve.ent == b.curve.ent) return connectWithin(editing, a, b, maker);
  if (a.curve.path.edges.size() > 1 || b.curve.path.edges.size() > 1)
    return StepOutcome::failed("a polyline can only be connected with itself; explode it first");
  EDGE_JOINT joint;
  if (!maker.join(a.get(), b.get(), a.pick, b.pick, joint)) return impossible();
  std::vector<CEnt*> chosen = editing.chosen, made;
  CData& data = editing.data;
  if (joint.joint.length() > 0 &&
      !addEnt(editing,
              std::unique_ptr<CEnt>(createEntFromPath(data.getHandleGestor(), data.getEntFactory(),
                                                      PATH_3D(joint.joint), *a.curve.ent)),
              made))
    return StepOutcome::noMemory();
  const auto replace = [&](const PickedEdge& old, const EDGE_3D& edge) {
    PATH_3D path(edge);
    path.closed = old.curve.path.closed && std::fabs(edge.sweep) == std::fabs(old.get().sweep);
    return replaceCurve(editing, *old.curve.ent, {path}, chosen);
  };
  if (!replace(a, joint.first) || !replace(b, joint.second)) return StepOutcome::noMemory();
  chosen.insert(chosen.end(), made.begin(), made.end());
  editing.chosen = std::move(chosen);
  return StepOutcome::done("2 curves connected");
}

// Without points: all corners of polylines, or the corner of two other curves.
StepOutcome connectChosen(Editing& editing, const CornerMaker& maker) {
  std::vector<CEnt*> chosen = editing.chosen;
  std::vector<Curve> singles;
  int corners = 0;
  for (CEnt* ent : editing.chosen) {
    Curve curve{ent};
    if (!getEntPath(*ent, curve.path)) continue;
    if (ent->getType() != CEntPolyline::kType) {
      singles.push_back(std::move(curve));
      continue;
    }
    const int made = maker.joinAll(curve.path);
    if (made > 0 && !replaceCurve(editing, *ent, {curve.path}, chosen))
      return StepOutcome::noMemory();
    corners += made;
  }
  if (corners == 0 && singles.size() == 2) {
    const PNT_3D a = singles[0].path.edges.front().at(0.5),
                 b = singles[1].path.edges.front().at(0.5);
    return connect(editing, pickEdge(singles[0], a), pickEdge(singles[1], b), maker);
  }
  editing.chosen = std::move(chosen);
  if (corners > 0)
    return StepOutcome::done(counted(static_cast<std::size_t>(corners), "corner", "corners") +
                             " changed");
  return StepOutcome::failed("select polylines or two other curves, or name two points");
}

EditStep cornerStep(CommandWords& words, CornerMaker maker) {
  const auto picks = words.points();
  if (picks.empty())
    return onChosen([maker](Editing& editing) { return connectChosen(editing, maker); });
  if (picks.size() != 2) words.complain("two points are needed, one on each curve");
  return [picks, maker](Editing& editing) {
    const PNT_3D a = picks[0].from(editing.last), b = picks[1].from(editing.last);
    return connect(editing, pickEdge(findCurve(editing, a), a), pickEdge(findCurve(editing, b), b),
                   maker);
  };
}

}  // namespace

EditStep readTrimCommand(CommandWords& words) { return curveStep(words, "trimmed", trimmer); }

EditStep readExtendCommand(CommandWords& words) { return curveStep(words, "extended", extender); }

EditStep readFilletCommand(CommandWords& words) {
  const double radius = words.number("the radius");
  if (radius < 0) words.complain("the radius must not be below 0");
  return cornerStep(
      words, {[radius](const EDGE_3D& a, const EDGE_3D& b, const PNT_2D& pickA, const PNT_2D& pickB,
                       EDGE_JOINT& out) { return filletEdges(a, b, radius, pickA, pickB, out); },
              [radius](PATH_3D& path) { return filletPath(path, radius); }});
}

EditStep readChamferCommand(CommandWords& words) {
  const double first = words.number("the distance");
  const double second = words.numberOr(first);
  if (first < 0 || second < 0) words.complain("the distances must not be below 0");
  return cornerStep(
      words, {[=](const EDGE_3D& a, const EDGE_3D& b, const PNT_2D& pickA, const PNT_2D& pickB,
                  EDGE_JOINT& out) { return chamferEdges(a, b, first, second, pickA, pickB, out); },
              [=](PATH_3D& path) { return chamferPath(path, first, second); }});
}

}  // namespace vek0::host
