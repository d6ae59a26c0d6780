#pragma once

#include <cstddef>

#include "vek0core/entities/ent.h"
#include "vek0core/export.h"

/// Undo snapshot of the properties common to all kinds: layer, linetype, color and traits.
///
/// Created by `CEnt::createBaseMemento`, applied by `CEnt::setMemento`; the caller owns it. It is
/// not counted as a user: the items it refers to must outlive it.
class VEK0_API CEntBaseMemento {
 public:
  virtual ~CEntBaseMemento();

  /// Whether the entity has the same layer and linetype objects, color and traits.
  bool operator==(const CEnt& ent) const;
  bool operator!=(const CEnt& ent) const;

 private:
  friend class CEnt;
  CEntBaseMemento(CLayer* layer, CLtype* ltype, short color,
                  const vek0::detail::EntTraitsRef& traits);

  CLayer* m_layer;
  CLtype* m_ltype;
  vek0::detail::EntTraitsRef m_traits;
  short m_color;
};

/// Undo snapshot of the kind-specific state; each kind has its own class.
///
/// Created by `CEnt::createDerivedMemento`, applied by `CEnt::setMemento` of the same kind of
/// entity and ignored by others; the caller owns it. Immutable. Layers, styles and blocks that it
/// refers to are not counted and must outlive it.
class VEK0_API IEntDerivedMemento {
 public:
  virtual ~IEntDerivedMemento();

  /// Whether the entity is of this kind and in the stored state.
  virtual bool operator==(const CEnt& ent) const = 0;
  virtual bool operator!=(const CEnt& ent) const;

  /// Memento that this one could be merged into; no kind offers one, so null.
  virtual IEntDerivedMemento* fitMemento(const CEnt& ent);

  /// Memory use in bytes, for hosts that limit their undo memory.
  virtual std::size_t size() const = 0;

  /// The kind of the memento, as returned by `CEnt::getType`; 0, the default for a host's mementos,
  /// for none.
  virtual short getType() const;
};

namespace vek0::detail {

/// Parts of an entity that were replaced by others, see `CEnt::replaceParts`. Owns those that are
/// not in the entity.
class VEK0_API EntParts {
 public:
  virtual ~EntParts();
  /// Swaps them back. Only valid while the entity has the replacements. Does not allocate.
  virtual void putBack() = 0;
  /// Whether `CEnt::setMemento` has nothing left to do.
  virtual bool isAll() const { return false; }
};

/// Casts the memento to the class of `Kind`'s mementos; null if it is of another kind, or null.
/// Kinds restore themselves from a pointer to the common base, and a host may confuse its mementos.
template <class Kind, class Memento>
const Memento* mementoOf(const IEntDerivedMemento* memento) {
  const bool fits = memento != nullptr && memento->getType() == Kind::kType;
  return fits ? static_cast<const Memento*>(memento) : nullptr;
}

/// Memento of a kind whose entire state is one geometric value, read by `Get`.
template <class Kind, class Value, const Value& (Kind::*Get)() const>
class ValueMemento : public IEntDerivedMemento {
 public:
  explicit ValueMemento(const Value& value) : m_value(value) {}

  bool operator==(const CEnt& ent) const override {
    return ent.getType() == Kind::kType && (static_cast<const Kind&>(ent).*Get)() == m_value;
  }
  std::size_t size() const override { return sizeof *this; }
  short getType() const override { return Kind::kType; }

  const Value& value() const { return m_value; }

 private:
  Value m_value;
};

}  // namespace vek0::detail
