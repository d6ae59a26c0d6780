// The vertices of a polyline, in one of two forms. A polyline from a file is packed: one entry per
// stated vertex, with arcs as bulges. When a vertex object is requested or a vertex is edited, a
// list of vertex objects replaces it, including the ends of chords for every arc. `m_runs` then
// records which vertices form an arc, until one of them is edited. So a drawing that is only read,
// drawn and saved never pays for vertex objects, and arcs remain arcs.
#include "vek0core/entities/entpolyline.h"

#include <algorithm>
#include <memory>
#include <typeinfo>
#include <utility>

#include "entities/ownedvertices.h"
#include "tables/handover.h"
#include "vek0core/entities/entfactory.h"

using vek0::detail::BulgedChain;
using vek0::detail::ChainVertex;
using vek0::detail::deleteAll;
using vek0::detail::orThrow;

// --- From packed to listed vertices

std::vector<CEntPolyline::ArcRun> CEntPolyline::runsOf(const BulgedChain& chain) {
  std::vector<ArcRun> runs;
  addRunsOf(chain, runs);
  return runs;
}

std::size_t CEntPolyline::mostRunsOf(const BulgedChain& chain) {
  return chain.hasBulges() ? chain.vertexes().size() : 0;
}

void CEntPolyline::addRunsOf(const BulgedChain& chain, std::vector<ArcRun>& runs) {
  long first = 0;
  for (std::size_t i = 0; i < chain.vertexes().size() && chain.hasBulges(); ++i) {
    const int chords = chain.chords(i);
    if (chords > 1) runs.push_back({first, chords - 1, chain.bulge(i)});
    first += chords;
  }
}

void CEntPolyline::unpack() const {
  unpack([](const ChainVertex& v) {
    return new (std::nothrow) CVertex(v.pnt, v.widthStart, v.widthEnd, v.handle);
  });
}

// The library's own factory creates the same vertices as `unpack` does on demand. Those of a host's
// factory are created immediately, while the factory is available.
void CEntPolyline::unpackFor(const CEntFactory& factory, const VertexMaker& make) {
  if (typeid(factory) != typeid(CEntFactory)) unpack(make);
}

void CEntPolyline::unpack(const VertexMaker& make) const {
  if (!isPacked()) return;
  // Everything is created before the packed form is given up.
  std::vector<ArcRun> runs;
  runs.reserve(mostRunsOf(m_packed));
  addRunsOf(m_packed, runs);
  std::vector<std::unique_ptr<CVertex>> made;
  made.reserve(m_packed.size());
  m_packed.forEach([&](const ChainVertex& v) { made.emplace_back(orThrow(make(v))); });
  m_vertexes.reserve(made.size());
  for (auto& vertex : made) m_vertexes.push_back(vertex.release());
  m_runs.swap(runs);
  m_packed.clear();
}

// The run that starts at vertex `i` and is still an arc. `next` is the position in the list of runs
// where the search continues; it only advances, like `i`.
const CEntPolyline::ArcRun* CEntPolyline::runAt(std::size_t& next, long i) const {
  while (next < m_runs.size() && (m_runs[next].first < i || m_runs[next].bulge == 0)) ++next;
  return next < m_runs.size() && m_runs[next].first == i ? &m_runs[next] : nullptr;
}

bool CEntPolyline::closesList(const ArcRun& run) const {
  return run.first + run.count + 1 == listSize();
}

// A dropped run keeps its place with a bulge of 0, so that editing vertex after vertex
// does not shift the list of runs each time.
void CEntPolyline::dropRunsAt(long i, bool asEnd) {
  const auto after =
      std::upper_bound(m_runs.begin(), m_runs.end(), i,
                       [](long vertex, const ArcRun& run) { return vertex < run.first; });
  // Two runs can meet in a vertex: one starts there and the one before ends there.
  for (auto run = after; run != m_runs.begin() && after - run < 2;) {
    --run;
    if (i <= run->first + run->count + (asEnd ? 1 : 0)) run->bulge = 0;
  }
  if (asEnd && i == 0) dropClosingRun();
}

void CEntPolyline::dropClosingRun() {
  if (!m_runs.empty() && closesList(m_runs.back())) m_runs.back().bulge = 0;
}

void CEntPolyline::shiftRuns(long from, long by) {
  // Dropped runs are removed here, since the list is traversed anyway.
  std::erase_if(m_runs, [](const ArcRun& run) { return run.bulge == 0; });
  for (ArcRun& run : m_runs) {
    if (run.first >= from) run.first += by;
  }
}

void CEntPolyline::forEachListed(const VertexSink& sink) const {
  if (isPacked()) {
    m_packed.forEach(
        [&sink](const ChainVertex& v) { sink(v.pnt, v.widthStart, v.widthEnd, 0, v.handle); });
    return;
  }
  for (const CVertex* v : m_vertexes) {
    sink(v->getPnt(), v->GetWidthStart(), v->GetWidthEnd(), 0, v->GetHandle());
  }
}

void CEntPolyline::forEachVisible(const VertexSink& sink) const {
  long i = 0;
  forEachListed([&](const PNT_3D& pnt, double ws, double we, double bulge, vek0::Handle handle) {
    if (i++ >= m_firstVisible) sink(pnt, ws, we, bulge, handle);
  });
}

void CEntPolyline::forEachBulged(const VertexSink& sink) const {
  for (std::size_t i = 0; i < m_packed.vertexes().size(); ++i) {
    const BULGED_VERTEX& v = m_packed.vertexes()[i];
    sink(PNT_3D(v.x, v.y, v.z), v.widthStart, v.widthEnd, m_packed.bulge(i), v.handle);
  }
  std::size_t nextRun = 0;
  for (long i = m_firstVisible; i < listSize(); ++i) {
    const CVertex& v = at(i);
    const ArcRun* run = runAt(nextRun, i);
    const double bulge = run == nullptr ? 0 : run->bulge;
    // An arc is reported once, by its first vertex.
    if (run != nullptr) i += run->count;
    sink(v.getPnt(), v.GetWidthStart(), at(i).GetWidthEnd(), bulge, v.GetHandle());
  }
}

bool CEntPolyline::hasArcRuns() const {
  for (std::size_t i = 0; i < m_packed.vertexes().size() && m_packed.hasBulges(); ++i) {
    if (m_packed.bulge(i) != 0) return true;
  }
  return std::any_of(m_runs.begin(), m_runs.end(), [](const ArcRun& r) { return r.bulge != 0; });
}

// --- Editing

// Adding n vertices one by one must not examine all of them n times.
void CEntPolyline::growOrDirtyBdry(const CVertex& vertex) {
  if (m_maybeWide || isBdryDirty()) {
    dirtyBdry();
    return;
  }
  RECT_3D box = getBdry();
  box.updateRegion(vertex.getPnt());
  setBdry(box);
}

void CEntPolyline::placeVertex(CVertex& vertex, long i) {
  unpack();
  // A vertex inserted between two vertices of an arc, its end included, breaks the arc.
  if (i > 0) dropRunsAt(i - 1, false);
  if (i == 0) dropClosingRun();
  shiftRuns(i, 1);
  m_vertexes.insert(m_vertexes.begin() + i, &vertex);
  m_maybeWide = m_maybeWide || vertex.IsWide();
}

void CEntPolyline::addVertex(CVertex& vertex) {
  if (!isCurve()) {
    addVisibleVertex(vertex);
    return;
  }
  // Controls precede the visible vertices in the list.
  placeVertex(vertex, m_firstVisible);
  ++m_firstVisible;
}

void CEntPolyline::addVertex(IHandleGestor& gestor, CVertex& vertex) {
  gestor.reserve(&vertex);
  addVertex(vertex);
}

void CEntPolyline::addVisibleVertex(CVertex& vertex) { insertVertex(vertex, getNoTotalVertexes()); }

void CEntPolyline::addVisibleVertex(IHandleGestor& gestor, CVertex& vertex) {
  gestor.reserve(&vertex);
  addVisibleVertex(vertex);
}

void CEntPolyline::insertVertex(CVertex& vertex, long i) {
  placeVertex(vertex, std::clamp(i, 0L, getNoTotalVertexes()));
  if (!isCurve()) growOrDirtyBdry(vertex);
}

void CEntPolyline::insertVertex(IHandleGestor& gestor, CVertex& vertex, long i) {
  gestor.reserve(&vertex);
  insertVertex(vertex, i);
}

CVertex* CEntPolyline::removeVertex(long i) {
  if (!isIndex(i)) return nullptr;
  unpack();
  CVertex* vertex = &at(i);
  dropRunsAt(i, true);
  shiftRuns(i + 1, -1);
  m_vertexes.erase(m_vertexes.begin() + i);
  // Removing a control leaves fewer of them.
  m_firstVisible = std::min(m_firstVisible, listSize());
  if (!isCurve()) dirtyBdry();
  return vertex;
}

CVertex* CEntPolyline::removeVertex(IHandleGestor& gestor, long i) {
  CVertex* vertex = removeVertex(i);
  if (vertex != nullptr) gestor.release(vertex->GetHandle());
  return vertex;
}

void CEntPolyline::insertControl(IHandleGestor& gestor, CEntFactory& factory, CVertex& vertex,
                                 long i, bool handles) {
  if (handles) gestor.reserve(&vertex);
  insertVertex(vertex, std::clamp(i, 0L, getNoCtrlPnts()));
  if (!isCurve()) return;
  ++m_firstVisible;
  regen(gestor, factory, handles);
}

CVertex* CEntPolyline::removeControl(IHandleGestor& gestor, CEntFactory& factory, long i,
                                     bool handles) {
  if (i >= getNoCtrlPnts()) return nullptr;
  CVertex* vertex = removeVertex(i);
  if (vertex == nullptr) return nullptr;
  if (handles) gestor.release(vertex->GetHandle());
  if (isCurve()) {
    --m_firstVisible;
    regen(gestor, factory, handles);
  }
  return vertex;
}

void CEntPolyline::deleteVertex() { deleteAll(m_vertexes, 0); }

void CEntPolyline::deleteVertexVisible(IHandleGestor* gestor) {
  unpack();
  if (gestor != nullptr) releaseFrom(m_firstVisible, *gestor);
  const auto first = static_cast<std::size_t>(m_firstVisible);
  deleteAll(m_vertexes, first);
  m_vertexes.resize(first);
  m_runs.clear();
  emptyBdry();
}

void CEntPolyline::emptyBdry() {
  RECT_3D box;
  box.initRegion();
  setBdry(box);
}

void CEntPolyline::clearVertex() {
  deleteVertex();
  m_vertexes.clear();
  m_runs.clear();
  m_packed.clear();
  m_firstVisible = 0;
  m_maybeWide = false;
  emptyBdry();
}

void CEntPolyline::clearVertex(IHandleGestor& gestor) {
  releaseFrom(0, gestor);
  clearVertex();
}

void CEntPolyline::addBulgedVertex(const PNT_3D& pnt, double widthStart, double widthEnd,
                                   double bulge, vek0::Handle handle) {
  if (isCurve() || !m_vertexes.empty()) {
    vek0::detail::handOver(std::make_unique<CVertex>(pnt, widthStart, widthEnd, handle),
                           [this](CVertex& vertex) { addVisibleVertex(vertex); });
    return;
  }
  m_packed.add({pnt.x, pnt.y, pnt.z, widthStart, widthEnd, bulge, handle});
  m_maybeWide = m_maybeWide || widthStart != 0 || widthEnd != 0;
  dirtyBdry();
}

void CEntPolyline::setBulgedVertexes(const BULGED_VERTEX* vertexes, std::size_t count) {
  if (isCurve()) return;
  clearVertex();
  m_packed.assign(vertexes, count);
  m_maybeWide = m_packed.isWide();
  dirtyBdry();
}

void CEntPolyline::setBulgedVertexes(IHandleGestor& gestor, CEntFactory& factory,
                                     const BULGED_VERTEX* vertexes, std::size_t count) {
  setBulgedVertexes(vertexes, count);
  unpackFor(factory, [&](const ChainVertex& v) {
    return factory.createVertex(gestor, v.pnt, v.widthStart, v.widthEnd, v.handle);
  });
}
