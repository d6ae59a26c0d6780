#pragma once

#include "support/test.h"
#include "vek0draw/draw.h"
#include "vek0draw/drawindex.h"
#include "vek0draw/painter.h"

inline std::ostream& operator<<(std::ostream& out, const PNT_2D& p) {
  return out << '(' << p.x << ", " << p.y << ')';
}

namespace vek0::test {

/// One call that a painter received.
struct Thing {
  enum Kind { Stroke, Arc, Fill, Dot, Text } kind;
  std::vector<PNT_2D> points;     ///< center of an arc, start of a text's baseline
  std::vector<std::size_t> ends;  ///< ends of the rings of a fill, as indices into `points`
  FillRule rule{};                ///< of a fill
  bool closed = false;
  double radius = 0, start = 0, sweep = 0;
  std::string string;
  AFFINE_2D matrix;
  RGB_COLOR color;
  std::string layer;
  vek0::Handle handle = 0;

  bool isSame(const Thing& t) const {
    return kind == t.kind && points == t.points && ends == t.ends && rule == t.rule &&
           closed == t.closed && radius == t.radius && start == t.start && sweep == t.sweep &&
           string == t.string && color == t.color && layer == t.layer && handle == t.handle;
  }
};

/// Records the calls that it receives.
class Recorder : public IPainter {
 public:
  explicit Recorder(bool hasArcs = true) : m_hasArcs(hasArcs) {}

  void begin(const DrawItem& item) override { m_item = item; }
  void stroke(const PNT_2D* points, std::size_t count, bool closed) override {
    add(Thing::Stroke).points.assign(points, points + count);
    things.back().closed = closed;
  }
  bool arc(const PNT_2D& center, double radius, double start, double sweep) override {
    if (!m_hasArcs) return false;
    Thing& thing = add(Thing::Arc);
    thing.points = {center};
    thing.radius = radius;
    thing.start = start;
    thing.sweep = sweep;
    return true;
  }
  void fill(const PNT_2D* points, const std::size_t* ends, std::size_t rings,
            FillRule rule) override {
    Thing& thing = add(Thing::Fill);
    thing.rule = rule;
    thing.ends.assign(ends, ends + rings);
    thing.points.assign(points, points + thing.ends.back());
  }
  void dot(const PNT_2D& at) override { add(Thing::Dot).points = {at}; }
  void disc(const PNT_2D& center, double diameter) override {
    dot(center);
    things.back().radius = diameter / 2;
  }
  void text(const DrawText& text) override {
    Thing& thing = add(Thing::Text);
    thing.points = {PNT_2D(text.matrix.e, text.matrix.f)};
    thing.matrix = text.matrix;
    thing.string = text.string->toUtf8();
  }

  bool pushClip(const PNT_2D* points, std::size_t count) override {
    if (!canClip) return false;
    clips.emplace_back(points, points + count);
    return true;
  }
  void popClip() override { ++popped; }

  std::size_t count(Thing::Kind kind) const {
    std::size_t n = 0;
    for (const Thing& thing : things) n += thing.kind == kind;
    return n;
  }

  std::vector<Thing> things;
  std::vector<std::vector<PNT_2D>> clips;
  std::size_t popped = 0;  // number of clips removed again
  bool canClip = true;

 private:
  Thing& add(Thing::Kind kind) {
    things.emplace_back();
    Thing& thing = things.back();
    thing.kind = kind;
    thing.color = m_item.color;
    thing.layer = m_item.layer->toUtf8();
    thing.handle = m_item.handle;
    return thing;
  }

  bool m_hasArcs;
  DrawItem m_item;
};

/// A drawing and a window of 1000 by 1000 units with one pixel per unit: (x, y) appears at (x, 1000
/// - y).
struct Scene {
  Scene() : data(CDataFactory().createData()), window(1) {
    window.resize(1001, 1001);
    window.set(0, 0, 1000, 1000);
  }

  template <class Ent>
  Ent* add(Ent* ent) {
    data->getEntTable().add(ent);
    return ent;
  }
  CEntLine* line(double x1, double y1, double x2, double y2) {
    return add(createEntLine(*data, LINE_3D(x1, y1, 0, x2, y2, 0), 0));
  }
  CLayer* layer(const zim::WString& name, short color = 7, long flags = 0) {
    addLayer(*data,
             data->getLayerFactory().create(name, &data->getLtypeContinuous(), color, flags));
    return getLayer(*data, name);
  }
  CLtype* ltype(const zim::WString& name, std::vector<double> dashes) {
    addLtype(*data, data->getLtypeFactory().create(name, u"", dashes.data(),
                                                   static_cast<long>(dashes.size()), 0));
    return getLtype(*data, name);
  }
  CBlock* block(const zim::WString& name, const std::vector<CEnt*>& ents) {
    CBlock* made = data->getBlockFactory().create(name, PNT_3D(0, 0, 0), 0);
    for (CEnt* ent : ents) made->add(ent);
    data->getBlockTable().add(made);
    return made;
  }
  CEntInsert* insert(CBlock& of, double x, double y, double sx = 1, double sy = 1,
                     double rotation = 0) {
    return createEntInsert(*data, of, PNT_3D(x, y, 0), sx, sy, 1, rotation, 1, 1, 0, 0, 0);
  }
  /// A line of length 1 along x from the block's origin, with these properties.
  CEntLine* unit(CLayer* layer, CLtype* ltype, short color) {
    return createEntLine(*data, layer, ltype, color, LINE_3D(0, 0, 0, 1, 0, 0), 0);
  }

  Recorder draw(const DRAW_OPTIONS& options = {}) {
    Recorder recorder;
    result = drawData(*data, CPOProjector(), window, recorder, options);
    return recorder;
  }

  CDataPtr data;
  CWndVpt window;
  DRAW_RESULT result;
};

/// The device coordinates of a point of a scene.
inline PNT_2D seen(double x, double y) { return {x, 1000 - y}; }

}  // namespace vek0::test
