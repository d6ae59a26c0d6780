#include "entity.h"

#include <numbers>

#include "vek0host/entitycounts.h"
#include "vek0host/entitylist.h"

namespace vek0::python {
namespace {

std::string hexOf(const EntityRef& ref) {
  char text[20];
  std::snprintf(text, sizeof text, "%llX", static_cast<unsigned long long>(ref.handle()));
  return text;
}

std::string layerNameOf(const CEnt& ent) {
  return ent.getLayer() ? ent.getLayer()->getFullName().toUtf8() : "0";
}

template <class Work>
void setProperty(EntityRef& ref, const char* name, const Work& work) {
  CEnt& ent = ref.get();
  Drawing& drawing = ref.drawing();
  drawing.change(std::string("set ") + name, [&] {
    if (!drawing.undo().keepProperties(ent)) throw std::bad_alloc();
    work(ent);
  });
}

// Setting what is set already is no step.
template <class Work>
void setTrait(EntityRef& ref, const char* name, const Work& work) {
  ENT_TRAITS traits = ref.get().getTraits();
  work(traits);
  if (traits == ref.get().getTraits()) return;
  setProperty(ref, name, [&](CEnt& ent) { ent.setTraits(traits); });
}

std::string spaceOf(const EntityRef& ref) {
  CEnt& ent = ref.get();
  const CBlock* block = ent.getOwnerBlock();
  if (!block) return "Model";
  const CLayoutTable& layouts = ref.drawing().data().getLayouts();
  for (int i = 0; i < layouts.size(); ++i)
    if (&layouts[i].getBlock() == block) return layouts[i].getName().toUtf8();
  return block->getName().toUtf8();
}

template <class... Values>
std::string formatted(const char* format, const Values&... values) {
  return py::str(format).format(values...).template cast<std::string>();
}

// What tells an entity from others of its kind.
std::string shapeOf(CEnt& ent) {
  constexpr double degrees = 180 / std::numbers::pi;
  switch (ent.getType()) {
    case CEntPnt::kType:
      return formatted(" at {}", fromPoint(static_cast<CEntPnt&>(ent).getPnt()));
    case CEntLine::kType: {
      const LINE_3D& line = static_cast<CEntLine&>(ent).getLine();
      return formatted(" from {} to {}", fromPoint(line.p1), fromPoint(line.p2));
    }
    case CEntCircle::kType: {
      const CIRCLE_3D& circle = static_cast<CEntCircle&>(ent).getCircle();
      return formatted(" about {}, radius {:g}", fromPoint(circle), circle.radius);
    }
    case CEntArc::kType: {
      const ARC_3D& arc = static_cast<CEntArc&>(ent).getArc();
      return formatted(" about {}, radius {:g}, {:g} to {:g} degrees", fromPoint(arc), arc.radius,
                       arc.startAngle * degrees, arc.endAngle * degrees);
    }
    case CEntPolyline::kType: {
      const auto& polyline = static_cast<const CEntPolyline&>(ent);
      const char* form = polyline.isClosed() ? ", closed, {} points" : ", {} points";
      int count = 0;
      polyline.forEachBulged([&](const auto&...) { ++count; });
      return formatted(form, count);
    }
    case CEntHatch::kType:
      return formatted(
          ", {}", zim::WString(static_cast<const CEntHatch&>(ent).getHatchType().name).toUtf8());
    default:
      return {};
  }
}

std::string reprOf(const EntityRef& ref) {
  if (!ref.isAlive()) return "<deleted entity " + hexOf(ref) + ">";
  CEnt& ent = ref.get();
  std::string text = "<" + kindOf(ent) + " " + hexOf(ref) + " on layer '" + layerNameOf(ent) + "'";
  if (const auto shown = host::textOf(ent)) {
    text += ": " + py::repr(py::str(*shown)).cast<std::string>();
  } else if (const CEntInsertBase* insert = ent.getEntInsert();
             insert && insert->getBlock() && ent.getType() != CEntHatch::kType) {
    text += " of '" + insert->getBlock()->getName().toUtf8() + "'";
  } else {
    text += shapeOf(ent);
  }
  return text + ">";
}

void bindLooks(EntityClass& type) {
  type.def_property(
          "color", [](const EntityRef& ref) { return ref.get().getColor(); },
          [](EntityRef& ref, int color) {
            const short number = toColor(color);
            if (number == ref.get().getColor()) return;
            setProperty(ref, "color", [&](CEnt& ent) { ent.setColor(number); });
          },
          "Color number: 1 to 255, 0 for BYBLOCK, 256 for BYLAYER.")
      .def_property(
          "true_color",
          [](const EntityRef& ref) { return fromTrueColor(ref.get().getTraits().trueColor); },
          [](EntityRef& ref, const py::object& value) {
            const std::uint32_t color = toTrueColor(value);
            setTrait(ref, "true_color", [&](ENT_TRAITS& traits) { traits.trueColor = color; });
          },
          "(red, green, blue), or None.")
      .def_property(
          "lineweight",
          [](const EntityRef& ref) { return fromWeight(ref.get().getTraits().lineweight); },
          [](EntityRef& ref, const py::object& value) {
            const short weight = toWeight(value);
            setTrait(ref, "lineweight", [&](ENT_TRAITS& traits) { traits.lineweight = weight; });
          },
          "Millimeters, or 'bylayer', 'byblock' or 'default'.")
      .def_property(
          "linetype",
          [](const EntityRef& ref) {
            const CLtype* ltype = ref.get().getLtype();
            return ltype ? ltype->getFullName().toUtf8() : std::string("CONTINUOUS");
          },
          [](EntityRef& ref, const std::string& name) {
            ref.get();
            CLtype& ltype = ltypeOf(ref.drawing().data(), name);
            if (&ltype == ref.get().getLtype()) return;
            setProperty(ref, "linetype", [&](CEnt& ent) { ent.setLtype(&ltype); });
          },
          "Name of the linetype; 'BYLAYER' and 'BYBLOCK' too.")
      .def_property(
          "linetype_scale", [](const EntityRef& ref) { return ref.get().getTraits().ltypeScale; },
          [](EntityRef& ref, double scale) {
            positive(scale, "linetype_scale");
            setTrait(ref, "linetype_scale", [&](ENT_TRAITS& traits) { traits.ltypeScale = scale; });
          },
          "Factor of the linetype's pattern, greater than 0.")
      .def_property(
          "visible", [](const EntityRef& ref) { return ref.get().getTraits().isVisible; },
          [](EntityRef& ref, bool on) {
            setTrait(ref, "visible", [&](ENT_TRAITS& traits) { traits.isVisible = on; });
          },
          "Whether the entity itself is shown; its layer may still hide it.");
}

}  // namespace

std::string kindOf(CEnt& ent) {
  const bool isNewHatch = ent.getType() == CEntHatch::kType && ent.getRecord() == EntRecord::Own;
  return isNewHatch ? "HATCH" : host::recordNameOf(ent);
}

void checkEditable(CEnt& ent, const char* what) {
  if (ent.getRecord() == EntRecord::Opaque)
    throw std::invalid_argument(std::string(what) + " of a " + kindOf(ent) +
                                " cannot be changed: the kind is kept as it is");
}

void refresh(Drawing& drawing, CEnt& ent) {
  CData& data = drawing.data();
  CBlock* block = ent.getOwnerBlock();
  if (block && block->isHeld())
    data.getBlockTable().updateBlock(block);
  else
    data.getEntTable().invalidateBdry();
}

void lacks(CEnt& ent, const char* field) {
  throw py::attribute_error("a " + kindOf(ent) + " has no " + field);
}

void bindEntity(EntityClass& type) {
  type.def_property_readonly(
          "kind", [](const EntityRef& ref) { return kindOf(ref.get()); },
          "Kind of record, such as 'LINE'.")
      .def_property_readonly("handle", &hexOf, "Number in the drawing, hexadecimal.")
      .def_property_readonly("space", &spaceOf, "Name of the layout or block; 'Model'.")
      .def_property_readonly(
          "bounds", [](const EntityRef& ref) { return fromBox(ref.get().getBdry()); },
          "The lower and the upper corner of its box; None if it shows nothing.")
      .def_property_readonly("is_alive", &EntityRef::isAlive, "Whether it is in the drawing.")
      .def_property(
          "layer", [](const EntityRef& ref) { return layerNameOf(ref.get()); },
          [](EntityRef& ref, const std::string& name) {
            ref.get();
            CLayer& layer = layerOf(ref.drawing().data(), name);
            if (&layer == ref.get().getLayer()) return;
            setProperty(ref, "layer", [&](CEnt& ent) { ent.setLayer(&layer); });
          },
          "Name of the layer.")
      .def("__repr__", &reprOf);
  bindLooks(type);
}

}  // namespace vek0::python
