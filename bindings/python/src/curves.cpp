// Fields of points, lines, circles, arcs and polylines.
#include "entity.h"

namespace vek0::python {
namespace {

using Points = std::vector<PNT_3D>;

py::object center(const EntityRef& ref) {
  if (ref.get().getType() == CEntArc::kType) return fromPoint(as<CEntArc>(ref, "center").getArc());
  return fromPoint(as<CEntCircle>(ref, "center").getCircle());
}

template <class Work>
void setRound(EntityRef& ref, const char* field, const Work& work) {
  if (ref.get().getType() == CEntArc::kType) {
    auto& ent = static_cast<CEntArc&>(ref.get());
    ARC_3D arc = ent.getArc();
    work(arc);
    reshape(ref, field, [&] { ent.setArc(arc); });
  } else {
    auto& ent = as<CEntCircle>(ref, field);
    CIRCLE_3D circle = ent.getCircle();
    work(circle);
    reshape(ref, field, [&] { ent.setCircle(circle); });
  }
}

double radius(const EntityRef& ref) {
  if (ref.get().getType() == CEntArc::kType) return as<CEntArc>(ref, "radius").getArc().radius;
  return as<CEntCircle>(ref, "radius").getCircle().radius;
}

void setAngle(EntityRef& ref, const char* field, double ARC_3D::*angle, double degrees) {
  auto& ent = as<CEntArc>(ref, field);
  ARC_3D arc = ent.getArc();
  arc.*angle = ARC_3D::normal(finite(degrees, field) * kDegree);
  reshape(ref, field, [&] { ent.setArc(arc); });
}

py::object endOf(const EntityRef& ref, bool isStart) {
  if (ref.get().getType() == CEntArc::kType) {
    PNT_3D start, end;
    as<CEntArc>(ref, "start").getArc().end_points(start, end);
    return fromPoint(isStart ? start : end);
  }
  const LINE_3D& line = as<CEntLine>(ref, isStart ? "start" : "end").getLine();
  return fromPoint(isStart ? line.p1 : line.p2);
}

void setEnd(EntityRef& ref, bool isStart, const py::object& value) {
  const char* field = isStart ? "start" : "end";
  auto& ent = as<CEntLine>(ref, field);
  LINE_3D line = ent.getLine();
  (isStart ? line.p1 : line.p2) = toPoint(value, field);
  reshape(ref, field, [&] { ent.setLine(line); });
}

std::vector<BULGED_VERTEX> vertexesOf(const CEntPolyline& polyline) {
  std::vector<BULGED_VERTEX> vertexes;
  polyline.forEachBulged(
      [&](const PNT_3D& p, double start, double end, double bulge, Handle handle) {
        vertexes.push_back({p.x, p.y, p.z, start, end, bulge, handle});
      });
  return vertexes;
}

CEntPolyline& plain(EntityRef& ref, const char* field) {
  auto& polyline = as<CEntPolyline>(ref, field);
  if (polyline.isCurve())
    throw std::invalid_argument(std::string(field) + " of a fitted curve cannot be changed");
  return polyline;
}

void setVertexes(EntityRef& ref, const char* field, const std::vector<BULGED_VERTEX>& vertexes) {
  CEntPolyline& polyline = plain(ref, field);
  CData& data = ref.drawing().data();
  reshape(ref, field, [&] {
    polyline.setBulgedVertexes(data.getHandleGestor(), data.getEntFactory(), vertexes.data(),
                               vertexes.size());
  });
}

// One value for each vertex, which `store` puts in place.
template <class Value, class Store>
void setEach(EntityRef& ref, const char* field, const std::vector<Value>& values,
             const Store& store) {
  auto vertexes = vertexesOf(plain(ref, field));
  if (values.size() != vertexes.size())
    throw std::invalid_argument(std::string(field) + " must hold " +
                                std::to_string(vertexes.size()) + " values, one for each point");
  for (std::size_t i = 0; i < values.size(); ++i) store(vertexes[i], values[i]);
  setVertexes(ref, field, vertexes);
}

void setPoints(EntityRef& ref, const py::object& value) {
  auto vertexes = vertexesOf(plain(ref, "points"));
  const Points points = toPoints(value, "points");
  if (points.size() < 2) throw std::invalid_argument("points must hold two points at least");
  vertexes.resize(points.size(), BULGED_VERTEX{});
  for (std::size_t i = 0; i < points.size(); ++i) {
    vertexes[i].x = points[i].x;
    vertexes[i].y = points[i].y;
    vertexes[i].z = points[i].z;
  }
  setVertexes(ref, "points", vertexes);
}

void setClosed(EntityRef& ref, bool isClosed) {
  CEntPolyline& polyline = plain(ref, "closed");
  CData& data = ref.drawing().data();
  reshape(ref, "closed", [&] {
    if (isClosed)
      polyline.close(data.getHandleGestor(), data.getEntFactory(), false);
    else
      polyline.open(data.getHandleGestor(), data.getEntFactory(), false);
  });
}

void bindPolylines(EntityClass& type) {
  type.def_property(
          "points",
          [](const EntityRef& ref) {
            py::list points;
            for (const BULGED_VERTEX& v : vertexesOf(as<CEntPolyline>(ref, "points")))
              points.append(py::make_tuple(v.x, v.y, v.z));
            return points;
          },
          &setPoints, "Points of a polyline.")
      .def_property(
          "bulges",
          [](const EntityRef& ref) {
            std::vector<double> bulges;
            for (const BULGED_VERTEX& v : vertexesOf(as<CEntPolyline>(ref, "bulges")))
              bulges.push_back(v.bulge);
            return bulges;
          },
          [](EntityRef& ref, const std::vector<double>& values) {
            setEach(ref, "bulges", values, [](BULGED_VERTEX& vertex, double value) {
              vertex.bulge = finite(value, "bulges");
            });
          },
          "Bulges of the segments that begin at the points; 0 is straight.")
      .def_property(
          "widths",
          [](const EntityRef& ref) {
            std::vector<std::pair<double, double>> widths;
            for (const BULGED_VERTEX& v : vertexesOf(as<CEntPolyline>(ref, "widths")))
              widths.emplace_back(v.widthStart, v.widthEnd);
            return widths;
          },
          [](EntityRef& ref, const std::vector<std::pair<double, double>>& values) {
            setEach(ref, "widths", values, [](BULGED_VERTEX& vertex, const auto& value) {
              vertex.widthStart = finite(value.first, "widths");
              vertex.widthEnd = finite(value.second, "widths");
            });
          },
          "Widths of the segments that begin at the points: (start, end).")
      .def_property(
          "closed", [](const EntityRef& ref) { return as<CEntPolyline>(ref, "closed").isClosed(); },
          &setClosed, "Whether the polyline returns to its first point.");
}

}  // namespace

void bindCurves(EntityClass& type) {
  type.def_property(
          "start", [](const EntityRef& ref) { return endOf(ref, true); },
          [](EntityRef& ref, const py::object& value) { setEnd(ref, true, value); },
          "Start point of a line or an arc.")
      .def_property(
          "end", [](const EntityRef& ref) { return endOf(ref, false); },
          [](EntityRef& ref, const py::object& value) { setEnd(ref, false, value); },
          "End point of a line or an arc.")
      .def_property(
          "center", &center,
          [](EntityRef& ref, const py::object& value) {
            const PNT_3D p = toPoint(value, "center");
            setRound(ref, "center", [&](CIRCLE_3D& circle) { circle.PNT_3D::set(p.x, p.y, p.z); });
          },
          "Center of a circle or an arc.")
      .def_property(
          "radius", &radius,
          [](EntityRef& ref, double value) {
            positive(value, "radius");
            setRound(ref, "radius", [&](CIRCLE_3D& circle) { circle.radius = value; });
          },
          "Radius of a circle or an arc.")
      .def_property(
          "start_angle",
          [](const EntityRef& ref) {
            return as<CEntArc>(ref, "start_angle").getArc().startAngle / kDegree;
          },
          [](EntityRef& ref, double value) {
            setAngle(ref, "start_angle", &ARC_3D::startAngle, value);
          },
          "Angle where an arc begins, in degrees; it runs counterclockwise.")
      .def_property(
          "end_angle",
          [](const EntityRef& ref) {
            return as<CEntArc>(ref, "end_angle").getArc().endAngle / kDegree;
          },
          [](EntityRef& ref, double value) {
            setAngle(ref, "end_angle", &ARC_3D::endAngle, value);
          },
          "Angle where an arc ends, in degrees.");
  bindPolylines(type);
}

}  // namespace vek0::python
