#pragma once

#include <optional>
#include <string>
#include <vector>

#include "vek0core/geometry/pnt.h"
#include "vek0draw/painter.h"
#include "vek0paint/sheet.h"

class CEnt;

namespace vek0::paint {

/// Something that a picture points out, with its number.
struct PictureMark {
  std::size_t number = 0;
  std::vector<const CEnt*> ents;  ///< of model space, drawn in the color of the mark
  std::optional<PNT_2D> point;    ///< where its ring is, in drawing units; nothing: no ring
  RGB_COLOR color;
};

/// Draws rings with their numbers over a picture.
class MarkPainter {
 public:
  /// The painter and the font are borrowed; the font may be null, then there are no numbers.
  MarkPainter(IPainter& painter, const ICADFont* font, const SHEET& sheet)
      : m_painter(painter), m_font(font), m_pixel(sheet.pixel()) {}

  /// Draws a mark at a point of the device. A number that would cover an earlier one is moved, or
  /// left out if there is no place for it.
  void draw(const PNT_2D& at, const PictureMark& mark);

 private:
  struct Label {
    double left, top, right, bottom;
  };

  void drawRing(const PNT_2D& at) const;
  std::optional<Label> findPlace(const PNT_2D& at, double width, double height) const;
  void drawNumber(const zim::WString& text, const Label& place, const RGB_COLOR& color) const;

  IPainter& m_painter;
  const ICADFont* m_font;
  double m_pixel;               // in device units
  std::vector<Label> m_labels;  // the last ones drawn
};

}  // namespace vek0::paint
