#include "drawing/drawings.h"
#include "support/test.h"

namespace {

template <class Iterator>
std::string namesOf(Iterator it) {
  std::string names;
  for (; *it; ++it) names += (names.empty() ? "" : " ") + (*it)->getName().toUtf8();
  return names;
}

TEST(Data, ANewDrawingHoldsItsFixedItemsOnly) {
  const Drawing drawing = newDrawing();
  CData& data = *drawing;
  EXPECT_EQ(data.getLtypeTable().size(), 0);
  EXPECT_EQ(data.getLayerTable().size(), 0);
  EXPECT_EQ(data.getBlockTable().size(), 0);
  EXPECT_EQ(data.getBlockXRefTable().size(), 0);
  EXPECT_TRUE(data.getEntTable().getEntityTbl().empty());
  EXPECT_EQ(data.getStyleTable().size(), 1);
  EXPECT_EQ(getLayer(data, u"0"), &data.getLayer0());
  EXPECT_EQ(getLtype(data, u"CONTINUOUS"), &data.getLtypeContinuous());
  EXPECT_EQ(getStyle(data, u"standard"), getStyleStandard(data));
  EXPECT_EQ(data.getLayer0().getLtype(), &data.getLtypeContinuous());
  EXPECT_EQ(data.getLayer0().getColor(), 7);
  EXPECT_EQ(data.getLayer0().getFlags(), 0);
  EXPECT_EQ(data.getLtypeContinuous().getLayers(), 1) << "layer 0 counts";
  EXPECT_EQ(data.getLtypeContinuous().getDesc(), u"SolidLine");
  EXPECT_FALSE(data.getHandleGestor().handling());
}

TEST(Data, ANewDrawingHasTheDefaultVariables) {
  const Drawing drawing = newDrawing();
  const CDataVariables& vars = drawing->getVars();
  EXPECT_TRUE(vars.getLimMax() == PNT_2D(420, 297));
  EXPECT_TRUE(vars.getLimMin() == PNT_2D(0, 0));
  EXPECT_EQ(vars.getLtypeScale(), 1.0);
  EXPECT_EQ(vars.getPLineWid(), 0.0);
  EXPECT_EQ(vars.getAngDir(), 0.0);
  EXPECT_EQ(vars.getCurLayer(), &drawing->getLayer0());
  EXPECT_EQ(vars.getCurLtype(), &drawing->getLtypeByLayer());
  EXPECT_EQ(vars.getCurStyle(), getStyleStandard(*drawing));
  EXPECT_EQ(vars.getCurColor(), 256);
  EXPECT_EQ(vars.getAngFormat(), 0);
  EXPECT_FALSE(vars.isOrtho() || vars.isPLineGen() || vars.isAngClockWise());
}

TEST(Data, IteratorsWalkFixedItemsThenTablesThenReferences) {
  const Drawing drawing = newDrawing();
  CData& data = *drawing;
  addedXRef(data, u"EMPTY");
  CBlockXRef* xref = addedXRef(data, u"X");
  addedXRef(data, u"LAST");
  addedLayer(data, u"L1");
  addedLayer(data, u"L2");
  addedLtype(data, u"T");
  addedStyle(data, u"S");
  xref->getLayerTable().add(
      data.getLayerFactory().createXRef(*xref, u"XL", &data.getLtypeContinuous(), 1, 0));
  xref->getLtypeTable().add(data.getLtypeFactory().createXRef(*xref, u"XT", u"", {}, 0));
  while (xref->getStyleTable().size() > 0) {
    CStyle* own = xref->getStyleTable()[0];
    xref->getStyleTable().remove(own);
    delete own;
  }

  EXPECT_EQ(namesOf(CData::CLayerIterator(data, false)), "0 L1 L2");
  EXPECT_EQ(CData::CLayerIterator(data, false).size(), 3);
  EXPECT_EQ(namesOf(CData::CLayerIterator(data, true)), "0 L1 L2 XL");
  EXPECT_EQ(CData::CLayerIterator(data, true).size(), 4);
  EXPECT_EQ(namesOf(CData::CLtypeIterator(data, false, false)), "Continuous T");
  EXPECT_EQ(namesOf(CData::CLtypeIterator(data, true, true)), "BYLAYER BYBLOCK Continuous T XT");
  EXPECT_EQ(CData::CLtypeIterator(data, true, true).size(), 5);
  EXPECT_EQ(namesOf(CData::CStyleIterator(data, false)), "STANDARD S");
  EXPECT_EQ(namesOf(CData::CStyleIterator(data, true)), "STANDARD S STANDARD STANDARD")
      << "the references that still have a style of their own";
  EXPECT_EQ(CData::CStyleIterator(data, true).size(), 4);
}

TEST(Data, IteratorsOfANewDrawing) {
  const Drawing drawing = newDrawing();
  EXPECT_EQ(namesOf(CData::CLayerIterator(*drawing, true)), "0");
  EXPECT_EQ(namesOf(CData::CLtypeIterator(*drawing, true, true)), "BYLAYER BYBLOCK Continuous");
  EXPECT_EQ(CData::CLtypeIterator(*drawing, false, true).size(), 3);
  EXPECT_EQ(namesOf(CData::CStyleIterator(*drawing, true)), "STANDARD");
}

TEST(Data, IteratorsStayAtTheEndAndThePostfixStepIsConst) {
  const Drawing drawing = newDrawing();
  const CData::CLayerIterator it(*drawing, false);
  const CData::CLayerIterator before = it++;
  EXPECT_EQ(*before, &drawing->getLayer0());
  EXPECT_EQ(*it, nullptr);
  it++;
  EXPECT_EQ(*it, nullptr);
  EXPECT_EQ(it.size(), 1);
}

TEST(Data, TheCopyOfADrawingIsAView) {
  const Drawing drawing = newDrawing();
  CData& data = *drawing;
  CLayer* layer = addedLayer(data, u"L");
  CBlock* block = vek0::test::addedBlock(data, u"B");
  data.getEntTable().add(vek0::test::insertOf(data, *block, 0));
  const std::string before = vek0::test::saved(data);
  {
    CData view(data);
    EXPECT_EQ(getLayer(view, u"L"), layer);
    EXPECT_EQ(view.getBlockTable().get(u"B"), block);
    EXPECT_EQ(view.getEntTable().getEntityTbl(), data.getEntTable().getEntityTbl());
    EXPECT_EQ(getCurStyle(view), getStyleStandard(data));
    EXPECT_EQ(&view.getEntFactory(), &data.getEntFactory());
    EXPECT_EQ(&view.getHandleGestor(), &data.getHandleGestor());
    EXPECT_EQ(vek0::test::saved(view), before);
  }
  EXPECT_EQ(vek0::test::saved(data), before);
}

TEST(Data, OwnFontsKeepTheNamesOfFiles) {
  const Drawing drawing = newDrawing();
  const ICADFont* font = drawing->needFont(u"isocp.shx");
  EXPECT_EQ(font->getName(), u"isocp.shx");
  EXPECT_EQ(drawing->needFont(u"isocp.shx"), font);
  EXPECT_NE(drawing->needFont(u"ISOCP.SHX"), font);
  EXPECT_EQ(font->getDescent(), defaultFontMetrics().getDescent());
}

// Contains the deepest chain of uses: an insert of a block with an attribute, on a layer with a
// linetype whose pattern contains a text in a style.
TEST(Data, IsTakenApartUsersFirst) {
  Drawing drawing = newDrawing();
  CData& data = *drawing;
  CStyle* style = addedStyle(data, u"S");
  CLtype* ltype = addedLtype(data, u"T");
  ltype->AddDashText(TEXT_3D(u"GAS", style, 0, 0, 0, 1, 0, 1, 0, 0));
  CLayer* layer = addedLayer(data, u"L");
  layer->setLtype(ltype);
  setCurLayer(data, layer);
  CBlock* outer = data.getBlockFactory().create(u"OUTER", 0);
  outer->add(vek0::test::insertOf(data, *vek0::test::addedBlock(data, u"INNER"), 0));
  data.getBlockTable().add(outer);
  CEntInsertXRef* xrefInsert = createEntInsertXRef(data, data.getDepend(), *addedXRef(data, u"X"),
                                                   PNT_3D(0, 0, 0), 1, 1, 1, 0, 1, 1, 0, 0, 0);
  data.getEntTable().add(xrefInsert);
  data.getEntTable().add(vek0::test::insertOf(data, *outer, 0));
  EXPECT_EQ(style->getDashes(), 1);
  EXPECT_EQ(data.getDepend().size(), 1u);
  drawing.reset();
  deleteData(nullptr);
}

// No order of deleting whole tables would work here.
TEST(Data, IsTakenApartThoughReferencesAndDrawingNameEachOther) {
  const Drawing drawing = newDrawing();
  CData& data = *drawing;
  vek0::test::addCrossNames(data);
  { CData view(data); }
  EXPECT_EQ(getLtype(data, u"X|XT")->getLayers(), 2) << "a view lets go of nothing";
  EXPECT_EQ(getStyle(data, u"Y|STANDARD")->getDashes(), 2);
  EXPECT_EQ(getLayer(data, u"L")->getLtype(), getLtype(data, u"X|XT"));
}

}  // namespace
