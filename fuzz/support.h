#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "vek0core/vek0core.h"

namespace vek0::fuzz {

using Drawing = CDataPtr;

/// A new drawing; the first call registers a default font, as hosts do, because strict reading
/// rejects text styles without any font.
inline Drawing newDrawing() {
  CFontTable::getInstance().addPlainDefault();
  return Drawing(CDataFactory().createData());
}

/// Reading options of the target: strict, or, if built with VEK0_FUZZ_TOLERANT, tolerant.
inline CFileDXFIOptions options(CFileReport& report) {
#ifdef VEK0_FUZZ_TOLERANT
  return {&report, CFileDXFIPolicy::forAnyFile()};
#else
  return {&report};
#endif
}

inline std::string bytes(const std::uint8_t* data, std::size_t size) {
  return std::string(reinterpret_cast<const char*>(data), size);
}

}  // namespace vek0::fuzz
