#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "vek0core/entities/entvisitor.h"
#include "vek0core/tables/handle.h"

namespace vek0::detail {

class SaveFilter;

/// Handles of one file: what has a handle keeps it, unless an earlier thing of the
/// file has the same; everything else gets a free number.
///
/// Works in two passes over what is written: `note` and `noteEnd` for everything,
/// then `settle`, then `take` and `takeEnd` in the order of writing. Numbers are
/// given so that saving what was read back gives the same handles again: those for
/// things that are kept in a drawing come first, those for sequence ends, which a
/// reader forgets, follow behind them.
///
/// Handles that are written with the same digits are the same.
class SaveHandles {
 public:
  void note(Handle handle);
  void noteEnd() { ++m_ends; }
  void settle();

  /// The handle to write for a thing that carries `handle`.
  Handle take(Handle handle);
  /// The handle to write for the end of a sequence.
  Handle takeEnd() { return fresh(m_nextEnd); }

  /// A number above every handle of the file, or a free one if there is none above; valid from
  /// `settle` on.
  Handle seed() const { return static_cast<Handle>(m_seed); }

 private:
  using Key = std::uint64_t;

  // Walks upwards over the numbers that nothing has.
  struct Free {
    Key next = 1;
    std::size_t taken = 0;  // index of the first number taken that is not below `next`
  };

  void findRepeated();
  Handle fresh(Free& place);

  std::vector<Key> m_taken;                  // all noted but 0; sorted, each once, from `settle` on
  std::unordered_map<Key, bool> m_repeated;  // noted more than once: whether one was written
  std::size_t m_without = 0;                 // things that need a number
  std::size_t m_ends = 0;
  Free m_nextThing, m_nextEnd;
  Key m_seed = 1;
};

/// Notes the handles of the entities that it visits, those of vertices and
/// attributes included, as `CFileDXFOVisitor` will ask for them.
class HandleCollector final : public IEntFooVisitor {
 public:
  /// All but the flags, those of `polylineForm`, are borrowed.
  HandleCollector(SaveHandles& handles, const SaveFilter& filter, bool flatten, bool exchange)
      : m_handles(handles), m_filter(filter), m_flatten(flatten), m_exchange(exchange) {}

  using IEntFooVisitor::visit;
  void visit(CEntPnt& ent) override;
  void visit(CEntLine& ent) override;
  void visit(CEntCircle& ent) override;
  void visit(CEntArc& ent) override;
  void visit(CEntPolyline& ent) override;
  void visit(CEntText& ent) override;
  void visit(CEntAttdef& ent) override;
  void visit(CEntInsert& ent) override;
  void visit(CEntFixedInsert& ent) override;
  void visit(CEntInsertXRef& ent) override;
  void visit(CEntHatch& ent) override;
  void visit(CEnt3DFace& ent) override;

 private:
  template <class Ent>
  void note(const Ent& ent);
  void noteInsert(const CEntInsertBase& ent);

  SaveHandles& m_handles;
  const SaveFilter& m_filter;
  bool m_flatten;
  bool m_exchange;
};

}  // namespace vek0::detail
