#include "vek0core/dxf/out/savedxf.h"

#include <new>

#include "vek0core/dxf/out/filedxfosaver.h"

bool SaveDXF(const CData& data, IFile& file, unsigned flags) {
  return SaveDXF(data, file, flags, nullptr);
}

bool SaveDXF(const CData& data, IFile& file, unsigned flags, CFileReport* report, int threads) {
  try {
    CFileDXFOSaver saver(data, file, flags, report);
    saver.setThreads(threads);
    return saver.save();
  } catch (const std::bad_alloc&) {
    return false;
  }
}
