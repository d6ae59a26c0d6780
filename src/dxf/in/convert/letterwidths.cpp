#include "dxf/in/convert/letterwidths.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <string>

namespace vek0::detail {
namespace {

constexpr char16_t kFirst = u' ', kLast = u'~';

// From space to tilde; capitals are 21 high.
constexpr double kStrokeCap = 21;
constexpr unsigned char kStroke[] = {
    16, 10, 16, 21, 20, 24, 26, 10, 14, 14, 16, 26, 10, 26, 10, 22, 20, 20, 20, 20, 20, 20, 20, 20,
    20, 20, 10, 10, 24, 26, 24, 18, 27, 18, 21, 21, 21, 19, 18, 21, 22, 8,  16, 21, 17, 24, 22, 22,
    21, 22, 21, 20, 16, 22, 18, 24, 20, 18, 20, 14, 14, 14, 16, 16, 10, 19, 19, 18, 19, 18, 12, 19,
    19, 8,  10, 17, 8,  30, 19, 19, 19, 19, 13, 17, 12, 19, 16, 22, 17, 16, 17, 14, 8,  14, 24};
// Capitals are 718 high.
constexpr double kSansCap = 718;
constexpr unsigned short kSans[] = {
    278, 278, 355, 556, 556, 889, 667, 191, 333, 333, 389, 584, 278, 333,  278, 278, 556, 556, 556,
    556, 556, 556, 556, 556, 556, 556, 278, 278, 584, 584, 584, 556, 1015, 667, 667, 722, 722, 667,
    611, 778, 722, 278, 500, 667, 556, 833, 722, 778, 667, 778, 722, 667,  611, 722, 667, 944, 667,
    667, 611, 278, 278, 278, 469, 556, 333, 556, 556, 500, 556, 556, 278,  556, 556, 222, 222, 500,
    222, 833, 556, 556, 556, 556, 333, 500, 278, 556, 500, 722, 500, 500,  500, 334, 260, 334, 584};
static_assert(std::size(kStroke) == kLast - kFirst + 1 && std::size(kSans) == std::size(kStroke));

constexpr double kLetteringShare = 0.78, kNarrowShare = 0.82, kMonoWidth = 1.05;
// Means over the characters of a class; ideographs and syllables fill a square.
constexpr double kCapital = 0.95, kSmall = 0.78, kSquare = 1.3, kSign = 0.8;

struct Range {
  char16_t first, last;
  double width;
};

constexpr Range kRanges[] = {
    {0x00A0, 0x00A0, 0.39},     {0x00B0, 0x00B0, 0.56},     {0x00B2, 0x00B3, 0.46},
    {0x00C0, 0x00DE, kCapital}, {0x00DF, 0x00FF, kSmall},   {0x0300, 0x036F, 0},
    {0x0391, 0x03A9, kCapital}, {0x0400, 0x042F, kCapital}, {0x0430, 0x045F, kSmall},
    {0x1100, 0x115F, kSquare},  {0x200B, 0x200F, 0},        {0x2E80, 0xD7FF, kSquare},
    {0xD800, 0xDBFF, kSquare},  // a pair of surrogates is as wide as its first half
    {0xDC00, 0xDFFF, 0},        {0xF900, 0xFAFF, kSquare},  {0xFF00, 0xFF60, kSquare},
};

double otherWidth(char16_t letter) {
  for (const Range& range : kRanges)
    if (letter >= range.first && letter <= range.last) return range.width;
  return kSign;
}

bool hasAny(const std::u16string& name, std::initializer_list<std::u16string_view> parts) {
  return std::any_of(parts.begin(), parts.end(), [&](std::u16string_view part) {
    return name.find(part) != std::u16string::npos;
  });
}

}  // namespace

LetterForm letterFormOf(std::u16string_view font) {
  std::u16string name(font.substr(font.find_last_of(u"/\\") + 1));  // npos + 1 is 0
  for (char16_t& c : name)
    if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c - u'A' + u'a');
  if (hasAny(name, {u"mono", u"courier", u"consol"})) return LetterForm::Mono;
  if (hasAny(name, {u"narrow", u"condensed", u"isocp"})) return LetterForm::Narrow;
  for (const std::u16string_view lettering : {u"standard", u"iso", u"normal", u"unicode"})
    if (name == lettering) return LetterForm::Lettering;
  const bool isStroke =
      name.empty() || name == u"romans" || hasAny(name, {u".shx", u"txt", u"simplex"});
  return isStroke ? LetterForm::Stroke : LetterForm::Sans;
}

double letterWidth(char16_t letter, LetterForm form) {
  const bool isTabled = letter >= kFirst && letter <= kLast;
  const double sans = isTabled ? kSans[letter - kFirst] / kSansCap : otherWidth(letter);
  const double stroke = isTabled ? kStroke[letter - kFirst] / kStrokeCap : sans;
  switch (form) {
    case LetterForm::Stroke:
      return stroke;
    case LetterForm::Lettering:
      return kLetteringShare * stroke;
    case LetterForm::Narrow:
      return kNarrowShare * sans;
    case LetterForm::Mono:
      return sans > 0 && sans < kSquare ? kMonoWidth : sans;
    default:
      return sans;
  }
}

double leastShare(LetterForm form) {
  constexpr double ofStrokes = 0.75, ofLettering = 0.9, ofOthers = 0.95;
  if (form == LetterForm::Stroke) return ofStrokes;
  return form == LetterForm::Lettering ? ofLettering : ofOthers;
}

}  // namespace vek0::detail
