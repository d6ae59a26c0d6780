// A layer's linetype may be declared by a later table. The layer then gets a substitute that no
// other layer can have, by which `create` recognizes whether the semantor took the entry, and is
// given the right linetype at the end of the file (`settle`).
#include "dxf/in/parse/layerentries.h"

#include "dxf/in/itemflags.h"
#include "files/number.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/palette.h"

namespace vek0::detail {
namespace {

constexpr long kLayerOff = 128;  // our own bit for a color below 0
constexpr long kWhite = 7;
constexpr long kNotPlotted = 290, kWeight = 370, kTrueColor = 420;

}  // namespace

struct LayerEntries::Entry {
  zim::WString name;
  CLtype* ltype = nullptr;
  zim::WString unknownLtype;  // for which ltype is substituted until a table defines it
  short colour = 7;
  short trueColour = 0;  // the nearest index to the true color, which takes precedence; 0 for none
  bool off = false;
  long flags = 0;
};

void LayerEntries::read() {
  Entry entry;
  for (;;) {
    const long code = m_in.read();
    if (m_in.failed()) return;
    if (code == 0) return create(entry);
    takePair(code, entry);
    if (m_in.failed() && !m_in.spareNumber()) return;
  }
}

void LayerEntries::takePair(long code, Entry& entry) {
  switch (code) {
    case 2:
      entry.name = m_in.lexer.getText();
      break;
    case 6:
      return takeLtype(entry);
    case 62:
      return takeColor(entry);
    case 70:
      entry.flags = m_in.flags() & ~kReferenced;
      break;
    case kTrueColor:
      if (m_in.isTolerant()) return takeTrueColor(entry);
      [[fallthrough]];
    default:
      leaveOut(code, entry);
  }
}

void LayerEntries::takeLtype(Entry& entry) {
  entry.ltype = m_in.semantor.getLtype(m_in.lexer.getText());
  if (entry.ltype || !m_in.tolerates(CFileDXFIError::LtypeNotFound)) return;
  entry.unknownLtype = m_in.lexer.getText();
  entry.ltype = m_in.semantor.getLtypeByLayer();  // invalid for a layer
}

void LayerEntries::takeColor(Entry& entry) {
  long colour = m_in.lexer.getInt();
  if (m_in.failed()) return;
  if (colour == 0 || colour < -255 || colour > 255) {
    if (!m_in.tolerates(CFileDXFIError::OutOfRange)) return;
    m_in.note(ReportCode::ColorReplaced, m_in.lexer.getText());
    colour = colour < 0 ? -kWhite : kWhite;
  }
  entry.off = colour < 0;
  entry.colour = static_cast<short>(colour < 0 ? -colour : colour);
}

void LayerEntries::takeTrueColor(Entry& entry) {
  constexpr long mask = 0xFFFFFF;
  m_in.lexer.checkNumber();
  if (m_in.failed()) return;
  const RGB_COLOR color = unpackColor(m_in.lexer.getInt() & mask);
  if (m_in.failed()) return;
  entry.trueColour = nearestPaletteColor(color);
  m_in.note(ReportCode::ColorApproximated, u"LAYER");
}

// Line weights and the mark of layers that are not plotted are numbers in every file; a strict
// reader does not look at other codes at all. No loss are the default weight, which is negative,
// and the mark on the layer that is never plotted.
void LayerEntries::leaveOut(long code, const Entry& entry) {
  if (code == kWeight || code == kNotPlotted)
    m_in.lexer.checkNumber();
  else
    m_in.passPair();
  if (m_in.failed()) return;
  const bool isWeight = code == kWeight && parseLong(m_in.lexer.getBytes()) >= 0;
  const bool isHidden = code == kNotPlotted && parseLong(m_in.lexer.getBytes()) == 0 &&
                        !zim::equalsIgnoreCase(entry.name, u"DEFPOINTS");
  if (isWeight || isHidden || code == kTrueColor)
    m_in.note(ReportCode::CodeDropped, zim::WString::fromUtf8("LAYER " + std::to_string(code)));
}

// The substitute linetype shows whether the layer was set from the entry or existed before.
void LayerEntries::create(Entry& entry) {
  if (entry.trueColour != 0) entry.colour = entry.trueColour;
  place(entry);
  if (m_in.failed() || entry.unknownLtype.empty()) return;
  CLayer* made = m_in.semantor.getLayer(entry.name);
  if (!made || made->getLtype() != entry.ltype) return;
  made->setLtype(m_in.semantor.getLtype(u"Continuous"));
  m_unsettled.push_back({made, entry.unknownLtype});
}

// The color, whose sign marks a layer as off, and the flags come in any order: they are combined
// here.
void LayerEntries::place(const Entry& entry) {
  const long flags = entry.flags | (entry.off ? kLayerOff : 0);
  if (entry.name.empty()) return m_in.fail(CFileDXFIError::WrongStructure);
  IFileDXFISemantor& semantor = m_in.semantor;
  if (entry.name.view() == u"0") return semantor.createLayer0(entry.ltype, entry.colour, flags);
  if ((flags & kOfXRef) == 0)
    return semantor.createLayer(entry.name, entry.ltype, entry.colour, flags);
  zim::WString xref, local;
  if (scomposeName(entry.name, xref, local))
    return semantor.createLayerXRef(xref, local, entry.ltype, entry.colour, flags);
  if (!m_in.tolerates(CFileDXFIError::WrongStructure)) return;
  m_in.note(ReportCode::FlagsReplaced, entry.name);
  semantor.createLayer(entry.name, entry.ltype, entry.colour, flags & ~kOfXRef);
}

void LayerEntries::settle() {
  for (const auto& [layer, name] : m_unsettled) {
    if (CLtype* ltype = m_in.semantor.getLtype(name))
      layer->setLtype(ltype);
    else
      m_in.note(ReportCode::LinetypeUnknown, name);
  }
  m_unsettled.clear();
}

}  // namespace vek0::detail
