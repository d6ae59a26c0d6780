#include "dxfin/mtextlayout.h"

#include <algorithm>
#include <cmath>

#include "vek0core/tables/text.h"

namespace vek0::detail {
namespace {

constexpr double kLineAdvance = 5.0 / 3;  // from baseline to baseline, in heights
constexpr double kTabStop = 4;            // distance of the usual tabs, in heights
constexpr double kStackHeight = 2.4;      // of two rows, in heights of one
constexpr double kUpperRow = 1.4;         // baseline of the row above, likewise

/// A piece that stands in a line.
struct Item {
  const MTextPiece* piece;
  double x, width;  // from the left edge of its column
};

struct Line {
  std::size_t first = 0, last = 0;  // items
  std::size_t paragraph = 0;
  double width = 0;   // of all but blanks at the end, from the left edge
  double height = 0;  // of the highest piece
  std::size_t column = 0;
  double y = 0;  // baseline, from the top
};

class Layout {
 public:
  Layout(const MTextContent& content, const MTextBox& box, CStyle* style, std::size_t most)
      : m_content(content), m_box(box), m_style(style), m_most(most) {}

  std::vector<MTextRun> run();

 private:
  void breakLines();
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
  const MTextParagraph& paragraph() const { return m_content.paragraphs[m_line.paragraph]; }

  double totalWidth() const;
  double shift(const Line& line, double columnWidth) const;
  void emit(const Line& line, double left, double top);
  void emitStack(const Line& line, const Item& item, double x, double y);
  void add(double x, double y, std::size_t format, const std::u16string& text);
  double rise(const Line& line, const MTextFormat& f, double height) const;

  const MTextContent& m_content;
  const MTextBox& m_box;
  CStyle* m_style;
  std::size_t m_most;
  std::vector<Item> m_items;
  std::vector<Line> m_lines;
  std::vector<std::size_t> m_columnBreaks;  // lines that a code puts into the next column
  std::vector<MTextRun> m_runs;
  Line m_line;
  bool m_isParagraphStart = true;  // the line begins one
  double m_x = 0;                  // where the next piece goes
  double m_bottom = 0;             // of all columns
};

double Layout::width(const MTextPiece& piece) const {
  const MTextFormat& f = format(piece);
  if (piece.kind == MTextPiece::Blank) return measure(u" ", f, m_style);
  const double width = measure(piece.text, f, m_style);
  return piece.kind == MTextPiece::Stack ? std::max(width, measure(piece.below, f, m_style))
                                         : width;
}

double Layout::height(const MTextPiece& piece) const {
  return format(piece).height * (piece.kind == MTextPiece::Stack ? kStackHeight : 1);
}

// -- lines ---------------------------------------------------------------------

void Layout::breakLines() {
  const auto& pieces = m_content.pieces;
  startLine(0, true);
  for (std::size_t i = 0; i < pieces.size();) {
    const MTextPiece& piece = pieces[i];
    if (m_items.size() == m_line.first) m_line.paragraph = piece.paragraph;
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

// What no line may part: pieces of a word.
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
    constexpr double tolerance = 1e-9;  // of the width: boxes that were made to fit
    if (m_line.width > 0 && m_x + unit > rightEdge() + tolerance * m_box.width) {
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
  while (m_line.last > m_line.first && !m_items[m_line.last - 1].piece->isWord()) --m_line.last;
  m_lines.push_back(m_line);
}

double Layout::rightEdge() const { return m_box.width - m_box.height * paragraph().right; }

double Layout::nextTab(const MTextParagraph& paragraph) const {
  for (const double tab : paragraph.tabs)
    if (tab * m_box.height > m_x) return tab * m_box.height;
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

double Layout::totalWidth() const {
  if (m_box.width > 0) return m_box.width;
  double width = 0;
  for (const Line& line : m_lines) width = std::max(width, line.width);
  return width;
}

double Layout::shift(const Line& line, double columnWidth) const {
  const MTextParagraph& p = m_content.paragraphs[line.paragraph];
  const double room = columnWidth - m_box.height * p.right - line.width;
  const long across = (m_box.attachment - 1) % 3;
  if (p.align == u'c' || (p.align == 0 && across == 1)) return room / 2;
  return p.align == u'r' || (p.align == 0 && across == 2) ? room : 0;
}

// Of what is lower than its line.
double Layout::rise(const Line& line, const MTextFormat& f, double height) const {
  const double room = line.height - height;
  return f.align == MTextFormat::Middle ? room / 2 : f.align == MTextFormat::Top ? room : 0;
}

void Layout::add(double x, double y, std::size_t format, const std::u16string& text) {
  if (text.empty() || m_runs.size() >= m_most) return;
  const MTextFormat& f = m_content.formats[format];
  std::u16string codes;
  if (f.under) codes += u"%%u";
  if (f.over) codes += u"%%o";
  if (f.struck) codes += u"%%k";
  m_runs.push_back({x, y, format, codes + text});
}

// The line between the rows is drawn along the longer of them.
void Layout::emitStack(const Line& line, const Item& item, double x, double y) {
  const MTextPiece& piece = *item.piece;
  const MTextFormat& f = format(piece);
  y += rise(line, f, height(piece));
  const double above = measure(piece.text, f, m_style), below = measure(piece.below, f, m_style);
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

// Words and blanks of one look are one run.
void Layout::emit(const Line& line, double left, double top) {
  for (std::size_t i = line.first; i < line.last;) {
    const Item& item = m_items[i++];
    const MTextPiece& piece = *item.piece;
    const double x = left + item.x, y = top - line.y;
    if (piece.kind == MTextPiece::Stack) emitStack(line, item, x, y);
    if (piece.kind != MTextPiece::Word) continue;
    std::u16string text = piece.text;
    for (; i < line.last && m_items[i].piece->format == piece.format; ++i) {
      const MTextPiece& next = *m_items[i].piece;
      if (next.kind != MTextPiece::Word && next.kind != MTextPiece::Blank) break;
      text += next.kind == MTextPiece::Blank ? u" " : next.text;
    }
    while (text.back() == u' ') text.pop_back();
    std::replace(text.begin(), text.end(), u'\u00A0', u' ');
    add(x, y + rise(line, format(piece), format(piece).height), piece.format, text);
  }
}

std::vector<MTextRun> Layout::run() {
  breakLines();
  stackLines();
  const double column = totalWidth(), step = column + m_box.gutter;
  const double whole = column + step * static_cast<double>(m_box.columns - 1);
  const long across = (m_box.attachment - 1) % 3, down = (m_box.attachment - 1) / 3;
  const double left = -whole * static_cast<double>(across) / 2;
  const double top = m_bottom * static_cast<double>(down) / 2;
  for (const Line& line : m_lines)
    emit(line, left + step * static_cast<double>(line.column) + shift(line, column), top);
  return std::move(m_runs);
}

}  // namespace

double measure(const std::u16string& text, const MTextFormat& format, CStyle* style) {
  if (text.empty()) return 0;
  const zim::WString shown(shownText(text));
  return TEXT_3D(shown, style, 0, 0, 0, format.height, 0, format.widthScale, 0, 0)
      .getStringLength();
}

std::vector<MTextRun> layoutMText(const MTextContent& content, const MTextBox& box, CStyle* style,
                                  std::size_t most) {
  return Layout(content, box, style, most).run();
}

}  // namespace vek0::detail
