// Loads any bytes as a drawing.
#include "support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto drawing = vek0::fuzz::newDrawing();
  CFileMemory file(u"fuzz.dxf", 1, vek0::fuzz::bytes(data, size));
  CFileDXFIError error;
  CFileReport report;
  loadDXF(*drawing, file, &error, vek0::fuzz::options(report));
  drawing->getEntTable().getBdry();
  return 0;
}
