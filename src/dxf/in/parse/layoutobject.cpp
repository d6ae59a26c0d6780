#include "dxf/in/parse/layoutobject.h"

#include <algorithm>
#include <utility>

#include "files/number.h"
#include "zim0lang/casefold.h"

namespace vek0::detail {
namespace {

constexpr double kMmPerInch = 25.4;
// Bits of code 70.
constexpr long kCentered = 4, kStandardScale = 16, kPlotStyles = 32, kPlotsWeights = 128,
               kViewportsFirst = 512;

constexpr PlotArea kAreas[] = {PlotArea::Display, PlotArea::Extents, PlotArea::Limits,
                               PlotArea::View,    PlotArea::Window,  PlotArea::Layout};

}  // namespace

// The plot settings come first, and use the same codes for other values.
void LayoutObject::read(CFileDXFILexer& lexer, const CFileDXFIError& err) {
  line = lexer.getLine();
  bool isLayout = true;
  for (long code = lexer.read(); code != 0 && !err.HasAnError(); code = lexer.read()) {
    if (code == 100) isLayout = !lexer.isKeyword("ACDBPLOTSETTINGS");
    if (isLayout && code == 1) name = lexer.getText();
    if (isLayout && code == 330) sheet = parseHex(lexer.getBytes());
    if (!isLayout && code == 7) styles = lexer.getText();
    const bool isLimit = isLayout && code >= 10 && code < 30;
    const bool isNumber = isLimit || (code >= 40 && code < 80) || (code >= 140 && code < 150);
    if (!isNumber) continue;
    const ParsedDouble value = parseDouble(lexer.getBytes());
    if (!value.finite) continue;
    if (!isLayout) plot[code] = value.value;
    if (isLimit) takeLimit(code, value.value);
    if (isLayout && code == 71) tab = parseLong(lexer.getBytes());
  }
}

void LayoutObject::takeLimit(long code, double value) {
  if (code == 10) limits.min.x = value;
  if (code == 20) limits.min.y = value;
  if (code == 11) limits.max.x = value;
  if (code == 21) limits.max.y = value;
}

bool LayoutObject::isModel() const { return zim::equalsIgnoreCase(name, u"MODEL"); }

double LayoutObject::number(long code, double absent) const {
  const auto found = plot.find(code);
  return found == plot.end() ? absent : found->second;
}

long LayoutObject::integer(long code, long most, long absent) const {
  const auto limit = static_cast<double>(most);
  return static_cast<long>(std::clamp(number(code, static_cast<double>(absent)), 0.0, limit));
}

PlotArea LayoutObject::area() const { return kAreas[integer(74, 5, 5)]; }

bool LayoutObject::hasLimits() const {
  return limits.min.x < limits.max.x && limits.min.y < limits.max.y;
}

std::vector<zim::WString> LayoutObject::losses() const {
  std::vector<zim::WString> lost;
  if (!settings().hasPaper()) return lost;
  if (area() == PlotArea::Display) lost.emplace_back(u"display");
  if (area() == PlotArea::View) lost.emplace_back(u"view");
  if (area() == PlotArea::Limits && !hasLimits()) lost.emplace_back(u"limits");
  // The usual tables change nothing.
  const bool isUsual = styles.empty() || zim::equalsIgnoreCase(styles, u"ACAD.CTB") ||
                       zim::equalsIgnoreCase(styles, u"ACAD.STB");
  if (!isUsual && (flags() & kPlotStyles) != 0) lost.push_back(styles);
  return lost;
}

// A standard scale, unless it is "scaled to fit" (0), takes precedence over the ratio.
double LayoutObject::scale() const {
  const double unit = number(72) == 0 ? kMmPerInch : 1;
  const bool isStandard = (flags() & kStandardScale) != 0 && number(75) != 0;
  if (isStandard && number(147) > 0) return number(147) * unit;
  const double paper = number(142, 1), drawing = number(143, 1);
  return paper > 0 && drawing > 0 ? paper / drawing * unit : unit;
}

// Rotating the paper moves its edges: at a quarter turn, the top edge is left of the sheet. The
// offset of the plot origin, which is stated along the edges of the unrotated paper, turns with it.
PLOT_SETTINGS LayoutObject::settings() const {
  PLOT_SETTINGS plotted;
  const double left = number(40), bottom = number(41), right = number(42), top = number(43);
  const double edges[4][4] = {{left, bottom, right, top},
                              {top, left, bottom, right},
                              {right, top, left, bottom},
                              {bottom, right, top, left}};
  const long turns = integer(73, 3);
  plotted.left = edges[turns][0];
  plotted.bottom = edges[turns][1];
  plotted.right = edges[turns][2];
  plotted.top = edges[turns][3];
  plotted.width = std::max(number(44), 0.0);
  plotted.height = std::max(number(45), 0.0);
  plotted.origin = PNT_2D(number(46), number(47));
  if (turns % 2 != 0) {
    std::swap(plotted.width, plotted.height);
    std::swap(plotted.origin.x, plotted.origin.y);
  }
  plotted.scale = scale();
  plotted.area = area();
  plotted.window.set(number(48), number(49), number(140), number(141));
  if (plotted.area == PlotArea::Limits && hasLimits()) {
    plotted.area = PlotArea::Window;
    plotted.window = limits;
  }
  plotted.isCentered = (flags() & kCentered) != 0;
  plotted.viewportsFirst = (flags() & kViewportsFirst) != 0;
  // With plot styles, programs do not ask whether to plot lineweights.
  plotted.hasLineweights = (integer(70, 65535, kPlotsWeights) & (kPlotStyles | kPlotsWeights)) != 0;
  return plotted;
}

}  // namespace vek0::detail
