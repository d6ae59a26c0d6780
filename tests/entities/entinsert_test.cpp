#include "entities/blockworld.h"
#include "support/test.h"

namespace {

using Snapshot = std::unique_ptr<IEntDerivedMemento>;

class Insert : public testing::Test, protected BlockWorld {
 protected:
  std::unique_ptr<CEntInsert> owned(CEntInsert* ent) { return std::unique_ptr<CEntInsert>(ent); }

  CBlock* square() {
    CBlock* made = block("SQUARE");
    made->add(line(0, 0, 1, 1));
    table.add(made);
    return made;
  }

  std::unique_ptr<CEntFixedInsert> fixed(CBlock* block) {
    return std::unique_ptr<CEntFixedInsert>(ents.createEntFixedInsert(
        gestor, nullptr, nullptr, 256, block, PNT_3D(10, 20, 0), 10, 50, 0, 0));
  }

  CData& data() { return *m_data; }

 private:
  std::unique_ptr<CData> m_data{CDataFactory().createData()};
};

TEST_F(Insert, ParametersDoNotDependOnThePixelSize) {
  const auto ent = owned(insert(nullptr, PNT_3D(1, 2, 3), 4, 5, 0.5));
  for (const double pixelSize : {0.001, 1.0, 1000.0}) {
    PNT_3D point;
    double sx, sy, sz, rotation;
    ent->getInsertParams(pixelSize, point, sx, sy, sz, rotation);
    EXPECT_EQ(point, PNT_3D(1, 2, 3));
    EXPECT_EQ(sx, 4);
    EXPECT_EQ(sy, 5);
    EXPECT_EQ(sz, 1);
    EXPECT_EQ(rotation, 0.5);
  }
  EXPECT_FALSE(ent->IsIsotropicXY());
  ent->setScale(4, 4, 1);
  EXPECT_TRUE(ent->IsIsotropicXY());
}

TEST_F(Insert, FixedInsertsKeepTheirSizeOnTheDisplay) {
  const auto ent = fixed(nullptr);
  for (const Row& t : rows()) {
    const std::unique_ptr<CEntFixedInsert> made(ents.createEntFixedInsert(
        gestor, nullptr, nullptr, 256, nullptr, PNT_3D(0, 0, 0), t.real("refSize"), 50, 0, 0));
    PNT_3D point;
    double sx, sy, sz, rotation;
    made->getInsertParams(t.real("pixelSize"), point, sx, sy, sz, rotation);
    EXPECT_DOUBLE_EQ(sx, t.real("expect"));
    EXPECT_EQ(sx, sy);
    EXPECT_EQ(sx, sz);
  }
  long columns, rows;
  double columnSpacing, rowSpacing;
  ent->getArray(columns, rows, columnSpacing, rowSpacing);
  EXPECT_EQ(columns, 1);
  EXPECT_EQ(rows, 1);
}

TEST_F(Insert, FixedInsertsShowMoreThanTheirCachedExtents) {
  const auto ent = fixed(square());
  EXPECT_EQ(ent->getBdry(), RECT_3D(10, 20, 0, 10, 20, 0));
  RECT_3D box;
  ent->GetBdry(0.1, box);
  EXPECT_EQ(box, RECT_3D(10, 20, 0, 10.5, 20.5, 0));
  ent->GetBdry(1, box);
  EXPECT_EQ(box, RECT_3D(10, 20, 0, 15, 25, 0));
}

TEST_F(Insert, ExtentsCoverEveryCell) {
  std::mt19937 random(11);
  const auto number = [&](double size) {
    return std::uniform_real_distribution<double>(-size, size)(random);
  };
  CBlock* shown = square();
  for ([[maybe_unused]] const int i : rounds(300)) {
    const auto ent = owned(
        insert(shown, PNT_3D(number(9), number(9), number(9)), number(3), number(3), number(9)));
    const long columns = 1 + static_cast<long>(random() % 4),
               rows = 1 + static_cast<long>(random() % 4);
    ent->setArray(columns, rows, number(5), number(5));
    RECT_3D expected;
    expected.initRegion();
    for (long row = 0; row < rows; ++row) {
      for (long col = 0; col < columns; ++col) {
        RECT_3D cell;
        CEntInsertMatrix(1, *ent, row, col).transform(shown->getBdry(), cell);
        expected.updateRegion(cell);
      }
    }
    const RECT_3D& box = ent->getBdry();
    EXPECT_LT(box.min.dist(expected.min), 1e-12);
    EXPECT_LT(box.max.dist(expected.max), 1e-12);
  }
}

TEST_F(Insert, ExtentsOfOddInserts) {
  CBlock* shown = square();
  const double infinite = std::numeric_limits<double>::infinity();
  const struct {
    const char* name;
    CBlock* block;
    double scale;
    long columns, rows;
    double spacing;
    RECT_3D expect;
    bool empty;
  } cases[] = {
      {"no block", nullptr, 1, 1, 1, 0, {}, true},
      {"empty block", tabled("EMPTY"), 1, 5, 5, 9, {}, true},
      {"columns then rows", shown, 1, 2, 3, 10, {0, 0, 0, 11, 21, 0}, false},
      {"no cells act as one", shown, 1, 0, -7, 10, {0, 0, 0, 1, 1, 0}, false},
      {"a billion cells", shown, 1, 32767, 32767, 1, {0, 0, 0, 32767, 32767, 0}, false},
      {"not finite", shown, infinite, 1, 1, 0, {}, true},
      {"cells too far away", shown, 1, 32767, 1, 1e305, {}, true},
  };
  for (const auto& t : named(cases)) {
    const auto ent = owned(insert(t.block, PNT_3D(0, 0, 0), t.scale, t.scale));
    ent->setArray(t.columns, t.rows, t.spacing, t.spacing);
    EXPECT_EQ(ent->getBdry().validRegion(), !t.empty);
    if (!t.empty) EXPECT_EQ(ent->getBdry(), t.expect);
  }
}

TEST_F(Insert, SettersRefreshTheExtents) {
  const auto ent = owned(insert(square()));
  ent->setPnt(PNT_3D(5, 5, 0));
  EXPECT_EQ(ent->getBdry(), RECT_3D(5, 5, 0, 6, 6, 0));
  ent->setScale(2, 2, 1);
  EXPECT_EQ(ent->getBdry(), RECT_3D(5, 5, 0, 7, 7, 0));
  ent->setArray(2, 1, 10, 0);
  EXPECT_EQ(ent->getBdry(), RECT_3D(5, 5, 0, 17, 7, 0));
  ent->setInsert(PNT_3D(0, 0, 0), 1, 1, 1, 0);
  EXPECT_EQ(ent->getBdry(), RECT_3D(0, 0, 0, 11, 1, 0));
}

TEST_F(Insert, AttributesCountForTheExtentsThroughTheFirstCell) {
  const auto ent = owned(insert(square(), PNT_3D(100, 0, 0), 2, 2));
  ent->setArray(2, 1, 10, 0);
  CEntAttrib* att = attrib(u"value", 0, 50);
  const double width = att->getBdry().max.x;
  ent->add(att);
  ent->add(nullptr);
  ASSERT_EQ(ent->GetNoAttribs(), 1u);
  EXPECT_EQ(ent->GetAttrib(0), att);
  EXPECT_EQ(ent->GetAttrib(1), nullptr);
  EXPECT_DOUBLE_EQ(ent->getBdry().max.y, 2 * att->getBdry().max.y);
  EXPECT_DOUBLE_EQ(ent->getBdry().max.x, std::max(112.0, 100 + 2 * width));
}

TEST_F(Insert, RegistrationCountsTheBlockAndTheAttributes) {
  const std::unique_ptr<CStyle> style(CStyleFactory().create(u"S", nullptr, 0, 1, 0, 0.2, 0));
  const auto styled = [&] {
    return ents.createEntAttrib(gestor, nullptr, nullptr, 256, text(u"v", 0, 0, style.get()), u"T",
                                0, 0);
  };
  CBlock* shown = square();
  CBlock* other = tabled("OTHER");
  const auto ent = owned(insert(shown));
  ent->add(styled());
  EXPECT_EQ(shown->getEntities(), 0);
  EXPECT_EQ(style->getEntities(), 0);
  ent->addTbls(gestor);
  EXPECT_EQ(shown->getEntities(), 1);
  EXPECT_EQ(style->getEntities(), 1);
  ent->add(styled());
  EXPECT_EQ(style->getEntities(), 2);
  ent->setBlock(other);
  EXPECT_EQ(shown->getEntities(), 0);
  EXPECT_EQ(other->getEntities(), 1);
  ent->removeTbls(gestor);
  EXPECT_EQ(other->getEntities(), 0);
  EXPECT_EQ(style->getEntities(), 0);
}

TEST_F(Insert, ACloneHasAttributesOfItsOwn) {
  CBlock* shown = square();
  const auto ent = owned(ents.createEntInsert(gestor, nullptr, nullptr, 3, shown, PNT_3D(1, 2, 3),
                                              4, 5, 6, 7, 8, 9, 10, 11, 77));
  ent->add(attrib(u"v", 1, 1));
  const std::unique_ptr<CEnt> clone(ents.clone(gestor, blocks, table, *ent));
  auto& copy = static_cast<CEntInsert&>(*clone);
  EXPECT_EQ(copy.GetHandle(), 0);
  EXPECT_EQ(copy.getType(), 8);
  EXPECT_EQ(copy.getBlock(), shown);
  EXPECT_EQ(copy.getPnt(), PNT_3D(1, 2, 3));
  long columns, rows;
  double columnSpacing, rowSpacing;
  copy.getArray(columns, rows, columnSpacing, rowSpacing);
  EXPECT_EQ(columns, 8);
  EXPECT_EQ(rows, 9);
  EXPECT_EQ(columnSpacing, 10);
  EXPECT_EQ(rowSpacing, 11);
  ASSERT_EQ(copy.GetNoAttribs(), 1u);
  EXPECT_NE(copy.GetAttrib(0), ent->GetAttrib(0));
  EXPECT_EQ(copy.GetAttrib(0)->getValue(), u"v");
  EXPECT_EQ(copy.getBdry(), ent->getBdry());
}

TEST_F(Insert, MementosHoldPlacementArrayAndBlock) {
  CBlock* other = tabled("OTHER");
  const auto ent = owned(insert(square()));
  ent->add(attrib(u"v", 0, 0));
  const Snapshot before(ent->createDerivedMemento());
  const RECT_3D box = ent->getBdry();
  for (const auto& change : std::vector<std::function<void()>>{
           [&] { ent->setPnt(PNT_3D(9, 9, 9)); }, [&] { ent->setScale(1, 1, 2); },
           [&] { ent->setRotate(1); }, [&] { ent->setArray(1, 2, 0, 0); },
           [&] { ent->setBlock(other); }, [&] { ent->GetAttrib(0)->setValue(u"other"); },
           [&] { ent->GetAttrib(0)->setColor(9); }}) {
    EXPECT_TRUE(*ent == *before);
    change();
    EXPECT_FALSE(*ent == *before);
    ent->setMemento(data(), before.get());
    EXPECT_TRUE(*ent == *before);
    EXPECT_EQ(ent->getBdry(), box);
  }
  EXPECT_GT(before->size(), sizeof(CEntInsertMemento));
}

TEST_F(Insert, MementosBringAttributesBackAndTakeThemAway) {
  CBlock* shown = square();
  const std::unique_ptr<CStyle> style(CStyleFactory().create(u"S", nullptr, 0, 1, 0, 0.2, 0));
  const auto ent = owned(insert(shown));
  ent->addTbls(gestor);
  const Snapshot none(ent->createDerivedMemento());
  CEntAttrib* kept = attrib(u"kept", 0, 0);
  ent->add(kept);
  ent->add(ents.createEntAttrib(gestor, nullptr, nullptr, 4, text(u"gone", 0, 0, style.get()),
                                u"TAG", 8, 0));
  const Snapshot two(ent->createDerivedMemento());

  ent->setMemento(data(), none.get());
  EXPECT_EQ(ent->GetNoAttribs(), 0u);
  EXPECT_EQ(style->getEntities(), 0);
  ent->setMemento(data(), two.get());
  ASSERT_EQ(ent->GetNoAttribs(), 2u);
  EXPECT_EQ(ent->GetAttrib(0)->getValue(), u"kept");
  const CEntAttrib& remade = *ent->GetAttrib(1);
  EXPECT_EQ(remade.getValue(), u"gone");
  EXPECT_EQ(remade.getTag(), u"TAG");
  EXPECT_EQ(remade.getFlags(), 8);
  EXPECT_EQ(remade.getColor(), 4);
  EXPECT_EQ(style->getEntities(), 1) << "of a registered insert";

  // Restoring a memento keeps the attribute objects that still exist.
  const Snapshot oneLess(ent->createDerivedMemento());
  CEntAttrib* first = ent->GetAttrib(0);
  ent->add(attrib(u"third", 0, 0));
  first->setValue(u"changed");
  ent->setMemento(data(), oneLess.get());
  EXPECT_EQ(ent->GetNoAttribs(), 2u);
  EXPECT_EQ(ent->GetAttrib(0), first);
  EXPECT_EQ(first->getValue(), u"kept");
  EXPECT_TRUE(*ent == *oneLess);
  ent->removeTbls(gestor);
  EXPECT_EQ(shown->getEntities(), 0);
  EXPECT_EQ(style->getEntities(), 0);
}

TEST_F(Insert, FixedInsertMementos) {
  const auto ent = fixed(nullptr);
  const Snapshot before(ent->createDerivedMemento());
  for (const auto& change : std::vector<std::function<void()>>{
           [&] { ent->setPnt(PNT_3D(9, 9, 9)); }, [&] { ent->setNoPixel(1); },
           [&] { ent->setRotate(1); }, [&] { ent->add(attrib(u"v", 0, 0)); }}) {
    change();
    EXPECT_FALSE(*ent == *before);
    ent->setMemento(data(), before.get());
    EXPECT_TRUE(*ent == *before);
  }
  EXPECT_EQ(ent->getBdry(), RECT_3D(10, 20, 0, 10, 20, 0));
}

}  // namespace
