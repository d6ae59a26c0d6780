#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "vek0draw/painter.h"

namespace vek0::paint {

/// Strokes on an image, antialiased, with round caps and joins.
///
/// Drawings are mostly thin lines, for which general stroking takes ten times as long, because it
/// converts them to polygons. Here the coverage of a pixel follows from its distance to the stroke.
///
/// Strokes are collected and drawn together, one band of rows after the other, since memory is slow
/// and a band fits the cache. Bands are independent of each other, so two threads share them.
class LineRasterizer {
 public:
  /// The image is borrowed: rows of premultiplied 32-bit pixels, `stride` bytes from one to the
  /// next.
  LineRasterizer(unsigned char* pixels, long width, long height, std::ptrdiff_t stride);

  /// Sets color, opacity and line width of the strokes that follow. The width is in pixels; lines
  /// thinner than one pixel are drawn fainter instead. Initially black, opaque and one pixel.
  void setPen(const RGB_COLOR& color, std::uint8_t alpha, double lineWidth);
  /// Adds the chain, or a dot if all points coincide. Coordinates are in pixels, finite, and may
  /// be outside the image.
  void stroke(const PNT_2D* points, std::size_t count, bool closed);
  /// Adds a filled circle.
  void disc(const PNT_2D& center, double diameter);
  /// Draws what was added, in that order. The cost is proportional to the pixels touched.
  void flush();

 private:
  struct Pen {
    // The distance from the center line within which pixels are touched, and the strength of full
    // coverage.
    double reach, strength;
    std::uint32_t redBlue, alphaGreen;  // the color, each part in 16 bits

    bool operator==(const Pen&) const = default;
  };
  struct Stroke {
    std::size_t first, count;  // among the points
    std::size_t pen;           // among the pens
    bool isClosed;
    long firstRow, endRow;
  };
  class Band;
  void add(const PNT_2D* points, std::size_t count, bool closed, const Pen& pen);
  void drawBands(std::atomic<long>& next) const;

  unsigned char* m_pixels;
  long m_width, m_height;
  std::ptrdiff_t m_stride;
  Pen m_pen{};
  double m_full = 0;  // strength of areas; that of lines is less for thin ones
  std::vector<Pen> m_pens;
  std::vector<PNT_2D> m_points;
  std::vector<Stroke> m_strokes;
};

}  // namespace vek0::paint
