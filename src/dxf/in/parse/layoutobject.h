#pragma once

#include <cstdint>
#include <unordered_map>

#include "vek0core/drawing/layout.h"
#include "vek0core/dxf/in/filedxfierror.h"
#include "vek0core/dxf/in/filedxfilexer.h"

namespace vek0::detail {

/// A LAYOUT object of the OBJECTS section.
struct LayoutObject {
  zim::WString name;
  long tab = 0;             ///< position among the tabs
  std::uint64_t sheet = 0;  ///< handle of the block record; 0 if missing
  long line = 0;
  /// The finite numbers of the plot settings, by group code.
  std::unordered_map<long, double> plot;

  /// Reads the object at whose group 0 the lexer is positioned, up to the next one.
  void read(CFileDXFILexer& lexer, const CFileDXFIError& err);
  /// Values that make no sense, such as a negative size, count as missing.
  PLOT_SETTINGS settings() const;
  bool isModel() const;

 private:
  double number(long code, double absent = 0) const;
  double scale() const;
};

}  // namespace vek0::detail
