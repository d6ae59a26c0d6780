// Reading the common properties of entities in loops: descriptors and an iterator in Python's own
// C interface, which take a fraction of the time of calls through pybind11.
#include <algorithm>
#include <array>

#include "entity.h"
#include "space.h"

namespace vek0::python {
namespace {

EntityRef* refOf(PyObject* object) {
  auto* instance = reinterpret_cast<py::detail::instance*>(object);
  if (!instance->simple_layout) return nullptr;
  return static_cast<EntityRef*>(instance->simple_value_holder[0]);
}

// --- Properties

PyObject* tupleOf(const PNT_3D& p) {
  PyObject* tuple = PyTuple_New(3);
  if (!tuple) return nullptr;
  Py_ssize_t at = 0;
  for (const double number : {p.x, p.y, p.z}) {
    PyObject* value = PyFloat_FromDouble(number);
    if (!value) return Py_DECREF(tuple), nullptr;
    PyTuple_SET_ITEM(tuple, at++, value);
  }
  // Numbers form no cycles, so the garbage collector need not look at each of a million tuples.
  PyObject_GC_UnTrack(tuple);
  return tuple;
}

// Neighbors share their layers, so that their names are not converted each time.
PyObject* layerOf(const EntityRef& ref) {
  struct Known {
    std::u16string name;
    PyObject* text = nullptr;  // never released: the interpreter may end before
  };
  static std::array<Known, 64> cache;
  const CLayer* layer = ref.get().getLayer();
  if (!layer) return nullptr;
  const std::u16string_view name = layer->getFullName().view();
  constexpr std::size_t kObject = 64;  // about the size of a layer
  Known& known = cache[reinterpret_cast<std::uintptr_t>(layer) / kObject % cache.size()];
  if (!known.text || known.name != name) {
    py::object text = py::str(layer->getFullName().toUtf8());
    known.name = name;
    Py_XDECREF(known.text);
    known.text = text.release().ptr();
  }
  Py_INCREF(known.text);
  return known.text;
}

PyObject* colorOf(const EntityRef& ref) { return PyLong_FromLong(ref.get().getColor()); }

template <bool isStart>
PyObject* endOf(const EntityRef& ref) {
  CEnt& ent = ref.get();
  if (ent.getType() != CEntLine::kType) return nullptr;
  const LINE_3D& line = static_cast<CEntLine&>(ent).getLine();
  return tupleOf(isStart ? line.p1 : line.p2);
}

PyObject* centerOf(const EntityRef& ref) {
  CEnt& ent = ref.get();
  if (ent.getType() != CEntCircle::kType) return nullptr;
  return tupleOf(static_cast<CEntCircle&>(ent).getCircle());
}

PyObject* radiusOf(const EntityRef& ref) {
  CEnt& ent = ref.get();
  if (ent.getType() != CEntCircle::kType) return nullptr;
  return PyFloat_FromDouble(static_cast<CEntCircle&>(ent).getCircle().radius);
}

struct QuickProperty {
  const char* name;
  PyObject* (*read)(const EntityRef& ref);  // null to leave it to `full`
  PyObject* full = nullptr;                 // pybind11's property: writes, and raises errors
  PyGetSetDef definition{};
};

PyObject* get(PyObject* self, void* closure) {
  const auto& property = *static_cast<QuickProperty*>(closure);
  try {
    const EntityRef* ref = refOf(self);
    if (PyObject* value = ref ? property.read(*ref) : nullptr) return value;
  } catch (const std::exception&) {
    // The full property throws the same, and knows how to raise it.
  }
  PyErr_Clear();
  return Py_TYPE(property.full)->tp_descr_get(property.full, self, nullptr);
}

int set(PyObject* self, PyObject* value, void* closure) {
  PyObject* full = static_cast<QuickProperty*>(closure)->full;
  return Py_TYPE(full)->tp_descr_set(full, self, value);
}

void quicken(const EntityClass& type, QuickProperty& property) {
  property.full = py::object(type.attr(property.name)).release().ptr();
  const py::object doc = py::handle(property.full).attr("__doc__");
  property.definition = {property.name, &get, &set, PyUnicode_AsUTF8(doc.ptr()), &property};
  auto* python = reinterpret_cast<PyTypeObject*>(type.ptr());
  type.attr(property.name) =
      py::reinterpret_steal<py::object>(PyDescr_NewGetSet(python, &property.definition));
}

// --- Iteration

// An object that nobody else holds is used again, two entities later: the loop still holds the last
// one when it asks for the next.
struct Iterator {
  PyObject_HEAD EntityCursor* cursor;
  PyObject* objects[2];
  int turn;
};

void stop(Iterator& it) {
  delete std::exchange(it.cursor, nullptr);
  Py_CLEAR(it.objects[0]);
  Py_CLEAR(it.objects[1]);
}

bool isUnused(PyObject* object) {
  return Py_REFCNT(object) == 1 && !reinterpret_cast<py::detail::instance*>(object)->weakrefs;
}

PyObject* nextObject(Iterator& it) {
  CEnt* ent = nullptr;
  const Entity settled = it.cursor->next(ent);
  if (settled) return py::cast(settled).release().ptr();
  if (!ent) return stop(it), nullptr;
  PyObject*& object = it.objects[it.turn];
  it.turn = 1 - it.turn;
  if (!object || !isUnused(object) || !it.cursor->reuse(*refOf(object), *ent)) {
    if (object) it.cursor->keep(*refOf(object));
    PyObject* made = py::cast(it.cursor->drawing().refer(*ent)).release().ptr();
    Py_XDECREF(std::exchange(object, made));
  }
  Py_INCREF(object);
  return object;
}

PyObject* next(PyObject* self) {
  auto& it = *reinterpret_cast<Iterator*>(self);
  if (!it.cursor) return nullptr;
  try {
    return nextObject(it);
  } catch (py::error_already_set& error) {
    error.restore();
  } catch (const Fault&) {
    raiseAsPython(std::current_exception());
  } catch (const std::exception&) {
    PyErr_NoMemory();  // nothing else can fail
  }
  return nullptr;
}

void destroy(PyObject* self) {
  stop(*reinterpret_cast<Iterator*>(self));
  PyTypeObject* type = Py_TYPE(self);
  type->tp_free(self);
  Py_DECREF(type);
}

PyTypeObject* iteratorType() {
  static PyType_Slot slots[] = {{Py_tp_dealloc, reinterpret_cast<void*>(&destroy)},
                                {Py_tp_iter, reinterpret_cast<void*>(&PyObject_SelfIter)},
                                {Py_tp_iternext, reinterpret_cast<void*>(&next)},
                                {0, nullptr}};
  static PyType_Spec spec = {"vek0._core.EntityIterator", sizeof(Iterator), 0,
                             Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION, slots};
  static auto* const type = reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&spec));
  if (!type) throw py::error_already_set();
  return type;
}

py::object iterate(const Space& space) {
  auto cursor = std::make_unique<EntityCursor>(space.shared(), space.entities());
  auto* it = PyObject_New(Iterator, iteratorType());
  if (!it) throw py::error_already_set();
  it->cursor = cursor.release();
  it->objects[0] = it->objects[1] = nullptr;
  it->turn = 0;
  return py::reinterpret_steal<py::object>(reinterpret_cast<PyObject*>(it));
}

}  // namespace

void bindQuickReading(EntityClass& entity, SpaceClass& space) {
  static QuickProperty properties[] = {
      {"layer", &layerOf},    {"color", &colorOf},   {"start", &endOf<true>},
      {"end", &endOf<false>}, {"center", &centerOf}, {"radius", &radiusOf},
  };
  for (QuickProperty& each : properties) quicken(entity, each);
  space.def("__iter__", &iterate);
}

// --- EntityCursor

EntityCursor::EntityCursor(std::shared_ptr<Drawing> drawing, std::vector<CEnt*> ents)
    : m_drawing(std::move(drawing)), m_ents(std::move(ents)) {
  const std::lock_guard lock(m_drawing->m_refsLock);
  m_drawing->m_cursors.push_back(this);
}

EntityCursor::~EntityCursor() {
  const std::lock_guard lock(m_drawing->m_refsLock);
  std::erase(m_drawing->m_cursors, this);
  keepAll();
}

Entity EntityCursor::next(CEnt*& ent) {
  m_drawing->data();
  if (m_next < m_settled.size()) return std::move(m_settled[m_next++]);
  ent = m_next < m_ents.size() ? m_ents[m_next++] : nullptr;
  return {};
}

bool EntityCursor::reuse(EntityRef& ref, CEnt& ent) {
  const std::lock_guard lock(m_drawing->m_refsLock);
  auto& refs = m_drawing->m_refs;
  if (ref.weak_from_this().use_count() != 1 || refs.contains(&ent)) return false;
  for (const EntityCursor* other : m_drawing->m_cursors)
    for (const EntityRef* reused : other->m_reused)
      if (reused && reused->m_ent == &ent) return false;
  if (std::find(m_reused.begin(), m_reused.end(), &ref) == m_reused.end()) {
    const auto free = std::find(m_reused.begin(), m_reused.end(), nullptr);
    const auto at = refs.find(ref.m_ent);
    if (free == m_reused.end() || at == refs.end() || at->second != &ref) return false;
    refs.erase(at);
    *free = &ref;
  }
  ref.m_ent = &ent;
  ref.m_handle = ent.GetHandle();
  ref.m_isAlive = true;
  return true;
}

void EntityCursor::keep(EntityRef& ref) {
  const std::lock_guard lock(m_drawing->m_refsLock);
  const auto at = std::find(m_reused.begin(), m_reused.end(), &ref);
  if (at == m_reused.end()) return;
  m_drawing->m_refs[ref.m_ent] = &ref;
  *at = nullptr;
}

void EntityCursor::keepAll() {
  for (EntityRef* ref : m_reused)
    if (ref) keep(*ref);
}

void EntityCursor::settle() {
  keepAll();
  m_ents.erase(m_ents.begin(), m_ents.begin() + static_cast<std::ptrdiff_t>(m_next));
  m_settled = m_drawing->refer(m_ents);
  m_ents.clear();
  m_next = 0;
}

}  // namespace vek0::python
