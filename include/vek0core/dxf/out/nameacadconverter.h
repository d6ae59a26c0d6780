#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/files/reportcode.h"
#include "zim0lang/wstring.h"

class CBlock;
class CData;
class CFileReport;
class CLayer;
class CLtype;
class CStyle;

/// Converts the names of one drawing's items to names that the written DXF version allows.
///
/// Such a name has at most 31 characters from A-Z, a-z, 0-9, '_', '-' and '$' and may begin with
/// '*'. Items with a valid name keep it. Items that depend on an external reference are named
/// "reference|item": both parts are made valid and the '|' is kept, since readers split the name
/// there.
///
/// The names are computed at construction, in linear time on average; the drawing is not changed.
/// After an edit of a table, create a new converter.
class VEK0_API CNameAcadConverter {
 public:
  /// The classic form: a candidate is compared with the drawing's own names only, so two items
  /// whose corrected names are equal both get the same name, and names that differ only in case are
  /// kept. Readers then see a single item; `Unique` prevents that.
  explicit CNameAcadConverter(const CData& data);
  enum class Form {
    Classic,  ///< names may coincide
    Unique,   ///< see below
    Kept,     ///< names stay, valid or not, as long as they are unique
  };
  /// With `Unique`, no two items of a table have the same name, ignoring case; the first item in
  /// table order keeps it. Letters that are not valid are transliterated, and names without any
  /// letter become numbered ones, such as LAYER1. Changed and coinciding names are added
  /// to `report` (may be null) under the codes listed at `SaveDXF`.
  CNameAcadConverter(const CData& data, Form form, CFileReport* report);
  CNameAcadConverter(const CNameAcadConverter&) = default;
  ~CNameAcadConverter() = default;

  /// The converted name of the item if it has one, else its full name. Null returns the name of the
  /// default item: "0", "CONTINUOUS", "STANDARD", or an empty name for a block.
  zim::WString GetName(const CLayer* layer) const;
  zim::WString GetName(const CLtype* ltype) const;
  zim::WString GetName(const CStyle* style) const;
  zim::WString GetName(const CBlock* block) const;

 protected:
  /// Fills the maps: layers, linetypes, styles, blocks; blocks earlier if a name that depends on a
  /// reference needs them.
  void Convert();
  void ConvertLayers();
  void ConvertLtypes();
  void ConvertStyles();
  void ConvertBlocks();  ///< external references too: they share the names of blocks

  /// Writes to `corrected` the name with each invalid character replaced by '_', truncated to 30
  /// characters if it has 32 or more. True if nothing had to be changed. The first character may
  /// also be '*'. An empty name is valid here.
  static bool IsValidName(const zim::WString& name, zim::WString& corrected);
  /// `base` followed by `counter` in decimal; then increments `counter`. If the result exceeds 31
  /// characters, `base` is permanently truncated to 30 minus the number of digits.
  static zim::WString GenerateValidName(zim::WString& base, int& counter);
  static bool IsValidChar(zim::Char unit);
  /// The result of `IsValidName`.
  static bool isValid(std::u16string_view name);

 private:
  template <class Item>
  using Names = std::unordered_map<const Item*, zim::WString>;
  class Table;

  /// A name to convert: an item's name, in two parts if it depends on a reference.
  struct Entry {
    std::u16string_view name() const { return own.view().substr(nameAt); }

    zim::WString own;
    zim::WString prefix;  // the reference's converted name and '|', or empty
    std::size_t nameAt;   // position after the '|' in `own`; 0 if there is none
  };

  Entry entry(const zim::WString& own, bool dependent);
  template <class Item>
  void convertTable(const std::vector<const Item*>& items, const std::vector<Entry>& entries,
                    std::u16string_view word, Names<Item>& names) const;
  void report(ReportCode code, const zim::WString& sample) const;

  const CData& m_data;
  Names<CLayer> m_layers;
  Names<CLtype> m_ltypes;
  Names<CStyle> m_styles;
  Names<CBlock> m_blocks;
  bool m_hasBlocks = false;
  Form m_form = Form::Classic;
  CFileReport* m_report = nullptr;
};
