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
class UndoAction {
 public:
  virtual ~UndoAction() = default;
  /// False, with nothing changed, when there is no memory.
  virtual bool swap(CData& data) = 0;
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
