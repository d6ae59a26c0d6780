#pragma once

#include "vek0core/export.h"

/// Base of objects that several owners share: the last one to give it back deletes it.
///
/// Whoever makes the object owns it once. The operations are protected: the deriving
/// class exposes them under its own names. Not for use from several threads.
class VEK0_API IRefCounter {
 protected:
  IRefCounter() = default;
  /// The copy starts with the count of its source, as does an object that is assigned to.
  IRefCounter(const IRefCounter&) = default;
  IRefCounter& operator=(const IRefCounter&) = default;
  virtual ~IRefCounter();

  /// One owner more.
  void addRef() { ++m_count; }
  /// One owner less; deletes the object when it was the last.
  void decRef();

 private:
  long m_count = 1;
};
