// The TABLES section.
#include <limits>

#include "dxf/in/convert/dimstyles.h"
#include "dxf/in/itemflags.h"
#include "dxf/in/parse/filedxfiversionloader.h"
#include "files/number.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/dxf/in/parse/filedxfiparser.h"
#include "vek0core/tables/palette.h"

using vek0::detail::kOfXRef;
using vek0::detail::kReferenced;

namespace {

constexpr long kLayerOff = 128;  // our own bit for a color below 0
constexpr long kWhite = 7;
constexpr long kShapeFile = 1;  // STYLE: not a text font
constexpr double kInfinity = std::numeric_limits<double>::infinity();

}  // namespace

void CFileDXFIParser::readTables() {
  RealizeVersion();
  while (!failed()) {
    nextRecord();
    if (failed()) return fail(CFileDXFIError::WrongStructure);
    if (atSectionEnd()) return;
    if (isKeyword("TABLE")) {
      readTable();
      if (recover(ReportCode::TableCut, {})) m_pending = true;
    } else {
      m_pending = passRecord();
      if (!m_pending) fail(CFileDXFIError::WrongStructure);
    }
  }
}

void CFileDXFIParser::readTable() {
  if (!expect(2)) return;
  if (isKeyword("LTYPE")) return readTablesLtype();
  if (isKeyword("LAYER")) return readTablesLayer();
  if (isKeyword("STYLE")) return readTablesStyle();
  if (isTolerant() && isKeyword("DIMSTYLE"))
    return readEntries("DIMSTYLE", &CFileDXFIParser::readDimStyleEntry);
  if (isTolerant() && isKeyword("BLOCK_RECORD"))
    return readEntries("BLOCK_RECORD", &CFileDXFIParser::readBlockRecordEntry);
  readTablesOther();
}

void CFileDXFIParser::readTablesLtype() { readEntries("LTYPE", &CFileDXFIParser::readLtypeEntry); }
void CFileDXFIParser::readTablesLayer() { readEntries("LAYER", &CFileDXFIParser::readLayerEntry); }
void CFileDXFIParser::readTablesStyle() { readEntries("STYLE", &CFileDXFIParser::readStyleEntry); }
void CFileDXFIParser::readTablesOther() { skipTo("ENDTAB"); }
void CFileDXFIParser::readPreambolo() { readEntityOther(); }

void CFileDXFIParser::readEntries(std::string_view keyword, ReadEntry readEntry) {
  readPreambolo();
  while (!failed() && !isKeyword("ENDTAB")) {
    if (isKeyword(keyword)) {
      (this->*readEntry)();
      recover(ReportCode::EntryDropped, zim::WString::fromUtf8(keyword));
    } else if (isTolerant() && (isKeyword("TABLE") || isKeyword("ENDSEC") || isPending())) {
      m_pending = true;
      return note(ReportCode::TableCut, zim::WString::fromUtf8(keyword));
    } else if (!passRecord()) {
      return fail(CFileDXFIError::WrongStructure);
    }
  }
}

void CFileDXFIParser::readLtypeEntry() { m_pACADVersionLoader->readLtype(); }

struct CFileDXFIParser::LayerEntry {
  zim::WString name;
  CLtype* ltype = nullptr;
  zim::WString unknownLtype;  // for which ltype is substituted until a table defines it
  short colour = 7;
  short trueColour = 0;  // the nearest index to the true color, which takes precedence; 0 for none
  bool off = false;
  long flags = 0;
};

void CFileDXFIParser::readLayerEntry() {
  LayerEntry layer;
  for (;;) {
    const long code = read();
    if (failed()) return;
    if (code == 0) return createLayer(layer);
    readLayerPair(code, layer);
    if (failed() && !spareNumber()) return;
  }
}

void CFileDXFIParser::readLayerPair(long code, LayerEntry& layer) {
  switch (code) {
    case 2:
      layer.name = m_lexer.getText();
      break;
    case 6:
      layer.ltype = m_semantor.getLtype(m_lexer.getText());
      if (layer.ltype) break;
      if (!isTolerant()) return fail(CFileDXFIError::LtypeNotFound);
      layer.unknownLtype = m_lexer.getText();
      layer.ltype = m_semantor.getLtypeByLayer();  // invalid for a layer
      break;
    case 62: {
      long colour = getInt();
      if (failed()) return;
      const bool inRange = colour != 0 && colour >= -255 && colour <= 255;
      if (!inRange && !isTolerant()) return fail(CFileDXFIError::OutOfRange);
      if (!inRange) {
        note(ReportCode::ColorReplaced, m_lexer.getText());
        colour = colour < 0 ? -kWhite : kWhite;
      }
      layer.off = colour < 0;
      layer.colour = static_cast<short>(colour < 0 ? -colour : colour);
      break;
    }
    case 70:
      layer.flags = readFlags() & ~kReferenced;
      break;
    default:
      leaveOutOfLayer(code, layer);
  }
}

void CFileDXFIParser::leaveOutOfLayer(long code, LayerEntry& layer) {
  constexpr long notPlotted = 290, weight = 370, trueColor = 420, mask = 0xFFFFFF;
  if (isTolerant() || code == weight || code == notPlotted) m_lexer.checkNumber();
  if (failed()) return;
  if (code == trueColor && isTolerant()) {
    const RGB_COLOR color = unpackColor(getInt() & mask);
    if (failed()) return;
    layer.trueColour = nearestPaletteColor(color);
    return note(ReportCode::ColorApproximated, u"LAYER");
  }
  const bool isWeight = code == weight && vek0::detail::parseLong(m_lexer.getBytes()) >= 0;
  const bool isHidden = code == notPlotted && vek0::detail::parseLong(m_lexer.getBytes()) == 0 &&
                        !zim::equalsIgnoreCase(layer.name, u"DEFPOINTS");
  if (isWeight || isHidden || code == trueColor)
    note(ReportCode::CodeDropped, zim::WString::fromUtf8("LAYER " + std::to_string(code)));
}

long CFileDXFIParser::readFlags() {
  const long flags = getInt();
  if (flags >= 0 || failed() || !isTolerant()) return flags;
  note(ReportCode::FlagsReplaced, m_lexer.getText());
  return 0;
}

// The substitute linetype shows whether the layer was set from the entry or existed before.
void CFileDXFIParser::createLayer(LayerEntry& layer) {
  if (layer.trueColour != 0) layer.colour = layer.trueColour;
  placeLayer(layer);
  CLayer* made = failed() || layer.unknownLtype.empty() ? nullptr : m_semantor.getLayer(layer.name);
  if (!made || made->getLtype() != layer.ltype) return;
  made->setLtype(m_semantor.getLtype(u"Continuous"));
  m_unsettled.push_back({made, layer.unknownLtype});
}

// The color, whose sign marks a layer as off, and the flags come in any order: they are combined
// here.
void CFileDXFIParser::placeLayer(const LayerEntry& layer) {
  const long flags = layer.flags | (layer.off ? kLayerOff : 0);
  if (layer.name.empty()) return fail(CFileDXFIError::WrongStructure);
  if (layer.name.view() == u"0") return m_semantor.createLayer0(layer.ltype, layer.colour, flags);
  if ((flags & kOfXRef) == 0)
    return m_semantor.createLayer(layer.name, layer.ltype, layer.colour, flags);
  zim::WString xref, local;
  if (scomposeName(layer.name, xref, local))
    return m_semantor.createLayerXRef(xref, local, layer.ltype, layer.colour, flags);
  if (!isTolerant()) return fail(CFileDXFIError::WrongStructure);
  note(ReportCode::FlagsReplaced, layer.name);
  m_semantor.createLayer(layer.name, layer.ltype, layer.colour, flags & ~kOfXRef);
}

// The linetypes may follow the layers.
void CFileDXFIParser::settleLayers() {
  for (const auto& [layer, name] : m_unsettled) {
    if (CLtype* ltype = m_semantor.getLtype(name))
      layer->setLtype(ltype);
    else
      note(ReportCode::LinetypeUnknown, name);
  }
  m_unsettled.clear();
}

struct CFileDXFIParser::StyleEntry {
  zim::WString name, fontName;
  double fixedHeight = 0, widthScale = 1, obliqueDeg = 0, lastHeight = 0.2;
  long flags = 0;
  long fontLine = 0;   // of code 3; 0: there was none
  long rangeLine = 0;  // of the first number out of range; 0: all are within
};

void CFileDXFIParser::readStyleEntry() {
  StyleEntry style;
  for (;;) {
    const long code = read();
    if (failed()) return;
    if (code == 0) return createStyle(style);
    readStylePair(code, style);
    if (failed() && !spareNumber()) return;
  }
}

void CFileDXFIParser::readStylePair(long code, StyleEntry& style) {
  constexpr double maxOblique = 85;  // degrees
  switch (code) {
    case 2:
      style.name = m_lexer.getText();
      break;
    case 3:
      style.fontName = m_lexer.getText();
      style.fontLine = m_lexer.getLine();
      break;
    case 40:
      takeStyleNumber(0, kInfinity, style, style.fixedHeight);
      break;
    case 41:
      takeStyleNumber(0.01, 100, style, style.widthScale);
      break;
    case 42:
      takeStyleNumber(0, kInfinity, style, style.lastHeight);
      break;
    case 50:
      takeStyleNumber(-maxOblique, maxOblique, style, style.obliqueDeg);
      break;
    case 70:
      style.flags = readFlags() & ~kReferenced;
      break;
    default:
      if (isTolerant()) m_lexer.checkNumber();
  }
}

void CFileDXFIParser::takeStyleNumber(double least, double most, StyleEntry& style,
                                      double& target) {
  const double number = getDouble();
  if (failed()) return;
  target = number;
  if (number >= least && number <= most) return;
  if (!isTolerant()) {
    if (style.rangeLine == 0) style.rangeLine = m_lexer.getLine();
    return;
  }
  note(ReportCode::NumberReplaced, m_lexer.getText());
  // Programs write a width of 0 if they have none.
  target = number == 0 && least > 0 ? 1 : std::clamp(number, least, most);
}

// Entries of shape files are skipped whatever they contain, and their flag may come last: nothing
// is validated before.
void CFileDXFIParser::createStyle(const StyleEntry& style) {
  if ((style.flags & kShapeFile) != 0) return;
  if (style.rangeLine != 0) {
    m_faultLine = style.rangeLine;
    return fail(CFileDXFIError::OutOfRange);
  }
  const bool named = !style.name.empty() && (style.fontLine != 0 || isTolerant());
  if (!named) return fail(CFileDXFIError::WrongStructure);
  const ICADFont* font = m_semantor.getFont(style.fontName);
  if (!font) {
    m_faultLine = style.fontLine;
    return fail(CFileDXFIError::FontNotFound);
  }
  const double oblique = style.obliqueDeg * kRadiansPerDegree;
  if (zim::equalsIgnoreCase(style.name, u"STANDARD"))
    m_semantor.createStyleStandard(font, style.fixedHeight, style.widthScale, oblique,
                                   style.lastHeight, style.flags);
  else
    m_semantor.createStyle(style.name, font, style.fixedHeight, style.widthScale, oblique,
                           style.lastHeight, style.flags);
}

void CFileDXFIParser::readDimStyleEntry() {
  zim::WString name;
  vek0::detail::DimStyle style;
  for (long code = read(); code != 0 && !failed(); code = read()) {
    if (code == 2) name = m_lexer.getText();
    style.take(code, m_lexer);
    m_lexer.checkNumber();
    spareNumber();
  }
  if (!zim::equalsIgnoreCase(name, u"STANDARD") || !style.isDefault())
    note(ReportCode::DimensionStyleDropped, name);
  m_dimStyles->add(name, style);
}

void CFileDXFIParser::readBlockRecordEntry() {
  zim::WString name;
  std::uint64_t handle = 0;
  for (long code = read(); code != 0 && !failed(); code = read()) {
    if (code == 2) name = m_lexer.getText();
    if (code == 5) handle = vek0::detail::parseHex(m_lexer.getBytes());
    m_lexer.checkNumber();
    spareNumber();
  }
  m_dimStyles->addBlock(handle, name);
}
