// We must read what we write: saves any drawing that loads, in both forms, and loads it again. It
// is a failure if we reject our own file, or if a drawing in exchange form changes when it is read
// and saved again. Only values that strict reading keeps and tolerant reading repairs, such as a
// text without height, may change once, and must then be reported.
#include <cstdlib>

#include "support.h"

namespace {

std::string saved(CData& drawing, unsigned flags) {
  CFileMemory out(u"out.dxf", 2);
  return SaveDXF(drawing, out, flags) ? out.bytes() : std::string();
}

std::string savedAgain(const std::string& exchanged, CFileReport& report) {
  const auto drawing = vek0::fuzz::newDrawing();
  CFileMemory in(u"out.dxf", 1, exchanged);
  loadDXF(*drawing, in, nullptr, {&report, CFileDXFIPolicy::forAnyFile()});
  return saved(*drawing, kSaveExchange);
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
  CFileReport repairs;
  const std::string second = savedAgain(first, repairs);
  if (second == first) return 0;
  if (repairs.empty() || savedAgain(second, repairs) != second) std::abort();
  return 0;
}
