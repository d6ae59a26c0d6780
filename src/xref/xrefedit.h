#pragma once

// What detaching and binding have in common.

#include <functional>
#include <vector>

#include "vek0core/drawing/undostack.h"

class CBlockXRef;
class CData;
class CEnt;
class CLtype;

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

using XRefs = std::vector<CBlockXRef*>;

/// The inserts of references in model space and in the drawing's blocks.
std::vector<CEnt*> insertsOf(CData& data, const XRefs& xrefs);

/// The references, and those that nothing shows once they and their inserts are gone: each
/// after those that show it. Those that others show are missing.
XRefs shownOnlyBy(const XRefs& xrefs);

/// Whether all are in the drawing and nothing but others of them shows them.
bool areOutermost(const CData& data, const XRefs& xrefs);

/// Puts layers of other references, which a host may have given linetypes of these, on what
/// stands for those. False when memory ends.
bool leaveLtypes(CData& data, CUndoStack& undo, const XRefs& going,
                 const std::function<CLtype*(CLtype*)>& standIn);

/// Takes references out, in that order, with text styles and blocks that are named after them.
/// Those that are still used stay.
bool removeXRefs(CData& data, CUndoStack& undo, const XRefs& going);

}  // namespace vek0::detail
