// Letters with their own transliteration are in one small table, with their case folded. Those
// with accents decompose into a letter and the accents, by the Unicode character database.
#include "dxf/out/transliteration.h"

#include <algorithm>
#include <iterator>

#include "zim0lang/casefold.h"

namespace vek0::detail {
namespace {

constexpr char16_t kNone = u'.';

// The letters that U+00C0 and the following decompose into.
constexpr char16_t kLatinFirst = 0xC0;
constexpr std::u16string_view kLatin =
    u"AAAAAA.CEEEEIIII.NOOOOO..UUUUY.SAAAAAA.CEEEEIIII.NOOOOO..UUUUY.Y"
    u"AAAAAACCCCCCCCDD..EEEEEEEEEEGGGGGGGGHH..IIIIIIIII...JJKK.LLLLLL."
    u"...NNNNNN...OOOOOO..RRRRRRSSSSSSSSTTTT..UUUUUUUUUUUUWWYYYZZZZZZ."
    u"................................OO.............UU..............."
    u".............AAIIOOUUUUUUUUUU.AAAA....GGKKOOOO..J...GG..NNAA...."
    u"AAAAEEEEIIIIOOOORRRRUUUUSSTT..HH......AAEEOOOOOOOOYY............"
    u"................";
constexpr char16_t kFurtherFirst = 0x1E00;
constexpr std::u16string_view kFurther =
    u"AABBBBBBCCDDDDDDDDDDEEEEEEEEEEFFGGHHHHHHHHHHIIIIKKKKKKLLLLLLLLMM"
    u"MMMMNNNNNNNNOOOOOOOOPPPPRRRRRRRRSSSSSSSSSSTTTTTTTTUUUUUUUUUUVVVV"
    u"WWWWWWWWWWXXXXYYZZZZZZHTWYAS....AAAAAAAAAAAAAAAAAAAAAAAAEEEEEEEE"
    u"EEEEEEEEIIIIOOOOOOOOOOOOOOOOOOOOOOOOUUUUUUUUUUUUUUYYYYYYYY......";

// The letters of other scripts that these decompose into, which are in the table below.
constexpr char16_t kGreekFirst = 0x370;
constexpr std::u16string_view kGreekAndCyrillic =
    u"................................ι..............................."
    u"υ.................σ............................................."
    u"................"
    u"е............и.................................................."
    u"................е............и.................................."
    u"................................................................"
    u".жж.............аааа..ее..әәжжзз..ииииоо..өөээуууууучч..ыы......";
constexpr char16_t kPolytonicFirst = 0x1F00;
constexpr std::u16string_view kPolytonic =
    u"ααααααααααααααααεεεεεε..εεεεεε..ηηηηηηηηηηηηηηηηιιιιιιιιιιιιιιιι"
    u"οοοοοο..οοοοοο..υυυυυυυυ.υ.υ.υ.υωωωωωωωωωωωωωωωωααεεηηιιοουυωω.."
    u"ααααααααααααααααηηηηηηηηηηηηηηηηωωωωωωωωωωωωωωωωααααα.ααααααα.ι."
    u"..ηηη.ηηεεηηη...ιιιι..ιιιιιι....υυυυρρυυυυυυρ.....ωωω.ωωοοωωω...";

struct Letter {
  char16_t letter;
  std::u16string_view latin;
};

// In the order of their codes.
constexpr Letter kLetters[] = {
    {u'\u00DF', u"SS"}, {u'\u00E4', u"AE"}, {u'\u00E6', u"AE"},   {u'\u00F0', u"D"},
    {u'\u00F6', u"OE"}, {u'\u00F8', u"OE"}, {u'\u00FC', u"UE"},   {u'\u00FE', u"TH"},
    {u'\u0111', u"D"},  {u'\u0127', u"H"},  {u'\u0131', u"I"},    {u'\u0142', u"L"},
    {u'\u014B', u"NG"}, {u'\u0153', u"OE"}, {u'\u0167', u"T"},    {u'\u0259', u"E"},
    {u'\u03AC', u"A"},  {u'\u03AD', u"E"},  {u'\u03AE', u"I"},    {u'\u03AF', u"I"},
    {u'\u03B1', u"A"},  {u'\u03B2', u"V"},  {u'\u03B3', u"G"},    {u'\u03B4', u"D"},
    {u'\u03B5', u"E"},  {u'\u03B6', u"Z"},  {u'\u03B7', u"I"},    {u'\u03B8', u"TH"},
    {u'\u03B9', u"I"},  {u'\u03BA', u"K"},  {u'\u03BB', u"L"},    {u'\u03BC', u"M"},
    {u'\u03BD', u"N"},  {u'\u03BE', u"X"},  {u'\u03BF', u"O"},    {u'\u03C0', u"P"},
    {u'\u03C1', u"R"},  {u'\u03C3', u"S"},  {u'\u03C4', u"T"},    {u'\u03C5', u"Y"},
    {u'\u03C6', u"F"},  {u'\u03C7', u"CH"}, {u'\u03C8', u"PS"},   {u'\u03C9', u"O"},
    {u'\u03CA', u"I"},  {u'\u03CB', u"Y"},  {u'\u03CC', u"O"},    {u'\u03CD', u"Y"},
    {u'\u03CE', u"O"},  {u'\u0430', u"A"},  {u'\u0431', u"B"},    {u'\u0432', u"V"},
    {u'\u0433', u"G"},  {u'\u0434', u"D"},  {u'\u0435', u"E"},    {u'\u0436', u"ZH"},
    {u'\u0437', u"Z"},  {u'\u0438', u"I"},  {u'\u0439', u"Y"},    {u'\u043A', u"K"},
    {u'\u043B', u"L"},  {u'\u043C', u"M"},  {u'\u043D', u"N"},    {u'\u043E', u"O"},
    {u'\u043F', u"P"},  {u'\u0440', u"R"},  {u'\u0441', u"S"},    {u'\u0442', u"T"},
    {u'\u0443', u"U"},  {u'\u0444', u"F"},  {u'\u0445', u"KH"},   {u'\u0446', u"TS"},
    {u'\u0447', u"CH"}, {u'\u0448', u"SH"}, {u'\u0449', u"SHCH"}, {u'\u044A', u""},
    {u'\u044B', u"Y"},  {u'\u044C', u""},   {u'\u044D', u"E"},    {u'\u044E', u"YU"},
    {u'\u044F', u"YA"}, {u'\u0451', u"E"},  {u'\u0452', u"DJ"},   {u'\u0453', u"G"},
    {u'\u0454', u"YE"}, {u'\u0455', u"DZ"}, {u'\u0456', u"I"},    {u'\u0457', u"YI"},
    {u'\u0458', u"J"},  {u'\u0459', u"LJ"}, {u'\u045A', u"NJ"},   {u'\u045B', u"C"},
    {u'\u045C', u"K"},  {u'\u045E', u"U"},  {u'\u045F', u"DZ"},   {u'\u0491', u"G"},
    {u'\u0493', u"G"},  {u'\u049B', u"K"},  {u'\u04A3', u"N"},    {u'\u04AF', u"U"},
    {u'\u04B1', u"U"},  {u'\u04BB', u"H"},  {u'\u04D9', u"A"},    {u'\u04E9', u"O"},
};

constexpr char16_t kFirstMark = 0x300, kLastMark = 0x36F, kBreve = 0x306, kDiaeresis = 0x308;

bool isMark(char16_t unit) { return unit >= kFirstMark && unit <= kLastMark; }

char16_t letterAt(std::u16string_view letters, char16_t first, char16_t unit) {
  const std::size_t at = static_cast<std::size_t>(unit) - first;
  return unit >= first && at < letters.size() ? letters[at] : kNone;
}

// The letter without its accents if it has a decomposition into a letter of another script.
char16_t withoutAccents(char16_t unit) {
  char16_t letter = letterAt(kGreekAndCyrillic, kGreekFirst, unit);
  if (letter == kNone) letter = letterAt(kPolytonic, kPolytonicFirst, unit);
  return letter == kNone ? zim::foldCase(unit) : letter;
}

// Appends the letters that stand for the unit, which may be none; false if it has no such letters.
bool appendLatin(char16_t unit, std::u16string& out) {
  const char16_t letter = withoutAccents(unit);
  const auto known =
      std::lower_bound(std::begin(kLetters), std::end(kLetters), letter,
                       [](const Letter& row, char16_t value) { return row.letter < value; });
  if (known != std::end(kLetters) && known->letter == letter) {
    out += known->latin;
    return true;
  }
  char16_t latin = letterAt(kLatin, kLatinFirst, unit);
  if (latin == kNone) latin = letterAt(kFurther, kFurtherFirst, unit);
  if (latin == kNone) return false;
  out += latin;
  return true;
}

// A mark after its letter, where both together have a row of their own in the table.
void takeMark(char16_t letter, char16_t mark, std::u16string& out) {
  const char16_t folded = zim::foldCase(letter);
  if (mark == kDiaeresis && (folded == u'a' || folded == u'o' || folded == u'u'))
    out += u'E';
  else if (mark == kBreve && folded == u'\u0438')
    out.back() = u'Y';
  else if (mark == kDiaeresis && folded == u'\u0456')
    out.insert(out.size() - 1, 1, u'Y');
}

}  // namespace

std::u16string transliterated(std::u16string_view name) {
  std::u16string out;
  bool isChanged = false;
  char16_t letter = 0;  // before a mark
  for (const char16_t unit : name) {
    if (isMark(unit)) {
      takeMark(letter, unit, out);
      isChanged = true;
      continue;
    }
    letter = unit;
    if (unit < kLatinFirst) {
      out += unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
    } else if (appendLatin(unit, out)) {
      isChanged = true;
    } else {
      out += unit;
    }
  }
  return isChanged ? out : std::u16string(name);
}

}  // namespace vek0::detail
