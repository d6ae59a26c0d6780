#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <vector>

#include "vek0core/drawing/pointerset.h"
#include "vek0core/export.h"
#include "zim0lang/wstring.h"

class CBlock;
class CBlockXRef;
class CData;
class CEnt;
class CEntHatch;
class CLayer;
class CLtype;
class CStyle;
class PNT_3D;
struct HATCH_TYPE;

namespace vek0::detail {
class UndoAction;
}

/// What was done to one drawing, in named steps that can be undone and done again.
///
/// Two kinds of edits. Changing something in place: `keep` it before, then change it as
/// you like. Adding, removing, redefining: the stack does it. Edits between `begin` and
/// `commit` are one step; an edit outside is a step of its own without a name. Undoing
/// brings everything back to where it was, the order of drawing included.
///
/// Whatever is out of the drawing and may come back belongs to the stack: what it removed,
/// and what it added while that is undone. It is deleted when no step can bring it back any
/// more. Items that the drawing still uses cannot be removed, so nothing that a step names
/// is ever deleted before the step.
///
/// While the stack has steps, entities, blocks and table items come and go through it
/// alone, and everything that changes is kept before. The drawing must outlive the stack.
///
/// An edit costs what the edit itself costs and one snapshot of what it touches, whatever
/// the drawing and the stack hold; see `CBlock::restore` for entities of blocks. Every edit
/// answers whether it was made; false means that nothing has changed, and that what was to
/// be added still is the caller's. That goes for memory that runs out too.
class VEK0_API CUndoStack {
 public:
  static constexpr std::size_t kDefaultLimit = std::size_t{64} << 20;  ///< bytes

  /// Of a drawing, with the bytes that it may take.
  explicit CUndoStack(CData& data, std::size_t limit = kDefaultLimit);
  CUndoStack(const CUndoStack&) = delete;
  CUndoStack& operator=(const CUndoStack&) = delete;
  /// Rolls an open step back and deletes what it owns.
  ~CUndoStack();

  // --- Steps

  /// Opens a step. Throws `std::bad_alloc` with nothing changed. Within an open one it only
  /// counts, and the outermost name holds.
  void begin(const zim::WString& name);
  /// Closes the step; the outermost call completes it, forgets what was undone, and drops
  /// the oldest steps beyond the limit. A step without edits is none: then, and for inner
  /// calls, the answer is false.
  bool commit();
  /// Takes back what the open step has done, inner ones included, and forgets it. Needs memory
  /// only to make vertices, attributes or lines of hatches again that the host has deleted:
  /// throws `std::bad_alloc` when there is none, and the step stays open with what is left of it.
  void rollback();
  bool isOpen() const { return m_depth != 0; }

  /// Undoes the last step, or does the last undone one again. False when there is none, a
  /// step is open, or memory ran out; nothing has changed then.
  bool undo();
  bool redo();  ///< see `undo`
  /// Joins the last step to the one before it, whose name holds: moving by mouse is many
  /// edits and one step. False with less than two steps to undo, or with one open.
  bool merge();
  /// Forgets every step and deletes what they owned; the open one is rolled back, as far as
  /// memory allows.
  void clear();

  std::size_t getNoUndo() const { return m_done.size(); }
  std::size_t getNoRedo() const { return m_undone.size(); }
  /// Name of the step that `undo` or `redo` would take; empty when there is none.
  const zim::WString& getUndoName() const;
  const zim::WString& getRedoName() const;  ///< see `getUndoName`

  /// Bytes that the steps take, what they own included; an estimate.
  std::size_t size() const { return m_bytes; }
  std::size_t getLimit() const { return m_limit; }
  /// The last step is kept whatever it takes, and so are steps that were undone.
  void setLimit(std::size_t bytes);

  // --- Before a change in place

  /// Before any change of the entity; in a drawing, in a block, or in neither.
  bool keep(CEnt& ent);
  /// Before a change of layer, linetype or color alone.
  bool keepProperties(CEnt& ent);
  /// Before a change of what is peculiar to the kind alone.
  bool keepGeometry(CEnt& ent);
  bool keep(CLayer& layer);
  bool keep(CLtype& ltype);
  bool keep(CStyle& style);
  /// Before a change of a block's name, flags or words of the host, or of a reference's
  /// path; for base point and content there are `redefine` and the edits of single entities.
  bool keep(CBlock& block);
  /// Before a change of variables or current items.
  bool keepVars();

  // --- Adding, removing, redefining

  /// Appends the entity to model space. A hatch brings the block along that was made for
  /// it and put into the table.
  bool add(CEnt* ent);
  /// Takes the entity out of model space, or out of the block that it is in. A hatch takes
  /// its block along unless something else shows it. False for what a loaded reference shows,
  /// which is read anew and belongs to another drawing.
  bool remove(CEnt* ent);
  /// Adds the entity to a block as `CBlock::add` does. False when the block would come to
  /// insert itself, or is what a loaded reference shows.
  bool add(CBlock& block, CEnt* ent);

  /// Adds the item to its table, or takes it out. What is used, by the counts or as current
  /// item, is not taken out, nor are the fixed items.
  bool add(CLayer* layer);
  bool add(CLtype* ltype);     ///< likewise
  bool add(CStyle* style);     ///< likewise
  bool add(CBlock* block);     ///< likewise
  bool remove(CLayer* layer);  ///< likewise
  bool remove(CLtype* ltype);  ///< likewise
  bool remove(CStyle* style);  ///< likewise
  bool remove(CBlock* block);  ///< likewise
  /// Likewise; what another reference shows, or whose dependent items are used, is not
  /// taken out. Linear in the items.
  bool remove(CBlockXRef* xref);
  bool add(CBlockXRef* xref);  ///< likewise

  /// `CBlockTable::Redefine` of a block in the table; the old entities are the stack's.
  bool redefine(CBlock& block, const PNT_3D& base, long flags, const std::list<CEnt*>& newEntities);
  /// `CEntHatch::redefine`; the old block is the stack's and comes back as it was.
  bool redefine(CEntHatch& hatch, double scale, double rotate, const HATCH_TYPE& type);

 private:
  using Action = vek0::detail::UndoAction;
  struct Step {
    explicit Step(const zim::WString& given);
    zim::WString name;
    std::vector<std::unique_ptr<Action>> actions;
    std::size_t bytes = 0;
    unsigned long id = 0;
  };
  class AutoStep;
  using Targets = vek0::detail::PointerSet[2];  // by part, see UndoAction

  bool record(std::unique_ptr<Action> action);
  bool perform(std::unique_ptr<Action> action);
  template <class Table, class Item>
  bool addItem(Table& table, Item* item);
  template <class Table, class Item>
  bool removeItem(Table& table, Item* item);
  template <class... Snapshots, class Target>
  bool keepOnce(Target& target);
  template <class Snapshot, class Target>
  std::unique_ptr<Action> makeOnce(Target& target) const;
  template <class Edit>
  bool attempt(const Edit& edit);
  template <class Made, class... Args>
  static std::unique_ptr<Made> newAction(Args&&... args);
  void unwind(std::size_t count);
  void forget(std::size_t count);
  bool trySwap(Step& step, bool forward);
  void swapAll(Step& step, bool forward);
  std::vector<std::unique_ptr<Action>>& actions() { return m_open.front().actions; }
  void noteSnapshots(const Step& step);
  static std::size_t bytesOf(const Action& action);
  void measure(Step& step);
  void trim();
  void dropOldest();
  void forgetUndone();
  bool bringBlock(CEnt& ent);
  bool takeBlock(CBlock* block);
  bool exchangeBlocks(CBlock* old, std::unique_ptr<CBlock>& fresh);

  CData& m_data;
  std::size_t m_limit;
  std::size_t m_bytes = 0;
  // Steps go from list to list, so that only `begin` allocates one.
  std::list<Step> m_done;    // the last one is undone first
  std::list<Step> m_undone;  // the last one is done again first
  std::list<Step> m_open;    // none, or one
  int m_depth = 0;
  // What the open step has a snapshot of: the first one is the one that counts.
  Targets m_kept;
  Targets m_merged;  // likewise, of the step of that number, for `merge`
  unsigned long m_mergedId = 0;
  unsigned long m_lastId = 0;
  zim::WString m_noName;
};
