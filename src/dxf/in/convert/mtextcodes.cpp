// Decodes the codes within an MTEXT into pieces of text, each with the index of its format, and
// paragraphs. Formats repeat, so recent ones are compared before a new one is stored. Braces save
// and restore the format. Unknown codes are treated as text. Codes that cannot be shown are
// recorded for the report.
#include "dxf/in/convert/mtextcodes.h"

#include <algorithm>
#include <cmath>

#include "dxf/in/convert/mtextcursor.h"
#include "dxf/in/recordreader.h"
#include "files/number.h"
#include "vek0core/files/textcodec.h"
#include "vek0core/tables/palette.h"

namespace vek0::detail {
namespace {

constexpr std::size_t kMostGroups = 256;   // maximum nesting for which formats are remembered
constexpr std::size_t kRecentFormats = 8;  // number of recent formats compared
constexpr std::size_t kMostTabs = 64;      // of a paragraph
constexpr std::size_t kMostDropped = 16;   // codes to report
constexpr double kScaleLimit = 1e6;        // for heights and widths relative to the initial ones
constexpr double kMaxObliqueDeg = 85;
constexpr short kMaxColor = 256;

// Symbols in the font for geometric tolerances, by letter.
constexpr char16_t kSymbols[] = {u'\u2220', u'\u27C2', u'\u23E5', u'\u2313', u'\u25CB', u'\u2225',
                                 u'\u232D', u'\u2197', u'\u232F', u'\u2316', u'\u2312', u'\u24C1',
                                 u'\u24C2', u'\u2300', u'\u25A1', u'\u24C5', u'\u2104', u'\u25CE',
                                 u'\u24C8', u'\u2330', u'\u23E4', u'\u2334', u'\u2335', u'\u21A7',
                                 u'\u2332', u'\u2333'};

char16_t symbol(char16_t letter) {
  return letter >= u'a' && letter <= u'z' ? kSymbols[letter - u'a'] : letter;
}

// Whether a line may break before and after it.
bool isIdeographic(char16_t c) { return c >= 0x2E80 && (c < 0xD800 || c > 0xDFFF); }

class Decoder {
 public:
  Decoder(std::u16string_view text, const MTextFormat& base) : m_in(text), m_base(base) {
    m_behindArguments = text.size() - (text.rfind(u';') + 1);  // npos + 1 is 0
    m_content.formats.push_back(base);
    m_content.paragraphs.emplace_back();
  }

  MTextContent run() {
    while (!m_in.empty()) step();
    return std::move(m_content);
  }

 private:
  struct Look {
    std::size_t format = 0;  // index
    bool symbols = false;    // letters represent symbols of geometric tolerances
  };

  void step();
  void escape();
  bool formatCode(char16_t code);
  bool argumentCode(char16_t code);
  void lineCode(char16_t code);
  void caret();
  void openGroup();
  void closeGroup();

  void height();
  void width();
  void factor(double MTextFormat::*member, double base);
  void oblique();
  void color();
  void trueColor();
  void align();
  void tracking();
  void font();
  void stack();
  void stackUnit(std::u16string& out);
  void paragraph();
  void setParagraph(MTextCursor& in, char16_t code, MTextParagraph& paragraph);

  MTextPiece& add(MTextPiece::Kind kind);
  void addLetter(char16_t c);
  void change(const MTextFormat& format);
  const MTextFormat& format() const { return m_content.formats[m_look.format]; }
  void drop(std::u16string_view code);
  bool hasArgument() const { return m_in.rest().size() > m_behindArguments; }

  MTextCursor m_in;
  std::size_t m_behindArguments;  // units after the last semicolon
  MTextFormat m_base;
  MTextContent m_content;
  Look m_look;
  std::vector<Look> m_groups;    // looks outside the open braces
  std::size_t m_deepGroups = 0;  // open braces beyond those
};

void Decoder::step() {
  switch (m_in.peek()) {
    case u'\\':
      return escape();
    case u'^':
      return caret();
    case u'{':
      return openGroup();
    case u'}':
      return closeGroup();
    case u' ':
      m_in.skip(1);
      add(MTextPiece::Blank);
      return;
    default:
      addLetter(m_in.take());
  }
}

void Decoder::openGroup() {
  m_in.skip(1);
  if (m_groups.size() < kMostGroups)
    m_groups.push_back(m_look);
  else
    ++m_deepGroups;
}

// An unmatched closing brace is not displayed.
void Decoder::closeGroup() {
  m_in.skip(1);
  if (m_deepGroups > 0) {
    --m_deepGroups;
  } else if (!m_groups.empty()) {
    m_look = m_groups.back();
    m_groups.pop_back();
  }
}

void Decoder::caret() {
  std::u16string unit;
  if (!m_in.takeEscape(unit)) return addLetter(m_in.take());
  if (unit == u"\t")
    add(MTextPiece::Tab);
  else if (unit == u"\n")
    add(MTextPiece::LineBreak);
  else if (unit == u"^")
    addLetter(u'^');
}

void Decoder::escape() {
  const char16_t code = m_in.peek(1);
  std::u16string unit;
  if ((code == u'U' || code == u'M') && m_in.takeEscape(unit)) {
    for (const char16_t c : unit) addLetter(c);
    return;
  }
  m_in.skip(1);
  // A backslash at the end of the text stands for itself.
  if (m_in.empty()) return addLetter(u'\\');
  m_in.skip(1);
  if (formatCode(code)) return;
  addLetter(u'\\');
  addLetter(code);
}

bool Decoder::formatCode(char16_t code) {
  switch (code) {
    case u'\\':
    case u'{':
    case u'}':
      addLetter(code);
      return true;
    case u'~':
      addLetter(u'\u00A0');
      return true;
    case u'P':
    case u'X':
      add(MTextPiece::LineBreak);
      return true;
    case u'N':
      add(MTextPiece::ColumnBreak);
      return true;
    case u'L':
    case u'l':
    case u'O':
    case u'o':
    case u'K':
    case u'k':
      lineCode(code);
      return true;
    default:
      return argumentCode(code);
  }
}

bool Decoder::argumentCode(char16_t code) {
  static constexpr struct {
    char16_t code;
    void (Decoder::*read)();
  } readers[] = {
      {u'H', &Decoder::height},   {u'W', &Decoder::width},     {u'Q', &Decoder::oblique},
      {u'C', &Decoder::color},    {u'c', &Decoder::trueColor}, {u'A', &Decoder::align},
      {u'T', &Decoder::tracking}, {u'f', &Decoder::font},      {u'F', &Decoder::font},
      {u'S', &Decoder::stack},    {u'p', &Decoder::paragraph},
  };
  for (const auto& reader : readers) {
    if (reader.code != code) continue;
    (this->*reader.read)();
    return true;
  }
  return false;
}

// The line that a code begins (in upper case) or ends.
bool MTextFormat::*lineOf(char16_t code) {
  switch (code) {
    case u'L':
    case u'l':
      return &MTextFormat::under;
    case u'O':
    case u'o':
      return &MTextFormat::over;
    default:
      return &MTextFormat::struck;
  }
}

void Decoder::lineCode(char16_t code) {
  MTextFormat f = format();
  f.*lineOf(code) = code < u'a';
  change(f);
}

void Decoder::height() { factor(&MTextFormat::height, m_base.height); }

void Decoder::width() { factor(&MTextFormat::widthScale, m_base.widthScale); }

// A number, or, followed by an x, a multiple of the current value.
void Decoder::factor(double MTextFormat::*member, double base) {
  double value;
  const bool isNumber = m_in.takeNumber(value);
  const bool isRelative = m_in.skipIf(u'x') || m_in.skipIf(u'X');
  m_in.skipIf(u';');
  MTextFormat f = format();
  if (isRelative) value *= f.*member;
  // Accumulated relative heights could overflow or vanish; such a code is ignored.
  if (!isNumber || !(value > 0) || !(value >= base / kScaleLimit) || !(value <= base * kScaleLimit))
    return;
  f.*member = value;
  change(f);
}

void Decoder::oblique() {
  double degrees;
  const bool isNumber = m_in.takeNumber(degrees);
  m_in.skipIf(u';');
  if (!isNumber || std::fabs(degrees) > kMaxObliqueDeg) return;
  MTextFormat f = format();
  f.oblique = degrees * kRadiansPerDegree;
  change(f);
}

void Decoder::color() {
  double index;
  const bool isNumber = m_in.takeNumber(index);
  m_in.skipIf(u';');
  if (!isNumber || index < 0 || index > kMaxColor) return drop(u"C");
  MTextFormat f = format();
  f.color = static_cast<short>(index);
  f.trueColor = ENT_TRAITS::kNoTrueColor;
  change(f);
}

// A number with blue in its highest byte, unlike elsewhere.
void Decoder::trueColor() {
  double value;
  const bool isNumber = m_in.takeNumber(value);
  m_in.skipIf(u';');
  constexpr double most = 0xFFFFFF;
  if (!isNumber || !(value >= 0 && value <= most)) return drop(u"c");
  // Unpacked with red and blue exchanged, hence swapped back.
  const RGB_COLOR swapped = unpackColor(static_cast<long>(value));
  MTextFormat f = format();
  const RGB_COLOR color{swapped.b, swapped.g, swapped.r};
  f.color = nearestPaletteColor(color);
  f.trueColor = packColor(color);
  change(f);
}

MTextFormat::Align alignOf(double code) {
  if (code < 1) return MTextFormat::Bottom;
  return code < 2 ? MTextFormat::Middle : MTextFormat::Top;
}

void Decoder::align() {
  double value;
  const bool isNumber = m_in.takeNumber(value);
  m_in.skipIf(u';');
  MTextFormat f = format();
  f.align = isNumber ? alignOf(value) : MTextFormat::Bottom;
  change(f);
}

void Decoder::tracking() {
  double value;
  if (m_in.takeNumber(value) && value != 1) drop(u"T");
  m_in.skipIf(u';');
}

void Decoder::font() {
  // Without a semicolon in the rest, the code has no argument and would swallow the text.
  if (!hasArgument()) return;
  const std::u16string_view argument = m_in.takeArgument();
  const std::u16string_view name =
      argument.substr(0, std::min(argument.find(u'|'), argument.size()));
  // The symbol font has its own glyphs for letters.
  m_look.symbols = zim::equalsIgnoreCase(name.substr(0, 3), u"gdt");
  if (m_look.symbols) return;
  drop(u"f" + std::u16string(name));
  MTextFormat f = format();
  f.form = name.empty() ? m_base.form : letterFormOf(name);
  change(f);
}

// One unit of a stack's text: everything except escapes is literal.
void Decoder::stackUnit(std::u16string& out) {
  if (m_in.peek() == u'\\') {
    if (m_in.takeEscape(out)) return;
    m_in.skip(1);
    if (m_in.empty()) return;
    if (m_in.skipIf(u'~')) {
      out += u' ';
      return;
    }
  }
  const char16_t c = m_in.take();
  out += c;
  if (c == u'^') m_in.skipIf(u' ');  // which is how files write a caret
}

// "a/b" has a line between the rows, "a^b" has none, "a#b" is written with a slash.
void Decoder::stack() {
  std::u16string parts[2];
  char16_t divider = 0;
  while (!m_in.empty() && !m_in.skipIf(u';')) {
    const char16_t c = m_in.peek();
    if (divider == 0 && (c == u'/' || c == u'^' || c == u'#')) {
      divider = m_in.take();
      if (c == u'^') m_in.skipIf(u' ');
    } else {
      stackUnit(parts[divider != 0]);
    }
  }
  if (divider == u'#' || divider == 0) {
    for (const char16_t c : parts[0]) addLetter(c);
    if (divider != 0) addLetter(u'/');
    for (const char16_t c : parts[1]) addLetter(c);
    return;
  }
  MTextPiece& piece = add(MTextPiece::Stack);
  piece.ruled = divider == u'/';
  piece.text = std::move(parts[0]);
  piece.below = std::move(parts[1]);
}

// "\pxi1,l2,r0,qc,t4,8;": letters with numbers; '*' instead of a number resets the value.
void Decoder::paragraph() {
  if (!hasArgument()) return;
  MTextCursor in(m_in.takeArgument());
  // Settings that the code does not mention are inherited from the previous paragraph.
  MTextParagraph paragraph = m_content.paragraphs.back();
  while (!in.empty()) {
    const char16_t code = in.take();
    setParagraph(in, code, paragraph);
  }
  m_content.paragraphs.push_back(std::move(paragraph));
}

void Decoder::setParagraph(MTextCursor& in, char16_t code, MTextParagraph& paragraph) {
  double value = 0;
  switch (code) {
    case u'i':
      in.takeNumber(paragraph.indent);
      break;
    case u'l':
      in.takeNumber(paragraph.left);
      break;
    case u'r':
      in.takeNumber(paragraph.right);
      break;
    case u'q':
      if (!in.empty()) paragraph.align = in.take();
      if (paragraph.align == u'*') paragraph.align = 0;
      break;
    case u't':
      paragraph.tabs.clear();
      while (!in.empty()) {
        if (in.takeNumber(value) && value > 0 && paragraph.tabs.size() < kMostTabs)
          paragraph.tabs.push_back(value);
        in.skip(1);  // a comma, or the letter of a kind of tabs
      }
      std::sort(paragraph.tabs.begin(), paragraph.tabs.end());
      break;
    case u's':  // line spacing of the paragraph, after a letter for its mode
      if (in.peek() != u'*') drop(u"ps");
      in.skip(1);
      in.takeNumber(value);
      break;
    default:
      break;
  }
}

MTextPiece& Decoder::add(MTextPiece::Kind kind) {
  const bool afterWord = !m_content.pieces.empty() && m_content.pieces.back().isWord();
  MTextPiece& piece = m_content.pieces.emplace_back();
  piece.kind = kind;
  piece.joins = afterWord;
  piece.format = m_look.format;
  piece.paragraph = m_content.paragraphs.size() - 1;
  return piece;
}

void Decoder::addLetter(char16_t c) {
  // Control characters have no glyph.
  if (c < u' ') return;
  auto& pieces = m_content.pieces;
  const bool afterLetter = !pieces.empty() && pieces.back().kind == MTextPiece::Word;
  // Lines may break before and after ideographs, so each is a word of its own.
  const bool parts = isIdeographic(c) || (afterLetter && isIdeographic(pieces.back().text.back()));
  if (!afterLetter || parts || pieces.back().format != m_look.format) {
    MTextPiece& piece = add(MTextPiece::Word);
    piece.joins = piece.joins && !parts;
  }
  pieces.back().text += m_look.symbols ? symbol(c) : c;
}

// An equal earlier format is reused, so that runs can be merged.
void Decoder::change(const MTextFormat& f) {
  auto& formats = m_content.formats;
  const auto recent =
      formats.end() - static_cast<std::ptrdiff_t>(std::min(formats.size(), kRecentFormats));
  const auto known = std::find(recent, formats.end(), f);
  m_look.format = static_cast<std::size_t>(known - formats.begin());
  if (known == formats.end()) formats.push_back(f);
}

void Decoder::drop(std::u16string_view code) {
  auto& dropped = m_content.dropped;
  if (dropped.size() < kMostDropped &&
      std::find(dropped.begin(), dropped.end(), code) == dropped.end())
    dropped.emplace_back(code);
}

}  // namespace

MTextContent decodeMText(std::u16string_view text, const MTextFormat& base) {
  return Decoder(text, base).run();
}

double measure(std::u16string_view text, const MTextFormat& format) {
  double width = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isCode = text[i] == u'%' && i + 2 < text.size() && text[i + 1] == u'%';
    if (!isCode) {
      width += letterWidth(text[i], format.form);
      continue;
    }
    const char16_t code = zim::foldCase(text[i + 2]);
    const bool isLine =
        code == zim::foldCase(u'u') || code == zim::foldCase(u'o') || code == zim::foldCase(u'k');
    const bool isNumber = code >= u'0' && code <= u'9';
    // Codes for lines have no width; all other codes show a single character.
    if (!isLine) width += letterWidth(u'o', format.form);
    i += 2;
    // A number has up to three digits.
    for (int digits = 1; isNumber && digits < 3 && i + 1 < text.size() && text[i + 1] >= u'0' &&
                         text[i + 1] <= u'9';
         ++digits)
      ++i;
  }
  return width * format.height * format.widthScale;
}

}  // namespace vek0::detail
