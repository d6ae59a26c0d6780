// Imports any bytes into a drawing with content, twice, so that the names of the second round
// collide with those of the first.
#include "support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto drawing = vek0::fuzz::newDrawing();
  for (int round = 0; round < 2; ++round) {
    CFileMemory file(u"fuzz.dxf", 1, vek0::fuzz::bytes(data, size));
    CFileDXFIError error;
    CFileReport report;
    importDXF(*drawing, file, &error, vek0::fuzz::options(report));
  }
  drawing->getEntTable().getBdry();
  return 0;
}
