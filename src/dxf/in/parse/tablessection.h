#pragma once

#include <string_view>

#include "dxf/in/convert/dimstyles.h"
#include "dxf/in/parse/layerentries.h"
#include "dxf/in/parse/sectioninput.h"
#include "dxf/in/parse/styleentry.h"

namespace vek0::detail {

/// Reads the TABLES section: linetypes, layers and styles, and under the tolerant policy dimension
/// styles and block records. Other tables are skipped.
class TablesSection {
 public:
  /// Both are borrowed.
  TablesSection(SectionInput& in, DimStyles& dimStyles)
      : m_in(in), m_dimStyles(dimStyles), m_layers(in) {}

  /// Reads the pairs after the section's name, up to its end.
  void read();
  // The entries of a table, after its name.
  void readLtypes();
  void readLayers();
  void readStyles();
  void skipTable() { m_in.skipTo("ENDTAB"); }
  /// Finishes layers whose linetypes, and linetypes whose text styles, follow later in the file.
  /// Call it at the end of the file.
  void settle();
  /// The layer whose entry has the handle; null if there is none.
  CLayer* findLayer(std::uint64_t handle) const { return m_layers.find(handle); }

 private:
  template <class ReadEntry>
  void readEntries(std::string_view keyword, const ReadEntry& readEntry);
  void readTable();
  void readFurtherTable();
  void readDimStyle();
  void readBlockRecord();
  void skipNamed(const char* kind);

  SectionInput& m_in;
  DimStyles& m_dimStyles;
  LayerEntries m_layers;
  StyleHandles m_styles;
};

}  // namespace vek0::detail
