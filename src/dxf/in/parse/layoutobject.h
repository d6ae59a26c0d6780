#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "vek0core/drawing/layout.h"
#include "vek0core/dxf/in/filedxfierror.h"
#include "vek0core/dxf/in/filedxfilexer.h"

namespace vek0::detail {

/// A LAYOUT object of the OBJECTS section.
struct LayoutObject {
  zim::WString name;
  zim::WString styles;         ///< file of the plot style table
  RECT_2D limits{0, 0, 0, 0};  ///< of the sheet
  long tab = 0;                ///< position among the tabs
  std::uint64_t sheet = 0;     ///< handle of the block record; 0 if missing
  long line = 0;
  /// The finite numbers of the plot settings, by group code.
  std::unordered_map<long, double> plot;

  /// Reads the object at whose group 0 the lexer is positioned, up to the next one.
  void read(CFileDXFILexer& lexer, const CFileDXFIError& err);
  /// Values that make no sense, such as a negative size, count as missing.
  PLOT_SETTINGS settings() const;
  /// What `settings` cannot express: the plotted area, the plot style table.
  std::vector<zim::WString> losses() const;
  bool isModel() const;

 private:
  void takeLimit(long code, double value);
  bool hasLimits() const;
  double number(long code, double absent = 0) const;
  // Within 0 and `most`, whatever the file says.
  long integer(long code, long most, long absent = 0) const;
  long flags() const { return integer(70, 65535); }
  PlotArea area() const;
  double scale() const;
};

}  // namespace vek0::detail
