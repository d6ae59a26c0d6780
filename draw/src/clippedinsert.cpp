#include "walker.h"

namespace vek0::detail {
namespace {

// Boundaries drawn manually have dozens of corners, those along a curve hundreds. Inserts may share
// one, and each processes all of its corners.
constexpr std::size_t kMostCorners = 1000;

}  // namespace

// The content of an external reference has its file's coordinates, that of a block is relative to
// the base point.
bool Walker::placeBoundary(const CEntInsert& ent, std::vector<PNT_2D>& boundary) {
  const std::vector<PNT_2D>& corners = ent.getClip()->boundary;
  if (corners.size() > kMostCorners || !m_out.spend(corners.size())) return false;
  const CBlock& block = *ent.getBlock();
  const PNT_3D base = block.isXRef() ? PNT_3D(0, 0, 0) : block.getPnt();
  enter(ent, 0, 0);
  const bool isPlan = m_place.isPlan();
  for (const PNT_2D& p : corners)
    boundary.push_back(m_place.apply(PNT_3D(p.x - base.x, p.y - base.y, 0)));
  leave();
  return isPlan;
}

void Walker::drawClipped(CEntInsert& ent) {
  std::vector<PNT_2D> boundary;
  if (!placeBoundary(ent, boundary)) {
    m_out.noteUnclipped();
    return drawCells(ent);
  }
  RECT_2D box;
  box.set(boundary.data(), static_cast<int>(boundary.size()));
  box.inflate(m_reach, m_reach);
  const RECT_2D window = m_window;
  if (window.intersect(box, m_window)) {
    const bool clips = m_out.pushClip(boundary);
    if (!clips) m_window = window;
    drawCells(ent);
    if (clips) m_out.popClip();
  }
  m_window = window;
}

}  // namespace vek0::detail
