#pragma once

#include <cairo.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "vek0paint/linerasterizer.h"
#include "vek0paint/sheetpainter.h"

namespace vek0::paint {

/// Draws a PNG image with Cairo; unclipped strokes use a separate rasterizer.
class CairoPainter final : public SheetPainter {
 public:
  /// `file` is open, and borrowed like `fonts`. If the image cannot be created, `finish` fails.
  CairoPainter(IFile& file, const SHEET& sheet, IOutlineFonts& fonts);

  void begin(const DrawItem& item) override;
  bool finish() override;

 protected:
  void plainStroke(const PNT_2D* points, std::size_t count, bool closed) override;
  void plainSegments(const PNT_2D* points, std::size_t count) override;
  void plainArc(const PNT_2D& center, double radius, double startRad, double sweepRad) override;
  void plainFill(const PNT_2D* points, const std::size_t* ends, std::size_t rings,
                 FillRule rule) override;
  void plainDot(const PNT_2D& at) override;
  void plainDisc(const PNT_2D& center, double diameter) override;
  bool plainClip(const PNT_2D* points, std::size_t count) override;
  void plainPopClip() override;
  void plainText(const DrawText& text, const OutlineFont& font, const RECT_2D& bounds) override;

 private:
  struct DestroySurface {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  };
  struct DestroyContext {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
  };

  bool strokesItself();
  enum Path { None, Strokes, Fills, Pixels };  // purpose of the current path
  void startPath(Path path);
  void strokeArc(const PNT_2D& center, double radius, double startRad, double sweepRad);
  void countPoints(std::size_t count);
  void endPath();
  bool startGroup(const std::vector<PNT_2D>& ring);
  void addRing(const PNT_2D* points, std::size_t count, bool reversed);

  IFile& m_file;
  std::unique_ptr<cairo_surface_t, DestroySurface> m_surface;
  std::unique_ptr<cairo_t, DestroyContext> m_context;
  std::unique_ptr<LineRasterizer> m_lines;  // set if the image could be created
  std::vector<PNT_2D> m_chords;             // scratch
  const double m_lineWidth;                 // of items without a width
  RGB_COLOR m_color;
  std::uint8_t m_alpha = 255;
  double m_width;
  // The active clips: the ring that clips a group, or an empty one.
  std::vector<std::vector<PNT_2D>> m_clips;
  double m_clipPixels;  // remaining cost for groups
  Path m_path = None;
  std::size_t m_points = 0;  // in the path
};

}  // namespace vek0::paint
