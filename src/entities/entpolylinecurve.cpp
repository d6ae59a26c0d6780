// The shape of a polyline: closed or open, straight or a curve. A curve keeps its control points at
// the front of the vertex list and generates the visible vertices after them; every change of a
// control point regenerates these.
#include "vek0core/entities/entpolyline.h"

#include <algorithm>
#include <memory>

#include "entities/ownedvertices.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/polyline/curve.h"

using vek0::detail::BulgedChain;
using vek0::detail::ChainVertex;
using vek0::detail::deleteAll;
using vek0::detail::orThrow;

void CEntPolyline::close(IHandleGestor& gestor, CEntFactory& factory, bool handles) {
  setClosed(gestor, factory, true, handles);
}

void CEntPolyline::open(IHandleGestor& gestor, CEntFactory& factory, bool handles) {
  setClosed(gestor, factory, false, handles);
}

void CEntPolyline::setClosed(IHandleGestor& gestor, CEntFactory& factory, bool closed,
                             bool handles) {
  if (isClosed() == closed) return;
  // The last vertex's bulge would become or cease to be an arc: preserve its current meaning.
  if (isPacked() && m_packed.vertexes().back().bulge != 0) unpack();
  if (!closed) dropClosingRun();
  m_flags = static_cast<short>(closed ? m_flags | kClosed : m_flags & ~kClosed);
  m_packed.setClosed(closed);
  if (getNoVisibleVertexes() == 0) return;
  if (isCurve()) {
    regen(gestor, factory, handles);
  } else if (isWide()) {
    dirtyBdry();
  }
}

void CEntPolyline::gener(IHandleGestor& gestor, CEntFactory& factory, short curveType, short degree,
                         bool releaseHandles) {
  const bool wasCurve = isCurve();
  const short curve = static_cast<short>(curveType & kCurveBits);
  if (curve == getCurve() && (curve == 0 || degree == m_degree)) return;
  unpack();
  m_flags = static_cast<short>((m_flags & ~kCurveBits) | curve);
  m_degree = degree;
  if (curve == 0) {
    deleteVertexVisible(releaseHandles ? &gestor : nullptr);
    m_firstVisible = 0;
    dirtyBdry();
    return;
  }
  m_runs.clear();
  if (!wasCurve) m_firstVisible = listSize();
  regen(gestor, factory, releaseHandles);
}

void CEntPolyline::Rectify() {
  if (!isCurve()) return;
  const auto controls = m_vertexes.begin() + m_firstVisible;
  deleteAll({m_vertexes.begin(), controls}, 0);
  m_vertexes.erase(m_vertexes.begin(), controls);
  m_flags = static_cast<short>(m_flags & ~kCurveBits);
  m_degree = 0;
  m_firstVisible = 0;
  dirtyBdry();
}

void CEntPolyline::regen(IHandleGestor& gestor, CEntFactory& factory, bool handles) {
  if (!isCurve()) return;
  deleteVertexVisible(handles ? &gestor : nullptr);
  makeCurve(gestor, factory, handles);
}

void CEntPolyline::setCurveChords(int chords) {
  m_curveChords = static_cast<unsigned char>(std::clamp(chords, 2, 64));
}

// Fitted curves consist of arcs, which a chain converts to chords.
BulgedChain CEntPolyline::curveChain() const {
  std::vector<CURVE_VERTEX> controls;
  for (long i = 0; i < m_firstVisible; ++i) {
    const CVertex& v = at(i);
    const PNT_3D& p = v.getPnt();
    controls.push_back({p.x, p.y, p.z, v.GetWidthStart(), v.GetWidthEnd(), 0});
  }
  BulgedChain chain(isClosed());
  for (const CURVE_VERTEX& v :
       curveVertexes(controls, getCurve(), m_degree, isClosed(), m_curveChords)) {
    chain.add({v.x, v.y, v.z, v.widthStart, v.widthEnd, v.bulge, 0});
  }
  return chain;
}

void CEntPolyline::makeCurve(IHandleGestor& gestor, CEntFactory& factory, bool handles) {
  if (!isCurve()) return;
  curveChain().forEach([&](const ChainVertex& v) {
    std::unique_ptr<CVertex> vertex(
        orThrow(factory.createVertex(gestor, v.pnt, v.widthStart, v.widthEnd, 0)));
    m_vertexes.push_back(vertex.get());
    const CVertex& owned = *vertex.release();
    m_maybeWide = m_maybeWide || owned.IsWide();
    if (handles) gestor.reserve(&owned);
  });
  dirtyBdry();
}

void CEntPolyline::createPartition(std::vector<PNT_3D>& points) const {
  points.clear();
  if (isCurve()) {
    curveChain().forEach([&points](const ChainVertex& v) { points.push_back(v.pnt); });
    return;
  }
  forEachListed(
      [&points](const PNT_3D& pnt, double, double, double, long) { points.push_back(pnt); });
}
