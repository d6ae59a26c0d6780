// The heads at the ends of dimension lines and leaders. A style names them by block; predefined
// names stand for forms that every program draws itself, and are reduced to a few here. A block of
// that name in the file wins, as its program used it.
#include "dxf/in/convert/arrowheads.h"

#include <cmath>

#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entpolyline.h"

namespace vek0::detail {
namespace {

constexpr double kHalfWidth = 1.0 / 6;  // of a head, in its length

// The block that the style assigns to an end: by handle, otherwise by name.
zim::WString blockName(const DimStyle& style, const DimStyles& styles, int end) {
  long handle = DimStyle::kBlockHandle, name = DimStyle::kBlock;
  if (end == ArrowHeads::kLeader) {
    handle = DimStyle::kLeaderHandle;
  } else if (style.isSet(DimStyle::kEndsDiffer)) {
    handle = DimStyle::kFirstHandle + end;
    name = DimStyle::kFirstBlock + end;
  }
  if (style.has(handle)) return styles.blockName(static_cast<std::uint64_t>(style.number(handle)));
  return style.text(name);
}

}  // namespace

ArrowHeads::ArrowHeads(RecordReader& in, const DimStyle& style, const PlaneAxes& axes)
    : m_in(in), m_axes(axes), m_size(style.length(DimStyle::kArrow)) {
  const double tick = style.length(DimStyle::kTick);
  if (tick > 0) m_size = 2 * tick;
  for (int end = 0; end < kEnds; ++end)
    m_kind[end] = tick > 0 ? Stroke : kindOf(blockName(style, in.context().dimStyles, end), end);
}

// A block in the file takes precedence over the predefined form of its name.
ArrowHeads::Kind ArrowHeads::kindOf(const zim::WString& name, int end) {
  struct Known {
    std::u16string_view name;
    Kind kind;
  };
  static constexpr Known known[] = {
      {u"OBLIQUE", Stroke}, {u"ARCHTICK", Stroke}, {u"OPEN", Open},           {u"OPEN30", Open},
      {u"OPEN90", Open},    {u"CLOSED", Outline},  {u"CLOSEDBLANK", Outline}, {u"DOT", Dot},
      {u"DOTSMALL", Dot},   {u"DOTBLANK", Dot},    {u"SMALL", Dot},           {u"ORIGIN", Dot},
  };
  std::u16string_view text = name.view();
  if (!text.empty() && text[0] == u'_') text.remove_prefix(1);
  if (text.empty() || text == u"." || zim::equalsIgnoreCase(text, u"CLOSEDFILLED")) return Filled;
  if (zim::equalsIgnoreCase(text, u"NONE")) return None;
  m_block[end] = m_in.context().semantor.findBlock(name);
  if (m_block[end] && !m_block[end]->isXRef() && m_block[end]->size() > 0) return Block;
  for (const Known& entry : known)
    if (zim::equalsIgnoreCase(text, entry.name)) return entry.kind;
  return Filled;
}

void ArrowHeads::add(int end, const PNT_3D& tip, double angleRad,
                     std::vector<EntPtr>& built) const {
  if (!(m_size > 0) || !std::isfinite(m_size) || m_in.failed()) return;
  const PNT_3D left = place(tip, angleRad, -1, kHalfWidth);
  const PNT_3D right = place(tip, angleRad, -1, -kHalfWidth);
  const PNT_3D at = m_axes.toWorld(tip);
  switch (m_kind[end]) {
    case None:
      return;
    case Filled:
      return take(buildFace(m_in, {at, left, right, right}, 0, 0, FaceFill::Solid), built);
    case Outline:
      return take(buildChain(m_in, {at, left, right}, CEntPolyline::kClosed, 0), built);
    case Open:
      return take(buildChain(m_in, {left, at, right}, 0, 0), built);
    case Stroke:
      return take(
          buildChain(m_in, {place(tip, angleRad, -0.5, -0.5), place(tip, angleRad, 0.5, 0.5)}, 0,
                     0),
          built);
    case Dot:
      return take(buildDot(at), built);
    case Block:
      return take(insertBlock(end, at, angleRad), built);
  }
}

void ArrowHeads::take(EntPtr ent, std::vector<EntPtr>& built) {
  if (ent) built.push_back(std::move(ent));
}

PNT_3D ArrowHeads::place(const PNT_3D& tip, double angleRad, double along, double across) const {
  const double x = m_size * std::cos(angleRad), y = m_size * std::sin(angleRad);
  return m_axes.toWorld(
      PNT_3D(tip.x + along * x - across * y, tip.y + along * y + across * x, tip.z));
}

EntPtr ArrowHeads::buildDot(const PNT_3D& at) const {
  const Record& r = m_in.record();
  return m_in.make().circle(r.withHandle(0), CIRCLE_3D(at.x, at.y, at.z, m_size / 2));
}

// Valid from below as well: heads are symmetric about their line.
EntPtr ArrowHeads::insertBlock(int end, const PNT_3D& at, double angleRad) const {
  const Record& r = m_in.record();
  const PNT_3D way = m_axes.toWorld(PNT_3D(std::cos(angleRad), std::sin(angleRad), 0));
  m_in.insertRead = true;
  return m_in.make().insert(r.withHandle(0), m_block[end], at, m_size, m_size, m_size,
                            std::atan2(way.y, way.x), 1, 1, 0, 0);
}

}  // namespace vek0::detail
