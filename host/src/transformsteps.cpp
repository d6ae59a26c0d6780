#include <cmath>
#include <cstddef>
#include <optional>

#include "vek0host/editsteps.h"
#include "vek0host/textvalues.h"

namespace vek0::host {
namespace {

bool isFinite(const RECT_3D& box) {
  for (const PNT_3D& corner : {box.min, box.max})
    if (!std::isfinite(corner.x) || !std::isfinite(corner.y) || !std::isfinite(corner.z))
      return false;
  return true;
}

template <class Visitor>
EditStep transformStep(Visitor visitor, const char* done) {
  return onChosen([visitor, done](Editing& editing) {
    Visitor transform = visitor;
    std::vector<CEnt*> ents = editing.chosen;
    std::string left;
    const std::string problem = leaveUnsupported(editing, false, done, ents, left);
    if (!problem.empty()) return StepOutcome::failed(problem);
    for (CEnt* ent : ents) {
      // Scaling changes the thickness, too, which is a property.
      const bool isThick = ent->getTraits().thickness != 0;
      if (!(isThick ? editing.undo.keep(*ent) : editing.undo.keepGeometry(*ent)))
        return StepOutcome::noMemory();
      // Entities from files may already have non-finite extents; these are accepted.
      const bool wasFinite = isFinite(ent->getBdry());
      ent->accept(transform);
      if (wasFinite && !isFinite(ent->getBdry()))
        return StepOutcome::failed("coordinates would exceed the range of numbers");
    }
    editing.data.getEntTable().invalidateBdry();
    return StepOutcome::done(countedEntities(ents.size()) + " " + done + left);
  });
}

struct NumberAtPoint {
  double number;
  PNT_3D center;
};

// "number@x,y"
std::optional<NumberAtPoint> readNumberAtPoint(const std::string& text) {
  const std::size_t at = text.find('@');
  if (at == std::string::npos) return std::nullopt;
  const auto number = numbersIn(std::string_view(text).substr(0, at));
  const auto point = numbersIn(std::string_view(text).substr(at + 1));
  if (!number || number->size() != 1 || !point || point->size() != 2) return std::nullopt;
  return NumberAtPoint{number->front(), PNT_3D((*point)[0], (*point)[1], 0)};
}

}  // namespace

std::string readMove(const std::string& text, EditStep& step) {
  const auto numbers = numbersIn(text);
  if (!numbers || numbers->size() < 2 || numbers->size() > 3)
    return "'" + text + "' is not a vector like 12.5,-3 or 0,0,2";
  const double dz = numbers->size() > 2 ? (*numbers)[2] : 0;
  step = transformStep(CEntMoveVisitor(PNT_3D((*numbers)[0], (*numbers)[1], dz)), "moved");
  return {};
}

std::string readCopy(const std::string& text, EditStep& step) {
  EditStep move;
  const std::string problem = readMove(text, move);
  if (!problem.empty()) return problem;
  step = onChosen([move = std::move(move)](Editing& editing) {
    std::vector<CEnt*> ents = editing.chosen;
    std::string left;
    const std::string refusal = leaveUnsupported(editing, false, "copied", ents, left);
    if (!refusal.empty()) return StepOutcome::failed(refusal);
    for (CEnt*& ent : ents) {
      ent = editing.undo.copy(*ent);
      if (!ent) return StepOutcome::noMemory();
    }
    editing.chosen = std::move(ents);
    const std::string done = countedEntities(editing.chosen.size()) + " copied" + left;
    const StepOutcome moved = editing.chosen.empty() ? StepOutcome::done({}) : move(editing);
    return moved.ok ? StepOutcome::done(done) : moved;
  });
  return {};
}

std::string readRotate(const std::string& text, EditStep& step) {
  const auto value = readNumberAtPoint(text);
  if (!value) return "'" + text + "' is not an angle and a point like 90@10,5";
  step = transformStep(CEntRotateXYVisitor::byDegrees(value->center, value->number), "rotated");
  return {};
}

std::string readScale(const std::string& text, EditStep& step) {
  const auto value = readNumberAtPoint(text);
  if (!value) return "'" + text + "' is not a factor and a point like 2.5@10,5";
  if (value->number == 0) return "a factor of 0 would shrink everything to a point";
  step = transformStep(CEntScaleVisitor(value->center, value->number), "scaled");
  return {};
}

std::string readDelete(const std::string&, EditStep& step) {
  step = onChosen([](Editing& editing) {
    for (CEnt* ent : editing.chosen)
      if (!editing.undo.remove(ent)) return StepOutcome::noMemory();
    const std::size_t count = editing.chosen.size();
    editing.chosen.clear();
    return StepOutcome::done(countedEntities(count) + " deleted");
  });
  return {};
}

}  // namespace vek0::host
