// Rendering drawings: completely, and through a window that moves over a large one.
#include <benchmark/benchmark.h>

#include <random>

#include "drawings.h"
#include "vek0draw/draw.h"
#include "vek0draw/drawindex.h"

namespace {

using vek0::bench::Drawing;

constexpr double kExtent = 10000;  // width and height of the drawings

class NullPainter : public IPainter {
 public:
  void begin(const DrawItem&) override {}
  void stroke(const PNT_2D*, std::size_t, bool) override {}
  bool arc(const PNT_2D&, double, double, double) override { return true; }
  void fill(const PNT_2D*, const std::size_t*, std::size_t, FillRule) override {}
  void dot(const PNT_2D&) override {}
  void text(const DrawText&) override {}
};

CWndVpt windowOf(double x, double y, double size) {
  CWndVpt window(1);
  window.resize(1000, 1000);
  window.set(x, y, x + size, y + size);
  return window;
}

void drawAll(benchmark::State& state, const std::string& text) {
  const Drawing drawing = vek0::bench::load(text);
  const CWndVpt window = windowOf(0, 0, kExtent);
  NullPainter painter;
  for (auto _ : state) {
    if (drawData(*drawing, CPOProjector(), window, painter).cut) {
      return state.SkipWithError("the picture is cut");
    }
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_DrawLines(benchmark::State& state) {
  drawAll(state, vek0::bench::lineText(static_cast<int>(state.range(0))));
}
BENCHMARK(BM_DrawLines)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_DrawMixed(benchmark::State& state) {
  drawAll(state, vek0::bench::mixedText(static_cast<int>(state.range(0))));
}
BENCHMARK(BM_DrawMixed)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

// `count` lines three units long, because lines are usually short relative to the drawing.
Drawing shortLines(int count) {
  Drawing drawing = vek0::bench::newDrawing();
  std::mt19937 random(1);
  std::uniform_real_distribution<> place(0, kExtent), step(-3, 3);
  for (int i = 0; i < count; ++i) {
    const double x = place(random), y = place(random);
    const LINE_3D line(x, y, 0, x + step(random), y + step(random), 0);
    drawing->getEntTable().add(createEntLine(*drawing, line, 0));
  }
  return drawing;
}

// The same in one block that is inserted once, like a map.
Drawing shortLinesInABlock(int count) {
  Drawing drawing = shortLines(count);
  CEntTable& table = drawing->getEntTable();
  CBlock* block = drawing->getBlockFactory().create(u"MAP", PNT_3D(0, 0, 0), 0);
  while (!table.getEntityTbl().empty()) {
    CEnt* line = table.getEntityTbl().front();
    table.remove(line);
    block->add(line);
  }
  drawing->getBlockTable().add(block);
  table.add(createEntInsert(*drawing, *block, PNT_3D(0, 0, 0), 1, 1, 1, 0, 1, 1, 0, 0, 0));
  return drawing;
}

void pan(benchmark::State& state, const Drawing& drawing, bool isEdited) {
  const double size = static_cast<double>(state.range(1));
  CDrawIndex index(*drawing);
  NullPainter painter;
  std::mt19937 random(2);
  std::uniform_real_distribution<> place(0, kExtent - size);
  index.draw(CPOProjector(), windowOf(0, 0, 1), painter);
  CEntTable::CEntIterator next(drawing->getEntTable(), true);
  std::size_t shown = 0;
  for (auto _ : state) {
    if (isEdited) {
      CEntMoveVisitor mover(PNT_3D(1, 1, 0));
      (*next)->accept(mover);
      ++next;
    }
    const double x = place(random), y = place(random);
    shown += index.draw(CPOProjector(), windowOf(x, y, size), painter).emitted;
  }
  state.counters["shown"] = static_cast<double>(shown) / static_cast<double>(state.iterations());
}

// Frames of windows of one size at random positions. Arguments: entities, window size.
void BM_Pan(benchmark::State& state) {
  pan(state, shortLines(static_cast<int>(state.range(0))), false);
}
BENCHMARK(BM_Pan)
    ->Args({10000, 1000})
    ->Args({1000000, 30})
    ->Args({1000000, 100})
    ->Args({1000000, 300})
    ->Args({1000000, 1000})
    ->Args({1000000, 3000})
    ->Unit(benchmark::kMicrosecond);

// The same with an entity moved before each frame.
void BM_PanAndEdit(benchmark::State& state) {
  pan(state, shortLines(static_cast<int>(state.range(0))), true);
}
BENCHMARK(BM_PanAndEdit)->Args({1000000, 100})->Unit(benchmark::kMicrosecond);

void BM_PanOverABlock(benchmark::State& state) {
  pan(state, shortLinesInABlock(static_cast<int>(state.range(0))), false);
}
BENCHMARK(BM_PanOverABlock)->Args({1000000, 100})->Unit(benchmark::kMicrosecond);

// Cost of the first frame.
void BM_BuildDrawIndex(benchmark::State& state) {
  const Drawing drawing = shortLines(static_cast<int>(state.range(0)));
  NullPainter painter;
  for (auto _ : state) {
    CDrawIndex index(*drawing);
    index.draw(CPOProjector(), windowOf(0, 0, 1), painter);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_BuildDrawIndex)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
