// Reads one record into a `Record`: values by group code, and names resolved to the items of the
// drawing. Items are cached by the bytes of their names (`NameCache`), because most entities name
// the layer of the previous one. Everything common to all kinds is handled here: required codes,
// pairs that a drawing cannot store, invalid numbers, the plane, and the layout of the entity.
#include "dxf/in/recordreader.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <string>

#include "dxf/in/coordinate.h"
#include "dxf/in/traitvalues.h"
#include "dxf/ocs.h"
#include "files/number.h"
#include "vek0core/files/report.h"
#include "vek0core/tables/colors.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/ltype.h"

namespace vek0::detail {
namespace {

constexpr long kLayer = 8, kEmbeddedObject = 101;
constexpr long kThickness = 39, kLtypeScale = 48, kHidden = 60;
constexpr long kLineweight = 370, kLayoutName = 410, kTrueColor = 420, kTransparency = 440;
constexpr long kExtrusionX = 210, kExtrusionY = 220;
constexpr long kExtrusionZ = 230;  // exactly 1 if the other two are 0

// Whether the value is a handle that can be kept: positive, and with a successor for the seed.
bool isHandle(std::string_view bytes) {
  constexpr std::size_t mostDigits = 16;
  constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<vek0::Handle>::max());
  const bool isHex = !bytes.empty() && std::all_of(bytes.begin(), bytes.end(), [](unsigned char c) {
    return std::isxdigit(c);
  });
  bytes.remove_prefix(std::min(bytes.find_first_not_of('0'), bytes.size()));
  return isHex && bytes.size() <= mostDigits && parseHex(bytes) < most;
}

// Whether dropping the current pair changes an entity: thickness, linetype scale, visibility, line
// weight, true color, its name, transparency, all but the name only of strict reading, and data of
// other programs. Default values are no loss: a weight below 0 is that of the layer, the block or
// none.
bool isLoss(const CFileDXFILexer& lexer) {
  const std::string_view bytes = lexer.getBytes();
  switch (lexer.getGroupValue()) {
    case kThickness:
      return parseDouble(bytes).value != 0;
    case kLtypeScale:
      return parseDouble(bytes).value != 1;
    case kHidden:
      return parseLong(bytes) != 0;
    case kLineweight:
      return parseLong(bytes) >= 0;
    case 430:
      return !bytes.empty();
    case kTransparency:
      return opacityOf(parseLong(bytes)).value_or(ENT_TRAITS::kOpaque) != ENT_TRAITS::kOpaque;
    case kTrueColor:
    case 1001:
      return true;
    default:
      return false;
  }
}

// Whether the code has the same meaning in every entity, supported or not: a strict reader must not
// skip it.
bool isMeant(long code) {
  constexpr long meant[] = {38,  kThickness,  kLtypeScale, kHidden,    67,           210,
                            220, kExtrusionZ, kLineweight, kTrueColor, kTransparency};
  return std::find(std::begin(meant), std::end(meant), code) != std::end(meant);
}

zim::WString decimal(long value) { return zim::WString::fromUtf8(std::to_string(value)); }

}  // namespace

void ReadContext::note(ReportCode code, const zim::WString& sample) const {
  if (options.report) options.report->add(code, lexer.getLine(), sample);
}

bool ReadContext::spareNumber(ReportCode code) const {
  const CFileDXFIError::TDXFErrors kind = err.GetErrorType();
  const bool isNumber = kind == CFileDXFIError::OutOfRange || kind == CFileDXFIError::EmptyNumber;
  if (!options.policy.tolerant || !isNumber) return false;
  note(code, decimal(lexer.getGroupValue()));
  err = CFileDXFIError();
  return true;
}

bool RecordReader::isKeepingSheets(const ReadContext& context) {
  const CFileDXFIPolicy& policy = context.options.policy;
  return policy.tolerant && policy.layouts && !policy.paperSpace && context.semantor.keepsLayouts();
}

CLtype* RecordReader::findByLayer() { return m_byLayer = m_context.semantor.getLtypeByLayer(); }

// An invalid number counts as a missing code.
void RecordReader::takeWanted(long code) {
  constexpr long firstNumber = 10;
  if (code >= firstNumber && isTolerant() && lexer().getBytes().empty())
    return note(ReportCode::NumberReplaced, decimal(code));
  m_record.seen.add(code);
  // Most pairs of a file are coordinates, which need no further distinction.
  if (code >= firstNumber && code < kThickness)
    m_record.setReal(code, lexer().getDouble());
  else
    take(code);
}

void RecordReader::takeCommon(long code) {
  if (kCommonTolerant.has(code))
    takeWanted(code);
  else if (code == kLayoutName)
    leaveOut(code);
  else
    takeTrait(code);
}

void RecordReader::takeInteger(long code) {
  constexpr long flags = 70;
  long value = lexer().getInt();
  if (code == flags && value < 0 && isTolerant()) {
    note(ReportCode::FlagsReplaced, decimal(value));
    value = 0;
  }
  m_record.setInteger(code, value);
}

void RecordReader::take(long code) {
  switch (code) {
    case 5:
      return takeHandle();
    case 6:
      return takeLtype();
    case 7:
      return takeStyle();
    case 8:
      return takeLayer();
    case 62:
      return takeColor();
    case kThickness:
      return takeThickness();
    case kLtypeScale:
      return takeLtypeScale();
    default:
      if (code < Record::kTexts) return m_record.setText(code, lexer().getText());
      if (code < Record::kReals) return m_record.setReal(code, lexer().getDouble());
      takeInteger(code);
  }
}

void RecordReader::takeHandle() {
  const bool isKept = m_context.semantor.shouldRespectHandles();
  if (isTolerant() && !isHandle(lexer().getBytes()))
    return isKept ? note(ReportCode::NumberReplaced, u"5") : void();
  // Parts of an entity follow with handles of their own.
  if (isTolerant() && m_handle == 0) m_handle = lexer().getHex();
  if (isKept) m_record.handle = lexer().getHex();
}

void RecordReader::takeLayer() {
  const std::string_view bytes = lexer().getBytes();
  if (bytes.empty()) return;
  if ((m_record.layer = m_layers.find(bytes)) != nullptr) return;
  const zim::WString name = lexer().getText();
  CLayer* layer = m_context.semantor.getLayer(name);
  if (!layer) {
    // An undeclared layer is created, so that the entity is not lost.
    layer = m_context.semantor.createLayerHurried(name);
    note(ReportCode::LayerUndeclared, name);
  }
  if (layer) m_record.layer = m_layers.add(bytes, layer);
}

// An unknown linetype is not cached: a later table may declare it.
void RecordReader::takeLtype() {
  const std::string_view bytes = lexer().getBytes();
  if ((m_record.ltype = m_ltypes.find(bytes)) != nullptr) return;
  const zim::WString name = lexer().getText();
  if (CLtype* ltype = m_context.semantor.getLtype(name)) {
    m_record.ltype = m_ltypes.add(bytes, ltype);
    return;
  }
  m_record.ltype = m_byLayer;
  note(ReportCode::LinetypeUnknown, name);
}

void RecordReader::takeStyle() {
  const std::string_view bytes = lexer().getBytes();
  if ((m_record.style = m_styles.find(bytes)) != nullptr) return;
  const zim::WString name = lexer().getText();
  if (CStyle* style = m_context.semantor.getStyle(name)) {
    m_record.style = m_styles.add(bytes, style);
    return;
  }
  note(ReportCode::StyleUnknown, name);
}

void RecordReader::takeColor() {
  const long color = lexer().getInt();
  if (failed()) return;
  if (color < 0 || color > kColorByLayer) {
    if (!isTolerant()) return fail(CFileDXFIError::OutOfRange);
    return note(ReportCode::ColorReplaced, lexer().getText());
  }
  m_record.color = static_cast<short>(color);
}

double RecordReader::width() {
  const double value = lexer().getDouble();
  if (failed() || value >= 0) return value;
  if (!isTolerant()) fail(CFileDXFIError::OutOfRange);
  note(ReportCode::NumberReplaced, lexer().getText());
  return 0;
}

void RecordReader::takeCount(long code) {
  const long count = lexer().getInt();
  const bool isCount = failed() || count > 0 || !isTolerant();
  if (!isCount) note(ReportCode::NumberReplaced, decimal(code));
  m_record.setInteger(code, isCount ? count : 1);
}

double RecordReader::radius(double value) {
  if (!isTolerant() || value > 0) return value;
  // The sign is dropped: the size is what the file states.
  if (value < 0)
    note(ReportCode::NumberReplaced, u"40");
  else
    fail(CFileDXFIError::OutOfRange);
  return -value;
}

CBlock* RecordReader::findBlock(std::string_view bytes) {
  if (CBlock* known = m_blocks.find(bytes)) return known;
  CBlock* block = m_context.semantor.findBlock(lexer().getText());
  return block ? m_blocks.add(bytes, block) : nullptr;
}

// False at the end of the record's own data: pairs after an embedded object belong to that object
// and repeat the codes of the enclosing entity.
bool RecordReader::leaveOut(long code) {
  if (code == kEmbeddedObject) {
    skip();
    return false;
  }
  if (isTolerant() && takeTrait(code)) return true;
  if (code == kLayoutName) {
    // Entities of the model name their layout as well.
    if (m_keepsSheets && !m_frameTaken && m_record.integer(67) != 0) m_layout = lexer().getText();
    return true;
  }
  if (isTolerant() && (code == kExtrusionX || code == kExtrusionY || code == kExtrusionZ)) {
    const double value = lexer().getDouble();
    coordinate(m_record.extrusion, (code - kExtrusionX) / 10) = value;
    return true;
  }
  if (isTolerant() || isMeant(code)) lexer().checkNumber();
  if (failed()) {
    spareNumber();
  } else if (isLoss(lexer())) {
    note(ReportCode::CodeDropped, decimal(code));
  } else if (code == kExtrusionZ && parseDouble(lexer().getBytes()).value != 1) {
    note(ReportCode::ExtrusionIgnored);
  }
  return true;
}

bool RecordReader::takeTrait(long code) {
  switch (code) {
    case kLineweight:
      takeLineweight();
      return true;
    case kTrueColor:
      takeTrueColor();
      return true;
    case kTransparency:
      takeTransparency();
      return true;
    default:
      return false;
  }
}

void RecordReader::takeTrueColor() {
  const long value = lexer().getInt();
  if (failed()) return;
  const std::optional<std::uint32_t> color = trueColorOf(value);
  if (!color) return note(ReportCode::NumberReplaced, decimal(kTrueColor));
  m_record.traits.trueColor = *color;
}

void RecordReader::takeLineweight() {
  const long value = lexer().getInt();
  if (failed()) return;
  if (value < ENT_TRAITS::kWeightDefault || value > ENT_TRAITS::kWidestWeight)
    return note(ReportCode::NumberReplaced, decimal(kLineweight));
  m_record.traits.lineweight = static_cast<short>(value);
}

void RecordReader::takeTransparency() {
  const long value = lexer().getInt();
  if (failed()) return;
  const std::optional<short> opacity = opacityOf(value);
  if (!opacity) return note(ReportCode::NumberReplaced, decimal(kTransparency));
  m_record.traits.opacity = *opacity;
}

void RecordReader::takeLtypeScale() {
  const double scale = lexer().getDouble();
  if (failed()) return;
  if (!(scale > 0)) return note(ReportCode::NumberReplaced, decimal(kLtypeScale));
  m_record.traits.ltypeScale = scale;
}

void RecordReader::takeThickness() {
  const double thickness = lexer().getDouble();
  if (!failed()) m_record.traits.thickness = thickness;
}

bool RecordReader::check(const RecordKind& kind, long missingParam) {
  if (failed()) return false;
  static constexpr CodeSet spared{1, 2, 3, 8, 66, 70};
  if (isTolerant()) supply();
  const CodeSet have = isTolerant() ? m_record.seen | spared : m_record.seen;
  if (!have.covers(kind.required)) {
    fail(CFileDXFIError::EntityNotBuilt);
    m_context.err.SetErrorExtraParam(missingParam, m_record.seen.bitsOf(kind.required));
    return false;
  }
  if (!(m_record.seen | CodeSet{kLayer}).covers(kind.required)) note(ReportCode::CodeMissing);
  if (!m_record.layer) fail(CFileDXFIError::WrongStructure);
  return !failed();
}

// Supplies the layer of a record without one, and the properties common to its entity.
void RecordReader::supply() {
  if (!m_record.layer) {
    const zim::WString zero(u"0");
    m_record.layer = m_context.semantor.getLayer(zero);
    note(ReportCode::LayerMissing);
  }
  const long hidden = m_record.integer(kHidden);
  m_record.traits.isVisible = hidden != 1;
  if (m_record.traits.thickness != 0) placeThickness();
  if (hidden != 0 && hidden != 1) note(ReportCode::NumberReplaced, decimal(kHidden));
  if (m_frameTaken) return;
  m_frameTaken = true;
  m_frame = {m_record.extrusion, m_record.integer(67) != 0, m_record};
}

// Entities are thick along the normal. Seen from below, they become thick downward; a drawing
// cannot hold other directions.
void RecordReader::placeThickness() {
  const PlaneAxes plane(m_record.extrusion);
  double& thickness = m_record.traits.thickness;
  if (plane.isMirrored()) {
    thickness = -thickness;
  } else if (!plane.isWorld()) {
    thickness = 0;
    note(ReportCode::CodeDropped, decimal(kThickness));
  }
}

bool RecordReader::takeCurveRoom(std::size_t points) {
  const bool fits = points <= curveRoom;
  if (fits)
    curveRoom -= points;
  else
    note(ReportCode::CurveCoarse);
  return fits;
}

bool RecordReader::recover(const zim::WString& kind) {
  // Nothing is recovered after a lack of memory, as the next entity would fail as well.
  if (!isTolerant() || m_context.err.GetErrorType() == CFileDXFIError::GeneralError) return false;
  note(ReportCode::EntityDropped, kind);
  m_context.err = CFileDXFIError();
  if (lexer().getGroupValue() != 0) skip();
  return true;
}

// Numbers other than points, sizes and angles are dispensable, but lists that a reader processes
// itself must be complete.
bool RecordReader::isSpare(long code, const CodeSet& wanted, const CodeSet& optional) {
  if (code == kThickness || code == kLtypeScale) return wanted.has(code);
  const bool isPlace = (code >= 10 && code < Record::kReals) || (code >= 210 && code < 240);
  return isPlace ? optional.has(code) : code >= CodeSet::kEnd || wanted.has(code);
}

bool RecordReader::spareNumber(ReportCode cost) {
  if (!m_context.spareNumber(cost)) return false;
  const long code = lexer().getGroupValue();
  if (code < CodeSet::kEnd) m_record.seen.remove(code);
  return true;
}

void RecordReader::noteAt(long line, ReportCode code, const zim::WString& sample) const {
  if (m_context.options.report) m_context.options.report->add(code, line, sample);
}

void RecordReader::skip() {
  while (m_context.lexer.read() != 0 && !failed()) {
  }
}

}  // namespace vek0::detail
