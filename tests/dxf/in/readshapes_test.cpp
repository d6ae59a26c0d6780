#include "dxf/ocs.h"
#include "support/test.h"

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

// Two lines along a path of three points; the miter at the corner has a length of 1.5.
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
  for (const Row& t : rows()) {
    const PlaneAxes plane(t.point("normal"));
    EXPECT_LT(plane.toWorld(PNT_3D(1, 0, 0)).dist(t.point("x")), 1e-5);
    EXPECT_LT(plane.toWorld(PNT_3D(0, 1, 0)).dist(t.point("y")), 1e-5);
  }
}

TEST(PlaneAxes, AreSquareAndRightHanded) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> number(-1, 1);
  for (int i = 0; i < 1000; ++i) {
    const double flat = i % 2 == 0 ? 1 : 0.02;  // also around the limit of the rule
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
  for (const char* kind : {"SOLID", "TRACE"}) {
    for (const Row& t : rows()) {
      const Loaded got =
          loadShape("0 " + std::string(kind) + "|8 0|62 3|" + corners + t.text("pairs"));
      const CEnt3DFace* face = cast3DFace(got.only());
      ASSERT_NE(face, nullptr) << got.error.GetErrorLine();
      for (long i = 0; i < 4; ++i)
        EXPECT_LT(face->getVertex(i).dist(t.points("want").at(static_cast<std::size_t>(i))), 1e-12)
            << i;
      EXPECT_EQ(face->isTriangular(), t.flag("triangle"));
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

// A line along x from 0 through 10 to 20, which ends there or returns.
TEST(ReadShapes, MultilinesAreCut) {
  for (const Row& t : rows()) {
    const bool closed = t.flag("closed");
    const std::string vertex = "|12 1|22 0|13 0|23 1|74 9|41 1";
    const Loaded got = loadShape("0 MLINE|8 0|71 " + std::string(closed ? "3" : "1") +
                                 "|11 0|21 0" + vertex + t.text("first") + "|11 10|21 0" + vertex +
                                 t.text("second") + "|11 20|21 0" + vertex + "|41 0");
    const std::vector<CEnt*> ents = entsOf(got);
    const std::vector<std::string> pieces = t.list("pieces");
    ASSERT_EQ(ents.size(), pieces.size()) << got.error.GetErrorLine();
    for (std::size_t i = 0; i < ents.size(); ++i) {
      const CEntPolyline* polyline = castPolyline(ents[i]);
      EXPECT_EQ(polyline->isClosed(), closed && ents.size() == 1);
      std::ostringstream xs;
      xs.precision(17);
      for (int v = 0; v < polyline->getNoTotalVertexes(); ++v) {
        const PNT_3D at = polyline->GetVertexPos(v);
        EXPECT_EQ(at, PNT_3D(at.x, 1, 0));
        xs << (v == 0 ? "" : " ") << at.x;
      }
      EXPECT_EQ(xs.str(), pieces[i]);
    }
  }
}

TEST(ReadShapes, MeshesBecomeFaces) {
  for (const Row& t : rows()) {
    const Loaded got = loadShape(kVertexes + t.text("faces"));
    const std::vector<CEnt*> ents = entsOf(got);
    ASSERT_EQ(ents.size(), t.reals("hidden").size()) << got.error.GetErrorLine();
    for (std::size_t i = 0; i < ents.size(); ++i)
      EXPECT_EQ(cast3DFace(ents[i])->getFlags(), t.reals("hidden")[i]) << i;
    EXPECT_EQ(got.report.count("mesh incomplete"), t.whole<long>("incomplete"));
  }
}

// The visible edges of a fan are those of its outline.
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
  const Definitions names{{"loops", loops}};
  for (const Row& t : rowsWith(names)) {
    const Loaded got = loadShape(head + t.text("pairs"));
    const std::vector<CEnt*> ents = entsOf(got);
    ASSERT_EQ(ents.size(), t.flag("hatch") ? 3u : 2u) << got.error.GetErrorLine();
    for (std::size_t i = 0; i < 2; ++i) {
      ASSERT_NE(castPolyline(ents[i]), nullptr);
      EXPECT_TRUE(castPolyline(ents[i])->isClosed());
      EXPECT_EQ(castPolyline(ents[i])->GetVertexPos(0).z, 2);
    }
    EXPECT_EQ(castPolyline(ents[0])->getNoTotalVertexes(), 4);
    EXPECT_GT(castPolyline(ents[1])->getNoTotalVertexes(), 100);
    if (!t.flag("hatch")) continue;
    const CEntHatch* hatch = castHatch(ents[2]);
    ASSERT_NE(hatch, nullptr);
    EXPECT_EQ(std::string(zim::WString(hatch->getHatchType().name).toUtf8()),
              t.flag("solid") ? "SOLID" : "ANSI31");
  }
}

TEST(ReadShapes, NonsenseGivesNothing) {
  for (const Row& t : rows()) EXPECT_EQ(entsOf(loadShape(t.text("list"))).size(), 0u);
}
