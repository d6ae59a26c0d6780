#include "dxf/in/records/ltypereader.h"

#include <algorithm>
#include <utility>

#include "dxf/in/itemflags.h"
#include "files/number.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/tables/text.h"

namespace vek0::detail {
namespace {

constexpr long kAlignment = 65;  // 'A', the only one defined
// Code 74.
constexpr long kPlainDash = 0, kAbsoluteAngle = 1, kTextDash = 2, kShapeDash = 4;

}  // namespace

struct LtypeReader::Entry {
  zim::WString name, description;
  long flags = 0;
  long announced = -1;  // code 73; -1 if not seen yet
  long dashes = 0;      // codes 49 seen
  long types = 0;       // codes 74 seen
  CLtypeComplexDashSeq sequence;
  std::vector<TextStyle> texts;
  bool lostShapes = false;
  bool hasExtendedData = false;
};

void LtypeReader::read() {
  Entry entry;
  m_putBack = false;
  for (;;) {
    const long code = next();
    if (failed()) return;
    if (code == 0) return create(entry);
    takePair(code, entry);
    if (failed() && !m_context.spareNumber()) return;
  }
}

void LtypeReader::takePair(long code, Entry& entry) {
  CFileDXFILexer& lexer = m_context.lexer;
  switch (code) {
    case 2:
      entry.name = lexer.getText();
      break;
    case 3:
      entry.description = lexer.getText();
      break;
    case 49:
      takeDash(entry);
      break;
    case 70:
      takeFlags(entry);
      break;
    case 72:
      takeAlignment();
      break;
    case 73:
      takeCount(entry);
      break;
    case 74:
      if (m_complexDashes) takeElementType(entry);
      break;
    case 40:
      lexer.checkNumber();
      break;
    case 1001:
      if (!entry.hasExtendedData) m_context.note(ReportCode::CodeDropped, u"LTYPE 1001");
      entry.hasExtendedData = true;
      break;
    default:
      if (isTolerant()) lexer.checkNumber();
  }
}

void LtypeReader::takeFlags(Entry& entry) {
  entry.flags = m_context.lexer.getInt() & ~kReferenced;
  if (!isTolerant() || entry.flags >= 0) return;
  m_context.note(ReportCode::FlagsReplaced, m_context.lexer.getText());
  entry.flags = 0;
}

void LtypeReader::takeAlignment() {
  const long alignment = integer();
  if (failed() || alignment == kAlignment) return;
  if (!isTolerant()) return fail(CFileDXFIError::WrongStructure);
  m_context.note(ReportCode::NumberReplaced, u"72");
}

// Dashes can be counted: an invalid count loses nothing.
long LtypeReader::integer() const {
  const bool isMissing = isTolerant() && m_context.lexer.getBytes().empty();
  return isMissing ? -1 : m_context.lexer.getInt();
}

void LtypeReader::takeCount(Entry& entry) {
  const long count = integer();
  if (failed()) return;
  if (isTolerant()) {
    entry.announced = count;
    return;
  }
  // Strict reading requires the count before the dashes.
  if (count < 0 || entry.dashes > 0) return fail(CFileDXFIError::WrongStructure);
  entry.announced = count;
}

void LtypeReader::takeDash(Entry& entry) {
  if (!isTolerant() && entry.dashes >= entry.announced) return fail(CFileDXFIError::WrongStructure);
  const double length = m_context.lexer.getDouble();
  if (failed()) return;
  ++entry.dashes;
  entry.sequence.AddDashDouble(length);
}

void LtypeReader::takeElementType(Entry& entry) {
  const long type = m_context.lexer.getInt();
  if (failed()) return;
  if (++entry.types > entry.dashes && !isTolerant()) return fail(CFileDXFIError::WrongStructure);
  if (isTolerant()) {
    // Other bits do not make an element.
    if ((type & (kTextDash | kShapeDash)) != 0) takeElement(type, entry);
    return;
  }
  switch (type) {
    case kPlainDash:
      break;
    case kTextDash:
      takeText(entry);
      break;
    case kShapeDash:
      skipShape();
      break;
    default:
      fail(CFileDXFIError::WrongStructure);
  }
}

// Reads the parts of an element in any order, up to the next one; the first bit of its type, an
// absolute angle, cannot be stored.
void LtypeReader::takeElement(long type, Entry& entry) {
  double height = 1, angleDeg = 0, x = 0, y = 0;
  std::uint64_t style = 0;
  zim::WString text;
  bool taken = true;
  while (taken && !failed()) {
    switch (next()) {
      case 75:
        m_context.lexer.checkNumber();
        m_context.spareNumber();
        break;
      case 340:
        style = parseHex(m_context.lexer.getBytes());
        break;
      case 46:
        takeReal(height);
        break;
      case 50:
        takeReal(angleDeg);
        break;
      case 44:
        takeReal(x);
        break;
      case 45:
        takeReal(y);
        break;
      case 9:
        text = m_context.lexer.getText();
        break;
      default:
        taken = false;
    }
  }
  m_putBack = true;
  if (failed()) return;
  if ((type & kAbsoluteAngle) != 0) m_context.note(ReportCode::CodeDropped, u"LTYPE 74");
  const CTextContext context(height, 0, 1, angleDeg * kRadiansPerDegree, text);
  if ((type & kTextDash) != 0)
    addText(entry, context, x, y, style);
  else
    m_context.note(ReportCode::ShapeDropped, {});
  entry.lostShapes = entry.lostShapes || (type & kTextDash) == 0;
}

// If the number is invalid, the element keeps its value.
void LtypeReader::takeReal(double& value) const {
  const double number = m_context.lexer.getDouble();
  if (!failed())
    value = number;
  else
    m_context.spareNumber();
}

long LtypeReader::next() {
  return std::exchange(m_putBack, false) ? m_context.lexer.getGroupValue() : m_context.lexer.read();
}

// The text's height is the file's unmodified scale; renderers multiply it by the style's fixed
// height.
void LtypeReader::takeText(Entry& entry) {
  if (!expect(75)) return;
  m_context.lexer.checkNumber();
  if (!expect(340)) return;
  const std::uint64_t style = parseHex(m_context.lexer.getBytes());
  CTextContext context;
  context.setWidthScale(1);
  context.setHeight(expectDouble(46));
  context.setRotate(expectDouble(50) * kRadiansPerDegree);
  const double x = expectDouble(44), y = expectDouble(45);
  if (!expect(9)) return;
  context.setString(m_context.lexer.getText());
  addText(entry, context, x, y, style);
}

void LtypeReader::addText(Entry& entry, const CTextContext& context, double x, double y,
                          std::uint64_t style) const {
  if (style != 0) entry.texts.push_back({entry.sequence.GetNoDashes(), style});
  entry.sequence.AddDashText(TEXT_3D(context, m_context.semantor.getStyleStandard(), x, y, 0, 0));
}

// Shapes are not supported: the preceding dash keeps the space of the shape.
void LtypeReader::skipShape() {
  for (const long code : {75, 340, 46, 50, 44, 45}) {
    if (!expect(code)) return;
    m_context.lexer.checkNumber();
  }
  if (m_context.err.HasAnError()) return;
  m_context.note(ReportCode::ShapeDropped, {});
}

bool LtypeReader::expect(long code) {
  if (failed()) return false;
  const long found = m_context.lexer.read();
  if (!failed() && found != code) fail(CFileDXFIError::InconsistentRecord);
  return !failed();
}

double LtypeReader::expectDouble(long code) {
  return expect(code) ? m_context.lexer.getDouble() : 0;
}

// Whether a pattern has more than dots.
bool LtypeReader::isVisible(const CLtypeComplexDashSeq& sequence) {
  const double dot = sequence.GetPatternLen() / 100;
  for (int i = 0; i < sequence.GetNoDashes(); ++i)
    if (!sequence[i]->IsDoubleDash() || sequence[i]->GetValue() > dot) return true;
  return false;
}

void LtypeReader::create(Entry& entry) {
  IFileDXFISemantor& semantor = m_context.semantor;
  if (entry.name.empty()) return fail(CFileDXFIError::WrongStructure);
  // The fixed linetypes exist already and cannot be redefined.
  for (const zim::Char* fixed : {u"continuous", u"byblock", u"bylayer"})
    if (zim::equalsIgnoreCase(entry.name, fixed)) return;
  if (isTolerant() && std::max(entry.announced, 0L) != entry.dashes)
    m_context.note(ReportCode::NumberReplaced, u"73");
  // Most of its line were the shapes.
  if (entry.lostShapes && !isVisible(entry.sequence)) entry.sequence.ClearDashes();
  if ((entry.flags & kOfXRef) == 0) return define(entry, entry.flags);
  zim::WString xref, local;
  // The flag requires a dependent name.
  if (scomposeName(entry.name, xref, local))
    return semantor.createLtypeXRef(xref, local, entry.description, entry.sequence, entry.flags);
  if (!isTolerant()) return fail(CFileDXFIError::WrongStructure);
  m_context.note(ReportCode::FlagsReplaced, entry.name);
  define(entry, entry.flags & ~kOfXRef);
}

// The semantor may keep a linetype that the drawing has.
void LtypeReader::define(Entry& entry, long flags) {
  IFileDXFISemantor& semantor = m_context.semantor;
  const CLtype* known = semantor.getLtype(entry.name);
  const bool wasEmpty = !known || known->getNoDashes() == 0;
  semantor.createLtype(entry.name, entry.description, entry.sequence, flags);
  CLtype* made = semantor.getLtype(entry.name);
  if (!made || !wasEmpty || made->getNoDashes() != entry.sequence.GetNoDashes()) return;
  for (TextStyle& text : entry.texts) {
    text.ltype = made;
    m_texts.push_back(text);
  }
}

void LtypeReader::settle(const FindStyle& find) {
  for (const TextStyle& text : m_texts)
    if (CStyle* style = find(text.style)) text.ltype->GetDashSeq().SetTextStyle(text.dash, style);
  m_texts.clear();
}

}  // namespace vek0::detail
