#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "dxf/in/convert/dimstyles.h"
#include "dxf/in/parse/sectioninput.h"
#include "vek0core/dxf/in/filedxfioptions.h"

class CEnt;

namespace vek0::detail {

/// The sort tables of a file, which state the drawing order of the entities of model space, sheets
/// and blocks: ascending by sort handle, where an entity that no table lists has its own handle.
class DrawOrder {
 public:
  /// All are borrowed.
  DrawOrder(SectionInput& in, const DimStyles& names, const CFileDXFIOptions& options)
      : m_in(in), m_names(names), m_options(options) {}

  /// Records which handle the entity has in the file.
  void note(const CEnt& ent, vek0::Handle handle);
  /// Reads the SORTENTSTABLE object at whose group 0 the lexer is positioned.
  void readTable();
  /// Sorts the entities. Call it when all blocks have been created.
  void settle();

 private:
  using Key = std::uint64_t;
  using Entry = std::pair<Key, Key>;  // handle and sort handle of an entity
  // All tables of a block.
  struct Table {
    std::vector<Entry> entries;
    long line = 0;  // of the first
  };

  bool findBlock(Key owner, long line, CBlock*& block) const;
  void sortEntries(Table& table) const;
  bool sort(std::vector<CEnt*>& entities, const Table& table) const;
  Key handleOf(const CEnt& ent) const;

  SectionInput& m_in;
  const DimStyles& m_names;
  const CFileDXFIOptions& m_options;
  std::map<Key, Table> m_tables;  // by the handles of their block records
  // Entities whose handle differs from that in the file, also those that are imported. Those that
  // were deleted may be among them.
  std::vector<std::pair<const CEnt*, Key>> m_handles;
};

}  // namespace vek0::detail
