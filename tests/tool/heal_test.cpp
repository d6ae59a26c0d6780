// Healing curves: cases through the tool, and a law over random contours.
#include "support/test.h"
#include "tooltest.h"
#include "vek0host/drawingfile.h"
#include "vek0host/editdrawing.h"
#include "vek0host/editsteps.h"

namespace {

class Heal : public Tool {};

TEST_F(Heal, ChangesWhatItSays) {
  write("part.dxf",
        section("TABLES", table("LAYER", pairsOf("0 LAYER|2 CUT|70 0|62 7|0 LAYER|2 "
                                                 "OFF|70 0|62 -5"))) +
            section("ENTITIES", pairsOf("0 LINE|5 1|8 CUT|10 0|20 0|11 10|21 0|"
                                        "0 LINE|5 2|8 CUT|10 10.003|20 0|11 10|21 10|"
                                        "0 LINE|5 3|8 CUT|10 10|20 10|11 0|21 0.002|"
                                        "0 LINE|5 4|8 CUT|10 10|20 0|11 0|21 0|"
                                        "0 LINE|5 5|8 0|10 0|20 0|11 10|21 0|"
                                        "0 CIRCLE|5 6|8 CUT|10 30|20 30|40 5|"
                                        "0 ARC|5 7|8 CUT|10 30|20 30|40 5|50 350|51 10|"
                                        "0 LINE|5 8|8 OFF|10 50|20 0|11 60|21 0|"
                                        "0 LINE|5 9|8 OFF|10 50|20 0|11 60|21 0|"
                                        "0 ARC|5 A|8 CUT|10 80|20 0|40 5|50 0|51 359.99|"
                                        "0 POLYLINE|5 B|8 CUT|66 1|70 0|0 VERTEX|8 CUT|10 90|20 0|"
                                        "0 VERTEX|8 CUT|10 99|20 0|0 VERTEX|8 CUT|10 95|20 5|"
                                        "0 VERTEX|8 CUT|10 90|20 0.001|0 SEQEND|8 CUT")) +
            dxf());
  for (const Row& t : rows()) {
    SCOPED_TRACE(t.text("steps"));
    const Outcome got = run("edit part.dxf " + t.text("steps") +
                            " -o healed.dxf -f --undo-check --report report.json");
    EXPECT_EQ(got.code, t.whole("code")) << got.err;
    EXPECT_NE(got.err.find(t.text("said")), std::string::npos) << got.err;
    if (got.code != 0) continue;
    const Outcome counts = run("info --json healed.dxf");
    EXPECT_NE(counts.out.find(t.text("entities")), std::string::npos) << counts.out;
    EXPECT_NE(contents(path("report.json")).find(t.text("reported")), std::string::npos);
  }
}

// A contour in pieces, as other programs export them.
class Pieces {
 public:
  explicit Pieces(unsigned seed) : m_random(seed) {}

  double number(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(m_random);
  }

  // The pieces of a star around a point: ends that should meet are up to half of `gap` off.
  void addRing(const PNT_2D& at, double gap) {
    const auto count = static_cast<std::size_t>(number(3, 8));
    std::vector<PNT_3D> corners;
    for (std::size_t i = 0; i < count; ++i) {
      const double angle = (static_cast<double>(i) + number(0.1, 0.6)) * 2 * vek0::detail::kPi /
                           static_cast<double>(count);
      const double radius = number(3, 8);
      corners.emplace_back(at.x + radius * std::cos(angle), at.y + radius * std::sin(angle), 0);
    }
    for (std::size_t i = 0; i < count; ++i) {
      const PNT_3D from = moved(corners[i], gap), to = moved(corners[(i + 1) % count], gap);
      const EDGE_3D edge(from, to, number(0, 1) < 0.5 ? 0 : number(-0.3, 0.3));
      add(edge);
      if (number(0, 1) < 0.3) add(edge);
      const double middle = number(0.3, 0.7);
      if (number(0, 1) < 0.3) add(edge.part(number(0, 0.2), middle));
      if (number(0, 1) < 0.3) add(edge.part(middle, 1));
    }
    ++rings;
  }

  std::vector<EDGE_3D> edges;
  std::size_t rings = 0;

 private:
  void add(const EDGE_3D& edge) {
    const auto place = static_cast<std::ptrdiff_t>(number(0, static_cast<double>(edges.size())));
    edges.insert(edges.begin() + place, number(0, 1) < 0.5 ? edge : edge.reversed());
  }
  PNT_3D moved(const PNT_3D& p, double gap) {
    const double angle = number(0, 2 * vek0::detail::kPi), radius = number(0, gap / 2);
    return PNT_3D(p.x + radius * std::cos(angle), p.y + radius * std::sin(angle), 0);
  }

  std::mt19937 m_random;
};

std::size_t farFrom(const std::vector<PLACED_CURVE>& curves,
                    const std::vector<PLACED_CURVE>& others, double reach) {
  std::size_t count = 0;
  for (const PLACED_CURVE& curve : curves)
    for (const EDGE_3D& edge : curve.path.edges)
      for (int i = 0; i <= 8; ++i) {
        double least = std::numeric_limits<double>::infinity();
        for (const PLACED_CURVE& other : others)
          for (const EDGE_3D& near : other.path.edges)
            least = std::min(least, near.dist(edge.at(i / 8.0)));
        if (least > reach) ++count;
      }
  return count;
}

TEST(HealLaw, EveryContourIsClosedAndDrawnOnceWhereItWas) {
  constexpr double gap = 0.01;
  for (unsigned seed = 0; seed < 60; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Pieces pieces(seed);
    for (int i = 0; i < 6; ++i) pieces.addRing({20.0 * (i % 3), 20.0 * (i / 3)}, gap);
    const vek0::host::Drawing data = vek0::host::newDrawing();
    const std::unique_ptr<CEnt> like(createEntPnt(*data, PNT_3D(0, 0, 0), 0));
    for (const EDGE_3D& edge : pieces.edges)
      data->getEntTable().add(
          createEntFromPath(data->getHandleGestor(), data->getEntFactory(), PATH_3D(edge), *like));
    const std::vector<PLACED_CURVE> before = placeContent(*data).curves;
    CUndoStack undo(*data);
    const auto& all = data->getEntTable().getEntityTbl();
    vek0::host::Editing editing{*data, undo, {all.begin(), all.end()}};
    vek0::host::NamedStep step{"heal", {}};
    ASSERT_EQ(vek0::host::readHeal("0.01", step.work), "");
    ASSERT_TRUE(vek0::host::takeStep(editing, step).ok);

    const std::vector<PLACED_CURVE> after = placeContent(*data).curves;
    CURVE_LIMITS limits = defaultLimits(after);
    limits.gap = gap;
    limits.tiny = gap / 10;
    for (const CURVE_FAULT& fault : findCurveFaults(after, limits).faults)
      EXPECT_TRUE(fault.fault == CurveFault::SelfIntersection)
          << static_cast<int>(fault.fault) << " at " << fault.point.x << ' ' << fault.point.y;
    EXPECT_EQ(after.size(), pieces.rings);
    EXPECT_EQ(farFrom(before, after, gap), 0u);
    EXPECT_EQ(farFrom(after, before, gap), 0u);
    EXPECT_TRUE(undo.undo());
    EXPECT_EQ(placeContent(*data).curves.size(), before.size());
  }
}

}  // namespace
