#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "compare/heldents.h"
#include "dxf/keep/editcontext.h"
#include "dxf/keep/itemedits.h"
#include "dxf/keep/spacemap.h"

namespace vek0::detail {

/// Compares the entities of two drawings, plans the edits of their records, and makes them.
class EntityEdits {
 public:
  /// Both are borrowed.
  EntityEdits(EditContext& context, ItemEdits& items);

  /// Plans what is removed and changed.
  void plan();
  /// Removes what belongs to the content of blocks that went. Call it when the items are planned.
  void removeOwnedByGone();
  /// Adds the records of new entities. Call it when the items are planned.
  void addNew();
  /// How many handles `rewrite` may need at most, for vertices that an entity did not have
  /// and for the pieces of records.
  Handle reserved() const { return m_reserved; }
  /// `SourceEdits::Rewrite`.
  std::vector<SourceRecord> rewrite(std::size_t entry, std::vector<SourceRecord> records);

 private:
  struct Action {
    const CEnt* before = nullptr;
    const CEnt* after = nullptr;
    PNT_3D base{0, 0, 0};              // of the block, which entities are relative to
    std::optional<SpaceMap> map;       // for the content of the block of a dimension
    std::string block;                 // the dimension's own copy of a shared block, if any
    std::vector<SourceRecord> pieces;  // what a record became that cannot be as edited
  };
  // Where new entities of a container come.
  struct Target {
    std::size_t before = SourceIndex::kNone;
    Handle owner = 0;
    bool isOnPaper = false;
    PNT_3D base{0, 0, 0};  // of the block in the source
  };

  void planEntity(const HeldEnt& before, std::size_t entry);
  bool isOfGoneBlock(const Container& container) const;
  void leaveBlockOf(const CEnt& ent);
  void remove(std::size_t entry);
  void removeOwned(Handle owner);
  void planBlockOf(Action& action, bool isCopy);
  void planCopy(Action& action, const CBlock& block, const SpaceMap& map);
  std::vector<SourceRecord> copyOf(const HeldEnt& held);
  void addClip(const CEnt& ent, SourceRecord& record);
  const HeldEnt* originOf(const CEnt& ent) const;
  void planPieces(std::size_t entry, Action& action);
  std::vector<SourceRecord> writeWhole(const CEnt& ent);
  void dropPrivateBlocks();
  bool patchShape(const Action& action, std::vector<SourceRecord>& records);
  bool reword(const Action& action, SourceRecord& record) const;
  bool followMap(const Action& action, std::vector<SourceRecord>& records);
  std::vector<SourceRecord> replacement(const Action& action,
                                        const std::vector<SourceRecord>& records);
  Target targetOf(const Container& container);
  Target findTarget(const Container& container);
  bool isNewBlock(const Container& container) const;
  std::size_t endOfEntities();
  std::size_t endOfBlock(std::size_t begin) const;

  EditContext& m_on;
  ItemEdits& m_items;
  HeldEnts m_before, m_after;
  std::unordered_map<std::size_t, Action> m_actions;
  std::vector<std::size_t> m_ofGone;  // the content of blocks that the drawing no longer has
  Handle m_reserved = 0;
  std::unordered_map<const CBlock*, Target> m_targets;
  std::unordered_map<Handle, std::vector<std::size_t>> m_owned;  // objects by owner
  std::unordered_map<const CBlock*, std::vector<std::size_t>> m_contents;
  std::unordered_map<const CBlock*, std::size_t> m_users;  // inserts of the pristine drawing
  // Copies of the blocks of dimensions, by fingerprints of their maps.
  std::unordered_map<const CBlock*, std::unordered_map<std::uint64_t, std::string>> m_copies;
  std::unordered_set<const CBlock*> m_left;  // that an insert was removed of
};

}  // namespace vek0::detail
