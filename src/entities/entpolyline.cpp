#include "vek0core/entities/entpolyline.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <typeinfo>
#include <unordered_set>

#include "entities/entservices.h"
#include "entities/newornull.h"
#include "vek0core/assert.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entvisitor.h"
#include "vek0core/polyline/curve.h"
#include "vek0core/polyline/silhouette.h"

using vek0::detail::BulgedChain;
using vek0::detail::ChainVertex;

namespace {

CVertex* orThrow(CVertex* vertex) {
  if (vertex == nullptr) throw std::bad_alloc();
  return vertex;
}

void deleteAll(const std::vector<CVertex*>& vertexes, std::size_t from) {
  for (std::size_t i = vertexes.size(); i > from; --i) delete vertexes[i - 1];
}

}  // namespace

CEntPolyline::CEntPolyline(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color,
                           short flags, short degree)
    : CEnt(handle, layer, ltype, color),
      m_packed((flags & kClosed) != 0),
      m_flags(flags),
      m_degree(degree) {}

CEntPolyline::CEntPolyline(const CEntPolyline& src, vek0::Handle handle)
    : CEnt(src, handle),
      m_runs(src.m_runs),
      m_packed(src.m_packed),
      m_firstVisible(src.m_firstVisible),
      m_flags(src.m_flags),
      m_degree(src.m_degree),
      m_curveChords(src.m_curveChords),
      m_maybeWide(src.m_maybeWide) {}

// Because of the delegation, the destructor deletes the vertices created so far if one fails.
CEntPolyline::CEntPolyline(IHandleGestor& gestor, CEntFactory& factory, const CEntPolyline& src,
                           vek0::Handle handle)
    : CEntPolyline(src, handle) {
  m_packed.clearHandles();
  unpackFor(factory, [&](const ChainVertex& v) {
    return factory.createVertex(gestor, CVertex(v.pnt, v.widthStart, v.widthEnd, v.handle));
  });
  m_vertexes.reserve(src.m_vertexes.size());
  for (const CVertex* vertex : src.m_vertexes) {
    m_vertexes.push_back(orThrow(factory.createVertex(gestor, *vertex)));
  }
}

CEntPolyline::CEntPolyline(const CEnt& src, vek0::Handle handle)
    : CEnt(src, handle), m_packed(false), m_flags(0), m_degree(0) {}

CEntPolyline::CEntPolyline(IHandleGestor& gestor, CEntFactory& factory, const CEntLine& src,
                           vek0::Handle handle)
    : CEntPolyline(static_cast<const CEnt&>(src), handle) {
  m_vertexes.reserve(2);
  for (const PNT_3D* end : {&src.getLine().p1, &src.getLine().p2}) {
    m_vertexes.push_back(orThrow(factory.createVertex(gestor, *end, 0, 0, 0)));
  }
}

CEntPolyline::~CEntPolyline() { CEntPolyline::deleteVertex(); }

void CEntPolyline::accept(IEntVisitor& visitor) { visitor.visit(*this); }

CEnt* CEntPolyline::clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory&,
                          CBlockTable&, vek0::Handle handle) const {
  return new (std::nothrow) CEntPolyline(gestor, entFactory, *this, handle);
}

// --- Registration

void CEntPolyline::addTbls(IHandleGestor& gestor) const {
  CEnt::addTbls(gestor);
  if (gestor.handling()) unpack();
  for (auto at = m_vertexes.rbegin(); at != m_vertexes.rend(); ++at) gestor.reserve(*at);
}

void CEntPolyline::removeTbls(IHandleGestor& gestor) const {
  CEnt::removeTbls(gestor);
  releaseFrom(0, gestor);
}

void CEntPolyline::releaseFrom(long from, IHandleGestor& gestor) const {
  if (gestor.handling()) unpack();
  for (long i = listSize(); i > from; --i) gestor.release(at(i - 1).GetHandle());
}

// --- Packed and listed vertices

CVertex& CEntPolyline::at(long i) const { return *m_vertexes[static_cast<std::size_t>(i)]; }

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

// --- Queries

void CEntPolyline::setLtGen(bool on) {
  m_flags = static_cast<short>(on ? m_flags | kLtGen : m_flags & ~kLtGen);
}

long CEntPolyline::getNoTotalVertexes() const {
  return isPacked() ? static_cast<long>(m_packed.size()) : listSize();
}

long CEntPolyline::getNoCtrlPnts() const {
  return isCurve() ? m_firstVisible : getNoTotalVertexes();
}

long CEntPolyline::getNoVisibleSegments() const {
  return std::max(0L, getNoVisibleVertexes() - (isClosed() ? 0 : 1));
}

void CEntPolyline::getFirstVisibileSegmentIndex(long& from, long& to) const {
  const long total = getNoTotalVertexes();
  from = isClosed() && total > 0 ? total - 1 : m_firstVisible;
  to = isClosed() ? m_firstVisible : m_firstVisible + 1;
  if (total == 0) from = to = 0;
}

void CEntPolyline::getPoints(long i, PNT_3D& a, PNT_3D& b) const {
  const long last = getNoTotalVertexes() - 1;
  const long closing = std::min(m_firstVisible, last);
  long from = i;
  long to = i + 1;
  if (i < m_firstVisible) {
    from = last;
    to = closing;
  } else if (i >= last) {
    from = last;
    to = isClosed() ? closing : last;
  }
  a = last < 0 ? PNT_3D(0, 0, 0) : posAt(from);
  b = last < 0 ? PNT_3D(0, 0, 0) : posAt(to);
}

void CEntPolyline::getLine(long i, LINE_3D& segment) const {
  PNT_3D a(0, 0, 0);
  PNT_3D b(0, 0, 0);
  getPoints(i, a, b);
  segment.set(a, b);
}

PNT_3D CEntPolyline::posAt(long i) const {
  return isPacked() ? m_packed.at(static_cast<std::size_t>(i)).pnt : at(i).getPnt();
}

long CEntPolyline::clampedIndex(long i) const {
  ZORA_ASSERT(isIndex(i));
  return std::clamp(i, 0L, std::max(0L, getNoTotalVertexes() - 1));
}

const CVertex& CEntPolyline::GetVertex(int i) const {
  static const CVertex none(PNT_3D(0, 0, 0), 0, 0, 0);
  unpack();
  const long index = clampedIndex(i);
  return m_vertexes.empty() ? none : at(index);
}

PNT_3D CEntPolyline::GetVertexPos(int i) const {
  const long index = clampedIndex(i);
  return getNoTotalVertexes() == 0 ? PNT_3D(0, 0, 0) : posAt(index);
}

void CEntPolyline::SetVertexPos(int i, const PNT_3D& pnt) {
  if (!isIndex(i)) return;
  if (m_packed.hasBulges()) unpack();
  if (isPacked()) {
    m_packed.setPos(static_cast<std::size_t>(i), pnt);
  } else {
    dropRunsAt(i, true);
    at(i).setPnt(pnt);
  }
}

void CEntPolyline::SetVertexWidth(int i, double widthStart, double widthEnd) {
  if (!isIndex(i)) return;
  m_maybeWide = true;
  if (m_packed.hasBulges()) unpack();
  if (isPacked()) {
    m_packed.setWidth(static_cast<std::size_t>(i), widthStart, widthEnd);
  } else {
    dropRunsAt(i, false);
    at(i).SetWidthStart(widthStart);
    at(i).SetWidthEnd(widthEnd);
  }
}

void CEntPolyline::translate(const PNT_3D& delta) {
  m_packed.translate(delta);
  for (CVertex* vertex : m_vertexes) vertex->getPnt().move(delta);
}

// Bulges are ratios: rotation and scaling change neither them nor the number of chords.
void CEntPolyline::rotate(const PNT_3D& centre, double angleRad) {
  m_packed.rotate(centre, angleRad);
  for (CVertex* vertex : m_vertexes) vertex->getPnt().rotate(centre, angleRad);
}

void CEntPolyline::scale(const PNT_3D& centre, double factor) {
  m_packed.scale(centre, factor);
  for (CVertex* vertex : m_vertexes) {
    vertex->getPnt().scale(centre, factor);
    vertex->SetWidthStart(vertex->GetWidthStart() * std::fabs(factor));
    vertex->SetWidthEnd(vertex->GetWidthEnd() * std::fabs(factor));
  }
}

bool CEntPolyline::isWide() const {
  if (isPacked()) return m_packed.isWide();
  return std::any_of(m_vertexes.begin() + m_firstVisible, m_vertexes.end(),
                     [](const CVertex* v) { return v->IsWide(); });
}

bool CEntPolyline::IsWidthConstant(double& width) const {
  width = 0;
  bool isFirst = true;
  bool isConstant = getNoTotalVertexes() > 0;
  double reference = 0;
  // The given vertices suffice: along an arc the widths are between those of its ends.
  const auto compare = [&](double ws, double we) {
    if (isFirst) reference = we;
    isFirst = false;
    isConstant = isConstant && ws == reference && we == reference;
  };
  for (const BULGED_VERTEX& v : m_packed.vertexes()) compare(v.widthStart, v.widthEnd);
  for (const CVertex* v : m_vertexes) compare(v->GetWidthStart(), v->GetWidthEnd());
  if (isConstant) width = reference;
  return isConstant;
}

void CEntPolyline::setWidth(double width) {
  m_maybeWide = true;
  m_packed.setWidth(width);
  for (CVertex* vertex : m_vertexes) {
    vertex->SetWidthStart(width);
    vertex->SetWidthEnd(width);
  }
  dirtyBdry();
}

void CEntPolyline::calcBdry() {
  RECT_3D box;
  box.initRegion();
  if (isWide()) {
    growBySilhouette(box);
  } else {
    m_packed.growBdry(box);
    for (long i = listSize(); i > m_firstVisible; --i) box.updateRegion(at(i - 1).getPnt());
  }
  setBdry(box);
}

void CEntPolyline::growBySilhouette(RECT_3D& box) const {
  std::vector<WIDE_VERTEX> vertexes;
  forEachVisible([&vertexes](const PNT_3D& pnt, double ws, double we, double, long) {
    vertexes.push_back({pnt, ws, we});
  });
  const CPolylineSilhouette silhouette(vertexes, isClosed());
  for (std::size_t i = 0; i < silhouette.getNoRuns(); ++i) {
    for (const PNT_3D& pnt : silhouette.getRun(i)) box.updateRegion(pnt);
  }
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
    auto vertex = std::make_unique<CVertex>(pnt, widthStart, widthEnd, handle);
    addVisibleVertex(*vertex);
    static_cast<void>(vertex.release());
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

// --- Shape

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

// --- Undo

void CEntPolyline::setMemento(CData& data, const IEntDerivedMemento* memento) {
  const auto* kept = vek0::detail::mementoOf<CEntPolyline, CEntPolylineMemento>(memento);
  if (kept == nullptr) return;
  const CEntPolylineMemento& state = *kept;
  const auto displaced = replaceParts(data, state);
  if (isPacked() && !state.m_packed.empty()) {
    m_packed = state.m_packed;
  } else {
    const bool isBooked = vek0::detail::servicesOf(data).gestor.handling();
    auto vertex = m_vertexes.begin();
    state.forEachEntry(
        [&](const MementoEntry& entry) { resetVertex(**vertex++, entry, isBooked); });
    m_runs.clear();
    if (state.m_packed.empty())
      m_runs.assign(state.m_runs.begin(), state.m_runs.end());
    else
      addRunsOf(state.m_packed, m_runs);
  }
  m_firstVisible = state.m_firstVisible;
  m_flags = state.m_flags;
  m_degree = state.m_degree;
  m_maybeWide = state.m_maybeWide;
  m_packed.setClosed(isClosed());
  setBdry(state.m_bdry);
}

// A tracked handle stays with its vertex. Others belong to the position: the same number of
// vertices may be different objects.
void CEntPolyline::resetVertex(CVertex& vertex, const MementoEntry& entry, bool isBooked) {
  if (!isBooked) vertex = CVertex(vertex, entry.handle);
  vertex.setMemento(&entry.values);
}

// A list of vertices in exchange for another one; those of one list alone belong to this while
// the polyline has the other.
class CEntPolyline::ReplacedVertexes final : public vek0::detail::EntParts {
 public:
  explicit ReplacedVertexes(CEntPolyline& polyline, IHandleGestor& gestor)
      : m_polyline(polyline), m_gestor(gestor) {}
  ReplacedVertexes(const ReplacedVertexes&) = delete;
  ReplacedVertexes& operator=(const ReplacedVertexes&) = delete;
  ~ReplacedVertexes() override { deleteAll(m_own, 0); }

  // Takes the memento's vertices from those present, or makes them. Throws before anything
  // changes.
  void prepare(CEntFactory& factory, const std::vector<MementoEntry>& entries) {
    const std::vector<CVertex*>& present = m_polyline.m_vertexes;
    std::unordered_set<CVertex*> aside(present.begin(), present.end());
    m_list.reserve(entries.size());
    m_own.reserve(entries.size());
    for (const MementoEntry& entry : entries) {
      CVertex* vertex = entry.vertex;
      if (aside.erase(vertex) == 0) {
        vertex = orThrow(factory.createVertex(m_gestor, PNT_3D(0, 0, 0), 0, 0, 0));
        m_own.push_back(vertex);
      }
      m_list.push_back(vertex);
    }
    m_displaced.assign(aside.begin(), aside.end());
  }

  void exchange() {
    m_polyline.releaseFrom(0, m_gestor);
    m_polyline.m_vertexes.swap(m_list);
    m_own.swap(m_displaced);
    for (const CVertex* vertex : m_polyline.m_vertexes) m_gestor.reserve(vertex);
  }

  void putBack() override { exchange(); }

 private:
  CEntPolyline& m_polyline;
  IHandleGestor& m_gestor;
  std::vector<CVertex*> m_list;       // what the polyline has not
  std::vector<CVertex*> m_own;        // of that, what it has not in its own list either
  std::vector<CVertex*> m_displaced;  // what is in its own list alone
};

std::unique_ptr<vek0::detail::EntParts> CEntPolyline::replaceParts(
    CData& data, const IEntDerivedMemento& memento) {
  const auto* state = vek0::detail::mementoOf<CEntPolyline, CEntPolylineMemento>(&memento);
  if (state == nullptr || (isPacked() && !state->m_packed.empty())) return nullptr;
  unpack();
  m_runs.reserve(std::max(state->m_runs.size(), mostRunsOf(state->m_packed)));
  if (state->noEntries() == m_vertexes.size()) return nullptr;
  const vek0::detail::EntServices services = vek0::detail::servicesOf(data);
  auto replaced = std::make_unique<ReplacedVertexes>(*this, services.gestor);
  replaced->prepare(services.entFactory, state->entries());
  replaced->exchange();
  return replaced;
}

IEntDerivedMemento* CEntPolyline::createDerivedMemento() const {
  return vek0::detail::newOrNull<CEntPolylineMemento>(*this);
}

CEntPolylineMemento::CEntPolylineMemento(const CEntPolyline& polyline)
    : m_bdry(polyline.getBdry()),
      m_runs(polyline.m_runs),
      m_packed(polyline.m_packed),
      m_firstVisible(polyline.m_firstVisible),
      m_flags(polyline.m_flags),
      m_degree(polyline.m_degree),
      m_maybeWide(polyline.m_maybeWide) {
  std::erase_if(m_runs, [](const auto& run) { return run.bulge == 0; });
  m_vertexes.reserve(polyline.m_vertexes.size());
  for (CVertex* v : polyline.m_vertexes) {
    m_vertexes.push_back(
        {v, v->GetHandle(), CVertexMemento(v->getPnt(), v->GetWidthStart(), v->GetWidthEnd())});
  }
}

// Hands over the vertices, those of a packed polyline without a vertex object.
template <class Each>
void CEntPolylineMemento::forEachEntry(const Each& each) const {
  for (const CEntPolyline::MementoEntry& entry : m_vertexes) each(entry);
  m_packed.forEach([&each](const ChainVertex& v) {
    each({nullptr, v.handle, CVertexMemento(v.pnt, v.widthStart, v.widthEnd)});
  });
}

std::size_t CEntPolylineMemento::noEntries() const {
  std::size_t count = m_vertexes.size();
  for (std::size_t i = 0; i < m_packed.vertexes().size(); ++i)
    count += static_cast<std::size_t>(m_packed.chords(i));
  return count;
}

std::vector<CEntPolyline::MementoEntry> CEntPolylineMemento::entries() const {
  if (m_packed.empty()) return m_vertexes;
  std::vector<CEntPolyline::MementoEntry> entries;
  entries.reserve(m_packed.size());
  forEachEntry([&entries](const CEntPolyline::MementoEntry& entry) { entries.push_back(entry); });
  return entries;
}

bool CEntPolylineMemento::operator==(const CEnt& ent) const {
  if (ent.getType() != CEntPolyline::kType) return false;
  const CEntPolylineMemento now(static_cast<const CEntPolyline&>(ent));
  if (now.m_firstVisible != m_firstVisible || now.m_flags != m_flags || now.m_degree != m_degree) {
    return false;
  }
  if (!m_packed.empty() && !now.m_packed.empty()) return now.m_packed == m_packed;
  const auto sameValues = [](const auto& a, const auto& b) { return a.values == b.values; };
  const auto mine = entries();
  const auto its = now.entries();
  return std::equal(mine.begin(), mine.end(), its.begin(), its.end(), sameValues) &&
         arcRuns() == now.arcRuns();
}

std::vector<CEntPolyline::ArcRun> CEntPolylineMemento::arcRuns() const {
  return m_packed.empty() ? m_runs : CEntPolyline::runsOf(m_packed);
}

std::size_t CEntPolylineMemento::size() const {
  return sizeof *this + m_vertexes.size() * sizeof(CEntPolyline::MementoEntry) +
         m_runs.size() * sizeof(CEntPolyline::ArcRun) +
         m_packed.vertexes().size() * sizeof(BULGED_VERTEX);
}
