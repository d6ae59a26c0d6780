// A drawing whose references are all copies of itself: resolved, bound or detached, and undone. Any
// difference afterwards is a failure.
#include <cstdlib>
#include <map>
#include <utility>

#include "support.h"

namespace {

// Every path is a file with the same bytes, up to a limit.
class Mirrors final : public IXRefResolver {
 public:
  explicit Mirrors(std::string bytes) : m_bytes(std::move(bytes)) {}

  Found find(const zim::WString& path, const zim::WString&, zim::WString& file) override {
    constexpr std::size_t kMost = 12;
    if (path.empty() || (m_paths.count(path) == 0 && m_paths.size() == kMost))
      return Found::Missing;
    m_paths.emplace(path, 0);
    file = path;
    return Found::Yes;
  }
  std::unique_ptr<IFile> open(const zim::WString& file) override {
    return std::make_unique<CFileMemory>(file, IFile::kRead, m_bytes);
  }
  zim::WString getState(const zim::WString&) override { return {}; }

 private:
  std::string m_bytes;
  std::map<zim::WString, int> m_paths;
};

std::string saved(CData& drawing) {
  CFileMemory out(u"out.dxf", IFile::kWrite);
  return SaveDXF(drawing, out, kSaveExchange) ? out.bytes() : std::string();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto drawing = vek0::fuzz::newDrawing();
  const std::string bytes = vek0::fuzz::bytes(data, size);
  CFileMemory file(u"fuzz.dxf", IFile::kRead, bytes);
  CFileReport report;
  loadDXF(*drawing, file, nullptr, vek0::fuzz::options(report));
  if (drawing->getBlockXRefTable().size() == 0) return 0;

  Mirrors mirrors(bytes);
  CXRefOptions options;
  options.reading = vek0::fuzz::options(report);
  resolveXRefs(*drawing, mirrors, options);
  const std::string before = saved(*drawing);
  drawing->getEntTable().getBdry();

  CUndoStack undo(*drawing, ~std::size_t{0});
  CBlockXRefTable& xrefs = drawing->getBlockXRefTable();
  for (int i = xrefs.size(); i-- > 0;) {
    if (i >= xrefs.size()) continue;
    CBlockXRef& xref = *xrefs[i];
    if (bindXRef(*drawing, undo, xref) == nullptr && i % 2 == 0) detachXRef(*drawing, undo, xref);
  }
  const std::string after = saved(*drawing);
  while (undo.undo()) {
  }
  if (saved(*drawing) != before) std::abort();
  while (undo.redo()) {
  }
  if (saved(*drawing) != after) std::abort();
  return 0;
}
