#include "dxf/out/saveddrawing.h"
#include "support/test.h"

namespace {

std::string emptyDrawing() {
  return savedPairs("0 SECTION; 2 HEADER; 9 $ACADVER; 1 AC1009") +
         savedPairs(
             "9 $LIMMIN; 10 0.000000; 20 0.000000; 9 $LIMMAX; 10 420.000000; 20 297.000000") +
         savedPairs("9 $LTSCALE; 40 1.000000; 9 $TEXTSTYLE; 7 STANDARD; 9 $CLAYER; 8 0") +
         savedPairs("9 $CELTYPE; 6 BYLAYER; 9 $ORTHOMODE; 70 0; 9 $PLINEGEN; 70 0") +
         savedPairs("9 $PLINEWID; 40 0.000000; 9 $AUNITS; 70 0; 9 $ANGBASE; 50 0.000000") +
         savedPairs("9 $ANGDIR; 70 0; 0 ENDSEC; 0 SECTION; 2 TABLES; 0 TABLE; 2 LTYPE; 70 1") +
         savedPairs(
             "0 LTYPE; 2 Continuous; 70 0; 3 SolidLine; 72 65; 73 0; 40 0.000000; 0 ENDTAB") +
         savedPairs("0 TABLE; 2 LAYER; 70 1; 0 LAYER; 2 0; 70 0; 62 7; 6 Continuous; 0 ENDTAB") +
         savedPairs("0 TABLE; 2 STYLE; 70 1; 0 STYLE; 2 STANDARD; 70 0; 40 0.000000; 41 1.000000") +
         savedPairs("50 0.000000; 71 0; 42 0.200000; 3 txt; 0 ENDTAB; 0 ENDSEC") +
         savedPairs("0 SECTION; 2 BLOCKS; 0 ENDSEC; 0 SECTION; 2 ENTITIES; 0 ENDSEC; 0 EOF");
}

/// The records of one table, including its header record.
std::string table(const std::string& bytes, const std::string& name) {
  const std::size_t from = bytes.find("  0\nTABLE\n  2\n" + name + "\n");
  return bytes.substr(from, bytes.find("  0\nENDTAB\n", from) - from);
}

CLtype* addNewLtype(CData& data, const zim::WString& name, long flags = 0) {
  double dashes[] = {0.5, -0.25};
  CLtype* ltype = data.getLtypeFactory().create(name, u"a pattern", dashes, 2, flags);
  addLtype(data, ltype);
  return ltype;
}

class Font : public ICADFont {
 public:
  Font() : ICADFont(u"romans.shx") {}
};

}  // namespace

TEST(Saver, AnEmptyDrawing) { EXPECT_EQ(saved(*newDrawing(), 0), emptyDrawing()); }

TEST(Saver, EqualInputGivesEqualBytes) {
  for (const unsigned flags : {0u, kSaveExchange}) {
    const Drawing d = newDrawing();
    for (int i = 0; i < 50; ++i) addLine(*d, addNewLayer(*d, u"a b"), 0);
    EXPECT_EQ(firstDifference(savedAnyhow(*d, flags), savedAnyhow(*d, flags)), "");
  }
}

TEST(Saver, NoTablesStartsWithTheBlocks) {
  const Drawing d = newDrawing();
  addLine(*d, addNewLayer(*d, u"WALL"), 1);
  const std::string bytes = saved(*d, kSaveNoTables);
  EXPECT_EQ(bytes.find("  0\nSECTION\n  2\nBLOCKS\n"), 0u);
  EXPECT_TRUE(contains(bytes, "WALL"));
}

TEST(Saver, FlagsChooseTheEntities) {
  const Drawing d = newDrawing();
  CLayer* on = addNewLayer(*d, u"ON");
  CLayer* frozen = addNewLayer(*d, u"FROZEN", 1);
  CLayer* off = addNewLayer(*d, u"OFF", 128);
  CLayer* locked = addNewLayer(*d, u"LOCKED", 4);
  CEntLine* lines[] = {addLine(*d, on, 1), addLine(*d, frozen, 2), addLine(*d, off, 3),
                       addLine(*d, locked, 4)};
  d->getEntTable().select(lines[2]);
  d->getEntTable().select(lines[0]);
  const struct {
    const char* name;
    unsigned flags;
    std::string handles;  // in the order of writing
  } cases[] = {
      {"all", 0, "1234"},
      {"visible", kSaveVisibleOnly, "14"},
      {"selected, in order", kSaveSelectedOnly, "31"},
      {"visible and selected", kSaveVisibleOnly | kSaveSelectedOnly, "1"},
  };
  for (const auto& t : named(cases)) {
    const std::string entities = section(saved(*d, t.flags), "ENTITIES");
    std::string handles;
    for (std::size_t at = 0; (at = entities.find("  5\n", at)) != std::string::npos; ++at)
      handles += entities[at + 4];
    EXPECT_EQ(handles, t.handles);
  }
}

TEST(Saver, LayersOnHiddenOnesAreKeptInBlocks) {
  const Drawing d = newDrawing();
  CBlock* block = d->getBlockFactory().create(u"B", 0);
  block->add(
      createEntPnt(*d, addNewLayer(*d, u"OFF", 128), getLtypeByLayer(*d), 256, PNT_3D(0, 0, 0), 1));
  d->getBlockTable().add(block);
  EXPECT_TRUE(contains(section(saved(*d, kSaveVisibleOnly), "BLOCKS"), "POINT"));
}

TEST(Saver, ExchangeHeader) {
  const Drawing d = newDrawing();
  setCurColor(*d, 3);
  addLine(*d, getLayer0(*d), 0x2A);
  const std::string header = section(saved(*d, kSaveExchange), "HEADER");
  EXPECT_TRUE(contains(header, savedPairs("9 $CELTYPE; 6 BYLAYER; 9 $CECOLOR; 62 3")));
  EXPECT_TRUE(contains(header, savedPairs("9 $HANDSEED; 5 2B")));
}

TEST(Saver, HeaderVariables) {
  const Drawing d = newDrawing();
  CDataVariables& vars = d->getVars();
  vars.setLimMin(PNT_2D(-1, kNan));
  vars.setLtypeScale(kNan);
  vars.setPLineWid(0.25);
  vars.setAngDir(3.14159265358979323846 / 2);
  vars.setAngFormat(2);
  vars.setOrtho(true);
  vars.setAngClockWise(true);
  vars.setCurLayer(addNewLayer(*d, u"a b"));
  vars.setCurLtype(nullptr);
  vars.setCurStyle(nullptr);
  CFileReport report;
  const std::string header = section(saved(*d, 0, &report), "HEADER");
  EXPECT_TRUE(contains(header, savedPairs("9 $LIMMIN; 10 -1.000000; 20 0.000000")));
  EXPECT_TRUE(contains(header, savedPairs("9 $LTSCALE; 40 1.000000")));
  EXPECT_TRUE(
      contains(header, savedPairs("9 $TEXTSTYLE; 7 STANDARD; 9 $CLAYER; 8 a_b; 9 $CELTYPE; 6 "
                                  "CONTINUOUS; 9 $ORTHOMODE; 70 1")));
  EXPECT_TRUE(contains(
      header,
      savedPairs(
          "9 $PLINEWID; 40 0.250000; 9 $AUNITS; 70 2; 9 $ANGBASE; 50 90.000000; 9 $ANGDIR; 70 1")));
  EXPECT_EQ(report.count("number not finite"), 2);
}

TEST(Saver, Linetypes) {
  const Drawing d = newDrawing();
  CLtype* ltype = addNewLtype(*d, u"GAS", 0x8000 | 1);
  ltype->AddDashText(TEXT_3D(textContext(u"GAS", 1, 0), nullptr, 0, 0, 0, 0));
  const std::string head =
      savedPairs("0 TABLE; 2 LTYPE; 70 2; 0 LTYPE; 2 Continuous; 70 0; 3 SolidLine; 72 65; 73 0");
  EXPECT_EQ(table(saved(*d, 0), "LTYPE"),
            head + savedPairs("40 0.000000; 0 LTYPE; 2 GAS; 70 32769; 3 a pattern; 72 65; 73 3; 40 "
                              "0.750000; 49 0.500000; 49 -0.250000"))
      << "the classic form counts the text too";
  EXPECT_EQ(
      table(saved(*d, kSaveExchange), "LTYPE"),
      head +
          savedPairs(
              "40 0.0; 0 LTYPE; 2 GAS; 70 1; 3 a pattern; 72 65; 73 2; 40 0.75; 49 0.5; 49 -0.25"));
}

TEST(Saver, Layers) {
  const Drawing d = newDrawing();
  addNewLayer(*d, u"OFF", 0x8000 | 128 | 4)->setColor(5);
  addNewLayer(*d, u"ODD")->setColor(300);
  addLayer(*d, d->getLayerFactory().create(u"BARE", nullptr, 1, 0));
  CFileReport report;
  EXPECT_EQ(
      table(saved(*d, 0, &report), "LAYER"),
      savedPairs("0 TABLE; 2 LAYER; 70 4; 0 LAYER; 2 0; 70 0; 62 7; 6 Continuous; 0 LAYER; 2 OFF; "
                 "70 4; 62 -5; 6 Continuous; 0 LAYER; 2 ODD; 70 0; 62 7; 6 Continuous; 0 LAYER; 2 "
                 "BARE; 70 0; 62 1; 6 CONTINUOUS"));
  EXPECT_EQ(report.count("color out of range"), 1);
}

TEST(Saver, StylesLeaveOutShapes) {
  const Drawing d = newDrawing();
  const Font font;
  addStyle(*d, d->getStyleFactory().create(u"NOTES", &font, 2, 0.8, 0.5, kNan, 4));
  addStyle(*d, d->getStyleFactory().create(u"SHAPES", &font, 0, 1, 0, 0, 1));
  CFileReport report;
  EXPECT_EQ(
      table(saved(*d, 0, &report), "STYLE"),
      savedPairs("0 TABLE; 2 STYLE; 70 2; 0 STYLE; 2 STANDARD; 70 0; 40 0.000000; 41 1.000000; 50 "
                 "0.000000; 71 0; 42 0.200000; 3 txt") +
          savedPairs("0 STYLE; 2 NOTES; 70 4; 40 2.000000; 41 0.800000; 50 28.647890; 71 0; 42 "
                     "0.200000; 3 romans.shx"));
  EXPECT_EQ(report.count("number not finite"), 1);
}

TEST(Saver, BlocksComeAfterThoseTheyInsert) {
  const Drawing d = newDrawing();
  CBlock* inner = d->getBlockFactory().create(u"INNER", PNT_3D(9, 9, 9), 0);
  CBlock* outer = addNewBlock(*d, u"OUTER");
  inner->add(createEntPnt(*d, getLayer0(*d), getLtypeByLayer(*d), 256, PNT_3D(10, 10, 10), 1));
  d->getBlockTable().add(inner);
  ASSERT_EQ(d->getBlockTable().Redefine(outer, PNT_3D(0, 0, 0), 0, {newInsert(*d, *inner, 2)}), 0);
  const std::string blocks = section(saved(*d, 0), "BLOCKS");
  EXPECT_EQ(blocks.find(savedPairs(
                "0 BLOCK; 8 0; 2 INNER; 70 0; 10 0.000000; 20 0.000000; 30 0.000000; 3 INNER; 1 ; "
                "0 POINT; 5 1; 8 0; 10 1.000000; 20 1.000000; 30 1.000000; 0 ENDBLK")),
            0u);
  EXPECT_TRUE(contains(blocks, "OUTER"));
  EXPECT_TRUE(contains(section(saved(*d, kSaveExchange), "BLOCKS"), savedPairs("0 ENDBLK; 8 0")));
}

TEST(Saver, BlocksThatInsertEachOtherFail) {
  const Drawing d = newDrawing();
  CBlock* a = addNewBlock(*d, u"A");
  CBlock* b = addNewBlock(*d, u"B");
  a->add(newInsert(*d, *b, 1));
  b->add(newInsert(*d, *a, 2));
  // The table rejects such an edge, so the test changes the graph directly.
  d->getBlockTable().getBlockGraph().doSubstitute(*a, {b});
  d->getBlockTable().getBlockGraph().doSubstitute(*b, {a});
  CFileReport report;
  EXPECT_EQ(savedAnyhow(*d, 0, &report), "");
  EXPECT_EQ(report.count("blocks in a circle"), 1);
}

TEST(Saver, AnonymousBlocksSayThatTheyArePrivate) {
  const Drawing d = newDrawing();
  addNewBlock(*d, u"*D1");
  addNewBlock(*d, u"PLAIN", 4);
  EXPECT_TRUE(contains(saved(*d, 0), savedPairs("2 *D1; 70 0")));
  const std::string bytes = saved(*d, kSaveExchange);
  EXPECT_TRUE(contains(bytes, savedPairs("2 *D1; 70 1")));
  EXPECT_TRUE(contains(bytes, savedPairs("2 PLAIN; 70 0"))) << "no file stands behind it";
}

TEST(Saver, BlocksOfHatchesThatAreGoneAreSkipped) {
  const Drawing d = newDrawing();
  addNewBlock(*d, u"*PAT1");
  CBlock* used = addNewBlock(*d, u"*PAT2");
  CBlock* nested = addNewBlock(*d, u"*PAT3");
  CBlock* owner = addNewBlock(*d, u"OWNER");
  d->getEntTable().add(newInsert(*d, *used, 1));
  ASSERT_EQ(d->getBlockTable().Redefine(owner, PNT_3D(0, 0, 0), 0, {newInsert(*d, *nested, 2)}), 0);
  const std::string blocks = section(saved(*d, 0), "BLOCKS");
  EXPECT_FALSE(contains(blocks, "*PAT1"));
  EXPECT_TRUE(contains(blocks, "*PAT2"));
  EXPECT_TRUE(contains(blocks, "*PAT3"));
}

TEST(Saver, ExternalReferencesAndWhatDependsOnThem) {
  const Drawing d = newDrawing();
  CBlockXRef* xref = addNewXRef(*d, u"SITE");
  CLayer* layer = d->getLayerFactory().createXRef(*xref, u"WALL", &d->getLtypeContinuous(), 7, 0);
  xref->getLayerTable().add(layer);
  d->getEntTable().add(createEntInsertXRef(*d, layer, getLtypeByLayer(*d), 256, *xref,
                                           PNT_3D(0, 0, 0), 1, 1, 1, 0, 1, 1, 0, 0, 1));
  const std::string bytes = saved(*d, 0);
  EXPECT_EQ(
      section(bytes, "BLOCKS"),
      savedPairs("0 BLOCK; 8 0; 2 SITE; 70 4; 10 0.000000; 20 0.000000; 30 0.000000; 3 SITE; 1 "
                 "C:\\plans\\site.dxf; 0 ENDBLK"));
  EXPECT_TRUE(contains(table(bytes, "LAYER"), savedPairs("2 SITE|WALL; 70 48")));
  EXPECT_TRUE(contains(section(bytes, "ENTITIES"), savedPairs("8 SITE|WALL; 2 SITE")));
  EXPECT_TRUE(contains(saved(*d, kSaveExchange), savedPairs("10 1.0; 20 2.0; 30 3.0; 3 SITE")));
}

TEST(Saver, ADependentFlagWithoutADependentNameIsDropped) {
  const Drawing d = newDrawing();
  addNewLayer(*d, u"WALL", 16 | 32 | 4);
  addNewLtype(*d, u"GAS", 16);
  CFileReport report;
  const std::string bytes = saved(*d, 0, &report);
  EXPECT_TRUE(contains(bytes, savedPairs("2 WALL; 70 4")));
  EXPECT_TRUE(contains(bytes, savedPairs("2 GAS; 70 0")));
  EXPECT_EQ(report.count("name not dependent"), 2);
}

TEST(Saver, HandlesAreUniqueAndTheDrawingKeepsItsOwn) {
  const Drawing d = newDrawing();
  CEntLine* lines[] = {addLine(*d, getLayer0(*d), 7), addLine(*d, getLayer0(*d), 7),
                       addLine(*d, getLayer0(*d), 0)};
  for (const unsigned flags : {0u, kSaveExchange}) {
    const std::string entities = section(saved(*d, flags), "ENTITIES");
    EXPECT_TRUE(contains(entities, "  5\n7\n"));
    EXPECT_TRUE(contains(entities, "  5\n8\n"));
    EXPECT_TRUE(contains(entities, "  5\n9\n"));
  }
  EXPECT_EQ(lines[1]->GetHandle(), 7);
  EXPECT_EQ(lines[2]->GetHandle(), 0);
}

TEST(Saver, NamesThatCoincideAreOneInTheClassicFormOnly) {
  const Drawing d = newDrawing();
  addLine(*d, addNewLayer(*d, u"a b"), 1);
  addLine(*d, addNewLayer(*d, u"a.b"), 2);
  CFileReport report;
  const std::string classic = section(saved(*d, 0, &report), "ENTITIES");
  EXPECT_TRUE(contains(classic, savedPairs("5 1; 8 a_b")));
  EXPECT_TRUE(contains(classic, savedPairs("5 2; 8 a_b")));
  EXPECT_EQ(report.count("names coincide"), 1);
  EXPECT_TRUE(contains(saved(*d, kSaveExchange), savedPairs("5 2; 8 a_b0")));
}

TEST(Saver, ASecondSaveFindsTheDrawingAsItWas) {
  const Drawing d = newDrawing();
  CEntPolyline* p = createEntPolyline(*d, getLayer0(*d), getLtypeByLayer(*d), 256, 0, 0, 0);
  p->addBulgedVertex(PNT_3D(0, 0, 0), 0, 0, 0.5, 0);
  p->addBulgedVertex(PNT_3D(1, 0, 0), 0, 0, 0, 0);
  d->getEntTable().add(p);
  const std::string before = saved(*d, kSaveExchange);
  saved(*d, 0);
  EXPECT_EQ(firstDifference(saved(*d, kSaveExchange), before), "");
}
