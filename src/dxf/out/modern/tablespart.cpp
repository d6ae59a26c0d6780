#include <cmath>

#include "dxf/out/exactnumbers.h"
#include "dxf/out/modern/filesections.h"
#include "dxf/out/modern/fixedpairs.h"
#include "dxf/out/modern/propertypairs.h"
#include "dxf/out/modern/styledata.h"
#include "dxf/out/savedcolor.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/tables/font.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/ltype.h"
#include "vek0core/tables/style.h"

namespace vek0::detail {
namespace {

constexpr long kLtypeAlignment = 65;  // the letter A: fitted to the ends of a line
constexpr long kTextElement = 2;      // code 74

// The rest of the view that is shown when the drawing is opened.
constexpr FixedPair kViewTail[] = {
    {42, "50.0"}, {43, "0.0"}, {44, "0.0"}, {50, "0.0"}, {51, "0.0"}, {71, "0"}, {72, "1000"},
    {73, "1"},    {74, "3"},   {75, "0"},   {76, "0"},   {77, "0"},   {78, "0"}};

class TablesWriter {
 public:
  TablesWriter(FilePlan& plan, CFileDXFOWriter& out)
      : m_plan(plan), m_out(out), m_properties(plan, out) {}

  void write() {
    writeVports();
    writeLtypes();
    writeLayers();
    writeStyles();
    writeTable("VIEW", FixedObject::ViewTable, 0);
    endTable();
    writeTable("UCS", FixedObject::UcsTable, 0);
    endTable();
    writeAppids();
    writeDimstyles();
    writeBlockRecords();
  }
  void writeLtype(const CLtype& ltype);
  void writeLayer(const CLayer& layer);
  void writeStyle(const ListedStyle& listed);

 private:
  void writeTable(const char* name, FixedObject table, std::size_t entries) {
    m_table = m_plan.of(table);
    m_out.writeEncoded(0, "TABLE");
    m_out.writeEncoded(2, name);
    m_out.writeHex(5, m_table);
    m_out.writeHex(330, 0);
    m_out.writeEncoded(100, "AcDbSymbolTable");
    m_out.write(70, static_cast<long>(entries));
  }
  void endTable() { m_out.writeEncoded(0, "ENDTAB"); }
  void writeEntry(const char* kind, Handle handle, const char* subclass, std::string_view name,
                  long handleCode = 5) {
    m_out.writeEncoded(0, kind);
    m_out.writeHex(handleCode, handle);
    m_out.writeHex(330, m_table);
    m_out.writeEncoded(100, "AcDbSymbolTableRecord");
    m_out.writeEncoded(100, subclass);
    m_out.writeEncoded(2, name);
  }
  double finite(double value, double fallback, const zim::WString& where) const {
    return m_plan.finite(value, fallback, where);
  }

  void writeVports();
  void writeLtypes();
  void writeElements(const CLtype& ltype);
  void writeTextElement(const TEXT_3D& text);
  void writeLayers();
  void writeLayerColor(const CLayer& layer);
  void writeStyles();
  void writeAppids();
  void writeDimstyles();
  void writeBlockRecords();
  void writeBlockRecord(Handle handle, std::string_view name, Handle layout);

  FilePlan& m_plan;
  CFileDXFOWriter& m_out;
  PropertyPairs m_properties;
  Handle m_table = 0;
};

void TablesWriter::writeVports() {
  const ShownArea shown(m_plan);
  writeTable("VPORT", FixedObject::VportTable, 1);
  writeEntry("VPORT", m_plan.of(FixedObject::ActiveVport), "AcDbViewportTableRecord", "*Active");
  m_out.write(70, 0L);
  writePoint(m_out, 10, 0, 0);
  writePoint(m_out, 11, 1, 1);
  writePoint(m_out, 12, shown.center.x, shown.center.y);
  writePoint(m_out, 13, 0, 0);
  writePoint(m_out, 14, 10, 10);
  writePoint(m_out, 15, 10, 10);
  writePoint(m_out, 16, 0, 0, 1);
  writePoint(m_out, 17, 0, 0, 0);
  // A window of any shape shows all.
  m_out.write(40, std::max(shown.width, shown.height));
  m_out.write(41, 1.0);
  writePairs(m_out, kViewTail);
  endTable();
}

void TablesWriter::writeLtypes() {
  writeTable("LTYPE", FixedObject::LtypeTable, m_plan.ltypeList.size() + 2);
  const struct {
    const char* name;
    FixedObject object;
  } fixed[] = {{"ByBlock", FixedObject::ByBlock}, {"ByLayer", FixedObject::ByLayer}};
  for (const auto& [name, object] : fixed) {
    writeEntry("LTYPE", m_plan.of(object), "AcDbLinetypeTableRecord", name);
    m_out.write(70, 0L);
    m_out.writeEncoded(3, "");
    m_out.write(72, kLtypeAlignment);
    m_out.write(73, 0L);
    m_out.write(40, 0.0);
  }
  for (const CLtype* ltype : m_plan.ltypeList) writeLtype(*ltype);
  endTable();
}

void TablesWriter::writeLtype(const CLtype& ltype) {
  const SavedItem& saved = m_plan.ltypes[&ltype];
  writeEntry("LTYPE", saved.handle, "AcDbLinetypeTableRecord", saved.name);
  m_out.write(70, m_plan.fileFlags(ltype.getFlags(), saved, ltype.getFullName()));
  m_out.writeText(3, ltype.getDesc());
  m_out.write(72, kLtypeAlignment);
  writeElements(ltype);
}

// A text belongs to the dash or gap before it; without one, to a dot.
void TablesWriter::writeElements(const CLtype& ltype) {
  struct Element {
    double length;
    const TEXT_3D* text;
  };
  std::vector<Element> elements;
  for (int i = 0; i < ltype.getNoDashes(); ++i) {
    const TEXT_3D* text = ltype[i]->GetText();
    if (ltype[i]->IsDoubleDash())
      elements.push_back({finite(ltype[i]->GetValue(), 0, ltype.getName()), nullptr});
    else if (!text)
      m_plan.note(ReportCode::LinetypeTextDropped, ltype.getName());
    else if (!elements.empty() && !elements.back().text)
      elements.back().text = text;
    else
      elements.push_back({0, text});
  }
  m_out.write(73, static_cast<long>(elements.size()));
  m_out.write(40, finite(ltype.getPatternLen(), 0, ltype.getName()));
  for (const Element& element : elements) {
    m_out.write(49, element.length);
    m_out.write(74, element.text ? kTextElement : 0L);
    if (element.text) writeTextElement(*element.text);
  }
}

void TablesWriter::writeTextElement(const TEXT_3D& text) {
  const CTextContext& context = text.getContext();
  const zim::WString& string = context.getString();
  m_out.write(75, 0L);
  m_out.writeHex(340, m_plan.styles[text.getStyle()].handle);
  m_out.write(46, finite(context.getHeight(), 1, string));
  m_out.write(50, finite(exactDegrees(context.getRotate()), 0, string));
  m_out.write(44, finite(text.x, 0, string));
  m_out.write(45, finite(text.y, 0, string));
  m_out.writeText(9, string);
}

void TablesWriter::writeLayers() {
  writeTable("LAYER", FixedObject::LayerTable, m_plan.layerList.size());
  for (const CLayer* layer : m_plan.layerList) writeLayer(*layer);
  endTable();
}

void TablesWriter::writeLayer(const CLayer& layer) {
  const SavedItem& saved = m_plan.layers[&layer];
  const LAYER_TRAITS& traits = layer.getTraits();
  writeEntry("LAYER", saved.handle, "AcDbLayerTableRecord", saved.name);
  m_out.write(70, m_plan.fileFlags(layer.getFlags(), saved, layer.getFullName()));
  writeLayerColor(layer);
  const CLtype* ltype = layer.getLtype();
  // The others mean nothing to a layer.
  const bool isOwn = ltype && !ltype->isByLayer() && !ltype->isByBlock();
  m_out.writeEncoded(6, m_plan.ltypes[isOwn ? ltype : nullptr].name);
  if (!traits.isPlotted) m_out.write(290, 0L);
  const short weight = nearestLineweight(traits.lineweight);
  if (weight != traits.lineweight) m_plan.note(ReportCode::LineweightRounded, u"LAYER 370");
  m_out.write(370, static_cast<long>(weight));
  m_out.writeHex(390, m_plan.of(FixedObject::NormalPlotStyle));
  if (layer.getLineWidth() != lineWidthDefault)
    m_plan.note(ReportCode::LineweightDropped, layer.getFullName());
  if (traits.opacity == ENT_TRAITS::kOpaque) return;
  if (!m_plan.rules.transparency) return m_plan.note(ReportCode::CodeDropped, u"LAYER 1071");
  m_out.writeEncoded(1001, kTransparencyOwner);
  m_out.write(1071, transparencyOf(traits.opacity));
}

// A layer that is off has a negative color.
void TablesWriter::writeLayerColor(const CLayer& layer) {
  const std::uint32_t trueColor = layer.getTraits().trueColor;
  const bool isTrue = trueColor != ENT_TRAITS::kNoTrueColor;
  short color = layer.getColor();
  if (isTrue && !m_plan.rules.trueColors) color = m_properties.approximated(trueColor, u"LAYER");
  if (!isLayerColor(color)) {
    m_plan.note(ReportCode::ColorOutOfRange, layer.getFullName());
    color = kColorDefault;
  }
  m_out.write(62, static_cast<long>(layer.isOff() ? -color : color));
  if (isTrue && m_plan.rules.trueColors) m_out.write(420, static_cast<long>(trueColor & 0xFFFFFF));
}

void TablesWriter::writeStyles() {
  writeTable("STYLE", FixedObject::StyleTable, m_plan.styleList.size());
  for (const ListedStyle& listed : m_plan.styleList) writeStyle(listed);
  endTable();
}

void TablesWriter::writeStyle(const ListedStyle& listed) {
  const CStyle& style = *listed.style;
  const SavedItem& saved = m_plan.styles[&style];
  const zim::WString& where = listed.name;
  writeEntry("STYLE", saved.handle, "AcDbTextStyleTableRecord", saved.name);
  m_out.write(70, m_plan.fileFlags(listed.flags, saved, listed.name));
  m_out.write(40, finite(style.getFixedHeight(), 0, where));
  m_out.write(41, finite(style.getWidthScale(), 1, where));
  m_out.write(50, finite(exactDegrees(style.getOblique()), 0, where));
  m_out.write(71, 0L);
  m_out.write(42, finite(style.getLastHeight(), 0.2, where));
  const zim::WString font = style.getFont() ? style.getFont()->getName() : zim::WString(u"txt");
  m_out.writeText(3, font);
  m_out.writeEncoded(4, "");
  writeFontFamily(m_out, font, style.isBold(), style.isItalic());
}

void TablesWriter::writeAppids() {
  const struct {
    const char* name;
    FixedObject object;
  } owners[] = {{"ACAD", FixedObject::AcadAppid},
                {kTransparencyOwner, FixedObject::TransparencyAppid}};
  writeTable("APPID", FixedObject::AppidTable, std::size(owners));
  for (const auto& [name, object] : owners) {
    writeEntry("APPID", m_plan.of(object), "AcDbRegAppTableRecord", name);
    m_out.write(70, 0L);
  }
  endTable();
}

// Dimensions are drawn by their blocks; the style has the values of the format.
void TablesWriter::writeDimstyles() {
  writeTable("DIMSTYLE", FixedObject::DimstyleTable, 1);
  m_out.writeEncoded(100, "AcDbDimStyleTable");
  m_out.write(71, 0L);
  writeEntry("DIMSTYLE", m_plan.of(FixedObject::StandardDimstyle), "AcDbDimStyleTableRecord",
             "Standard", 105);
  m_out.write(70, 0L);
  endTable();
}

void TablesWriter::writeBlockRecords() {
  writeTable("BLOCK_RECORD", FixedObject::BlockRecordTable,
             m_plan.spaces.size() + m_plan.blocks.size());
  for (const SavedSpace& space : m_plan.spaces)
    writeBlockRecord(space.record, space.block, space.object);
  for (const SavedBlock& saved : m_plan.blocks)
    writeBlockRecord(saved.record, m_plan.blockNames[saved.block].name, 0);
  endTable();
}

void TablesWriter::writeBlockRecord(Handle handle, std::string_view name, Handle layout) {
  writeEntry("BLOCK_RECORD", handle, "AcDbBlockTableRecord", name);
  m_out.writeHex(340, layout);
  if (!m_plan.rules.blockUnits) return;
  m_out.write(70, static_cast<long>(m_plan.data.getVars().getUnits()));
  m_out.write(280, 1L);  // may be exploded
  m_out.write(281, 0L);  // may be scaled unequally
}

}  // namespace

void writeEntry(FilePlan& plan, CFileDXFOWriter& out, const CLayer& layer) {
  TablesWriter(plan, out).writeLayer(layer);
}

void writeEntry(FilePlan& plan, CFileDXFOWriter& out, const CLtype& ltype) {
  TablesWriter(plan, out).writeLtype(ltype);
}

void writeEntry(FilePlan& plan, CFileDXFOWriter& out, const ListedStyle& style) {
  TablesWriter(plan, out).writeStyle(style);
}

void writeTablesSection(FilePlan& plan, CFileDXFOWriter& out) {
  beginSection(out, "TABLES");
  TablesWriter(plan, out).write();
  endSection(out);
}

}  // namespace vek0::detail
