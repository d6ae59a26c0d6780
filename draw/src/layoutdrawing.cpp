// A viewport is another view of the same device: the window that it would have if it filled the
// page is set from the page's, so that the model lands where the viewport is. The walker then
// narrows its window to the boundary.
#include "vek0draw/layoutdrawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <optional>
#include <unordered_set>
#include <vector>

#include "vek0core/geometry/finite.h"
#include "vek0draw/areadrawing.h"
#include "walker.h"

namespace vek0::detail {
namespace {

// Entities that take as long to visit as it takes to prepare a view, even an empty one.
constexpr std::size_t kCostOfView = 500;

class LayoutDrawing {
 public:
  /// Without a window, the page is the plane of the sheet.
  LayoutDrawing(const CData& data, const CLayout& layout, const Device& page, const CWndVpt* window,
                IPainter& painter, const DRAW_OPTIONS& options)
      : m_data(data),
        m_layout(layout),
        m_page(page),
        m_window(window),
        m_painter(painter),
        m_options(options),
        m_aids(data, m_trees.boxes(), &m_trees) {}

  DRAW_RESULT run() {
    const bool viewsFirst = m_layout.getPlot().viewportsFirst;
    if (viewsFirst) drawViews();
    drawSheet();
    if (!viewsFirst) drawViews();
    return m_result;
  }

 private:
  // One frame at a time: viewports may share a long boundary.
  void drawSheet() {
    std::vector<CEnt*> entities;
    CBlock& sheet = m_layout.getBlock();
    for (unsigned i = 0; i < sheet.size(); ++i) entities.push_back(sheet[i]);
    Walker walker(m_data, CPOProjector(), m_page, m_painter, m_options, m_aids);
    DRAW_RESULT drawn = walker.run(entities);
    for (const VIEWPORT& viewport : m_layout.getViewports()) {
      const std::unique_ptr<CEnt> frame = createFrame(viewport, m_data.getEntFactory());
      drawn = walker.run(std::array{frame.get()});
    }
    add(drawn);
  }

  void drawViews() {
    for (const VIEWPORT& viewport : m_layout.getViewports()) {
      const bool isOver = m_options.limit == 0 || m_options.pointLimit == 0;
      if (isOver) m_result.cut = true;
      if (isOver) return;
      if (viewport.isOn) drawView(viewport);
    }
  }

  void drawView(const VIEWPORT& viewport) {
    std::vector<PNT_2D> boundary;
    for (const PNT_2D& corner : viewport.outline())
      boundary.emplace_back(m_page.xScale * corner.x + m_page.xShift,
                            m_page.yScale * corner.y + m_page.yShift);
    if (!isOnPage(boundary)) return;
    const std::optional<Device> view = m_window ? viewOnWindow(viewport) : viewOnPlane(viewport);
    const bool isBlank = !viewport.isPlan || !view;
    if (isBlank) ++m_result.blank;
    if (isBlank) return;
    m_options.limit -= std::min(m_options.limit, kCostOfView);
    DRAW_OPTIONS options = m_options;
    if (m_data.getVars().isPaperLtypeScale()) options.patternFactor /= viewport.scale();
    const CPORotatedProjector projector(-viewport.twistRad, viewport.target.x, viewport.target.y);
    Walker walker(m_data, projector, *view, m_painter, options, m_aids);
    const std::unordered_set<const CLayer*> frozen(viewport.frozen.begin(), viewport.frozen.end());
    add(walker.runWithin(m_data.getEntTable().getEntityTbl(), boundary, frozen));
  }

  bool isOnPage(const std::vector<PNT_2D>& boundary) const {
    RECT_2D box;
    box.set(boundary.data(), static_cast<int>(boundary.size()));
    return box.intersect(m_page.box);
  }

  // The part of the view's plane that would fill the window.
  std::optional<Device> viewOnWindow(const VIEWPORT& viewport) const {
    const double scale = viewport.scale();
    const RECT_2D& page = m_window->getWindow();
    const auto toView = [&](const PNT_2D& p) {
      return PNT_2D(viewport.viewCenter.x + (p.x - viewport.center.x) / scale,
                    viewport.viewCenter.y + (p.y - viewport.center.y) / scale);
    };
    const RECT_2D shown(toView(page.min), toView(page.max));
    if (!(scale > 0) || !isFinite(shown)) return std::nullopt;
    long width, height;
    m_window->get(width, height);
    CWndVpt window(1);
    window.resize(width, height);
    window.set(shown);
    // A window whose size was lost to rounding is rejected or enlarged.
    constexpr double deviation = 1e-6;
    const double ratio = window.GetPixelSize() * scale / m_window->GetPixelSize();
    if (!(std::fabs(ratio - 1) < deviation)) return std::nullopt;
    return Device(window);
  }

  // The same on the sheet's own plane.
  std::optional<Device> viewOnPlane(const VIEWPORT& viewport) const {
    const double scale = viewport.scale();
    Device view = m_page;
    view.xScale = view.yScale = scale;
    view.xShift = viewport.center.x - viewport.viewCenter.x * scale;
    view.yShift = viewport.center.y - viewport.viewCenter.y * scale;
    view.pixelSize = m_page.pixelSize / scale;
    const bool isSound = scale > 0 && std::isfinite(view.xShift) && std::isfinite(view.yShift) &&
                         std::isfinite(view.pixelSize);
    return isSound ? std::optional(view) : std::nullopt;
  }

  // What one view used up is not available to the others.
  void add(const DRAW_RESULT& part) {
    m_result += part;
    m_options.limit -= std::min(m_options.limit, std::max(part.emitted, part.looked));
    m_options.pointLimit -= std::min(m_options.pointLimit, part.points);
  }

  const CData& m_data;
  const CLayout& m_layout;
  const Device m_page;
  const CWndVpt* const m_window;
  IPainter& m_painter;
  DRAW_OPTIONS m_options;
  BlockTrees m_trees;
  const WalkerAids m_aids;  // there may be thousands of views
  DRAW_RESULT m_result;
};

}  // namespace
}  // namespace vek0::detail

DRAW_RESULT drawLayout(const CData& data, const CLayout& layout, const CWndVpt& window,
                       IPainter& painter, const DRAW_OPTIONS& options) {
  return vek0::detail::LayoutDrawing(data, layout, window, &window, painter, options).run();
}

DRAW_RESULT drawArea(const CData& data, const CLayout& layout, const RECT_2D& area,
                     IPainter& painter, const DRAW_OPTIONS& options) {
  const vek0::detail::Device page(area);
  return vek0::detail::LayoutDrawing(data, layout, page, nullptr, painter, options).run();
}
