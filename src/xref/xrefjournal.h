#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "vek0core/entities/blocks/blockxref.h"

namespace vek0::detail {

/// The changes that resolving makes to a drawing, to be reverted if memory runs out before it is
/// complete. Reverting needs no memory.
class XRefJournal {
 public:
  XRefJournal() = default;
  XRefJournal(const XRefJournal&) = delete;
  XRefJournal& operator=(const XRefJournal&) = delete;
  /// Reverts everything unless `done` was called.
  ~XRefJournal();

  /// Keeps all changes and deletes what they replaced.
  void done() { m_changes.clear(); }

  /// Adds an object from a factory to a table and returns it.
  template <class Table, class Item>
  Item* add(Table& table, Item* made) {
    if (made == nullptr) throw std::bad_alloc();
    std::unique_ptr<Item> item(made);
    const auto takeOut = [&table, made] {
      table.remove(made);
      delete made;
    };
    change(takeOut, [&] { table.add(made); });
    return item.release();
  }

  /// Before changes of a reference's path, flags, base points, file and status.
  void keep(CBlockXRef& xref);
  void keep(CStyle& style);
  void keep(CLayer& layer);
  void define(CLtype& ltype, const zim::WString& desc, CLtypeComplexDashSeq dashes);
  void setContent(CBlockXRef& xref, CBlockXRef::Content content);
  /// Puts the reference's retired items back into its tables.
  void reinstate(CBlockXRef& xref);

 private:
  /// Throws only before anything has changed.
  template <class Back, class Make>
  void change(const Back& back, const Make& make) {
    std::function<void()> kept(back);
    m_changes.emplace_back();
    make();
    m_changes.back() = std::move(kept);
  }

  std::vector<std::function<void()>> m_changes;  // empty where one was not made
};

}  // namespace vek0::detail
