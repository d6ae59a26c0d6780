#include <cmath>

#include "dxf/in/records/entityreaders.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/enttext.h"
#include "vek0core/geometry/angle.h"
#include "vek0core/tables/style.h"
#include "vek0core/tables/text.h"

namespace vek0::detail {
namespace {

constexpr CodeSet kTextCodes{1, 7, 10, 20, 30, 11, 21, 31, 40, 41, 50, 51, 71, 72};
constexpr CodeSet kTextVital{10, 20};

// Code 70 of attributes.
// Code 71.
constexpr long kBackward = 2, kUpsideDown = 4;
// Code 72 beyond left, center and right.
constexpr long kAligned = 3, kMiddle = 4, kFit = 5;
constexpr long kVertMiddle = 2;

// Text has no flags for mirroring: backward is a negative width, upside down that plus half a turn,
// and both together only half a turn.
void mirror(long generation, CTextContext& context) {
  const bool upsideDown = (generation & kUpsideDown) != 0;
  if (((generation & kBackward) != 0) != upsideDown)
    context.setWidthScale(-context.getWidthScale());
  if (upsideDown) context.setRotate(context.getRotate() + kPi);
}

// Lets aligned or fitted text run from the first point to the second, also if it is mirrored.
// Returns false if it cannot.
bool span(TextFit fit, const PNT_3D& from, const PNT_3D& to, bool isMirrored, TEXT_3D& text) {
  constexpr double kSame = 1e-9;  // relative difference of a length that was computed
  const double length = std::hypot(to.x - from.x, to.y - from.y), way = from.angle(to);
  if (text.isVertical() || !(length > 0) || !std::isfinite(length)) return false;
  CTextContext context = text.getContext();
  // Mirrored text runs against its baseline or is upside down, as its rotation says.
  const bool isTurned = isMirrored && std::cos(context.getRotate() - way) < 0;
  context.setRotate(isTurned ? std::remainder(way + kPi, 2 * kPi) : way);
  if ((context.getWidthScale() < 0) != isTurned) text.set(to.x, to.y, text.z);
  // In the metrics of the present font; in others it is stretched when drawn.
  const double present = std::fabs(text.getStringLength());
  const double factor = present > 0 ? length / present : 1;
  if (std::fabs(factor - 1) > kSame) {
    if (fit == TextFit::Width)
      context.setWidthScale(context.getWidthScale() * factor);
    else
      context.setHeight(context.getHeight() * factor);
  }
  text.setContext(context);
  text.setFit(fit, length);
  return text.getFit() == fit;
}

// For a height that is not positive: its absolute value, or that of the style, if either is.
double substituteHeight(double height, const CStyle* style) {
  if (height < 0) return -height;
  const double fixed = style ? style->getFixedHeight() : 0;
  return fixed > 0 ? fixed : 1;
}

CTextContext context(RecordReader& in, const zim::WString& string) {
  const Record& r = in.record();
  CTextContext c;
  c.setHeight(r.real(40));
  if (in.isTolerant() && !(c.getHeight() > 0)) {
    c.setHeight(substituteHeight(c.getHeight(), r.style));
    in.note(ReportCode::NumberReplaced, u"40");
  }
  c.setWidthScale(r.real(41, 1));
  c.setOblique(r.real(51) * kRadiansPerDegree);
  c.setRotate(r.real(50) * kRadiansPerDegree);
  c.setString(string);
  mirror(r.integer(71), c);
  return c;
}

// The text of the current record, showing `string`. `verticalCode` holds the
// vertical justification: in attributes 73 is the length of a field.
TEXT_3D placedText(RecordReader& in, const zim::WString& string, long verticalCode) {
  const Record& r = in.record();
  CStyle* style = r.style ? r.style : in.context().semantor.getStyleStandard();
  CTextContext c = context(in, string);
  const long horizontal = r.integer(72), vertical = r.integer(verticalCode);
  const bool stretched = horizontal == kAligned || horizontal == kFit;
  // The second point applies except for left-justified text on its baseline.
  const bool second = (horizontal != 0 || vertical != 0) && !stretched && r.seen.has(11);
  const PNT_3D at = r.point(second ? 1 : 0);
  TEXT_3D text(c, style, at.x, at.y, at.z, 0);
  if (stretched) {
    const TextFit fit = horizontal == kFit ? TextFit::Width : TextFit::Size;
    const bool isMirrored = (r.integer(71) & (kBackward | kUpsideDown)) != 0;
    const bool spans = r.seen.has(11) && span(fit, r.point(0), r.point(1), isMirrored, text);
    if (!spans) in.note(ReportCode::TextFitted, string);
  } else {
    text.setAlign(horizontal == kMiddle ? text.findJustify(1, kVertMiddle)
                                        : text.findJustify(horizontal, vertical));
  }
  return text;
}

bool read(RecordReader& in, const RecordKind& kind) {
  return in.read(in.isTolerant() ? RecordKind(kind.wanted, kTextVital) : kind);
}

}  // namespace

EntPtr readText(RecordReader& in) {
  static constexpr RecordKind kind(kTextCodes | CodeSet{73}, {8, 10, 20, 40});
  if (!read(in, kind)) return nullptr;
  const Record& r = in.record();
  return in.make().text(r, placedText(in, r.text(1), 73));
}

EntPtr readAttdef(RecordReader& in) {
  static constexpr RecordKind kind(kTextCodes | CodeSet{2, 3, 70, 74},
                                   {8, 10, 20, 40, 1, 2, 3, 70});
  if (!read(in, kind)) return nullptr;
  const Record& r = in.record();
  return in.make().attdef(r, placedText(in, r.text(2), 74), r.text(1), r.text(3), r.integer(70));
}

std::unique_ptr<CEntAttrib> readAttrib(RecordReader& in) {
  static constexpr RecordKind kind(kTextCodes | CodeSet{2, 70, 74}, {8, 10, 20, 40, 1, 2, 70});
  if (!read(in, kind)) return nullptr;
  const Record& r = in.record();
  long flags = r.integer(70);
  // Tolerant reading makes it a trait.
  if (!in.isTolerant() && r.integer(60) != 0) flags |= CEntAttrib::kInvisible;
  return in.make().attrib(r, placedText(in, r.text(1), 74), r.text(2), flags);
}

}  // namespace vek0::detail
