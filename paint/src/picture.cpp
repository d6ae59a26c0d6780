#include "vek0paint/picture.h"

#include <algorithm>
#include <cmath>

#include "vek0core/geometry/angle.h"
#include "vek0host/textvalues.h"

namespace vek0::paint {
namespace {

constexpr double kImageSide = 1600;  // pixels
constexpr double kMinImageSide = 200;
constexpr double kMarginMm = 10, kMarginPixels = 20;
constexpr double kMostMargin = 0.125;  // of a sheet's shorter side, unless specified
// On screen, the usual lineweight of 0.25 mm is a pixel. Thinner lines would hardly be visible.
constexpr double kPixelsPerMm = 4, kLeastPixels = 1, kLeastMm = 0.05, kUsualMm = 0.25;
constexpr SHEET_SIZE kA4{210, 297, true};
// Maximum page side in PDF readers: 200 inches.
constexpr double kMaxPageMm = 5080;
// Up to here, coordinates on a sheet are exact to the last digit written.
constexpr double kMaxUnits = 1e7;

bool takePrefix(std::string& text, const std::string& prefix) {
  if (text.compare(0, prefix.size(), prefix) != 0) return false;
  text.erase(0, prefix.size());
  return true;
}

// Extends an empty rectangle to a non-empty one around its center.
RECT_2D withArea(const RECT_2D& rect) {
  if (!rect.validRegion() || !isFinite(rect)) return RECT_2D(0, 0, 1, 1);
  RECT_2D area = rect;
  const double side = std::max(rect.max.x - rect.min.x, rect.max.y - rect.min.y);
  if (side == 0) area.inflate(0.5, 0.5);
  return area;
}

// A layout in the making; lengths in device units unless they say otherwise.
class Layout {
 public:
  Layout(const PICTURE_OPTIONS& options, const RECT_2D& extents)
      : m_options(options),
        m_content(withArea(options.window ? *options.window : extents)),
        m_paper(options.size ? options.size->mm || options.format == Format::Pdf
                             : options.scale || options.format == Format::Pdf) {
    m_unitMm = options.format == Format::Png ? kMmPerInch / options.dpi
               : m_paper                     ? kPaperUnitMm
                                             : kMmPerInch / kCssDpi;
  }

  PICTURE make() {
    m_margin = margin();
    measureSheet();
    PICTURE picture;
    picture.error = refusal();
    if (!picture.error.empty()) return picture;
    picture.sheet.width = std::max(1L, std::lround(m_width));
    picture.sheet.height = std::max(1L, std::lround(m_height));
    picture.sheet.unitMm = m_unitMm;
    picture.sheet.paper = m_paper && m_options.format != Format::Png;
    picture.sheet.weights = weights();
    picture.sheet.lineWidth = lineWidth();
    if (m_options.format == Format::Png) picture.error = imageRefusal(picture.sheet);
    placeContent(picture);
    return picture;
  }

 private:
  double contentWidth() const { return m_content.max.x - m_content.min.x; }
  double contentHeight() const { return m_content.max.y - m_content.min.y; }
  double fromMm(double mm) const { return mm / m_unitMm; }

  double margin() const {
    const auto toUnits = [this](double length) { return m_paper ? fromMm(length) : length; };
    if (m_options.margin) return toUnits(*m_options.margin);
    if (m_options.window) return 0;
    const double usual = toUnits(m_paper ? kMarginMm : kMarginPixels);
    if (!m_options.size) return usual;
    const double shorter = std::min(m_options.size->width, m_options.size->height);
    return std::min(usual, kMostMargin * shorter * sizeFactor(*m_options.size));
  }

  // Device units of a unit of a size.
  double sizeFactor(const SHEET_SIZE& size) const {
    const double pixelMm = kMmPerInch / kCssDpi;
    return size.mm ? 1 / m_unitMm : m_paper ? pixelMm / m_unitMm : 1;
  }

  DRAW_WEIGHTS weights() const {
    if (m_options.lineWidth) return {};
    if (!m_paper) return {m_options.weightFactor * kPixelsPerMm, kLeastPixels};
    const double perMm = fromMm(m_options.weightFactor);
    if (m_options.format != Format::Png) return {perMm, fromMm(kLeastMm)};
    // At a low resolution, the usual width is less than a pixel.
    return {perMm, std::min(kLeastPixels, fromMm(kUsualMm))};
  }
  double lineWidth() const {
    if (m_options.lineWidth && m_paper) return fromMm(*m_options.lineWidth);
    if (m_options.lineWidth) return std::max(*m_options.lineWidth * kPixelsPerMm, kLeastPixels);
    return weights().widthOf(m_options.defaultWeight);
  }

  // Drawing units per device unit.
  double perUnit() const {
    if (m_options.scale) return m_unitMm / (m_options.unitMm * *m_options.scale);
    // The larger ratio, so that both width and height fit.
    return std::max(contentWidth() / (m_width - 2 * m_margin),
                    contentHeight() / (m_height - 2 * m_margin));
  }

  void measureSheet() {
    if (m_options.size) {
      useSize(*m_options.size, m_options.turnable);
    } else if (m_options.scale) {
      m_width = contentWidth() / perUnit() + 2 * m_margin;
      m_height = contentHeight() / perUnit() + 2 * m_margin;
    } else if (m_options.format == Format::Pdf) {
      useSize(kA4, true);
    } else {
      useShapeOfContent();
    }
  }

  void useSize(const SHEET_SIZE& size, bool turnable) {
    const double factor = sizeFactor(size);
    m_width = size.width * factor;
    m_height = size.height * factor;
    if (!turnable && !m_options.landscape) return;
    // Without an explicit orientation, the sheet follows the shape of the content.
    const bool landscape = m_options.landscape.value_or(contentWidth() > contentHeight());
    if (landscape != (m_width > m_height)) std::swap(m_width, m_height);
  }

  void useShapeOfContent() {
    const double inner = kImageSide - 2 * kMarginPixels;
    const double longest = std::max(contentWidth(), contentHeight());
    const auto side = [&](double length) {
      return std::max(kMinImageSide, std::round(length / longest * inner + 2 * kMarginPixels));
    };
    m_width = side(contentWidth());
    m_height = side(contentHeight());
  }

  std::string refusal() const {
    const double longest = std::max(m_width, m_height);
    if (!(std::isfinite(longest) && longest <= kMaxUnits) ||
        (m_options.format == Format::Pdf && longest * m_unitMm > kMaxPageMm)) {
      return "the picture would be too large; use --paper or another --scale";
    }
    if (!m_options.scale && std::min(m_width, m_height) <= 2 * m_margin) {
      return "the margins leave no room on the sheet";
    }
    return {};
  }

  void placeContent(PICTURE& picture) const {
    const double scale = perUnit();
    // Uses the rounded size of the sheet and the requested scale.
    const double halfWidth = static_cast<double>(picture.sheet.width) * scale / 2;
    const double halfHeight = static_cast<double>(picture.sheet.height) * scale / 2;
    const double x = (m_content.min.x + m_content.max.x) / 2;
    const double y = (m_content.min.y + m_content.max.y) / 2;
    picture.world = RECT_2D(x - halfWidth, y - halfHeight, x + halfWidth, y + halfHeight);
    // Rounding the sheet may have cut off half a unit.
    picture.overflows =
        contentWidth() > 2 * halfWidth + scale || contentHeight() > 2 * halfHeight + scale;
    if (picture.error.empty() && !isFinite(picture.world)) {
      picture.error = "the coordinates of the content are too large";
    }
  }

  const PICTURE_OPTIONS& m_options;
  RECT_2D m_content;
  bool m_paper;
  double m_unitMm = 1, m_margin = 0;
  double m_width = 0, m_height = 0;
};

}  // namespace

std::optional<Format> formatOf(const std::string& name) {
  const std::string extension = host::lowered(name.substr(name.rfind('.') + 1));
  for (const Format format : {Format::Svg, Format::Png, Format::Pdf}) {
    if (extension == nameOf(format)) return format;
  }
  return std::nullopt;
}

const char* nameOf(Format format) {
  switch (format) {
    case Format::Svg:
      return "svg";
    case Format::Png:
      return "png";
    case Format::Pdf:
      break;
  }
  return "pdf";
}

std::unique_ptr<IProjector> makeProjector(const std::string& text) {
  if (text == "plan") return std::make_unique<CPOProjector>();
  if (text == "front") return std::make_unique<CPVProjector>();
  if (text == "side") return std::make_unique<CPLProjector>();
  std::string rest = text;
  double v[4];
  if (takePrefix(rest, "plan:") && host::parseNumbers(rest, ',', v, 1)) {
    return std::make_unique<CPORotatedProjector>(v[0] * kRadiansPerDegree, 0, 0);
  }
  if (takePrefix(rest, "parallel:") && host::parseNumbers(rest, ',', v, 4) &&
      v[0] * v[3] - v[1] * v[2] != 0) {
    return std::make_unique<CParalProjector>(v[0], v[1], v[2], v[3]);
  }
  return nullptr;
}

PICTURE layOut(const PICTURE_OPTIONS& options, const RECT_2D& extents) {
  return Layout(options, extents).make();
}

}  // namespace vek0::paint
