#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <future>
#include <vector>

#include "vek0draw/painter.h"

namespace vek0::paint {

/// Strokes on an image, antialiased, with round caps and joins.
///
/// Drawings are mostly thin lines, for which general stroking takes ten times as long, because it
/// converts them to polygons. Here the coverage of a pixel follows from its distance to the stroke.
///
/// Strokes are collected and drawn together, one band of rows after the other, since memory is slow
/// and a band fits the cache. Bands are independent of each other, so two threads share them;
/// one of them collects the next strokes meanwhile.
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
  /// Adds lines, each between two points. Dashes of one line, in order, are faster than others;
  /// their ends do not add up where they overlap.
  void segments(const PNT_2D* points, std::size_t count);
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
  enum Form : std::uint8_t { Open, Closed, Dashes };
  struct Stroke {
    std::size_t first, count;  // among the points
    std::size_t pen;           // among the pens
    Form form;
  };
  struct Batch {
    std::vector<Pen> pens;
    std::vector<PNT_2D> points;
    std::vector<Stroke> strokes;
    std::vector<std::vector<std::uint32_t>> bands;  // the strokes that reach into each

    void clear();
  };
  class Band;
  void add(const PNT_2D* points, std::size_t count, Form form, const Pen& pen);
  bool addDashes(const PNT_2D* points, std::size_t count);
  void submit();
  void finish();
  void drawBands();

  unsigned char* m_pixels;
  long m_width, m_height;
  std::ptrdiff_t m_stride;
  Pen m_pen{};
  double m_full = 0;           // strength of areas; that of lines is less for thin ones
  Batch m_batch;               // being collected
  Batch m_drawn;               // being drawn
  std::vector<PNT_2D> m_line;  // scratch
  std::atomic<long> m_next;    // the next band to draw
  std::future<void> m_drawing;
};

}  // namespace vek0::paint
