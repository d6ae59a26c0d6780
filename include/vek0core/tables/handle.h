#pragma once

#include "vek0core/export.h"

/// Base of what bears a handle: a number that names it inside one drawing. 0 is no
/// handle.
class VEK0_API IHandleEnt {
 public:
  explicit IHandleEnt(long handle) : m_handle(handle) {}
  IHandleEnt(const IHandleEnt&) = default;
  IHandleEnt& operator=(const IHandleEnt&) = default;
  virtual ~IHandleEnt() = default;

  long GetHandle() const { return m_handle; }

 protected:
  void SetHandle(long handle) { m_handle = handle; }

 private:
  long m_handle;
};

/// What a drawing asks about handles: the seam for a host that manages them.
class VEK0_API IHandleGestor {
 public:
  virtual ~IHandleGestor() = default;
  /// Books the next free handle and returns it.
  virtual long bookNext() = 0;
  /// Books this handle if it is free, else another one; returns what was booked.
  virtual long bookHandle(long handle) = 0;
  virtual void unbook(long handle) = 0;
  /// Called when something that bears a handle comes into the drawing.
  virtual void reserve(const IHandleEnt* ent) = 0;
  /// Called when something with this handle leaves the drawing.
  virtual void release(long handle) = 0;
  /// Whether handles are managed at all.
  virtual bool handling() const = 0;
  /// The handle that `bookNext` would give.
  virtual long nextseed() const = 0;
};

/// The manager that manages nothing: every drawing has one. Handles are what the
/// callers of the creation functions pass.
class VEK0_API CHandleGestorFoo : public IHandleGestor {
 public:
  long bookNext() override { return 0; }
  long bookHandle(long) override { return 0; }
  void unbook(long) override {}
  void reserve(const IHandleEnt*) override {}
  void release(long) override {}
  bool handling() const override { return false; }
  long nextseed() const override { return 0; }

 private:
  [[maybe_unused]] long m_seed = 0;  // stays 0; a manager that books would count here
};
