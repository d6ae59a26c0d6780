#pragma once

#include <cstdint>
#include <type_traits>

#include "vek0core/export.h"

namespace vek0 {

/// A number that names a thing inside one drawing, as files write it in hexadecimal; 0 is
/// no handle. It has 64 bits everywhere: it is `long` where that has as many.
using Handle = std::conditional_t<sizeof(long) == sizeof(std::int64_t), long, std::int64_t>;

}  // namespace vek0

/// Base of what bears a handle.
class VEK0_API IHandleEnt {
 public:
  explicit IHandleEnt(vek0::Handle handle) : m_handle(handle) {}
  IHandleEnt(const IHandleEnt&) = default;
  IHandleEnt& operator=(const IHandleEnt&) = default;
  virtual ~IHandleEnt() = default;

  vek0::Handle GetHandle() const { return m_handle; }

 protected:
  void SetHandle(vek0::Handle handle) { m_handle = handle; }

 private:
  vek0::Handle m_handle;
};

/// What a drawing asks about handles: the seam for a host that manages them.
class VEK0_API IHandleGestor {
 public:
  virtual ~IHandleGestor() = default;
  /// Books the next free handle and returns it.
  virtual vek0::Handle bookNext() = 0;
  /// Books this handle if it is free, else another one; returns what was booked.
  virtual vek0::Handle bookHandle(vek0::Handle handle) = 0;
  virtual void unbook(vek0::Handle handle) = 0;
  /// Called when something that bears a handle comes into the drawing.
  virtual void reserve(const IHandleEnt* ent) = 0;
  /// Called when something with this handle leaves the drawing.
  virtual void release(vek0::Handle handle) = 0;
  /// Whether handles are managed at all.
  virtual bool handling() const = 0;
  /// The handle that `bookNext` would give.
  virtual vek0::Handle nextseed() const = 0;
};

/// The manager that manages nothing: every drawing has one. Handles are what the
/// callers of the creation functions pass.
class VEK0_API CHandleGestorFoo : public IHandleGestor {
 public:
  vek0::Handle bookNext() override { return 0; }
  vek0::Handle bookHandle(vek0::Handle) override { return 0; }
  void unbook(vek0::Handle) override {}
  void reserve(const IHandleEnt*) override {}
  void release(vek0::Handle) override {}
  bool handling() const override { return false; }
  vek0::Handle nextseed() const override { return 0; }

 private:
  [[maybe_unused]] vek0::Handle m_seed = 0;  // stays 0; a manager that books would count here
};
