// Breaks the pieces of a formatted text into lines and places them. The font of the original
// program is not available, so widths are estimates, and a line that should fit may be slightly too
// long. Hence the layout prefers what the record states: the number of lines and the width that its
// program has measured. Characters are stretched to match, within limits, and text that may fit on
// one line stays there.
#include "dxf/in/convert/mtextlayout.h"

#include <algorithm>
#include <cmath>

namespace vek0::detail {
namespace {

constexpr double kLineAdvance = 5.0 / 3;  // from baseline to baseline, in heights
constexpr double kTabStop = 4;            // spacing of default tabs, in heights
constexpr double kStackHeight = 2.4;      // height of two stacked rows, in heights of one
constexpr double kUpperRow = 1.4;         // baseline of the upper row, in heights of one
constexpr double kFew = 0.05;             // by which a line may be too long, as a fraction of the
                                          // box's width
constexpr double kMostStretch = 2;        // of characters, to match the stated width of a line

/// A piece placed in a line.
struct Item {
  const MTextPiece* piece;
  double x, width;  // from the left edge of its column
};

struct Line {
  std::size_t first = 0, last = 0;  // items
  std::size_t paragraph = 0;
  double width = 0;   // without trailing blanks, from the left edge
  double height = 0;  // of the highest piece
  std::size_t column = 0;
  double y = 0;  // baseline, from the top
};

class Layout {
 public:
  Layout(const MTextContent& content, const MTextBox& box, std::size_t most)
      : m_content(content), m_box(box), m_most(most) {}

  std::vector<MTextRun> run();

 private:
  void breakAsTold();
  void fitLines(std::size_t told);
  std::size_t toldLines() const;
  void breakLines();
  bool fitsOneLine(std::size_t first) const;
  std::size_t unitEnd(std::size_t first) const;
  void placeUnit(std::size_t first, std::size_t last);
  void placePiece(const MTextPiece& piece);
  void startLine(std::size_t paragraph, bool first);
  void endLine(double height);
  void stackLines();
  double columnEnd(std::size_t column) const;
  double rightEdge() const;
  double nextTab(const MTextParagraph& paragraph) const;

  double width(const MTextPiece& piece) const;
  double height(const MTextPiece& piece) const;
  const MTextFormat& format(const MTextPiece& p) const { return m_content.formats[p.format]; }
  // Fonts only affect widths.
  bool isSameLook(const MTextPiece& a, const MTextPiece& b) const {
    if (a.format == b.format) return true;
    MTextFormat f = format(a);
    f.form = format(b).form;
    return f == format(b);
  }
  const MTextParagraph& paragraph() const { return m_content.paragraphs[m_line.paragraph]; }

  double widestLine() const;
  double totalWidth() const;
  long across(const Line& line) const;
  double shift(const Line& line, double columnWidth) const;
  void emit(const Line& line, double left, double top);
  void emitStack(const Line& line, const Item& item, double x, double y);
  void add(double x, double y, std::size_t format, const std::u16string& text, long across = 0);
  double rise(const Line& line, const MTextFormat& f, double height) const;

  const MTextContent& m_content;
  const MTextBox& m_box;
  std::size_t m_most;
  double m_stretch = 1;      // of all characters
  bool m_mayBreak = true;    // lines may be wrapped between explicit breaks
  bool m_isLenient = true;   // lets text that may fit stay in one line
  bool m_isOneLine = false;  // the text up to the next explicit break
  std::vector<Item> m_items;
  std::vector<Line> m_lines;
  std::vector<std::size_t> m_columnBreaks;  // lines moved to the next column by a code
  std::vector<MTextRun> m_runs;
  Line m_line;
  bool m_isParagraphStart = true;  // the line begins one
  double m_x = 0;                  // position of the next piece
  double m_bottom = 0;             // of all columns
};

double Layout::width(const MTextPiece& piece) const {
  const MTextFormat& f = format(piece);
  if (piece.kind == MTextPiece::Blank) return m_stretch * measure(u" ", f);
  double width = measure(piece.text, f);
  if (piece.kind == MTextPiece::Stack) width = std::max(width, measure(piece.below, f));
  return m_stretch * width;
}

double Layout::height(const MTextPiece& piece) const {
  return format(piece).height * (piece.kind == MTextPiece::Stack ? kStackHeight : 1);
}

// -- lines ---------------------------------------------------------------------

// Number of lines according to the record; 0 if not stated, or if lines differ in height.
std::size_t Layout::toldLines() const {
  // Columns distribute the height differently.
  if (!(m_box.shownHeight > 0) || m_box.columns > 1) return 0;
  double tall = 0;
  for (const MTextPiece& piece : m_content.pieces) {
    if (!piece.isWord()) continue;
    // With lines of several heights, the total does not determine their number.
    if (tall > 0 && height(piece) != tall) return 0;
    tall = height(piece);
  }
  const double step = kLineAdvance * m_box.spacing * (m_box.exactSpacing ? m_box.height : tall);
  const double more = std::round((m_box.shownHeight - tall) / step);
  constexpr double most = 1e6;
  return more >= 0 && more < most ? static_cast<std::size_t>(more) + 1 : 0;
}

// The record's extents were measured with its own font: match their number and width of lines.
void Layout::breakAsTold() {
  breakLines();
  const std::size_t told = toldLines();
  if (told > 0 && m_lines.size() != told) fitLines(told);
  // Matches the widest line to the stated width. Limited, as the estimate may fail entirely.
  const double stretch = m_box.shownWidth / std::max(widestLine(), m_box.shownWidth / kMostStretch);
  if (m_box.columns > 1 || !(stretch > 1 / kMostStretch)) return;
  const double before = m_stretch;
  const std::size_t lines = m_lines.size();
  m_stretch *= stretch;
  breakLines();
  // Stretching must not change the line breaks that were just matched.
  if (m_lines.size() == lines) return;
  m_stretch = before;
  breakLines();
}

// Uses only the explicit breaks, or scales the characters so that wrapping yields that number of
// lines.
void Layout::fitLines(std::size_t told) {
  constexpr int rounds = 12;
  m_isLenient = false;
  m_mayBreak = false;
  breakLines();
  if (m_lines.size() >= told) return;
  m_mayBreak = true;
  double least = 1 / kMostStretch, most = kMostStretch;
  // Bisection of the stretch on a logarithmic scale, because it is a factor.
  for (int i = 0; i < rounds; ++i) {
    m_stretch = std::sqrt(least * most);
    breakLines();
    if (m_lines.size() == told) return;
    // Wider characters yield more lines.
    (m_lines.size() < told ? least : most) = m_stretch;
  }
  // No stretch yields that number of lines, so the estimate remains unchanged.
  m_stretch = 1;
  breakLines();
}

double Layout::widestLine() const {
  double widest = 0;
  for (const Line& line : m_lines) widest = std::max(widest, line.width);
  return widest;
}

void Layout::breakLines() {
  const auto& pieces = m_content.pieces;
  m_items.clear();
  m_lines.clear();
  m_columnBreaks.clear();
  startLine(0, true);
  for (std::size_t i = 0; i < pieces.size();) {
    const MTextPiece& piece = pieces[i];
    if (m_items.size() == m_line.first) m_line.paragraph = piece.paragraph;
    if (m_items.size() == m_line.first && m_isParagraphStart) m_isOneLine = fitsOneLine(i);
    if (piece.kind == MTextPiece::LineBreak || piece.kind == MTextPiece::ColumnBreak) {
      endLine(format(piece).height);
      if (piece.kind == MTextPiece::ColumnBreak) m_columnBreaks.push_back(m_lines.size());
      startLine(piece.paragraph, true);
      ++i;
    } else {
      const std::size_t end = unitEnd(i);
      placeUnit(i, end);
      i = end;
    }
  }
  endLine(pieces.empty() ? 0 : format(pieces.back()).height);
}

// Whether everything up to the next explicit break fits, if the actual characters are narrow.
bool Layout::fitsOneLine(std::size_t first) const {
  if (!m_isLenient) return false;
  const auto& pieces = m_content.pieces;
  double length = 0, end = 0;
  for (std::size_t i = first; i < pieces.size() && end <= (1 + kFew) * m_box.width; ++i) {
    const MTextPiece& piece = pieces[i];
    if (piece.kind == MTextPiece::LineBreak || piece.kind == MTextPiece::ColumnBreak) break;
    length += piece.kind == MTextPiece::Tab ? kTabStop * m_box.height
                                            : width(piece) * leastShare(format(piece).form);
    if (piece.isWord()) end = length;
  }
  const MTextParagraph& p = m_content.paragraphs[pieces[first].paragraph];
  return end + m_box.height * (p.left + p.indent + p.right) <= (1 + kFew) * m_box.width;
}

// End of an unbreakable unit: the pieces of a word.
std::size_t Layout::unitEnd(std::size_t first) const {
  const auto& pieces = m_content.pieces;
  std::size_t end = first + 1;
  while (pieces[first].isWord() && end < pieces.size() && pieces[end].isWord() && pieces[end].joins)
    ++end;
  return end;
}

void Layout::placeUnit(std::size_t first, std::size_t last) {
  const auto& pieces = m_content.pieces;
  if (pieces[first].isWord() && m_box.width > 0) {
    double unit = 0;
    for (std::size_t i = first; i < last; ++i) unit += width(pieces[i]);
    // The first unit of a line is placed even if it is too long: a line break would not help.
    const bool isFull = m_line.width > 0 && m_x + unit > rightEdge() + kFew * m_box.width;
    if (isFull && m_mayBreak && !m_isOneLine) {
      endLine(0);
      startLine(pieces[first].paragraph, false);
    }
  }
  for (std::size_t i = first; i < last; ++i) placePiece(pieces[i]);
}

void Layout::placePiece(const MTextPiece& piece) {
  const bool isFirst = m_items.size() == m_line.first;
  if (isFirst) {
    const double indent = m_isParagraphStart ? paragraph().indent : 0;
    m_x = m_box.height * (paragraph().left + indent);
  }
  const double length = piece.kind == MTextPiece::Tab ? nextTab(paragraph()) - m_x : width(piece);
  m_items.push_back({&piece, m_x, length});
  m_x += length;
  // Blanks count only if a word follows.
  if (!piece.isWord()) return;
  m_line.width = m_x;
  m_line.height = std::max(m_line.height, height(piece));
}

void Layout::startLine(std::size_t paragraph, bool first) {
  m_line = Line();
  m_line.first = m_items.size();
  m_line.paragraph = paragraph;
  m_isParagraphStart = first;
  m_x = 0;
}

void Layout::endLine(double height) {
  if (m_line.width == 0) m_line.height = height;
  m_line.last = m_items.size();
  // Trailing blanks are not drawn.
  while (m_line.last > m_line.first && !m_items[m_line.last - 1].piece->isWord()) --m_line.last;
  m_lines.push_back(m_line);
}

double Layout::rightEdge() const { return m_box.width - m_box.height * paragraph().right; }

double Layout::nextTab(const MTextParagraph& paragraph) const {
  for (const double tab : paragraph.tabs)
    if (tab * m_box.height > m_x) return tab * m_box.height;
  // Default tab stops are evenly spaced.
  const double stop = kTabStop * m_box.height;
  return (std::floor(m_x / stop) + 1) * stop;
}

// -- columns -------------------------------------------------------------------

double Layout::columnEnd(std::size_t column) const {
  return column < m_box.columnHeights.size() ? m_box.columnHeights[column] : 0;
}

void Layout::stackLines() {
  std::size_t column = 0, nextBreak = 0;
  double y = 0;
  bool isTop = true;
  for (std::size_t i = 0; i < m_lines.size(); ++i) {
    Line& line = m_lines[i];
    const double step =
        kLineAdvance * m_box.spacing * (m_box.exactSpacing ? m_box.height : line.height);
    const bool isBreak = nextBreak < m_columnBreaks.size() && m_columnBreaks[nextBreak] == i;
    if (isBreak) ++nextBreak;
    const double end = columnEnd(column);
    // The first line of a column is placed even if it exceeds its height.
    const bool isFull = !isTop && end > 0 && y + step > end;
    if ((isBreak || isFull) && column + 1 < m_box.columns) {
      ++column;
      isTop = true;
    }
    y = isTop ? line.height : y + step;
    isTop = false;
    line.column = column;
    line.y = y;
    m_bottom = std::max(m_bottom, y);
  }
}

// -- runs ----------------------------------------------------------------------

double Layout::totalWidth() const { return m_box.width > 0 ? m_box.width : widestLine(); }

// 0 for a left-aligned line, 1 for centered, 2 for right-aligned.
long Layout::across(const Line& line) const {
  switch (m_content.paragraphs[line.paragraph].align) {
    case 0:
      return (m_box.attachment - 1) % 3;
    case u'c':
      return 1;
    case u'r':
      return 2;
    default:
      return 0;
  }
}

double Layout::shift(const Line& line, double columnWidth) const {
  const double right = m_box.height * m_content.paragraphs[line.paragraph].right;
  return (columnWidth - right - line.width) * static_cast<double>(across(line)) / 2;
}

// Vertical offset of a piece lower than its line.
double Layout::rise(const Line& line, const MTextFormat& f, double height) const {
  const double room = line.height - height;
  switch (f.align) {
    case MTextFormat::Middle:
      return room / 2;
    case MTextFormat::Top:
      return room;
    default:
      return 0;
  }
}

void Layout::add(double x, double y, std::size_t format, const std::u16string& text, long across) {
  // Bounds the entities that one record can create.
  if (text.empty() || m_runs.size() >= m_most) return;
  const MTextFormat& f = m_content.formats[format];
  std::u16string codes;
  if (f.under) codes += u"%%u";
  if (f.over) codes += u"%%o";
  if (f.struck) codes += u"%%k";
  m_runs.push_back({x, y, across, format, codes + text});
}

// The line between the rows has the length of the longer one.
void Layout::emitStack(const Line& line, const Item& item, double x, double y) {
  const MTextPiece& piece = *item.piece;
  const MTextFormat& f = format(piece);
  y += rise(line, f, height(piece));
  const double above = m_stretch * measure(piece.text, f);
  const double below = m_stretch * measure(piece.below, f);
  // Rows with a line between them are centered, rows without one aligned at the left.
  const double share = piece.ruled ? 0.5 : 0;
  const bool isAboveLonger = above >= below;
  const std::u16string under = piece.ruled && isAboveLonger && !f.under ? u"%%u" : u"";
  const std::u16string over = piece.ruled && !isAboveLonger && !f.over ? u"%%o" : u"";
  if (!piece.text.empty())
    add(x + share * (item.width - above), y + kUpperRow * f.height, piece.format,
        under + piece.text);
  if (!piece.below.empty())
    add(x + share * (item.width - below), y, piece.format, over + piece.below);
}

// Readers strip trailing blanks, so a run ends without them unless an underline shows them. Returns
// true if non-breaking ones were removed, which count in the width of the line: the run then keeps
// its left end.
bool cutBlanks(std::u16string& text, const MTextFormat& f) {
  constexpr char16_t fixed = u'\u00A0';
  while (text.back() == u' ') text.pop_back();
  const bool isLined = f.under || f.over || f.struck;
  const std::size_t before = text.size();
  while (!isLined && text.size() > 1 && (text.back() == fixed || text.back() == u' '))
    text.pop_back();
  std::replace(text.begin(), text.end(), fixed, u' ');
  return text.size() < before;
}

// Words and blanks of one format form one run. A run that is the whole line is anchored by the
// line's alignment, so that it is placed correctly whatever its actual width.
void Layout::emit(const Line& line, double left, double top) {
  for (std::size_t i = line.first; i < line.last;) {
    const Item& item = m_items[i++];
    const MTextPiece& piece = *item.piece;
    const double x = left + item.x, y = top - line.y;
    if (piece.kind == MTextPiece::Stack) emitStack(line, item, x, y);
    if (piece.kind != MTextPiece::Word) continue;
    std::u16string text = piece.text;
    for (; i < line.last && isSameLook(*m_items[i].piece, piece); ++i) {
      const MTextPiece& next = *m_items[i].piece;
      if (next.kind != MTextPiece::Word && next.kind != MTextPiece::Blank) break;
      text += next.kind == MTextPiece::Blank ? u" " : next.text;
    }
    const bool isCut = cutBlanks(text, format(piece));
    // With the trailing blanks removed, its width differs from that of the line.
    const bool isAlone = !isCut && &item == &m_items[line.first] && i == line.last;
    const long point = isAlone ? across(line) : 0;
    add(x + (line.width - item.x) * static_cast<double>(point) / 2,
        y + rise(line, format(piece), format(piece).height), piece.format, text, point);
  }
}

std::vector<MTextRun> Layout::run() {
  breakAsTold();
  stackLines();
  const double column = totalWidth(), step = column + m_box.gutter;
  const double whole = column + step * static_cast<double>(m_box.columns - 1);
  // Attachment points run from 1, top left, to 9, bottom right, row by row.
  const long across = (m_box.attachment - 1) % 3, down = (m_box.attachment - 1) / 3;
  const double left = -whole * static_cast<double>(across) / 2;
  const double top = m_bottom * static_cast<double>(down) / 2;
  for (const Line& line : m_lines)
    emit(line, left + step * static_cast<double>(line.column) + shift(line, column), top);
  return std::move(m_runs);
}

}  // namespace

std::vector<MTextRun> layoutMText(const MTextContent& content, const MTextBox& box,
                                  std::size_t most) {
  return Layout(content, box, most).run();
}

}  // namespace vek0::detail
