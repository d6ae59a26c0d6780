// Vertices with bulges, stored as in files, and their chords, which are computed on each request:
// storing them would multiply the memory of a drawing. The points of an arc are computed from its
// chord and angle, without the center.
#include "vek0core/entities/bulgedchain.h"

#include <algorithm>
#include <cmath>

#include "vek0core/geometry/angle.h"
#include "vek0core/geometry/arc.h"

namespace vek0::detail {
namespace {

constexpr double kQuarterTurn = kPi / 2;
// Up to this number of chords, all are examined for the extents.
constexpr int kFewChords = 8;

PNT_3D posOf(const BULGED_VERTEX& v) { return PNT_3D(v.x, v.y, v.z); }

// The arc from one given vertex to the next, relative to its start. The center is not used: that of
// a flat arc is so far away that digits would be lost.
class Arc {
 public:
  Arc(const BULGED_VERTEX& from, const BULGED_VERTEX& to)
      : m_from(from),
        m_to(to),
        m_dx(to.x - from.x),
        m_dy(to.y - from.y),
        m_angle(4 * std::atan(from.bulge)),
        m_halfSin(halfSin(from.bulge)) {}

  // Does not need the angle, which takes most of the time.
  static bool exists(const BULGED_VERTEX& from, const BULGED_VERTEX& to) {
    const double dx = to.x - from.x, dy = to.y - from.y;
    if (from.bulge == 0 || (dx == 0 && dy == 0)) return false;
    // Bounds the reach of the arc by its start and twice its diameter, chord / sin(angle / 2).
    const auto reach = [&](double chord) {
      return std::fabs(from.x) + std::fabs(from.y) + 2 * chord / std::fabs(halfSin(from.bulge));
    };
    // The sum bounds the length, which takes longer.
    return std::isfinite(reach(std::fabs(dx) + std::fabs(dy))) ||
           std::isfinite(reach(std::hypot(dx, dy)));
  }

  int chords() const { return chordCount(m_from.bulge); }

  // The point where chord `k` of `n` starts, 0 < k < n: the chord from the start to it has length 2
  // r sin(phi / 2) and is rotated by half the remaining angle.
  PNT_3D pntAt(int k, int n) const {
    const double t = static_cast<double>(k) / n;
    const double phi = m_angle * t;
    const double length = std::sin(phi / 2) / m_halfSin;
    const double turn = (phi - m_angle) / 2;
    const double c = length * std::cos(turn);
    const double s = length * std::sin(turn);
    return PNT_3D(m_from.x + c * m_dx - s * m_dy, m_from.y + s * m_dx + c * m_dy,
                  std::lerp(m_from.z, m_to.z, t));
  }

  void growBdry(RECT_3D& box) const {
    const int n = chords();
    // For few chords the search below would cost more than testing all.
    if (n <= kFewChords) {
      for (int k = 1; k < n; ++k) box.updateRegion(pntAt(k, n));
      return;
    }
    // Seen from the center, the start is at the angle `start`; the arc has its extremes at
    // multiples of a quarter turn. With so many chords, each spans some 0.03 radians, so only the
    // two adjacent vertices can be extreme.
    const double start =
        std::atan2(m_dy, m_dx) - m_angle / 2 - std::copysign(kQuarterTurn, m_angle);
    const double lo = std::min(start, start + m_angle);
    const double hi = std::max(start, start + m_angle);
    for (double m = std::ceil(lo / kQuarterTurn); m * kQuarterTurn <= hi; ++m) {
      const int k = static_cast<int>(std::floor((m * kQuarterTurn - start) / m_angle * n));
      box.updateRegion(pntAt(std::clamp(k, 1, n - 1), n));
      box.updateRegion(pntAt(std::clamp(k + 1, 1, n - 1), n));
    }
  }

 private:
  // Sine of half the angle, by the tangent half-angle formula.
  static double halfSin(double bulge) { return 2 * bulge / (1 + bulge * bulge); }

  const BULGED_VERTEX& m_from;
  const BULGED_VERTEX& m_to;
  double m_dx, m_dy;
  double m_angle;    // radians, positive counterclockwise
  double m_halfSin;  // same sign
};

double widthAt(const BULGED_VERTEX& v, int k, int n) {
  return std::lerp(v.widthStart, v.widthEnd, static_cast<double>(k) / n);
}

// The given vertex, followed by `n` chords.
ChainVertex givenVertex(const BULGED_VERTEX& v, int n) {
  return {posOf(v), v.widthStart, widthAt(v, 1, n), v.handle};
}

ChainVertex chordVertex(const BULGED_VERTEX& v, const Arc& arc, int k, int n) {
  return {arc.pntAt(k, n), widthAt(v, k, n), widthAt(v, k + 1, n), 0};
}

}  // namespace

int chordCount(double bulge) { return arcChords(4 * std::atan(bulge)); }

void BulgedChain::setClosed(bool closed) {
  m_closed = closed;
  m_starts.clear();
}

void BulgedChain::add(const BULGED_VERTEX& vertex) {
  m_vertexes.push_back(vertex);
  m_hasBulges |= vertex.bulge != 0;
  m_starts.clear();
}

void BulgedChain::assign(const BULGED_VERTEX* vertexes, std::size_t count) {
  m_vertexes.assign(vertexes, vertexes + count);
  // Chains without bulges skip all computations of arcs.
  m_hasBulges = std::any_of(m_vertexes.begin(), m_vertexes.end(),
                            [](const BULGED_VERTEX& v) { return v.bulge != 0; });
  m_starts.clear();
}

void BulgedChain::clear() {
  // Releases the memory as well, because a cleared chain is usually not refilled.
  std::vector<BULGED_VERTEX>().swap(m_vertexes);
  std::vector<std::size_t>().swap(m_starts);
  m_hasBulges = false;
}

bool BulgedChain::isWide() const {
  return std::any_of(m_vertexes.begin(), m_vertexes.end(),
                     [](const BULGED_VERTEX& v) { return v.widthStart != 0 || v.widthEnd != 0; });
}

const BULGED_VERTEX* BulgedChain::arcEnd(std::size_t i) const {
  if (m_vertexes[i].bulge == 0) return nullptr;
  const bool isLast = i + 1 == m_vertexes.size();
  if (isLast && !m_closed) return nullptr;
  const BULGED_VERTEX& end = m_vertexes[isLast ? 0 : i + 1];
  return Arc::exists(m_vertexes[i], end) ? &end : nullptr;
}

int BulgedChain::chords(std::size_t i) const {
  return arcEnd(i) == nullptr ? 1 : chordCount(m_vertexes[i].bulge);
}

double BulgedChain::bulge(std::size_t i) const {
  return arcEnd(i) == nullptr ? 0 : m_vertexes[i].bulge;
}

const std::vector<std::size_t>& BulgedChain::starts() const {
  // Only random access needs the table, so it is built on demand.
  if (m_starts.empty() && m_hasBulges) {
    std::vector<std::size_t> starts{0};
    for (std::size_t i = 0; i < m_vertexes.size(); ++i) {
      starts.push_back(starts.back() + static_cast<std::size_t>(chords(i)));
    }
    m_starts.swap(starts);
  }
  return m_starts;
}

std::size_t BulgedChain::size() const { return m_hasBulges ? starts().back() : m_vertexes.size(); }

ChainVertex BulgedChain::at(std::size_t i) const {
  if (!m_hasBulges) return givenVertex(m_vertexes[i], 1);
  const auto& starts = this->starts();
  const auto next = std::upper_bound(starts.begin(), starts.end(), i);
  const auto given = static_cast<std::size_t>(next - starts.begin()) - 1;
  const BULGED_VERTEX& v = m_vertexes[given];
  const int n = static_cast<int>(*next - starts[given]);
  const int k = static_cast<int>(i - starts[given]);
  return k == 0 ? givenVertex(v, n) : chordVertex(v, Arc(v, *arcEnd(given)), k, n);
}

void BulgedChain::forEach(const Sink& sink) const {
  for (std::size_t i = 0; i < m_vertexes.size(); ++i) {
    const BULGED_VERTEX& v = m_vertexes[i];
    const BULGED_VERTEX* end = arcEnd(i);
    const int n = end == nullptr ? 1 : chordCount(v.bulge);
    sink(givenVertex(v, n));
    if (end == nullptr) continue;
    const Arc arc(v, *end);
    for (int k = 1; k < n; ++k) sink(chordVertex(v, arc, k, n));
  }
}

void BulgedChain::growBdry(RECT_3D& box) const {
  for (std::size_t i = 0; i < m_vertexes.size(); ++i) {
    box.updateRegion(posOf(m_vertexes[i]));
    if (const BULGED_VERTEX* end = arcEnd(i)) Arc(m_vertexes[i], *end).growBdry(box);
  }
}

void BulgedChain::setPos(std::size_t i, const PNT_3D& pnt) {
  pnt.get(m_vertexes[i].x, m_vertexes[i].y, m_vertexes[i].z);
}

void BulgedChain::setWidth(std::size_t i, double widthStart, double widthEnd) {
  m_vertexes[i].widthStart = widthStart;
  m_vertexes[i].widthEnd = widthEnd;
}

void BulgedChain::setWidth(double width) {
  for (std::size_t i = 0; i < m_vertexes.size(); ++i) setWidth(i, width, width);
}

void BulgedChain::translate(const PNT_3D& delta) {
  for (std::size_t i = 0; i < m_vertexes.size(); ++i) setPos(i, posOf(m_vertexes[i]) + delta);
  m_starts.clear();
}

void BulgedChain::rotate(const PNT_3D& centre, double angleRad) {
  for (std::size_t i = 0; i < m_vertexes.size(); ++i) {
    PNT_3D pnt = posOf(m_vertexes[i]);
    pnt.rotate(centre, angleRad);
    setPos(i, pnt);
  }
  m_starts.clear();
}

void BulgedChain::scale(const PNT_3D& centre, double factor) {
  for (std::size_t i = 0; i < m_vertexes.size(); ++i) {
    PNT_3D pnt = posOf(m_vertexes[i]);
    pnt.scale(centre, factor);
    setPos(i, pnt);
    setWidth(i, m_vertexes[i].widthStart * std::fabs(factor),
             m_vertexes[i].widthEnd * std::fabs(factor));
  }
  m_starts.clear();
}

void BulgedChain::clearHandles() {
  for (BULGED_VERTEX& v : m_vertexes) v.handle = 0;
}

bool BulgedChain::operator==(const BulgedChain& other) const {
  const auto same = [](const BULGED_VERTEX& a, const BULGED_VERTEX& b) {
    return posOf(a) == posOf(b) && a.widthStart == b.widthStart && a.widthEnd == b.widthEnd &&
           a.bulge == b.bulge;
  };
  return m_closed == other.m_closed &&
         std::equal(m_vertexes.begin(), m_vertexes.end(), other.m_vertexes.begin(),
                    other.m_vertexes.end(), same);
}

}  // namespace vek0::detail
