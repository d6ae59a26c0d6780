#pragma once

#include "vek0core/export.h"

/// Base of objects with shared ownership: the last owner to release one deletes it.
///
/// The creator is the first owner. The operations are protected: derived classes expose them under
/// their own names. Not thread-safe.
class VEK0_API IRefCounter {
 protected:
  IRefCounter() = default;
  /// A copy starts with the count of its source, and so does an assigned object.
  IRefCounter(const IRefCounter&) = default;
  IRefCounter& operator=(const IRefCounter&) = default;
  virtual ~IRefCounter();

  /// Adds an owner.
  void addRef() { ++m_count; }
  /// Removes an owner; deletes the object if it was the last.
  void decRef();

 private:
  long m_count = 1;
};
