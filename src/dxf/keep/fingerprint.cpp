#include "dxf/keep/fingerprint.h"

#include "compare/entshape.h"
#include "files/mixer.h"
#include "vek0core/drawing/data.h"
#include "vek0core/drawing/everyent.h"
#include "vek0core/drawing/layout.h"
#include "vek0core/tables/font.h"

namespace vek0::detail {
namespace {

void add(Mixer& mix, const PNT_2D& p) {
  mix.add(p.x);
  mix.add(p.y);
}

void add(Mixer& mix, const PNT_3D& p) {
  mix.add(p.x);
  mix.add(p.y);
  mix.add(p.z);
}

template <class Item>
void addName(Mixer& mix, const Item* item) {
  mix.add(item ? item->getFullName().view() : std::u16string_view());
}

void addName(Mixer& mix, const CNamedItem* item) {
  mix.add(item ? item->getName().view() : std::u16string_view());
}

void add(Mixer& mix, const ENT_TRAITS& traits) {
  static const ENT_TRAITS usual;
  if (traits == usual) return;
  mix.add(std::uint64_t{traits.trueColor});
  mix.addInteger(traits.lineweight);
  mix.addInteger(traits.opacity);
  mix.addInteger(traits.isVisible);
  mix.add(traits.ltypeScale);
  mix.add(traits.thickness);
}

void addProperties(Mixer& mix, const CLayer* layer, const CLtype* ltype, short color,
                   const ENT_TRAITS& traits) {
  addName(mix, layer);
  addName(mix, ltype);
  mix.addInteger(color);
  add(mix, traits);
}

void addProperties(Mixer& mix, const CEnt& ent) {
  addProperties(mix, ent.getLayer(), ent.getLtype(), ent.getColor(), ent.getTraits());
}

// Mixes the shape of an entity.
class ShapeMixer final : public IShapeSink {
 public:
  explicit ShapeMixer(Mixer& mix) : m_mix(mix) {}

  void point(const PNT_3D& p) override { add(m_mix, p); }
  void direction(const PNT_3D& d) override { add(m_mix, d); }
  void length(double length) override { m_mix.add(length); }
  void ratio(double ratio) override { m_mix.add(ratio); }
  void angle(double angleRad) override { m_mix.add(angleRad); }
  void word(long word) override { m_mix.addInteger(word); }
  void text(std::u16string_view text) override { m_mix.add(text); }
  void style(const CStyle* style) override {
    addName(m_mix, static_cast<const CNamedItem*>(style));
  }
  void pattern(const HATCH_TYPE& type, double scale, double angleRad) override {
    m_mix.add(std::u16string_view(type.name));
    for (const HATCH_LINE* line = type.lines; line != type.lines + type.numLines; ++line)
      addFamily(*line);
    m_mix.add(scale);
    m_mix.add(angleRad);
  }
  void block(const CEntInsertBase& insert) override {
    addName(m_mix, static_cast<const CNamedItem*>(insert.getBlock()));
  }
  void attrib(const CEntAttrib& attrib) override {
    m_mix.add(static_cast<std::uint64_t>(attrib.GetHandle()));
    describeShape(attrib, *this);
  }

 private:
  void addFamily(const HATCH_LINE& line) {
    for (const double number : {line.angle, line.x0, line.y0, line.dx, line.dy}) m_mix.add(number);
    for (int i = 0; i < line.numDash; ++i) m_mix.add(line.dash[i]);
  }

  Mixer& m_mix;
};

void add(Mixer& mix, const CEnt& ent) {
  const EntPrint print = printOf(ent);
  mix.add(static_cast<std::uint64_t>(ent.GetHandle()));
  mix.add(print.properties);
  mix.add(print.shape);
}

void add(Mixer& mix, const VIEWPORT& v) {
  add(mix, v.center);
  add(mix, v.viewCenter);
  add(mix, v.target);
  for (const double number : {v.width, v.height, v.viewHeight, v.twistRad}) mix.add(number);
  mix.addInteger(v.isOn);
  mix.addInteger(v.isPlan);
  for (const PNT_2D& corner : v.boundary) add(mix, corner);
  for (const CLayer* layer : v.frozen) addName(mix, layer);
  addProperties(mix, v.layer, v.ltype, v.color, v.traits);
}

void add(Mixer& mix, const CLayout& layout) {
  const PLOT_SETTINGS& plot = layout.getPlot();
  mix.add(layout.getName().view());
  for (const double number :
       {plot.width, plot.height, plot.left, plot.bottom, plot.right, plot.top, plot.scale})
    mix.add(number);
  add(mix, plot.origin);
  add(mix, plot.window.min);
  add(mix, plot.window.max);
  mix.addInteger(static_cast<long>(plot.area));
  mix.addInteger(plot.isCentered);
  mix.addInteger(plot.viewportsFirst);
  for (const VIEWPORT& viewport : layout.getViewports()) add(mix, viewport);
}

void add(Mixer& mix, const CDataVariables& vars) {
  add(mix, vars.getLimMin());
  add(mix, vars.getLimMax());
  for (const double number : {vars.getLtypeScale(), vars.getPLineWid(), vars.getAngDir(),
                              vars.getCurLtypeScale(), vars.getPointSize()})
    mix.add(number);
  addName(mix, vars.getCurLayer());
  addName(mix, vars.getCurLtype());
  addName(mix, static_cast<const CNamedItem*>(vars.getCurStyle()));
  for (const short number : {vars.getCurColor(), vars.getAngFormat(), vars.getPointMode(),
                             vars.getDefaultLineweight(), vars.getUnits()})
    mix.addInteger(number);
  mix.addInteger(vars.isLineweightShown());
  mix.addInteger(vars.isPaperLtypeScale());
}

void addBlocks(Mixer& mix, const CData& data) {
  for (int i = 0; i < static_cast<int>(data.getBlockTable().size()); ++i) {
    const CBlock& block = *data.getBlockTable()[i];
    mix.add(block.getName().view());
    add(mix, block.getPnt());
    mix.addInteger(static_cast<long>(block.size()));
  }
  for (int i = 0; i < static_cast<int>(data.getBlockXRefTable().size()); ++i) {
    const CBlockXRef& xref = *data.getBlockXRefTable()[i];
    mix.add(xref.getName().view());
    mix.add(xref.getPath().view());
    add(mix, xref.getPnt());
  }
}

}  // namespace

EntPrint printOf(const CEnt& ent) {
  Mixer properties, shape;
  addProperties(properties, ent);
  if (const CEntInsertBase* insert = ent.getEntInsert())
    for (unsigned i = 0; i < insert->GetNoAttribs(); ++i)
      addProperties(properties, *insert->GetAttrib(i));
  ShapeMixer mixer(shape);
  describeShape(ent, mixer);
  return {properties.value(), shape.value()};
}

std::uint64_t printOf(const CLayer& layer) {
  const LAYER_TRAITS& traits = layer.getTraits();
  Mixer mix;
  addName(mix, &layer);
  mix.addInteger(layer.getFlags());
  mix.addInteger(layer.getColor());
  mix.addInteger(layer.getLineWidth());
  addName(mix, layer.getLtype());
  mix.add(std::uint64_t{traits.trueColor});
  mix.addInteger(traits.lineweight);
  mix.addInteger(traits.opacity);
  mix.addInteger(traits.isPlotted);
  return mix.value();
}

std::uint64_t printOf(const CLtype& ltype) {
  Mixer mix;
  addName(mix, &ltype);
  mix.add(ltype.getDesc().view());
  mix.addInteger(ltype.getFlags());
  for (int i = 0; i < ltype.getNoDashes(); ++i) {
    mix.add(ltype[i]->IsDoubleDash() ? ltype[i]->GetValue() : 0);
    if (const TEXT_3D* text = ltype[i]->GetText()) {
      ShapeMixer mixer(mix);
      describeText(*text, mixer);
    }
  }
  return mix.value();
}

std::uint64_t printOf(const CStyle& style) {
  Mixer mix;
  addName(mix, static_cast<const CNamedItem*>(&style));
  mix.addInteger(style.getFlags());
  mix.add(style.getFont() ? style.getFont()->getName().view() : std::u16string_view());
  for (const double number :
       {style.getFixedHeight(), style.getWidthScale(), style.getOblique(), style.getLastHeight()})
    mix.add(number);
  return mix.value();
}

std::uint64_t printOf(const CData& data) {
  Mixer mix;
  for (CData::CLayerIterator it(data, true); const CLayer* layer = *it; ++it)
    mix.add(printOf(*layer));
  for (CData::CLtypeIterator it(data, true, false); const CLtype* ltype = *it; ++it)
    mix.add(printOf(*ltype));
  for (CData::CStyleIterator it(data, true); const CStyle* style = *it; ++it)
    mix.add(printOf(*style));
  addBlocks(mix, data);
  for (int i = 0; i < data.getLayouts().size(); ++i) add(mix, data.getLayouts()[i]);
  add(mix, data.getVars());
  for (int i = 0; i < static_cast<int>(data.getBlockTable().size()); ++i) {
    CBlock& block = *data.getBlockTable()[i];
    for (unsigned k = 0; k < block.size(); ++k) add(mix, *block[k]);
  }
  for (const CEnt* ent : data.getEntTable().getEntityTbl()) add(mix, *ent);
  return mix.value();
}

}  // namespace vek0::detail
