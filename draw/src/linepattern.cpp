// Lays a line pattern along a path. Lengths are those in the drawing, not in the block or on the
// device, so a pattern looks the same in every insert. Only stretches that meet the window are
// divided into dashes: a path may extend far beyond it.
#include "linepattern.h"

#include <algorithm>
#include <cmath>

#include "vek0core/tables/style.h"

namespace vek0::detail {
namespace {

constexpr long kMostDashes = 100000;  // per stretch; no display can resolve more

using Stretch = PatternScratch::Stretch;

// Traverses a chain; requested distances never decrease.
class Walk {
 public:
  Walk(const PatternWay& way, PatternScratch& scratch)
      : m_way(way), m_drawn(scratch.drawn), m_at(scratch.distances) {
    m_drawn.clear();
    m_at.clear();
    for (const WIDE_VERTEX& v : way.points) {
      m_drawn.emplace_back();
      way.toDrawing.transform(v.pnt, m_drawn.back());
      m_isThin = m_isThin && v.widthStart == 0 && v.widthEnd == 0;
    }
    // Distances are measured in the drawing, so that scaled inserts do not stretch the pattern.
    m_at.push_back(0);
    for (std::size_t i = 1; i < m_drawn.size(); ++i)
      m_at.push_back(m_at.back() + m_drawn[i].dist(m_drawn[i - 1]));
  }

  double length() const { return m_at.back(); }
  double at(std::size_t i) const { return m_at[i]; }
  std::size_t position() const { return m_next; }
  void goBack(std::size_t position) { m_next = position; }

  // The point in the coordinates of the path.
  PNT_3D point(double distance) {
    advance(distance);
    return between(m_way.points[m_next - 1].pnt, m_way.points[m_next].pnt, share(distance));
  }

  PNT_3D drawnPoint(double distance) {
    advance(distance);
    return between(m_drawn[m_next - 1], m_drawn[m_next], share(distance));
  }

  double direction() const {
    const PNT_3D &p = m_drawn[m_next - 1], &q = m_drawn[m_next];
    return std::atan2(q.y - p.y, q.x - p.x);
  }

  // Whether the path is straight and thin from one distance to a later one; then its ends.
  bool line(const Stretch& s, PNT_3D& from, PNT_3D& to) {
    advance(s.from);
    if (!m_isThin || s.to > m_at[m_next]) return false;
    const PNT_3D &p = m_way.points[m_next - 1].pnt, &q = m_way.points[m_next].pnt;
    from = between(p, q, share(s.from));
    to = between(p, q, share(s.to));
    return true;
  }

  // The path from one distance to a later one, including its vertices.
  void piece(const Stretch& s, std::vector<WIDE_VERTEX>& points) {
    points.clear();
    advance(s.from);
    double at = s.from;
    while (m_next + 1 < m_at.size() && m_at[m_next] < s.to) {
      points.push_back({point(at), width(at), width(m_at[m_next])});
      at = m_at[m_next++];
    }
    points.push_back({point(at), width(at), width(s.to)});
    points.push_back({point(s.to), 0, 0});
  }

 private:
  static PNT_3D between(const PNT_3D& p, const PNT_3D& q, double t) {
    return {p.x + t * (q.x - p.x), p.y + t * (q.y - p.y), p.z + t * (q.z - p.z)};
  }
  // Fraction of the current segment before that distance.
  double share(double distance) const {
    const double span = m_at[m_next] - m_at[m_next - 1];
    return span > 0 ? std::min((distance - m_at[m_next - 1]) / span, 1.0) : 0;
  }
  double width(double distance) const {
    const WIDE_VERTEX& v = m_way.points[m_next - 1];
    return v.widthStart + share(distance) * (v.widthEnd - v.widthStart);
  }
  void advance(double distance) {
    // `<=`, so that a vertex belongs to the segment that it starts.
    while (m_next + 1 < m_at.size() && m_at[m_next] <= distance) ++m_next;
  }

  const PatternWay& m_way;
  std::vector<PNT_3D>& m_drawn;  // see PatternScratch
  std::vector<double>& m_at;
  bool m_isThin = true;
  std::size_t m_next = 1;  // end of the current segment
};

// The parts of the path visible in the window. Those of adjacent segments are merged if the corner
// between them is visible.
void findSeen(const PatternWay& way, const Walk& walk, std::vector<Stretch>& seen) {
  seen.clear();
  double widest = 0;
  for (const WIDE_VERTEX& v : way.points)
    widest = std::max({widest, std::fabs(v.widthStart), std::fabs(v.widthEnd)});
  RECT_2D window = way.window;
  // Wide segments reach into the window before their middle does.
  window.inflate(widest * way.toDevice.scale(), widest * way.toDevice.scale());
  for (std::size_t i = 1; i < way.points.size(); ++i) {
    const PNT_2D p = way.toDevice.apply(way.points[i - 1].pnt);
    const PNT_2D q = way.toDevice.apply(way.points[i].pnt);
    double t0 = 0, t1 = 1;
    if (!clipLine(window, p, q - p, t0, t1)) continue;
    const double span = walk.at(i) - walk.at(i - 1);
    const double from = walk.at(i - 1) + t0 * span;
    // Exact at the end of a segment, so that adjacent stretches merge.
    const double to = t1 < 1 ? walk.at(i - 1) + t1 * span : walk.at(i);
    if (!seen.empty() && from <= seen.back().to)
      seen.back().to = to;
    else
      seen.push_back({from, to});
  }
}

void layStretch(const CLtypeComplexDashSeq& dashes, double scale, Walk& walk,
                const Stretch& stretch, std::vector<WIDE_VERTEX>& piece, IPatternSink& sink) {
  const auto lay = [&](const ILtypeComplexDash& dash, double from, double to) {
    from += stretch.from;
    to += stretch.from;
    const double value = dash.GetValue();
    PNT_3D start, end;
    if (value > 0 && walk.line({from, to}, start, end)) {
      sink.line(start, end);
    } else if (value > 0) {
      walk.piece({from, to}, piece);
      sink.dash(piece);
    } else if (dash.IsText()) {
      const PNT_3D at = walk.drawnPoint(from);
      sink.text(placeElement(*dash.GetText(), at, walk.direction(), scale));
    } else if (value == 0) {
      sink.dot(walk.point(from));
    }
  };
  const double length = stretch.to - stretch.from;
  // Too many dashes for the stretch: it looks continuous anyway.
  if (!(length > 0) || forEachDash(dashes, scale, stretch.from, length, kMostDashes, lay)) return;
  walk.piece(stretch, piece);
  sink.dash(piece);
}

}  // namespace

bool layPattern(const CLtypeComplexDashSeq& dashes, double scale, const PatternWay& way,
                PatternScratch& scratch, IPatternSink& sink) {
  if (way.points.size() < 2) return false;
  Walk walk(way, scratch);
  const double period = dashes.GetPatternLen() * scale;
  if (!(walk.length() > 0) || !std::isfinite(walk.length())) return false;
  // A pattern without length would never advance.
  if (!(period > 0) || !std::isfinite(period)) return false;
  std::vector<WIDE_VERTEX>& piece = scratch.piece;
  findSeen(way, walk, scratch.seen);
  for (const Stretch& stretch : scratch.seen) {
    if (sink.isFull()) break;
    if (sink.hasStretches()) {
      const std::size_t start = walk.position();
      walk.piece(stretch, piece);
      if (sink.stretch(piece, stretch.from, stretch.to - stretch.from)) continue;
      walk.goBack(start);
    }
    layStretch(dashes, scale, walk, stretch, piece, sink);
  }
  return true;
}

DrawDashes dashesOf(const CLtypeComplexDashSeq& dashes, double scale) {
  DrawDashes result;
  std::vector<double>& lengths = result.lengths;
  double leadingGap = 0, period = 0;
  for (int i = 0; i < dashes.GetNoDashes(); ++i) {
    if (dashes[i]->IsText()) return {};
    const bool isGap = dashes[i]->GetValue() < 0;
    const double length = std::fabs(dashes[i]->GetValue()) * scale;
    period += length;
    if (isGap && lengths.empty())
      leadingGap += length;
    else if (isGap == (lengths.size() % 2 == 1))
      lengths.push_back(length);
    else
      lengths.back() += length;
  }
  if (lengths.empty()) return {};
  if (lengths.size() % 2 == 1) lengths.push_back(0);
  // The pattern begins with a dash, so a gap at its start moves to its end.
  lengths.back() += leadingGap;
  result.phase = leadingGap > 0 ? period - leadingGap : 0;
  return result;
}

TEXT_3D placeElement(const TEXT_3D& element, const PNT_3D& at, double directionRad, double scale) {
  const double c = std::cos(directionRad), s = std::sin(directionRad);
  const CStyle* style = element.getStyle();
  // Elements of a linetype have heights relative to the fixed height of their style.
  const double fixed = style ? style->getFixedHeight() : 0;
  CTextContext context(element.getContext());
  context.setHeight(context.getHeight() * scale * (fixed > 0 ? fixed : 1));
  context.setRotate(context.getRotate() + directionRad);
  TEXT_3D placed(element);
  placed.setContext(context);
  placed.set(at.x + scale * (element.x * c - element.y * s),
             at.y + scale * (element.x * s + element.y * c), at.z);
  return placed;
}

double reachOfTexts(const CLtypeComplexDashSeq& dashes, double scale) {
  double reach = 0;
  for (int i = 0; i < dashes.GetNoDashes(); ++i) {
    if (!dashes[i]->IsText()) continue;
    RECT_2D box;
    placeElement(*dashes[i]->GetText(), PNT_3D(0, 0, 0), 0, scale).calc_bdry(box);
    const double x = std::max(std::fabs(box.min.x), std::fabs(box.max.x));
    const double y = std::max(std::fabs(box.min.y), std::fabs(box.max.y));
    reach = std::max(reach, std::hypot(x, y));
  }
  return reach;
}

}  // namespace vek0::detail
