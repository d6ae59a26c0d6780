#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "dxf/keep/editcontext.h"
#include "dxf/keep/itemusage.h"
#include "dxf/keep/spacemap.h"

class CBlock;
class CLayer;
class CLtype;
class CStyle;

namespace vek0::detail {

/// Compares the items of two drawings and plans the edits of tables and blocks.
class ItemEdits {
 public:
  /// Reads the tables of the source, which is borrowed.
  explicit ItemEdits(EditContext& context);

  /// Plans the changes, additions and removals. What a record that stays names or points to is not
  /// removed.
  void plan();
  /// Makes sure that the file declares the items that a new entity uses, or those that a changed
  /// one did not use `before`.
  void need(const CEnt& ent, const CEnt* before = nullptr);
  /// Removes the block as soon as nothing that stays names it.
  void drop(const CBlock& block);
  /// Adds a copy of a dimension's block, whose entities have these records, mapped. Returns its
  /// name; an empty text if there is no such block in the file.
  std::string copyBlock(const CBlock& block, const std::vector<std::size_t>& contents,
                        const SpaceMap& map);
  /// The record of that name in a table, which has an upper-case name, or of a block;
  /// `SourceIndex::kNone` if there is none.
  std::size_t find(const std::string& table, std::string_view name) const;
  std::size_t findBlock(std::string_view name) const;
  /// The end of a section; `kNone` without it.
  std::size_t endOf(SourceSection section) const;
  /// Writes the numbers of records into the tables that have gained or lost some, and adds the
  /// tables and sections that the file did not have. The last step.
  void finish();

 private:
  struct Table {
    std::size_t begin = SourceIndex::kNone, end = SourceIndex::kNone;
    std::unordered_map<std::string, std::size_t> records;
    long change = 0;
    std::vector<SourceRecord> added = {};
  };

  template <class Item>
  SourceRecord recordOf(RecordWriter& writer, const Item* item);
  SourceRecord recordOf(RecordWriter& writer, const CLtype* ltype);
  Handle handleOf(const CStyle& style);
  template <class Item>
  void planTable(const std::string& table, const std::vector<Item>& before,
                 const std::vector<Item>& after);
  template <class Item>
  void needItem(const std::string& table, const Item& item);
  std::string keyOfText(std::string_view text) const;
  std::string currentKey(std::string_view table, std::string_view name) const;
  std::size_t findKey(const std::string& table, const std::string& key) const;
  void add(const std::string& table, SourceRecord record);
  void addTables();
  std::size_t placeOf(SourceSection section) const;
  void planBlocks();
  void addBlock(const CBlock& block);
  void addBlockRecord(const std::string& name, Handle handle);
  void patchXRef(const CBlock& before, const CBlock& after);
  static void becomeBlock(SourceRecord& record);
  void removeUnused();
  void leave(const std::string& table, std::size_t entry);
  std::size_t endOfBlock(std::size_t entry) const;

  EditContext& m_on;
  std::unordered_map<std::string, Table> m_tables;
  std::unordered_map<std::string, std::size_t> m_blocks;
  std::unordered_map<std::string, Handle> m_newStyles;  // by key
  std::vector<SourceRecord> m_newBlocks;
  std::size_t m_lastCopy = 0;  // the number of a dimension's block
  std::vector<GoneItem> m_gone;
};

}  // namespace vek0::detail
