// Merging the last two steps of the undo stack. The snapshots that the older one holds are noted
// and kept between merges: collecting many small steps in a large one must not rescan it each time.
#include <iterator>
#include <new>
#include <utility>
#include <vector>

#include "vek0core/drawing/undostack.h"

using vek0::detail::PointerSet;

bool CUndoStack::merge() {
  if (m_depth != 0 || m_done.size() < 2) return false;
  Step& into = *std::prev(m_done.end(), 2);
  Step& from = m_done.back();
  std::vector<bool> isNews;
  try {
    // All allocations come first; afterwards nothing can fail.
    noteSnapshots(into);
    into.actions.reserve(into.actions.size() + from.actions.size());
    for (const auto& action : from.actions) {
      const void* target = action->snapshotOf();
      isNews.push_back(target == nullptr || m_merged[action->part()].insert(target));
    }
  } catch (const std::bad_alloc&) {
    m_mergedId = 0;
    return false;
  }
  m_bytes -= from.bytes;
  for (std::size_t i = 0; i < isNews.size(); ++i) {
    // Of two snapshots of the same object, the older one is needed.
    if (!isNews[i]) continue;
    into.bytes += bytesOf(*from.actions[i]);
    m_bytes += bytesOf(*from.actions[i]);
    into.actions.push_back(std::move(from.actions[i]));
  }
  m_done.pop_back();
  return true;
}

// Records which objects the step has snapshots of.
void CUndoStack::noteSnapshots(const Step& step) {
  if (m_mergedId == step.id) return;
  for (PointerSet& part : m_merged) part.clear();
  for (const auto& action : step.actions)
    if (const void* target = action->snapshotOf()) m_merged[action->part()].insert(target);
  m_mergedId = step.id;
}
