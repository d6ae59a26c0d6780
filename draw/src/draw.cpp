#include "vek0draw/draw.h"

#include "vek0core/vek0core.h"
#include "vek0draw/areadrawing.h"
#include "vek0draw/drawindex.h"
#include "walker.h"

DRAW_RESULT& DRAW_RESULT::operator+=(const DRAW_RESULT& part) {
  emitted += part.emitted;
  looked += part.looked;
  unclipped += part.unclipped;
  boxed += part.boxed;
  blank += part.blank;
  simplified += part.simplified;
  missing += part.missing;
  points += part.points;
  cut = cut || part.cut;
  return *this;
}

DRAW_RESULT drawData(const CData& data, const IProjector& projector, const CWndVpt& window,
                     IPainter& painter, const DRAW_OPTIONS& options) {
  vek0::detail::ShownBoxes boxes;
  vek0::detail::Walker walker(data, projector, window, painter, options,
                              vek0::detail::WalkerAids(data, boxes));
  return walker.run(data.getEntTable().getEntityTbl());
}

DRAW_RESULT drawArea(const CData& data, const RECT_2D& area, IPainter& painter,
                     const DRAW_OPTIONS& options) {
  vek0::detail::ShownBoxes boxes;
  vek0::detail::Walker walker(data, CPOProjector(), vek0::detail::Device(area), painter, options,
                              vek0::detail::WalkerAids(data, boxes));
  return walker.run(data.getEntTable().getEntityTbl());
}

DRAW_RESULT drawEntities(const CData& data, const std::vector<CEnt*>& entities, const RECT_2D& area,
                         IPainter& painter, const DRAW_OPTIONS& options) {
  return CDrawIndex(data).drawEntities(entities, area, painter, options);
}

RECT_2D drawnExtents(const CData& data, const IProjector& projector, const DRAW_OPTIONS& options) {
  RECT_2D all, one;
  all.initRegion();
  vek0::detail::ShownBoxes boxes;
  const CEntInsertStack stack(1);
  for (const CEnt* ent : data.getEntTable().getEntityTbl()) {
    if (!ent->getTraits().isVisible) continue;
    if (!options.hiddenLayers && !stack.IsOnShownLayer(*ent)) continue;
    const RECT_3D box = boxes.drawn(*ent);
    if (!box.validRegion()) continue;
    projector.to2D(box, one);
    if (vek0::detail::isFinite(one)) all.updateRegion(one);
  }
  return all;
}
