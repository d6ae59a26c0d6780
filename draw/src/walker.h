#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "arraycells.h"
#include "blocktrees.h"
#include "emitter.h"
#include "linepattern.h"
#include "placement.h"
#include "pointfigure.h"
#include "shownbox.h"
#include "specks.h"
#include "vek0core/vek0core.h"
#include "vek0draw/draw.h"

namespace vek0::detail {

constexpr int kMostNested = 200;  ///< inserts within inserts; each takes stack

inline PNT_3D pointOf(const BULGED_VERTEX& v) { return PNT_3D(v.x, v.y, v.z); }

/// What all walkers of a drawing have in common.
struct WalkerAids {
  /// Linear in the linetypes. Both are borrowed; `trees`, which may be null, finds the visible
  /// parts of blocks.
  WalkerAids(const CData& data, ShownBoxes& shownBoxes, BlockTrees* trees = nullptr);

  ShownBoxes& boxes;
  BlockTrees* blocks;
  double ltypeReach;  ///< largest distance of the texts of linetypes from their lines
};

/// Draws the entities of model space, and those of inserted blocks within it.
class Walker final : public IEntVisitor, private IPatternSink {
 public:
  /// All except projector, device and aids must outlive it.
  Walker(const CData& data, const IProjector& projector, const Device& device, IPainter& painter,
         const DRAW_OPTIONS& options, const WalkerAids& aids);

  /// From the drawing to the device.
  const Placement& placement() const { return m_drawing; }
  /// The device, enlarged by the margin within which content is still visible.
  const RECT_2D& window() const { return m_window; }
  /// Whether the window has pixels.
  bool hasDevice() const { return m_hasDevice; }
  double pixelSize() const { return m_pixelSize; }

  template <class Entities>
  DRAW_RESULT run(const Entities& entities) {
    if (!m_hasDevice) return {};
    for (CEnt* ent : entities) {
      m_item.handle = ent->GetHandle();
      m_item.top = ent;
      draw(*ent);
      if (m_out.isCut()) break;
    }
    return m_out.result();
  }

  using Layers = std::unordered_set<const CLayer*>;
  /// The same within a polygon of the device, and without these layers; within the polygon's box if
  /// the painter cannot clip to it (`DRAW_RESULT::boxed`).
  template <class Entities>
  DRAW_RESULT runWithin(const Entities& entities, const std::vector<PNT_2D>& boundary,
                        const Layers& hidden) {
    m_frozen = hidden.empty() ? nullptr : &hidden;
    if (m_hasDevice && narrowWindow(boundary) && m_out.pushViewClip(boundary)) {
      run(entities);
      m_out.popClip();
    }
    m_frozen = nullptr;
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
  bool narrowWindow(const std::vector<PNT_2D>& boundary);
  bool isShown(const CEnt& ent) const;
  void draw(CEnt& ent);
  void drawMarked(CEnt& ent);
  void drawShown(CEnt& ent);
  /// Whether the current entity is drawn only for the marked ones that it may show.
  bool isCarrier() const { return m_options.marks && !m_mark && !m_options.marks->rest; }
  bool isSkipped(const CEnt& ent, const RECT_2D& box);
  void begin(const CEnt& ent);

  // Paths: lines and entities made of them.
  double patternScale() const {
    return m_data.getVars().getLtypeScale() * m_ltypeScale * m_options.patternFactor;
  }
  bool reaches(const CEnt& ent, const RECT_2D& box) const;
  RGB_COLOR colorOf(const CEnt& ent, const ENT_TRAITS& traits);
  const CLtypeComplexDashSeq* pattern() const;
  DrawDashes painterDashes(const CLtypeComplexDashSeq& dashes) const;
  void strokeWay(bool closed);
  void drawChain(const std::vector<WIDE_VERTEX>& points, bool closed);
  void drawMixedChain(std::vector<WIDE_VERTEX> points);
  void stroke(const WIDE_VERTEX* points, std::size_t count, bool closed);
  void fillOutline(const std::vector<WIDE_VERTEX>& points, bool closed);
  void fillSilhouette(const CPolylineSilhouette& outline);
  void fillFace(const CEnt3DFace& ent);
  void strokeLine(const PNT_3D& from, const PNT_3D& to);
  void strokeEndless(const LINE_3D& line, LineReach reach);
  static std::vector<BULGED_VERTEX> cornersOf(const CEntPolyline& ent);
  void gatherWay(const CEntPolyline& ent, bool isCoarse);
  void gatherCoarseWay(const CEntPolyline& ent);
  void addCoarseChords(const BULGED_VERTEX& from, const PNT_3D& to);
  void addChords(const BULGED_VERTEX& from, const PNT_3D& to);
  void strokeSegments(const CEntPolyline& ent, bool isCoarse);
  void strokeRuns(const CEntPolyline& ent);
  void drawBulge(const PNT_3D& from, const PNT_3D& to, double bulge);
  void drawArc(const PNT_3D& center, double radius, double start, double sweep);
  bool drawTrueArc(const PNT_3D& center, double radius, double start, double sweep,
                   const DrawDashes& dashes = {});
  int chordsOf(double reach, double sweep) const;
  bool isTooManyDashes(const CLtypeComplexDashSeq& dashes);
  bool hasStretches() const override { return !m_dashes.lengths.empty(); }
  bool stretch(const std::vector<WIDE_VERTEX>& points, double distance, double length) override;
  void dash(const std::vector<WIDE_VERTEX>& points) override;
  void line(const PNT_3D& from, const PNT_3D& to) override;
  void emitDashes();
  void dot(const PNT_3D& at) override;
  void text(const TEXT_3D& element) override;
  bool isFull() const override { return m_out.isCut(); }

  void drawText(const TEXT_3D& text, const Placement& place);
  void drawStack(DrawText run, const TEXT_3D& text, const DecodedText& decoded,
                 const Placement& place);
  void strokeColumn(const TEXT_3D& text, const Placement& place);
  void drawRule(const DrawText& run, std::size_t first, std::size_t end, double y);

  void fillHatch(const CEntHatch& ent);
  bool isFinerThanDetail(const CEntHatch& ent) const;
  void drawLinelessHatch(const CEntHatch& ent);

  void drawInsert(CEntInsertBase& ent);
  void drawClipped(CEntInsert& ent);
  bool placeBoundary(const CEntInsert& ent, std::vector<PNT_2D>& boundary);
  // The cells of an array: where the first one is, and how the others follow, on the device.
  struct Cells {
    RECT_2D first;
    PNT_2D right, up;
    long columns = 1, rows = 1;
  };
  void drawCells(CEntInsertBase& ent);
  void drawArray(CEntInsertBase& ent, const Cells& cells);
  void drawCell(CEntInsertBase& ent, long row, long column);
  RECT_2D firstCell(const CEntInsertBase& ent);
  void enter(const CEntInsertBase& ent, long row, long column);
  void leave();

  // Simplified drawing, when there is too much to draw all of it.
  bool isScarce(double points);
  bool isCoarse() { return m_isCoarse || (m_out.isLow() && isScarce(0)); }
  void learnEffort();
  bool isSmall(const RECT_2D& box) const;
  bool isSmall(const PNT_2D& step) const;
  bool isPenSized(const RECT_2D& box) const;
  long strideOf(const PNT_2D& step);
  void drawSpeck(CEnt& ent, const PNT_2D& at);
  void putSpeck(const PNT_2D& at, bool isPoint);
  bool beginAsFirst(CEnt& ent);
  bool findFirst(CEnt& ent, int& looks);
  bool isDrawnAlready(const CBlock& block);
  bool drawCoarseArray(CEntInsertBase& ent, const Cells& cells);
  void drawSmallCells(CEntInsertBase& ent, const Cells& cells);
  void drawSmallRow(const Cells& cells, const IndexRange& seen, const PNT_2D& at, bool isPoint);
  // A parallelogram on the device.
  struct Area {
    PNT_2D from, wide, high;
  };
  Area areaOf(const Cells& cells, const PNT_2D& at) const;
  bool extend(Area& area, const PNT_2D& step, long count, PNT_2D& side) const;
  bool findArea(CEntInsertBase& ent, const Cells& cells, Area& area);
  bool isDense(const Cells& cells) const;
  void drawArea(const Area& area, bool isPoint);
  Cells cellsOf(CEntInsertBase& ent);

  const CData& m_data;
  const DRAW_OPTIONS& m_options;
  const RGB_COLOR* m_mark = nullptr;  // of the marked entity that is being drawn; null for none
  const Layers* m_frozen = nullptr;   // hidden in addition to those of the drawing; null for none
  BlockTrees* const m_blocks;
  ShownBoxes& m_boxes;
  Emitter m_out;
  const double m_pixelSize;
  bool m_hasDevice;
  RECT_2D m_window;
  const double m_penReach;    // of the widest stroke
  const Placement m_drawing;  // from the drawing to the device
  const double m_textReach;   // of texts in linetypes of scale 1, on the device
  Placement m_place;          // from the innermost block to the device
  CEntInsertStack m_stack;
  const PointFigure m_points;
  const double m_reach;  // of content beyond its box: wide pens, texts of linetypes, points
  const zim::WString m_noLayer;

  bool m_isEffortKnown = false;  // in full
  bool m_isCoarse = false;       // the current content exceeds the effort
  const double m_detail;         // smaller content becomes dots then
  Specks m_specks;
  RecentKeys m_placed;
  struct First {
    bool isShown;
    DrawItem item;
  };
  std::unordered_map<std::uint64_t, First> m_firsts;  // first visible entity of each insert

  DrawItem m_item;                  // of the entity being drawn
  const CLtype* m_ltype = nullptr;  // of the entity being drawn
  double m_ltypeScale = 1;          // likewise
  std::vector<WIDE_VERTEX> m_way;   // scratch
  std::vector<PNT_2D> m_device;     // scratch
  std::vector<PNT_2D> m_straight;   // dashes of the current path that are not emitted yet
  double m_longestPattern = 0;      // on the device, that painters receive
  DrawDashes m_dashes;              // for painters that have them, with the phase of a path's start
  PatternScratch m_pattern;         // scratch
  std::vector<std::size_t> m_ends;  // scratch
};

inline PNT_2D middleOf(const RECT_2D& box) {
  return PNT_2D((box.min.x + box.max.x) / 2, (box.min.y + box.max.y) / 2);
}

}  // namespace vek0::detail
