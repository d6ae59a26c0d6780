// Editing: transforms of whole drawings, the cost of undo, parallels of long chains, joining
// shuffled segments, and exploding.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "drawings.h"

namespace {

using vek0::bench::Drawing;

constexpr double kTwoPi = 6.283185307179586;
constexpr std::size_t kUnbounded = std::numeric_limits<std::size_t>::max();

Drawing mixed(benchmark::State& state) {
  return vek0::bench::load(vek0::bench::mixedText(static_cast<int>(state.range(0))));
}

void countItems(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// --- Transforms of whole drawings: lines, circles, arcs, texts, polylines and inserts

template <class Visitor>
void transform(benchmark::State& state, Visitor visitor) {
  const Drawing drawing = mixed(state);
  CEntTable& entities = drawing->getEntTable();
  for (auto _ : state) {
    entities.invalidateBdry();
    for (CEnt* ent : entities.getEntityTbl()) ent->accept(visitor);
    benchmark::DoNotOptimize(entities.getBdry());
  }
  countItems(state);
}

void BM_Move(benchmark::State& state) { transform(state, CEntMoveVisitor(PNT_3D(1, -1, 0))); }
BENCHMARK(BM_Move)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_Rotate(benchmark::State& state) {
  transform(state, CEntRotateXYVisitor(PNT_3D(500, 500, 0), 0.01));
}
BENCHMARK(BM_Rotate)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_Scale(benchmark::State& state) {
  transform(state, CEntScaleVisitor(PNT_3D(500, 500, 0), -1));
}
BENCHMARK(BM_Scale)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// --- Undo

// Moves all entities of a drawing, `perStep` of them per step.
void moveInSteps(CData& data, CUndoStack& undo, std::size_t perStep) {
  CEntMoveVisitor mover(PNT_3D(1, -1, 0));
  std::size_t count = 0;
  undo.begin(u"Move");
  for (CEnt* ent : data.getEntTable().getEntityTbl()) {
    if (count++ % perStep == 0 && count > 1) {
      undo.commit();
      undo.begin(u"Move");
    }
    undo.keepGeometry(*ent);
    ent->accept(mover);
  }
  undo.commit();
}

void remember(benchmark::State& state, std::size_t perStep) {
  const Drawing drawing = mixed(state);
  const double count = static_cast<double>(drawing->getEntTable().getEntityTbl().size());
  for (auto _ : state) {
    CUndoStack undo(*drawing, kUnbounded);
    moveInSteps(*drawing, undo, perStep);
    state.PauseTiming();
    state.counters["bytes_an_edit"] = static_cast<double>(undo.size()) / count;
    undo.clear();
    state.ResumeTiming();
  }
  countItems(state);
}

// A single step: the whole drawing was moved.
void BM_MoveRemembered(benchmark::State& state) { remember(state, kUnbounded); }
BENCHMARK(BM_MoveRemembered)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// As many steps as entities: a long editing session.
void BM_MoveOneByOne(benchmark::State& state) { remember(state, 1); }
BENCHMARK(BM_MoveOneByOne)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_UndoAndRedo(benchmark::State& state) {
  const Drawing drawing = mixed(state);
  CUndoStack undo(*drawing, kUnbounded);
  moveInSteps(*drawing, undo, 1);
  for (auto _ : state) {
    while (undo.undo()) benchmark::ClobberMemory();
    while (undo.redo()) benchmark::ClobberMemory();
  }
  countItems(state);
}
BENCHMARK(BM_UndoAndRedo)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

// Every second entity is deleted, restored and deleted again.
void BM_RemoveUndoRedo(benchmark::State& state) {
  const Drawing drawing = mixed(state);
  const auto& table = drawing->getEntTable().getEntityTbl();
  const std::vector<CEnt*> all(table.begin(), table.end());
  for (auto _ : state) {
    CUndoStack undo(*drawing, kUnbounded);
    undo.begin(u"Delete");
    for (std::size_t i = 0; i < all.size(); i += 2) undo.remove(all[i]);
    undo.commit();
    state.counters["bytes_an_edit"] =
        2 * static_cast<double>(undo.size()) / static_cast<double>(all.size());
    undo.undo();
    undo.redo();
    undo.undo();
  }
  countItems(state);
}
BENCHMARK(BM_RemoveUndoRedo)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

// --- Parallels

// A coastline: segments of equal length with random turns, crossing itself.
std::vector<PNT_3D> walk(int count) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> turn(-1, 1);
  std::vector<PNT_3D> points;
  double x = 0, y = 0, angle = 0;
  for (int i = 0; i < count; ++i) {
    points.emplace_back(x, y, 0);
    angle += turn(random);
    x += std::cos(angle);
    y += std::sin(angle);
  }
  return points;
}

// A ragged ring, about as many units long as it has points.
std::vector<PNT_3D> ring(int count) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> jitter(-3, 3);
  std::vector<PNT_3D> points;
  for (int i = 0; i < count; ++i) {
    const double radius = count / kTwoPi + jitter(random), angle = kTwoPi * i / count;
    points.emplace_back(radius * std::cos(angle), radius * std::sin(angle), 0);
  }
  return points;
}

// A line drawn with a shaking hand.
std::vector<PNT_3D> noise(int count) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> jitter(-1, 1);
  std::vector<PNT_3D> points;
  for (int i = 0; i < count; ++i) points.emplace_back(i, jitter(random), 0);
  return points;
}

void offset(benchmark::State& state, const std::vector<PNT_3D>& points, bool closed, double dist) {
  const PATH_3D path(points, {}, closed);
  std::vector<PATH_3D> results;
  for (auto _ : state) {
    results.clear();
    if (!offsetPath(path, dist, {}, results)) return state.SkipWithError("no parallel");
  }
  countItems(state);
  std::size_t edges = 0;
  for (const PATH_3D& result : results) edges += result.edges.size();
  state.counters["edges"] = static_cast<double>(edges);
}

void BM_OffsetWalk(benchmark::State& state) {
  offset(state, walk(static_cast<int>(state.range(0))), false, 0.3);
}
BENCHMARK(BM_OffsetWalk)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_OffsetRing(benchmark::State& state) {
  offset(state, ring(static_cast<int>(state.range(0))), true, -1);
}
BENCHMARK(BM_OffsetRing)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

// So far away that most of the line does not contribute.
void BM_OffsetNoiseFar(benchmark::State& state) {
  offset(state, noise(static_cast<int>(state.range(0))), false, 100);
}
BENCHMARK(BM_OffsetNoiseFar)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_CalcParalLine(benchmark::State& state) {
  const std::vector<PNT_3D> points = noise(static_cast<int>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(CalcParalLine(points, 30, true));
  countItems(state);
}
BENCHMARK(BM_CalcParalLine)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

// --- Joining and exploding

using Ents = std::vector<std::unique_ptr<CEnt>>;

std::vector<CEnt*> borrowed(const Ents& ents) {
  std::vector<CEnt*> result;
  for (const auto& ent : ents) result.push_back(ent.get());
  return result;
}

// Contour lines split into segments: a hundred chains, in random order and direction.
Ents shuffledSegments(CData& data, int count) {
  std::mt19937 random(1);
  Ents ents;
  for (int chain = 0; chain < 100; ++chain) {
    PNT_3D last(0, 10.0 * chain, 0);
    for (int i = 1; i <= count / 100; ++i) {
      const PNT_3D next(i, 10.0 * chain + 3 * std::sin(i * 0.7), 0);
      const bool isForward = random() % 2 != 0;
      const LINE_3D line(isForward ? last : next, isForward ? next : last);
      ents.emplace_back(createEntLine(data, line, 0));
      last = next;
    }
  }
  std::shuffle(ents.begin(), ents.end(), random);
  return ents;
}

void BM_JoinShuffled(benchmark::State& state) {
  const Drawing drawing = vek0::bench::newDrawing();
  const Ents ents = shuffledSegments(*drawing, static_cast<int>(state.range(0)));
  const std::vector<CEnt*> given = borrowed(ents);
  std::size_t count = 0;
  for (auto _ : state) {
    const auto joined =
        joinEnts(drawing->getHandleGestor(), drawing->getEntFactory(), given, joinTolerance(given));
    count = joined.size();
  }
  countItems(state);
  state.counters["polylines"] = static_cast<double>(count);
}
BENCHMARK(BM_JoinShuffled)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void explode(benchmark::State& state, CData& data, const std::vector<CEnt*>& ents) {
  std::size_t parts = 0;
  for (auto _ : state) {
    CEntExploderVisitor exploder(data.getHandleGestor(), data.getEntFactory(),
                                 data.getBlockFactory(), data.getBlockTable());
    for (CEnt* ent : ents) ent->accept(exploder);
    parts = exploder.getEnts().size();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(parts));
  state.counters["parts"] = static_cast<double>(parts);
}

// A hundred polylines with the given total number of segments.
void BM_ExplodePolylines(benchmark::State& state) {
  const Drawing drawing = vek0::bench::newDrawing();
  const Ents ents = shuffledSegments(*drawing, static_cast<int>(state.range(0)));
  const std::vector<CEnt*> given = borrowed(ents);
  Ents polylines;
  for (auto& each :
       joinEnts(drawing->getHandleGestor(), drawing->getEntFactory(), given, joinTolerance(given)))
    polylines.push_back(std::move(each.polyline));
  explode(state, *drawing, borrowed(polylines));
}
BENCHMARK(BM_ExplodePolylines)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

// An insert of a block of five lines and five circles, as an array with the given number of cells.
void explodeArray(benchmark::State& state, double scaleY) {
  const Drawing drawing = vek0::bench::newDrawing();
  CBlock* block = drawing->getBlockFactory().create(u"B", PNT_3D(0, 0, 0), 0);
  for (int i = 0; i < 5; ++i) {
    block->add(createEntLine(*drawing, LINE_3D(0, 0, 0, i, 1, 0), 0));
    block->add(createEntCircle(*drawing, CIRCLE_3D(i, 0, 0, 1), 0));
  }
  drawing->getBlockTable().add(block);
  const std::unique_ptr<CEnt> insert(createEntInsert(*drawing, *block, PNT_3D(0, 0, 0), 1, scaleY,
                                                     1, 0.3, 100, state.range(0) / 100, 20, 20, 0));
  explode(state, *drawing, {insert.get()});
}

void BM_ExplodeArray(benchmark::State& state) { explodeArray(state, 1); }
BENCHMARK(BM_ExplodeArray)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

// With unequal scales, which turn the circles into polylines.
void BM_ExplodeStretchedArray(benchmark::State& state) { explodeArray(state, 2); }
BENCHMARK(BM_ExplodeStretchedArray)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace
