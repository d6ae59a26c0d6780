#include "entities/scene.h"
#include "support/test.h"

namespace {

using vek0::detail::BulgedChain;
using vek0::detail::ChainVertex;
using vek0::detail::chordCount;

BULGED_VERTEX vertex(double x, double y, double bulge = 0, double ws = 0, double we = 0) {
  return {x, y, 0, ws, we, bulge, 1};
}

std::vector<ChainVertex> all(const BulgedChain& chain) {
  std::vector<ChainVertex> out;
  chain.forEach([&out](const ChainVertex& v) { out.push_back(v); });
  return out;
}

RECT_3D boxOf(const std::vector<ChainVertex>& vertexes) {
  RECT_3D box;
  box.initRegion();
  for (const ChainVertex& v : vertexes) box.updateRegion(v.pnt);
  return box;
}

/// A chain of up to 12 vertices with flat, steep, huge and invalid bulges.
BulgedChain randomChain(std::mt19937& random, bool closed) {
  std::uniform_real_distribution<double> real(-1, 1);
  std::uniform_int_distribution<int> pick(0, 9);
  BulgedChain chain(closed);
  const double size = std::pow(10, 6 * real(random));
  BULGED_VERTEX last = vertex(0, 0);
  for (int n = pick(random) + 2; n > 0; --n) {
    BULGED_VERTEX v = {size * real(random),
                       size * real(random),
                       size * real(random),
                       std::fabs(real(random)),
                       std::fabs(real(random)),
                       0,
                       n};
    const double bulges[] = {0,    0,     real(random), real(random), 1, -1, 30 * real(random),
                             1e-9, -1e-7, 1e300};
    v.bulge = bulges[pick(random)];
    if (pick(random) == 0) {
      v.x = last.x;
      v.y = last.y;
    }
    chain.add(last = v);
  }
  return chain;
}

TEST(ChordCount, FollowsTheRule) {
  for (const Row& t : rows()) {
    EXPECT_EQ(chordCount(t.real("bulge")), t.whole("count"));
    EXPECT_EQ(chordCount(-t.real("bulge")), t.whole("count"));
  }
}

TEST(BulgedChain, ChordVerticesLieOnTheArcOfTheBulge) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> real(-1, 1);
  for ([[maybe_unused]] const int round : rounds(500)) {
    BulgedChain chain(false);
    chain.add(vertex(real(random), real(random), 3 * real(random)));
    chain.add(vertex(real(random), real(random)));
    const auto vertexes = all(chain);
    const BULGED_VERTEX& start = chain.vertexes()[0];
    ARC_3D arc(0, 0, 0, 0, 0, 0);
    ASSERT_TRUE(createArcFromBulge(vertexes.front().pnt, vertexes.back().pnt, start.bulge, arc));
    ASSERT_EQ(vertexes.size(), static_cast<std::size_t>(chordCount(start.bulge)) + 1);
    const double within = 1e-9 * (1 + arc.radius);
    for (std::size_t i = 1; i + 1 < vertexes.size(); ++i) {
      const PNT_2D& p = vertexes[i].pnt;
      EXPECT_NEAR(arc.PNT_2D::dist(p), arc.radius, within);
      EXPECT_TRUE(arc.angle_in_arc(arc.angle(p)));
      // All chords are as long as the first one.
      EXPECT_NEAR(p.dist(vertexes[i - 1].pnt), vertexes[1].pnt.PNT_2D::dist(vertexes[0].pnt),
                  within);
    }
  }
}

TEST(BulgedChain, FlatArcsKeepTheirDigits) {
  // Radius 2.5e11: computing this arc from its center would yield only noise.
  BulgedChain chain(false);
  chain.add(vertex(0, 0, 1e-12));
  chain.add(vertex(1, 0));
  const auto vertexes = all(chain);
  ASSERT_EQ(vertexes.size(), 3U);
  EXPECT_DOUBLE_EQ(vertexes[1].pnt.x, 0.5);
  EXPECT_NEAR(vertexes[1].pnt.y, -0.5e-12, 1e-16);
}

TEST(BulgedChain, AccessByIndexAgreesWithTheWalk) {
  std::mt19937 random(2);
  for (const int round : rounds(300)) {
    const BulgedChain chain = randomChain(random, round % 2 == 0);
    const auto walked = all(chain);
    ASSERT_EQ(chain.size(), walked.size());
    for (std::size_t i = 0; i < walked.size(); ++i) {
      const ChainVertex v = chain.at(i);
      ASSERT_EQ(v.pnt, walked[i].pnt);
      ASSERT_EQ(v.widthStart, walked[i].widthStart);
      ASSERT_EQ(v.widthEnd, walked[i].widthEnd);
      ASSERT_EQ(v.handle, walked[i].handle);
    }
  }
}

TEST(BulgedChain, ExtentsAreExactlyThoseOfTheChords) {
  std::mt19937 random(3);
  for (int round = 0; round < 3000; ++round) {
    const BulgedChain chain = randomChain(random, round % 2 == 0);
    RECT_3D box;
    box.initRegion();
    chain.growBdry(box);
    ASSERT_EQ(box, boxOf(all(chain))) << "seed 3, round " << round;
  }
}

TEST(BulgedChain, WidthsGoLinearlyAlongTheArcAndMeetTheirEnds) {
  BulgedChain chain(false);
  chain.add(vertex(0, 0, 1, 2, 6));
  chain.add(vertex(4, 0, 0, 1, 1));
  const auto vertexes = all(chain);
  const std::size_t n = vertexes.size() - 1;
  EXPECT_EQ(vertexes[0].widthStart, 2);
  EXPECT_EQ(vertexes[n - 1].widthEnd, 6);
  EXPECT_EQ(vertexes[n].widthStart, 1);
  for (std::size_t i = 1; i < n; ++i) {
    EXPECT_EQ(vertexes[i].widthStart, vertexes[i - 1].widthEnd);
    EXPECT_NEAR(vertexes[i].widthStart, 2 + 4.0 * static_cast<double>(i) / static_cast<double>(n),
                1e-12);
  }
}

TEST(BulgedChain, BulgesThatMeanNoArc) {
  const struct {
    const char* name;
    bool closed;
    BULGED_VERTEX from, to;
  } cases[] = {
      {"no length", false, vertex(1, 1, 0.5), vertex(1, 1)},
      {"last of an open chain", false, vertex(0, 0), vertex(1, 1, 1)},
      {"centre out of all range", false, vertex(0, 0, 1e-320), vertex(1e300, 1)},
      {"difference overflows", false, vertex(-1.7e308, 0, 1), vertex(1.7e308, 0)},
      {"circle without limit", false, vertex(0, 0, 1e200), vertex(1, 0)},
  };
  for (const auto& t : named(cases)) {
    BulgedChain chain(t.closed);
    chain.add(t.from);
    chain.add(t.to);
    EXPECT_EQ(chain.size(), 2U);
    EXPECT_EQ(chain.bulge(0), 0);
    EXPECT_EQ(chain.bulge(1), 0);
  }
}

}  // namespace
