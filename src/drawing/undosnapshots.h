#pragma once

// Snapshots of objects that a host changes in place. Undo exchanges the snapshot for one of the
// current state, so an edit has one of them at a time, plus the one just set until its step is
// complete.

#include <memory>
#include <optional>
#include <utility>

#include "drawing/undoaction.h"
#include "vek0core/drawing/datavariables.h"
#include "vek0core/drawing/layout.h"
#include "vek0core/drawing/undostack.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/entmemento.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/ltype.h"
#include "vek0core/tables/style.h"

class CBlockXRef;

namespace vek0::detail {

/// Detects whether the reference that contains an entity has new content since: the entity is then
/// gone, and there is nothing to undo.
class ContentMark {
 public:
  explicit ContentMark(const CEnt& ent);
  bool isGone() const;

 private:
  const CBlockXRef* m_xref;  // null in the drawing's own content
  unsigned long m_noContents;
};

/// Layer, linetype, color and traits of an entity.
class PropertiesSnapshot final : public UndoAction {
 public:
  static constexpr int kPart = 0;

  explicit PropertiesSnapshot(CEnt& ent)
      : m_ent(ent), m_mark(ent), m_memento(ent.createBaseMemento()) {}
  bool isValid() const { return m_memento != nullptr; }
  void swap(CData& data) override;
  void tell(IUndoListener& listener) const override;
  std::size_t size() const override { return sizeof *this + sizeof *m_memento; }
  const void* snapshotOf() const override { return m_mark.isGone() ? nullptr : &m_ent; }

 private:
  CEnt& m_ent;
  ContentMark m_mark;
  std::unique_ptr<CEntBaseMemento> m_memento;
};

/// The kind-specific state of an entity.
class GeometrySnapshot final : public UndoAction {
 public:
  static constexpr int kPart = 1;

  explicit GeometrySnapshot(CEnt& ent)
      : m_ent(ent), m_mark(ent), m_memento(ent.createDerivedMemento()) {}
  bool isValid() const { return m_memento != nullptr; }
  void swap(CData& data) override;
  void swapBack(CData& data) override;
  void settle() override;
  void takeBack(CData& data) override;
  void tell(IUndoListener& listener) const override;
  std::size_t size() const override { return sizeof *this + m_memento->size(); }
  const void* snapshotOf() const override;
  int part() const override { return kPart; }

 private:
  CEnt& m_ent;
  ContentMark m_mark;
  std::unique_ptr<IEntDerivedMemento> m_memento;
  // What `swapBack` needs: the memento that was set, and the parts that this displaced.
  std::unique_ptr<IEntDerivedMemento> m_set;
  std::unique_ptr<EntParts> m_displaced;
};

/// Elements of a linetype, which its memento describes and does not hold. Other items have none.
struct NoParts {};
inline NoParts makeParts(const CLayerMemento&) { return {}; }
inline NoParts makeParts(const CStyleMemento&) { return {}; }
inline CLtypeComplexDashSeq makeParts(const CLtypeMemento& memento) { return memento.makeDashes(); }

/// A table item.
template <class Item, class Memento>
class ItemSnapshot final : public UndoAction {
 public:
  static constexpr int kPart = 0;

  explicit ItemSnapshot(Item& item) : m_item(item), m_memento(item.createMemento()) {}
  bool isValid() const { return m_memento != nullptr; }
  void swap(CData& data) override;
  void swapBack(CData& data) override;
  void settle() override;
  void takeBack(CData& data) override;
  void tell(IUndoListener& listener) const override { listener.touched(m_item); }
  std::size_t size() const override;
  const void* snapshotOf() const override { return &m_item; }

 private:
  using Parts = decltype(makeParts(std::declval<const Memento&>()));

  Item& m_item;
  std::unique_ptr<Memento> m_memento;
  // What `swapBack` needs: the memento that was set, and the parts that this displaced.
  std::unique_ptr<Memento> m_set;
  std::optional<Parts> m_displaced;
};

/// The part of a block that its memento does not contain: name, flags, host data.
class BlockHeadSnapshot final : public UndoAction {
 public:
  static constexpr int kPart = 0;

  explicit BlockHeadSnapshot(CBlock& block);
  bool isValid() const { return true; }
  void swap(CData& data) override;
  void takeBack(CData& data) override;
  void tell(IUndoListener& listener) const override { listener.touched(m_block); }
  std::size_t size() const override;
  const void* snapshotOf() const override { return &m_block; }

 private:
  CBlockXRef* xref() const;
  void exchangeHead();

  CBlock& m_block;
  zim::WString m_name, m_path;
  zim::WString m_spareName, m_sparePath;
  long m_flags;
  int m_userType, m_userData;
};

/// The variables, current items included.
class VarsSnapshot final : public UndoAction {
 public:
  static constexpr int kPart = 0;

  explicit VarsSnapshot(CDataVariables& vars) : m_vars(vars), m_kept(vars) {}
  bool isValid() const { return true; }
  void swap(CData& data) override;
  void tell(IUndoListener& listener) const override { listener.touchedVars(); }
  std::size_t size() const override { return sizeof *this; }
  const void* snapshotOf() const override { return &m_vars; }

 private:
  CDataVariables& m_vars;
  CDataVariables m_kept;
};

/// The plot settings and viewports of a layout.
class LayoutSnapshot final : public UndoAction {
 public:
  static constexpr int kPart = 0;

  explicit LayoutSnapshot(CLayout& layout)
      : m_layout(layout), m_plot(layout.getPlot()), m_viewports(layout.getViewports()) {}
  bool isValid() const { return true; }
  void swap(CData& data) override;
  void tell(IUndoListener& listener) const override { listener.touched(m_layout); }
  std::size_t size() const override;
  const void* snapshotOf() const override { return &m_layout; }

 private:
  CLayout& m_layout;
  PLOT_SETTINGS m_plot;
  std::vector<VIEWPORT> m_viewports;
};

}  // namespace vek0::detail
