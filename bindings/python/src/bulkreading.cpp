// Coordinates of many entities as arrays.
#include <unordered_map>

#include "space.h"
#include "vek0host/entitycounts.h"
#include "vek0host/entitylist.h"

namespace vek0::python {
namespace {

template <class T>
py::array_t<T> toArray(const std::vector<T>& values, std::vector<py::ssize_t> shape) {
  py::array_t<T> array(std::move(shape));
  std::copy(values.begin(), values.end(), array.mutable_data());
  return array;
}

template <class T>
py::array_t<T> toArray(const std::vector<T>& values) {
  return toArray(values, {static_cast<py::ssize_t>(values.size())});
}

// Collects what all kinds have.
class Columns {
 public:
  explicit Columns(const Space& space) : m_space(space) {}

  // Calls `read` with each entity of the class, which came from one of the records.
  template <class Ent, class Read>
  void each(std::initializer_list<EntRecord> records, const Read& read) {
    for (CEnt* ent : m_space.entities()) {
      if (ent->getType() != Ent::kType) continue;
      if (std::find(records.begin(), records.end(), ent->getRecord()) == records.end()) continue;
      m_handles.push_back(static_cast<std::uint64_t>(ent->GetHandle()));
      m_layers.push_back(indexOf(ent->getLayer()));
      read(static_cast<const Ent&>(*ent));
    }
  }

  void add(const PNT_3D& p) { m_values.insert(m_values.end(), {p.x, p.y, p.z}); }

  py::ssize_t size() const { return static_cast<py::ssize_t>(m_handles.size()); }
  /// What was added, as points in an array of these dimensions before the last.
  py::array_t<double> points(std::vector<py::ssize_t> shape) const {
    shape.push_back(3);
    return toArray(m_values, std::move(shape));
  }

  py::dict common() const {
    py::dict columns;
    columns["handles"] = toArray(m_handles);
    columns["layers"] = toArray(m_layers);
    columns["layer_names"] = m_names;
    return columns;
  }

 private:
  std::int32_t indexOf(const CLayer* layer) {
    const auto [at, isNew] =
        m_indices.try_emplace(layer, static_cast<std::int32_t>(m_names.size()));
    if (isNew) m_names.push_back(layer ? layer->getFullName().toUtf8() : "0");
    return at->second;
  }

  const Space& m_space;
  std::vector<std::uint64_t> m_handles;
  std::vector<std::int32_t> m_layers;
  std::vector<double> m_values;
  std::vector<std::string> m_names;
  std::unordered_map<const CLayer*, std::int32_t> m_indices;
};

py::dict lines(const Space& space) {
  Columns columns(space);
  columns.each<CEntLine>({EntRecord::Own}, [&](const CEntLine& ent) {
    columns.add(ent.getLine().p1);
    columns.add(ent.getLine().p2);
  });
  py::dict result = columns.common();
  result["points"] = columns.points({columns.size(), 2});
  return result;
}

py::dict points(const Space& space) {
  Columns columns(space);
  columns.each<CEntPnt>({EntRecord::Own}, [&](const CEntPnt& ent) { columns.add(ent.getPnt()); });
  py::dict result = columns.common();
  result["points"] = columns.points({columns.size()});
  return result;
}

py::dict circles(const Space& space) {
  Columns columns(space);
  std::vector<double> radii;
  columns.each<CEntCircle>({EntRecord::Own, EntRecord::Circle}, [&](const CEntCircle& ent) {
    columns.add(ent.getCircle());
    radii.push_back(ent.getCircle().radius);
  });
  py::dict result = columns.common();
  result["centers"] = columns.points({columns.size()});
  result["radii"] = toArray(radii);
  return result;
}

py::dict arcs(const Space& space) {
  Columns columns(space);
  std::vector<double> radii, starts, ends;
  columns.each<CEntArc>({EntRecord::Own, EntRecord::Arc}, [&](const CEntArc& ent) {
    const ARC_3D& arc = ent.getArc();
    columns.add(arc);
    radii.push_back(arc.radius);
    starts.push_back(arc.startAngle / kDegree);
    ends.push_back(arc.endAngle / kDegree);
  });
  py::dict result = columns.common();
  result["centers"] = columns.points({columns.size()});
  result["radii"] = toArray(radii);
  result["start_angles"] = toArray(starts);
  result["end_angles"] = toArray(ends);
  return result;
}

py::dict polylines(const Space& space) {
  Columns columns(space);
  std::vector<double> bulges;
  std::vector<std::int64_t> offsets = {0};
  std::vector<std::uint8_t> closed;
  const auto read = [&](const CEntPolyline& ent) {
    ent.forEachBulged([&](const PNT_3D& p, double, double, double bulge, Handle) {
      columns.add(p);
      bulges.push_back(bulge);
    });
    offsets.push_back(static_cast<std::int64_t>(bulges.size()));
    closed.push_back(ent.isClosed());
  };
  columns.each<CEntPolyline>({EntRecord::Own, EntRecord::Polyline, EntRecord::Lwpolyline}, read);
  py::dict result = columns.common();
  result["points"] = columns.points({static_cast<py::ssize_t>(bulges.size())});
  result["bulges"] = toArray(bulges);
  result["offsets"] = toArray(offsets);
  result["closed"] = py::array(toArray(closed)).attr("astype")(py::dtype::of<bool>());
  return result;
}

py::dict texts(const Space& space) {
  Columns columns(space);
  py::list strings;
  std::vector<double> heights, rotations;
  columns.each<CEntText>({EntRecord::Own, EntRecord::MText}, [&](const CEntText& ent) {
    columns.add(ent.getText());
    strings.append(host::textOf(ent).value_or(""));
    heights.push_back(ent.getText().getContext().getHeight());
    rotations.push_back(ent.getText().getContext().getRotate() / kDegree);
  });
  py::dict result = columns.common();
  result["texts"] = strings;
  result["points"] = columns.points({columns.size()});
  result["heights"] = toArray(heights);
  result["rotations"] = toArray(rotations);
  return result;
}

py::dict inserts(const Space& space) {
  Columns columns(space);
  py::list blocks;
  std::vector<double> scales, rotations;
  columns.each<CEntInsert>({EntRecord::Own}, [&](const CEntInsert& ent) {
    columns.add(ent.getPnt());
    blocks.append(ent.getBlock() ? py::object(fromText(ent.getBlock()->getName())) : py::none());
    double x, y, z;
    ent.getScale(x, y, z);
    scales.insert(scales.end(), {x, y, z});
    rotations.push_back(ent.getRotate() / kDegree);
  });
  py::dict result = columns.common();
  result["blocks"] = blocks;
  result["points"] = columns.points({columns.size()});
  result["scales"] = toArray(scales, {columns.size(), 3});
  result["rotations"] = toArray(rotations);
  return result;
}

}  // namespace

void bindReading(SpaceClass& type) {
  type.def("_lines", &lines)
      .def("_points", &points)
      .def("_circles", &circles)
      .def("_arcs", &arcs)
      .def("_polylines", &polylines)
      .def("_texts", &texts)
      .def("_inserts", &inserts);
}

}  // namespace vek0::python
