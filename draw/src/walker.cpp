// Visits the entities of model space and of the blocks that they insert, and hands their geometry
// to the emitter. The stack of inserts resolves layer, color and linetype; `m_place` maps from the
// innermost block to the device. An entity is skipped as early as possible: by its layer, then by
// its box, and only then by its geometry. Inside inserts, entities too small to see become dots
// once the drawing has used up its effort.
#include "walker.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "quadshape.h"
#include "vek0core/polyline/silhouettepieces.h"

namespace vek0::detail {
namespace {

constexpr int kForeground = 7;  // the color that contrasts with the background
constexpr int kMostChords = 4096;
constexpr int kPlacedBits = 20;
constexpr long kManyChords = 1 << 16;     // of a polyline: more count as unfolding
constexpr double kLongestPattern = 100;   // that painters divide strokes by, in sides of the device
constexpr double kEffortPerEntity = 128;  // of model space, beyond that of the options

bool isWide(const WIDE_VERTEX& v) { return v.widthStart != 0 || v.widthEnd != 0; }

// Maximum extent of the texts of the drawing's linetypes from their lines.
double reachOfLtypes(const CData& data) {
  double reach = 0;
  for (CData::CLtypeIterator it(data, true, false); *it; ++it)
    reach = std::max(reach, reachOfTexts((*it)->GetLtypeComplexDashSeq(),
                                         std::fabs(data.getVars().getLtypeScale())));
  return reach;
}

// Smallest distance between dots: pens are slightly wider than the middle of their strokes.
double cellOfDots(const DRAW_OPTIONS& options) {
  constexpr double share = 0.25;
  return std::max({options.finestDetail, share * options.penReach, 1e-9});
}

// Whether arcs make many times as many chords as the file has vertices.
bool unfoldsArcs(const CEntPolyline& ent) {
  constexpr long manyTimes = 8;
  if (ent.getNoVisibleVertexes() <= kManyChords || !ent.hasArcRuns()) return false;
  long given = 0;
  ent.forEachBulged([&](const PNT_3D&, double, double, double, vek0::Handle) { ++given; });
  return ent.getNoVisibleVertexes() > manyTimes * given;
}

}  // namespace

WalkerAids::WalkerAids(const CData& data, ShownBoxes& shownBoxes, BlockTrees* trees)
    : boxes(shownBoxes), blocks(trees), ltypeReach(reachOfLtypes(data)) {}

Walker::Walker(const CData& data, const IProjector& projector, const Device& device,
               IPainter& painter, const DRAW_OPTIONS& options, const WalkerAids& aids)
    : m_data(data),
      m_options(options),
      m_blocks(aids.blocks),
      m_boxes(aids.boxes),
      m_out(painter, options),
      m_pixelSize(device.pixelSize),
      m_hasDevice(m_pixelSize > 0),
      m_penReach(std::max(options.penReach, options.weights.widest() / 2)),
      m_drawing(projector, device),
      m_textReach(aids.ltypeReach * m_drawing.scale()),
      m_place(m_drawing),
      m_stack(m_pixelSize),
      m_points(data.getVars(), m_drawing.scale(), device.span.y, options.leastPoint),
      m_reach(m_penReach + std::max(m_textReach, m_points.reach())),
      m_noLayer(u"0"),
      m_detail(cellOfDots(options)),
      m_specks(m_detail, device.span.x),
      m_placed(kPlacedBits) {
  m_window = device.box;
  // Content just outside may still reach into the window.
  m_window.inflate(m_reach, m_reach);
  const double longest = std::max(device.width(), device.height());
  m_out.setLongest(longest);
  m_longestPattern = kLongestPattern * longest;
  // Large drawings may take proportionally longer.
  m_out.addEffort(kEffortPerEntity * static_cast<double>(data.getEntTable().getEntityTbl().size()));
}

// --- What is seen

bool Walker::isShown(const CEnt& ent) const {
  if (!ent.getTraits().isVisible) return false;
  if (m_options.hiddenLayers) return true;
  return m_stack.IsOnShownLayer(ent) &&
         (!m_frozen || m_frozen->count(m_stack.ResolveLayer(ent)) == 0);
}

void Walker::draw(CEnt& ent) {
  if (m_out.look() || !isShown(ent)) return;
  if (m_options.marks)
    drawMarked(ent);
  else
    drawShown(ent);
}

void Walker::drawMarked(CEnt& ent) {
  const RGB_COLOR* const outer = m_mark;
  if (!outer) {
    const auto found = m_options.marks->colors.find(&ent);
    if (found != m_options.marks->colors.end()) m_mark = &found->second;
  }
  const bool showsOthers = ent.getEntInsert() && ent.getType() != CEntHatch::kType;
  if (!isCarrier() || showsOthers) drawShown(ent);
  m_mark = outer;
}

void Walker::drawShown(CEnt& ent) {
  const RECT_2D box = m_place.apply(m_boxes.of(ent, m_pixelSize));
  if (!reaches(ent, box) || isSkipped(ent, box)) return;
  const bool unfolds = m_out.isUnfolding() || ent.getEntInsert();
  if (unfolds && isCoarse() && isSmall(box)) {
    if (!isCarrier()) drawSpeck(ent, middleOf(box));
    return;
  }
  begin(ent);
  ent.accept(*this);
}

bool Walker::reaches(const CEnt& ent, const RECT_2D& box) const {
  if (box.intersect(m_window)) return true;
  const double scale = ent.getTraits().ltypeScale;
  if (scale <= 1 || m_textReach == 0) return false;
  // The window allows for a scale of 1.
  RECT_2D reached = box;
  reached.inflate(scale * m_textReach, scale * m_textReach);
  return reached.intersect(m_window);
}

// Returns whether anything of the polygon is in the window.
bool Walker::narrowWindow(const std::vector<PNT_2D>& boundary) {
  RECT_2D box;
  box.set(boundary.data(), static_cast<int>(boundary.size()));
  box.inflate(m_reach, m_reach);
  const RECT_2D window = m_window;
  return window.intersect(box, m_window);
}

// Points extend beyond their boxes, because their size depends on the display.
bool Walker::isSkipped(const CEnt& ent, const RECT_2D& box) {
  if (!m_out.skips(box)) return false;
  const CEntInsertBase* insert = ent.getEntInsert();
  const bool holdsPoints =
      insert && insert->getBlock() && m_boxes.sum(*insert->getBlock()).holdsPoints;
  if (ent.getType() != CEntPnt::kType && !holdsPoints) return true;
  RECT_2D reached = box;
  reached.inflate(m_points.reach(), m_points.reach());
  return m_out.skips(reached);
}

void Walker::begin(const CEnt& ent) {
  const CLayer* layer = m_stack.ResolveLayer(ent);
  m_item.layer = layer ? &layer->getFullName() : &m_noLayer;
  const ENT_TRAITS traits = m_stack.ResolveTraits(ent);
  m_item.color = colorOf(ent, traits);
  m_item.alpha = static_cast<std::uint8_t>(traits.opacity);
  const short weight = traits.lineweight == ENT_TRAITS::kWeightDefault
                           ? m_data.getVars().getDefaultLineweight()
                           : traits.lineweight;
  m_item.weightMm = weight / 100.0;
  m_item.width = m_options.weights.widthOf(m_item.weightMm);
  m_item.ent = &ent;
  m_item.path = &m_stack;
  m_ltype = m_stack.ResolveLtype(ent);
  m_ltypeScale = traits.ltypeScale;
  m_out.begin(m_item);
}

RGB_COLOR Walker::colorOf(const CEnt& ent, const ENT_TRAITS& traits) {
  const RGB_COLOR& background = m_options.background;
  m_item.isForeground = false;
  if (m_mark) return *m_mark;
  if (m_options.marks && m_options.marks->rest) return *m_options.marks->rest;
  const int index = m_options.colors == DrawColors::Mono ? kForeground : m_stack.ResolveColor(ent);
  const bool isTrue = traits.hasTrueColor() && m_options.colors != DrawColors::Mono;
  m_item.isForeground = !isTrue && index == kForeground;
  const RGB_COLOR color =
      isTrue ? unpackColor(static_cast<long>(traits.trueColor)) : paletteColor(index, background);
  if (m_options.colors != DrawColors::Gray) return color;
  const auto gray = static_cast<std::uint8_t>(std::lround(brightness(color)));
  return {gray, gray, gray};
}

// --- Points

// Points of a hatch are the dots of its pattern.
void Walker::visit(CEntPnt& ent) {
  const CEntInsertBase* insert = m_stack.GetTopMostInsert();
  if (insert && insert->getType() == CEntHatch::kType) return dot(ent.getPnt());
  // Programs draw a dimension's definition points only on screen.
  if (insert && insert->getBlock() && insert->getBlock()->isOfDimension()) return;
  m_points.draw(m_place.apply(ent.getPnt()), m_out);
}

// --- Lines

// The current line pattern; null for continuous lines.
const CLtypeComplexDashSeq* Walker::pattern() const {
  if (!m_ltype || m_ltype->getNoDashes() == 0) return nullptr;
  const CLtypeComplexDashSeq& dashes = m_ltype->GetLtypeComplexDashSeq();
  const double period = dashes.GetPatternLen() * patternScale();
  // Patterns finer than the device or the pen can resolve look continuous.
  const double finest = std::max(m_options.finestPattern, 2 * m_item.width);
  return period * m_drawing.scale() > finest ? &dashes : nullptr;
}

// The pattern for a painter that divides strokes itself; empty if it cannot, or not by this one.
DrawDashes Walker::painterDashes(const CLtypeComplexDashSeq& dashes) const {
  const double scale = patternScale() * m_drawing.scale();
  const bool isFit = m_out.hasDashes() && dashes.GetPatternLen() * scale <= m_longestPattern &&
                     m_drawing.isSimilar();
  return isFit ? dashesOf(dashes, scale) : DrawDashes();
}

void Walker::strokeWay(bool closed) {
  const CLtypeComplexDashSeq* dashes = pattern();
  m_dashes = dashes ? painterDashes(*dashes) : DrawDashes();
  const bool isDivided = dashes && m_dashes.lengths.empty();
  if (!dashes || (isDivided && isTooManyDashes(*dashes))) return drawChain(m_way, closed);
  if (!m_out.spend(m_way.size())) return;
  // A pattern continues across the closing segment.
  if (closed && !m_way.empty()) m_way.push_back(m_way.front());
  const PatternWay way{m_way, m_stack.GetCurMatrix(), m_place, m_window};
  m_out.beginUnfolding();
  if (!layPattern(*dashes, patternScale(), way, m_pattern, *this)) drawChain(m_way, false);
  emitDashes();
  m_out.endUnfolding();
}

// Handing lines over one by one takes longer than finding them.
void Walker::line(const PNT_3D& from, const PNT_3D& to) {
  constexpr std::size_t kMostPoints = 4096;
  m_straight.push_back(m_place.apply(from));
  m_straight.push_back(m_place.apply(to));
  if (m_straight.size() >= kMostPoints) emitDashes();
}

void Walker::dash(const std::vector<WIDE_VERTEX>& points) {
  emitDashes();
  drawChain(points, false);
}

void Walker::emitDashes() {
  if (!m_straight.empty()) m_out.segments(m_straight);
  m_straight.clear();
}

void Walker::dot(const PNT_3D& at) {
  emitDashes();
  m_out.dot(m_place.apply(at));
}

// Dashes of a painter are measured on the device, so a path that the view shortens is divided here.
bool Walker::stretch(const std::vector<WIDE_VERTEX>& points, double distance, double length) {
  constexpr double kShortened = 1e-6;
  if (std::any_of(points.begin(), points.end(), isWide)) return false;
  m_device.clear();
  double shown = 0;
  for (const WIDE_VERTEX& v : points) {
    m_device.push_back(m_place.apply(v.pnt));
    if (m_device.size() > 1) shown += m_device.back().dist(m_device[m_device.size() - 2]);
  }
  const double scale = m_drawing.scale();
  if (!(std::fabs(shown - length * scale) <= kShortened * shown)) return false;
  m_out.dashedStroke(m_device, m_dashes, distance * scale);
  return true;
}

// Segments of zero width are strokes, however wide their neighbors are.
void Walker::drawChain(const std::vector<WIDE_VERTEX>& points, bool closed) {
  const auto end = points.end() - (closed || points.empty() ? 0 : 1);
  const auto wide = m_options.middleLines ? 0 : std::count_if(points.begin(), end, isWide);
  if (wide == 0) return stroke(points.data(), points.size(), closed);
  if (wide == end - points.begin()) return fillOutline(points, closed);
  std::vector<WIDE_VERTEX> chain(points);
  if (closed) chain.push_back(points.front());
  drawMixedChain(std::move(chain));
}

void Walker::drawMixedChain(std::vector<WIDE_VERTEX> points) {
  // The last vertex has no segment.
  points.back().widthStart = points.back().widthEnd = 0;
  for (std::size_t first = 0; first + 1 < points.size();) {
    std::size_t last = first + 1;
    while (last + 1 < points.size() && isWide(points[last]) == isWide(points[first])) ++last;
    if (isWide(points[first]))
      fillOutline({points.begin() + static_cast<std::ptrdiff_t>(first),
                   points.begin() + static_cast<std::ptrdiff_t>(last + 1)},
                  false);
    else
      stroke(&points[first], last + 1 - first, false);
    first = last;
  }
}

void Walker::stroke(const WIDE_VERTEX* points, std::size_t count, bool closed) {
  m_device.clear();
  for (std::size_t i = 0; i < count; ++i) m_device.push_back(m_place.apply(points[i].pnt));
  m_out.stroke(m_device, closed);
}

void Walker::fillOutline(const std::vector<WIDE_VERTEX>& points, bool closed) {
  if (points.size() <= CSilhouettePieces::kMostVertexes)
    return fillSilhouette(CPolylineSilhouette(points, closed));
  CSilhouettePieces pieces([this](const CPolylineSilhouette& outline) { fillSilhouette(outline); });
  for (const WIDE_VERTEX& point : points) pieces.add(point);
  pieces.finish(closed);
}

// The area between the sides of a closed chain is the difference of the areas that they enclose.
void Walker::fillSilhouette(const CPolylineSilhouette& outline) {
  m_device.clear();
  m_ends.clear();
  for (std::size_t i = 0; i < outline.getNoRuns(); ++i) {
    const auto start = static_cast<std::ptrdiff_t>(m_device.size());
    for (const PNT_3D& p : outline.getRun(i)) m_device.push_back(m_place.apply(p));
    // The inner ring runs in the opposite direction, so the non-zero rule leaves it empty.
    if (i > 0) std::reverse(m_device.begin() + start, m_device.end());
    m_ends.push_back(m_device.size());
  }
  m_out.fill(m_device, m_ends, FillRule::NonZero);
}

void Walker::strokeLine(const PNT_3D& from, const PNT_3D& to) {
  m_way.clear();
  m_way.push_back({from, 0, 0});
  m_way.push_back({to, 0, 0});
  strokeWay(false);
}

void Walker::visit(CEntLine& ent) {
  if (isEndless(ent)) return strokeEndless(ent.getLine(), ent.getReach());
  strokeLine(ent.getLine().p1, ent.getLine().p2);
}

// Draws the visible part. Patterns begin at the first point, or they would move with the window.
void Walker::strokeEndless(const LINE_3D& line, LineReach reach) {
  if (!m_options.endless) return m_out.dot(m_place.apply(line.p1));
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const PNT_3D step = line.p2 - line.p1;
  const PNT_2D from = m_place.apply(line.p1), way = m_place.apply(line.p2) - from;
  double t0 = reach == LineReach::Ray ? 0 : -infinity, t1 = infinity;
  if (!clipLine(m_window, from, way, t0, t1)) return;
  if (!std::isfinite(t0) || !std::isfinite(t1)) return m_out.dot(from);  // seen end-on
  const auto at = [&](double t) {
    return PNT_3D(line.p1.x + t * step.x, line.p1.y + t * step.y, line.p1.z + t * step.z);
  };
  if (!pattern()) return strokeLine(at(t0), at(t1));
  if (t1 > 0) strokeLine(line.p1, at(t1));
  if (t0 < 0) strokeLine(line.p1, at(t0));
}

void Walker::visit(CEntPolyline& ent) {
  const bool isThin = m_options.middleLines || !ent.isWide();
  if (!pattern() && ent.hasArcRuns() && isThin && m_place.isSimilar()) return strokeRuns(ent);
  const bool unfolds = unfoldsArcs(ent);
  if (unfolds) m_out.beginUnfolding();
  // A bulge unfolds to hundreds of chords, which have twice as many points if it is wide.
  const bool isCoarse = unfolds && isScarce(2 * static_cast<double>(ent.getNoVisibleVertexes()));
  if (isCoarse) m_out.noteSimplified();
  if (pattern() && !ent.IsLtGen() && !ent.isCurve()) {
    strokeSegments(ent, isCoarse);
  } else {
    gatherWay(ent, isCoarse);
    strokeWay(ent.isClosed());
  }
  if (unfolds) m_out.endUnfolding();
}

void Walker::gatherWay(const CEntPolyline& ent, bool isCoarse) {
  m_way.clear();
  if (isCoarse) return gatherCoarseWay(ent);
  ent.forEachVisible([this](const PNT_3D& p, double start, double end, double, long) {
    m_way.push_back({p, start, end});
  });
}

std::vector<BULGED_VERTEX> Walker::cornersOf(const CEntPolyline& ent) {
  std::vector<BULGED_VERTEX> corners;
  ent.forEachBulged([&](const PNT_3D& p, double start, double end, double bulge, long) {
    corners.push_back({p.x, p.y, p.z, start, end, bulge, 0});
  });
  return corners;
}

// Draws straight runs as one stroke, arcs as arcs.
void Walker::strokeRuns(const CEntPolyline& ent) {
  const std::vector<BULGED_VERTEX> corners = cornersOf(ent);
  // Every vertex starts a segment, except the last of an open polyline.
  const std::size_t segments = corners.size() - (ent.isClosed() || corners.empty() ? 0 : 1);
  std::vector<WIDE_VERTEX> run;
  for (std::size_t i = 0; i < segments; ++i) {
    const BULGED_VERTEX &a = corners[i], &b = corners[(i + 1) % corners.size()];
    const PNT_3D from(a.x, a.y, a.z), to(b.x, b.y, b.z);
    if (run.empty()) run.push_back({from, 0, 0});
    if (a.bulge == 0) {
      run.push_back({to, 0, 0});
      continue;
    }
    stroke(run.data(), run.size(), false);
    run.clear();
    drawBulge(from, to, a.bulge);
  }
  stroke(run.data(), run.size(), false);
}

void Walker::drawBulge(const PNT_3D& from, const PNT_3D& to, double bulge) {
  ARC_3D arc;
  // Ends at different heights make no planar arc.
  const bool isLevel = from.z == to.z && createArcFromBulge(from, to, bulge, arc);
  if (isLevel) {
    const double start = std::atan2(from.y - arc.y, from.x - arc.x);
    if (drawTrueArc(arc, arc.radius, start, 4 * std::atan(bulge))) return;
  }
  std::vector<PNT_3D> points{from};
  bulgePoints(from, to, bulge, points);
  std::vector<WIDE_VERTEX> chords;
  chords.reserve(points.size());
  for (const PNT_3D& p : points) chords.push_back({p, 0, 0});
  stroke(chords.data(), chords.size(), false);
}

// The pattern restarts at each segment of the file; an arc is one segment.
void Walker::strokeSegments(const CEntPolyline& ent, bool isCoarse) {
  const std::vector<BULGED_VERTEX> corners = cornersOf(ent);
  const std::size_t segments = corners.size() - (ent.isClosed() || corners.empty() ? 0 : 1);
  for (std::size_t i = 0; i < segments && !m_out.isCut(); ++i) {
    const BULGED_VERTEX &from = corners[i], &to = corners[(i + 1) % corners.size()];
    m_way.clear();
    if (isCoarse) {
      addCoarseChords(from, pointOf(to));
      m_way.push_back({pointOf(to), from.widthEnd, from.widthEnd});
    } else {
      addChords(from, pointOf(to));
    }
    strokeWay(false);
  }
}

// Appends the chords of an arc, with its end; the width changes linearly.
void Walker::addChords(const BULGED_VERTEX& from, const PNT_3D& to) {
  if (from.bulge == 0) {
    m_way.push_back({pointOf(from), from.widthStart, from.widthEnd});
    return m_way.push_back({to, from.widthEnd, from.widthEnd});
  }
  std::vector<PNT_3D> chords{pointOf(from)};
  bulgePoints(chords[0], to, from.bulge, chords);
  const double growth = (from.widthEnd - from.widthStart) / static_cast<double>(chords.size() - 1);
  double width = from.widthStart;
  for (const PNT_3D& p : chords) {
    m_way.push_back({p, width, width + growth});
    width += growth;
  }
}

void Walker::visit(CEnt3DFace& ent) {
  if (ent.isFilled()) return fillFace(ent);
  for (long i = 0; i < 4; ++i) {
    PNT_3D from, to;
    ent.getPoints(i, from, to);
    if (ent.isEdgeVisib(i) && from != to) strokeLine(from, to);
  }
}

// A face seen edge-on is still drawn as a line.
void Walker::fillFace(const CEnt3DFace& ent) {
  m_device.clear();
  for (long i = 0; i < (ent.isTriangular() ? 3 : 4); ++i)
    m_device.push_back(m_place.apply(ent.getVertex(i)));
  const QuadShape shape = shapeOfQuad(m_device);
  if (shape == QuadShape::Flat) return m_out.stroke(m_device, true);
  m_ends.assign(1, m_device.size());
  m_out.fill(m_device, m_ends, shape == QuadShape::Crossed ? FillRule::EvenOdd : FillRule::NonZero);
}

// --- Arcs

void Walker::visit(CEntCircle& ent) {
  drawArc(ent.getCircle(), ent.getCircle().radius, 0, 2 * kPi);
}

void Walker::visit(CEntArc& ent) {
  double start, end;
  ent.getArc().getSafeAngles(start, end);
  drawArc(ent.getArc(), ent.getArc().radius, start, end - start);
}

void Walker::drawArc(const PNT_3D& center, double radius, double start, double sweep) {
  const CLtypeComplexDashSeq* dashes = pattern();
  const DrawDashes divided = dashes ? painterDashes(*dashes) : DrawDashes();
  const bool isWhole = !dashes || !divided.lengths.empty();
  if (isWhole && m_place.isSimilar() && drawTrueArc(center, radius, start, sweep, divided)) return;
  const int chords = chordsOf(std::fabs(radius) * m_place.scale(), sweep);
  m_way.clear();
  for (int i = 0; i <= chords; ++i) {
    const double angle = start + sweep * i / chords;
    const double x = center.x + radius * std::cos(angle), y = center.y + radius * std::sin(angle);
    m_way.push_back({PNT_3D(x, y, center.z), 0, 0});
  }
  strokeWay(false);
}

int Walker::chordsOf(double reach, double sweep) const {
  const double error = std::clamp(m_options.chordError / std::max(reach, 1e-300), 1e-12, 1.0);
  const double step = 2 * std::acos(1 - error);
  return static_cast<int>(
      std::min<double>(std::max(std::ceil(std::fabs(sweep) / step), 4.0), kMostChords));
}

bool Walker::drawTrueArc(const PNT_3D& center, double radius, double start, double sweep,
                         const DrawDashes& dashes) {
  const PNT_2D toStart = m_place.direction(radius * std::cos(start), radius * std::sin(start));
  return m_out.arc(m_place.apply(center), std::hypot(toStart.x, toStart.y),
                   // A mirrored placement reverses the direction of the sweep.
                   std::atan2(toStart.y, toStart.x), m_place.mirrors() ? -sweep : sweep, dashes);
}

}  // namespace vek0::detail
