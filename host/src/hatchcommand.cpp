#include "commandkinds.h"
#include "vek0host/editsteps.h"
#include "vek0host/hatching.h"

namespace vek0::host {
namespace {

HATCH_RING ringOf(const PATH_3D& path) {
  HATCH_RING ring;
  for (const EDGE_3D& edge : path.edges) {
    const int count = edge.isArc() ? arcChords(edge.sweep) : 1;
    for (int i = 0; i < count; ++i) ring.push_back(edge.at(static_cast<double>(i) / count));
  }
  return ring;
}

// What the selected curves enclose: closed ones, and chains of open ones.
std::vector<HATCH_RING> ringsOf(const Editing& editing) {
  std::vector<HATCH_RING> rings;
  std::vector<CEnt*> open;
  const auto take = [&](CEnt* ent) {
    PATH_3D path;
    if (!getEntPath(*ent, path)) return;
    if (path.closed)
      rings.push_back(ringOf(path));
    else
      open.push_back(ent);
  };
  for (CEnt* ent : editing.chosen) take(ent);
  const auto joined = joinEnts(editing.data.getHandleGestor(), editing.data.getEntFactory(), open,
                               joinTolerance(open), JOIN_LAYERS::together);
  for (const JOINED_ENT& each : joined) take(each.polyline.get());
  return rings;
}

StepOutcome hatch(Editing& editing, const HatchRequest& request) {
  const std::vector<PNT_3D> boundary = joinHatchRings(ringsOf(editing));
  if (boundary.size() < 3) return StepOutcome::failed("the selected curves enclose nothing");
  std::string message;
  std::unique_ptr<CEnt> made(createHatch(editing.data, request, boundary, getCurLayer(editing.data),
                                         getCurColor(editing.data), message));
  if (!made) return StepOutcome::failed(message.empty() ? "out of memory" : message);
  std::vector<CEnt*> chosen;
  if (!addEnt(editing, std::move(made), chosen)) return StepOutcome::noMemory();
  editing.chosen = std::move(chosen);
  return StepOutcome::done("hatch drawn" + (message.empty() ? "" : ": " + message));
}

}  // namespace

EditStep readHatchCommand(CommandWords& words) {
  HatchRequest request;
  request.pattern = words.word("the pattern");
  if (!isHatchPattern(request.pattern))
    words.complain("there is no pattern " + request.pattern + "; vek0 hatches lists them");
  if (words.isNumber()) request.scale = words.positive("the scale");
  request.angleDeg = words.numberOr(0);
  return onChosen([request](Editing& editing) { return hatch(editing, request); });
}

}  // namespace vek0::host
