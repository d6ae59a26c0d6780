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
class CLayout;
class CLtype;
class CNamedItem;
class CStyle;
class PNT_3D;
struct HATCH_TYPE;

namespace vek0::detail {
class UndoAction;
}

/// Learns what the steps of an undo stack touch when they are completed, undone and redone; a step
/// that is rolled back leaves nothing changed. Calls come after the whole step, once or several
/// times for each object, whether or not its state differs. Must not throw: the step has happened.
class VEK0_API IUndoListener {
 public:
  virtual ~IUndoListener() = default;
  /// The entity was changed, added, removed or put back, in model space, a block or a layout
  /// (`CEnt::isHeld`, `CEnt::getOwnerBlock`). If it is out of the drawing, the stack keeps it.
  virtual void touched(CEnt& ent) = 0;
  /// The block has other content, or another name, base point or path.
  virtual void touched(CBlock& block) = 0;
  /// The layer, linetype or text style was changed, added, removed or put back.
  virtual void touched(CNamedItem& item) = 0;
  virtual void touched(CLayout& layout) = 0;
  virtual void touchedVars() = 0;
};

/// The edits of one drawing, in named steps that can be undone and redone.
///
/// There are two kinds of edits. To change something in place, call `keep` first and then change it
/// freely. Adding, removing and redefining are done through the stack. Edits between `begin` and
/// `commit` form one step; an edit outside is an unnamed step by itself. Undoing restores
/// everything, including the drawing order.
///
/// The stack owns everything outside the drawing that may come back: objects that it removed, and
/// objects that it added while that step is undone. They are deleted when no step can restore them
/// any more. Items that the drawing still uses cannot be removed, so nothing that a step refers to
/// is deleted before the step.
///
/// While the stack has steps, add and remove entities, blocks and table items only through it, and
/// `keep` everything before changing it. The drawing must outlive the stack.
///
/// An edit costs the edit itself and one snapshot of what it touches, independent of the size of
/// the drawing and the stack; see `CBlock::restore` for entities of blocks. Every edit returns
/// whether it was made; false means that nothing has changed, and that an object to be added still
/// belongs to the caller. The same applies when memory runs out.
class VEK0_API CUndoStack {
 public:
  static constexpr std::size_t kDefaultLimit = std::size_t{64} << 20;  ///< bytes

  /// The stack of a drawing, with its memory limit in bytes.
  explicit CUndoStack(CData& data, std::size_t limit = kDefaultLimit);
  CUndoStack(const CUndoStack&) = delete;
  CUndoStack& operator=(const CUndoStack&) = delete;
  /// Rolls an open step back and deletes what it owns.
  ~CUndoStack();

  // --- Steps

  /// Opens a step. Throws `std::bad_alloc` with nothing changed. Within an open step it only
  /// increments the nesting level, and the outermost name applies.
  void begin(const zim::WString& name);
  /// Closes the step; the outermost call completes it, discards the undone steps, and drops the
  /// oldest steps beyond the limit. A step without edits is not recorded: then, and for inner
  /// calls, it returns false.
  bool commit();
  /// Reverts the open step, inner ones included, and discards it. Needs memory only to recreate
  /// vertices, attributes or hatch lines that the host has deleted: throws `std::bad_alloc` if it
  /// runs out, and the step stays open with the remaining edits.
  void rollback();
  bool isOpen() const { return m_depth != 0; }

  /// Undoes the last step, or redoes the last undone one. Returns false, with nothing changed, if
  /// there is none, a step is open, or memory ran out.
  bool undo();
  bool redo();  ///< see `undo`
  /// Merges the last step into the previous one, which keeps its name: dragging with the mouse is
  /// many edits but one step. False with fewer than two steps to undo, or with an open step.
  bool merge();
  /// Discards every step and deletes what they owned; the open one is rolled back, as far as memory
  /// allows.
  void clear();

  std::size_t getNoUndo() const { return m_done.size(); }
  std::size_t getNoRedo() const { return m_undone.size(); }
  /// Name of the step that `undo` or `redo` would apply to; empty if there is none.
  const zim::WString& getUndoName() const;
  const zim::WString& getRedoName() const;  ///< see `getUndoName`

  /// Tells the listener (borrowed; null for none) from now on what steps touch.
  void setListener(IUndoListener* listener) { m_listener = listener; }

  /// Estimated memory of the steps in bytes, including what they own.
  std::size_t size() const { return m_bytes; }
  std::size_t getLimit() const { return m_limit; }
  /// The last step is kept whatever its size, and so are undone steps.
  void setLimit(std::size_t bytes);

  // --- Before a change in place

  /// Before any change of the entity, whether in a drawing, in a block, or in neither.
  bool keep(CEnt& ent);
  /// Before a change of only layer, linetype or color.
  bool keepProperties(CEnt& ent);
  /// Before a change of only the kind-specific state.
  bool keepGeometry(CEnt& ent);
  bool keep(CLayer& layer);
  bool keep(CLtype& ltype);
  bool keep(CStyle& style);
  /// Before a change of a block's name, flags or host data, or of a reference's path; for base
  /// point and content, use `redefine` and the edits of single entities.
  bool keep(CBlock& block);
  /// Before a change of a layout's plot settings or viewports; its entities are those of its block.
  bool keep(CLayout& layout);
  /// Before a change of variables or current items.
  bool keepVars();

  // --- Adding, removing, redefining

  /// Appends the entity to model space. A hatch brings along the block that was created for it and
  /// added to the table.
  bool add(CEnt* ent);
  /// Removes the entity from model space or from its block. A hatch's block is removed with it
  /// unless something else shows it. False for content of a loaded reference, which belongs to
  /// another drawing and is reloaded from its file.
  bool remove(CEnt* ent);
  /// Adds the entity to a block as `CBlock::add` does. False if the block would insert itself,
  /// directly or indirectly, or belongs to a loaded reference.
  bool add(CBlock& block, CEnt* ent);
  /// Appends a copy of the entity to what holds it, model space or a block. Saving the drawing as
  /// its source (`CDXFSource`) copies the record of the original along with what the drawing does
  /// not hold of it. Returns the copy, which belongs to the drawing, or null.
  CEnt* copy(const CEnt& ent);

  /// Adds the item to its table, or removes it. Items in use, by their counts or as current item,
  /// and the fixed items cannot be removed.
  bool add(CLayer* layer);
  bool add(CLtype* ltype);     ///< likewise
  bool add(CStyle* style);     ///< likewise
  bool add(CBlock* block);     ///< likewise
  bool remove(CLayer* layer);  ///< likewise
  bool remove(CLtype* ltype);  ///< likewise
  bool remove(CStyle* style);  ///< likewise
  bool remove(CBlock* block);  ///< likewise
  /// Likewise; a reference that another one shows, or whose dependent items are used, cannot be
  /// removed. Linear in the items.
  bool remove(CBlockXRef* xref);
  bool add(CBlockXRef* xref);  ///< likewise

  /// `CBlockTable::Redefine` of a block in the table; the stack owns the old entities.
  bool redefine(CBlock& block, const PNT_3D& base, long flags, const std::list<CEnt*>& newEntities);
  /// `CEntHatch::redefine`; the stack owns the old block and restores it unchanged.
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
  void tell(const Step& step) const;
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
  IUndoListener* m_listener = nullptr;
  std::size_t m_limit;
  std::size_t m_bytes = 0;
  // Steps are spliced between lists, so that only `begin` allocates one.
  std::list<Step> m_done;    // the last one is undone first
  std::list<Step> m_undone;  // the last one is redone first
  std::list<Step> m_open;    // at most one
  int m_depth = 0;
  // What the open step already has a snapshot of: only the first one is taken.
  Targets m_kept;
  Targets m_merged;  // the same for the step of that number, for `merge`
  unsigned long m_mergedId = 0;
  unsigned long m_lastId = 0;
  zim::WString m_noName;
};
