#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <optional>
#include <string>
#include <vector>

#include "vek0core/vek0core.h"

namespace vek0::python {

namespace py = pybind11;

constexpr double kDegree = 0.017453292519943295769;

/// Values from Python, checked: each throws `std::invalid_argument` (a `ValueError`) for numbers
/// that are not finite, and `py::type_error` for what is no number. `what` names the argument.
double finite(double value, const char* what);
double positive(double value, const char* what);
/// Two or three numbers; without the third, z is 0.
PNT_3D toPoint(const py::handle& value, const char* what);
/// An array of shape (n, 2) or (n, 3), or a sequence of points.
std::vector<PNT_3D> toPoints(const py::handle& value, const char* what);

py::tuple fromPoint(const PNT_3D& point);
/// Two corners, or None for an empty box.
py::object fromBox(const RECT_3D& box);
inline py::str fromText(const zim::WString& text) { return py::str(text.toUtf8()); }
inline zim::WString toText(const std::string& text) { return zim::WString::fromUtf8(text); }

// Items by name; each throws `UnknownName`, and says how to add one.
CLayer& layerOf(const CData& data, const std::string& name);
CLtype& ltypeOf(CData& data, const std::string& name);
CStyle& styleOf(const CData& data, const std::string& name);
CBlock& blockOf(const CData& data, const std::string& name);

short toColor(int color);
py::object fromTrueColor(std::uint32_t color);
std::uint32_t toTrueColor(const py::handle& value);
/// Millimeters, or "bylayer", "byblock", "default".
py::object fromWeight(short weight);
short toWeight(const py::handle& value);

}  // namespace vek0::python
