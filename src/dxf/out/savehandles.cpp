// Assigns the handles of a file. Objects keep theirs if it is not 0 and no other object has been
// written with it. Further numbers are taken above the highest one, where no program remembers
// another object, and from the gaps below if there is no room. Vertices yield to all others,
// because a drawing makes sure only that the handles of entities differ. Ends of sequences (SEQEND)
// have no handle in a drawing; they are numbered apart from the rest, so that a file that is read
// and written again gets the same numbers.
#include "dxf/out/savehandles.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "dxf/out/savedvertexes.h"
#include "dxf/out/savefilter.h"
#include "vek0core/dxf/out/filedxfowriter.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"

namespace vek0::detail {
namespace {

// Readers with a 32-bit `long` would read larger values as negative numbers.
constexpr std::uint64_t kHighestFresh = 0x7FFFFFFF;

}  // namespace

void SaveHandles::note(Handle handle, std::vector<Key>& noted) {
  const Key key = CFileDXFOWriter::hexBits(handle);
  if (key == 0)
    ++m_without;
  else
    noted.push_back(key);
}

void SaveHandles::settle() {
  for (std::vector<Key>* noted : {&m_taken, &m_ofVertices})
    if (!std::is_sorted(noted->begin(), noted->end())) std::sort(noted->begin(), noted->end());
  findRepeated();
  const std::size_t noted = m_taken.size() + m_ofVertices.size();
  const auto middle = static_cast<std::ptrdiff_t>(m_taken.size());
  m_taken.insert(m_taken.end(), m_ofVertices.begin(), m_ofVertices.end());
  std::vector<Key>().swap(m_ofVertices);
  std::inplace_merge(m_taken.begin(), m_taken.begin() + middle, m_taken.end());
  m_taken.erase(std::unique(m_taken.begin(), m_taken.end()), m_taken.end());
  const std::size_t things = m_without + noted - m_taken.size();
  // Above the highest, so that formerly used numbers are not reused; from the bottom if there is no
  // room above.
  const Key highest = m_taken.empty() ? 0 : m_taken.back();
  if (highest + things + m_ends <= kHighestFresh) m_nextThing = {highest + 1, m_taken.size()};
  m_nextEnd = m_nextThing;
  for (std::size_t i = 0; i < things; ++i) fresh(m_nextEnd);
  // The numbers of sequence ends must depend only on the handles of the objects, because only those
  // are read back.
  const Key above = std::max(m_nextEnd.next, highest + 1);
  if (above + m_ends <= kHighestFresh) m_nextEnd = {above, m_taken.size()};
  Free last = m_nextEnd;
  for (std::size_t i = 0; i < m_ends; ++i) fresh(last);
  const bool isRoomAbove = highest < std::numeric_limits<Handle>::max();
  m_seed = isRoomAbove ? std::max(last.next, highest + 1) : last.next;
}

void SaveHandles::findRepeated() {
  std::vector<Key> common;
  std::set_intersection(m_taken.begin(), m_taken.end(), m_ofVertices.begin(), m_ofVertices.end(),
                        std::back_inserter(common));
  for (const Key key : common) m_repeated.emplace(key, Owner::Other);
  findRepeated(m_taken, Owner::Other);
  findRepeated(m_ofVertices, Owner::Vertex);
}

void SaveHandles::findRepeated(const std::vector<Key>& sorted, Owner owner) {
  for (std::size_t i = 1; i < sorted.size(); ++i)
    if (sorted[i] == sorted[i - 1]) m_repeated.emplace(sorted[i], owner);
}

Handle SaveHandles::take(Handle handle, Owner owner) {
  const Key key = CFileDXFOWriter::hexBits(handle);
  if (key == 0) return fresh(m_nextThing);
  if (m_repeated.empty()) return handle;
  const auto repeated = m_repeated.find(key);
  if (repeated == m_repeated.end()) return handle;
  if (repeated->second != owner) return fresh(m_nextThing);
  repeated->second = Owner::None;
  return handle;
}

Handle SaveHandles::fresh(Free& place) {
  for (; place.taken < m_taken.size() && m_taken[place.taken] <= place.next; ++place.taken) {
    if (m_taken[place.taken] == place.next) ++place.next;
  }
  return static_cast<Handle>(place.next++);
}

template <class Ent>
void HandleCollector::note(const Ent& ent) {
  if (!m_filter.objection(ent)) m_handles.note(ent.GetHandle());
}

void HandleCollector::noteInsert(const CEntInsertBase& ent) {
  if (m_filter.objection(ent)) return;
  m_handles.note(ent.GetHandle());
  bool any = false;
  for (unsigned i = 0; i < static_cast<unsigned>(ent.GetNoAttribs()); ++i) {
    const CEntAttrib* attrib = ent.GetAttrib(i);
    if (!attrib || m_filter.objection(*attrib)) continue;
    m_handles.note(attrib->GetHandle());
    any = true;
  }
  if (any) m_handles.noteEnd();
}

void HandleCollector::visit(CEntPnt& ent) { note(ent); }
void HandleCollector::visit(CEntLine& ent) { note(ent); }
void HandleCollector::visit(CEntCircle& ent) { note(ent); }
void HandleCollector::visit(CEntArc& ent) { note(ent); }
void HandleCollector::visit(CEntText& ent) { note(ent); }
void HandleCollector::visit(CEntAttdef& ent) { note(ent); }
void HandleCollector::visit(CEntInsert& ent) { noteInsert(ent); }
void HandleCollector::visit(CEntFixedInsert& ent) { noteInsert(ent); }
void HandleCollector::visit(CEntInsertXRef& ent) { noteInsert(ent); }
void HandleCollector::visit(CEntHatch& ent) { noteInsert(ent); }
void HandleCollector::visit(CEnt3DFace& ent) { note(ent); }

void HandleCollector::visit(CEntPolyline& ent) {
  const PolylineForm form = polylineForm(ent, m_flatten, m_exchange);
  if (m_filter.objection(ent, form.finite)) return;
  m_handles.note(ent.GetHandle());
  forEachSaved(ent, form, [this](const SavedVertex& v) { m_handles.noteVertex(v.handle); });
  m_handles.noteEnd();
}

}  // namespace vek0::detail
