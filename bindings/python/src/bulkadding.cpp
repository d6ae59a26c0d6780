// Adds many entities from arrays, and transforms all of a space.
#include <cmath>

#include "space.h"
#include "vek0host/editsteps.h"

namespace vek0::python {
namespace {

using Layer = std::optional<std::string>;
using Color = std::optional<int>;
using Numbers = py::array_t<double, py::array::c_style | py::array::forcecast>;

// An array of finite numbers with that many dimensions.
Numbers toNumbers(const py::handle& value, const char* what, py::ssize_t dimensions) {
  const auto array = Numbers::ensure(value);
  if (!array) {
    PyErr_Clear();
    throw py::type_error(std::string(what) + " must be an array of numbers");
  }
  if (array.ndim() != dimensions)
    throw std::invalid_argument(std::string(what) + " must have " + std::to_string(dimensions) +
                                " dimensions, not " + std::to_string(array.ndim()));
  for (py::ssize_t i = 0; i < array.size(); ++i) finite(array.data()[i], what);
  return array;
}

// One number for each of `count` entities, or one for all.
class Each {
 public:
  Each(const py::object& value, const char* what, std::size_t count) {
    if (PyNumber_Check(value.ptr()) && !PySequence_Check(value.ptr())) {
      m_values.assign(1, finite(value.cast<double>(), what));
      return;
    }
    const Numbers array = toNumbers(value, what, 1);
    if (static_cast<std::size_t>(array.size()) != count)
      throw std::invalid_argument(std::string(what) + " must hold " + std::to_string(count) +
                                  " numbers, not " + std::to_string(array.size()));
    m_values.assign(array.data(), array.data() + array.size());
  }
  double operator[](std::size_t i) const {
    return m_values.size() == 1 ? m_values[0] : m_values[i];
  }

 private:
  std::vector<double> m_values;
};

// Adds `count` entities that `make` creates in one step; returns their handles.
template <class Make>
py::array_t<std::uint64_t> addEach(const Space& space, std::size_t count, const Make& make) {
  py::array_t<std::uint64_t> handles(static_cast<py::ssize_t>(count));
  space.drawing().change("add", [&] {
    for (std::size_t i = 0; i < count; ++i)
      handles.mutable_data()[i] =
          static_cast<std::uint64_t>(space.add(std::unique_ptr<CEnt>(make(i))).GetHandle());
  });
  return handles;
}

py::array_t<std::uint64_t> addLines(const Space& space, const py::object& value, const Layer& layer,
                                    const Color& color) {
  const Numbers array = toNumbers(value, "points", 3);
  const py::ssize_t step = array.shape(2);
  if (array.shape(1) != 2 || (step != 2 && step != 3))
    throw std::invalid_argument("points must have the shape (n, 2, 2) or (n, 2, 3)");
  const Looks looks(space.drawing(), layer, color);
  const auto point = [&](std::size_t at) {
    const double* p = array.data() + at * static_cast<std::size_t>(step);
    return PNT_3D(p[0], p[1], step == 3 ? p[2] : 0);
  };
  return addEach(space, static_cast<std::size_t>(array.shape(0)), [&](std::size_t i) {
    return createEntLine(space.drawing().data(), looks.layer, looks.ltype, looks.color,
                         LINE_3D(point(2 * i), point(2 * i + 1)), 0);
  });
}

py::array_t<std::uint64_t> addPoints(const Space& space, const py::object& value,
                                     const Layer& layer, const Color& color) {
  const std::vector<PNT_3D> points = toPoints(value, "points");
  const Looks looks(space.drawing(), layer, color);
  return addEach(space, points.size(), [&](std::size_t i) {
    return createEntPnt(space.drawing().data(), looks.layer, looks.ltype, looks.color, points[i],
                        0);
  });
}

py::array_t<std::uint64_t> addCircles(const Space& space, const py::object& where,
                                      const py::object& sizes, const Layer& layer,
                                      const Color& color) {
  const std::vector<PNT_3D> centers = toPoints(where, "centers");
  const Each radii(sizes, "radii", centers.size());
  const Looks looks(space.drawing(), layer, color);
  return addEach(space, centers.size(), [&](std::size_t i) {
    const PNT_3D& p = centers[i];
    return createEntCircle(space.drawing().data(), looks.layer, looks.ltype, looks.color,
                           CIRCLE_3D(p.x, p.y, p.z, positive(radii[i], "radii")), 0);
  });
}

py::array_t<std::uint64_t> addArcs(const Space& space, const py::object& where,
                                   const py::object& sizes, const py::object& from,
                                   const py::object& to, const Layer& layer, const Color& color) {
  const std::vector<PNT_3D> centers = toPoints(where, "centers");
  const Each radii(sizes, "radii", centers.size()), starts(from, "start_angles", centers.size()),
      ends(to, "end_angles", centers.size());
  const Looks looks(space.drawing(), layer, color);
  return addEach(space, centers.size(), [&](std::size_t i) {
    const PNT_3D& p = centers[i];
    const ARC_3D arc(p.x, p.y, p.z, positive(radii[i], "radii"), starts[i] * kDegree,
                     ends[i] * kDegree);
    return createEntArc(space.drawing().data(), looks.layer, looks.ltype, looks.color, arc, 0);
  });
}

// Where each polyline begins, and where the last one ends.
std::vector<std::size_t> toOffsets(const py::object& value, std::size_t points) {
  const Numbers array = toNumbers(value, "offsets", 1);
  std::vector<std::size_t> offsets;
  for (py::ssize_t i = 0; i < array.size(); ++i) {
    const double at = array.data()[i];
    const double least = i == 0 ? 0 : static_cast<double>(offsets.back()) + 2;
    if (at != std::floor(at) || at < least || (i == 0 && at != 0))
      throw std::invalid_argument(
          "offsets must begin with 0 and increase by 2 at least: a polyline has two points");
    offsets.push_back(static_cast<std::size_t>(at));
  }
  if (offsets.empty() || offsets.back() != points)
    throw std::invalid_argument("offsets must end with the number of points");
  return offsets;
}

py::array_t<std::uint64_t> addPolylines(const Space& space, const py::object& where,
                                        const py::object& starts, const py::object& curves,
                                        const py::object& closedOnes, const Layer& layer,
                                        const Color& color) {
  const std::vector<PNT_3D> points = toPoints(where, "points");
  const std::vector<std::size_t> offsets = toOffsets(starts, points.size());
  const std::size_t count = offsets.size() - 1;
  const Each bulges(curves, "bulges", points.size()), closed(closedOnes, "closed", count);
  const Looks looks(space.drawing(), layer, color);
  CData& data = space.drawing().data();
  return addEach(space, count, [&](std::size_t i) {
    std::vector<BULGED_VERTEX> vertexes;
    for (std::size_t k = offsets[i]; k < offsets[i + 1]; ++k)
      vertexes.push_back({points[k].x, points[k].y, points[k].z, 0, 0, bulges[k], 0});
    std::unique_ptr<CEntPolyline> made(
        createEntPolyline(data, looks.layer, looks.ltype, looks.color,
                          closed[i] != 0 ? CEntPolyline::kClosed : 0, 0, 0));
    if (!made) throw std::bad_alloc();
    made->setBulgedVertexes(data.getHandleGestor(), data.getEntFactory(), vertexes.data(),
                            vertexes.size());
    return made.release();
  });
}

py::array_t<std::uint64_t> addTexts(const Space& space, const std::vector<std::string>& texts,
                                    const py::object& where, const py::object& sizes,
                                    const py::object& turns, const Layer& layer,
                                    const Color& color) {
  const std::vector<PNT_3D> points = toPoints(where, "points");
  if (texts.size() != points.size())
    throw std::invalid_argument("texts must hold one string for each point");
  const Each heights(sizes, "heights", points.size()), rotations(turns, "rotations", points.size());
  CData& data = space.drawing().data();
  const Looks looks(space.drawing(), layer, color);
  CStyle* style = getCurStyle(data);
  return addEach(space, points.size(), [&](std::size_t i) {
    const TEXT_3D text(toText(texts[i]), style, points[i].x, points[i].y, points[i].z,
                       positive(heights[i], "heights"), style ? style->getOblique() : 0,
                       style ? style->getWidthScale() : 1, rotations[i] * kDegree, 0);
    return createEntText(data, looks.layer, looks.ltype, looks.color, text, 0);
  });
}

py::array_t<std::uint64_t> addInserts(const Space& space, const std::string& name,
                                      const py::object& where, const py::object& factors,
                                      const py::object& turns, const Layer& layer,
                                      const Color& color) {
  const std::vector<PNT_3D> points = toPoints(where, "points");
  const Each scales(factors, "scales", points.size()), rotations(turns, "rotations", points.size());
  CData& data = space.drawing().data();
  CBlock& block = blockOf(data, name);
  if (block.isXRef()) throw std::invalid_argument("'" + name + "' is an external reference");
  const Looks looks(space.drawing(), layer, color);
  return addEach(space, points.size(), [&](std::size_t i) {
    if (scales[i] == 0) throw std::invalid_argument("scales must not be 0");
    return createEntInsert(data, looks.layer, looks.ltype, looks.color, block, points[i], scales[i],
                           scales[i], scales[i], rotations[i] * kDegree, 1, 1, 0, 0, 0);
  });
}

// A transformation that keeps circles circles, as the steps that make it.
std::vector<host::EditStep> stepsOf(const py::object& value) {
  const Numbers matrix = toNumbers(value, "matrix", 2);
  if (matrix.shape(0) != 4 || matrix.shape(1) != 4)
    throw std::invalid_argument("matrix must have the shape (4, 4)");
  const auto at = [&](py::ssize_t row, py::ssize_t column) { return matrix.at(row, column); };
  const double a = at(0, 0), b = at(0, 1), c = at(1, 0), d = at(1, 1);
  const double factor = std::hypot(a, c), near = 1e-9 * factor;
  const bool isMirrored = a * d - b * c < 0;
  const double sign = isMirrored ? -1 : 1;
  const auto differ = [near](double x, double y) { return std::fabs(x - y) > near; };
  const bool isSimilar = factor > 0 && !differ(d, sign * a) && !differ(b, -sign * c) &&
                         !differ(at(2, 2), factor) && !differ(at(0, 2), 0) &&
                         !differ(at(1, 2), 0) && !differ(at(2, 0), 0) && !differ(at(2, 1), 0);
  if (!isSimilar || at(3, 0) != 0 || at(3, 1) != 0 || at(3, 2) != 0 || at(3, 3) != 1)
    throw std::invalid_argument(
        "matrix must move, rotate about z, mirror in the plane, or scale all axes alike; its last "
        "row is 0, 0, 0, 1");
  std::vector<host::EditStep> steps;
  const PNT_3D origin(0, 0, 0), delta(at(0, 3), at(1, 3), at(2, 3));
  if (isMirrored) steps.push_back(host::mirrorStep(origin, PNT_3D(1, 0, 0)));
  if (factor != 1) steps.push_back(host::scaleStep(origin, factor));
  if (a < 0 || c != 0) steps.push_back(host::rotateStep(origin, std::atan2(c, a) / kDegree));
  if (delta.x != 0 || delta.y != 0 || delta.z != 0) steps.push_back(host::moveStep(delta));
  return steps;
}

void transform(const Space& space, const py::object& matrix) {
  const std::vector<host::EditStep> steps = stepsOf(matrix);
  space.drawing().change("transform", [&] {
    for (const host::EditStep& step : steps)
      space.drawing().take({"transform", step}, space.entities());
  });
}

}  // namespace

void bindBulkAdding(SpaceClass& type) {
  using namespace py::literals;
  const py::kw_only only;
  const auto layer = "layer"_a = py::none(), color = "color"_a = py::none();
  type.def("add_lines", &addLines, "points"_a, only, layer, color)
      .def("add_points", &addPoints, "points"_a, only, layer, color)
      .def("add_circles", &addCircles, "centers"_a, "radii"_a, only, layer, color)
      .def("add_arcs", &addArcs, "centers"_a, "radii"_a, "start_angles"_a, "end_angles"_a, only,
           layer, color)
      .def("add_polylines", &addPolylines, "points"_a, "offsets"_a, "bulges"_a = 0.0,
           "closed"_a = 0.0, only, layer, color)
      .def("add_texts", &addTexts, "texts"_a, "points"_a, "heights"_a = 2.5, "rotations"_a = 0.0,
           only, layer, color)
      .def("add_inserts", &addInserts, "block"_a, "points"_a, "scales"_a = 1.0, "rotations"_a = 0.0,
           only, layer, color, "Inserts of a block, scaled alike on all axes, without attributes.")
      .def("transform", &transform, "matrix"_a);
}

}  // namespace vek0::python
