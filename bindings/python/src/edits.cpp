// What changes entities as a whole.
#include "entity.h"
#include "vek0host/editsteps.h"

namespace vek0::python {
namespace {

using host::EditStep;

std::vector<CEnt*> take(EntityRef& ref, const char* name, const EditStep& step) {
  return ref.drawing().take({name, step}, {&ref.get()}).first;
}

// A vector as one argument, or as two or three numbers.
PNT_3D toVector(const py::args& args) {
  return toPoint(args.size() == 1 ? py::object(args[0]) : py::object(args), "delta");
}

void needModelSpace(const CEnt& ent, const char* what) {
  if (ent.getOwnerBlock())
    throw std::invalid_argument(std::string(what) + " works on entities of model space");
}

std::vector<Entity> explode(EntityRef& ref) {
  CEnt& ent = ref.get();
  needModelSpace(ent, "explode");
  host::EditStep step;
  host::readExplode("", step);
  const std::vector<CEnt*> parts = take(ref, "explode", step);
  if (parts.size() == 1 && parts.front() == &ent)
    throw std::invalid_argument("the entity has no parts to explode into");
  return ref.drawing().refer(parts);
}

std::vector<Entity> offset(EntityRef& ref, double distance, const std::string& corners) {
  needModelSpace(ref.get(), "offset");
  if (finite(distance, "distance") == 0) throw std::invalid_argument("distance must not be 0");
  char value[64];
  std::snprintf(value, sizeof value, "%.17g,", distance);
  host::EditStep step;
  const std::string problem = host::readOffset(value + corners, step);
  if (!problem.empty()) throw std::invalid_argument(problem);
  std::vector<CEnt*> made;
  {
    const Drawing::Busy busy(ref.drawing());
    const py::gil_scoped_release release;
    made = take(ref, "offset", step);
  }
  std::erase(made, &ref.get());
  if (made.empty()) throw std::invalid_argument("the entity has no parallels at this distance");
  return ref.drawing().refer(made);
}

}  // namespace

void bindEdits(EntityClass& type) {
  using namespace py::literals;
  const py::tuple origin = py::make_tuple(0.0, 0.0);
  type.def(
          "move",
          [](EntityRef& ref, const py::args& delta) {
            take(ref, "move", host::moveStep(toVector(delta)));
          },
          "Move by a vector: move((dx, dy)) or move(dx, dy, dz).")
      .def(
          "rotate",
          [](EntityRef& ref, double angle, const py::object& center) {
            finite(angle, "angle");
            take(ref, "rotate", host::rotateStep(toPoint(center, "center"), angle));
          },
          "angle"_a, "center"_a = origin, "Rotate by degrees, counterclockwise.")
      .def(
          "scale_by",
          [](EntityRef& ref, double factor, const py::object& center) {
            finite(factor, "factor");
            take(ref, "scale", host::scaleStep(toPoint(center, "center"), factor));
          },
          "factor"_a, "center"_a = origin)
      .def(
          "mirror",
          [](EntityRef& ref, const py::object& start, const py::object& end) {
            take(ref, "mirror", host::mirrorStep(toPoint(start, "start"), toPoint(end, "end")));
          },
          "start"_a, "end"_a, "Mirror about the line through two points.")
      .def(
          "copy",
          [](EntityRef& ref, const py::object& delta) {
            const auto made = take(ref, "copy", host::copyStep(toPoint(delta, "delta")));
            return ref.drawing().refer(*made.at(0));
          },
          "delta"_a = origin, "Add a copy, moved by a vector, and return it.")
      .def(
          "delete",
          [](EntityRef& ref) {
            CEnt& ent = ref.get();
            CUndoStack& undo = ref.drawing().undo();
            ref.drawing().change("delete", [&] {
              if (!undo.remove(&ent)) throw Fault("not deleted", "the entity cannot be deleted");
            });
          },
          "Delete the entity; undo brings the same object back.")
      .def("explode", &explode, "Replace the entity by its parts, and return them.")
      .def("offset", &offset, "distance"_a, "corners"_a = "mitre",
           "Add parallels and return them: to the right of open curves, outside closed ones; a "
           "negative distance selects the other side. Corners are 'round', "
           "'mitre' or 'bevel'.");
}

}  // namespace vek0::python
