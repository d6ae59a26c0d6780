#pragma once

#include "drawing.h"
#include "values.h"

namespace vek0::python {

using EntityClass = py::class_<EntityRef, Entity>;

void bindEntity(EntityClass& type);  ///< what every entity has
void bindCurves(EntityClass& type);  ///< fields of points, lines, circles, arcs and polylines
void bindTexts(EntityClass& type);   ///< fields of texts, inserts and hatches
void bindEdits(EntityClass& type);   ///< move, copy, explode and the like

/// The kind as `vek0 list` shows it for the saved drawing.
std::string kindOf(CEnt& ent);

/// Throws `std::invalid_argument` for a record that the drawing holds without understanding it.
void checkEditable(CEnt& ent, const char* what);

/// What follows a change of the entity's geometry.
void refresh(Drawing& drawing, CEnt& ent);

/// Changes the geometry of the entity in a step.
template <class Work>
void reshape(EntityRef& ref, const char* field, const Work& work) {
  CEnt& ent = ref.get();
  checkEditable(ent, field);
  Drawing& drawing = ref.drawing();
  drawing.change(std::string("set ") + field, [&] {
    if (!drawing.undo().keep(ent)) throw std::bad_alloc();
    work();
    refresh(drawing, ent);
  });
}

/// Throws `py::attribute_error`: "a LINE has no radius".
[[noreturn]] void lacks(CEnt& ent, const char* field);

/// The entity as a `Kind`, or `lacks`.
template <class Kind>
Kind& as(const EntityRef& ref, const char* field) {
  CEnt& ent = ref.get();
  if (ent.getType() != Kind::kType) lacks(ent, field);
  return static_cast<Kind&>(ent);
}

}  // namespace vek0::python
