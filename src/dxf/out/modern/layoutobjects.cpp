#include "dxf/out/modern/layoutobjects.h"

#include "dxf/out/exactnumbers.h"
#include "dxf/out/modern/fixedpairs.h"
#include "dxf/out/savedcolor.h"
#include "dxf/out/savedsheet.h"
#include "vek0core/geometry/finite.h"

namespace vek0::detail {
namespace {

// Bits of code 70 of plot settings.
constexpr long kIsCentered = 4, kPlotsWeights = 128, kViewportsFirst = 512, kIsModel = 1024;
// Bits of code 90 of a viewport: those that every one has, a boundary, and being off.
constexpr long kUsualBits = 0x8060, kHasBoundary = 0x10000, kIsOff = 0x20000;

constexpr FixedPair kShadePlot[] = {{76, "0"}, {77, "2"}, {78, "300"}};
constexpr FixedPair kLayoutFrame[] = {{146, "0.0"}, {13, "0.0"}, {23, "0.0"}, {33, "0.0"},
                                      {16, "1.0"},  {26, "0.0"}, {36, "0.0"}, {17, "0.0"},
                                      {27, "1.0"},  {37, "0.0"}, {76, "0"}};
constexpr FixedPair kViewportFrame[] = {{1, ""},      {281, "0"},   {71, "1"},    {74, "0"},
                                        {110, "0.0"}, {120, "0.0"}, {130, "0.0"}, {111, "1.0"},
                                        {121, "0.0"}, {131, "0.0"}, {112, "0.0"}, {122, "1.0"},
                                        {132, "0.0"}, {79, "0"},    {146, "0.0"}};

// The settings of the sheet that stands for a missing one, and the size of sheets without any: A4.
PLOT_SETTINGS usualSheet() {
  PLOT_SETTINGS plot;
  plot.width = 297;
  plot.height = 210;
  return plot;
}

PLOT_SETTINGS plotOf(const SavedSpace& space, bool isModel) {
  PLOT_SETTINGS plot = space.layout ? space.layout->getPlot() : usualSheet();
  // The others count as the whole sheet, but readers may look for a display, view or limits.
  const bool isPart = plot.area == PlotArea::Extents || plot.area == PlotArea::Window;
  if (!isPart) plot.area = isModel ? PlotArea::Display : PlotArea::Layout;
  return plot;
}

bool hasArea(const RECT_2D& r) {
  return r.min.x < r.max.x && r.min.y < r.max.y && isFinite(r) && isFinite(r.max - r.min);
}

// The paper, or what is on the sheet. Readers may divide by its height.
RECT_2D paperOf(const SavedSpace& space) {
  if (space.layout && hasArea(space.layout->getPaper())) return space.layout->getPaper();
  if (space.layout && hasArea(space.layout->getBdry())) return space.layout->getBdry();
  return RECT_2D(0, 0, usualSheet().width, usualSheet().height);
}

class PlotPairs {
 public:
  PlotPairs(const FilePlan& plan, CFileDXFOWriter& out, const SavedSpace& space)
      : m_plan(plan), m_out(out), m_space(space) {}

  void write(const PLOT_SETTINGS& plot, long flags) {
    m_out.writeEncoded(100, "AcDbPlotSettings");
    m_out.writeEncoded(1, "");
    m_out.writeEncoded(2, "none_device");
    m_out.writeEncoded(4, "");
    m_out.writeEncoded(6, "");
    reals(40, {plot.left, plot.bottom, plot.right, plot.top, plot.width, plot.height, plot.origin.x,
               plot.origin.y, plot.window.min.x, plot.window.min.y});
    reals(140, {plot.window.max.x, plot.window.max.y, plot.scale, 1.0});
    if (plot.isCentered) flags |= kIsCentered;
    if (plot.hasLineweights) flags |= kPlotsWeights;
    if (plot.viewportsFirst) flags |= kViewportsFirst;
    m_out.write(70, flags);
    m_out.write(72, 1L);  // millimeters
    m_out.write(73, 0L);  // not rotated
    m_out.write(74, static_cast<long>(plot.area));
    m_out.writeEncoded(7, "");
    m_out.write(75, 0L);  // the scale is the ratio above
    if (m_plan.rules.shadePlots) writePairs(m_out, kShadePlot);
    reals(147, {plot.scale, 0.0, 0.0});
  }

 private:
  void reals(long code, std::initializer_list<double> values) {
    for (const double value : values) m_out.write(code++, m_plan.finite(value, 0, m_space.name));
  }

  const FilePlan& m_plan;
  CFileDXFOWriter& m_out;
  const SavedSpace& m_space;
};

}  // namespace

void writeLayout(const FilePlan& plan, CFileDXFOWriter& out, std::size_t index) {
  const SavedSpace& space = plan.spaces[index];
  const bool isModel = index == 0;
  const Handle dictionary = plan.of(FixedObject::LayoutDictionary);
  out.writeEncoded(0, "LAYOUT");
  out.writeHex(5, space.object);
  out.writeEncoded(102, "{ACAD_REACTORS");
  out.writeHex(330, dictionary);
  out.writeEncoded(102, "}");
  out.writeHex(330, dictionary);
  PlotPairs(plan, out, space).write(plotOf(space, isModel), isModel ? kIsModel : 0);
  const RECT_2D paper = paperOf(space);
  out.writeEncoded(100, "AcDbLayout");
  out.writeText(1, space.name);
  out.write(70, plan.data.getVars().isPaperLtypeScale());
  out.write(71, space.tab);
  writePoint(out, 10, paper.min.x, paper.min.y);
  writePoint(out, 11, paper.max.x, paper.max.y);
  writePoint(out, 12, 0, 0, 0);
  writePoint(out, 14, paper.min.x, paper.min.y, 0);
  writePoint(out, 15, paper.max.x, paper.max.y, 0);
  writePairs(out, kLayoutFrame);
  out.writeHex(330, space.record);
}

void SheetViewports::write(const SavedSpace& space) {
  writeOwn(space);
  long number = 1;
  for (const SavedViewport& saved : space.viewports) {
    if (isFiniteView(*saved.viewport))
      write(space, saved, ++number);
    else
      m_plan.note(ReportCode::EntityNotFinite, u"VIEWPORT");
  }
}

void SheetViewports::writeOwn(const SavedSpace& space) {
  const RECT_2D shown = paperOf(space);
  VIEWPORT own;
  own.center = own.viewCenter =
      PNT_2D((shown.min.x + shown.max.x) / 2, (shown.min.y + shown.max.y) / 2);
  own.width = shown.max.x - shown.min.x;
  own.height = own.viewHeight = shown.max.y - shown.min.y;
  m_records.begin("VIEWPORT", space.ownViewport, space.record);
  m_records.properties().write(nullptr, nullptr, kColorByLayer, ENT_TRAITS());
  writeView(own, 1, 1, kUsualBits, 0);
}

void SheetViewports::write(const SavedSpace& space, const SavedViewport& saved, long number) {
  const VIEWPORT& view = *saved.viewport;
  const Handle boundary = writeBoundary(space, saved);
  m_records.begin("VIEWPORT", m_plan.handles.take(view.handle), space.record);
  m_records.properties().write(view.layer, view.ltype, view.color, view.traits);
  if (view.traits.thickness != 0) m_plan.note(ReportCode::CodeDropped, u"39");
  // A drawing does not hold the direction of views that are not from above.
  const bool isOn = view.isOn && view.isPlan;
  if (isOn != view.isOn) m_plan.note(ReportCode::ViewSimplified, u"direction");
  const long flags = kUsualBits | (isOn ? 0 : kIsOff) | (boundary != 0 ? kHasBoundary : 0);
  writeView(view, isOn ? number : 0, number, flags, boundary);
}

// The handle of the entity that bounds the view; writes one if the sheet has none. 0 without a
// boundary.
Handle SheetViewports::writeBoundary(const SavedSpace& space, const SavedViewport& saved) {
  const VIEWPORT& view = *saved.viewport;
  if (saved.boundary) return m_plan.boundaries[saved.boundary];
  if (saved.ownBoundary == 0) return 0;
  m_records.begin("LWPOLYLINE", saved.ownBoundary, space.record);
  m_records.properties().write(view.layer, nullptr, kColorByLayer, ENT_TRAITS());
  m_out.writeEncoded(100, "AcDbPolyline");
  m_out.write(90, static_cast<long>(view.boundary.size()));
  m_out.write(70, 1L);  // closed
  for (const PNT_2D& p : view.boundary)
    writePoint(m_out, 10, m_plan.finite(p.x, 0, u"VIEWPORT"), m_plan.finite(p.y, 0, u"VIEWPORT"));
  return saved.ownBoundary;
}

void SheetViewports::writeView(const VIEWPORT& view, long status, long number, long flags,
                               Handle boundary) {
  m_out.writeEncoded(100, "AcDbViewport");
  writePoint(m_out, 10, view.center.x, view.center.y, 0);
  m_out.write(40, view.width);
  m_out.write(41, view.height);
  m_out.write(68, status);
  m_out.write(69, number);
  writePoint(m_out, 12, view.viewCenter.x, view.viewCenter.y);
  writePoint(m_out, 13, 0, 0);
  writePoint(m_out, 14, 10, 10);
  writePoint(m_out, 15, 10, 10);
  writePoint(m_out, 16, 0, 0, 1);
  writePoint(m_out, 17, view.target.x, view.target.y, 0);
  m_out.write(42, 50.0);  // length of the lens
  m_out.write(43, 0.0);
  m_out.write(44, 0.0);
  m_out.write(45, view.viewHeight);
  m_out.write(50, 0.0);
  m_out.write(51, exactDegrees(view.twistRad));
  m_out.write(72, 1000L);  // smoothness of circles
  for (const CLayer* layer : view.frozen) m_out.writeHex(331, m_plan.layers[layer].handle);
  m_out.write(90, flags);
  if (boundary != 0) m_out.writeHex(340, boundary);
  writePairs(m_out, kViewportFrame);
}

}  // namespace vek0::detail
