#include "vek0paint/marks.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "vek0core/tables/font.h"

namespace vek0::paint {
namespace {

// In screen pixels.
constexpr double kRing = 5, kPen = 1.5, kTextHeight = 9, kPad = 2, kSpacing = 3;
constexpr std::size_t kMostLabels = 2000;  // beyond that, a picture has no place left

}  // namespace

void MarkPainter::draw(const PNT_2D& at, const PictureMark& mark) {
  DrawItem item;
  item.color = mark.color;
  item.width = kPen * m_pixel;
  m_painter.begin(item);
  drawRing(at);
  if (!m_font || m_labels.size() >= kMostLabels) return;
  const zim::WString text = zim::WString::fromUtf8(std::to_string(mark.number));
  const double scale = kTextHeight * m_pixel / m_font->getHeightUnit();
  const double width = m_font->getStringWidth(text, true, false, false) * scale;
  const std::optional<Label> place =
      findPlace(at, width + 2 * kPad * m_pixel, (kTextHeight + 2 * kPad) * m_pixel);
  if (!place) return;
  m_labels.push_back(*place);
  drawNumber(text, *place, mark.color);
}

void MarkPainter::drawRing(const PNT_2D& at) const {
  constexpr double turn = 2 * std::numbers::pi;
  constexpr int corners = 32;
  const double radius = kRing * m_pixel;
  if (m_painter.arc(at, radius, 0, turn)) return;
  std::vector<PNT_2D> ring;
  for (int i = 0; i < corners; ++i)
    ring.emplace_back(at.x + radius * std::cos(i * turn / corners),
                      at.y + radius * std::sin(i * turn / corners));
  m_painter.stroke(ring.data(), ring.size(), true);
}

std::optional<MarkPainter::Label> MarkPainter::findPlace(const PNT_2D& at, double width,
                                                         double height) const {
  for (const double off : {1.0, 3.0})
    for (const int way : {0, 1, 2, 3}) {
      const double side = (kRing + off * kSpacing) * m_pixel;
      const double left = way % 2 == 0 ? at.x + side : at.x - side - width;
      const double top = way < 2 ? at.y - side - height : at.y + side;
      const Label label{left, top, left + width, top + height};
      const bool isFree = std::none_of(m_labels.begin(), m_labels.end(), [&](const Label& other) {
        return label.left < other.right && other.left < label.right && label.top < other.bottom &&
               other.top < label.bottom;
      });
      if (isFree) return label;
    }
  return std::nullopt;
}

void MarkPainter::drawNumber(const zim::WString& text, const Label& place,
                             const RGB_COLOR& color) const {
  DrawItem item;
  item.color = {255, 255, 255};
  m_painter.begin(item);
  const PNT_2D corners[] = {{place.left, place.top},
                            {place.right, place.top},
                            {place.right, place.bottom},
                            {place.left, place.bottom}};
  const std::size_t end = std::size(corners);
  m_painter.fill(corners, &end, 1, FillRule::EvenOdd);
  item.color = color;
  m_painter.begin(item);
  DrawText drawn;
  drawn.string = &text;
  drawn.font = m_font;
  const double scale = kTextHeight * m_pixel / m_font->getHeightUnit();
  drawn.matrix = {scale, 0, 0, -scale, place.left + kPad * m_pixel, place.bottom - kPad * m_pixel};
  m_painter.text(drawn);
}

}  // namespace vek0::paint
