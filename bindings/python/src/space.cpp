#include "space.h"

#include <algorithm>

#include "entity.h"

#include "vek0host/editsteps.h"
#include "vek0host/entitycounts.h"
#include "vek0host/selection.h"

namespace vek0::python {

CBlock* Space::block() const {
  CData& data = m_drawing->data();
  if (m_sort == Sort::Model) return nullptr;
  if (m_sort == Sort::Layout) {
    if (CLayout* layout = data.getLayouts().get(toText(m_name))) return &layout->getBlock();
    throw Fault("deleted", "there is no layout '" + m_name + "' any more");
  }
  CBlock* block = data.getBlockTable().get(toText(m_name));
  if (!block || block->isSheet())
    throw Fault("deleted", "there is no block '" + m_name + "' any more");
  return block;
}

std::size_t Space::size() const {
  const CBlock* in = block();
  return in ? in->size() : m_drawing->data().getEntTable().getEntityTbl().size();
}

std::vector<CEnt*> Space::entities() const {
  CBlock* in = block();
  if (!in) {
    const auto& all = m_drawing->data().getEntTable().getEntityTbl();
    return {all.begin(), all.end()};
  }
  std::vector<CEnt*> ents;
  ents.reserve(in->size());
  for (unsigned i = 0; i < in->size(); ++i) ents.push_back((*in)[i]);
  return ents;
}

RECT_3D Space::bounds() const {
  if (const CBlock* in = block()) return in->getBdry();
  return m_drawing->data().getEntTable().getBdry();
}

CEnt& Space::add(std::unique_ptr<CEnt> ent) const {
  if (!ent) throw std::bad_alloc();
  CBlock* in = block();
  CEnt& added = *ent;
  m_drawing->change("add", [&] {
    CUndoStack& undo = m_drawing->undo();
    if (!(in ? undo.add(*in, ent.get()) : undo.add(ent.get())))
      throw std::invalid_argument("the block would show itself");
    ent.release();
  });
  return added;
}

Looks::Looks(Drawing& drawing, const std::optional<std::string>& layerName,
             std::optional<int> number)
    : layer(layerName ? &layerOf(drawing.data(), *layerName) : getCurLayer(drawing.data())),
      ltype(getCurLtype(drawing.data())),
      color(number ? toColor(*number) : getCurColor(drawing.data())) {}

namespace {

// The entities of some kinds; without kinds, all.
std::vector<Entity> ofKinds(const Space& space, const std::vector<std::string>& kinds) {
  std::vector<CEnt*> ents = space.entities();
  if (!kinds.empty())
    std::erase_if(ents, [&](CEnt* ent) {
      return std::find(kinds.begin(), kinds.end(), kindOf(*ent)) == kinds.end();
    });
  return space.drawing().refer(ents);
}

PNT_3D basePoint(const Space& space) {
  const CBlock* block = space.block();
  return block ? block->getPnt() : PNT_3D(0, 0, 0);
}

}  // namespace

void bindSpace(SpaceClass& type) {
  type.def("_entities", &ofKinds, py::arg("kinds") = std::vector<std::string>())
      .def_property_readonly("name", &Space::name, "Name of the layout or block; 'Model'.")
      .def_property_readonly("is_model", &Space::isModel, "Whether it is model space.")
      .def_property_readonly(
          "bounds", [](const Space& space) { return fromBox(space.bounds()); },
          "The lower and the upper corner of its box; None if it shows nothing.")
      .def_property_readonly(
          "base_point", [](const Space& space) { return fromPoint(basePoint(space)); },
          "The point of a block that inserts place.")
      .def("__len__", &Space::size)
      .def("__eq__",
           [](const Space& space, const py::object& other) {
             return py::isinstance<Space>(other) && space == other.cast<const Space&>();
           })
      .def("__hash__", [](const Space& space) { return std::hash<std::string>()(space.name()); })
      .def("__repr__", [](const Space& space) {
        if (space.drawing().isClosed()) return std::string("<space of a closed drawing>");
        return "<" + std::string(space.isModel() ? "model space" : "space '" + space.name() + "'") +
               ": " + host::countedEntities(space.size()) + ">";
      });
  bindAdding(type);
  bindReading(type);
  bindBulkAdding(type);
}

}  // namespace vek0::python
