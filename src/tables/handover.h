#pragma once

#include <memory>
#include <utility>

namespace vek0::detail {

/// Passes an object to an owner whose functions take raw pointers, and returns it. The object
/// belongs to the owner once `take` has returned; if that throws, it is deleted.
template <class T, class Take>
T& handOver(std::unique_ptr<T> object, const Take& take) {
  take(*object);
  return *object.release();
}

/// The same for owners with an `add`: tables, inserts, blocks.
template <class Owner, class T>
T& addTo(Owner& owner, std::unique_ptr<T> object) {
  return handOver(std::move(object), [&owner](T& item) { owner.add(&item); });
}

/// The same for a block, without the updates of `add`.
template <class Block, class T>
T& restoreTo(Block& block, std::unique_ptr<T> object) {
  return handOver(std::move(object), [&block](T& item) { block.restore(&item); });
}

}  // namespace vek0::detail
