#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "pdfstream.h"
#include "vek0draw/painter.h"
#include "vek0paint/sheet.h"
#include "zim0lang/wstring.h"

namespace vek0::paint {

/// Glyphs of one font on one baseline.
struct PDF_RUN {
  int font = 0;       ///< number of the font
  AFFINE_2D matrix;   ///< from the em square, y upwards, to the device
  double stroke = 0;  ///< width of the strokes that embolden the glyphs, in device units; 0: none
  std::string glyphs = {};       ///< the operand of TJ
  std::u16string replaced = {};  ///< the text if the glyphs do not yield it, else empty
};

/// Writes the drawing operators of the pages of a PDF.
///
/// Coordinates are integers in steps of `kStepMm`, so a page starts with a scale. The operators of
/// a layer are marked as its content, and operators that set the state are written on changes only.
class PdfContent {
 public:
  /// A thousandth of a millimeter: 25400 dots per inch.
  static constexpr double kStepMm = 0.001;

  /// `sink` receives the compressed operators of the pages, in blocks.
  explicit PdfContent(PdfStream::Sink sink) : m_stream(std::move(sink)) {}
  PdfContent(const PdfContent&) = delete;
  PdfContent& operator=(const PdfContent&) = delete;

  void startPage(const SHEET& sheet);
  /// Ends the page and passes on the rest of it.
  void endPage();

  /// As in `IPainter`.
  void begin(const DrawItem& item);
  void stroke(const PNT_2D* points, std::size_t count, bool closed);
  void dashedStroke(const PNT_2D* points, std::size_t count, const DrawDashes& dashes,
                    double distance);
  void arc(const PNT_2D& center, double radius, double startRad, double sweepRad);
  void fill(const PNT_2D* points, const std::size_t* ends, std::size_t rings, FillRule rule);
  void disc(const PNT_2D& center, double diameter);
  void clip(const PNT_2D* points, std::size_t count);
  void popClip();
  void text(const PDF_RUN& run);

  /// Contours are filled by the non-zero rule between the two calls.
  void beginOutline();
  void endOutline();
  void moveTo(const PNT_2D& to) { point(to, kMove); }
  void lineTo(const PNT_2D& to) { point(to, kLine); }
  void curveTo(const PNT_2D& control1, const PNT_2D& control2, const PNT_2D& to);

  /// Numbers of the layers that have content on any page, by their names.
  const std::map<zim::WString, int>& layers() const { return m_layers; }
  /// The opacities that operators on any page name.
  const std::set<std::uint8_t>& alphas() const { return m_alphas; }

 private:
  enum Path { None, Strokes, Fills };
  static constexpr const char* kNoDashes = "[] 0";
  static constexpr std::string_view kMove = " m\n", kLine = " l\n";

  // The graphics state, as the operators have set it.
  struct State {
    RGB_COLOR stroke, fill;
    long width = -1;  // steps; -1: not set
    std::string dashes = kNoDashes;
    std::uint8_t alpha = 255;
    int font = -1;
    int textMode = 0;
  };

  long steps(double length) const;
  void point(const PNT_2D& p, std::string_view operation);
  void appendPoint(long x, long y, std::string_view operation);
  void ring(const PNT_2D* points, std::size_t count, bool reversed);

  void startStrokes(long width, const std::string& dashes = kNoDashes);
  void chain(const PNT_2D* points, std::size_t count);
  void startFills();
  void endPath();
  void countPoints(std::size_t count) { m_points += count; }

  void enterLayer();
  void leaveLayer();
  void useAlpha();
  void useColor(RGB_COLOR State::*color, const char* gray, const char* rgb);
  void useWidth(long width);
  void useDashes(const std::string& dashes);
  void useTextMode(const PDF_RUN& run);

  PdfStream m_stream;
  std::string& m_out = m_stream.text();
  double m_stepsPerUnit = 1;
  double m_lineWidth = 0;  // of the sheet

  // Of the current item.
  RGB_COLOR m_color;
  long m_width = 0;
  std::uint8_t m_alpha = 255;
  bool m_hasLayer = false;
  zim::WString m_layer;
  int m_layerNumber = -1;  // once it has content

  Path m_path = None;
  std::size_t m_points = 0;  // in the path
  int m_openLayer = -1;
  State m_state;
  std::vector<State> m_outerStates;  // of the open clips
  std::map<zim::WString, int> m_layers;
  std::set<std::uint8_t> m_alphas;
};

}  // namespace vek0::paint
