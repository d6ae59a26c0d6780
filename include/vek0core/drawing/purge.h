#pragma once

#include <cstddef>

#include "vek0core/export.h"

class CData;
class CUndoStack;

/// How much `purge` removed; the blocks of records (`CBlock::isOfRecord`) do not count.
struct PURGED {
  std::size_t blocks = 0, layers = 0, ltypes = 0, styles = 0;
};

/// Removes the blocks that neither model space nor a sheet shows, directly or through others, and
/// then the layers, linetypes and text styles that nothing uses. Fixed and current items, the style
/// "STANDARD" and external references with their items stay.
///
/// The removals are edits of `undo`, the stack of the drawing: of the open step, or each of a step
/// of its own. An item stays for which memory runs out. Linear in the drawing. Throws
/// `std::bad_alloc`; what it removed until then can be undone.
VEK0_API PURGED purge(CData& data, CUndoStack& undo);
