#include "values.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "fault.h"

namespace vek0::python {

double finite(double value, const char* what) {
  if (!std::isfinite(value))
    throw std::invalid_argument(std::string(what) + " must be a finite number");
  return value;
}

double positive(double value, const char* what) {
  if (!(finite(value, what) > 0))
    throw std::invalid_argument(std::string(what) + " must be greater than 0");
  return value;
}

PNT_3D toPoint(const py::handle& value, const char* what) {
  const std::string message = std::string(what) + " must be a point: two or three numbers";
  if (!PySequence_Check(value.ptr()) || PyUnicode_Check(value.ptr())) throw py::type_error(message);
  const auto items = py::reinterpret_borrow<py::sequence>(value);
  const std::size_t count = items.size();
  if (count != 2 && count != 3) throw std::invalid_argument(message);
  double xyz[3] = {0, 0, 0};
  for (std::size_t i = 0; i < count; ++i) {
    xyz[i] = PyFloat_AsDouble(py::object(items[i]).ptr());
    if (PyErr_Occurred()) {
      PyErr_Clear();
      throw py::type_error(message);
    }
    finite(xyz[i], what);
  }
  return {xyz[0], xyz[1], xyz[2]};
}

std::vector<PNT_3D> toPoints(const py::handle& value, const char* what) {
  std::vector<PNT_3D> points;
  if (!py::isinstance<py::array>(value)) {
    if (!PySequence_Check(value.ptr()) || PyUnicode_Check(value.ptr()))
      throw py::type_error(std::string(what) + " must be a sequence of points, or an array");
    for (const py::handle point : py::reinterpret_borrow<py::sequence>(value))
      points.push_back(toPoint(point, what));
    return points;
  }
  using Array = py::array_t<double, py::array::c_style | py::array::forcecast>;
  const auto array = Array::ensure(value);
  if (!array) {
    PyErr_Clear();
    throw py::type_error(std::string(what) + " must be an array of numbers");
  }
  if (array.ndim() != 2 || (array.shape(1) != 2 && array.shape(1) != 3))
    throw std::invalid_argument(std::string(what) + " must have the shape (n, 2) or (n, 3)");
  const double* at = array.data();
  const py::ssize_t step = array.shape(1);
  for (py::ssize_t i = 0; i < array.size(); ++i) finite(at[i], what);
  for (py::ssize_t i = 0; i < array.shape(0); ++i, at += step)
    points.emplace_back(at[0], at[1], step == 3 ? at[2] : 0);
  return points;
}

// Twice as fast as `py::make_tuple`; points are what scripts read most.
py::tuple fromPoint(const PNT_3D& p) {
  py::tuple tuple(3);
  const double xyz[] = {p.x, p.y, p.z};
  for (py::ssize_t i = 0; i < 3; ++i) {
    PyObject* number = PyFloat_FromDouble(xyz[i]);
    if (!number) throw py::error_already_set();
    PyTuple_SET_ITEM(tuple.ptr(), i, number);
  }
  return tuple;
}

py::object fromBox(const RECT_3D& box) {
  if (!(box.min.x <= box.max.x)) return py::none();
  return py::make_tuple(fromPoint(box.min), fromPoint(box.max));
}

CLayer& layerOf(const CData& data, const std::string& name) {
  if (CLayer* layer = getLayer(data, toText(name))) return *layer;
  throw UnknownName("there is no layer '" + name + "'; doc.layers.add(name) adds one");
}

CLtype& ltypeOf(CData& data, const std::string& name) {
  const zim::WString text = toText(name);
  if (zim::equalsIgnoreCase(text, u"BYLAYER")) return data.getLtypeByLayer();
  if (zim::equalsIgnoreCase(text, u"BYBLOCK")) return data.getLtypeByBlock();
  if (zim::equalsIgnoreCase(text, u"CONTINUOUS")) return data.getLtypeContinuous();
  if (CLtype* ltype = getLtype(data, text)) return *ltype;
  throw UnknownName("there is no linetype '" + name +
                    "'; doc.linetypes.add(name, pattern) adds one");
}

CStyle& styleOf(const CData& data, const std::string& name) {
  if (CStyle* style = getStyle(data, toText(name))) return *style;
  throw UnknownName("there is no style '" + name + "'; doc.styles.add(name, font) adds one");
}

CBlock& blockOf(const CData& data, const std::string& name) {
  CBlock* block = data.getBlockTable().get(toText(name));
  if (block && !block->isSheet()) return *block;
  throw UnknownName("there is no block '" + name + "'; doc.blocks.add(name) adds one");
}

short toColor(int color) {
  if (color < 0 || color > 256)
    throw std::invalid_argument("a color is a number from 0 (BYBLOCK) to 256 (BYLAYER)");
  return static_cast<short>(color);
}

py::object fromTrueColor(std::uint32_t color) {
  if (color == ENT_TRAITS::kNoTrueColor) return py::none();
  return py::make_tuple(color >> 16 & 255, color >> 8 & 255, color & 255);
}

std::uint32_t toTrueColor(const py::handle& value) {
  if (value.is_none()) return ENT_TRAITS::kNoTrueColor;
  std::array<int, 3> rgb{};
  try {
    rgb = value.cast<std::array<int, 3>>();
  } catch (const py::cast_error&) {
    throw py::type_error("a true color is (red, green, blue), or None");
  }
  for (const int part : rgb)
    if (part < 0 || part > 255)
      throw std::invalid_argument("the parts of a true color are from 0 to 255");
  return static_cast<std::uint32_t>(rgb[0] << 16 | rgb[1] << 8 | rgb[2]);
}

namespace {
struct WeightName {
  const char* name;
  short weight;
};
constexpr WeightName kWeights[] = {{"bylayer", ENT_TRAITS::kWeightByLayer},
                                   {"byblock", ENT_TRAITS::kWeightByBlock},
                                   {"default", ENT_TRAITS::kWeightDefault}};
}  // namespace

py::object fromWeight(short weight) {
  for (const WeightName& each : kWeights)
    if (each.weight == weight) return py::str(each.name);
  return py::float_(weight / 100.0);
}

short toWeight(const py::handle& value) {
  const char* message = "a lineweight is 0 to 2.11 millimeters, 'bylayer', 'byblock' or 'default'";
  if (py::isinstance<py::str>(value)) {
    for (const WeightName& each : kWeights)
      if (value.cast<std::string>() == each.name) return each.weight;
    throw std::invalid_argument(message);
  }
  const double mm = PyFloat_AsDouble(value.ptr());
  if (PyErr_Occurred()) {
    PyErr_Clear();
    throw py::type_error(message);
  }
  if (!(mm >= 0 && mm <= ENT_TRAITS::kWidestWeight / 100.0)) throw std::invalid_argument(message);
  return static_cast<short>(std::lround(mm * 100));
}

}  // namespace vek0::python
