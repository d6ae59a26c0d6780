#include "vek0host/undocheck.h"

namespace vek0::host {

std::string bytesOf(const CData& data) {
  CFileMemory file(u"memory", 2);
  return SaveDXF(data, file, kSaveExchange) ? file.bytes() : std::string();
}

std::string checkUndo(CData& data, CUndoStack& undo, const std::string& before) {
  const std::string after = bytesOf(data);
  if (before.empty() || after.empty()) return "the drawing cannot be written for the comparison";
  while (undo.getNoUndo() > 0)
    if (!undo.undo()) return "a step cannot be undone";
  if (bytesOf(data) != before) return "undoing did not give the drawing back";
  while (undo.getNoRedo() > 0)
    if (!undo.redo()) return "a step cannot be done again";
  return bytesOf(data) == after ? "" : "doing it all again gave another drawing";
}

}  // namespace vek0::host
