// Filling areas with patterns: one boundary of many edges, and many small ones.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "vek0core/hatch/fill.h"
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
  return {
      0.7853981633973, 0, 0, 0, spacing, {3, -1},
           isDashed ? 2 : 0
  };
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

// 1000 lines across a boundary of so many edges.
void BM_FillManyEdges(benchmark::State& state) {
  fill(state, slanted(1, false), wheel(static_cast<int>(state.range(0))), 1);
}
BENCHMARK(BM_FillManyEdges)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_FillManyEdgesDashed(benchmark::State& state) {
  fill(state, slanted(1, true), wheel(static_cast<int>(state.range(0))), 1);
}
BENCHMARK(BM_FillManyEdgesDashed)->Arg(10000)->Unit(benchmark::kMillisecond);

// So many rooms of twenty lines each.
void BM_FillManyAreas(benchmark::State& state) {
  fill(state, slanted(0.5, false),
       {
           {3, 4,  0},
           {9, 4,  0},
           {9, 8,  0},
           {6, 8,  0},
           {6, 12, 0},
           {3, 12, 0}
  },
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

}  // namespace
