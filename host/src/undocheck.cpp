#include "vek0host/undocheck.h"

namespace vek0::host {

std::string bytesOf(const CData& data) {
  CFileMemory file(u"memory", 2);
  return SaveDXF(data, file, kSaveExchange) ? file.bytes() : std::string();
}

std::string checkUndo(CData& data, CUndoStack& undo, const std::string& before) {
  const std::string after = bytesOf(data);
  if (before.empty() || after.empty()) return "the drawing cannot be saved for the comparison";
  while (undo.getNoUndo() > 0)
    if (!undo.undo()) return "a step cannot be undone";
  if (bytesOf(data) != before) return "undoing did not restore the drawing";
  while (undo.getNoRedo() > 0)
    if (!undo.redo()) return "a step cannot be redone";
  return bytesOf(data) == after ? "" : "redoing produced a different drawing";
}

}  // namespace vek0::host
