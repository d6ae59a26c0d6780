#pragma once

#include "support/test.h"

/// What was read as DXF; empty if saving fails.
inline std::string saved(const Loaded& got, unsigned flags = kSaveExchange) {
  CFileMemory file(u"saved.dxf", IFile::kWrite);
  return SaveDXF(got.drawing(), file, flags) ? file.bytes() : std::string();
}
