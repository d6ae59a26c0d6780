#include "entities/scene.h"
#include "support/test.h"

using vek0::detail::kPi;

namespace {

using Ents = std::vector<std::unique_ptr<CEnt>>;

class Explode : public testing::Test, protected Scene {
 protected:
  Explode() : byBlock(&data->getLtypeByBlock()) {
    made = std::make_unique<CEntExploderVisitor>(data->getHandleGestor(), data->getEntFactory(),
                                                 data->getBlockFactory(), data->getBlockTable());
  }
  ~Explode() {
    for (CEnt* ent : owned) delete ent;
    made.reset();
  }

  Ents& explode(CEnt& ent) {
    made->getEnts().clear();
    ent.accept(*made);
    return made->getEnts();
  }

  CBlock* block(const std::string& name, const std::vector<CEnt*>& ents) {
    CBlock* b = data->getBlockFactory().create(zim::WString::fromUtf8(name), PNT_3D(0, 0, 0), 0);
    for (CEnt* ent : ents) b->add(ent);
    data->getBlockTable().add(b);
    return b;
  }

  CEntInsert* insert(CBlock* b, const PNT_3D& at, double sx, double sy, double rotation,
                     long columns = 1, long rows = 1) {
    return createEntInsert(*data, layer(), ltype(), 3, *b, at, sx, sy, 1, rotation, columns, rows,
                           10, 20, 0);
  }
  CEntInsert* keptInsert(CBlock* b, const PNT_3D& at, double sx, double sy, double rotation,
                         long columns = 1, long rows = 1) {
    owned.push_back(insert(b, at, sx, sy, rotation, columns, rows));
    return static_cast<CEntInsert*>(owned.back());
  }

  CEntCircle* circle(double x, double y, double r) {
    return createEntCircle(*data, layer(), ltype(), 256, CIRCLE_3D(x, y, 0, r), 0);
  }
  CEntArc* arc(double x, double y, double r, double from, double to) {
    return createEntArc(*data, layer(), ltype(), 256, ARC_3D(x, y, 0, r, from, to), 0);
  }
  CEntPolyline* polyline(bool closed, const std::vector<BULGED_VERTEX>& vertexes) {
    CEntPolyline* p = createEntPolyline(*data, layer(), ltype(), 5, closed ? 1 : 0, 0, 0);
    p->setBulgedVertexes(vertexes.data(), vertexes.size());
    return p;
  }

  CLtype* byBlock;
  std::unique_ptr<CEntExploderVisitor> made;
  std::vector<CEnt*> owned;
};

TEST_F(Explode, PolylinesGiveTheirSegments) {
  CEntPolyline* p = polyline(
      true,
      {{0, 0, 1, 2, 2, 0, 0}, {4, 0, 1, 0, 0, 1, 0}, {4, 2, 1, 0, 0, 0, 0}, {0, 2, 1, 0, 0, 0, 0}});
  owned.push_back(p);
  const Ents& ents = explode(*p);
  ASSERT_EQ(ents.size(), 4u);
  const short kinds[] = {CEntLine::kType, CEntArc::kType, CEntLine::kType, CEntLine::kType};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(ents[i]->getType(), kinds[i]);
    EXPECT_EQ(ents[i]->getColor(), 5);
    EXPECT_EQ(ents[i]->getLayer(), layer());
  }
  EXPECT_TRUE(static_cast<CEntLine&>(*ents[3]).getLine() == LINE_3D(0, 2, 1, 0, 0, 1));
  const ARC_3D& turn = static_cast<CEntArc&>(*ents[1]).getArc();
  EXPECT_NEAR(turn.PNT_3D::dist(PNT_3D(4, 1, 1)), 0, 1e-12);
  EXPECT_NEAR(turn.radius, 1, 1e-12);
  EXPECT_EQ(p->getNoTotalVertexes(), 4 + arcChords(kPi) - 1);
}

TEST_F(Explode, KindsWithoutPartsGiveNothing) {
  for (CEnt* ent : std::vector<CEnt*>{line(0, 0, 1, 1), circle(0, 0, 1), arc(0, 0, 1, 0, 1)}) {
    owned.push_back(ent);
    EXPECT_TRUE(explode(*ent).empty());
    EXPECT_FALSE(made->isRefused());
  }
}

TEST_F(Explode, InsertsKeepLayersAndLendWhatIsByBlock) {
  CLayer* own = data->getLayerFactory().create(u"OWN", layer()->getLtype(), 3, 0);
  data->getLayerTable().add(own);
  CEntLine* a = createEntLine(*data, own, byBlock, 0, LINE_3D(0, 0, 0, 1, 0, 0), 0);
  CEntLine* b = createEntLine(*data, own, ltype(), 9, LINE_3D(0, 0, 0, 0, 1, 0), 0);
  CEntInsert* ins = keptInsert(block("B", {a, b}), PNT_3D(100, 0, 5), 2, 2, kPi / 2, 2, 3);
  const long before = own->getEntities();
  const Ents& ents = explode(*ins);
  ASSERT_EQ(ents.size(), 12u);
  EXPECT_EQ(ents[0]->getLayer(), own);
  EXPECT_EQ(ents[0]->getColor(), 3);
  EXPECT_EQ(ents[0]->getLtype(), ltype());
  EXPECT_EQ(ents[1]->getColor(), 9);
  EXPECT_EQ(own->getEntities(), before);
  const LINE_3D& first = static_cast<CEntLine&>(*ents[0]).getLine();
  EXPECT_NEAR(first.p2.dist(PNT_3D(100, 2, 5)), 0, 1e-12);
  // The last cell is offset by one column upward and two rows to the left.
  const LINE_3D& last = static_cast<CEntLine&>(*ents[10]).getLine();
  EXPECT_NEAR(last.p1.dist(PNT_3D(60, 10, 5)), 0, 1e-12);
}

// Traits that are BYBLOCK become those of the insert; the others stay.
TEST_F(Explode, InsertsLendTraitsThatAreByBlock) {
  ENT_TRAITS own, byInsert, lent;
  byInsert.lineweight = ENT_TRAITS::kWeightByBlock;
  byInsert.opacity = ENT_TRAITS::kOpacityByBlock;
  own.trueColor = 0x10;
  own.lineweight = 25;
  own.thickness = 3;
  lent.trueColor = 0x20;
  lent.lineweight = 50;
  lent.opacity = 99;
  lent.isVisible = false;
  std::vector<CEnt*> lines;
  for (const ENT_TRAITS& traits : {byInsert, own}) {
    lines.push_back(createEntLine(*data, layer(), ltype(), 0, LINE_3D(0, 0, 0, 1, 0, 0), 0));
    lines.back()->setTraits(traits);
  }
  CEntInsert* ins = keptInsert(block("B", lines), PNT_3D(0, 0, 0), 1, 1, 0);
  ins->setTraits(lent);
  ins->setInsert(PNT_3D(0, 0, 0), 1, 1, -2, 0);
  const Ents& ents = explode(*ins);
  ASSERT_EQ(ents.size(), 2u);
  EXPECT_TRUE(ents[0]->getTraits() == lent);
  own.isVisible = false;
  own.thickness = -6;
  EXPECT_TRUE(ents[1]->getTraits() == own);
  ents[1]->setColor(4);
  own.trueColor = ENT_TRAITS::kNoTrueColor;
  EXPECT_TRUE(ents[1]->getTraits() == own);
}

// For any placement, the exploded entities are where the insert showed them.
TEST_F(Explode, WhatIsShownStaysWhereItIs) {
  const Definitions names{
      {"Circle", CEntCircle::kType}, {"Arc", CEntArc::kType}, {"Polyline", CEntPolyline::kType}};
  for (const Row& c : rowsWith(names)) {
    const std::vector<BULGED_VERTEX> chain{
        {0, 0, 0, 1, 2, 0.5, 0}, {4, 1, 0, 0, 0, -1, 0}, {5, 5, 0, 0, 0, 0, 0}};
    CBlock* b =
        block(c.text("name"), {circle(1, 2, 3), arc(4, 1, 2, 0.5, 2.5), polyline(false, chain)});
    CEntInsert* ins = keptInsert(b, PNT_3D(7, 8, 9), c.real("sx"), c.real("sy"), 0.7);
    const Ents& ents = explode(*ins);
    ASSERT_EQ(ents.size(), 3u);
    EXPECT_EQ(ents[0]->getType(), c.whole<short>("circle"));
    EXPECT_EQ(ents[1]->getType(), c.whole<short>("arc"));
    EXPECT_EQ(ents[2]->getType(), CEntPolyline::kType);
    const CEntInsertMatrix matrix(1, *ins, 0, 0);
    for (unsigned i = 0; i < 3; ++i) {
      PATH_3D inside, outside;
      ASSERT_TRUE(getEntPath(*(*b)[i], inside));
      ASSERT_TRUE(getEntPath(*ents[i], outside));
      for (const EDGE_3D& edge : inside.edges) {
        for (const double t : {0.0, 0.3, 0.8, 1.0}) {
          PNT_3D p;
          matrix.transform(edge.at(t), p);
          std::size_t at;
          double u;
          outside.nearest(p, at, u);
          EXPECT_LE(outside.edges[at].at(u).PNT_2D::dist(p), 2e-3);
        }
      }
    }
  }
}

TEST_F(Explode, NestedInsertsStayInsertsUnlessTheyWouldShear) {
  CBlock* inner = block("INNER", {line(0, 0, 1, 0), line(0, 0, 0, 1)});
  CEntInsert* square = insert(inner, PNT_3D(1, 1, 0), 2, 3, kPi / 2, 2, 2);
  CEntInsert* askew = insert(inner, PNT_3D(1, 1, 0), 2, 3, 0.4, 2, 2);
  const CEntInsertMatrix cell(1, *square, 1, 1);
  CEntInsert* ins = keptInsert(block("OUTER", {square, askew}), PNT_3D(5, 5, 0), -4, 1, 0.3);
  const Ents& ents = explode(*ins);
  ASSERT_EQ(ents.size(), 9u);
  ASSERT_EQ(ents[0]->getType(), CEntInsert::kType);
  EXPECT_EQ(ents[1]->getType(), CEntLine::kType);
  const CEntInsertMatrix whole = CEntInsertMatrix(1, *ins, 0, 0) * cell;
  const CEntInsertMatrix placed(1, static_cast<CEntInsert&>(*ents[0]), 1, 1);
  for (const PNT_3D& p : {PNT_3D(0, 0, 0), PNT_3D(1, 0, 0), PNT_3D(0, 1, 0)}) {
    PNT_3D a, b;
    whole.transform(p, a);
    placed.transform(p, b);
    EXPECT_NEAR(a.dist(b), 0, 1e-12);
  }
}

// Undo and copies keep a clip; exploding a clipped insert yields its whole content.
TEST_F(Explode, ClipsAreKeptOrCountedAsLost) {
  CEntInsert* inner = insert(block("IN", {line(0, 0, 1, 0)}), PNT_3D(0, 0, 0), 1, 1, 0, 1, 1);
  auto clip = std::make_shared<INSERT_CLIP>();
  clip->boundary = {PNT_2D(0, 0), PNT_2D(1, 0), PNT_2D(1, 1)};
  inner->setClip(clip);
  CEntInsert* outer = keptInsert(block("OUT", {inner}), PNT_3D(0, 0, 0), 1, 1, 0);
  outer->setClip(clip);
  const std::unique_ptr<IEntDerivedMemento> before(outer->createDerivedMemento());
  outer->setClip(nullptr);
  EXPECT_TRUE(*outer != *before);
  outer->setMemento(*data, before.get());
  EXPECT_TRUE(outer->isClipped());
  const Ents& ents = explode(*outer);
  ASSERT_EQ(ents.size(), 1u);
  EXPECT_EQ(made->getNoLostClips(), 1);
  EXPECT_EQ(static_cast<const CEntInsert&>(*ents[0]).getClip(), clip);
}

TEST_F(Explode, AttributesBecomeTexts) {
  const TEXT_3D text(u"value", nullptr, 1, 2, 0, 3, 0, 1, 0.25, 0);
  CEntInsert* ins = keptInsert(block("B", {}), PNT_3D(10, 0, 0), 2, 2, 0.5);
  IHandleGestor& handles = data->getHandleGestor();
  ins->add(data->getEntFactory().createEntAttrib(handles, layer(), ltype(), 0, text, u"TAG", 0, 0));
  ins->add(data->getEntFactory().createEntAttrib(handles, layer(), ltype(), 0, text, u"TAG", 1, 0));
  const Ents& ents = explode(*ins);
  ASSERT_EQ(ents.size(), 1u);
  ASSERT_EQ(ents[0]->getType(), CEntText::kType);
  const TEXT_3D& shown = static_cast<CEntText&>(*ents[0]).getText();
  EXPECT_TRUE(shown.getContext().getString().Equals(u"value"));
  EXPECT_DOUBLE_EQ(shown.getContext().getHeight(), 6);
  EXPECT_DOUBLE_EQ(shown.getContext().getRotate(), 0.75);
  EXPECT_EQ(ents[0]->getColor(), 3);
}

TEST_F(Explode, HatchesGiveLinesAndStayHatchesInBlocks) {
  const std::vector<PNT_3D> ring = vek0::test::pts("0,0 10,0 10,10 0,10");
  CEntHatch* hatch =
      createEntHatch(*data, layer(), ltype(), 4, *getHatch(u"ANSI31"), 8, 0, ring, 0);
  ASSERT_NE(hatch, nullptr);
  const std::size_t lines = hatch->getBlock()->size();
  const ENT_TRAITS traits{5, 25, 99, true, 1, 0};
  hatch->setTraits(traits);
  EXPECT_EQ(explode(*hatch).size(), lines);
  for (const auto& line : explode(*hatch)) EXPECT_TRUE(line->getTraits() == traits);
  EXPECT_EQ(made->getEnts()[0]->getColor(), 4);
  CBlock* b = block("B", {hatch});
  const Ents& kept = explode(*keptInsert(b, PNT_3D(5, 0, 0), 2, 2, 0.5));
  ASSERT_EQ(kept.size(), 1u);
  ASSERT_EQ(kept[0]->getType(), CEntHatch::kType);
  const CEntHatch& copy = static_cast<CEntHatch&>(*kept[0]);
  EXPECT_EQ(copy.getBlock()->size(), lines);
  EXPECT_DOUBLE_EQ(copy.getHatchScale(), 16);
  EXPECT_DOUBLE_EQ(copy.getHatchRotate(), 0.5);
  EXPECT_NE(copy.getBlock(), hatch->getBlock());
  EXPECT_EQ(explode(*keptInsert(b, PNT_3D(5, 0, 0), 2, 3, 0.5)).size(), lines);
  purgeHatchBlocks(*data);
}

// Also mirrored and sheared by unequal scales, whether the fill stays a hatch or is exploded.
TEST_F(Explode, FillsOfSolidHatchesStayVisible) {
  const std::vector<PNT_3D> ring = vek0::test::pts("0,0 10,0 10,10 5,3 0,10");
  CEntHatch* hatch =
      createEntHatch(*data, layer(), ltype(), 4, data->getHatchTypeTable().solid(), 1, 0, ring, 0);
  ASSERT_NE(hatch, nullptr);
  const auto expectFills = [](const auto& pieces, double expected) {
    double area = 0;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
      const CEnt3DFace* face = cast3DFace(&*pieces[i]);
      ASSERT_NE(face, nullptr);
      EXPECT_TRUE(face->isFilled());
      for (long k = 0; k < 4; ++k) {
        const PNT_3D &p = face->getVertex(k), &q = face->getVertex((k + 1) % 4);
        area += (p.x * q.y - p.y * q.x) / 2;
      }
    }
    EXPECT_NEAR(area, expected, 1e-9);
  };
  const Ents& loose = explode(*hatch);
  expectFills(loose, 65);
  EXPECT_EQ(loose[0]->getColor(), 4);
  EXPECT_EQ(cast3DFace(loose[0].get())->getFlags(), 0) << "outlined where nothing is filled";
  const Ents& kept = explode(*keptInsert(block("B", {hatch}), PNT_3D(5, 0, 0), -2, 3, 0.5));
  ASSERT_EQ(kept.size(), 1u);
  CEntHatch* copy = castHatch(kept[0].get());
  ASSERT_NE(copy, nullptr);
  std::vector<CEnt*> pieces;
  for (unsigned i = 0; i < copy->getBlock()->size(); ++i) pieces.push_back((*copy->getBlock())[i]);
  expectFills(pieces, -2 * 3 * 65);
  purgeHatchBlocks(*data);
}

TEST_F(Explode, ArraysAndNestingBeyondTheLimitAreRefused) {
  CBlock* b = block("B", {line(0, 0, 1, 0)});
  EXPECT_TRUE(explode(*keptInsert(b, PNT_3D(0, 0, 0), 1, 1, 0, 2000000000, 2000000000)).empty());
  EXPECT_TRUE(made->isRefused());
  EXPECT_EQ(explode(*keptInsert(b, PNT_3D(0, 0, 0), 1, 1, 0, -5, 3)).size(), 3u);
  EXPECT_FALSE(made->isRefused());
  // Each level inserts the previous one ten times, all sheared: 10^30 entities in total.
  for (int level = 0; level < 30; ++level) {
    std::vector<CEnt*> ten;
    for (int i = 0; i < 10; ++i) ten.push_back(insert(b, PNT_3D(i, 0, 0), 1, 2, 0.3 + i));
    b = block(("L" + std::to_string(level)).c_str(), ten);
  }
  made = std::make_unique<CEntExploderVisitor>(data->getHandleGestor(), data->getEntFactory(),
                                               data->getBlockFactory(), data->getBlockTable(), 1,
                                               100000);
  const std::size_t blocks = static_cast<std::size_t>(data->getBlockTable().size());
  EXPECT_TRUE(explode(*keptInsert(b, PNT_3D(0, 0, 0), 1, 3, 0.2)).empty());
  EXPECT_TRUE(made->isRefused());
  EXPECT_EQ(static_cast<std::size_t>(data->getBlockTable().size()), blocks);
}

TEST_F(Explode, TheLimitIsThatOfAllThatIsGiven) {
  CEntInsert* four = keptInsert(block("B", {line(0, 0, 1, 0)}), PNT_3D(0, 0, 0), 1, 1, 0, 2, 2);
  made =
      std::make_unique<CEntExploderVisitor>(data->getHandleGestor(), data->getEntFactory(),
                                            data->getBlockFactory(), data->getBlockTable(), 1, 10);
  for (const bool isRefused : {false, false, true}) {
    four->accept(*made);
    EXPECT_EQ(made->isRefused(), isRefused);
    made->getEnts().clear();
  }
}

// The corners of a text follow the matrix for any justification.
TEST_F(Explode, BoxesOfTextsFollowTheMatrix) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> number(-3, 3), angle(-0.5, 0.5);
  for (const int round : rounds(500)) {
    const double width = round % 3 == 0 ? -0.8 : 1.5;
    TEXT_3D text(u"abc", getStyleStandard(*data), number(random), number(random), 0, 2,
                 angle(random), width, number(random), round % TEXT_3D::kJustifications);
    CEntInsertMatrix outer, inner;
    outer.set(PNT_3D(0, 0, 0), number(random), number(random), 1, number(random), PNT_3D(1, 2, 3));
    inner.set(PNT_3D(0, 0, 0), number(random), number(random), 1, number(random), PNT_3D(4, 5, 6));
    const CEntInsertMatrix matrix = round % 2 == 0 ? outer : outer * inner;
    PNT_3D before[4], after[4];
    text.getExtremes(before);
    transform_text(matrix, text);
    text.getExtremes(after);
    // A mirrored text is written backward, starting at the same corner on the left.
    for (int i = 0; i < 4; ++i) {
      PNT_3D expected;
      matrix.transform(before[i], expected);
      double least = 1e300;
      for (const PNT_3D& p : after) least = std::min(least, p.PNT_2D::dist(expected));
      EXPECT_NEAR(least, 0, 1e-9);
    }
    EXPECT_TRUE(text.getContext().getRotate() >= 0 && text.getContext().getRotate() < 2 * kPi);
  }
}

}  // namespace
