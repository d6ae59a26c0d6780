#include "pdfcontent.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <numbers>
#include <utility>

#include "vek0paint/clippingpainter.h"

namespace vek0::paint {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;
constexpr double kPointsPerMm = 72 / kMmPerInch;
// A path is painted after this many points: readers stroke long paths slowly. Fills must stay
// together, or else the background shows through the seams between the strips of a solid hatch.
constexpr std::size_t kStrokeLimit = 512, kFillLimit = 1 << 16;
// Steps beyond the largest sheet that readers accept.
constexpr double kMostSteps = 1e9;

// The number of cubic curves for an arc: one of the angle t deviates from the radius by
// 2/27 sin^6(t/4) / cos^2(t/4), relatively, which grows with the sixth power of t and is 0.00027
// for a quarter circle.
int curveCount(double radius, double sweepRad) {
  constexpr double kMostError = 0.01, kQuarterError = 0.000273, kPower = 1.0 / 6;
  constexpr double kQuarter = kTurn / 4;
  const double ratio = kMostError / (kQuarterError * std::max(radius, kMostError));
  const double angle = kQuarter * std::min(1.0, std::pow(ratio, kPower));
  return std::max(1, static_cast<int>(std::ceil(std::fabs(sweepRad) / angle - 1e-9)));
}

// A part of a color as a share of 1. Three decimals restore the byte.
const std::string& shareOf(std::uint8_t part) {
  static const auto shares = [] {
    std::array<std::string, 256> texts;
    for (std::size_t i = 0; i < texts.size(); ++i)
      appendReal(texts[i], std::round(static_cast<double>(i) / 0.255) / 1000);
    return texts;
  }();
  return shares[part];
}

}  // namespace

// -- pages ---------------------------------------------------------------------------

void PdfContent::startPage(const SHEET& sheet) {
  m_state = {};
  m_lineWidth = sheet.lineWidth;
  m_stepsPerUnit = sheet.unitMm / kStepMm;
  const double height = static_cast<double>(sheet.height) * sheet.unitMm * kPointsPerMm;
  // The y axis of a page points upwards. Round caps make a line of no length a visible dot.
  appendReal(m_out, kStepMm * kPointsPerMm);
  m_out += " 0 0 ";
  appendReal(m_out, -kStepMm * kPointsPerMm);
  m_out += " 0 ";
  appendReal(m_out, height);
  m_out += " cm\n1 J 1 j\n";
  if (sheet.transparent) return;
  m_color = sheet.background;
  useColor(&State::fill, " g\n", " rg\n");
  m_out += "0 0 ";
  appendPoint(steps(static_cast<double>(sheet.width)), steps(static_cast<double>(sheet.height)),
              " re f\n");
}

void PdfContent::endPage() {
  endPath();
  leaveLayer();
  m_stream.finish();
}

// -- numbers -------------------------------------------------------------------------

long PdfContent::steps(double length) const {
  const double count = std::clamp(length * m_stepsPerUnit, -kMostSteps, kMostSteps);
  return static_cast<long>(count + (count < 0 ? -0.5 : 0.5));
}

// Most of a page are points, so each is appended at once.
void PdfContent::appendPoint(long x, long y, std::string_view operation) {
  constexpr std::size_t kDigits = 24, kOperation = 8;
  char text[2 * kDigits + kOperation];
  char* at = std::to_chars(text, text + kDigits - 1, x).ptr;
  *at++ = ' ';
  at = std::to_chars(at, at + kDigits, y).ptr;
  at += operation.copy(at, kOperation);
  m_out.append(text, static_cast<std::size_t>(at - text));
}

void PdfContent::point(const PNT_2D& p, std::string_view operation) {
  appendPoint(steps(p.x), steps(p.y), operation);
}

void PdfContent::curveTo(const PNT_2D& control1, const PNT_2D& control2, const PNT_2D& to) {
  point(control1, " ");
  point(control2, " ");
  point(to, " c\n");
}

// -- the state -----------------------------------------------------------------------

void PdfContent::begin(const DrawItem& item) {
  const bool sameLayer = item.layer ? m_hasLayer && *item.layer == m_layer : !m_hasLayer;
  // Adjacent filled faces of one color would show seams.
  const bool unites = m_path == Fills && sameLayer && item.color == m_color &&
                      item.alpha == m_alpha && item.alpha == 255;
  if (!unites) endPath();
  m_color = item.color;
  m_alpha = item.alpha;
  m_width = steps(item.width > 0 ? item.width : m_lineWidth);
  if (sameLayer) return;
  m_hasLayer = item.layer != nullptr;
  if (item.layer) m_layer = *item.layer;
  m_layerNumber = -1;
}

// Layers are listed only if they have content.
void PdfContent::enterLayer() {
  if (m_hasLayer && m_layerNumber < 0) {
    m_layerNumber = m_layers.try_emplace(m_layer, static_cast<int>(m_layers.size())).first->second;
  }
  const int wanted = m_hasLayer ? m_layerNumber : -1;
  if (wanted == m_openLayer) return;
  leaveLayer();
  if (wanted < 0) return;
  m_out += "/OC /L";
  appendInteger(m_out, wanted);
  m_out += " BDC\n";
  m_openLayer = wanted;
}

void PdfContent::leaveLayer() {
  if (m_openLayer >= 0) m_out += "EMC\n";
  m_openLayer = -1;
}

void PdfContent::useAlpha() {
  if (m_state.alpha == m_alpha) return;
  m_state.alpha = m_alpha;
  m_alphas.insert(m_alpha);
  m_out += "/A" + std::to_string(m_alpha) + " gs\n";
}

void PdfContent::useColor(RGB_COLOR State::*color, const char* gray, const char* rgb) {
  if (m_state.*color == m_color) return;
  m_state.*color = m_color;
  m_out += shareOf(m_color.r);
  if (m_color.g == m_color.r && m_color.b == m_color.r) {
    m_out += gray;
    return;
  }
  m_out += ' ';
  m_out += shareOf(m_color.g);
  m_out += ' ';
  m_out += shareOf(m_color.b);
  m_out += rgb;
}

void PdfContent::useWidth(long width) {
  if (m_state.width == width) return;
  m_state.width = width;
  appendInteger(m_out, width);
  m_out += " w\n";
}

void PdfContent::useDashes(const std::string& dashes) {
  if (m_state.dashes == dashes) return;
  m_state.dashes = dashes;
  m_out += dashes + " d\n";
}

void PdfContent::startStrokes(long width, const std::string& dashes) {
  if (m_path != Strokes || m_state.width != width || m_state.dashes != dashes ||
      m_points >= kStrokeLimit) {
    endPath();
  }
  if (m_path == Strokes) return;
  m_path = Strokes;
  enterLayer();
  useAlpha();
  useColor(&State::stroke, " G\n", " RG\n");
  useWidth(width);
  useDashes(dashes);
}

void PdfContent::startFills() {
  if (m_path != Fills || m_points >= kFillLimit) endPath();
  if (m_path == Fills) return;
  m_path = Fills;
  enterLayer();
  useAlpha();
  useColor(&State::fill, " g\n", " rg\n");
}

void PdfContent::endPath() {
  if (m_path == Strokes) m_out += "S\n";
  if (m_path == Fills) m_out += "f\n";
  m_path = None;
  m_points = 0;
  m_stream.endOperator();
}

// -- shapes --------------------------------------------------------------------------

void PdfContent::stroke(const PNT_2D* points, std::size_t count, bool closed) {
  startStrokes(m_width);
  chain(points, count);
  if (closed) m_out += "h\n";
}

void PdfContent::dashedStroke(const PNT_2D* points, std::size_t count, const DrawDashes& dashes,
                              double distance) {
  double period = 0;
  std::string operands = "[";
  for (const double length : dashes.lengths) {
    period += length;
    appendReal(operands, length * m_stepsPerUnit);
    operands += ' ';
  }
  operands.back() = ']';
  operands += ' ';
  appendReal(operands, std::fmod(dashes.phase + distance, period) * m_stepsPerUnit);
  startStrokes(m_width, operands);
  chain(points, count);
}

void PdfContent::chain(const PNT_2D* points, std::size_t count) {
  long x = steps(points[0].x), y = steps(points[0].y);
  appendPoint(x, y, kMove);
  bool isDot = true;
  for (std::size_t i = 1; i < count; ++i) {
    const long nextX = steps(points[i].x), nextY = steps(points[i].y);
    const bool isLast = i + 1 == count;
    // A line of no length is needed only if there is no other.
    if (nextX == x && nextY == y && !(isDot && isLast)) continue;
    appendPoint(x = nextX, y = nextY, kLine);
    isDot = false;
  }
  countPoints(count);
}

void PdfContent::arc(const PNT_2D& center, double radius, double startRad, double sweepRad) {
  startStrokes(m_width);
  const int count = curveCount(radius, sweepRad);
  const double step = sweepRad / count, reach = 4.0 / 3 * std::tan(step / 4);
  double cosine = std::cos(startRad), sine = std::sin(startRad);
  const auto at = [&](double x, double y) {
    return PNT_2D(center.x + radius * x, center.y + radius * y);
  };
  moveTo(at(cosine, sine));
  for (int i = 1; i <= count; ++i) {
    const double nextCosine = std::cos(startRad + step * i),
                 nextSine = std::sin(startRad + step * i);
    curveTo(at(cosine - reach * sine, sine + reach * cosine),
            at(nextCosine + reach * nextSine, nextSine - reach * nextCosine),
            at(nextCosine, nextSine));
    cosine = nextCosine;
    sine = nextSine;
  }
  if (std::fabs(sweepRad) >= kTurn) m_out += "h\n";
  countPoints(3 * static_cast<std::size_t>(count));
}

void PdfContent::ring(const PNT_2D* points, std::size_t count, bool reversed) {
  for (std::size_t i = 0; i < count; ++i)
    point(points[reversed ? count - 1 - i : i], i == 0 ? kMove : kLine);
}

void PdfContent::fill(const PNT_2D* points, const std::size_t* ends, std::size_t rings,
                      FillRule rule) {
  const bool unites = rule == FillRule::NonZero;
  if (!unites) endPath();
  startFills();
  // United rings need a common orientation for the non-zero rule.
  const bool reversed = unites && turnLeft(points, ends, rings);
  for (std::size_t i = 0, start = 0; i < rings; start = ends[i++])
    ring(points + start, ends[i] - start, reversed);
  countPoints(ends[rings - 1]);
  if (unites) return;
  m_out += "f*\n";
  m_path = None;
  endPath();
}

// A round cap at both ends of a line of no length.
void PdfContent::disc(const PNT_2D& center, double diameter) {
  startStrokes(steps(diameter));
  moveTo(center);
  lineTo(center);
  countPoints(1);
}

void PdfContent::beginOutline() {
  endPath();
  startFills();
}

void PdfContent::endOutline() { endPath(); }

// Marked content does not cross the borders of a saved state.
void PdfContent::clip(const PNT_2D* points, std::size_t count) {
  endPath();
  leaveLayer();
  m_outerStates.push_back(m_state);
  m_out += "q\n";
  // Readers disagree on empty clips, so content without a visible part moves beside the page.
  const std::array<PNT_2D, 3> beside = {PNT_2D(-2, -2), PNT_2D(-2, -1), PNT_2D(-1, -2)};
  if (count < beside.size()) {
    ring(beside.data(), beside.size(), false);
  } else {
    ring(points, count, false);
  }
  m_out += "h W* n\n";
}

void PdfContent::popClip() {
  endPath();
  leaveLayer();
  m_out += "Q\n";
  m_state = m_outerStates.back();
  m_outerStates.pop_back();
}

// -- texts ---------------------------------------------------------------------------

void PdfContent::useTextMode(const PDF_RUN& run) {
  const int mode = run.stroke > 0 ? 2 : 0;
  if (mode == 2) {
    useColor(&State::stroke, " G\n", " RG\n");
    useWidth(steps(run.stroke));
    useDashes(kNoDashes);
  }
  if (m_state.textMode == mode) return;
  m_state.textMode = mode;
  m_out += std::to_string(mode) + " Tr\n";
}

void PdfContent::text(const PDF_RUN& run) {
  endPath();
  enterLayer();
  useAlpha();
  useColor(&State::fill, " g\n", " rg\n");
  useTextMode(run);
  if (m_state.font != run.font) m_out += "/F" + std::to_string(run.font) + " 1 Tf\n";
  m_state.font = run.font;
  if (!run.replaced.empty()) {
    m_out += "/Span <</ActualText " + pdfText(run.replaced) + ">> BDC\n";
  }
  m_out += "BT ";
  const AFFINE_2D& m = run.matrix;
  for (const double factor : {m.a, m.b, m.c, m.d}) {
    appendReal(m_out, factor * m_stepsPerUnit);
    m_out += ' ';
  }
  appendPoint(steps(m.e), steps(m.f), " Tm ");
  m_out += run.glyphs;
  m_out += " TJ ET\n";
  if (!run.replaced.empty()) m_out += "EMC\n";
  m_stream.endOperator();
}

}  // namespace vek0::paint
