#pragma once

#include <span>

#include "vek0core/dxf/out/filedxfowriter.h"

namespace vek0::detail {

/// A pair that is the same in every file.
struct FixedPair {
  long code;
  const char* value;
};

inline void writePairs(CFileDXFOWriter& out, std::span<const FixedPair> pairs) {
  for (const FixedPair& pair : pairs) out.writeEncoded(pair.code, pair.value);
}

inline void writePoint(CFileDXFOWriter& out, long code, double x, double y) {
  out.write(code, x);
  out.write(code + 10, y);
}

inline void writePoint(CFileDXFOWriter& out, long code, double x, double y, double z) {
  writePoint(out, code, x, y);
  out.write(code + 20, z);
}

}  // namespace vek0::detail
