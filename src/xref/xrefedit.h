#pragma once

// What detaching and binding have in common.

#include <unordered_map>
#include <vector>

#include "vek0core/drawing/undostack.h"

class CBlockXRef;
class CData;
class CEnt;

namespace vek0::detail {

/// A step that is taken back unless it is done; one that was open before is left to whoever
/// opened it.
class EditStep {
 public:
  explicit EditStep(CUndoStack& undo) : m_undo(undo), m_isOwn(!undo.isOpen()) { undo.begin({}); }
  EditStep(const EditStep&) = delete;
  EditStep& operator=(const EditStep&) = delete;
  ~EditStep() { m_isDone || !m_isOwn ? static_cast<void>(m_undo.commit()) : m_undo.rollback(); }

  bool done() { return m_isDone = true; }

 private:
  CUndoStack& m_undo;
  bool m_isOwn;
  bool m_isDone = false;
};

/// The inserts of a reference in model space and in the drawing's blocks.
std::vector<CEnt*> insertsOf(CData& data, const CBlockXRef& xref);

/// How many references of the drawing show each; those that none does are missing.
std::unordered_map<const CBlockXRef*, int> countShows(const CData& data);

/// The reference, and those that nothing shows once it is gone and its inserts are: each
/// after those that show it.
std::vector<CBlockXRef*> shownOnlyBy(const CData& data, CBlockXRef& xref);

/// Takes references out, in that order, with text styles that are named after them. Those
/// that are still used stay.
bool removeXRefs(CData& data, CUndoStack& undo, const std::vector<CBlockXRef*>& going);

}  // namespace vek0::detail
