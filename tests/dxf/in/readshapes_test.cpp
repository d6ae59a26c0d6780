#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "dxf/ocs.h"
#include "support/dxftext.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entcast.h"
#include "vek0core/entities/entpolyline.h"

using namespace vek0::test;
using vek0::detail::PlaneAxes;

namespace {

Loaded loadShape(const std::string& list) {
  return loadText(entitiesOf("AC1015", list), CFileDXFIPolicy::forAnyFile());
}

std::vector<CEnt*> entsOf(const Loaded& got) {
  const auto& ents = got.drawing().getEntTable().getEntityTbl();
  return {ents.begin(), ents.end()};
}

double dot(const PNT_3D& a, const PNT_3D& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

// Two lines about a path of three points, the mitre at the corner being 1.5 of a length.
const std::string kMultiline =
    "0 MLINE|8 0|2 STANDARD|40 1|70 1|72 3|73 2|10 0|20 0|30 0|210 0|220 0|230 1|"
    "11 0|21 0|31 2|12 1|22 0|32 0|13 0|23 1|33 0|74 2|41 1|41 0|75 0|74 2|41 -1|41 0|75 0|"
    "11 10|21 0|31 2|12 0|22 1|32 0|13 -1|23 1|33 0|74 2|41 1|41 0|75 0|74 2|41 -1|41 0|75 0|"
    "11 10|21 9|31 2|12 0|22 1|32 0|13 -1|23 0|33 0|74 2|41 1|41 0|75 2|42 7|42 8|74 2|41 -1|41 "
    "0|75 0";

const std::string kVertexes =
    "0 MESH|8 0|71 2|72 0|91 0|92 6|10 0|20 0|30 0|10 4|20 0|30 0|10 5|20 2|30 0|10 4|20 4|30 1|"
    "10 0|20 4|30 0|10 -1|20 2|30 0|";

}  // namespace

TEST(PlaneAxes, TheArbitraryAxisRule) {
  const struct {
    const char* name;
    PNT_3D normal, x, y;
  } cases[] = {
      {"world", {0, 0, 1}, {1, 0, 0}, {0, 1, 0}},
      {"any length", {0, 0, 7}, {1, 0, 0}, {0, 1, 0}},
      {"mirrored", {0, 0, -1}, {-1, 0, 0}, {0, 1, 0}},
      {"towards x", {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
      {"towards y", {0, 1, 0}, {-1, 0, 0}, {0, 0, 1}},
      {"away from y", {0, -2, 0}, {1, 0, 0}, {0, 0, 1}},
      {"none", {0, 0, 0}, {1, 0, 0}, {0, 1, 0}},
      {"not a number", {NAN, 0, 1}, {1, 0, 0}, {0, 1, 0}},
      {"beyond the limit", {0, 0.02, 0.99980}, {-1, 0, 0}, {0, -0.9998, 0.02}},
      {"within the limit", {0, 0.01, 0.99995}, {1, 0, 0}, {0, 0.99995, -0.01}},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    const PlaneAxes plane(t.normal);
    EXPECT_LT(plane.toWorld(PNT_3D(1, 0, 0)).dist(t.x), 1e-5);
    EXPECT_LT(plane.toWorld(PNT_3D(0, 1, 0)).dist(t.y), 1e-5);
  }
}

TEST(PlaneAxes, AreSquareAndRightHanded) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> number(-1, 1);
  for (int i = 0; i < 1000; ++i) {
    const double flat = i % 2 == 0 ? 1 : 0.02;  // about the limit of the rule too
    const PNT_3D normal(flat * number(random), flat * number(random), number(random));
    const PlaneAxes plane(normal);
    EXPECT_NEAR(dot(plane.x, plane.y), 0, 1e-12);
    EXPECT_NEAR(dot(plane.x, plane.x), 1, 1e-12);
    EXPECT_NEAR(dot(plane.y, plane.y), 1, 1e-12);
    EXPECT_LT(prodVect(plane.x, plane.y).dist(plane.z), 1e-12);
    EXPECT_GT(dot(plane.z, normal), 0);
  }
}

TEST(ReadShapes, SolidsBecomeFilledFaces) {
  const std::string corners = "10 0|20 0|30 1|11 4|21 0|31 1|12 0|22 3|32 1";
  const struct {
    const char* name;
    std::string pairs;
    PNT_3D want[4];
    bool triangle;
  } cases[] = {
      {"four corners",
       corners + "|13 4|23 3|33 1",
       {{0, 0, 1}, {4, 0, 1}, {4, 3, 1}, {0, 3, 1}},
       false},
      {"the third repeated",
       corners + "|13 0|23 3|33 1",
       {{0, 0, 1}, {4, 0, 1}, {0, 3, 1}, {0, 3, 1}},
       true},
      {"no fourth", corners, {{0, 0, 1}, {4, 0, 1}, {0, 3, 1}, {0, 3, 1}}, true},
      {"mirrored",
       corners + "|210 0|220 0|230 -1",
       {{0, 0, -1}, {-4, 0, -1}, {0, 3, -1}, {0, 3, -1}},
       true},
      {"upright",
       corners + "|210 1|220 0|230 0",
       {{1, 0, 0}, {1, 4, 0}, {1, 0, 3}, {1, 0, 3}},
       true},
  };
  for (const char* kind : {"SOLID", "TRACE"}) {
    for (const auto& t : cases) {
      SCOPED_TRACE(t.name);
      const Loaded got = loadShape("0 " + std::string(kind) + "|8 0|62 3|" + t.pairs);
      const CEnt3DFace* face = cast3DFace(got.only());
      ASSERT_NE(face, nullptr) << got.error.GetErrorLine();
      for (long i = 0; i < 4; ++i) EXPECT_LT(face->getVertex(i).dist(t.want[i]), 1e-12) << i;
      EXPECT_EQ(face->isTriangular(), t.triangle);
      EXPECT_EQ(face->getColor(), 3);
      EXPECT_EQ(face->getFill(), kind[0] == 'S' ? FaceFill::Solid : FaceFill::Trace);
      EXPECT_TRUE(got.report.empty());
    }
  }
}

TEST(ReadShapes, MultilinesBecomeParallelChains) {
  const Loaded got = loadShape(kMultiline);
  const std::vector<CEnt*> ents = entsOf(got);
  ASSERT_EQ(ents.size(), 2u) << got.error.GetErrorLine();
  const PNT_3D want[2][3] = {{{0, 1, 2}, {9, 1, 2}, {9, 9, 2}},
                             {{0, -1, 2}, {11, -1, 2}, {11, 9, 2}}};
  for (std::size_t line = 0; line < 2; ++line) {
    const CEntPolyline* polyline = castPolyline(ents[line]);
    ASSERT_NE(polyline, nullptr);
    EXPECT_FALSE(polyline->isClosed());
    ASSERT_EQ(polyline->getNoTotalVertexes(), 3);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(polyline->GetVertexPos(i), want[line][i]);
  }
  EXPECT_EQ(got.report.count("kind replaced"), 1);
}

TEST(ReadShapes, ClosedMultilinesGoBack) {
  const Loaded got = loadShape(kMultiline + "|71 3");
  for (CEnt* ent : entsOf(got)) {
    EXPECT_TRUE(castPolyline(ent)->isClosed());
    EXPECT_EQ(castPolyline(ent)->getNoTotalVertexes(), 3);
  }
}

// A line along x from 0 through 10 to 20, where it ends or returns.
TEST(ReadShapes, MultilinesAreCut) {
  const struct {
    const char* name;
    std::string first, second;  // cuts of the two segments
    bool closed;
    std::vector<std::vector<double>> pieces;  // x of their vertices
  } cases[] = {
      {"whole", "|41 0", "|41 0", false, {{0, 10, 20}}},
      {"without a word", "", "", false, {{0, 10, 20}}},
      {"interrupted", "|41 0|41 2|41 3", "|41 0", false, {{0, 2}, {3, 10, 20}}},
      {"begins late", "|41 1", "|41 0", false, {{1, 10, 20}}},
      {"ends early", "|41 0|41 8", "|41 0", false, {{0, 8}, {10, 20}}},
      {"begins late at a corner", "|41 0", "|41 4", false, {{0, 10}, {14, 20}}},
      {"twice",
       "|41 0|41 1|41 2|41 3|41 4|41 5",
       "|41 0",
       false,
       {{0, 1}, {2, 3}, {4, 5}, {10, 20}}},
      {"closed", "|41 0", "|41 0", true, {{0, 10, 20}}},
      {"closed and interrupted", "|41 0|41 2|41 3", "|41 0", true, {{0, 2}, {3, 10, 20, 0}}},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    const std::string vertex = "|12 1|22 0|13 0|23 1|74 9|41 1";
    const Loaded got =
        loadShape("0 MLINE|8 0|71 " + std::string(t.closed ? "3" : "1") + "|11 0|21 0" + vertex +
                  t.first + "|11 10|21 0" + vertex + t.second + "|11 20|21 0" + vertex + "|41 0");
    const std::vector<CEnt*> ents = entsOf(got);
    ASSERT_EQ(ents.size(), t.pieces.size()) << got.error.GetErrorLine();
    for (std::size_t i = 0; i < ents.size(); ++i) {
      const CEntPolyline* polyline = castPolyline(ents[i]);
      EXPECT_EQ(polyline->isClosed(), t.closed && ents.size() == 1);
      ASSERT_EQ(polyline->getNoTotalVertexes(), static_cast<long>(t.pieces[i].size()));
      for (std::size_t v = 0; v < t.pieces[i].size(); ++v)
        EXPECT_EQ(polyline->GetVertexPos(static_cast<int>(v)), PNT_3D(t.pieces[i][v], 1, 0));
    }
  }
}

TEST(ReadShapes, MeshesBecomeFaces) {
  const struct {
    const char* name;
    std::string faces;
    std::vector<long> hidden;  // edge bits of each face
    long incomplete;
  } cases[] = {
      {"triangle and quadrangle", "93 9|90 3|90 0|90 1|90 2|90 4|90 0|90 1|90 3|90 4", {0, 0}, 0},
      {"hexagon", "93 7|90 6|90 0|90 1|90 2|90 3|90 4|90 5", {8, 9, 9, 1}, 0},
      {"edges are no faces", "93 4|90 3|90 0|90 1|90 2|94 1|90 0|90 1|95 1|140 0|90 0", {0}, 0},
      {"the count lies", "93 -7|90 3|90 0|90 1|90 2", {0}, 0},
      {"list cut", "93 9|90 3|90 0|90 1|90 2|90 4|90 0|90 1", {0}, 1},
      {"vertex missing", "93 8|90 3|90 0|90 1|90 6|90 3|90 0|90 1|90 2", {0}, 1},
      {"negative vertex", "93 8|90 3|90 0|90 1|90 -1|90 3|90 0|90 1|90 2", {0}, 1},
      {"an edge alone", "93 7|90 2|90 0|90 1|90 3|90 0|90 1|90 2", {0}, 1},
      {"negative number of corners", "93 7|90 3|90 0|90 1|90 2|90 -4|90 0", {0}, 1},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    const Loaded got = loadShape(kVertexes + t.faces);
    const std::vector<CEnt*> ents = entsOf(got);
    ASSERT_EQ(ents.size(), t.hidden.size()) << got.error.GetErrorLine();
    for (std::size_t i = 0; i < ents.size(); ++i)
      EXPECT_EQ(cast3DFace(ents[i])->getFlags(), t.hidden[i]) << i;
    EXPECT_EQ(got.report.count("mesh incomplete"), t.incomplete);
  }
}

// The visible edges of a fan are those of its polygon.
TEST(ReadShapes, AFanShowsItsOutline) {
  const Loaded got = loadShape(kVertexes + "93 7|90 6|90 0|90 1|90 2|90 3|90 4|90 5");
  const PNT_3D corners[] = {{0, 0, 0}, {4, 0, 0}, {5, 2, 0}, {4, 4, 1}, {0, 4, 0}, {-1, 2, 0}};
  int shown = 0;
  for (CEnt* ent : entsOf(got)) {
    const CEnt3DFace* face = cast3DFace(ent);
    ASSERT_NE(face, nullptr);
    for (long edge = 0; edge < 4; ++edge) {
      PNT_3D a, b;
      face->getPoints(edge, a, b);
      if (!face->isEdgeVisib(edge) || a == b) continue;
      ++shown;
      bool ofPolygon = false;
      for (int i = 0; i < 6; ++i)
        ofPolygon = ofPolygon || (a == corners[i] && b == corners[(i + 1) % 6]);
      EXPECT_TRUE(ofPolygon);
    }
  }
  EXPECT_EQ(shown, 6);
}

TEST(ReadShapes, PolygonsWithHatches) {
  const std::string loops =
      "91 2|92 2|73 1|72 0|93 4|10 0|20 0|10 9|20 0|10 9|20 9|10 0|20 9|"
      "92 2|73 1|72 1|93 2|10 3|20 3|42 1|10 5|20 3|42 1";
  const std::string head = "0 MPOLYGON|8 0|70 1|10 0|20 0|30 2|";
  const struct {
    const char* name;
    std::string pairs;
    bool solid, hatch;
  } cases[] = {
      {"solid", "2 SOLID|71 1|" + loops + "|76 1|63 1|11 0|21 0|99 0", true, true},
      {"pattern",
       "2 ANSI31|71 0|" + loops +
           "|76 1|52 0|41 1|77 0|78 1|53 45|43 0|44 0|45 -0.0883883476|"
           "46 0.0883883476|79 0|11 0|21 0|99 0",
       false, true},
      {"hollow", "2|71 0|" + loops + "|76 1|11 0|21 0|99 0", false, false},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    const Loaded got = loadShape(head + t.pairs);
    const std::vector<CEnt*> ents = entsOf(got);
    ASSERT_EQ(ents.size(), t.hatch ? 3u : 2u) << got.error.GetErrorLine();
    for (std::size_t i = 0; i < 2; ++i) {
      ASSERT_NE(castPolyline(ents[i]), nullptr);
      EXPECT_TRUE(castPolyline(ents[i])->isClosed());
      EXPECT_EQ(castPolyline(ents[i])->GetVertexPos(0).z, 2);
    }
    EXPECT_EQ(castPolyline(ents[0])->getNoTotalVertexes(), 4);
    EXPECT_GT(castPolyline(ents[1])->getNoTotalVertexes(), 100);
    if (!t.hatch) continue;
    const CEntHatch* hatch = castHatch(ents[2]);
    ASSERT_NE(hatch, nullptr);
    EXPECT_EQ(std::string(zim::WString(hatch->getHatchType().name).toUtf8()),
              t.solid ? "SOLID" : "ANSI31");
  }
}

TEST(ReadShapes, NonsenseGivesNothing) {
  const char* const cases[] = {
      "0 SOLID|8 0|10 0|20 0|11 1|21 1",
      "0 SOLID|8 0|10 1.7e308|20 1.7e308|11 0|21 0|12 0|22 0|210 1|220 1|230 1",
      "0 MLINE|8 0|11 0|21 0|13 0|23 1|41 1",
      "0 MLINE|8 0|11 0|21 0|13 0|23 1|74 1|41 1",
      "0 MLINE|8 0|11 1e308|21 0|13 1e308|23 1|74 1|41 1e9|11 0|21 0|74 1|41 1",
      "0 MESH|8 0|10 0|20 0|93 4|90 3|90 0|90 0",
      "0 MESH|8 0|20 0",
      "0 MPOLYGON|8 0|91 1|92 2|73 1|72 0|93 1|10 0|20 0",
  };
  for (const char* list : cases) {
    SCOPED_TRACE(list);
    EXPECT_EQ(entsOf(loadShape(list)).size(), 0u);
  }
}
