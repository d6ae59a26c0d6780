#include "vek0core/dxfout/savedxf.h"

#include <new>

#include "vek0core/dxfout/filedxfosaver.h"

bool SaveDXF(const CData& data, IFile& file, unsigned flags) {
  return SaveDXF(data, file, flags, nullptr);
}

bool SaveDXF(const CData& data, IFile& file, unsigned flags, CFileReport* report) {
  try {
    return CFileDXFOSaver(data, file, flags, report).save();
  } catch (const std::bad_alloc&) {
    return false;
  }
}
