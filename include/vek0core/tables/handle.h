#pragma once

#include <cstdint>
#include <type_traits>

#include "vek0core/export.h"

class CHandleManager;

namespace vek0::detail {
class EntityReader;
}

namespace vek0 {

/// A number that identifies an object within one drawing, written in hexadecimal in files; 0 means
/// no handle. It has 64 bits on all platforms: `long` where that is wide enough.
using Handle = std::conditional_t<sizeof(long) == sizeof(std::int64_t), long, std::int64_t>;

}  // namespace vek0

/// Base of objects with a handle.
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
  friend class CHandleManager;
  friend class vek0::detail::EntityReader;  // until the entity is registered
  vek0::Handle m_handle;
};

/// The interface through which a drawing requests handles; hosts that manage handles implement it.
class VEK0_API IHandleGestor {
 public:
  virtual ~IHandleGestor() = default;
  /// Reserves the next free handle and returns it.
  virtual vek0::Handle bookNext() = 0;
  /// Reserves this handle if it is free, another one otherwise; returns the reserved one.
  virtual vek0::Handle bookHandle(vek0::Handle handle) = 0;
  virtual void unbook(vek0::Handle handle) = 0;
  /// Called when an object with a handle is added to the drawing.
  virtual void reserve(const IHandleEnt* ent) = 0;
  /// Called when an object with this handle is removed from the drawing.
  virtual void release(vek0::Handle handle) = 0;
  /// Whether handles are managed at all.
  virtual bool handling() const = 0;
  /// The handle that `bookNext` would return.
  virtual vek0::Handle nextseed() const = 0;
};

/// A manager that manages nothing, which every drawing has by default: handles are those passed to
/// the creation functions.
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
