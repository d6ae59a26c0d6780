#include "vek0core/drawing/layout.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/ltype.h"
#include "zim0lang/casefold.h"

PNT_2D VIEWPORT::toSheet(const PNT_2D& model) const {
  const double x = model.x - target.x, y = model.y - target.y;
  const double c = std::cos(twistRad), s = std::sin(twistRad), k = scale();
  return PNT_2D(center.x + k * (c * x - s * y - viewCenter.x),
                center.y + k * (s * x + c * y - viewCenter.y));
}

std::vector<PNT_2D> VIEWPORT::outline() const {
  if (!boundary.empty()) return boundary;
  const double x = width / 2, y = height / 2;
  return {PNT_2D(center.x - x, center.y - y), PNT_2D(center.x + x, center.y - y),
          PNT_2D(center.x + x, center.y + y), PNT_2D(center.x - x, center.y + y)};
}

std::unique_ptr<CEntPolyline> createFrame(const VIEWPORT& viewport, CEntFactory& factory) {
  CHandleGestorFoo none;
  std::unique_ptr<CEntPolyline> frame(
      factory.createEntPolyline(none, viewport.layer, viewport.ltype, viewport.color,
                                CEntPolyline::kClosed, 0, viewport.handle));
  if (!frame) throw std::bad_alloc();
  frame->setRecord(EntRecord::Viewport);
  frame->setTraits(viewport.traits);
  for (const PNT_2D& corner : viewport.outline()) {
    std::unique_ptr<CVertex> vertex(
        factory.createVertex(none, PNT_3D(corner.x, corner.y, 0), 0, 0, 0));
    if (!vertex) throw std::bad_alloc();
    frame->addVertex(*vertex.release());
  }
  return frame;
}

bool PLOT_SETTINGS::hasPaper() const {
  return width > 0 && height > 0 && scale > 0 && std::isfinite(width + height) &&
         std::isfinite(scale);
}

bool PLOT_SETTINGS::isWhole() const {
  return area == PlotArea::Window && width == (window.max.x - window.min.x) * scale &&
         height == (window.max.y - window.min.y) * scale && left == 0 && bottom == 0 &&
         origin == PNT_2D(0, 0) && !isCentered;
}

CLayout::CLayout(const zim::WString& name, CBlock& block) : m_name(name), m_block(block) {
  m_block.setSheet(true);
  m_block.addEntity();
}

CLayout::~CLayout() {
  count(false);
  m_block.decEntity();
  m_block.setSheet(false);
}

void CLayout::count(bool isAdded) const {
  const auto tell = [isAdded](CNamedItem* item) {
    if (item == nullptr) return;
    isAdded ? item->addEntity() : item->decEntity();
  };
  for (const VIEWPORT& viewport : m_viewports) {
    tell(viewport.layer);
    tell(viewport.ltype);
    for (CLayer* layer : viewport.frozen) tell(layer);
  }
}

std::vector<VIEWPORT> CLayout::setViewports(std::vector<VIEWPORT> viewports) {
  count(false);
  std::swap(m_viewports, viewports);
  count(true);
  return viewports;
}

RECT_2D CLayout::getBdry() const {
  RECT_2D box;
  box.initRegion();
  const RECT_3D& entities = std::as_const(m_block).getBdry();
  if (entities.validRegion())
    box.set(entities.min.x, entities.min.y, entities.max.x, entities.max.y);
  for (const VIEWPORT& viewport : m_viewports)
    for (const PNT_2D& corner : viewport.outline()) box.updateRegion(corner);
  return box;
}

// The plotted area begins at the plot origin, which is relative to the margins.
RECT_2D CLayout::getPaper() const {
  RECT_2D paper;
  paper.initRegion();
  if (!m_plot.hasPaper()) return paper;
  RECT_2D area(0, 0, 0, 0);
  if (m_plot.area == PlotArea::Window) area = m_plot.window;
  // Sums of its sides would be rounded.
  if (m_plot.isWhole()) return m_plot.window;
  if (m_plot.area == PlotArea::Extents && getBdry().validRegion()) area = getBdry();
  PNT_2D from(m_plot.left + m_plot.origin.x, m_plot.bottom + m_plot.origin.y);
  const bool isLayout = m_plot.area != PlotArea::Window && m_plot.area != PlotArea::Extents;
  if (m_plot.isCentered && !isLayout) {
    const double wide = (area.max.x - area.min.x) * m_plot.scale;
    const double high = (area.max.y - area.min.y) * m_plot.scale;
    from.x = (m_plot.left + m_plot.width - m_plot.right - wide) / 2;
    from.y = (m_plot.bottom + m_plot.height - m_plot.top - high) / 2;
  }
  const double x = area.min.x - from.x / m_plot.scale, y = area.min.y - from.y / m_plot.scale;
  paper.set(x, y, x + m_plot.width / m_plot.scale, y + m_plot.height / m_plot.scale);
  return paper;
}

RECT_2D CLayout::getPlottedArea() const {
  const RECT_2D& window = m_plot.window;
  const bool isPart = m_plot.area == PlotArea::Window && m_plot.hasPaper() && !m_plot.isWhole() &&
                      window.min.x < window.max.x && window.min.y < window.max.y;
  RECT_2D area;
  area.initRegion();
  return isPart ? window : area;
}

CLayout* CLayoutTable::get(std::u16string_view name) const {
  const auto found = std::find_if(m_layouts.begin(), m_layouts.end(), [name](const auto& layout) {
    return zim::equalsIgnoreCase(layout->getName().view(), name);
  });
  return found == m_layouts.end() ? nullptr : found->get();
}

CLayout* CLayoutTable::getActive() const {
  for (const auto& layout : m_layouts)
    if (layout.get() == m_active) return layout.get();
  return m_layouts.empty() ? nullptr : m_layouts.front().get();
}

CLayout& CLayoutTable::add(std::unique_ptr<CLayout> layout) {
  m_layouts.push_back(std::move(layout));
  return *m_layouts.back();
}

void CLayoutTable::clearAll() {
  m_active = nullptr;
  m_layouts.clear();
}
