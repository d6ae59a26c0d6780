// Simplified drawing for files that unfold to far more geometry than anyone can see.
#include <algorithm>
#include <climits>
#include <cmath>

#include "arraycells.h"
#include "walker.h"

namespace vek0::detail {
namespace {

constexpr int kMostLooks = 64;  // entities examined in an insert to find the first visible one
constexpr std::size_t kMostFirsts = 100'000;
constexpr double kSamePlace = 1.0 / 16;  // fraction of a detail

double longerSide(const PNT_2D& step) { return std::max(std::fabs(step.x), std::fabs(step.y)); }

// The insert that is the only content of a block; null for any other block.
CEntInsertBase* onlyInsertOf(CBlock& block) {
  CEnt* only = block.size() == 1 ? block[0] : nullptr;
  if (!only || only->getType() != CEntInsert::kType) return nullptr;
  auto* insert = static_cast<CEntInsert*>(only);
  const bool isPlain = insert->getBlock() && insert->GetNoAttribs() == 0 && !insert->isClipped();
  return isPlain ? insert : nullptr;
}

// Equal for traits that nested content inherits alike.
std::uint64_t keyOf(const ENT_TRAITS& traits) {
  KeyMixer mixer;
  mixer << traits.trueColor << static_cast<std::uint64_t>(traits.lineweight)
        << static_cast<std::uint64_t>(traits.opacity);
  return mixer.key();
}

PNT_2D times(const PNT_2D& step, long count) {
  return PNT_2D(step.x * static_cast<double>(count), step.y * static_cast<double>(count));
}

}  // namespace

// --- When to simplify

// Whether so many points would take more than half of the remaining effort.
bool Walker::isScarce(double points) {
  if (!m_out.isScarce(points) && !m_out.isLow()) return false;
  learnEffort();
  return m_out.isScarce(points) || m_out.isLow();
}

void Walker::learnEffort() {
  // Summing all blocks takes time, so it waits until the effort is actually short.
  if (m_isEffortKnown) return;
  m_isEffortKnown = true;
  double effort = 0;
  const auto add = [&](const CBlock& block) {
    // The lines of hatches have their own allowance.
    if (!isHatchName(block.getName())) effort += m_boxes.sum(block).effort;
  };
  const CBlockTable& blocks = m_data.getBlockTable();
  for (int i = 0; i < static_cast<int>(blocks.size()); ++i) add(*blocks[i]);
  const CBlockXRefTable& xrefs = m_data.getBlockXRefTable();
  for (int i = 0; i < static_cast<int>(xrefs.size()); ++i) {
    add(*xrefs[i]);
    for (const auto& block : xrefs[i]->getBlocks()) add(*block);
  }
  m_out.addEffort(effort);
}

bool Walker::isSmall(const RECT_2D& box) const { return isSmall(box.max - box.min); }

bool Walker::isSmall(const PNT_2D& step) const { return longerSide(step) < m_detail; }

// Whether its strokes are hardly longer than the pen is wide.
bool Walker::isPenSized(const RECT_2D& box) const {
  return longerSide(box.max - box.min) < std::max(m_detail, m_options.penReach);
}

// Draws one of so many cells that those drawn are a detail apart.
long Walker::strideOf(const PNT_2D& step) {
  if (!isSmall(step) || !isCoarse()) return 1;
  const double stride = std::ceil(m_detail / longerSide(step));
  m_out.noteSimplified();
  return stride < static_cast<double>(INT_MAX) ? static_cast<long>(stride) : INT_MAX;
}

// --- Dots

void Walker::drawSpeck(CEnt& ent, const PNT_2D& at) {
  constexpr double points = 0.8;  // cost of finding its place
  m_out.noteSimplified();
  m_out.charge(points);
  if (m_specks.has(at, m_out.epoch()) || !beginAsFirst(ent)) return;
  const CEntInsertBase* insert = ent.getEntInsert();
  const CBlock* block = insert ? insert->getBlock() : nullptr;
  putSpeck(at, block ? m_boxes.sum(*block).holdsPoints : ent.getType() == CEntPnt::kType);
}

void Walker::putSpeck(const PNT_2D& at, bool isPoint) {
  if (m_specks.has(at, m_out.epoch())) return;
  m_specks.add(at, m_out.epoch());
  m_out.charge(1);  // each dot is a path of its own
  if (isPoint) return m_points.draw(at, m_out);
  m_out.dot(at);
}

// The first visible entity of an insert provides layer, color and traits for all others. False if
// nothing is visible.
bool Walker::beginAsFirst(CEnt& ent) {
  const CEntInsertBase* insert = ent.getEntInsert();
  if (!insert || !insert->getBlock()) {
    begin(ent);
    return true;
  }
  KeyMixer mixer;
  mixer << insert->getBlock()->getSerial()
        // Layer, color and traits are part of the key, because entities on layer 0 inherit them.
        << reinterpret_cast<std::uintptr_t>(m_stack.ResolveLayer(ent))
        << static_cast<std::uint64_t>(m_stack.ResolveColor(ent))
        << keyOf(m_stack.ResolveTraits(ent)) << reinterpret_cast<std::uintptr_t>(m_mark);
  auto found = m_firsts.find(mixer.key());
  if (found == m_firsts.end()) {
    // Bounds the memory; the entries can be found again.
    if (m_firsts.size() >= kMostFirsts) m_firsts.clear();
    int looks = kMostLooks;
    const bool isFound = findFirst(ent, looks);
    if (!isFound) begin(ent);
    found = m_firsts.emplace(mixer.key(), First{isFound || looks == 0, m_item}).first;
  }
  const vek0::Handle handle = m_item.handle;
  m_item = found->second.item;
  m_item.handle = handle;
  m_out.begin(m_item);
  return found->second.isShown;
}

bool Walker::findFirst(CEnt& ent, int& looks) {
  CEntInsertBase* insert = ent.getEntInsert();
  if (!insert || ent.getType() == CEntHatch::kType) {
    begin(ent);
    return true;
  }
  if (!insert->getBlock() || m_stack.GetNoInsert() >= kMostNested) return false;
  CBlock& block = *insert->getBlock();
  bool isFound = false;
  enter(*insert, 0, 0);
  for (std::size_t i = 0; i < block.size() && !isFound && looks > 0; ++i) {
    CEnt& inner = *block[static_cast<unsigned>(i)];
    --looks;
    isFound = inner.getType() != CEntAttdef::kType && isShown(inner) && findFirst(inner, looks);
  }
  leave();
  return isFound;
}

// --- Places

// Whether the innermost block was already drawn at this place with the same properties. Nested
// inserts double their content with every level, mostly on top of itself.
bool Walker::isDrawnAlready(const CBlock& block) {
  m_out.charge(1);  // about the cost of finding out
  const RECT_3D& box = block.getBdry();
  const double step = m_detail * kSamePlace;
  KeyMixer mixer;
  mixer << block.getSerial() << m_out.epoch()
        << reinterpret_cast<std::uintptr_t>(m_stack.GetCurLayer())
        << reinterpret_cast<std::uintptr_t>(m_stack.GetCurLtype())
        << static_cast<std::uint64_t>(m_stack.GetCurColor()) << keyOf(m_stack.GetCurTraits())
        << reinterpret_cast<std::uintptr_t>(m_mark);
  const PNT_3D corners[] = {
      box.min, {box.max.x, box.min.y, box.min.z}, {box.min.x, box.max.y, box.min.z}, box.max};
  for (const PNT_3D& corner : corners) {
    const PNT_2D at = m_place.apply(corner);
    // Beyond the range of the key, the block is simply drawn.
    if (!mixer.length(at.x, step) || !mixer.length(at.y, step)) return false;
  }
  return !m_placed.add(mixer.key(), mixer.key());
}

// --- Arrays

// False if the cells must be drawn individually.
bool Walker::drawCoarseArray(CEntInsertBase& ent, const Cells& cells) {
  Area area;
  if (findArea(ent, cells, area)) {
    m_out.noteSimplified();
    if (beginAsFirst(ent)) drawArea(area, m_boxes.sum(*ent.getBlock()).holdsPoints);
    return true;
  }
  if (!isSmall(cells.first)) return false;
  drawSmallCells(ent, cells);
  return true;
}

// At most one direction is dense here.
void Walker::drawSmallCells(CEntInsertBase& ent, const Cells& array) {
  m_out.noteSimplified();
  if (!beginAsFirst(ent)) return;
  const bool isPoint = m_boxes.sum(*ent.getBlock()).holdsPoints;
  Cells cells = array;
  if (cells.rows == 1 || isSmall(cells.up)) {
    std::swap(cells.right, cells.up);
    std::swap(cells.columns, cells.rows);
  }
  // Only rows and columns in the window are visited.
  const ArrayCells lattice(cells.first, cells.right, cells.up, cells.columns, cells.rows, m_window);
  const IndexRange rows = lattice.rows();
  for (long row = rows.first; row <= rows.last && !m_out.look(); ++row)
    drawSmallRow(cells, lattice.columns(row), middleOf(cells.first) + times(cells.up, row),
                 isPoint);
}

void Walker::drawSmallRow(const Cells& cells, const IndexRange& seen, const PNT_2D& at,
                          bool isPoint) {
  if (seen.count() == 0) return;
  if (cells.columns == 1 || isSmall(cells.right)) {
    Cells row = cells;
    row.rows = 1;
    return drawArea(areaOf(row, at), isPoint);
  }
  for (long column = seen.first; column <= seen.last && !m_out.isCut(); ++column)
    putSpeck(at + times(cells.right, column), isPoint);
}

// --- Areas

bool Walker::isDense(const Cells& cells) const {
  return (cells.columns == 1 || isSmall(cells.right)) && (cells.rows == 1 || isSmall(cells.up));
}

// The area tiled by the cells, the first of which has its center at `at`.
Walker::Area Walker::areaOf(const Cells& cells, const PNT_2D& at) const {
  const PNT_2D none(0, 0);
  const PNT_2D right = cells.columns > 1 ? cells.right : none,
               up = cells.rows > 1 ? cells.up : none;
  const PNT_2D from(at.x - (right.x + up.x) / 2, at.y - (right.y + up.y) / 2);
  return {from, times(right, cells.columns), times(up, cells.rows)};
}

// Whether nothing between the cells can be distinguished: they are as small as the pen and dense,
// or form areas that touch.
bool Walker::findArea(CEntInsertBase& ent, const Cells& cells, Area& area) {
  if (isPenSized(cells.first) && isDense(cells)) {
    area = areaOf(cells, middleOf(cells.first));
    return true;
  }
  CEntInsertBase* inner = onlyInsertOf(*ent.getBlock());
  if (!inner || !isShown(*inner) || m_stack.GetNoInsert() + 1 >= kMostNested) return false;
  enter(ent, 0, 0);
  const Cells within = cellsOf(*inner);
  const bool isArea = within.first.validRegion() && findArea(*inner, within, area);
  leave();
  return isArea && extend(area, cells.right, cells.columns, area.wide) &&
         extend(area, cells.up, cells.rows, area.high);
}

// Repeats the area along one of its sides; false if that leaves gaps.
bool Walker::extend(Area& area, const PNT_2D& step, long count, PNT_2D& side) const {
  if (count == 1) return true;
  const double length = std::hypot(side.x, side.y);
  if (std::hypot(step.x, step.y) >= length + m_detail) return false;
  if (std::fabs(step.x * side.y - step.y * side.x) > m_detail * length) return false;
  const PNT_2D more = times(step, count - 1);
  if (step.x * side.x + step.y * side.y >= 0) {
    side = side + more;
  } else {
    area.from = area.from + side;
    side = more - side;
  }
  return true;
}

// Draws the area, as a line if a fill would hardly show it.
void Walker::drawArea(const Area& area, bool isPoint) {
  const PNT_2D &from = area.from, &wide = area.wide, &high = area.high;
  if (isSmall(wide) && isSmall(high))
    return putSpeck(from + PNT_2D((wide.x + high.x) / 2, (wide.y + high.y) / 2), isPoint);
  m_device.assign({from, from + wide, from + wide + high, from + high});
  const double content = std::fabs(wide.x * high.y - wide.y * high.x);
  const double longest = std::max(std::hypot(wide.x, wide.y), std::hypot(high.x, high.y));
  if (content < m_detail * longest) return m_out.stroke(m_device, true);
  m_ends.assign(1, m_device.size());
  m_out.fill(m_device, m_ends, FillRule::NonZero);
}

// --- Arcs

void Walker::gatherCoarseWay(const CEntPolyline& ent) {
  const std::vector<BULGED_VERTEX> corners = cornersOf(ent);
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const BULGED_VERTEX& to = corners[(i + 1) % corners.size()];
    const bool isLast = i + 1 == corners.size() && !ent.isClosed();
    addCoarseChords(corners[i], isLast ? pointOf(corners[i]) : pointOf(to));
  }
}

// Appends chords within a detail of the arc, without its end; the width changes linearly.
void Walker::addCoarseChords(const BULGED_VERTEX& from, const PNT_3D& to) {
  const PNT_3D start = pointOf(from);
  ARC_3D arc;
  if (!createArcFromBulge(start, to, from.bulge, arc))
    return m_way.push_back({start, from.widthStart, from.widthEnd});
  const double sweep = 4 * std::atan(from.bulge);
  const int count =
      std::min(arcChords(sweep), arcChords(sweep, m_detail / (arc.radius * m_place.scale())));
  for (int i = 0; i < count; ++i) {
    PNT_3D at = start;
    at.rotate(arc, sweep * i / count);
    const double share = static_cast<double>(i) / count, growth = from.widthEnd - from.widthStart;
    at.z += share * (to.z - start.z);
    m_way.push_back(
        {at, from.widthStart + share * growth, from.widthStart + (share + 1.0 / count) * growth});
  }
}

// --- Hatches and linetypes

// Whether lines of the pattern are too close to each other to be distinguished.
bool Walker::isFinerThanDetail(const CEntHatch& ent) const {
  const HATCH_TYPE& type = ent.getHatchType();
  const double scale = ent.getHatchScale() * m_place.scale();
  const double finest = std::max(m_options.finestDetail, m_options.penReach);
  return std::any_of(type.lines, type.lines + type.numLines,
                     [&](const HATCH_LINE& line) { return std::fabs(line.dy) * scale < finest; });
}

void Walker::drawLinelessHatch(const CEntHatch& ent) {
  if (!lacksLines(ent)) return;
  if (isFinerThanDetail(ent)) {
    m_out.noteSimplified();
    return fillHatch(ent);
  }
  m_out.noteMissing();
  for (const HatchRing& ring : hatchRings(ent.getBoundary())) {
    m_device.clear();
    for (std::size_t i = 0; i < ring.count; ++i)
      m_device.push_back(m_place.apply(ent.getBoundary()[ring.first + i]));
    m_out.stroke(m_device, true);
  }
}

bool Walker::isTooManyDashes(const CLtypeComplexDashSeq& dashes) {
  const double most = (m_window.max.x - m_window.min.x) + (m_window.max.y - m_window.min.y);
  const double period = dashes.GetPatternLen() * std::fabs(patternScale()) * m_drawing.scale();
  double length = 0;
  for (std::size_t i = 1; i < m_way.size(); ++i) {
    const PNT_2D step = m_place.apply(m_way[i].pnt) - m_place.apply(m_way[i - 1].pnt);
    length += std::min(most, std::hypot(step.x, step.y));
  }
  if (!isScarce(2 * dashes.GetNoDashes() * length / period)) return false;
  m_out.noteSimplified();
  return true;
}

}  // namespace vek0::detail
