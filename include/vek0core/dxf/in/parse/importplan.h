#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "vek0core/compare/comparison.h"
#include "vek0core/export.h"
#include "zim0lang/casefold.h"
#include "zim0lang/wstring.h"

class CData;
class CFileReport;

/// What happens to a layer, linetype, text style or block of a file if the drawing has another one
/// of its name.
enum class ImportConflict : std::uint8_t {
  Base,    ///< the drawing's takes its place
  Theirs,  ///< it replaces the drawing's
  Rename,  ///< it gets a free name, and everything imported that refers to it follows
};

struct IMPORT_POLICY {
  ImportConflict onConflict = ImportConflict::Base;
  /// Begins the names of all items of the file. Layer "0", style "STANDARD" and the fixed linetypes
  /// keep theirs.
  zim::WString prefix;
};

/// An item of the file that does not simply join the drawing.
struct VEK0_API IMPORT_ITEM {
  enum class Fate : std::uint8_t { Kept, Replaces, Renamed };  // of `ImportConflict`

  ItemTable table = ItemTable::Layers;  ///< layers, linetypes, styles or blocks
  Fate fate = Fate::Kept;
  zim::WString name;     ///< in the file
  zim::WString newName;  ///< in the drawing; the same unless it is renamed
  /// What differs from the drawing's item of that name; of a block its "content". Empty if only the
  /// prefix renames the item.
  std::vector<VALUE_CHANGE> values;

  bool isConflict() const { return !values.empty(); }
};

/// What importing a file makes of items whose names the drawing has as well. Equal definitions are
/// no conflict. Nor are layers that the file does not declare, and a layer "0" or a style
/// "STANDARD" that nothing in the file uses.
class VEK0_API CImportPlan {
 public:
  /// Keeps all definitions of the drawing.
  CImportPlan() = default;
  /// `file` is what would be imported, loaded with the same options as the drawing. `reading` lists
  /// what it did not declare; may be null. Linear in the tables of both drawings and in the blocks
  /// of equal names. Throws `std::bad_alloc`.
  ///
  /// An item that refers to a renamed one is renamed too: the drawing's would look different.
  CImportPlan(const CData& data, const CData& file, const IMPORT_POLICY& policy,
              const CFileReport* reading = nullptr);

  /// Conflicts and renamed items: styles, linetypes, layers, blocks.
  const std::vector<IMPORT_ITEM>& items() const { return m_items; }
  bool hasConflicts() const;
  /// Adds an entry for each of them.
  void addTo(CFileReport& report) const;
  /// The name in the drawing of the file's item of that name.
  const zim::WString& nameFor(ItemTable table, const zim::WString& name) const;
  /// Whether the file's item of that name replaces the drawing's.
  bool replaces(ItemTable table, const zim::WString& name) const;

 private:
  class Planner;
  struct Hash {
    std::size_t operator()(const zim::WString& name) const { return zim::hashIgnoreCase(name); }
  };
  struct Equal {
    bool operator()(const zim::WString& a, const zim::WString& b) const {
      return a.EqualsIgnoreCase(b);
    }
  };
  using Index = std::unordered_map<zim::WString, std::size_t, Hash, Equal>;

  static constexpr int kTables = static_cast<int>(ItemTable::Blocks) + 1;
  void add(IMPORT_ITEM item);
  const IMPORT_ITEM* find(ItemTable table, const zim::WString& name) const;

  std::vector<IMPORT_ITEM> m_items;
  Index m_byName[kTables];
};
