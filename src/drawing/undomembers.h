#pragma once

// Actions for adding objects to a drawing and removing them. While an object is out of the drawing,
// the action owns it.

#include <optional>
#include <utility>
#include <vector>

#include "drawing/undoaction.h"
#include "vek0core/drawing/data.h"
#include "vek0core/drawing/undostack.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/hatch/hatchparameters.h"

namespace vek0::detail {

/// Approximate memory of an entity with its vertices or attributes, in bytes.
std::size_t bytesOf(const CEnt& ent);
std::size_t bytesOf(const CBlock& block);
std::size_t bytesOf(const CBlockXRef& xref);
std::size_t bytesOf(const CNamedItem& item);

/// An object in or out of the drawing; owned by `Membership` while it is out.
template <class Item>
class Membership : public UndoAction {
 public:
  ~Membership() override {
    if (!m_isIn) delete m_item;
  }
  void swap(CData& data) final {
    m_isIn ? take(data) : put(data);
    m_isIn = !m_isIn;
  }
  void letGo() final { m_isIn = true; }
  void tell(IUndoListener& listener) const final { listener.touched(*m_item); }
  std::size_t size() const override { return sizeof *this + (m_isIn ? 0 : bytesOf(*m_item)); }

 protected:
  Membership(Item& item, bool isIn) : m_item(&item), m_isIn(isIn) {}
  virtual void take(CData& data) = 0;
  virtual void put(CData& data) = 0;
  bool isIn() const { return m_isIn; }

  Item* m_item;

 private:
  bool m_isIn;
};

/// An entity of model space.
class EntMembership final : public Membership<CEnt> {
 public:
  // The slot first: it can fail, and then the entity is not yet this action's.
  EntMembership(CEnt& ent, bool isIn) : EntMembership(ent, isIn, CEntTable::Slots(isIn ? 0 : 1)) {}

 private:
  EntMembership(CEnt& ent, bool isIn, CEntTable::Slots slots)
      : Membership(ent, isIn), m_slots(std::move(slots)) {}

  void take(CData& data) override;
  void put(CData& data) override;

  std::optional<CEntTable::Place> m_place;  // none before the first time
  CEntTable::Slots m_slots;                 // its memory in the table, while it is out
};

/// An entity of a block.
class BlockEntMembership final : public Membership<CEnt> {
 public:
  BlockEntMembership(CBlock& block, CEnt& ent, bool isIn) : Membership(ent, isIn), m_block(block) {}

 private:
  void take(CData& data) override;
  void put(CData& data) override;
  bool isRegistered(const CData& data) const;
  void swapAttdefFlag(bool hadAttdefs);
  void refresh(CData& data);

  CBlock& m_block;
  std::optional<CBlock::Place> m_place;
  std::optional<bool> m_hadAttdefs;  // before the last change
};

/// The texts of a linetype are counted by their styles as long as they exist, and the layers of a
/// reference by their linetypes. Those of an object outside the drawing must not be, except during
/// its destruction.
void countUses(const CLtype& ltype, bool on);
void countUses(const CBlockXRef& xref, bool on);
inline void countUses(const CNamedItem&, bool) {}

/// An item of a table.
template <class Table, class Item>
class ItemMembership final : public Membership<Item> {
 public:
  ItemMembership(Table& table, Item& item, bool isIn)
      : Membership<Item>(item, isIn), m_table(table) {}
  ~ItemMembership() override {
    if (!this->isIn() && m_place) countUses(*this->m_item, true);
  }

 private:
  void take(CData&) override {
    m_place = m_table.getPlace(*this->m_item);
    m_table.remove(this->m_item);
    countUses(*this->m_item, false);
  }
  void put(CData&) override {
    if (!m_place) return m_table.add(this->m_item);
    m_table.restore(this->m_item, *m_place);
    countUses(*this->m_item, true);
  }

  Table& m_table;
  std::optional<typename Table::Place> m_place;
};

/// The content of a block, redefined.
class ContentExchange final : public UndoAction {
 public:
  /// Create it before the redefinition.
  explicit ContentExchange(CBlock& block);
  ~ContentExchange() override;
  void swap(CData& data) override;
  std::size_t size() const override;
  void letGo() override { m_isMade = false; }
  void tell(IUndoListener& listener) const override { listener.touched(m_block); }
  /// Call it after the redefinition: the previous content then belongs to this action.
  void adopt() { m_isMade = true; }

 private:
  CBlock& m_block;
  std::unique_ptr<CBlockMemento> m_memento;
  bool m_isMade = false;  // the entities of the memento belong to this
};

/// The block that a hatch shows, with its parameters.
class HatchExchange final : public UndoAction {
 public:
  HatchExchange(CEntHatch& hatch, CBlock* block, const HatchParameters& parameters)
      : m_hatch(hatch), m_block(block), m_parameters(parameters) {}
  void swap(CData& data) override;
  void tell(IUndoListener& listener) const override { listener.touched(m_hatch); }
  std::size_t size() const override { return sizeof *this; }

 private:
  CEntHatch& m_hatch;
  CBlock* m_block;
  HatchParameters m_parameters;
};

}  // namespace vek0::detail
