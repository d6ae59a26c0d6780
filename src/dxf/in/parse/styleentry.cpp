#include "dxf/in/parse/styleentry.h"

#include <algorithm>
#include <limits>

#include "dxf/in/itemflags.h"
#include "files/number.h"
#include "vek0core/geometry/angle.h"

namespace vek0::detail {
namespace {

constexpr long kShapeFile = 1;  // not a text font
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Style {
  zim::WString name, fontName;
  double fixedHeight = 0, widthScale = 1, obliqueDeg = 0, lastHeight = 0.2;
  long flags = 0;
  long fontLine = 0;  // of code 3; 0: there was none
  std::uint64_t handle = 0;
  long rangeLine = 0;  // of the first number out of range; 0: all are within
  bool hasExtendedData = false;
};

void takeNumber(SectionInput& in, double least, double most, Style& style, double& target) {
  const double number = in.lexer.getDouble();
  if (in.failed()) return;
  target = number;
  if (number >= least && number <= most) return;
  if (!in.isTolerant()) {
    if (style.rangeLine == 0) style.rangeLine = in.lexer.getLine();
    return;
  }
  in.note(ReportCode::NumberReplaced, in.lexer.getText());
  // Programs write a width of 0 if they have none.
  target = number == 0 && least > 0 ? 1 : std::clamp(number, least, most);
}

void takePair(SectionInput& in, long code, Style& style) {
  constexpr double maxOblique = 85;  // degrees
  switch (code) {
    case 2:
      style.name = in.lexer.getText();
      break;
    case 3:
      style.fontName = in.lexer.getText();
      style.fontLine = in.lexer.getLine();
      break;
    case 5:
      style.handle = parseHex(in.lexer.getBytes());
      break;
    case 40:
      takeNumber(in, 0, kInfinity, style, style.fixedHeight);
      break;
    case 41:
      takeNumber(in, 0.01, 100, style, style.widthScale);
      break;
    case 42:
      takeNumber(in, 0, kInfinity, style, style.lastHeight);
      break;
    case 50:
      takeNumber(in, -maxOblique, maxOblique, style, style.obliqueDeg);
      break;
    case 70:
      style.flags = in.flags() & ~kReferenced;
      break;
    case 4:
      if (!in.lexer.getBytes().empty()) in.note(ReportCode::CodeDropped, u"STYLE 4");
      break;
    case 71:
      in.passPair();
      if (!in.failed() && parseLong(in.lexer.getBytes()) != 0)
        in.note(ReportCode::CodeDropped, u"STYLE 71");
      break;
    case 1001:
      style.hasExtendedData = true;
      break;
    default:
      in.passPair();
  }
}

// Entries of shape files are skipped whatever they contain, and their flag may come last: nothing
// is validated before.
void create(SectionInput& in, const Style& style, StyleHandles& handles) {
  if ((style.flags & kShapeFile) != 0) return;
  if (style.hasExtendedData) in.note(ReportCode::CodeDropped, u"STYLE 1001");
  if (style.rangeLine != 0) return in.failAt(style.rangeLine, CFileDXFIError::OutOfRange);
  const bool named = !style.name.empty() && (style.fontLine != 0 || in.isTolerant());
  if (!named) return in.fail(CFileDXFIError::WrongStructure);
  const ICADFont* font = in.semantor.getFont(style.fontName);
  if (!font) return in.failAt(style.fontLine, CFileDXFIError::FontNotFound);
  const double oblique = style.obliqueDeg * kRadiansPerDegree;
  if (zim::equalsIgnoreCase(style.name, u"STANDARD"))
    in.semantor.createStyleStandard(font, style.fixedHeight, style.widthScale, oblique,
                                    style.lastHeight, style.flags);
  else
    in.semantor.createStyle(style.name, font, style.fixedHeight, style.widthScale, oblique,
                            style.lastHeight, style.flags);
  if (style.handle != 0) handles.emplace(style.handle, in.semantor.getStyle(style.name));
}

}  // namespace

void readStyleEntry(SectionInput& in, StyleHandles& handles) {
  Style style;
  for (;;) {
    const long code = in.read();
    if (in.failed()) return;
    if (code == 0) return create(in, style, handles);
    takePair(in, code, style);
    if (in.failed() && !in.spareNumber()) return;
  }
}

}  // namespace vek0::detail
