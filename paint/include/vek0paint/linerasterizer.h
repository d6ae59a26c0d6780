#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "vek0draw/painter.h"

namespace vek0::paint {

/// Strokes of one width on an image, antialiased, with round caps and joins.
///
/// Drawings are mostly thin lines, for which general stroking takes ten times as long, because it
/// converts them to polygons. Here the coverage of a pixel follows from its distance to the stroke.
class LineRasterizer {
 public:
  /// The image is borrowed: rows of premultiplied 32-bit pixels, `stride` bytes from one to the
  /// next. `lineWidth` is in pixels; lines thinner than one pixel are drawn fainter instead.
  LineRasterizer(unsigned char* pixels, long width, long height, std::ptrdiff_t stride,
                 double lineWidth);

  void setColor(const RGB_COLOR& color);
  /// Draws the chain, or a dot if all points coincide. Coordinates are in pixels, finite, and may
  /// be outside the image. The cost is proportional to the pixels touched.
  void stroke(const PNT_2D* points, std::size_t count, bool closed);
  /// Fills a circle, in the same way.
  void disc(const PNT_2D& center, double diameter);

 private:
  static double reachOf(double width);
  /// Data common to all rows of a segment. A row's pixels are within `half` of the line, which
  /// advances by `slope` per row, and between `low` and `high`.
  struct Segment {
    PNT_2D from, way;  // start and direction
    double length, slope, half, low, high;
  };

  /// `placeAt` returns the memory that `cover` accesses for a pixel.
  template <class PlaceAt, class Cover>
  void forEachPixel(const PNT_2D& from, const PNT_2D& to, const PlaceAt& placeAt,
                    const Cover& cover);
  template <class Cover>
  void row(long y, const Segment& segment, const Cover& cover);
  std::uint32_t* rowOf(long y) const;
  void mix(std::uint32_t& pixel, std::uint32_t coverage) const;
  void blend();

  unsigned char* m_pixels;
  long m_width, m_height;
  std::ptrdiff_t m_stride;
  double m_reach;     // distance from the center line within which pixels are touched
  double m_strength;  // of full coverage, below 1 for thin lines
  std::uint32_t m_redBlue = 0, m_alphaGreen = 0;  // of the color, each in 16 bits
  std::vector<std::uint16_t> m_mask;              // coverage by the current chain, per pixel
  struct Place {
    std::uint32_t* pixel;
    std::uint16_t* mask;
  };
  std::vector<Place> m_touched;  // pixels where it is not 0
};

}  // namespace vek0::paint
