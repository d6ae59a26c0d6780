#pragma once

#include <cstdint>
#include <vector>

#include "dxf/in/recordreader.h"
#include "vek0core/drawing/layout.h"

namespace vek0::detail {

/// A viewport whose layers and boundary are still named by their handles: the file may define them
/// later.
struct ReadViewport {
  VIEWPORT view;
  long number = 0;                        ///< 1 is the sheet itself
  std::vector<std::uint64_t> frozen;      ///< handles of layers
  std::vector<zim::WString> frozenNames;  ///< of files without handles
  std::uint64_t boundary = 0;             ///< handle of an entity of the sheet; 0 for the rectangle
  const char* simplified = nullptr;       ///< what a drawing cannot hold of the view; null: nothing
  zim::WString layout;                    ///< its name, if the record states it
  long line = 0;
};

/// Reads the VIEWPORT record at whose group 0 the lexer is positioned. False if an error is
/// recorded.
bool readViewport(RecordReader& in, ReadViewport& viewport);

}  // namespace vek0::detail
