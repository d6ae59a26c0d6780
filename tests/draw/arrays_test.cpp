#include "arraycells.h"
#include "recorder.h"
#include "support/test.h"

using vek0::detail::ArrayCells;
using vek0::detail::IndexRange;

namespace {

CEntInsert* arrayOf(Scene& scene, CBlock& block, double rotation, long columns, long rows,
                    double columnSpacing, double rowSpacing) {
  return scene.add(createEntInsert(*scene.data, block, PNT_3D(0, 0, 0), 1, 1, 1, rotation, columns,
                                   rows, columnSpacing, rowSpacing, 0));
}

CBlock* unitBlock(Scene& scene) {
  CLayer* layer0 = &scene.data->getLayer0();
  return scene.block(u"B", {scene.unit(layer0, nullptr, 7)});
}

}  // namespace

TEST(Arrays, EveryCellIsWhereRowAndColumnSay) {
  Scene scene;
  arrayOf(scene, *unitBlock(scene), 0, 3, 2, 10, 100);
  const Recorder drawn = scene.draw();
  ASSERT_EQ(drawn.things.size(), 6U);
  for (std::size_t i = 0; i < 6; ++i) {
    const double x = 10.0 * static_cast<double>(i % 3), y = 100.0 * static_cast<double>(i / 3);
    EXPECT_LT(drawn.things[i].points[0].dist(seen(x, y)), 1e-9) << i;
  }
}

TEST(Arrays, CellsThatLieOnEachOtherAreDrawnOnce) {
  Scene scene;
  arrayOf(scene, *unitBlock(scene), 0, 3, 30000, 10, 0);
  arrayOf(scene, *unitBlock(scene), 0, 30000, 4, 0, 10);
  EXPECT_EQ(scene.draw().things.size(), 7U);
}

// A few bytes in a file can declare an array of a billion cells.
TEST(Arrays, CellsOutsideTheWindowCostNothing) {
  for (const Row& t : rows()) {
    Scene scene;
    CEntInsert* array =
        arrayOf(scene, *unitBlock(scene), t.real("rotation"), t.whole<long>("columns"),
                t.whole<long>("rows"), t.real("columnSpacing"), 10);
    // Moves the middle of the array to the middle of the window.
    PNT_3D middle;
    CEntInsertMatrix(1, *array, t.whole<long>("rows") / 2, t.whole<long>("columns") / 2)
        .transform(PNT_3D(0, 0, 0), middle);
    array->setPnt(PNT_3D(500 - middle.x, 500 - middle.y, 0));
    const Recorder drawn = scene.draw();
    EXPECT_FALSE(scene.result.cut);
    EXPECT_GE(drawn.things.size(), 100U);
    EXPECT_LE(drawn.things.size(), 12000U);
    EXPECT_LE(scene.result.looked, 2 * drawn.things.size() + 1000);
  }
}

// Compares the search with a test of every cell.
TEST(Arrays, TheCellsThatAreMetAreFound) {
  std::mt19937 random(5);
  const auto number = [&](double reach) {
    return std::uniform_real_distribution<>(-reach, reach)(random);
  };
  for (const int trial : rounds(2000)) {
    const RECT_2D window(number(50), number(50), number(50), number(50));
    const RECT_2D cell(number(20), number(20), number(20), number(20));
    PNT_2D step(number(10), number(10)), up(number(10), number(10));
    if (trial % 5 == 0) up = PNT_2D(step.x * 2, step.y * 2);
    if (trial % 7 == 0) step.y = up.x = 0;
    if (trial % 11 == 0) step = PNT_2D(0, 0);
    const ArrayCells cells(cell, step, up, 9, 12, window);
    std::set<std::pair<long, long>> found;
    const IndexRange rows = cells.rows();
    for (long row = rows.first; row <= rows.last; ++row) {
      const IndexRange columns = cells.columns(row);
      for (long column = columns.first; column <= columns.last; ++column)
        found.emplace(row, column);
    }
    for (long row = 0; row < 12; ++row) {
      for (long column = 0; column < 9; ++column) {
        const double c = static_cast<double>(column), r = static_cast<double>(row);
        const PNT_2D move(step.x * c + up.x * r, step.y * c + up.y * r);
        const RECT_2D at(cell.min + move, cell.max + move);
        const bool isMet = at.intersect(window);
        EXPECT_EQ(found.count({row, column}) != 0, isMet) << row << ' ' << column;
      }
    }
  }
}

TEST(Arrays, HugeOrMissingSpacingsComeToAnEnd) {
  const double spacings[] = {0, 1e-300, 1e300, -1e300, std::nan("")};
  for (const double columnSpacing : spacings) {
    for (const double rowSpacing : spacings) {
      Scene scene;
      arrayOf(scene, *unitBlock(scene), 0.3, 2000000, 2000000, columnSpacing, rowSpacing);
      DRAW_OPTIONS options;
      options.limit = 1000;
      scene.draw(options);
      EXPECT_LE(scene.result.emitted, 1000U);
    }
  }
}
