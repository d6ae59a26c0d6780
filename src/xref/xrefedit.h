#pragma once

// Common parts of detaching and binding.

#include <functional>
#include <vector>

#include "vek0core/drawing/undostack.h"

class CBlockXRef;
class CData;
class CEnt;
class CLtype;

namespace vek0::detail {

/// A step that is rolled back unless it is completed; a step that was already open is left to its
/// opener.
class EditStep {
 public:
  explicit EditStep(CUndoStack& undo) : m_undo(undo), m_isOwn(!undo.isOpen()) { undo.begin({}); }
  EditStep(const EditStep&) = delete;
  EditStep& operator=(const EditStep&) = delete;
  ~EditStep() {
    if (m_isDone || !m_isOwn)
      m_undo.commit();
    else
      m_undo.rollback();
  }

  bool done() { return m_isDone = true; }

 private:
  CUndoStack& m_undo;
  bool m_isOwn;
  bool m_isDone = false;
};

using XRefs = std::vector<CBlockXRef*>;

/// The inserts of references in model space and in the drawing's blocks.
std::vector<CEnt*> insertsOf(CData& data, const XRefs& xrefs);

/// The references, and those no longer shown once they and their inserts are removed, each after
/// those that show it; without those that others show.
XRefs shownOnlyBy(const XRefs& xrefs);

/// Whether all are in the drawing and shown only by each other.
bool areOutermost(const CData& data, const XRefs& xrefs);

/// Replaces the linetypes of these references on layers of other references, which a host may have
/// set. False when memory runs out.
bool leaveLtypes(CData& data, CUndoStack& undo, const XRefs& going,
                 const std::function<CLtype*(CLtype*)>& standIn);

/// Removes references, in that order, with the text styles and blocks named after them. Those still
/// in use are kept.
bool removeXRefs(CData& data, CUndoStack& undo, const XRefs& going);

}  // namespace vek0::detail
