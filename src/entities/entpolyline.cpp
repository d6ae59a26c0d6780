// Construction, queries and transformations of polylines. The vertices themselves are in
// entpolylinevertices.cpp, curves in entpolylinecurve.cpp, snapshots in entpolylinememento.cpp.
// Whatever needs only positions and widths works on either form of the vertices, so that it does
// not create vertex objects.
#include "vek0core/entities/entpolyline.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "entities/ownedvertices.h"
#include "vek0core/assert.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entvisitor.h"
#include "vek0core/polyline/silhouettepieces.h"

using vek0::detail::ChainVertex;
using vek0::detail::orThrow;

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
  // Handles are unique, so copies of packed vertices have none.
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
  // Packed vertices are not registered. Those of a polyline that was unpacked meanwhile must not
  // get handles when it returns, so a manager that does not track them sees only those of files.
  if (gestor.handling()) unpack();
  for (auto at = m_vertexes.rbegin(); at != m_vertexes.rend(); ++at)
    if (gestor.handling() || (*at)->GetHandle() != 0) gestor.reserve(*at);
}

void CEntPolyline::removeTbls(IHandleGestor& gestor) const {
  CEnt::removeTbls(gestor);
  releaseFrom(0, gestor);
}

void CEntPolyline::releaseFrom(long from, IHandleGestor& gestor) const {
  if (gestor.handling()) unpack();
  for (long i = listSize(); i > from; --i) gestor.release(at(i - 1).GetHandle());
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
  // Moving an end of an arc turns its chords into ordinary segments, which the packed form lacks.
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
  CSilhouettePieces pieces([&box](const CPolylineSilhouette& silhouette) {
    for (std::size_t i = 0; i < silhouette.getNoRuns(); ++i)
      for (const PNT_3D& pnt : silhouette.getRun(i)) box.updateRegion(pnt);
  });
  pieces.leaveOutWithin(box);
  forEachVisible([&pieces](const PNT_3D& pnt, double ws, double we, double, long) {
    pieces.add({pnt, ws, we});
  });
  pieces.finish(isClosed());
}
