#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "vek0core/vek0core.h"

namespace vek0::fuzz {

using Drawing = CDataPtr;

/// A new drawing; the first call registers a default font, as hosts do, so that
/// style tables get past their font names.
inline Drawing newDrawing() {
  CFontTable::getInstance().addPlainDefault();
  return Drawing(CDataFactory().createData());
}

inline std::string bytes(const std::uint8_t* data, std::size_t size) {
  return std::string(reinterpret_cast<const char*>(data), size);
}

}  // namespace vek0::fuzz
