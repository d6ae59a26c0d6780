#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "vek0draw/painter.h"

namespace vek0::tool {

/// Strokes of one width on an image, antialiased, with round caps and joins.
///
/// Drawings are mostly thin lines, for which general stroking takes ten times as long: it
/// makes polygons of them. Here a pixel is covered by as much as the nearest point of the
/// stroke is near.
class LineRasterizer {
 public:
  /// The image is borrowed: rows of premultiplied 32-bit pixels, `stride` bytes from one to
  /// the next. `lineWidth` is in pixels; thinner lines than one are fainter instead.
  LineRasterizer(unsigned char* pixels, long width, long height, std::ptrdiff_t stride,
                 double lineWidth);

  void setColor(const RGB_COLOR& color);
  /// Draws the chain; a point, when all are one. Coordinates are in pixels and finite, and
  /// may lie outside. The cost follows the pixels that are touched.
  void stroke(const PNT_2D* points, std::size_t count, bool closed);
  /// Fills a circle, in the same way.
  void disc(const PNT_2D& center, double diameter);

 private:
  static double reachOf(double width);
  /// What all rows of a segment have in common. A row's pixels are within `half` of the
  /// line, which goes on by `slope` from row to row, and between `low` and `high`.
  struct Segment {
    PNT_2D from, way;  // where it begins, and its direction
    double length, slope, half, low, high;
  };

  template <class Cover>
  void forEachPixel(const PNT_2D& from, const PNT_2D& to, const Cover& cover);
  template <class Cover>
  void row(long y, const Segment& segment, const Cover& cover);
  std::uint32_t* rowOf(long y) const;
  void mix(std::uint32_t& pixel, std::uint32_t coverage) const;
  void blend();

  unsigned char* m_pixels;
  long m_width, m_height;
  std::ptrdiff_t m_stride;
  double m_reach;     // of a stroke's middle: how far away pixels are touched
  double m_strength;  // of full coverage, below 1 for thin lines
  std::uint32_t m_redBlue = 0, m_alphaGreen = 0;  // of the color, each in 16 bits
  std::vector<std::uint16_t> m_mask;              // coverage by the chain at hand, everywhere
  struct Place {
    std::uint32_t* pixel;
    std::uint16_t* mask;
  };
  std::vector<Place> m_touched;  // where it is not 0
};

}  // namespace vek0::tool
