// Filling areas with patterns: one boundary with many edges, and many small ones; creating many
// hatches in one drawing, and storing the patterns of many.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "drawings.h"
#include "vek0core/hatch/fill.h"
#include "vek0core/hatch/hatchtypetable.h"
#include "vek0core/hatch/triangulate.h"

namespace {

constexpr double kLimit = 1e7;

class Counter : public IHatchSink {
 public:
  void line(const PNT_3D&, const PNT_3D&) override { ++m_count; }
  void dot(const PNT_3D&) override { ++m_count; }
  std::int64_t count() const { return m_count; }

 private:
  std::int64_t m_count = 0;
};

// A wheel with teeth, `edges` of them, about 1000 units wide.
std::vector<PNT_3D> wheel(int edges) {
  std::vector<PNT_3D> ring;
  for (int i = 0; i < edges; ++i) {
    const double angle = i * 6.283185307179586 / edges, radius = i % 2 > 0 ? 500 : 450;
    ring.emplace_back(radius * std::cos(angle), radius * std::sin(angle), 0);
  }
  return ring;
}

HATCH_LINE slanted(double spacing, bool isDashed) {
  return {0.7853981633973, 0, 0, 0, spacing, {3, -1}, isDashed ? 2 : 0};
}

void fill(benchmark::State& state, const HATCH_LINE& line, const std::vector<PNT_3D>& boundary,
          int times) {
  const HATCH_TYPE type = {u"BENCH", u"", &line, 1};
  Counter counter;
  for (auto _ : state) {
    for (int i = 0; i < times; ++i) {
      if (fillHatch(type, 1, 0, boundary, kLimit, counter) != HatchStatus::Done) {
        return state.SkipWithError("the boundary is not filled");
      }
    }
  }
  state.SetItemsProcessed(state.iterations() * times);
  state.counters["pieces"] = static_cast<double>(counter.count() / state.iterations());
}

// 1000 lines across a boundary with the given number of edges.
void BM_FillManyEdges(benchmark::State& state) {
  fill(state, slanted(1, false), wheel(static_cast<int>(state.range(0))), 1);
}
BENCHMARK(BM_FillManyEdges)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_FillManyEdgesDashed(benchmark::State& state) {
  fill(state, slanted(1, true), wheel(static_cast<int>(state.range(0))), 1);
}
BENCHMARK(BM_FillManyEdgesDashed)->Arg(10000)->Unit(benchmark::kMillisecond);

// The given number of rooms with twenty lines each.
void BM_FillManyAreas(benchmark::State& state) {
  fill(state, slanted(0.5, false),
       {{3, 4, 0}, {9, 4, 0}, {9, 8, 0}, {6, 8, 0}, {6, 12, 0}, {3, 12, 0}},
       static_cast<int>(state.range(0)));
}
BENCHMARK(BM_FillManyAreas)->Arg(1000)->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);

void BM_FillSolid(benchmark::State& state) {
  const std::vector<PNT_3D> boundary = wheel(static_cast<int>(state.range(0)));
  std::vector<HatchFace> faces;
  for (auto _ : state) {
    if (fillSolid(boundary, kLimit, faces) != HatchStatus::Done) {
      return state.SkipWithError("the boundary is not filled");
    }
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.counters["faces"] = static_cast<double>(faces.size());
}
BENCHMARK(BM_FillSolid)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

// The given number of hatches with twenty lines each in one drawing: their blocks are numbered,
// named and registered one by one.
// registered one by one.
void BM_CreateHatches(benchmark::State& state) {
  const std::vector<PNT_3D> room = {{3, 4, 0}, {9, 4, 0},  {9, 8, 0},
                                    {6, 8, 0}, {6, 12, 0}, {3, 12, 0}};
  for (auto _ : state) {
    state.PauseTiming();
    vek0::bench::Drawing drawing = vek0::bench::newDrawing();
    state.ResumeTiming();
    for (std::int64_t i = 0; i < state.range(0); ++i) {
      CEntHatch* hatch = createEntHatch(*drawing, *getHatch(1L), 4, 0, room, i + 1);
      if (!hatch) return state.SkipWithError("the hatch is not made");
      drawing->getEntTable().add(hatch);
    }
    state.PauseTiming();
    drawing.reset();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_CreateHatches)->Arg(1000)->Arg(20000)->Unit(benchmark::kMillisecond);

// Files may define different lines for every hatch under one name.
void BM_KeepPatterns(benchmark::State& state) {
  for (auto _ : state) {
    CHatchTypeTable table;
    for (std::int64_t i = 0; i < state.range(0); ++i)
      benchmark::DoNotOptimize(
          &table.intern(u"BENCH", {slanted(1 + static_cast<double>(i) * 1e-3, true)}));
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_KeepPatterns)->Arg(1000)->Arg(20000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
