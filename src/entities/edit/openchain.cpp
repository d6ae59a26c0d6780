#include "entities/edit/openchain.h"

#include "entities/edit/edgevertexes.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpolyline.h"

namespace vek0::detail {
namespace {

// The reversed segment, from `to` back to `from`.
BULGED_VERTEX turnedBack(const BULGED_VERTEX& to, const BULGED_VERTEX& from) {
  // Reversal exchanges the widths and negates the bulge.
  return {to.x, to.y, to.z, from.widthEnd, from.widthStart, -from.bulge, 0};
}

// The given segment with another start.
BULGED_VERTEX movedTo(const BULGED_VERTEX& at, const BULGED_VERTEX& segment) {
  return {at.x, at.y, at.z, segment.widthStart, segment.widthEnd, segment.bulge, 0};
}

}  // namespace

void OpenChain::takeLine(const PNT_3D& from, const PNT_3D& to) {
  m_vertexes = {vertexAt(from, 0), vertexAt(to, 0)};
}

bool OpenChain::take(const CEnt& ent, double tolerance) {
  m_vertexes.clear();
  if (ent.getType() == CEntLine::kType) {
    const auto& line = static_cast<const CEntLine&>(ent);
    // Rays and infinite lines have no ends to join.
    if (line.getReach() != LineReach::Segment) return false;
    takeLine(line.getLine().p1, line.getLine().p2);
  } else if (ent.getType() == CEntArc::kType) {
    const EDGE_3D arc(static_cast<const CEntArc&>(ent).getArc());
    addVertexes(arc, m_vertexes);
    m_vertexes.push_back(vertexAt(arc.p2, 0));
  } else if (ent.getType() == CEntPolyline::kType) {
    const auto& polyline = static_cast<const CEntPolyline&>(ent);
    if (polyline.isClosed()) return false;
    polyline.forEachBulged([this](const PNT_3D& p, double start, double end, double bulge, long) {
      m_vertexes.push_back({p.x, p.y, p.z, start, end, bulge, 0});
    });
  }
  // A chain whose ends meet is closed already.
  return m_vertexes.size() > 1 && start().dist(end()) > tolerance;
}

void OpenChain::append(const OpenChain& other) {
  m_vertexes.back() = movedTo(back(), other.front());
  m_vertexes.insert(m_vertexes.end(), other.m_vertexes.begin() + 1, other.m_vertexes.end());
}

void OpenChain::appendReversed(const OpenChain& other) {
  const auto& from = other.m_vertexes;
  m_vertexes.back() = turnedBack(back(), from[from.size() - 2]);
  for (std::size_t i = from.size() - 1; i-- > 1;)
    m_vertexes.push_back(turnedBack(from[i], from[i - 1]));
  m_vertexes.push_back(vertexAt(pointOf(from.front()), 0));
}

void OpenChain::prepend(const OpenChain& other) {
  for (std::size_t i = other.size() - 1; i-- > 0;) m_vertexes.push_front(other.m_vertexes[i]);
}

void OpenChain::prependReversed(const OpenChain& other) {
  for (std::size_t i = 1; i < other.size(); ++i)
    m_vertexes.push_front(turnedBack(other.m_vertexes[i], other.m_vertexes[i - 1]));
}

bool OpenChain::close(double tolerance) {
  // Two vertices would enclose nothing.
  if (size() < 3 || start().dist(end()) > tolerance) return false;
  m_vertexes.pop_back();
  return true;
}

void OpenChain::write(IHandleGestor& gestor, CEntFactory& factory, CEntPolyline& polyline) const {
  const std::vector<BULGED_VERTEX> all(m_vertexes.begin(), m_vertexes.end());
  polyline.setBulgedVertexes(gestor, factory, all.data(), all.size());
}

}  // namespace vek0::detail
