#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "vek0draw/painter.h"

namespace vek0::paint {

/// Strokes on an image, antialiased, with round caps and joins.
///
/// Drawings are mostly thin lines, for which general stroking takes ten times as long, because it
/// converts them to polygons. Here the coverage of a pixel follows from its distance to the stroke.
class LineRasterizer {
 public:
  /// The image is borrowed: rows of premultiplied 32-bit pixels, `stride` bytes from one to the
  /// next.
  LineRasterizer(unsigned char* pixels, long width, long height, std::ptrdiff_t stride);

  /// Sets color, opacity and line width. The width is in pixels; lines thinner than one pixel are
  /// drawn fainter instead. Initially black, opaque and one pixel.
  void setPen(const RGB_COLOR& color, std::uint8_t alpha, double lineWidth);
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
  // By `setPen`: the distance from the center line within which pixels are touched; full coverage
  // of areas and of lines, which is less for thin ones; the color, each part in 16 bits.
  double m_reach = 0, m_full = 0, m_strength = 0;
  std::uint32_t m_redBlue = 0, m_alphaGreen = 0;
  std::vector<std::uint16_t> m_mask;  // coverage by the current chain, per pixel
  struct Place {
    std::uint32_t* pixel;
    std::uint16_t* mask;
  };
  std::vector<Place> m_touched;  // pixels where it is not 0
};

}  // namespace vek0::paint
