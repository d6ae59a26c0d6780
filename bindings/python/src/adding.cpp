// Adds entities one by one.
#include <map>

#include "space.h"
#include "vek0core/hatch/boundary.h"

namespace vek0::python {
namespace {

using Layer = std::optional<std::string>;
using Color = std::optional<int>;

Entity added(const Space& space, CEnt* made) {
  return space.drawing().refer(space.add(std::unique_ptr<CEnt>(made)));
}

Entity addPolyline(const Space& space, const py::object& where,
                   const std::optional<std::vector<double>>& bulges, const py::object& widths,
                   bool isClosed, const Layer& layer, const Color& color) {
  const std::vector<PNT_3D> points = toPoints(where, "points");
  if (points.size() < 2) throw std::invalid_argument("points must hold two points at least");
  std::vector<BULGED_VERTEX> vertexes;
  for (const PNT_3D& p : points) vertexes.push_back({p.x, p.y, p.z, 0, 0, 0, 0});
  const auto check = [&](std::size_t count, const char* what) {
    if (count != points.size())
      throw std::invalid_argument(std::string(what) + " must hold " +
                                  std::to_string(points.size()) + " values, one for each point");
  };
  if (bulges) check(bulges->size(), "bulges");
  for (std::size_t i = 0; bulges && i < vertexes.size(); ++i)
    vertexes[i].bulge = finite((*bulges)[i], "bulges");
  if (PyNumber_Check(widths.ptr()) && !PySequence_Check(widths.ptr())) {
    for (BULGED_VERTEX& v : vertexes)
      v.widthStart = v.widthEnd = finite(widths.cast<double>(), "widths");
  } else if (!widths.is_none()) {
    const auto pairs = widths.cast<std::vector<std::pair<double, double>>>();
    check(pairs.size(), "widths");
    for (std::size_t i = 0; i < pairs.size(); ++i) {
      vertexes[i].widthStart = finite(pairs[i].first, "widths");
      vertexes[i].widthEnd = finite(pairs[i].second, "widths");
    }
  }
  CData& data = space.drawing().data();
  const Looks looks(space.drawing(), layer, color);
  std::unique_ptr<CEntPolyline> made(createEntPolyline(data, looks.layer, looks.ltype, looks.color,
                                                       isClosed ? CEntPolyline::kClosed : 0, 0, 0));
  if (!made) throw std::bad_alloc();
  made->setBulgedVertexes(data.getHandleGestor(), data.getEntFactory(), vertexes.data(),
                          vertexes.size());
  return added(space, made.release());
}

Entity addText(const Space& space, const std::string& text, const py::object& point, double height,
               double rotation, const std::optional<std::string>& style, const Layer& layer,
               const Color& color) {
  CData& data = space.drawing().data();
  const Looks looks(space.drawing(), layer, color);
  CStyle* used = style ? &styleOf(data, *style) : getCurStyle(data);
  const PNT_3D p = toPoint(point, "point");
  const TEXT_3D made(toText(text), used, p.x, p.y, p.z, positive(height, "height"),
                     used ? used->getOblique() : 0, used ? used->getWidthScale() : 1,
                     finite(rotation, "rotation") * kDegree, 0);
  return added(space, createEntText(data, looks.layer, looks.ltype, looks.color, made, 0));
}

// Gives the insert the attributes that its block defines.
void addAttributes(const CData& data, const CBlock& block,
                   std::map<std::string, std::string> values, CEntInsert& insert) {
  constexpr long kConstant = 2;
  for (CBlock::CAttdefIterator at(block); *at; ++at) {
    const CEntAttdef& def = **at;
    if (def.getFlags() & kConstant) continue;
    const auto given = std::find_if(values.begin(), values.end(), [&](const auto& value) {
      return zim::equalsIgnoreCase(toText(value.first), def.getTag());
    });
    const bool isGiven = given != values.end();
    insert.add(createEntAttrib(data, isGiven ? toText(given->second) : def.getValue(), def, 0));
    if (isGiven) values.erase(given);
  }
  if (!values.empty())
    throw UnknownName("block '" + block.getName().toUtf8() + "' defines no attribute '" +
                      values.begin()->first + "'");
}

Entity addInsert(const Space& space, const py::object& which, const py::object& point,
                 const py::object& scale, double rotation,
                 const std::map<std::string, std::string>& attributes, const Layer& layer,
                 const Color& color) {
  CData& data = space.drawing().data();
  if (py::isinstance<Space>(which) && &which.cast<const Space&>().drawing() != &space.drawing())
    throw std::invalid_argument("the block belongs to another drawing");
  const std::string name =
      py::isinstance<Space>(which) ? which.cast<const Space&>().name() : which.cast<std::string>();
  CBlock& block = blockOf(data, name);
  if (block.isXRef()) throw std::invalid_argument("'" + name + "' is an external reference");
  PNT_3D s(1, 1, 1);
  if (PyNumber_Check(scale.ptr()) && !PySequence_Check(scale.ptr())) {
    s.x = s.y = s.z = finite(scale.cast<double>(), "scale");
  } else {
    s = toPoint(scale, "scale");
    if (py::len(scale) == 2) s.z = 1;
  }
  if (s.x == 0 || s.y == 0 || s.z == 0) throw std::invalid_argument("scale must not be 0");
  const Looks looks(space.drawing(), layer, color);
  std::unique_ptr<CEntInsert> insert(
      createEntInsert(data, looks.layer, looks.ltype, looks.color, block, toPoint(point, "point"),
                      s.x, s.y, s.z, finite(rotation, "rotation") * kDegree, 1, 1, 0, 0, 0));
  if (!insert) throw std::bad_alloc();
  addAttributes(data, block, attributes, *insert);
  return added(space, insert.release());
}

// One ring, or a sequence of rings.
std::vector<std::vector<PNT_3D>> toRings(const py::object& value) {
  const bool isOne = py::isinstance<py::array>(value) || py::len(value) == 0 ||
                     PyNumber_Check(py::object(value[py::int_(0)][py::int_(0)]).ptr());
  if (isOne) return {toPoints(value, "boundary")};
  std::vector<std::vector<PNT_3D>> rings;
  for (const py::handle ring : value) rings.push_back(toPoints(ring, "boundary"));
  return rings;
}

Entity addHatch(const Space& space, const py::object& where, const std::string& pattern,
                double scale, double angle, const Layer& layer, const Color& color) {
  CData& data = space.drawing().data();
  const HATCH_TYPE* type = getHatch(toText(pattern));
  if (zim::equalsIgnoreCase(toText(pattern), u"SOLID")) type = &data.getHatchTypeTable().solid();
  if (!type) throw UnknownName("there is no pattern '" + pattern + "'; 'vek0 hatches' lists them");
  const std::vector<PNT_3D> boundary = joinHatchRings(toRings(where));
  if (boundary.size() < 3) throw std::invalid_argument("the boundary encloses nothing");
  if (space.block()) throw std::invalid_argument("hatches are added to model space");
  positive(scale, "scale");
  finite(angle, "angle");
  const Looks looks(space.drawing(), layer, color);
  CEntHatch* made = createEntHatch(data, looks.layer, looks.ltype, looks.color, *type, scale,
                                   angle * kDegree, boundary, 0);
  if (!made) throw std::invalid_argument("the hatch would have too many lines; raise the scale");
  return added(space, made);
}

}  // namespace

void bindAdding(SpaceClass& type) {
  using namespace py::literals;
  const py::kw_only only;
  const auto layer = "layer"_a = py::none(), color = "color"_a = py::none();
  const py::tuple origin = py::make_tuple(0.0, 0.0);
  type.def(
          "add_point",
          [](const Space& space, const py::object& point, const Layer& on, const Color& in) {
            const Looks looks(space.drawing(), on, in);
            return added(space, createEntPnt(space.drawing().data(), looks.layer, looks.ltype,
                                             looks.color, toPoint(point, "point"), 0));
          },
          "point"_a, only, layer, color)
      .def(
          "add_line",
          [](const Space& space, const py::object& start, const py::object& end, const Layer& on,
             const Color& in) {
            const LINE_3D line(toPoint(start, "start"), toPoint(end, "end"));
            const Looks looks(space.drawing(), on, in);
            return added(space, createEntLine(space.drawing().data(), looks.layer, looks.ltype,
                                              looks.color, line, 0));
          },
          "start"_a, "end"_a, only, layer, color)
      .def(
          "add_circle",
          [](const Space& space, const py::object& center, double radius, const Layer& on,
             const Color& in) {
            const PNT_3D p = toPoint(center, "center");
            const CIRCLE_3D circle(p.x, p.y, p.z, positive(radius, "radius"));
            const Looks looks(space.drawing(), on, in);
            return added(space, createEntCircle(space.drawing().data(), looks.layer, looks.ltype,
                                                looks.color, circle, 0));
          },
          "center"_a, "radius"_a, only, layer, color)
      .def(
          "add_arc",
          [](const Space& space, const py::object& center, double radius, double start, double end,
             const Layer& on, const Color& in) {
            const PNT_3D p = toPoint(center, "center");
            const ARC_3D arc(p.x, p.y, p.z, positive(radius, "radius"),
                             finite(start, "start_angle") * kDegree,
                             finite(end, "end_angle") * kDegree);
            const Looks looks(space.drawing(), on, in);
            return added(space, createEntArc(space.drawing().data(), looks.layer, looks.ltype,
                                             looks.color, arc, 0));
          },
          "center"_a, "radius"_a, "start_angle"_a, "end_angle"_a, only, layer, color)
      .def("add_polyline", &addPolyline, "points"_a, "bulges"_a = py::none(),
           "widths"_a = py::none(), "closed"_a = false, only, layer, color)
      .def("add_text", &addText, "text"_a, "point"_a = origin, "height"_a = 2.5, "rotation"_a = 0.0,
           "style"_a = py::none(), only, layer, color)
      .def("add_insert", &addInsert, "block"_a, "point"_a = origin, "scale"_a = 1.0,
           "rotation"_a = 0.0, "attributes"_a = py::dict(), only, layer, color)
      .def("add_hatch", &addHatch, "boundary"_a, "pattern"_a = "SOLID", "scale"_a = 1.0,
           "angle"_a = 0.0, only, layer, color);
}

}  // namespace vek0::python
