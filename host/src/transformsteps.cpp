#include <cmath>
#include <cstddef>
#include <optional>

#include "commandkinds.h"
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

EditStep moveStep(const PNT_3D& delta) { return transformStep(CEntMoveVisitor(delta), "moved"); }

EditStep copyStep(const PNT_3D& delta) {
  return onChosen([move = moveStep(delta)](Editing& editing) {
    std::vector<CEnt*> copies = editing.chosen;
    std::string left;
    const std::string refusal = leaveUnsupported(editing, false, "copied", copies, left);
    if (!refusal.empty()) return StepOutcome::failed(refusal);
    for (CEnt*& ent : copies) {
      ent = editing.undo.copy(*ent);
      if (!ent) return StepOutcome::noMemory();
    }
    const std::string done = countedEntities(copies.size()) + " copied" + left;
    editing.chosen.swap(copies);
    const StepOutcome moved = editing.chosen.empty() ? StepOutcome::done({}) : move(editing);
    if (moved.ok) return StepOutcome::done(done);
    editing.chosen.swap(copies);
    return moved;
  });
}

EditStep rotateStep(const PNT_3D& center, double degrees) {
  return transformStep(CEntRotateXYVisitor::byDegrees(center, degrees), "rotated");
}

EditStep mirrorStep(const PNT_3D& from, const PNT_3D& to) {
  return [=](Editing& editing) {
    if (from.x == to.x && from.y == to.y)
      return StepOutcome::failed("the points of the mirror line are equal");
    CHatchTypeTable& patterns = editing.data.getHatchTypeTable();
    return transformStep(CEntMirrorVisitor(patterns, from, to), "mirrored")(editing);
  };
}

EditStep scaleStep(const PNT_3D& center, double factor) {
  if (factor == 0)
    return [](Editing&) {
      return StepOutcome::failed("a factor of 0 would shrink everything to a point");
    };
  return transformStep(CEntScaleVisitor(center, factor), "scaled");
}

namespace {

struct Grip {
  std::size_t index;
  PNT_3D at;
};

std::vector<Grip> gripsAt(CEnt& ent, const PNT_3D& point) {
  constexpr double share = 1e-9;
  const double tolerance = share * std::fmax(1, std::fmax(std::fabs(point.x), std::fabs(point.y)));
  std::vector<Grip> found;
  const std::vector<PNT_3D> grips = gripsOf(ent);
  for (std::size_t i = 0; i < grips.size(); ++i)
    if (std::hypot(grips[i].x - point.x, grips[i].y - point.y) <= tolerance)
      found.push_back({i, grips[i]});
  return found;
}

bool moveTo(CData& data, CEnt& ent, const Grip& grip, const PNT_3D& to) {
  return moveGrip(data.getHandleGestor(), data.getEntFactory(), ent, grip.index, to);
}

}  // namespace

EditStep stretchStep(const PNT_3D& from, const PNT_3D& to) {
  return onChosen([=](Editing& editing) {
    std::vector<CEnt*> ents = editing.chosen;
    std::string left;
    const std::string problem = leaveUnsupported(editing, false, "stretched", ents, left);
    if (!problem.empty()) return StepOutcome::failed(problem);
    std::size_t stretched = 0;
    for (CEnt* ent : ents) {
      const std::vector<Grip> grips = gripsAt(*ent, from);
      if (grips.empty()) continue;
      if (!editing.undo.keepGeometry(*ent)) return StepOutcome::noMemory();
      // From above, so that every grip keeps its height.
      for (const Grip& grip : grips)
        if (!moveTo(editing.data, *ent, grip, PNT_3D(to.x, to.y, grip.at.z + to.z - from.z)))
          return StepOutcome::failed("no arc or circle goes through that point");
      ++stretched;
    }
    if (stretched == 0) return StepOutcome::failed("nothing selected has a grip at that point");
    editing.data.getEntTable().invalidateBdry();
    return StepOutcome::done(countedEntities(stretched) + " stretched" + left);
  });
}

namespace {

// Reads a vector in the plane or in space; returns an error message, or an empty text.
std::string readVector(const std::string& text, PNT_3D& vector) {
  const auto numbers = numbersIn(text);
  if (!numbers || numbers->size() < 2 || numbers->size() > 3)
    return "'" + text + "' is not a vector like 12.5,-3 or 0,0,2";
  vector = PNT_3D((*numbers)[0], (*numbers)[1], numbers->size() > 2 ? (*numbers)[2] : 0);
  return {};
}

}  // namespace

std::string readMove(const std::string& text, EditStep& step) {
  PNT_3D delta;
  std::string problem = readVector(text, delta);
  if (problem.empty()) step = moveStep(delta);
  return problem;
}

std::string readCopy(const std::string& text, EditStep& step) {
  PNT_3D delta;
  std::string problem = readVector(text, delta);
  if (problem.empty()) step = copyStep(delta);
  return problem;
}

std::string readRotate(const std::string& text, EditStep& step) {
  const auto value = readNumberAtPoint(text);
  if (!value) return "'" + text + "' is not an angle and a point like 90@10,5";
  step = rotateStep(value->center, value->number);
  return {};
}

std::string readMirror(const std::string& text, EditStep& step) {
  const auto n = numbersIn(text);
  if (!n || n->size() != 4) return "'" + text + "' is not two points like 0,0,0,10";
  const PNT_3D from((*n)[0], (*n)[1], 0), to((*n)[2], (*n)[3], 0);
  if (from == to) return "the points of the mirror line are equal";
  step = mirrorStep(from, to);
  return {};
}

std::string readScale(const std::string& text, EditStep& step) {
  const auto value = readNumberAtPoint(text);
  if (!value) return "'" + text + "' is not a factor and a point like 2.5@10,5";
  if (value->number == 0) return "a factor of 0 would shrink everything to a point";
  step = scaleStep(value->center, value->number);
  return {};
}

namespace {

// A vector, or from one point to another.
EditStep readDisplacement(CommandWords& words, EditStep (*stepBy)(const PNT_3D&)) {
  const CommandPoint first = words.point();
  if (!words.isPoint()) return stepBy(first.value);
  const CommandPoint second = words.point();
  return [=](Editing& editing) {
    const PNT_3D from = first.from(editing.last), to = second.from(editing.last);
    return stepBy(PNT_3D(to.x - from.x, to.y - from.y, to.z - from.z))(editing);
  };
}

// "number@x,y" as in the step, or a point and a number.
EditStep readAboutPoint(CommandWords& words, EditStep (*stepBy)(const PNT_3D&, double)) {
  if (words.isPoint()) {
    const CommandPoint center = words.point();
    const double number = words.number("the angle or the factor");
    return [=](Editing& editing) { return stepBy(center.from(editing.last), number)(editing); };
  }
  const std::string text = words.word("the center");
  const auto value = readNumberAtPoint(text);
  if (value) return stepBy(value->center, value->number);
  words.complain("'" + text + "' is not a number and a point like 90@10,5 or 10,5 90");
  return {};
}

}  // namespace

EditStep readMoveCommand(CommandWords& words) { return readDisplacement(words, moveStep); }

EditStep readCopyCommand(CommandWords& words) { return readDisplacement(words, copyStep); }

EditStep readRotateCommand(CommandWords& words) { return readAboutPoint(words, rotateStep); }

EditStep readMirrorCommand(CommandWords& words) {
  const CommandPoint first = words.point(), second = words.point();
  return [=](Editing& editing) {
    const PNT_3D from = first.from(editing.last);
    return mirrorStep(from, second.from(editing.last))(editing);
  };
}

EditStep readScaleCommand(CommandWords& words) { return readAboutPoint(words, scaleStep); }

EditStep readStretchCommand(CommandWords& words) {
  const CommandPoint first = words.point(), second = words.point();
  return [=](Editing& editing) {
    const PNT_3D from = first.from(editing.last);
    return stretchStep(from, second.from(editing.last))(editing);
  };
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
