// The module `vek0._core`: the drawing, its spaces and tables, and errors.
#include <pybind11/functional.h>

#include "entity.h"
#include "pictures.h"
#include "space.h"
#include "vek0core/compare/comparison.h"
#include "vek0host/comparisontext.h"
#include "vek0host/editsteps.h"
#include "vek0host/losslog.h"
#include "vek0host/multibyte.h"
#include "vek0host/selection.h"
#include "vek0host/units.h"

namespace vek0::python {
namespace {

using DrawingClass = py::class_<Drawing, std::shared_ptr<Drawing>>;

std::shared_ptr<Drawing> readDrawing(const std::string& path, const std::optional<py::bytes>& bytes,
                                     bool isStrict, const std::string& encoding) {
  const int page = encoding.empty() ? 0 : codePageFromName(encoding);
  if (!encoding.empty() && page == kCodePageAuto)
    throw std::invalid_argument("'" + encoding + "' is not a known encoding");
  Drawing::Source source{path, {}, bytes.has_value()};
  if (bytes) source.bytes = std::string(*bytes);
  const py::gil_scoped_release release;
  return std::make_shared<Drawing>(std::move(source), isStrict, page);
}

std::pair<py::bytes, std::vector<std::string>> saveDrawing(Drawing& drawing,
                                                           const std::string& version) {
  std::vector<std::string> losses;
  std::string bytes;
  {
    const Drawing::Busy busy(drawing);
    const py::gil_scoped_release release;
    bytes = drawing.toBytes(version, losses);
  }
  return {py::bytes(bytes), losses};
}

// As the tool's option --report has it.
std::string reportOf(const Drawing& drawing) {
  drawing.data();
  host::LossLog log;
  log.begin(drawing.path());
  log.add(host::LossLog::Read, drawing.report());
  return log.toJson("open").at(0).at("entries").dump(-1, ' ', false,
                                                     host::Json::error_handler_t::replace);
}

std::string compare(Drawing& before, Drawing& after, std::optional<double> tolerance) {
  if (&before == &after) throw std::invalid_argument("a drawing has no differences from itself");
  if (tolerance && finite(*tolerance, "tolerance") < 0)
    throw std::invalid_argument("tolerance must not be negative");
  const Drawing::Busy one(before), other(after);
  const py::gil_scoped_release release;
  COMPARE_OPTIONS options;
  options.tolerance = tolerance;
  const COMPARISON found = compareDrawings(one.data(), other.data(), options);
  std::string text;
  host::ComparisonText(one.data(), other.data(), found).writeJson([&](const std::string& piece) {
    text += piece;
  });
  return text;
}

std::vector<Entity> select(Drawing& drawing, const std::string& text) {
  host::Selection selection;
  std::string problem = selection.parse(text);
  if (problem.empty()) problem = selection.findLayers(drawing.data());
  if (!problem.empty()) throw Fault("selection", problem);
  std::vector<Entity> found;
  for (CEnt* ent : drawing.data().getEntTable().getEntityTbl())
    if (selection.includes(*ent)) found.push_back(drawing.refer(*ent));
  return found;
}

std::vector<Entity> join(Drawing& drawing, const std::vector<Entity>& refs,
                         std::optional<double> tolerance, bool isAcross) {
  std::string value = "auto";
  if (tolerance) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", finite(*tolerance, "tolerance"));
    value = text;
  }
  host::EditStep step;
  const std::string problem = host::readJoin(value + (isAcross ? ",across" : ""), step);
  if (!problem.empty()) throw std::invalid_argument(problem);
  const std::vector<CEnt*> ents = drawing.entitiesOf(refs);
  for (const CEnt* ent : ents)
    if (ent->getOwnerBlock()) throw std::invalid_argument("join works on entities of model space");
  return drawing.refer(drawing.take({"join", step}, ents).first);
}

py::object find(Drawing& drawing, Handle handle) {
  CEnt* ent = drawing.find(handle);
  return ent ? py::cast(drawing.refer(*ent)) : py::none();
}

// --- Variables

struct Variable {
  const char* name;
  py::object (*get)(const CDataVariables& vars);
  void (*set)(CDataVariables& vars, const py::object& value, const char* name);
};

template <double (CDataVariables::*Get)() const, void (CDataVariables::*Set)(double)>
constexpr Variable number(const char* name) {
  return {name, [](const CDataVariables& vars) -> py::object { return py::float_((vars.*Get)()); },
          [](CDataVariables& vars, const py::object& value, const char* what) {
            (vars.*Set)(finite(value.cast<double>(), what));
          }};
}

template <short (CDataVariables::*Get)() const, void (CDataVariables::*Set)(short)>
constexpr Variable whole(const char* name) {
  return {name, [](const CDataVariables& vars) -> py::object { return py::int_((vars.*Get)()); },
          [](CDataVariables& vars, const py::object& value, const char*) {
            (vars.*Set)(value.cast<short>());
          }};
}

template <const PNT_2D& (CDataVariables::*Get)() const, void (CDataVariables::*Set)(const PNT_2D&)>
constexpr Variable corner(const char* name) {
  return {name,
          [](const CDataVariables& vars) -> py::object {
            const PNT_2D& p = (vars.*Get)();
            return py::make_tuple(p.x, p.y);
          },
          [](CDataVariables& vars, const py::object& value, const char* what) {
            (vars.*Set)(toPoint(value, what));
          }};
}

using Vars = CDataVariables;
const Variable kVariables[] = {
    corner<&Vars::getLimMin, &Vars::setLimMin>("$LIMMIN"),
    corner<&Vars::getLimMax, &Vars::setLimMax>("$LIMMAX"),
    number<&Vars::getLtypeScale, &Vars::setLtypeScale>("$LTSCALE"),
    number<&Vars::getCurLtypeScale, &Vars::setCurLtypeScale>("$CELTSCALE"),
    number<&Vars::getPLineWid, &Vars::setPLineWid>("$PLINEWID"),
    number<&Vars::getPointSize, &Vars::setPointSize>("$PDSIZE"),
    whole<&Vars::getPointMode, &Vars::setPointMode>("$PDMODE"),
    whole<&Vars::getUnits, &Vars::setUnits>("$INSUNITS"),
    {"$INSBASE", [](const Vars& vars) -> py::object { return fromPoint(vars.getInsertionBase()); },
     [](Vars& vars, const py::object& value, const char* name) {
       vars.setInsertionBase(toPoint(value, name));
     }},
};

const Variable& variableOf(const std::string& name) {
  for (const Variable& each : kVariables)
    if (name == each.name) return each;
  throw py::key_error(name);
}

py::dict variables(Drawing& drawing) {
  py::dict values;
  for (const Variable& each : kVariables) values[each.name] = each.get(drawing.data().getVars());
  return values;
}

void setVariable(Drawing& drawing, const std::string& name, const py::object& value) {
  const Variable& variable = variableOf(name);
  drawing.change("set " + name, [&] {
    if (!drawing.undo().keepVars()) throw std::bad_alloc();
    variable.set(drawing.data().getVars(), value, variable.name);
  });
}

// Layer, color and linetype of what is drawn next.
void setCurrent(Drawing& drawing, const std::optional<std::string>& layer, std::optional<int> color,
                const std::optional<std::string>& linetype) {
  CData& data = drawing.data();
  CLayer* newLayer = layer ? &layerOf(data, *layer) : nullptr;
  CLtype* newLtype = linetype ? &ltypeOf(data, *linetype) : nullptr;
  const short newColor = color ? toColor(*color) : short{0};
  drawing.change("set current", [&] {
    if (!drawing.undo().keepVars()) throw std::bad_alloc();
    if (newLayer) setCurLayer(data, newLayer);
    if (newLtype) setCurLtype(data, newLtype);
    if (color) setCurColor(data, newColor);
  });
}

py::object unitOf(Drawing& drawing) {
  const char* name = host::unitName(drawing.data().getVars().getUnits());
  return name ? py::object(py::str(name)) : py::none();
}

void setUnit(Drawing& drawing, const std::optional<std::string>& name) {
  constexpr short kMostUnits = 24;
  short found = 0;
  for (short code = 1; name && code <= kMostUnits && found == 0; ++code)
    if (const char* each = host::unitName(code); each && *name == each) found = code;
  if (name && found == 0) throw std::invalid_argument("'" + *name + "' is not a unit like 'mm'");
  drawing.change("set units", [&] {
    if (!drawing.undo().keepVars()) throw std::bad_alloc();
    drawing.data().getVars().setUnits(found);
  });
}

void bindDrawing(DrawingClass& type) {
  using namespace py::literals;
  type.def(py::init<>())
      .def(py::init(&readDrawing))
      .def_property_readonly("closed", &Drawing::isClosed, "Whether it is closed.")
      .def("close", &Drawing::close, "Free the drawing; its objects cannot be used any more.")
      .def_property_readonly("path", &Drawing::path, "The file that it was read from, or ''.")
      .def("_report", &reportOf)
      .def("_save", &saveDrawing)
      .def("_render", &renderPicture)
      .def("_diff", &compare)
      .def("_find", &find)
      .def("_select", &select)
      .def("_join", &join)
      .def("_run",
           [](Drawing& drawing, const std::string& line) { return drawing.run(line).second; })
      .def("_begin", &Drawing::begin)
      .def("_commit", &Drawing::commit)
      .def("_rollback", &Drawing::rollback)
      .def("_variables", &variables)
      .def("_set_variable", &setVariable)
      .def("_set_current", &setCurrent, "layer"_a, "color"_a, "linetype"_a)
      .def_property("units", &unitOf, &setUnit,
                    "The drawing unit, such as 'mm'; None if the file states none. Setting it "
                    "changes no lengths.")
      .def(
          "undo", [](Drawing& drawing) { return drawing.travel(false); },
          "Undo the last step; False if there is none.")
      .def(
          "redo", [](Drawing& drawing) { return drawing.travel(true); },
          "Redo the last undone step; False if there is none.");
}

// Exceptions of Python for those of C++, made once.
struct Exceptions {
  py::object error, unknownName;
};

Exceptions& exceptions() {
  // Never destroyed: the interpreter may end before.
  static auto* made = new Exceptions;
  return *made;
}

void raise(const py::object& type, const Fault& fault) {
  const py::object line = fault.line > 0 ? py::object(py::int_(fault.line)) : py::none();
  const py::object file = fault.file.empty() ? py::none() : py::object(py::str(fault.file));
  PyErr_SetObject(type.ptr(), type(py::str(fault.what()), fault.kind, line, file).ptr());
}

}  // namespace

void raiseAsPython(std::exception_ptr thrown) {
  try {
    if (thrown) std::rethrow_exception(thrown);
  } catch (const UnknownName& fault) {
    raise(exceptions().unknownName, fault);
  } catch (const Fault& fault) {
    raise(exceptions().error, fault);
  }
}

}  // namespace vek0::python

PYBIND11_MODULE(_core, module) {
  using namespace vek0::python;
  initCore();
  setMultiByteDecoder(vek0::host::decodeMultiByte);
  module.def("set_errors", [](py::object error, py::object unknownName) {
    exceptions() = {std::move(error), std::move(unknownName)};
  });
  py::register_exception_translator(&raiseAsPython);
  DrawingClass drawing(module, "Drawing");
  EntityClass entity(module, "Entity", "An entity of a drawing.");
  SpaceClass space(module, "Space", "Model space, a layout or a block.");
  bindDrawing(drawing);
  bindEntity(entity);
  bindCurves(entity);
  bindTexts(entity);
  bindEdits(entity);
  bindSpace(space);
  bindQuickReading(entity, space);
  auto tables = module.def_submodule("tables");
  bindTables(tables);
}
