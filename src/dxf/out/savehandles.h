#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "vek0core/entities/entvisitor.h"
#include "vek0core/tables/handle.h"

namespace vek0::detail {

class SaveFilter;

/// Assigns the handles of one file: an object keeps its handle unless an earlier one in the file
/// has the same; vertices also give way to later objects of other kinds. All others get free
/// numbers.
///
/// Works in two passes over the output: `note`, `noteVertex` and `noteEnd` for everything, then
/// `settle`, then `take`, `takeVertex` and `takeEnd` in the order of writing. Numbers are assigned
/// so that saving after reading back yields the same handles: those for objects stored in a drawing
/// come first, followed by those for sequence ends, which a reader discards.
///
/// Handles written with the same digits count as equal.
class SaveHandles {
 public:
  void note(Handle handle) { note(handle, m_taken); }
  void noteVertex(Handle handle) { note(handle, m_ofVertices); }
  void noteEnd() { ++m_ends; }
  void settle();

  /// The handle to write for an object with `handle`.
  Handle take(Handle handle) { return take(handle, Owner::Other); }
  Handle takeVertex(Handle handle) { return take(handle, Owner::Vertex); }
  /// The handle to write for the end of a sequence.
  Handle takeEnd() { return fresh(m_nextEnd); }

  /// A number above every handle of the file, or any free one if there is none above; valid after
  /// `settle`.
  Handle seed() const { return static_cast<Handle>(m_seed); }

 private:
  using Key = std::uint64_t;

  // Iterates upward over unused numbers.
  struct Free {
    Key next = 1;
    std::size_t taken = 0;  // index of the first used number not below `next`
  };

  // What a repeated handle will be given to. Vertices get only handles that nothing else has.
  enum class Owner : std::uint8_t { Vertex, Other, None };

  void note(Handle handle, std::vector<Key>& noted);
  void findRepeated();
  void findRepeated(const std::vector<Key>& sorted, Owner owner);
  Handle take(Handle handle, Owner owner);
  Handle fresh(Free& place);

  std::vector<Key> m_taken;       // all noted handles except 0; sorted and unique after `settle`
  std::vector<Key> m_ofVertices;  // those of vertices; empty after `settle`
  std::unordered_map<Key, Owner> m_repeated;  // handles noted more than once
  std::size_t m_without = 0;                  // number of objects that need a handle
  std::size_t m_ends = 0;
  Free m_nextThing, m_nextEnd;
  Key m_seed = 1;
};

/// Notes the handles of the entities that it visits, those of vertices and attributes included, in
/// the way `CFileDXFOVisitor` requests them.
class HandleCollector : public IEntFooVisitor {
 public:
  /// All arguments except the flags (those of `polylineForm`) are borrowed.
  HandleCollector(SaveHandles& handles, const SaveFilter& filter, bool flatten, bool exchange)
      : m_handles(handles), m_filter(filter), m_flatten(flatten), m_exchange(exchange) {}
  virtual ~HandleCollector() = default;

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

 protected:
  void noteInsert(const CEntInsertBase& ent);

 private:
  template <class Ent>
  void note(const Ent& ent);

  SaveHandles& m_handles;
  const SaveFilter& m_filter;
  bool m_flatten;
  bool m_exchange;
};

}  // namespace vek0::detail
