#include "support/test.h"

namespace {

// A vertex record with the given coordinates and further pairs.
std::string vertex(const char* x, const char* y, const char* more = "") {
  return std::string("|0 VERTEX|8 0|10 ") + x + "|20 " + y + more;
}

// Vertex records from "x,y,flags x,y,flags ...".
std::string flagged(const std::string& list) {
  std::istringstream in(list);
  std::string records, x, y, flags;
  while (std::getline(in >> std::ws, x, ',') && std::getline(in, y, ',') && in >> flags)
    records += vertex(x.c_str(), y.c_str(), ("|70 " + flags).c_str());
  return records;
}

std::string polyline(const std::string& codes, const std::string& vertexes) {
  return "0 POLYLINE|8 0|66 1" + codes + vertexes + "|0 SEQEND";
}

const std::string kClosedSquare =
    vertex("0", "0") + vertex("4", "0") + vertex("4", "4") + vertex("0", "4");

}  // namespace

TEST(ReadPolylines, PlainFlagsAndVertices) {
  for (const Row& t : rows()) {
    const Loaded got = loadEntities(polyline(t.text("codes"), kClosedSquare));
    const CEntPolyline* chain = castPolyline(got.only());
    ASSERT_NE(chain, nullptr);
    EXPECT_EQ(chain->isClosed(), t.flag("closed"));
    EXPECT_EQ(chain->IsLtGen(), t.flag("ltGen"));
    EXPECT_FALSE(chain->isCurve());
    ASSERT_EQ(chain->getNoTotalVertexes(), 4);
    EXPECT_DOUBLE_EQ(chain->GetVertexPos(2).x, 4);
    EXPECT_DOUBLE_EQ(chain->GetVertexPos(2).y, 4);
  }
}

TEST(ReadPolylines, VerticesTakeWhatThePolylineSays) {
  const Loaded got = loadEntities(
      polyline("|30 7|40 1|41 2", vertex("0", "0") + vertex("1", "0", "|30 5|40 3|41 4|5 2A")));
  const CEntPolyline* chain = castPolyline(got.only());
  ASSERT_NE(chain, nullptr);
  EXPECT_DOUBLE_EQ(chain->GetVertex(0).getPnt().z, 7);
  EXPECT_DOUBLE_EQ(chain->GetVertex(0).GetWidthStart(), 1);
  EXPECT_DOUBLE_EQ(chain->GetVertex(0).GetWidthEnd(), 2);
  EXPECT_DOUBLE_EQ(chain->GetVertex(1).getPnt().z, 5);
  EXPECT_DOUBLE_EQ(chain->GetVertex(1).GetWidthStart(), 3);
  EXPECT_DOUBLE_EQ(chain->GetVertex(1).GetWidthEnd(), 4);
  EXPECT_EQ(chain->GetVertex(1).GetHandle(), 0x2A);
}

TEST(ReadPolylines, NoVertices) {
  const Loaded got = loadEntities(polyline("", ""));
  ASSERT_NE(castPolyline(got.only()), nullptr);
  EXPECT_EQ(castPolyline(got.only())->getNoTotalVertexes(), 0);
}

// A half circle from (0, 0) to (2, 0), counterclockwise: it dips to y = -1.
TEST(ReadPolylines, Bulge) {
  for (const std::string& text :
       {entitiesOf("AC1009", polyline("", vertex("0", "0", "|42 1") + vertex("2", "0"))),
        entitiesOf("AC1014", "0 LWPOLYLINE|8 0|90 2|10 0|20 0|42 1|10 2|20 0")}) {
    const Loaded got = loadText(text);
    const CEntPolyline* chain = castPolyline(got.only());
    ASSERT_NE(chain, nullptr);
    EXPECT_TRUE(chain->hasArcRuns());
    EXPECT_NEAR(chain->getBdry().min.y, -1, 1e-3);
    EXPECT_NEAR(chain->getBdry().max.y, 0, 1e-12);
  }
}

TEST(ReadPolylines, Curves) {
  constexpr long made = -1;  // generated on reading, more than the controls
  const Definitions names{{"made", made}};
  for (const Row& t : rowsWith(names)) {
    const Loaded got = loadEntities(polyline(t.text("codes"), flagged(t.text("vertexes"))));
    const CEntPolyline* chain = castPolyline(got.only());
    ASSERT_NE(chain, nullptr);
    EXPECT_EQ(chain->getCurve(), t.whole<short>("curve"));
    EXPECT_EQ(chain->getDegree(), t.whole<short>("degree"));
    EXPECT_EQ(chain->getNoCtrlPnts(), t.whole<long>("controls"));
    if (t.whole<long>("visible") == made)
      EXPECT_GT(chain->getNoVisibleVertexes(), t.whole<long>("controls"));
    else
      EXPECT_EQ(chain->getNoVisibleVertexes(), t.whole<long>("visible"));
  }
}

TEST(ReadPolylines, MeshBecomesFaces) {
  for (const Row& t : rows()) {
    const Loaded got = loadEntities(
        polyline(t.text("codes"), flagged("0,0,64 1,0,64 2,0,64 0,1,64 1,1,64 2,1,64")));
    EXPECT_FALSE(got.error.HasAnError());
    EXPECT_EQ(got.count(11), t.whole<long>("faces"));
    EXPECT_EQ(got.count(5), 0);
    EXPECT_EQ(got.report.count("mesh incomplete"), t.whole<long>("incomplete"));
  }
}

TEST(ReadPolylines, SmoothedMeshShowsItsSurface) {
  std::string vertexes = vertex("9", "9", "|70 80");
  for (const char* x : {"0", "1", "2", "3"})
    vertexes += vertex(x, "0", "|70 72") + vertex(x, "1", "|70 72");
  const Loaded got = loadEntities(polyline("|70 20|71 1|72 1|73 4|74 2|75 6", vertexes));
  EXPECT_EQ(got.count(11), 3);
  EXPECT_DOUBLE_EQ(got.data->getEntTable().getBdry().max.x, 3);
}

TEST(ReadPolylines, PolyfaceBecomesFaces) {
  std::string vertexes;
  for (const char* x : {"0", "1", "2", "3"}) vertexes += vertex(x, "5", "|70 192");
  const auto face = [](const char* corners) { return vertex("0", "0", "|70 128|62 3") + corners; };
  vertexes += face("|71 1|72 -2|73 3|74 4") + face("|71 1|72 2|73 3") + face("|71 1|72 2") +
              face("|71 1|72 2|73 9") + face("|71 0|72 0");
  const Loaded got = loadEntities(polyline("|70 64|71 4|72 5", vertexes));
  const auto& faces = got.data->getEntTable().getEntityTbl();
  ASSERT_EQ(faces.size(), 3u);
  const CEnt3DFace* first = cast3DFace(faces.front());
  EXPECT_EQ(first->getFlags(), 2);
  EXPECT_EQ(first->getColor(), 3);
  EXPECT_DOUBLE_EQ(first->getVertex(3).x, 3);
  EXPECT_TRUE(cast3DFace(*std::next(faces.begin()))->isTriangular());
  EXPECT_DOUBLE_EQ(cast3DFace(faces.back())->getVertex(3).x, 1);
  EXPECT_EQ(got.report.count("mesh incomplete"), 2);
}

TEST(ReadPolylines, MeshesInsideBlocksGiveTheirFacesToTheBlock) {
  const std::string mesh =
      polyline("|70 16|71 3|72 2", flagged("0,0,64 1,0,64 0,1,64 1,1,64 0,2,64 1,2,64"));
  const Loaded got =
      loadText(section("BLOCKS", pairsOf("0 BLOCK|2 A|" + mesh + "|0 ENDBLK")) + dxf());
  EXPECT_EQ(got.data->getBlockTable().get(u"A")->size(), 2u);
}

TEST(ReadPolylines, LightPolyline) {
  const Loaded got = loadText(
      entitiesOf("AC1015",
                 "0 LWPOLYLINE|100 AcDbEntity|8 0|90 3|70 129|43 2|10 0|20 1|91 7|10 2|20 3|40 5|"
                 "10 4|20 5|41 6|38 9"));
  const CEntPolyline* chain = castPolyline(got.only());
  ASSERT_NE(chain, nullptr);
  EXPECT_TRUE(chain->isClosed());
  EXPECT_TRUE(chain->IsLtGen());
  ASSERT_EQ(chain->getNoTotalVertexes(), 3);
  const double widths[][2] = {{2, 2}, {5, 2}, {2, 6}};
  for (int i = 0; i < 3; ++i) {
    EXPECT_DOUBLE_EQ(chain->GetVertexPos(i).x, 2 * i);
    EXPECT_DOUBLE_EQ(chain->GetVertexPos(i).y, 2 * i + 1);
    EXPECT_DOUBLE_EQ(chain->GetVertexPos(i).z, 9);
    EXPECT_DOUBLE_EQ(chain->GetVertex(i).GetWidthStart(), widths[i][0]);
    EXPECT_DOUBLE_EQ(chain->GetVertex(i).GetWidthEnd(), widths[i][1]);
  }
}
