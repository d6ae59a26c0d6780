// The semantor knows neither traits nor linetypes that a later table declares. A layer with either
// is created with a linetype that no other layer can have, by which `create` recognizes whether the
// semantor took the entry. An unknown linetype is set at the end of the file (`settle`).
#include "dxf/in/parse/layerentries.h"

#include "dxf/in/itemflags.h"
#include "dxf/in/traitvalues.h"
#include "files/number.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/tables/layer.h"

namespace vek0::detail {
namespace {

constexpr long kLayerOff = 128;  // our own bit for a color below 0
constexpr long kWhite = 7;
constexpr long kPlotted = 290, kWeight = 370, kTrueColor = 420, kColorName = 430;
constexpr long kApplication = 1001, kApplicationNumber = 1071;

}  // namespace

struct LayerEntries::Entry {
  zim::WString name;
  CLtype* ltype = nullptr;
  zim::WString unknownLtype;  // for which ltype is substituted until a table defines it
  short colour = 7;
  bool off = false;
  long flags = 0;
  LAYER_TRAITS traits;
  bool isTransparency = false;  // of the application whose data is being read
  bool hasFurtherData = false;  // of other applications
  std::uint64_t handle = 0;     // 0 for none
};

void LayerEntries::read() {
  Entry entry;
  for (;;) {
    const long code = m_in.read();
    if (m_in.failed()) return;
    if (code == 0) {
      if (entry.hasFurtherData) m_in.note(ReportCode::CodeDropped, u"LAYER 1001");
      create(entry);
      return keepHandle(entry);
    }
    takePair(code, entry);
    if (m_in.failed() && !m_in.spareNumber()) return;
  }
}

void LayerEntries::keepHandle(const Entry& entry) {
  if (m_in.failed() || entry.handle == 0) return;
  if (CLayer* layer = m_in.semantor.getLayer(entry.name)) m_handles.emplace(entry.handle, layer);
}

void LayerEntries::takePair(long code, Entry& entry) {
  switch (code) {
    case 5:
      entry.handle = parseHex(m_in.lexer.getBytes());
      break;
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
    default:
      if (!m_in.isTolerant() || !takeTrait(code, entry)) leaveOut(code, entry);
  }
}

void LayerEntries::takeLtype(Entry& entry) {
  entry.ltype = m_in.semantor.getLtype(m_in.lexer.getText());
  if (entry.ltype || !m_in.tolerates(CFileDXFIError::LtypeNotFound)) return;
  entry.unknownLtype = m_in.lexer.getText();
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

bool LayerEntries::takeTrait(long code, Entry& entry) {
  switch (code) {
    case kPlotted:
      takePlotted(entry);
      return true;
    case kWeight:
      takeWeight(entry);
      return true;
    case kTrueColor:
      takeTrueColor(entry);
      return true;
    case kApplication:
      // The application that stores the transparency of layers.
      entry.isTransparency = m_in.lexer.isKeyword("ACCMTRANSPARENCY");
      entry.hasFurtherData |= !entry.isTransparency;
      return true;
    case kApplicationNumber:
      if (entry.isTransparency) takeTransparency(entry);
      return true;
    default:
      return false;
  }
}

void LayerEntries::takePlotted(Entry& entry) {
  const long value = m_in.lexer.getInt();
  if (m_in.failed()) return;
  if (value != 0 && value != 1) return m_in.note(ReportCode::NumberReplaced, u"LAYER 290");
  entry.traits.isPlotted = value != 0;
}

void LayerEntries::takeTrueColor(Entry& entry) {
  const long value = m_in.lexer.getInt();
  if (m_in.failed()) return;
  const std::optional<std::uint32_t> color = trueColorOf(value);
  if (!color) return m_in.note(ReportCode::NumberReplaced, u"LAYER 420");
  entry.traits.trueColor = *color;
}

// Layers cannot refer to a layer or block.
void LayerEntries::takeWeight(Entry& entry) {
  const long weight = m_in.lexer.getInt();
  if (m_in.failed()) return;
  if (weight != ENT_TRAITS::kWeightDefault && (weight < 0 || weight > ENT_TRAITS::kWidestWeight))
    return m_in.note(ReportCode::NumberReplaced, u"LAYER 370");
  entry.traits.lineweight = static_cast<short>(weight);
}

void LayerEntries::takeTransparency(Entry& entry) {
  const long value = m_in.lexer.getInt();
  if (m_in.failed()) return;
  const short opacity = opacityOf(value).value_or(ENT_TRAITS::kOpacityByLayer);
  if (opacity < 0) return m_in.note(ReportCode::NumberReplaced, u"LAYER 1071");
  entry.traits.opacity = opacity;
}

// Line weights and the mark of layers that are not plotted are numbers in every file; a strict
// reader does not look at other codes at all. No loss are the default weight, which is negative,
// and the mark on the layer that is never plotted.
void LayerEntries::leaveOut(long code, const Entry& entry) {
  if (code == kWeight || code == kPlotted)
    m_in.lexer.checkNumber();
  else
    m_in.passPair();
  if (m_in.failed()) return;
  const bool isColorName = code == kColorName && !m_in.lexer.getBytes().empty();
  if (isColorName) m_in.note(ReportCode::CodeDropped, u"LAYER 430");
  if (m_in.isTolerant()) return;
  const bool isWeight = code == kWeight && parseLong(m_in.lexer.getBytes()) >= 0;
  const bool isHidden = code == kPlotted && parseLong(m_in.lexer.getBytes()) == 0 &&
                        !zim::equalsIgnoreCase(entry.name, u"DEFPOINTS");
  if (isWeight || isHidden || code == kTrueColor)
    m_in.note(ReportCode::CodeDropped, zim::WString::fromUtf8("LAYER " + std::to_string(code)));
}

void LayerEntries::create(Entry& entry) {
  IFileDXFISemantor& semantor = m_in.semantor;
  const bool isMarked = !entry.unknownLtype.empty() || entry.traits != LAYER_TRAITS();
  if (!isMarked) return place(entry);
  CLtype* const ltype = entry.ltype ? entry.ltype : usualLtype(entry.name);
  entry.ltype = semantor.getLtypeByLayer();  // invalid for a layer
  place(entry);
  CLayer* made = m_in.failed() ? nullptr : semantor.getLayer(entry.name);
  // A layer without the mark existed before.
  if (!made || made->getLtype() != entry.ltype) return;
  made->setLtype(ltype);
  made->setTraits(entry.traits);
  if (!entry.unknownLtype.empty()) m_unsettled.push_back({made, entry.unknownLtype});
}

// The linetype of an entry without one.
CLtype* LayerEntries::usualLtype(const zim::WString& name) const {
  CLayer* const layer0 = name.view() == u"0" ? m_in.semantor.getLayer(name) : nullptr;
  return layer0 ? layer0->getLtype() : m_in.semantor.getLtype(u"Continuous");
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
