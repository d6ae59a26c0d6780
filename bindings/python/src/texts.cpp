// Fields of texts, inserts and hatches, and the points of single-point entities.
#include <algorithm>

#include "entity.h"
#include "vek0host/editsteps.h"
#include "vek0host/entitylist.h"
#include "vek0host/hatching.h"

namespace vek0::python {
namespace {

constexpr const char* kHorizontal[] = {"left", "center", "right"};
constexpr const char* kVertical[] = {"baseline", "bottom", "middle", "top"};

template <std::size_t N>
long indexOf(const char* const (&names)[N], const std::string& name, const char* field) {
  std::string all;
  for (std::size_t i = 0; i < N; ++i) {
    if (name == names[i]) return static_cast<long>(i);
    all += (i ? ", " : "") + std::string(names[i]);
  }
  throw std::invalid_argument(std::string(field) + " is one of " + all);
}

bool isText(const CEnt& ent) {
  return ent.getType() == CEntText::kType || ent.getType() == CEntAttdef::kType;
}

CEntText& textAs(const EntityRef& ref, const char* field) {
  CEnt& ent = ref.get();
  if (!isText(ent)) lacks(ent, field);
  return static_cast<CEntText&>(ent);
}

template <class Work>
void setText(EntityRef& ref, const char* field, const Work& work) {
  CEntText& ent = textAs(ref, field);
  TEXT_3D text = ent.getText();
  work(text);
  reshape(ref, field, [&] { ent.setText(text); });
}

template <class Work>
void setContext(EntityRef& ref, const char* field, const Work& work) {
  setText(ref, field, [&](TEXT_3D& text) {
    CTextContext context = text.getContext();
    work(context);
    text.setContext(context);
  });
}

void setString(EntityRef& ref, const std::string& value) {
  CEnt& ent = ref.get();
  if (isText(ent))
    return setContext(ref, "text",
                      [&](CTextContext& context) { context.setString(toText(value)); });
  if (!host::textOf(ent)) lacks(ent, "text");
  host::EditStep step;
  host::readSetText(value, step);
  ref.drawing().take({"set text", step}, {&ent});
}

py::object point(const EntityRef& ref) {
  CEnt& ent = ref.get();
  if (ent.getType() == CEntPnt::kType) return fromPoint(static_cast<CEntPnt&>(ent).getPnt());
  if (ent.getType() == CEntInsert::kType) return fromPoint(static_cast<CEntInsert&>(ent).getPnt());
  return fromPoint(textAs(ref, "point").getText());
}

void setPoint(EntityRef& ref, const py::object& value) {
  CEnt& ent = ref.get();
  const PNT_3D p = toPoint(value, "point");
  if (ent.getType() == CEntPnt::kType)
    return reshape(ref, "point", [&] { static_cast<CEntPnt&>(ent).setPnt(p); });
  if (ent.getType() == CEntInsert::kType)
    // Attributes come along.
    return void(ref.drawing().take(
        {"set point", host::moveStep(p - static_cast<CEntInsert&>(ent).getPnt())}, {&ent}));
  setText(ref, "point", [&](TEXT_3D& text) { text.set(p.x, p.y, p.z); });
}

double rotation(const EntityRef& ref) {
  if (ref.get().getType() == CEntInsert::kType)
    return as<CEntInsert>(ref, "rotation").getRotate() / kDegree;
  return textAs(ref, "rotation").getText().getContext().getRotate() / kDegree;
}

void setRotation(EntityRef& ref, double degrees) {
  const double angle = finite(degrees, "rotation") * kDegree;
  if (ref.get().getType() == CEntInsert::kType)
    return reshape(ref, "rotation", [&] { as<CEntInsert>(ref, "rotation").setRotate(angle); });
  setContext(ref, "rotation", [&](CTextContext& context) { context.setRotate(angle); });
}

struct Array {
  long columns, rows;
  double columnSpacing, rowSpacing;
};

Array arrayOf(const EntityRef& ref, const char* field) {
  Array array{};
  as<CEntInsert>(ref, field)
      .getArray(array.columns, array.rows, array.columnSpacing, array.rowSpacing);
  return array;
}

void setArray(EntityRef& ref, const char* field, long Array::*count, long value) {
  if (value < 1 || value > 32767)
    throw std::invalid_argument(std::string(field) + " must be from 1 to 32767");
  auto& insert = as<CEntInsert>(ref, field);
  Array array = arrayOf(ref, field);
  array.*count = value;
  reshape(ref, field, [&] {
    insert.setArray(array.columns, array.rows, array.columnSpacing, array.rowSpacing);
  });
}

// None for entities that have no scale.
py::object scaleOf(const EntityRef& ref) {
  if (ref.get().getType() == CEntHatch::kType)
    return py::float_(as<CEntHatch>(ref, "scale").getHatchScale());
  if (ref.get().getType() != CEntInsert::kType) return py::none();
  double x, y, z;
  as<CEntInsert>(ref, "scale").getScale(x, y, z);
  return py::make_tuple(x, y, z);
}

struct HatchLook {
  const HATCH_TYPE* type;
  double scale, rotate;
};

// Draws the lines of the hatch anew.
void setHatch(EntityRef& ref, const char* field, const std::function<void(HatchLook&)>& change) {
  auto& hatch = as<CEntHatch>(ref, field);
  checkEditable(hatch, field);
  HatchLook look{&hatch.getHatchType(), hatch.getHatchScale(), hatch.getHatchRotate()};
  change(look);
  ref.drawing().change(std::string("set ") + field, [&] {
    if (!ref.drawing().undo().redefine(hatch, look.scale, look.rotate, *look.type))
      throw std::invalid_argument("the hatch would have too many lines");
  });
}

void setScale(EntityRef& ref, const py::object& value) {
  if (ref.get().getType() == CEntHatch::kType) {
    const double scale = positive(value.cast<double>(), "scale");
    return setHatch(ref, "scale", [&](HatchLook& look) { look.scale = scale; });
  }
  auto& insert = as<CEntInsert>(ref, "scale");
  PNT_3D scale;
  if (PyNumber_Check(value.ptr()) && !PySequence_Check(value.ptr())) {
    scale.x = scale.y = scale.z = finite(value.cast<double>(), "scale");
  } else {
    scale = toPoint(value, "scale");
    if (py::len(value) == 2) scale.z = 1;
  }
  if (scale.x == 0 || scale.y == 0 || scale.z == 0)
    throw std::invalid_argument("scale must not be 0");
  reshape(ref, "scale", [&] { insert.setScale(scale.x, scale.y, scale.z); });
}

py::dict attributesOf(const EntityRef& ref) {
  const auto& insert = as<CEntInsert>(ref, "attributes");
  py::dict values;
  for (unsigned i = 0; i < insert.GetNoAttribs(); ++i)
    if (const CEntAttrib* each = insert.GetAttrib(i))
      values[fromText(each->getTag())] = fromText(each->getValue());
  return values;
}

void setAttributes(EntityRef& ref, const std::map<std::string, std::string>& values) {
  auto& insert = as<CEntInsert>(ref, "attributes");
  std::vector<std::pair<CEntAttrib*, zim::WString>> changes;
  for (const auto& [tag, value] : values) {
    CEntAttrib* found = nullptr;
    for (unsigned i = 0; i < insert.GetNoAttribs() && !found; ++i)
      if (zim::equalsIgnoreCase(insert.GetAttrib(i)->getTag(), toText(tag)))
        found = insert.GetAttrib(i);
    if (!found) throw UnknownName("the insert has no attribute '" + tag + "'");
    changes.emplace_back(found, toText(value));
  }
  reshape(ref, "attributes", [&] {
    for (const auto& [attrib, value] : changes) attrib->setValue(value);
  });
}

void bindHatches(EntityClass& type) {
  type.def_property(
          "pattern",
          [](const EntityRef& ref) {
            return fromText(zim::WString(as<CEntHatch>(ref, "pattern").getHatchType().name));
          },
          [](EntityRef& ref, const std::string& name) {
            const HATCH_TYPE* found = getHatch(toText(name));
            if (zim::equalsIgnoreCase(toText(name), u"SOLID"))
              found = &ref.drawing().data().getHatchTypeTable().solid();
            if (!found) throw UnknownName("there is no pattern '" + name + "'");
            setHatch(ref, "pattern", [&](HatchLook& look) { look.type = found; });
          },
          "Name of a hatch's pattern.")
      .def_property(
          "angle",
          [](const EntityRef& ref) {
            return as<CEntHatch>(ref, "angle").getHatchRotate() / kDegree;
          },
          [](EntityRef& ref, double degrees) {
            finite(degrees, "angle");
            setHatch(ref, "angle", [&](HatchLook& look) { look.rotate = degrees * kDegree; });
          },
          "Rotation of a hatch's pattern, in degrees.")
      .def_property_readonly(
          "boundary",
          [](const EntityRef& ref) {
            py::list points;
            for (const PNT_3D& p : as<CEntHatch>(ref, "boundary").getBoundary())
              points.append(fromPoint(p));
            return points;
          },
          "Points of a hatch's boundary; several rings are closed each.");
}

void bindInserts(EntityClass& type) {
  type.def_property(
          "columns", [](const EntityRef& ref) { return arrayOf(ref, "columns").columns; },
          [](EntityRef& ref, long value) { setArray(ref, "columns", &Array::columns, value); },
          "Columns of an insert.")
      .def_property(
          "rows", [](const EntityRef& ref) { return arrayOf(ref, "rows").rows; },
          [](EntityRef& ref, long value) { setArray(ref, "rows", &Array::rows, value); },
          "Rows of an insert.")
      .def_property_readonly(
          "block",
          [](const EntityRef& ref) {
            const CBlock* block = as<CEntInsert>(ref, "block").getBlock();
            return block ? py::object(fromText(block->getName())) : py::none();
          },
          "Name of the block that an insert shows.")
      .def_property("attributes", &attributesOf, &setAttributes, "Values of an insert by tag.")
      .def("_get_scale", &scaleOf)
      .def("_set_scale", &setScale);
}

}  // namespace

void bindTexts(EntityClass& type) {
  type.def_property("point", &point, &setPoint, "Point of a point, a text or an insert.")
      .def_property("rotation", &rotation, &setRotation,
                    "Rotation of a text or insert, in degrees.")
      .def_property(
          "text",
          [](const EntityRef& ref) {
            const auto text = host::textOf(ref.get());
            if (!text) lacks(ref.get(), "text");
            return *text;
          },
          &setString, "What a text shows.")
      .def_property(
          "height",
          [](const EntityRef& ref) {
            return textAs(ref, "height").getText().getContext().getHeight();
          },
          [](EntityRef& ref, double value) {
            positive(value, "height");
            setContext(ref, "height", [&](CTextContext& context) { context.setHeight(value); });
          },
          "Height of a text.")
      .def_property(
          "style",
          [](const EntityRef& ref) {
            const CStyle* style = textAs(ref, "style").getStyle();
            return style ? style->getName().toUtf8() : std::string("STANDARD");
          },
          [](EntityRef& ref, const std::string& name) {
            CEntText& ent = textAs(ref, "style");
            CStyle& style = styleOf(ref.drawing().data(), name);
            reshape(ref, "style", [&] { ent.setStyle(&style); });
          },
          "Name of a text's style.")
      .def_property(
          "halign",
          [](const EntityRef& ref) {
            return kHorizontal[textAs(ref, "halign").getText().getHorizAlign() % 3];
          },
          [](EntityRef& ref, const std::string& name) {
            const long code = indexOf(kHorizontal, name, "halign");
            setText(ref, "halign", [&](TEXT_3D& text) { text.setHorizAlign(code); });
          },
          "Where the point of a text is: 'left', 'center' or 'right'.")
      .def_property(
          "valign",
          [](const EntityRef& ref) {
            return kVertical[textAs(ref, "valign").getText().getVertAlign() % 4];
          },
          [](EntityRef& ref, const std::string& name) {
            const long code = indexOf(kVertical, name, "valign");
            setText(ref, "valign", [&](TEXT_3D& text) { text.setVertAlign(code); });
          },
          "Where the point of a text is: 'baseline', 'bottom', 'middle' or 'top'.");
  bindInserts(type);
  bindHatches(type);
}

}  // namespace vek0::python
