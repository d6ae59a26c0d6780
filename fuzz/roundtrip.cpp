// We must read what we write: saves any drawing that loads, in both forms, and loads it again. It
// is a failure if we reject our own file, or if a drawing in exchange form changes when it is read
// and saved again.
#include <cstdlib>

#include "support.h"

namespace {

std::string saved(CData& drawing, unsigned flags) {
  CFileMemory out(u"out.dxf", 2);
  return SaveDXF(drawing, out, flags) ? out.bytes() : std::string();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto drawing = vek0::fuzz::newDrawing();
  CFileMemory file(u"fuzz.dxf", 1, vek0::fuzz::bytes(data, size));
  CFileDXFIError error;
  CFileReport report;
  loadDXF(*drawing, file, &error, vek0::fuzz::options(report));
  for (const unsigned flags : {0u, 16u}) {
    const std::string first = saved(*drawing, flags);
    if (first.empty()) continue;
    const auto copy = vek0::fuzz::newDrawing();
    CFileMemory in(u"out.dxf", 1, first);
    CFileDXFIError again;
    loadDXF(*copy, in, &again);
    if (again.HasAnError()) std::abort();
  }
  const std::string first = saved(*drawing, kSaveExchange);
  const auto copy = vek0::fuzz::newDrawing();
  CFileMemory in(u"out.dxf", 1, first);
  loadDXF(*copy, in, nullptr, {nullptr, CFileDXFIPolicy::forAnyFile()});
  if (saved(*copy, kSaveExchange) != first) std::abort();
  return 0;
}
