// The sheet of the current layout is saved as R12 has it: its entities are marked, the limits of
// the paper are header variables, and the views of viewports are extended data, where the meaning
// of a number follows from its position.
#include "dxf/out/savedsheet.h"

#include "dxf/layoutname.h"
#include "dxf/out/exactnumbers.h"
#include "dxf/out/savedcolor.h"
#include "dxf/out/savednames.h"
#include "dxf/out/savehandles.h"
#include "dxf/sheetplot.h"
#include "vek0core/drawing/data.h"
#include "vek0core/dxf/out/filedxfowriter.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/files/report.h"
#include "vek0core/geometry/finite.h"

namespace vek0::detail {
namespace {

// Group codes of extended data, and values of a view.
constexpr long kViewOwner = 1001, kViewMark = 1000, kViewBrace = 1002, kViewLayer = 1003;
constexpr long kViewPoint = 1010, kViewReal = 1040, kViewShort = 1070;
constexpr long kViewVersion = 16, kLens = 50, kCircleZoom = 1000;

bool showsNothing(const CLayout& layout) {
  return layout.getBlock().size() == 0 && layout.getViewports().empty();
}

}  // namespace

bool isFiniteView(const VIEWPORT& v) {
  return isFinite(v.center.x, v.center.y) && isFinite(v.width, v.height) &&
         isFinite(v.viewCenter.x, v.viewCenter.y) && isFinite(v.target.x, v.target.y) &&
         isFinite(v.viewHeight, v.twistRad);
}

const CLayout* savedSheet(const CData& data) {
  const CLayout* active = data.getLayouts().getActive();
  return active && !showsNothing(*active) ? active : nullptr;
}

RECT_2D sheetLimits(const CLayout& layout) {
  const RECT_2D paper = layout.getPaper();
  const bool isArea = paper.min.x < paper.max.x && paper.min.y < paper.max.y;
  if (isArea && isFinite(paper) && isFinite(paper.max - paper.min)) return paper;
  RECT_2D none;
  none.initRegion();
  return none;
}

void reportLayouts(const CData& data, const CLayout* saved, CFileReport& report) {
  for (int i = 0; i < data.getLayouts().size(); ++i) {
    const CLayout& layout = data.getLayouts()[i];
    if (&layout == saved) {
      const bool isImplied = zim::equalsIgnoreCase(layout.getName(), u"LAYOUT1") &&
                             layout.getPlot() == plotOfLimits(sheetLimits(layout));
      if (!isImplied) report.add(ReportCode::PlotSettingsDropped, 0, layout.getName());
    } else if (!showsNothing(layout) || !isUsualLayoutName(layout.getName())) {
      report.add(ReportCode::LayoutDropped, 0, layout.getName());
    }
  }
}

void SavedViewports::collect(const CLayout& layout, SaveHandles& handles) {
  handles.noteEnd();
  for (const VIEWPORT& viewport : layout.getViewports())
    if (isFiniteView(viewport)) handles.note(viewport.handle);
}

// Readers discard the viewport of the sheet itself, so its handle is numbered like those of
// sequence ends. It shows the paper, or what is on the sheet.
void SavedViewports::write(const CLayout& layout, const CLayer& layer0) {
  RECT_2D shown = sheetLimits(layout);
  if (!shown.validRegion()) shown = layout.getBdry();
  VIEWPORT own;
  if (shown.validRegion() && isFinite(shown.min) && isFinite(shown.max)) {
    own.center = own.viewCenter =
        PNT_2D((shown.min.x + shown.max.x) / 2, (shown.min.y + shown.max.y) / 2);
    own.width = shown.max.x - shown.min.x;
    own.height = own.viewHeight = shown.max.y - shown.min.y;
  }
  begin(m_handles.takeEnd(), &layer0);
  writeFrame(own, 1, 1);
  writeView(own);
  long number = 1;
  for (const VIEWPORT& viewport : layout.getViewports()) {
    if (!isFiniteView(viewport)) {
      if (m_report) m_report->add(ReportCode::EntityNotFinite, 0, u"VIEWPORT");
      continue;
    }
    ++number;
    begin(m_handles.take(viewport.handle), viewport.layer ? viewport.layer : &layer0);
    if (viewport.ltype && !viewport.ltype->isByLayer())
      m_writer.writeEncoded(6, m_names.ltype(viewport.ltype));
    if (const short color = colorOf(viewport); color != kColorByLayer && isEntityColor(color))
      m_writer.write(62, static_cast<long>(color));
    writeFrame(viewport, viewport.isOn && viewport.isPlan ? number : 0, number);
    writeView(viewport);
    reportLosses(viewport);
  }
}

short SavedViewports::colorOf(const VIEWPORT& viewport) const {
  if (!viewport.traits.hasTrueColor()) return viewport.color;
  const SavedColor color = savedColor(viewport.traits.trueColor);
  if (color.isApproximated && m_report)
    m_report->add(ReportCode::ColorApproximated, 0, u"VIEWPORT");
  return color.number;
}

void SavedViewports::reportLosses(const VIEWPORT& viewport) {
  if (!m_report) return;
  if (!viewport.boundary.empty()) m_report->add(ReportCode::ClipLost, 0, u"VIEWPORT");
  ENT_TRAITS traits = viewport.traits;
  traits.trueColor = ENT_TRAITS::kNoTrueColor;
  if (traits != ENT_TRAITS()) m_report->add(ReportCode::CodeDropped, 0, u"VIEWPORT");
}

void SavedViewports::begin(vek0::Handle handle, const CLayer* layer) {
  m_writer.writeEncoded(0, "VIEWPORT");
  m_writer.writeHex(5, handle);
  m_writer.write(67, 1L);
  m_writer.writeEncoded(8, m_names.layer(layer));
}

void SavedViewports::writeFrame(const VIEWPORT& viewport, long status, long number) {
  m_writer.write(10, viewport.center.x);
  m_writer.write(20, viewport.center.y);
  m_writer.write(30, 0.0);
  m_writer.write(40, viewport.width);
  m_writer.write(41, viewport.height);
  m_writer.write(68, status);
  m_writer.write(69, number);
}

void SavedViewports::writeView(const VIEWPORT& v) {
  const auto point = [this](double x, double y, double z) {
    m_writer.write(kViewPoint, x);
    m_writer.write(kViewPoint + 10, y);
    m_writer.write(kViewPoint + 20, z);
  };
  const auto numbers = [this](long code, std::initializer_list<double> values) {
    for (const double value : values)
      code == kViewShort ? m_writer.write(code, static_cast<long>(value))
                         : m_writer.write(code, value);
  };
  m_writer.writeEncoded(kViewOwner, "ACAD");
  m_writer.writeEncoded(kViewMark, "MVIEW");
  m_writer.writeEncoded(kViewBrace, "{");
  m_writer.write(kViewShort, kViewVersion);
  point(v.target.x, v.target.y, 0);
  point(0, 0, 1);
  numbers(kViewReal,
          {exactDegrees(v.twistRad), v.viewHeight, v.viewCenter.x, v.viewCenter.y, kLens});
  numbers(kViewReal, {0, 0});                     // clipping planes
  numbers(kViewShort, {0, kCircleZoom, 1, 1});    // view mode, circle zoom, fast zoom, icon
  numbers(kViewShort, {0, 0, 0, 0});              // snap, grid, their style and axes
  numbers(kViewReal, {0, 0, 0, .5, .5, .5, .5});  // angle and base of the snap, spacings
  numbers(kViewShort, {0});                       // hidden lines are plotted
  m_writer.writeEncoded(kViewBrace, "{");
  for (const CLayer* layer : v.frozen) m_writer.writeEncoded(kViewLayer, m_names.layer(layer));
  m_writer.writeEncoded(kViewBrace, "}");
  m_writer.writeEncoded(kViewBrace, "}");
}

}  // namespace vek0::detail
