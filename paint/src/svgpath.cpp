#include "vek0paint/svgpath.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace vek0::paint {
namespace {

constexpr double kStepsPerUnit = 100;

// `std::llround` is a call of the library, and pictures have millions of numbers.
std::int64_t toSteps(double value) {
  const double steps = value * kStepsPerUnit;
  return static_cast<std::int64_t>(steps < 0 ? steps - 0.5 : steps + 0.5);
}

// Whether ends are equal up to rounding.
bool isNear(std::int64_t a, std::int64_t b) { return std::abs(a - b) <= 1; }

// Steps that take fewer digits than most coordinates.
constexpr std::int64_t kNear = 1000;

constexpr std::ptrdiff_t kMostDigits = 20;
constexpr std::size_t kLongestNumber = kMostDigits + 8;  // with a letter, a sign and decimals

// Writes steps as the shortest decimal number: "-.5", "12", "0"; returns its end.
char* putSteps(char* out, std::int64_t steps) {
  if (steps < 0) *out++ = '-';
  const auto magnitude = static_cast<std::uint64_t>(steps < 0 ? -steps : steps);
  const std::uint64_t whole = magnitude / 100, part = magnitude % 100;
  if (whole > 0 || part == 0) out = std::to_chars(out, out + kMostDigits, whole).ptr;
  if (part == 0) return out;
  *out++ = '.';
  *out++ = static_cast<char>('0' + part / 10);
  if (part % 10 > 0) *out++ = static_cast<char>('0' + part % 10);
  return out;
}

}  // namespace

std::string lengthText(double value) {
  char text[kLongestNumber];
  return {text, putSteps(text, toSteps(value))};
}

bool isInvisible(double length) { return toSteps(length) == 0; }

void SvgPath::add(char letter, std::int64_t number) {
  if (m_letter == letter) return add(number);
  char text[kLongestNumber];
  *text = m_letter = letter;
  m_data.append(text, putSteps(text + 1, number));
}

void SvgPath::add(std::int64_t number) {
  char text[kLongestNumber];
  char* end = text;
  if (number >= 0) *end++ = ' ';
  m_data.append(text, putSteps(end, number));
}

void SvgPath::move(const PNT_2D& to) {
  const std::int64_t x = toSteps(to.x), y = toSteps(to.y);
  if (m_letter != 0 && m_segments > 0 && isNear(x, m_x) && isNear(y, m_y)) return;
  // The dashes of a line are near each other; a few digits tell the way to the next.
  const std::int64_t dx = x - m_x, dy = y - m_y;
  const bool isRelative = !m_data.empty() && std::abs(dx) < kNear && std::abs(dy) < kNear;
  m_startX = m_x = x;
  m_startY = m_y = y;
  m_segments = 0;
  m_letter = 0;
  add(isRelative ? 'm' : 'M', isRelative ? dx : x);
  add(isRelative ? dy : y);
}

void SvgPath::line(const PNT_2D& to) {
  const std::int64_t x = toSteps(to.x), y = toSteps(to.y);
  const std::int64_t dx = x - m_x, dy = y - m_y;
  const bool isDot =
      m_letter == 'M' || m_letter == 'm';  // an initial step of zero length is still visible
  if (dx == 0 && dy == 0 && !isDot) return;
  if (dy == 0) {
    add('h', dx);
  } else if (dx == 0) {
    add('v', dy);
  } else {
    if (m_letter == 'm') m_letter = 'l';  // continues it without a letter
    add('l', dx);
    add(dy);
  }
  reached(x, y);
}

void SvgPath::reached(std::int64_t x, std::int64_t y) {
  m_x = x;
  m_y = y;
  if (++m_segments > 1 && isNear(x, m_startX) && isNear(y, m_startY)) close();
}

void SvgPath::curve(char letter, const PNT_2D* points, std::size_t count) {
  const std::int64_t fromX = m_x, fromY = m_y;
  for (std::size_t i = 0; i < count; ++i) {
    m_x = toSteps(points[i].x);
    m_y = toSteps(points[i].y);
    if (i == 0) {
      add(letter, m_x - fromX);
    } else {
      add(m_x - fromX);
    }
    add(m_y - fromY);
  }
}

// Viewers skip arcs that end where they begin.
void SvgPath::arc(double radius, bool clockwise, const PNT_2D& to) {
  const std::int64_t x = toSteps(to.x), y = toSteps(to.y), r = toSteps(radius);
  if (x == m_x && y == m_y) return line(to);
  add('a', r);
  add(r);
  m_data += clockwise ? " 0 0 1" : " 0 0 0";
  add(x - m_x);
  add(y - m_y);
  reached(x, y);
}

void SvgPath::close() {
  if (m_letter == 0) return;
  m_data += 'z';
  m_letter = 0;
  m_x = m_startX;
  m_y = m_startY;
}

}  // namespace vek0::paint
