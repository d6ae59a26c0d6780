// External references: reading many that each show a common one, and binding them.
#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "drawings.h"

namespace {

using vek0::bench::Drawing;

class Shelf final : public IXRefResolver {
 public:
  std::map<zim::WString, std::string> files;

  Found find(const zim::WString& path, const zim::WString&, zim::WString& file) override {
    if (files.count(path) == 0) return Found::Missing;
    file = path;
    return Found::Yes;
  }
  std::unique_ptr<IFile> open(const zim::WString& file) override {
    return std::make_unique<CFileMemory>(file, IFile::kRead, files[file]);
  }
  zim::WString getState(const zim::WString&) override { return {}; }
};

zim::WString numbered(int i) { return zim::WString::fromUtf8("part" + std::to_string(i)); }

void insert(CData& data, CUndoStack& undo, const zim::WString& name) {
  CBlockXRef* xref = attachXRef(data, undo, name, name, PNT_3D(0, 0, 0), false);
  undo.add(createEntInsertXRef(data, data.getDepend(), *xref, PNT_3D(1, 2, 0), 1, 1, 1, 0, 1, 1, 0,
                               0, 0));
}

// A sheet with the given number of references, each with ten lines and a common nested reference.
struct Sheet {
  explicit Sheet(int count) {
    shelf.files[u"common"] = vek0::bench::lineText(10);
    const Drawing part = vek0::bench::load(vek0::bench::lineText(10));
    CUndoStack undoPart(*part), undo(*drawing);
    insert(*part, undoPart, u"common");
    CFileMemory file(u"part", IFile::kWrite);
    SaveDXF(*part, file, kSaveExchange);
    for (int i = 0; i < count; ++i) {
      shelf.files[numbered(i)] = file.bytes();
      insert(*drawing, undo, numbered(i));
    }
  }

  Shelf shelf;
  Drawing drawing{CDataFactory().createData()};
};

void BM_ResolveXRefs(benchmark::State& state) {
  Sheet sheet(static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(resolveXRefs(*sheet.drawing, sheet.shelf, {}));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ResolveXRefs)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

// One reference to a large drawing, to compare with reading that drawing alone.
void BM_ResolveLargeXRef(benchmark::State& state) {
  Sheet sheet(1);
  sheet.shelf.files[numbered(0)] = vek0::bench::mixedText(static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(resolveXRefs(*sheet.drawing, sheet.shelf, {}));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ResolveLargeXRef)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_BindXRefs(benchmark::State& state) {
  Sheet sheet(static_cast<int>(state.range(0)));
  resolveXRefs(*sheet.drawing, sheet.shelf, {});
  std::vector<CBlockXRef*> xrefs;
  for (int i = 0; i < sheet.drawing->getBlockXRefTable().size(); ++i)
    xrefs.push_back(sheet.drawing->getBlockXRefTable()[i]);
  for (auto _ : state) {
    CUndoStack undo(*sheet.drawing);
    benchmark::DoNotOptimize(bindXRefs(*sheet.drawing, undo, xrefs));
    undo.undo();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_BindXRefs)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
