#include "drawing/drawings.h"
#include "support/test.h"

namespace {

Drawing clone(const CData& data) { return Drawing(cloneData(data)); }

TEXT_3D text(const zim::WString& string, CStyle* style) {
  return TEXT_3D(string, style, 1, 2, 3, 4, 0.1, 0.9, 0.5, 7);
}

void addCurve(CData& data) {
  CEntPolyline* curve = createEntPolyline(data, 4L, 3, 0x50);
  for (int i = 0; i < 5; ++i)
    curve->addVertex(*createVertex(data, PNT_3D(i, i % 2, 0), 1, 2, 0x51 + i));
  curve->regen(data.getHandleGestor(), data.getEntFactory(), false);
  data.getEntTable().add(curve);
}

void addArcs(CData& data) {
  CEntPolyline* polyline = createEntPolyline(data, 1L, 0, 0x60);
  for (int i = 0; i < 4; ++i) polyline->addBulgedVertex(PNT_3D(i, i % 2, 0), 0, 0, 0.5, 0x61 + i);
  data.getEntTable().add(polyline);
}

// Blocks that insert blocks later in the table, with attributes.
void addBlocks(CData& data, CStyle* style) {
  CBlock* outer = data.getBlockFactory().create(u"OUTER", PNT_3D(5, 5, 0), 0);
  data.getBlockTable().add(outer);
  CBlock* inner = addedBlock(data, u"INNER");
  CEntAttdef* def = createEntAttdef(data, text(u"TAG", style), u"value", u"prompt", 8, 0x70);
  inner->add(def);
  data.getBlockTable().updateBlock(inner);
  inner->SetUserInfo(3, 4);
  CEntInsert* nested = vek0::test::insertOf(data, *inner, 3, 0x71);
  nested->add(createEntAttrib(data, u"mine", *def, 0x72));
  nested->GetAttrib(0)->setUserInfo(5, 6);
  data.getBlockTable().Redefine(outer, PNT_3D(5, 5, 0), CBlock::kHasAttdefs, {nested});
  data.getEntTable().add(vek0::test::insertOf(data, *outer, 100, 0x73));
  data.getEntTable().add(createEntFixedInsert(data, *inner, PNT_3D(1, 1, 0), 10, 20, 0.5, 0x74));
}

void addReference(CData& data) {
  CBlockXRef* xref = addedXRef(data, u"SITE");
  xref->SetUserInfo(9, 10);
  xref->setStatus(CBlockXRef::Status::missing);
  CLtype* hedge = data.getLtypeFactory().createXRef(*xref, u"HEDGE", u"", {}, 0);
  xref->getLtypeTable().add(hedge);
  xref->getLayerTable().add(data.getLayerFactory().createXRef(*xref, u"TREES", hedge, 3, 0));
  data.getEntTable().add(createEntInsertXRef(data, getLayer(data, u"SITE|TREES"), hedge, 256, *xref,
                                             PNT_3D(0, 0, 0), 1, 1, 1, 0, 1, 1, 0, 0, 0x80));
}

// A drawing with everything that it can contain.
Drawing everything() {
  Drawing drawing = newDrawing();
  CData& data = *drawing;
  CStyle* style = addedStyle(data, u"Notes");
  style->setFont(data.needFont(u"isocp.shx"));
  CLtype* ltype = addedLtype(data, u"GAS_LINE");
  ltype->AddDashText(text(u"GAS", style));
  CLayer* layer = addedLayer(data, u"Walls", 3, 4);
  layer->setLtype(ltype);
  layer->setLineWidth(static_cast<enumLineWidth>(2));
  layer->setTraits({0x123456, 35, 99, false});
  data.getLayer0().setColor(2);
  data.getLtypeContinuous().setDesc(u"solid");
  data.getLtypeByBlock().setFlags(5);
  getStyleStandard(data)->setWidthScale(0.8);
  setCurLayer(data, layer);
  setCurLtype(data, ltype);
  setCurStyle(data, style);
  setCurColor(data, 0);
  setLtypeScale(data, 2.5);

  CEntTable& table = data.getEntTable();
  table.add(createEntPnt(data, PNT_3D(1, 2, 3), 0x41));
  table.add(createEntLine(data, LINE_3D(0, 0, 0, 1, 2, 3), 0x42));
  table.add(createEntCircle(data, CIRCLE_3D(1, 2, 3, 4), 0x43));
  table.add(createEntArc(data, ARC_3D(1, 2, 3, 4, 1, 2), 0x44));
  table.add(createEntText(data, text(u"text", style), 0x45));
  table.add(createEnt3DFace(data, PNT_3D(0, 0, 0), PNT_3D(1, 0, 0), PNT_3D(1, 1, 0),
                            PNT_3D(0, 1, 5), 2, 0x46));
  cast3DFace(table.get(0x46))->setFill(FaceFill::Trace);
  table.get(0x42)->setUserInfo(7, 8);
  table.select(table.get(0x44));
  table.select(table.get(0x42));
  addCurve(data);
  addArcs(data);
  addBlocks(data, style);
  addReference(data);
  return drawing;
}

// The source is deleted before the copy is saved, so a reference to it would be detected.
TEST(CloneData, TheCopySavesToTheSameFileWhenTheSourceIsGone) {
  Drawing source = everything();
  const std::string before = saved(*source);
  Drawing copy = clone(*source);
  EXPECT_EQ(saved(*source), before) << "cloning changes nothing";
  const RECT_3D box = source->getEntTable().getBdry();
  source.reset();
  EXPECT_EQ(saved(*copy), before);
  EXPECT_TRUE(copy->getEntTable().getBdry() == box);
  copy = clone(*copy);
  EXPECT_EQ(saved(*copy), before) << "a copy of the copy";
}

TEST(CloneData, KeepsWhatAFileDoesNot) {
  Drawing source = everything();
  const Drawing copy = clone(*source);
  const Drawing& original = source;
  CData& data = *copy;
  const CEntTable& table = data.getEntTable();
  EXPECT_EQ(table.get(0x42)->getUserType(), 7);
  EXPECT_EQ(table.get(0x42)->getUserData(), 8);
  EXPECT_EQ(cast3DFace(table.get(0x46))->getFill(), FaceFill::Trace);
  EXPECT_EQ(table.getSelectedEntityTbl(), (std::list<CEnt*>{table.get(0x44), table.get(0x42)}));
  EXPECT_EQ(getLayer(data, u"Walls")->getLineWidth(), static_cast<enumLineWidth>(2));
  EXPECT_TRUE(getLayer(data, u"Walls")->getTraits() == (LAYER_TRAITS{0x123456, 35, 99, false}));
  EXPECT_EQ(data.getLtypeContinuous().getDesc(), u"solid");
  EXPECT_EQ(data.getLtypeByBlock().getFlags(), 5);
  EXPECT_EQ(getStyleStandard(data)->getWidthScale(), 0.8);
  EXPECT_EQ(getStyleStandard(data)->getLastHeight(), 0.2);
  EXPECT_EQ(getCurLayer(data), getLayer(data, u"Walls"));
  EXPECT_EQ(getCurLtype(data), getLtype(data, u"GAS_LINE"));
  EXPECT_EQ(getCurStyle(data), getStyle(data, u"Notes"));
  EXPECT_EQ(getStyle(data, u"Notes")->getDashes(), 1);
  EXPECT_EQ(getStyle(data, u"Notes")->getFont(), data.needFont(u"isocp.shx"));
  const CBlock& inner = *data.getBlockTable().get(u"INNER");
  EXPECT_EQ(inner.GetUserType(), 3);
  EXPECT_EQ(inner.GetUserData(), 4);
  EXPECT_EQ(inner.getFlags(), original->getBlockTable().get(u"INNER")->getFlags());
  const CBlock& outer = *data.getBlockTable().get(u"OUTER");
  EXPECT_TRUE(outer.getPnt() == PNT_3D(5, 5, 0));
  EXPECT_EQ(outer[0]->getEntInsert()->getBlock(), &inner);
  EXPECT_EQ(outer[0]->getEntInsert()->GetAttrib(0)->GetHandle(), 0x72);
  EXPECT_EQ(outer[0]->getEntInsert()->GetAttrib(0)->getUserData(), 6);
  const CBlockXRef& site = *data.getBlockXRefTable().get(u"SITE");
  EXPECT_EQ(site.GetUserData(), 10);
  EXPECT_EQ(site.getStatus(), CBlockXRef::Status::missing);
  const CEntPolyline& curve = *castPolyline(table.get(0x50));
  EXPECT_EQ(curve.getNoCtrlPnts(), 5);
  EXPECT_EQ(curve.GetVertex(2).GetHandle(), 0x53);
  EXPECT_TRUE(castPolyline(table.get(0x60))->hasArcRuns());
}

// Counts in the copy are exact even if those of the source are wrong.
TEST(CloneData, CountsAnew) {
  Drawing source = everything();
  const Drawing reference = clone(*source);
  getLayer(*source, u"Walls")->zeroEntities();
  getLtype(*source, u"GAS_LINE")->zeroLayers();
  getStyle(*source, u"Notes")->addEntity();
  source->getBlockTable().get(u"INNER")->decEntity();
  const Drawing copy = clone(*source);
  for (const Drawing* drawing : {&reference, &copy}) {
    CData& data = **drawing;
    EXPECT_EQ(getLtype(data, u"GAS_LINE")->getLayers(), 1);
    EXPECT_EQ(data.getLtypeContinuous().getLayers(), 1);
    EXPECT_EQ(getStyle(data, u"Notes")->getEntities(), 3);
    EXPECT_EQ(data.getBlockTable().get(u"INNER")->getEntities(), 2);
    EXPECT_EQ(data.getDepend().getCount(data.getBlockXRefTable()[0]), 1);
  }
  EXPECT_EQ(getLayer(*copy, u"Walls")->getEntities(),
            getLayer(*reference, u"Walls")->getEntities());
}

CStyle* dashStyle(CData& data, const zim::WString& ltype) {
  const CLtype& found = *getLtype(data, ltype);
  return found[found.getNoDashes() - 1]->GetText()->getStyle();
}

TEST(CloneData, FollowsNamesBetweenTheDrawingAndItsReferences) {
  Drawing source = newDrawing();
  vek0::test::addCrossNames(*source);
  const Drawing copy = clone(*source);
  source.reset();
  CData& data = *copy;
  EXPECT_EQ(dashStyle(data, u"Continuous"), getStyle(data, u"Y|STANDARD"));
  EXPECT_EQ(dashStyle(data, u"OWN"), getStyle(data, u"Y|STANDARD"));
  EXPECT_EQ(dashStyle(data, u"X|XT"), getStyle(data, u"S"));
  EXPECT_EQ(dashStyle(data, u"Y|YT"), getStyle(data, u"X|STANDARD"));
  EXPECT_EQ(getLayer(data, u"L")->getLtype(), getLtype(data, u"X|XT"));
  EXPECT_EQ(getLayer(data, u"X|XL")->getLtype(), getLtype(data, u"OWN"));
  EXPECT_EQ(getLayer(data, u"X|XL2")->getLtype(), getLtype(data, u"Y|YT"));
  EXPECT_EQ(getLayer(data, u"Y|YL")->getLtype(), getLtype(data, u"X|XT"));
}

// Null references, and references to objects outside the drawing, are copied unchanged.
TEST(CloneData, SurvivesGapsAndStrangers) {
  const std::unique_ptr<CBlock> stranger(CBlockFactory().create(u"STRANGER", 0));
  const Drawing source = newDrawing();
  CData& data = *source;
  const std::unique_ptr<CStyle> standard(getStyleStandard(data));
  removeStyle(data, standard.get());
  CEntTable& table = data.getEntTable();
  table.add(createEntLine(data, nullptr, nullptr, 1, LINE_3D(0, 0, 0, 1, 1, 0), 1));
  table.add(createEntText(data, text(u"x", nullptr), 2));
  table.add(data.getEntFactory().createEntInsert(data.getHandleGestor(), nullptr, nullptr, 1,
                                                 nullptr, PNT_3D(0, 0, 0), 1, 1, 1, 0, 1, 1, 0, 0,
                                                 3));
  table.add(vek0::test::insertOf(data, *stranger, 0, 4));
  setCurLayer(data, nullptr);
  const Drawing copy = clone(data);
  const CEntTable& cloned = copy->getEntTable();
  EXPECT_EQ(cloned.get(1)->getLayer(), nullptr);
  EXPECT_EQ(cloned.get(2)->getStyle(), nullptr);
  EXPECT_EQ(cloned.get(3)->getEntInsert()->getBlock(), nullptr);
  EXPECT_EQ(cloned.get(4)->getEntInsert()->getBlock(), stranger.get());
  EXPECT_EQ(getCurLayer(*copy), nullptr);
  EXPECT_EQ(getStyleStandard(*copy), nullptr);
  EXPECT_EQ(copy->getStyleTable().size(), 0);
}

TEST(CloneData, SampleDrawingsSaveToTheSameFile) {
  for (const char* name :
       named<const char*>({"every_kind_r12.dxf", "flange.dxf", "room_ac1015.dxf"})) {
    const std::string path = vek0::test::samplePath(name);
    CFileStdLib file(zim::WString::fromUtf8(path), IFile::kRead);
    Drawing source = newDrawing();
    CFileDXFIOptions options;
    options.policy.keepFontNames = true;
    CFileDXFIError error;
    ASSERT_EQ(loadDXF(*source, file, &error, options).status, CFileDXFIResult::Done);
    const std::string before = saved(*source);
    const Drawing copy = clone(*source);
    source.reset();
    EXPECT_EQ(saved(*copy), before);
  }
}

}  // namespace
