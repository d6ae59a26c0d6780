#pragma once

#include <memory>
#include <string>
#include <utility>

#include "drawing.h"

namespace vek0::python {

/// What a Python object for a layer, linetype, style or block holds. It only compares the pointer
/// until the table is known to have it.
template <class Item>
struct ItemRef {
  std::shared_ptr<Drawing> drawing;
  Item* item;
  std::string name;  ///< when last seen, for messages

  /// Throws `Fault` if the item is not in the drawing, or the drawing is closed or in use.
  Item& get() const;

  bool operator==(const ItemRef& other) const {
    return drawing == other.drawing && item == other.item;
  }
};

using LayerRef = ItemRef<CLayer>;
using LtypeRef = ItemRef<CLtype>;
using StyleRef = ItemRef<CStyle>;

}  // namespace vek0::python
