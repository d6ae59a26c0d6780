// Layers, linetypes, text styles, blocks and layouts.
#include "tables.h"

#include <cmath>

#include "space.h"
#include "vek0host/layerchoice.h"

namespace vek0::python {
namespace {

CNamedItem* itemAt(CData& data, const CLayer* item) {
  if (item == &data.getLayer0()) return &data.getLayer0();
  for (CData::CLayerIterator at(data, true); *at; ++at)
    if (*at == item) return *at;
  return nullptr;
}
CNamedItem* itemAt(CData& data, const CLtype* item) {
  for (CData::CLtypeIterator at(data, true, true); *at; ++at)
    if (*at == item) return *at;
  return nullptr;
}
CNamedItem* itemAt(CData& data, const CStyle* item) {
  for (CData::CStyleIterator at(data, true); *at; ++at)
    if (*at == item) return *at;
  return nullptr;
}

const char* wordFor(const CLayer*) { return "layer"; }
const char* wordFor(const CLtype*) { return "linetype"; }
const char* wordFor(const CStyle*) { return "text style"; }

zim::WString nameOf(const CLayer& layer) { return layer.getFullName(); }
zim::WString nameOf(const CLtype& ltype) { return ltype.getFullName(); }
zim::WString nameOf(const CStyle& style) { return style.getName(); }

CLayer* named(CData& data, const zim::WString& name, const CLayer*) { return getLayer(data, name); }
CStyle* named(CData& data, const zim::WString& name, const CStyle*) { return getStyle(data, name); }
CLtype* named(CData& data, const zim::WString& name, const CLtype*) {
  for (CData::CLtypeIterator at(data, true, true); *at; ++at)
    if (zim::equalsIgnoreCase((*at)->getFullName(), name)) return *at;
  return nullptr;
}

bool isFixed(const CLayer& layer) { return layer.is0() || layer.isXRef(); }
bool isFixed(const CLtype& ltype) {
  return ltype.isContinuous() || ltype.isByLayer() || ltype.isByBlock() || ltype.isXRef();
}
bool isFixed(const CStyle&) { return false; }

}  // namespace

template <class Item>
Item& ItemRef<Item>::get() const {
  CData& data = drawing->data();
  // Most look-ups find it by its name.
  if (named(data, toText(name), item) == item) return *item;
  if (itemAt(data, item)) return *item;
  throw Fault("deleted", std::string("the ") + wordFor(item) + " '" + name +
                             "' is not in the drawing any more; undo may bring it back");
}

namespace {

template <class Item>
ItemRef<Item> refer(Drawing& drawing, Item& item) {
  return {drawing.shared_from_this(), &item, nameOf(item).toUtf8()};
}

// Changes an item of the drawing itself in a step.
template <class Item, class Work>
void change(const ItemRef<Item>& ref, const char* what, const Work& work) {
  Item& item = ref.get();
  ref.drawing->change(std::string("set ") + what, [&] {
    if (!ref.drawing->undo().keep(item)) throw std::bad_alloc();
    work(item);
    ref.drawing->data().getEntTable().invalidateBdry();
  });
}

template <class Item>
void rename(ItemRef<Item>& ref, const std::string& name) {
  Item& item = ref.get();
  const zim::WString fresh = toText(name);
  if (isFixed(item)) throw std::invalid_argument("'" + ref.name + "' keeps its name");
  const Item* other = named(ref.drawing->data(), fresh, &item);
  if (fresh.empty() || (other && other != &item))
    throw std::invalid_argument("'" + name + "' is not a free name");
  change(ref, "name", [&](Item& each) { each.setName(fresh); });
  ref.name = name;
}

template <class Item>
void remove(const ItemRef<Item>& ref) {
  Item& item = ref.get();
  ref.drawing->change("delete", [&] {
    if (!ref.drawing->undo().remove(&item))
      throw Fault("in use", std::string("the ") + wordFor(&item) + " '" + ref.name +
                                "' is used and cannot be deleted");
  });
}

// Adds an item that the caller has made.
template <class Item>
ItemRef<Item> added(Drawing& drawing, Item* made) {
  if (!made) throw std::bad_alloc();
  std::unique_ptr<Item> owned(made);
  drawing.change("add", [&] {
    if (!drawing.undo().add(made)) throw std::bad_alloc();
    owned.release();
  });
  return refer(drawing, *made);
}

void checkFree(const std::string& name, bool isTaken) {
  if (name.empty() || name.find('|') != std::string::npos)
    throw std::invalid_argument("'" + name + "' is not a name");
  if (isTaken) throw std::invalid_argument("there is '" + name + "' already");
}

short layerColor(int color) {
  if (color < 1 || color > 255)
    throw std::invalid_argument("the color of a layer is a number from 1 to 255");
  return static_cast<short>(color);
}

LayerRef addLayer(Drawing& drawing, const std::string& name, int color) {
  CData& data = drawing.data();
  const short number = layerColor(color);
  checkFree(name, getLayer(data, toText(name)) != nullptr);
  return added(drawing,
               data.getLayerFactory().create(toText(name), &data.getLtypeContinuous(), number, 0));
}

LtypeRef addLtype(Drawing& drawing, const std::string& name, std::vector<double> pattern,
                  const std::string& description) {
  CData& data = drawing.data();
  checkFree(name, named(data, toText(name), static_cast<CLtype*>(nullptr)) != nullptr);
  double length = 0;
  for (const double dash : pattern) length += std::fabs(finite(dash, "pattern"));
  if (!pattern.empty() && length == 0)
    throw std::invalid_argument("pattern must hold dashes (> 0), gaps (< 0) or dots (0)");
  return added(drawing,
               data.getLtypeFactory().create(toText(name), toText(description), pattern.data(),
                                             static_cast<long>(pattern.size()), 0));
}

StyleRef addStyle(Drawing& drawing, const std::string& name, const std::string& font) {
  CData& data = drawing.data();
  checkFree(name, getStyle(data, toText(name)) != nullptr);
  if (font.empty()) throw std::invalid_argument("font must be a name such as 'txt' or 'Arial'");
  return added(drawing, data.getStyleFactory().create(toText(name), data.needFont(toText(font)), 0,
                                                      1, 0, 2.5, 0));
}

Space addBlock(Drawing& drawing, const std::string& name, const py::object& base) {
  CData& data = drawing.data();
  checkFree(name, data.getBlockTable().get(toText(name)) != nullptr);
  const PNT_3D point = toPoint(base, "base_point");
  std::unique_ptr<CBlock> made(data.getBlockFactory().create(toText(name), point, 0));
  if (!made) throw std::bad_alloc();
  drawing.change("add", [&] {
    if (!drawing.undo().add(made.get())) throw std::bad_alloc();
    made.release();
  });
  return {drawing.shared_from_this(), Space::Sort::Block, name};
}

template <class Item>
ItemRef<Item> find(Drawing& drawing, const std::string& name) {
  if (Item* item = named(drawing.data(), toText(name), static_cast<Item*>(nullptr)))
    return refer(drawing, *item);
  throw py::key_error(name);
}

std::vector<LayerRef> layers(Drawing& drawing) {
  std::vector<LayerRef> all;
  for (CData::CLayerIterator at(drawing.data(), true); *at; ++at)
    all.push_back(refer(drawing, **at));
  return all;
}
std::vector<LtypeRef> ltypes(Drawing& drawing) {
  std::vector<LtypeRef> all;
  for (CData::CLtypeIterator at(drawing.data(), true, true); *at; ++at)
    all.push_back(refer(drawing, **at));
  return all;
}
std::vector<StyleRef> styles(Drawing& drawing) {
  std::vector<StyleRef> all;
  for (CData::CStyleIterator at(drawing.data(), true); *at; ++at)
    all.push_back(refer(drawing, **at));
  return all;
}

std::vector<Space> blocks(Drawing& drawing) {
  std::vector<Space> all;
  const CBlockTable& table = drawing.data().getBlockTable();
  for (int i = 0; i < table.size(); ++i)
    if (!table[i]->isSheet())
      all.emplace_back(drawing.shared_from_this(), Space::Sort::Block,
                       table[i]->getName().toUtf8());
  return all;
}
std::vector<Space> layouts(Drawing& drawing) {
  std::vector<Space> all;
  const CLayoutTable& table = drawing.data().getLayouts();
  for (int i = 0; i < table.size(); ++i)
    all.emplace_back(drawing.shared_from_this(), Space::Sort::Layout, table[i].getName().toUtf8());
  return all;
}

Space findBlock(Drawing& drawing, const std::string& name) {
  const CBlock* block = drawing.data().getBlockTable().get(toText(name));
  if (!block || block->isSheet()) throw py::key_error(name);
  return {drawing.shared_from_this(), Space::Sort::Block, block->getName().toUtf8()};
}
Space findLayout(Drawing& drawing, const std::string& name) {
  if (zim::equalsIgnoreCase(toText(name), u"Model"))
    return {drawing.shared_from_this(), Space::Sort::Model, "Model"};
  const CLayout* layout = drawing.data().getLayouts().get(toText(name));
  if (!layout) throw py::key_error(name);
  return {drawing.shared_from_this(), Space::Sort::Layout, layout->getName().toUtf8()};
}

void removeBlock(const Space& space) {
  CBlock* block = space.block();
  if (!block || block->isSheet()) throw std::invalid_argument("only blocks can be deleted");
  space.drawing().change("delete", [&] {
    if (!space.drawing().undo().remove(block))
      throw Fault("in use", "the block '" + space.name() + "' is used and cannot be deleted");
  });
}

template <class Item>
py::class_<ItemRef<Item>> bindItem(py::module_& module, const char* type, const char* doc) {
  using Ref = ItemRef<Item>;
  return py::class_<Ref>(module, type, doc)
      .def_property(
          "name", [](const Ref& ref) { return nameOf(ref.get()).toUtf8(); },
          [](Ref& ref, const std::string& name) { rename(ref, name); }, "Its name.")
      .def(
          "delete", [](const Ref& ref) { remove(ref); }, "Delete it, if nothing uses it.")
      .def("__eq__",
           [](const Ref& ref, const py::object& other) {
             return py::isinstance<Ref>(other) && ref == other.cast<const Ref&>();
           })
      .def("__hash__", [](const Ref& ref) { return std::hash<const void*>()(ref.item); })
      .def("__repr__", [](const Ref& ref) {
        return std::string("<") + wordFor(ref.item) + " '" + ref.name + "'>";
      });
}

template <class Type, class Get, class Set>
void bindFlag(Type& type, const char* name, Get get, Set set, const char* doc) {
  type.def_property(
      name, [get](const LayerRef& ref) { return get(ref.get()); },
      [name, set](const LayerRef& ref, bool on) {
        change(ref, name, [&](CLayer& layer) { set(layer, on); });
      },
      doc);
}

void bindLayerTraits(py::class_<LayerRef>& type) {
  const auto setTrait = [](const LayerRef& ref, const char* what, const auto& work) {
    change(ref, what, [&](CLayer& layer) {
      LAYER_TRAITS traits = layer.getTraits();
      work(traits);
      layer.setTraits(traits);
    });
  };
  type.def_property(
          "color", [](const LayerRef& ref) { return ref.get().getColor(); },
          [](const LayerRef& ref, int color) {
            const short number = layerColor(color);
            change(ref, "color", [&](CLayer& layer) { layer.setColor(number); });
          },
          "Color number, 1 to 255.")
      .def_property(
          "true_color",
          [](const LayerRef& ref) { return fromTrueColor(ref.get().getTraits().trueColor); },
          [setTrait](const LayerRef& ref, const py::object& value) {
            const std::uint32_t color = toTrueColor(value);
            setTrait(ref, "true_color", [&](LAYER_TRAITS& traits) { traits.trueColor = color; });
          },
          "(red, green, blue), or None.")
      .def_property(
          "lineweight",
          [](const LayerRef& ref) { return fromWeight(ref.get().getTraits().lineweight); },
          [setTrait](const LayerRef& ref, const py::object& value) {
            const short weight = toWeight(value);
            if (weight < 0 && weight != ENT_TRAITS::kWeightDefault)
              throw std::invalid_argument("a layer's lineweight is in millimeters, or 'default'");
            setTrait(ref, "lineweight", [&](LAYER_TRAITS& traits) { traits.lineweight = weight; });
          },
          "Millimeters, or 'default'.")
      .def_property(
          "plot", [](const LayerRef& ref) { return ref.get().getTraits().isPlotted; },
          [setTrait](const LayerRef& ref, bool on) {
            setTrait(ref, "plot", [&](LAYER_TRAITS& traits) { traits.isPlotted = on; });
          },
          "Whether it is plotted.");
}

void bindLayers(py::module_& module) {
  auto type = bindItem<CLayer>(module, "Layer", "A layer of a drawing.");
  bindLayerTraits(type);
  type.def_property(
      "linetype",
      [](const LayerRef& ref) {
        const CLtype* ltype = ref.get().getLtype();
        return ltype ? ltype->getFullName().toUtf8() : std::string("CONTINUOUS");
      },
      [](const LayerRef& ref, const std::string& name) {
        ref.get();
        CLtype& ltype = ltypeOf(ref.drawing->data(), name);
        if (ltype.isByLayer() || ltype.isByBlock())
          throw std::invalid_argument("a layer's linetype cannot be " + name);
        change(ref, "linetype", [&](CLayer& layer) { layer.setLtype(&ltype); });
      },
      "Name of the linetype.");
  bindFlag(
      type, "on", [](const CLayer& layer) { return !layer.isOff(); },
      [](CLayer& layer, bool on) { layer.setOff(!on); }, "Whether it is shown.");
  bindFlag(
      type, "frozen", [](const CLayer& layer) { return layer.isFrozen(); },
      [](CLayer& layer, bool on) { layer.setFrozen(on); }, "Whether it is frozen.");
  bindFlag(
      type, "locked", [](const CLayer& layer) { return layer.isLocked(); },
      [](CLayer& layer, bool on) { layer.setLocked(on); }, "Whether it is locked.");
}

std::vector<py::object> patternOf(const CLtype& ltype) {
  std::vector<py::object> pattern;
  for (int i = 0; i < ltype.getNoDashes(); ++i)
    if (const ILtypeComplexDash* dash = ltype.GetDash(i))
      pattern.push_back(dash->IsText()
                            ? py::object(fromText(dash->GetText()->getContext().getString()))
                            : py::float_(dash->GetValue()));
  return pattern;
}

void bindLtypes(py::module_& module) {
  bindItem<CLtype>(module, "Linetype", "A linetype of a drawing.")
      .def_property_readonly(
          "pattern", [](const LtypeRef& ref) { return patternOf(ref.get()); },
          "Lengths of dashes (> 0), gaps (< 0) and dots (0), and texts.")
      .def_property(
          "description", [](const LtypeRef& ref) { return fromText(ref.get().getDesc()); },
          [](const LtypeRef& ref, const std::string& text) {
            change(ref, "description", [&](CLtype& ltype) { ltype.setDesc(toText(text)); });
          },
          "What it looks like.");
}

void bindStyles(py::module_& module) {
  const auto property = [](double (CStyle::*get)() const, void (CStyle::*set)(double),
                           const char* what) {
    return std::pair([get](const StyleRef& ref) { return (ref.get().*get)(); },
                     [set, what](const StyleRef& ref, double value) {
                       if (finite(value, what) < 0)
                         throw std::invalid_argument(std::string(what) + " must not be negative");
                       change(ref, what, [&](CStyle& style) { (style.*set)(value); });
                     });
  };
  const auto height = property(&CStyle::getFixedHeight, &CStyle::setFixedHeight, "height");
  const auto width = property(&CStyle::getWidthScale, &CStyle::setWidthScale, "width");
  bindItem<CStyle>(module, "Style", "A text style of a drawing.")
      .def_property(
          "font",
          [](const StyleRef& ref) {
            const ICADFont* font = ref.get().getFont();
            return font ? font->getName().toUtf8() : std::string();
          },
          [](const StyleRef& ref, const std::string& name) {
            ref.get();
            if (name.empty()) throw std::invalid_argument("font must be a name");
            const ICADFont* font = ref.drawing->data().needFont(toText(name));
            change(ref, "font", [&](CStyle& style) { style.setFont(font); });
          },
          "Name of the font.")
      .def_property("height", height.first, height.second, "Height of its texts; 0: their own.")
      .def_property("width", width.first, width.second, "Width factor of the letters.");
}

}  // namespace

void bindTables(py::module_& module) {
  using namespace py::literals;
  bindLayers(module);
  bindLtypes(module);
  bindStyles(module);
  const py::tuple origin = py::make_tuple(0.0, 0.0);
  module.def("layers", &layers)
      .def("layer", &find<CLayer>)
      .def("add_layer", &addLayer)
      .def("linetypes", &ltypes)
      .def("linetype", &find<CLtype>)
      .def("add_linetype", &addLtype)
      .def("styles", &styles)
      .def("style", &find<CStyle>)
      .def("add_style", &addStyle)
      .def("blocks", &blocks)
      .def("block", &findBlock)
      .def("add_block", &addBlock)
      .def("delete_block", &removeBlock)
      .def("layouts", &layouts)
      .def("layout", &findLayout);
}

}  // namespace vek0::python
