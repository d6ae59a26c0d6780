#pragma once

#include <cstddef>
#include <memory>

class CBlock;
class CData;
class CEnt;
class CEntHatch;
class CLayer;
class CLtype;
class CStyle;
class IUndoListener;
struct HATCH_TYPE;

namespace vek0::detail {

/// One edit of a step. `swap` toggles it between done and undone, and saves from the drawing
/// whatever it needs to go back.
///
/// A step that fails halfway must be reverted when memory has run out. So everything that a swap
/// displaces is kept until the step is complete.
class UndoAction {
 public:
  virtual ~UndoAction() = default;
  /// Throws `std::bad_alloc` with nothing changed.
  virtual void swap(CData& data) = 0;
  /// Reverts the last `swap`, provided nothing else has changed since, and before `settle`. Needs
  /// no memory: tables, blocks and texts keep their capacity.
  virtual void swapBack(CData& data) { swap(data); }
  /// Frees what was kept for `swapBack`.
  virtual void settle() {}
  /// Undoes the edit permanently. Throws `std::bad_alloc` with nothing changed if a host has
  /// deleted vertices, attributes or elements; otherwise it needs no memory.
  virtual void takeBack(CData& data) { swap(data); }
  /// Names the objects that it changes.
  virtual void tell(IUndoListener& listener) const = 0;
  /// Memory in bytes, including what it owns.
  virtual std::size_t size() const = 0;
  /// Releases what it owns without deleting it.
  virtual void letGo() {}
  /// The object that it is a snapshot of, null if it is not a snapshot or more than one; and which
  /// part of it, 0 or 1.
  virtual const void* snapshotOf() const { return nullptr; }
  virtual int part() const { return 0; }
};

}  // namespace vek0::detail
