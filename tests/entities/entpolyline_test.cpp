#include "entities/polylines.h"

namespace {

/// Compares everything that can be read from a polyline without unpacking it.
void expectSameAnswers(const CEntPolyline& a, const CEntPolyline& b) {
  ASSERT_EQ(bulged(a), bulged(b));
  ASSERT_EQ(visible(a), visible(b));
  ASSERT_EQ(a.getFlags(), b.getFlags());
  ASSERT_EQ(a.getNoTotalVertexes(), b.getNoTotalVertexes());
  ASSERT_EQ(a.getNoCtrlPnts(), b.getNoCtrlPnts());
  ASSERT_EQ(a.getNoVisibleSegments(), b.getNoVisibleSegments());
  ASSERT_EQ(a.hasArcRuns(), b.hasArcRuns());
  ASSERT_EQ(a.isWide(), b.isWide());
  double widthA = 1;
  double widthB = 2;
  ASSERT_EQ(a.IsWidthConstant(widthA), b.IsWidthConstant(widthB));
  ASSERT_EQ(widthA, widthB);
  LINE_3D segmentA(0, 0, 0, 0, 0, 0);
  LINE_3D segmentB(0, 0, 0, 0, 0, 0);
  for (long i = -1; i <= a.getNoTotalVertexes(); ++i) {
    a.getLine(i, segmentA);
    b.getLine(i, segmentB);
    ASSERT_EQ(segmentA, segmentB) << "segment " << i;
  }
  ASSERT_EQ(a.getBdry(), b.getBdry());
}

class Random {
 public:
  explicit Random(unsigned seed) : m_engine(seed) {}
  int below(int n) { return static_cast<int>(m_engine() % static_cast<unsigned>(n)); }
  double real() { return std::uniform_real_distribution<double>(-10, 10)(m_engine); }
  PNT_3D pnt() { return PNT_3D(real(), real(), below(3)); }
  double bulge() {
    const double bulges[] = {0, 0, 0, real() / 10, -1, 1e-5};
    return bulges[below(6)];
  }

 private:
  std::mt19937 m_engine;
};

/// A packed polyline, as loading creates it; `wide` adds widths.
PolylinePtr randomPacked(Scene& s, Random& random, bool wide) {
  PolylinePtr p = polyline(s, random.below(2));
  for (int n = random.below(7); n > 0; --n) {
    const double ws = wide ? random.below(3) : 0;
    const double we = wide ? random.below(3) : 0;
    p->addBulgedVertex(random.pnt(), ws, we, random.bulge(), n);
  }
  return p;
}

/// The same polyline with vertex objects.
PolylinePtr unpackedCopy(Scene& s, const CEntPolyline& p) {
  PolylinePtr copy = copyOf(s, p);
  if (copy->getNoTotalVertexes() > 0) copy->GetVertex(0);
  return copy;
}

TEST(Polyline, PackedAndUnpackedAnswerAlike) {
  Scene s;
  Random random(4);
  for (const int round : rounds(400)) {
    const PolylinePtr packed = copyOf(s, *randomPacked(s, random, round % 2 == 0));
    ASSERT_NO_FATAL_FAILURE(expectSameAnswers(*packed, *unpackedCopy(s, *packed)));
  }
}

/// A random edit; equal numbers mean the same edit of every polyline.
void edit(Scene& s, CEntPolyline& p, int action, int where, const PNT_3D& pnt, double width) {
  const long total = p.getNoTotalVertexes();
  const int i = total == 0 ? 0 : where % static_cast<int>(total);
  switch (action) {
    case 0:
      p.SetVertexPos(i, pnt);
      break;
    case 1:
      p.SetVertexWidth(i, width, width);
      break;
    case 2:
      p.insertVertex(*new CVertex(pnt, width, 0, 0), i);
      break;
    case 3:
      delete p.removeVertex(i);
      break;
    case 4:
      p.close(s.gestor, s.factory, false);
      break;
    case 5:
      p.open(s.gestor, s.factory, false);
      break;
    case 6:
      p.addVertex(*new CVertex(pnt, 0, 0, 0));
      break;
    default:
      p.setWidth(width);
  }
  if (action < 2) p.calcBdry();  // writing one vertex leaves the extents to the caller
}

/// Extents that were updated incrementally must equal those computed from scratch.
void expectFreshExtents(Scene& s, const CEntPolyline& p) {
  const PolylinePtr copy = copyOf(s, p);
  copy->calcBdry();
  ASSERT_EQ(p.getBdry(), copy->getBdry());
}

/// Segments still stored as arcs must be those arcs: regenerating the chords from the arcs alone
/// yields the existing chain.
void expectTrueArcs(Scene& s, const CEntPolyline& p) {
  const PolylinePtr again = polyline(s, p.getFlags());
  p.forEachBulged(
      [&again](const PNT_3D& pnt, double ws, double we, double bulge, vek0::Handle handle) {
        again->addBulgedVertex(pnt, ws, we, bulge, handle);
      });
  ASSERT_EQ(again->getNoTotalVertexes(), p.getNoTotalVertexes());
  for (int i = 0; i < p.getNoTotalVertexes(); ++i)
    ASSERT_LE(again->GetVertexPos(i).dist(p.GetVertexPos(i)), 1e-9) << "vertex " << i;
}

TEST(Polyline, EditsOfPackedAndUnpackedAgree) {
  Scene s;
  Random random(5);
  for (int round = 0; round < 300; ++round) {
    const PolylinePtr packed = copyOf(s, *randomPacked(s, random, round % 2 == 0));
    const PolylinePtr unpacked = unpackedCopy(s, *packed);
    for ([[maybe_unused]] const int step : rounds(5)) {
      const int action = random.below(8);
      const int where = random.below(1000);
      const PNT_3D pnt = random.pnt();
      const double width = random.below(2);
      edit(s, *packed, action, where, pnt, width);
      edit(s, *unpacked, action, where, pnt, width);
      ASSERT_NO_FATAL_FAILURE(expectSameAnswers(*packed, *unpacked)) << "action " << action;
      ASSERT_NO_FATAL_FAILURE(expectTrueArcs(s, *unpacked)) << "action " << action;
      ASSERT_NO_FATAL_FAILURE(expectFreshExtents(s, *unpacked)) << "action " << action;
    }
  }
}

TEST(Polyline, ArcsOutliveEditsElsewhere) {
  const struct {
    const char* name;
    void (*edit)(CEntPolyline&);
    int arcs;
  } cases[] = {
      {"nothing", [](CEntPolyline& p) { p.GetVertex(0); }, 2},
      {"straight vertex", [](CEntPolyline& p) { p.SetVertexPos(0, PNT_3D(-1, 1, 0)); }, 2},
      {"start of an arc", [](CEntPolyline& p) { p.SetVertexPos(1, PNT_3D(1, 1, 0)); }, 1},
      {"inside an arc", [](CEntPolyline& p) { p.SetVertexPos(5, PNT_3D(1, 1, 0)); }, 1},
      {"where two arcs meet", [](CEntPolyline& p) { p.SetVertexPos(113, PNT_3D(1, 1, 0)); }, 0},
      {"width inside an arc", [](CEntPolyline& p) { p.SetVertexWidth(5, 1, 1); }, 1},
      {"width where they meet", [](CEntPolyline& p) { p.SetVertexWidth(113, 1, 1); }, 1},
      {"one width for all", [](CEntPolyline& p) { p.setWidth(3); }, 2},
      {"insert before them",
       [](CEntPolyline& p) { p.insertVertex(*new CVertex(PNT_3D(0, 5, 0), 0, 0, 0), 1); }, 2},
      {"insert between them",
       [](CEntPolyline& p) { p.insertVertex(*new CVertex(PNT_3D(0, 5, 0), 0, 0, 0), 113); }, 1},
      {"remove before them", [](CEntPolyline& p) { delete p.removeVertex(0); }, 2},
      {"remove where they meet", [](CEntPolyline& p) { delete p.removeVertex(113); }, 0},
      {"moving all", [](CEntPolyline& p) { p.translate(PNT_3D(1, 2, 3)); }, 2},
  };
  for (const auto& t : named(cases)) {
    Scene s;
    const PolylinePtr p = polyline(s);
    // Half circles of 112 chords from (1, 0) through (2, 0) to (3, 0).
    for (const double x : {0, 1, 2, 3})
      p->addBulgedVertex(PNT_3D(x, 0, 0), 0, 0, x == 1 || x == 2 ? 1 : 0, 0);
    ASSERT_EQ(p->getNoTotalVertexes(), 1 + 112 + 112 + 1);
    t.edit(*p);
    int arcs = 0;
    for (const BulgedRow& row : bulged(*p)) arcs += std::get<5>(row) != 0 ? 1 : 0;
    EXPECT_EQ(arcs, t.arcs);
    EXPECT_EQ(p->hasArcRuns(), t.arcs > 0);
  }
}

TEST(Polyline, OpeningAClosingArcLeavesItsChords) {
  Scene s;
  for (const bool unpackFirst : {false, true}) {
    const PolylinePtr p = polyline(s, CEntPolyline::kClosed);
    p->addBulgedVertex(PNT_3D(0, 0, 0), 0, 0, 0, 0);
    p->addBulgedVertex(PNT_3D(2, 0, 0), 0, 0, 1, 0);
    if (unpackFirst) p->GetVertex(0);
    EXPECT_TRUE(p->hasArcRuns());
    p->open(s.gestor, s.factory, false);
    EXPECT_FALSE(p->hasArcRuns());
    EXPECT_EQ(p->getNoTotalVertexes(), 1 + 112);
    p->close(s.gestor, s.factory, false);
    EXPECT_FALSE(p->hasArcRuns());
  }
}

TEST(Polyline, ExtentsFollowEveryWayOfAdding) {
  Scene s;
  const PolylinePtr p = polyline(s, "0,0 3,1");
  EXPECT_EQ(p->getBdry(), RECT_3D(0, 0, 0, 3, 1, 0));
  p->addVertex(*new CVertex(PNT_3D(5, -2, 1), 0, 0, 0));
  EXPECT_EQ(p->getBdry(), RECT_3D(0, -2, 0, 5, 1, 1));
  p->insertVertex(*new CVertex(PNT_3D(-9, 0, 0), 0, 0, 0), 0);
  EXPECT_EQ(p->getBdry().min.x, -9);
  delete p->removeVertex(0);
  EXPECT_EQ(p->getBdry(), RECT_3D(0, -2, 0, 5, 1, 1));
  p->clearVertex();
  EXPECT_FALSE(p->getBdry().validRegion());
}

TEST(Polyline, WidthsReachIntoTheExtents) {
  Scene s;
  const PolylinePtr p = polyline(s, "0,0 10,0");
  p->setWidth(2);
  EXPECT_EQ(p->getBdry(), RECT_3D(0, -1, 0, 10, 1, 0));
  p->setWidth(0);
  EXPECT_EQ(p->getBdry(), RECT_3D(0, 0, 0, 10, 0, 0));
  p->addVertex(*new CVertex(PNT_3D(20, 0, 0), 0, 0, 0));
  p->SetVertexWidth(1, 4, 4);
  p->calcBdry();
  EXPECT_EQ(p->getBdry(), RECT_3D(0, -2, 0, 20, 2, 0));
}

TEST(Polyline, SegmentsOfEveryShape) {
  const Definitions names{{"kClosed", CEntPolyline::kClosed}};
  for (const Row& t : rowsWith(names)) {
    Scene s;
    const PolylinePtr p = polyline(s, t.text("points"), t.whole("flags"));
    long from = -7;
    long to = -7;
    p->getFirstVisibileSegmentIndex(from, to);
    EXPECT_EQ(p->getNoVisibleSegments(), t.whole<long>("segments"));
    EXPECT_EQ(from, t.whole<long>("from"));
    EXPECT_EQ(to, t.whole<long>("to"));
  }
}

TEST(Polyline, SegmentsBeyondTheEndsAreTheClosingOne) {
  Scene s;
  for (const bool closed : {true, false}) {
    const PolylinePtr p = polyline(s, "0,0 1,0 1,1", closed ? CEntPolyline::kClosed : 0);
    const PNT_3D last(1, 1, 0);
    const PNT_3D first(0, 0, 0);
    for (const long i : named<long>({-1L, 2L, 3L, 99L})) {
      LINE_3D segment(9, 9, 9, 9, 9, 9);
      p->getLine(i, segment);
      EXPECT_EQ(segment, LINE_3D(last, closed || i < 0 ? first : last));
    }
  }
}

TEST(Polyline, VertexIndicesOutside) {
  Scene s;
  const vek0::test::QuietAsserts asserts;
  const PolylinePtr p = polyline(s, "0,0 1,0");
  EXPECT_EQ(p->GetVertex(2).getPnt(), PNT_3D(1, 0, 0));
  EXPECT_EQ(p->GetVertexPos(-1), PNT_3D(0, 0, 0));
  EXPECT_EQ(asserts.failures().size(), 2U);
  p->SetVertexPos(2, PNT_3D(5, 5, 5));
  EXPECT_EQ(p->removeVertex(2), nullptr);
  EXPECT_EQ(p->removeVertex(-1), nullptr);
  EXPECT_EQ(p->getNoTotalVertexes(), 2);
  EXPECT_EQ(polyline(s)->GetVertex(0).getPnt(), PNT_3D(0, 0, 0));
}

TEST(Polyline, WidthIsConstantOnlyIfAllEndsAgree) {
  const struct {
    const char* name;
    std::vector<std::pair<double, double>> widths;
    bool isConstant;
    double width;
  } cases[] = {
      {"no vertex", {}, false, 0},
      {"one vertex", {{2, 2}}, true, 2},
      {"it tapers", {{2, 3}}, false, 0},
      {"later one bends", {{2, 2}, {2, 1}}, false, 0},
      {"all thin", {{0, 0}, {0, 0}}, true, 0},
  };
  for (const auto& t : named(cases)) {
    Scene s;
    const PolylinePtr p = polyline(s);
    for (const auto& [ws, we] : t.widths) p->addVertex(*new CVertex(PNT_3D(1, 1, 0), ws, we, 0));
    double width = 77;
    EXPECT_EQ(p->IsWidthConstant(width), t.isConstant);
    EXPECT_EQ(width, t.width);
  }
}

TEST(Polyline, RegistrationCoversEveryVertexLastToFirst) {
  Scene s;
  const PolylinePtr p = polyline(s);
  for (const vek0::Handle handle : {1, 2, 3})
    p->addVertex(*new CVertex(PNT_3D(0, 0, 0), 0, 0, handle));
  p->addTbls(s.gestor);
  EXPECT_EQ(s.gestor.reserved, (std::vector<vek0::Handle>{0, 3, 2, 1}));
  p->removeTbls(s.gestor);
  EXPECT_EQ(s.gestor.released, (std::vector<vek0::Handle>{0, 3, 2, 1}));
}

TEST(Polyline, PackedVerticesAreRegisteredWhereHandlesAreManaged) {
  Scene s;
  for (const bool manages : {false, true}) {
    RecordingGestor gestor(manages);
    const PolylinePtr p = polyline(s);
    p->addBulgedVertex(PNT_3D(0, 0, 0), 0, 0, 0, 8);
    p->addBulgedVertex(PNT_3D(1, 0, 0), 0, 0, 0, 9);
    p->addTbls(gestor);
    EXPECT_EQ(gestor.reserved,
              manages ? (std::vector<vek0::Handle>{0, 9, 8}) : std::vector<vek0::Handle>{0});
  }
}

// --- Copies and undo

TEST(Polyline, CopiesHaveNoHandlesAndLinesBecomeTwoVertices) {
  Scene s;
  const PolylinePtr p = polyline(s, CEntPolyline::kClosed | CEntPolyline::kLtGen);
  p->addBulgedVertex(PNT_3D(0, 0, 0), 0, 0, 1, 8);
  p->addBulgedVertex(PNT_3D(1, 0, 0), 0, 0, 0, 9);
  for (const PolylinePtr& copy : {copyOf(s, *p), unpackedCopy(s, *p)}) {
    for (const BulgedRow& row : bulged(*copy)) EXPECT_EQ(std::get<6>(row), 0);
    EXPECT_EQ(copy->getFlags(), p->getFlags());
    EXPECT_EQ(copy->getBdry(), p->getBdry());
  }
  const std::unique_ptr<CEntLine> line(s.line(1, 2, 3, 4, 17));
  line->setUserData(5);
  const PolylinePtr fromLine(s.factory.createEntPolyline(s.gestor, *line));
  EXPECT_EQ(visible(*fromLine),
            (std::vector<BulgedRow>{{1, 2, 0, 0, 0, 0, 0}, {3, 4, 0, 0, 0, 0, 0}}));
  EXPECT_EQ(fromLine->GetHandle(), 0);
  EXPECT_EQ(fromLine->getUserData(), 5);
  EXPECT_EQ(fromLine->getBdry(), line->getBdry());
}

TEST(PolylineMemento, RestoresWhateverWasEdited) {
  Scene s;
  Random random(6);
  for (const int round : rounds(300)) {
    const PolylinePtr p = copyOf(s, *randomPacked(s, random, round % 3 == 0));
    if (round % 2 == 0 && p->getNoTotalVertexes() > 0) p->GetVertex(0);
    const PolylinePtr before = copyOf(s, *p);
    const std::unique_ptr<IEntDerivedMemento> memento(p->createDerivedMemento());
    ASSERT_TRUE(*p == *memento);
    for (int step = random.below(4); step >= 0; --step)
      edit(s, *p, random.below(8), random.below(1000), random.pnt(), random.below(2));
    ASSERT_EQ(*p == *memento, bulged(*p) == bulged(*before) && p->getFlags() == before->getFlags());
    p->setMemento(*s.data, memento.get());
    ASSERT_TRUE(*p == *memento);
    ASSERT_NO_FATAL_FAILURE(expectSameAnswers(*p, *before));
    p->addVertex(*new CVertex(random.pnt(), 0, 0, 0));
    ASSERT_NO_FATAL_FAILURE(expectFreshExtents(s, *p));
  }
}

TEST(PolylineMemento, KeepsVertexObjectsWhereItCan) {
  Scene s;
  const PolylinePtr p = polyline(s, "0,0 1,0 2,0");
  const CVertex* first = &p->GetVertex(0);
  const std::unique_ptr<IEntDerivedMemento> three(p->createDerivedMemento());

  p->SetVertexPos(0, PNT_3D(9, 9, 9));
  p->setMemento(*s.data, three.get());
  EXPECT_EQ(&p->GetVertex(0), first) << "same count: reset in place";
  EXPECT_EQ(p->GetVertexPos(0), PNT_3D(0, 0, 0));

  delete p->removeVertex(1);
  p->setMemento(*s.data, three.get());
  EXPECT_EQ(&p->GetVertex(0), first);
  EXPECT_EQ(p->getNoTotalVertexes(), 3);
  EXPECT_EQ(p->GetVertexPos(1), PNT_3D(1, 0, 0)) << "made anew";
  EXPECT_EQ(p->getBdry(), RECT_3D(0, 0, 0, 2, 0, 0));
  EXPECT_GE(three->size(), 3 * sizeof(CVertexMemento));
}

}  // namespace
