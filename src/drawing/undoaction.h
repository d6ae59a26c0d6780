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
struct HATCH_TYPE;

namespace vek0::detail {

/// One edit of a step. `swap` turns it from done into undone and back; what it needs for
/// the way back it takes from the drawing meanwhile.
///
/// A step that fails in the middle has to take back what it has done when there is no memory any
/// more. So what a swap puts aside is kept until the step is through.
class UndoAction {
 public:
  virtual ~UndoAction() = default;
  /// Throws `std::bad_alloc` with nothing changed.
  virtual void swap(CData& data) = 0;
  /// Takes the last `swap` back, when nothing else has changed since and before `settle`. Needs
  /// no memory: tables, blocks and texts keep the room that they had.
  virtual void swapBack(CData& data) { swap(data); }
  /// Gives up what was kept for `swapBack`.
  virtual void settle() {}
  /// Turns what is done into undone for good. Throws `std::bad_alloc` with nothing changed where
  /// a host has deleted vertices, attributes or elements; else it needs no memory.
  virtual void takeBack(CData& data) { swap(data); }
  /// Bytes, with those of what it owns.
  virtual std::size_t size() const = 0;
  /// Gives up what it owns without deleting it.
  virtual void letGo() {}
  /// What it is a snapshot of, null when it is none or more than a snapshot; and which
  /// part of it, 0 or 1.
  virtual const void* snapshotOf() const { return nullptr; }
  virtual int part() const { return 0; }
};

}  // namespace vek0::detail
