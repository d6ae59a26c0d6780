#pragma once

#include <cstddef>
#include <vector>

#include "blocktrees.h"
#include "emitter.h"
#include "linepattern.h"
#include "placement.h"
#include "pointfigure.h"
#include "shownbox.h"
#include "vek0core/vek0core.h"
#include "vek0draw/draw.h"

namespace vek0::detail {

/// Whether an entity does not show on this layer. What an insert shows lies on layers of
/// its own, which may be on when its is off.
bool isHidden(const CEnt& ent, const CLayer& layer);

/// Draws the entities of model space, and those of inserted blocks within it.
class Walker final : public IEntVisitor, private IPatternSink {
 public:
  /// All but projector and window must outlive it. `blocks`, which may be null, knows what
  /// windows show of blocks.
  Walker(const CData& data, const IProjector& projector, const CWndVpt& window, IPainter& painter,
         const DRAW_OPTIONS& options, BlockTrees* blocks = nullptr);

  /// From the drawing to the device.
  const Placement& placement() const { return m_drawing; }
  /// The device, and what lies so near to it that it can be seen there.
  const RECT_2D& window() const { return m_window; }
  /// Whether the window has pixels.
  bool hasDevice() const { return m_hasDevice; }
  double pixelSize() const { return m_pixelSize; }

  template <class Entities>
  DRAW_RESULT run(const Entities& entities) {
    if (!m_hasDevice) return {};
    for (CEnt* ent : entities) {
      m_item.handle = ent->GetHandle();
      draw(*ent);
      if (m_out.isCut()) break;
    }
    return m_out.result();
  }

  using IEntVisitor::visit;
  void visit(CEntPnt& ent) override;
  void visit(CEntLine& ent) override;
  void visit(CEntCircle& ent) override;
  void visit(CEntArc& ent) override;
  void visit(CEntPolyline& ent) override;
  void visit(CEntText& ent) override;
  void visit(CEntAttdef& ent) override;
  void visit(CEntAttrib& ent) override;
  void visit(CEntInsert& ent) override { drawInsert(ent); }
  void visit(CEntFixedInsert& ent) override { drawInsert(ent); }
  void visit(CEntInsertXRef& ent) override { drawInsert(ent); }
  void visit(CEntHatch& ent) override;
  void visit(CEnt3DFace& ent) override;

 private:
  bool isShown(const CEnt& ent) const;
  void draw(CEnt& ent);
  void begin(const CEnt& ent);

  // Ways: lines and what is made of them.
  double patternScale() const { return m_data.getVars().getLtypeScale(); }
  const CLtypeComplexDashSeq* pattern() const;
  void strokeWay(bool closed);
  void drawChain(const std::vector<WIDE_VERTEX>& points, bool closed);
  void drawMixedChain(std::vector<WIDE_VERTEX> points);
  void stroke(const WIDE_VERTEX* points, std::size_t count, bool closed);
  void fillOutline(const std::vector<WIDE_VERTEX>& points, bool closed);
  void fillFace(const CEnt3DFace& ent);
  void strokeLine(const PNT_3D& from, const PNT_3D& to);
  void strokeEndless(const LINE_3D& line, LineReach reach);
  void strokeSegments(const CEntPolyline& ent);
  void strokeRuns(const CEntPolyline& ent);
  void drawBulge(const PNT_3D& from, const PNT_3D& to, double bulge);
  void drawArc(const PNT_3D& center, double radius, double start, double sweep);
  bool drawTrueArc(const PNT_3D& center, double radius, double start, double sweep);
  int chordsOf(double reach, double sweep) const;
  void dash(const std::vector<WIDE_VERTEX>& points) override { drawChain(points, false); }
  void dot(const PNT_3D& at) override { m_out.dot(m_place.apply(at)); }
  void text(const TEXT_3D& element) override;
  bool isFull() const override { return m_out.isCut(); }

  void drawText(const TEXT_3D& text, const Placement& place);
  void drawRule(const DrawText& run, double unit, std::size_t first, std::size_t end, bool over);

  void drawInsert(CEntInsertBase& ent);
  void drawClipped(CEntInsert& ent);
  bool placeBoundary(const CEntInsert& ent, std::vector<PNT_2D>& boundary);
  void drawCells(CEntInsertBase& ent);
  void drawCell(CEntInsertBase& ent, long row, long column);
  RECT_2D firstCell(const CEntInsertBase& ent);
  void enter(const CEntInsertBase& ent, long row, long column);
  void leave();

  const CData& m_data;
  const DRAW_OPTIONS& m_options;
  BlockTrees* const m_blocks;
  ShownBoxes m_ownBoxes;
  ShownBoxes& m_boxes;
  Emitter m_out;
  const double m_pixelSize;
  bool m_hasDevice;
  RECT_2D m_window;
  const Placement m_drawing;  // from the drawing to the device
  Placement m_place;          // from the innermost block to the device
  CEntInsertStack m_stack;
  const PointFigure m_points;
  const zim::WString m_noLayer;

  DrawItem m_item;                  // of the entity being drawn
  const CLtype* m_ltype = nullptr;  // likewise
  std::vector<WIDE_VERTEX> m_way;   // scratch
  std::vector<PNT_2D> m_device;     // likewise
  std::vector<std::size_t> m_ends;  // likewise
};

}  // namespace vek0::detail
