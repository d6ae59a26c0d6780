// Undo snapshots of polylines. A snapshot names vertex objects by their addresses. Those that the
// polyline still has are reused, so that tracked handles stay with their vertices; others are
// created. A restored polyline is packed if it is packed at present and was when the snapshot was
// taken.
#include "vek0core/entities/entpolyline.h"

#include <algorithm>
#include <memory>
#include <unordered_set>

#include "entities/entservices.h"
#include "entities/newornull.h"
#include "entities/ownedvertices.h"
#include "vek0core/entities/entfactory.h"

using vek0::detail::ChainVertex;
using vek0::detail::deleteAll;
using vek0::detail::orThrow;

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

// A list of vertices in exchange for another one. Vertices that occur in one list only belong to
// this object while the polyline has the other list.
class CEntPolyline::ReplacedVertexes final : public vek0::detail::EntParts {
 public:
  explicit ReplacedVertexes(CEntPolyline& polyline, IHandleGestor& gestor)
      : m_polyline(polyline), m_gestor(gestor) {}
  ReplacedVertexes(const ReplacedVertexes&) = delete;
  ReplacedVertexes& operator=(const ReplacedVertexes&) = delete;
  ~ReplacedVertexes() override { deleteAll(m_own, 0); }

  // Takes the memento's vertices from those present, or creates them. Throws before anything
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
  std::vector<CVertex*> m_list;       // list that the polyline does not have now
  std::vector<CVertex*> m_own;        // vertices in that list only
  std::vector<CVertex*> m_displaced;  // vertices in the polyline's list only
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
