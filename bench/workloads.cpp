// Named workloads. For linear growth, "items_per_second" stays constant from one size to the next.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include "drawings.h"

namespace {

using vek0::bench::Drawing;

void loadText(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    Drawing drawing = vek0::bench::load(text);
    if (!drawing) return state.SkipWithError("the drawing does not load");
    state.PauseTiming();
    drawing.reset();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_LoadLines(benchmark::State& state) {
  loadText(state, vek0::bench::lineText(static_cast<int>(state.range(0))));
}
BENCHMARK(BM_LoadLines)->Arg(20000)->Arg(200000)->Unit(benchmark::kMillisecond);

void BM_LoadMixed(benchmark::State& state) {
  loadText(state, vek0::bench::mixedText(static_cast<int>(state.range(0))));
}
BENCHMARK(BM_LoadMixed)->Arg(20000)->Arg(200000)->Unit(benchmark::kMillisecond);

void BM_LoadNestedBlocks(benchmark::State& state) {
  loadText(state, vek0::bench::blockText(static_cast<int>(state.range(0))));
}
BENCHMARK(BM_LoadNestedBlocks)->Arg(20000)->Arg(80000)->Unit(benchmark::kMillisecond);

void BM_LoadLayers(benchmark::State& state) {
  loadText(state, vek0::bench::layerText(static_cast<int>(state.range(0))));
}
BENCHMARK(BM_LoadLayers)->Arg(20000)->Arg(80000)->Arg(320000)->Unit(benchmark::kMillisecond);

void BM_LoadHatches(benchmark::State& state) {
  loadText(state, vek0::bench::hatchText(static_cast<int>(state.range(0))));
}
BENCHMARK(BM_LoadHatches)->Arg(1000)->Arg(20000)->Unit(benchmark::kMillisecond);

void save(benchmark::State& state, unsigned flags) {
  const Drawing drawing =
      vek0::bench::load(vek0::bench::mixedText(static_cast<int>(state.range(0))));
  std::int64_t bytes = 0;
  for (auto _ : state) {
    CFileMemory out(u"bench.dxf", 2);
    if (!SaveDXF(*drawing, out, flags)) return state.SkipWithError("the drawing does not save");
    bytes += static_cast<std::int64_t>(out.bytes().size());
  }
  state.SetBytesProcessed(bytes);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_SaveExchange(benchmark::State& state) { save(state, kSaveExchange); }
BENCHMARK(BM_SaveExchange)->Arg(20000)->Arg(200000)->Unit(benchmark::kMillisecond);

void BM_SavePlain(benchmark::State& state) { save(state, 0); }
BENCHMARK(BM_SavePlain)->Arg(20000)->Arg(200000)->Unit(benchmark::kMillisecond);

// A drawing of `count` lines with handles 1 to count.
Drawing lines(int count, std::vector<CEnt*>& entities) {
  Drawing drawing = vek0::bench::newDrawing();
  for (int i = 0; i < count; ++i) {
    entities.push_back(createEntLine(*drawing, LINE_3D(i, 0, 0, i, 1, 0), i + 1));
    drawing->getEntTable().add(entities.back());
  }
  return drawing;
}

// Editing sessions delete what a selection filter matches: here every second entity.
void BM_RemoveEverySecond(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<CEnt*> entities;
    const Drawing drawing = lines(count, entities);
    state.ResumeTiming();
    for (std::size_t i = 0; i < entities.size(); i += 2) drawing->getEntTable().remove(entities[i]);
    benchmark::DoNotOptimize(drawing->getEntTable().getBdry());
    state.PauseTiming();
    for (std::size_t i = 0; i < entities.size(); i += 2) delete entities[i];
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * count / 2);
}
BENCHMARK(BM_RemoveEverySecond)->Arg(20000)->Arg(80000)->Arg(320000)->Unit(benchmark::kMillisecond);

// The same inside one big block, with an access after every removal.
void BM_RemoveFromBlock(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    const Drawing drawing = vek0::bench::newDrawing();
    CBlock* block = drawing->getBlockFactory().create(u"B", PNT_3D(0, 0, 0), 0);
    std::vector<CEnt*> entities;
    for (int i = 0; i < count; ++i) {
      entities.push_back(createEntLine(*drawing, LINE_3D(i, 0, 0, i, 1, 0), i + 1));
      block->add(entities.back());
    }
    state.ResumeTiming();
    for (std::size_t i = 0; i < entities.size(); i += 2) block->remove(entities[i]);
    benchmark::DoNotOptimize(block->size());
    state.PauseTiming();
    for (std::size_t i = 0; i < entities.size(); i += 2) delete entities[i];
    drawing->getBlockTable().add(block);
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * count / 2);
}
BENCHMARK(BM_RemoveFromBlock)->Arg(20000)->Arg(80000)->Arg(320000)->Unit(benchmark::kMillisecond);

void BM_FindHandles(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  std::vector<CEnt*> entities;
  const Drawing drawing = lines(count, entities);
  for (auto _ : state) {
    for (vek0::Handle handle = count; handle > 0; --handle) {
      benchmark::DoNotOptimize(drawing->getEntTable().get(handle));
    }
  }
  state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(BM_FindHandles)->Arg(20000)->Arg(80000)->Unit(benchmark::kMillisecond);

// `count` empty blocks.
Drawing placeholders(int count) {
  Drawing drawing = vek0::bench::newDrawing();
  for (int i = 0; i < count; ++i) {
    const zim::WString name = zim::WString(u"B") + zim::WString::fromUtf8(std::to_string(i));
    drawing->getBlockTable().add(drawing->getBlockFactory().create(name, PNT_3D(0, 0, 0), 0));
  }
  return drawing;
}

CEnt* insertOf(const CData& data, int block) {
  return createEntInsert(data, *data.getBlockTable()[block], PNT_3D(0, 0, 0), 1, 1, 1, 0, 1, 1, 0,
                         0, 0);
}

// Files whose inserts precede their blocks: every block starts as a placeholder.
void BM_RedefinePlaceholders(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    const Drawing drawing = placeholders(count);
    CBlockTable& table = drawing->getBlockTable();
    state.ResumeTiming();
    for (int i = 0; i < count; ++i) {
      std::list<CEnt*> content = {createEntLine(*drawing, LINE_3D(0, 0, 0, 1, 1, 0), 0)};
      if (i > 0) content.push_back(insertOf(*drawing, i - 1));
      table.Redefine(table[i], PNT_3D(0, 0, 0), 0, content);
    }
    benchmark::DoNotOptimize(table[count - 1]->getBdry());
  }
  state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(BM_RedefinePlaceholders)->Arg(20000)->Arg(80000)->Unit(benchmark::kMillisecond);

// Blocks of two inserts each, defined in random order. `isAcyclic`: an order exists, as in every
// valid file; otherwise an eighth of them is rejected.
void redefineAtRandom(benchmark::State& state, bool isAcyclic) {
  const int count = static_cast<int>(state.range(0));
  std::mt19937 random(1);
  std::vector<int> block(static_cast<std::size_t>(count));
  std::iota(block.begin(), block.end(), 0);
  std::shuffle(block.begin(), block.end(), random);
  std::vector<int> sequence = block;
  std::shuffle(sequence.begin(), sequence.end(), random);
  for (auto _ : state) {
    state.PauseTiming();
    Drawing drawing = placeholders(count);
    CBlockTable& table = drawing->getBlockTable();
    state.ResumeTiming();
    for (const int i : sequence) {
      std::list<CEnt*> content;
      const int choice = isAcyclic ? i : count;
      for (int k = 0; k < 2 && choice > 0; ++k) {
        const auto inner = random() % static_cast<unsigned>(choice);
        content.push_back(insertOf(*drawing, block[inner]));
      }
      CBlock* redefined = table[block[static_cast<std::size_t>(i)]];
      if (table.Redefine(redefined, PNT_3D(0, 0, 0), 0, content) == 0) continue;
      for (const CEnt* ent : content) delete ent;
    }
    state.PauseTiming();
    drawing.reset();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * count);
}

void BM_RedefineShuffled(benchmark::State& state) { redefineAtRandom(state, true); }
BENCHMARK(BM_RedefineShuffled)->Arg(20000)->Arg(80000)->Arg(320000)->Unit(benchmark::kMillisecond);

void BM_RedefineInCircles(benchmark::State& state) { redefineAtRandom(state, false); }
BENCHMARK(BM_RedefineInCircles)->Arg(20000)->Arg(80000)->Arg(320000)->Unit(benchmark::kMillisecond);

// Numbering the private blocks of hatches.
void BM_ProgressiveNames(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  for (auto _ : state) {
    const Drawing drawing = vek0::bench::newDrawing();
    for (int i = 0; i < count; ++i) {
      const zim::WString name = GetBlockProgressiveName(u"*PAT", drawing->getBlockTable());
      drawing->getBlockTable().add(drawing->getBlockFactory().create(name, PNT_3D(0, 0, 0), 0));
    }
  }
  state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(BM_ProgressiveNames)->Arg(20000)->Arg(80000)->Arg(320000)->Unit(benchmark::kMillisecond);

}  // namespace
