#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "vek0core/export.h"
#include "zim0lang/wstring.h"

class CBlock;
class CData;
class CFileReport;
class CLayer;
class CLtype;
class CStyle;

/// Names that the DXF version we write allows, for the items of one drawing.
///
/// A name there has at most 31 characters of A-Z, a-z, 0-9, '_', '-' and '$' and
/// may begin with '*'. Items whose own name is valid keep it. Items that depend on
/// an external reference are named "reference|item": both parts are made valid and
/// the '|' stays, since readers split the name there.
///
/// The names are computed at construction, in time linear in the tables on
/// average, and the drawing is not changed; a table edited afterwards needs a new
/// converter.
class VEK0_API CNameAcadConverter {
 public:
  /// The classic form: a candidate is compared with the drawing's own names only,
  /// so two items whose corrected names are equal both get the same name, and
  /// names that differ only in case stay as they are. Readers see one item then;
  /// `unique` below is the cure.
  explicit CNameAcadConverter(const CData& data);
  /// With `unique`, no two items of a table have the same name, ignoring case; the first item in
  /// table order keeps it. What was changed or coincides is added to `report` (may be null) under
  /// the codes listed at `SaveDXF`.
  CNameAcadConverter(const CData& data, bool unique, CFileReport* report);
  CNameAcadConverter(const CNameAcadConverter&) = default;
  ~CNameAcadConverter() = default;

  /// The converted name when the item has one, else its own full name. Null gives
  /// the name of the item that stands in for a missing one: "0", "CONTINUOUS",
  /// "STANDARD", and nothing for a block.
  zim::WString GetName(const CLayer* layer) const;
  zim::WString GetName(const CLtype* ltype) const;
  zim::WString GetName(const CStyle* style) const;
  zim::WString GetName(const CBlock* block) const;

 protected:
  /// Fills the maps: layers, linetypes, styles, blocks; the last where the first name that
  /// depends on a reference needs them.
  void Convert();
  void ConvertLayers();
  void ConvertLtypes();
  void ConvertStyles();
  void ConvertBlocks();  ///< external references too: they share the names of blocks

  /// Writes the name with each invalid character replaced by '_' and cut to 30
  /// characters when it has 32 or more to `corrected`; true when nothing had to be
  /// changed. The first character may also be '*'. An empty name is valid here.
  static bool IsValidName(const zim::WString& name, zim::WString& corrected);
  /// `base` followed by the decimal of `counter`, which is then stepped. A result
  /// of more than 31 characters cuts `base`, for good, to 30 less the digits.
  static zim::WString GenerateValidName(zim::WString& base, int& counter);
  static bool IsValidChar(zim::Char unit);
  /// What `IsValidName` answers.
  static bool isValid(std::u16string_view name);

 private:
  template <class Item>
  using Names = std::unordered_map<const Item*, zim::WString>;
  class Table;

  /// A name to convert: that of an item, in two parts when it depends on a reference.
  struct Entry {
    std::u16string_view name() const { return own.view().substr(nameAt); }

    zim::WString own;
    zim::WString prefix;  // the reference's converted name and '|', or nothing
    std::size_t nameAt;   // of what stands behind the '|' in `own`; 0 when there is none
  };

  Entry entry(const zim::WString& own, bool dependent);
  template <class Item>
  void convertTable(const std::vector<const Item*>& items, const std::vector<Entry>& entries,
                    Names<Item>& names) const;
  void report(const char* code, const zim::WString& sample) const;

  const CData& m_data;
  Names<CLayer> m_layers;
  Names<CLtype> m_ltypes;
  Names<CStyle> m_styles;
  Names<CBlock> m_blocks;
  bool m_hasBlocks = false;
  bool m_unique = false;
  CFileReport* m_report = nullptr;
};
