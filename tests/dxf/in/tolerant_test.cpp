// Input that strict reading rejects and tolerant reading repairs.

#include "dxf/in/savedtext.h"
#include "support/test.h"

namespace {

std::string manyLines(int count) {
  std::string list = kDiagonal;
  while (--count > 0) list += "|" + kDiagonal;
  return list;
}

RECT_3D extents(const Loaded& got) { return got.data->getEntTable().getBdry(); }

void expectBox(const RECT_3D& box, double x0, double y0, double x1, double y1) {
  EXPECT_NEAR(box.min.x, x0, 1e-9);
  EXPECT_NEAR(box.min.y, y0, 1e-9);
  EXPECT_NEAR(box.max.x, x1, 1e-9);
  EXPECT_NEAR(box.max.y, y1, 1e-9);
}

}  // namespace

TEST(Tolerant, ReadsHowPointsLookAndSavesIt) {
  const std::string text =
      section("HEADER", pairsOf("9 $PDMODE|70 34|9 $PDSIZE|40 -3|9 $PDMODE|70 128")) + dxf();
  const Loaded got = loadAny(text), again = loadAny(saved(got));
  for (const Loaded* each : {&got, &again}) {
    EXPECT_EQ(each->data->getVars().getPointMode(), 34);
    EXPECT_EQ(each->data->getVars().getPointSize(), -3);
  }
  EXPECT_EQ(loadText(text).data->getVars().getPointMode(), 0) << "strict";
}

// Strict reading rejects each text or reads it differently; the line in model space is always read.
TEST(Tolerant, WhatIsRefusedIsRepairedAndTold) {
  const std::string line = pairsOf(kDiagonal), good = section("ENTITIES", line) + dxf();
  const Definitions names{{"diagonal", kDiagonal},
                          {"line", line},
                          {"good", good},
                          {"open", pairs("0 SECTION", "2 ENTITIES")},
                          {"header", section("HEADER", "")},
                          {"end", dxf()}};
  for (const Row& t : rowsWith(names)) {
    const std::string frame = t.text("frame"), body = t.text("body"), list = pairsOf(body);
    std::string text = section("TABLES", table(frame, list)) + good;
    if (frame == "text") text = body;
    if (frame == "HEADER" || frame == "BLOCKS") text = section(frame, list) + good;
    if (frame == "ENTITIES") text = section(frame, list) + dxf();
    const Loaded strict = loadText(text);
    EXPECT_TRUE(strict.error.HasAnError() || strict.count(CEntLine::kType) == 0 ||
                extents(strict).max.x != 1)
        << "nothing to repair";
    const Loaded got = loadAny(text);
    EXPECT_EQ(got.result.status, CFileDXFIResult::Done) << got.error.GetFullMessage().toUtf8();
    EXPECT_EQ(got.count(CEntLine::kType), 1);
    expectBox(extents(got), 0, 0, 1, 1);
    EXPECT_TRUE(t.text("code") == "none" || got.report.count(t.text("code")) > 0)
        << "missing in the report";
  }
}

TEST(Tolerant, SectionsThatAreLeftOutAreTold) {
  for (const auto& [name, code] : {std::pair("OBJECTS", ReportCode::SectionSkipped),
                                   std::pair("ENTITES", ReportCode::SectionUnknown)}) {
    const Loaded got = loadAny(section(name, pairsOf(kDiagonal)) + dxf());
    EXPECT_EQ(got.report.count(code), 1) << name;
    EXPECT_EQ(severityOf(code), name[0] == 'O' ? ReportSeverity::Note : ReportSeverity::Loss);
  }
}

TEST(Tolerant, WhatIsNoDrawingIsRefused) {
  const std::string cases[] = {
      "",
      "<html>\n<body>\n</body>\n",
      "Any Binary DXF\r\n\x1a",
      "1\n2\n3\n4\n",
      "0\nLIMITS\n1\n0.5,1\n",
  };
  for (const std::string& text : named(cases)) {
    const Loaded got = loadAny(text);
    EXPECT_EQ(got.result.status, CFileDXFIResult::Failed);
    EXPECT_EQ(got.error.GetErrorType(), CFileDXFIError::WrongStructure);
  }
}

TEST(Tolerant, WhatIsNoTextDxfIsNamed) {
  const struct {
    std::string bytes;
    CFileDXFIError::Form form;
    const char* code;
  } cases[] = {
      {"Any Binary DXF\r\n\x1a", CFileDXFIError::BinaryForm, "binary file"},
      {std::string("AC1032\0\0\n\x02\n\n\x03", 12), CFileDXFIError::DwgForm, "dwg file"},
      {"", CFileDXFIError::EmptyForm, "empty file"},
      {"\n \r\n", CFileDXFIError::EmptyForm, "empty file"},
      {"0\nLINE\n8\n", CFileDXFIError::TextForm, nullptr},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.bytes);
    const Loaded got = loadAny(t.bytes);
    EXPECT_EQ(got.error.GetForm(), t.form);
    if (!t.code) continue;
    EXPECT_EQ(got.report.count(t.code), 1);
    EXPECT_EQ(got.report.count("stray line") + got.report.count("file cut"),
              t.bytes == "\n \r\n" || t.bytes.empty() ? 1 : 0);
    const bool isBlank = t.bytes == "\n \r\n";  // breaks another rule first
    EXPECT_EQ(loadText(t.bytes).error.GetForm(), isBlank ? CFileDXFIError::TextForm : t.form);
  }
}

TEST(Tolerant, PolylinesTakeWhatThereIs) {
  for (const Row& t : rows()) {
    const Loaded got = loadAnyEntities(t.text("list") + "|0 POINT|8 A|10 9|20 9");
    ASSERT_EQ(got.count(CEntPolyline::kType), 1);
    EXPECT_EQ(got.count(CEntPnt::kType), 1);
    EXPECT_NEAR(got.data->getEntTable().getEntityTbl().front()->getBdry().max.x, t.real("x"), 1e-9);
  }
}

// Faces refer to vertices by number: those of a broken vertex are skipped, the others must not
// change.
TEST(Tolerant, SurfacesSpareABrokenVertex) {
  const auto vertex = [](const char* x, const char* y) {
    return std::string("|0 VERTEX|8 A|70 192|10 ") + x + "|20 " + y;
  };
  const Loaded got = loadAnyEntities("0 POLYLINE|8 A|66 1|70 64" + vertex("nan", "0") +
                                     vertex("1", "0") + vertex("1", "1") + vertex("0", "1") +
                                     "|0 VERTEX|8 A|70 128|10 0|20 0|71 1|72 2|73 3" +
                                     "|0 VERTEX|8 A|70 128|10 0|20 0|71 2|72 3|73 4|0 SEQEND");
  EXPECT_EQ(got.count(CEnt3DFace::kType), 1);
  expectBox(extents(got), 0, 0, 1, 1);
  EXPECT_EQ(got.report.count("mesh incomplete"), 1);
}

TEST(Tolerant, InsertsTakeWhatThereIs) {
  const std::string block =
      section("BLOCKS", pairsOf("0 BLOCK|2 B|10 0|20 0|" + kDiagonal + "|0 ENDBLK"));
  const auto load = [&](const std::string& list) {
    return loadAny(block + section("ENTITIES", pairsOf(list)) + dxf());
  };
  const std::string insert = "0 INSERT|8 A|2 B|10 0|20 0",
                    attrib = "0 ATTRIB|8 A|10 0|20 0|40 1|2 T|1 v";
  expectBox(extents(load(insert + "|41 0|42 0|43 0")), 0, 0, 1, 1);
  for (const std::string& list :
       {insert + "|" + attrib + "|0 SEQEND", insert + "|66 1|" + attrib}) {
    const Loaded got = load(list);
    ASSERT_EQ(got.count(CEntInsert::kType), 1);
    EXPECT_EQ(got.only()->getEntInsert()->GetNoAttribs(), 1u);
  }
  const Loaded broken =
      load(insert + "|66 1|0 ATTRIB|8 A|10 nan|20 0|40 1|2 T|" + attrib + "|0 SEQEND");
  ASSERT_EQ(broken.count(CEntInsert::kType), 1);
  EXPECT_EQ(broken.only()->getEntInsert()->GetNoAttribs(), 1u);
  EXPECT_EQ(broken.report.count("entity dropped"), 1);
  EXPECT_EQ(load("0 INSERT|8 A|10 0|20 0|" + kDiagonal).count(CEntInsert::kType), 0)
      << "of nothing";
}

TEST(Tolerant, BlocksTakeWhatThereIs) {
  for (const Row& t : rows()) {
    const Loaded got =
        loadAny(section("BLOCKS", pairsOf(t.text("head") + kDiagonal + "|0 ENDBLK")) + dxf());
    EXPECT_EQ(got.result.status, CFileDXFIResult::Done);
    EXPECT_EQ(got.report.count(t.text("code")), 1);
    const bool isLayout = std::string_view(t.text("head")).find('*') != std::string_view::npos;
    const CBlock* block = got.data->getBlockTable().get(u"B");
    EXPECT_EQ(block ? block->size() : 0, isLayout ? 0u : 1u);
  }
}

TEST(Tolerant, LinetypesTakeWhatThereIs) {
  const std::string entry =
      "0 LTYPE|2 D|3 d|70 0|72 99|49 1|49 -2|74 3|340 5|75 0|46 2|50 90|9 T|45 3|44 1|"
      "49 0|74 5|75 1|340 1|46 1|50 0|44 0|45 0";
  const std::string text = section("TABLES", table("LAYER", pairsOf("0 LAYER|2 A|62 1|6 D")) +
                                                 table("LTYPE", pairsOf(entry))) +
                           section("ENTITIES", pairsOf(kDiagonal)) + dxf();
  const Loaded got = loadAny(text);
  ASSERT_FALSE(got.error.HasAnError());
  const CLtype* ltype = got.data->getLtypeTable().get(u"D");
  ASSERT_NE(ltype, nullptr);
  EXPECT_EQ(ltype->getNoDashes(), 4u) << "three and a text";
  EXPECT_EQ(got.data->getLayerTable().get(u"A")->getLtype(), ltype) << "layers came first";
  EXPECT_EQ(got.report.count("shape dropped"), 1);
  EXPECT_EQ(got.report.count("linetype unknown"), 0);
}

// Such as BATTING, whose shapes are the line.
TEST(Tolerant, LinetypesOfShapesAreContinuous) {
  const std::string shape = "|74 4|340 5|75 130|46 0.1|50 0|44 0|45 0|49 -0.1";
  for (const auto& [dash, dashes] : {std::pair("49 0.0001", 0u), std::pair("49 0.2", 2u)}) {
    const Loaded got = loadAny(
        section("TABLES",
                table("LTYPE", pairsOf("0 LTYPE|2 B|3 b|70 0|72 65|73 2|" + (dash + shape)))) +
        dxf());
    EXPECT_EQ(got.data->getLtypeTable().get(u"B")->getNoDashes(), dashes);
  }
}

// Linetypes may follow the layers that name them, but a layer that already exists keeps its
// linetype.
TEST(Tolerant, LayersWaitForTheirLinetypes) {
  const std::string later = table("LTYPE", pairsOf("0 LTYPE|2 D|70 0|72 65|73 1|49 1"));
  const auto tables = [&](const char* layers) {
    return section("TABLES", table("LAYER", pairsOf(layers)) + later) + dxf();
  };
  Loaded got = loadAny(tables("0 LAYER|2 0|62 1|6 D|0 LAYER|2 A|62 1|0 LAYER|2 A|62 2|6 D"));
  const CLtype* dashes = got.data->getLtypeTable().get(u"D");
  ASSERT_NE(dashes, nullptr);
  EXPECT_EQ(got.data->getLayer0().getLtype(), dashes);
  EXPECT_EQ(got.data->getLayerTable().get(u"A")->getLtype(), &got.data->getLtypeContinuous());
  importInto(got, tables("0 LAYER|2 A|62 3|6 D|0 LAYER|2 B|62 3|6 D|0 LAYER|2 C|6 NONE"),
             CFileDXFIPolicy::forAnyFile());
  EXPECT_EQ(got.data->getLayerTable().get(u"A")->getLtype(), &got.data->getLtypeContinuous());
  EXPECT_EQ(got.data->getLayerTable().get(u"B")->getLtype(), dashes);
  EXPECT_EQ(got.data->getLayerTable().get(u"C")->getLtype(), &got.data->getLtypeContinuous());
  EXPECT_EQ(got.report.count("linetype unknown"), 1);
}

// Limits and cancellation by the host end reading without an error, under both policies and inside
// blocks too.
TEST(Tolerant, ReadingEndsWhereTheHostSays) {
  const std::string block = section(
      "BLOCKS", pairsOf("0 BLOCK|2 B|10 0|20 0|" + kDiagonal + "|" + kDiagonal + "|0 ENDBLK"));
  const std::string text =
      block + section("ENTITIES", pairsOf(kDiagonal + "|" + kDiagonal)) + dxf();
  for (const CFileDXFIPolicy& policy : {CFileDXFIPolicy(), CFileDXFIPolicy::forAnyFile()}) {
    for (const long most : {1L, 3L}) {
      Loaded got;
      CFileMemory file(u"in.dxf", IFile::kRead, text);
      CFileDXFIOptions options{&got.report, policy};
      options.maxEntities = most;
      got.result = loadDXF(got.drawing(), file, &got.error, options);
      EXPECT_EQ(got.result.status, CFileDXFIResult::Done);
      EXPECT_EQ(got.count(CEntLine::kType), most == 3 ? 1 : 0);
      EXPECT_EQ(got.report.count("limit reached"), 1);
      EXPECT_EQ(got.report.count("section cut") + got.report.count("block cut"), 0);
    }
    Loaded got;
    CFileMemory file(u"in.dxf", IFile::kRead,
                     section("ENTITIES", pairsOf(manyLines(2500))) + dxf());
    CFileDXFIOptions options{&got.report, policy};
    options.progress = [](long line) { return line < 20000; };
    got.result = loadDXF(got.drawing(), file, &got.error, options);
    EXPECT_EQ(got.result.status, CFileDXFIResult::Cancelled);
    EXPECT_EQ(got.count(CEntLine::kType), 1999);
  }
}

// A valid file yields the same drawing under both policies, to the last byte.
TEST(Tolerant, CleanFilesAreReadAsEver) {
  CFontTable::getInstance().addPlainDefault();
  for (const char* name :
       named<const char*>({"flange.dxf", "every_kind_r12.dxf", "hatches_ac1015.dxf"})) {
    std::ifstream in(vek0::test::samplePath(name), std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(in), {});
    // Strict reading drops the names of unknown fonts and uses another variable for the current
    // layer.
    for (const auto& [from, to] : {std::pair("romans", "txt"), std::pair("$CLAYER", "$CELAYER")})
      for (std::size_t i = 0; (i = text.find(from, i)) != std::string::npos;)
        text.replace(i, std::strlen(from), to);
    const Loaded any = loadAny(text), strict = loadText(text);
    ASSERT_FALSE(strict.error.HasAnError()) << strict.error.GetFullMessage().toUtf8();
    EXPECT_TRUE(saved(any) == saved(strict));
  }
}

// Drawn in the world plane seen from below.
TEST(Tolerant, EntitiesSeenFromBelowAreMirrored) {
  const std::string block =
      section("BLOCKS", pairsOf("0 BLOCK|2 B|10 0|20 0|0 LINE|8 0|10 0|20 0|11 1|21 0.5|0 ENDBLK"));
  // A plane that is almost the world plane must give almost the same result.
  for (const Row& t : rows()) {
    for (const char* tilt : {"0", "0.0001"}) {
      SCOPED_TRACE(t.text("name") + ", tilted by " + tilt);
      std::string list = t.text("list");
      if (list.find("230") == std::string::npos)
        list += std::string("|210 ") + tilt + "|220 0|230 -1";
      const Loaded got = loadAny(block + section("ENTITIES", pairsOf(list)) + dxf());
      ASSERT_NE(got.only(), nullptr);
      const RECT_3D box = got.only()->getBdry();
      EXPECT_NEAR(box.min.x, t.real("x0"), 1e-3);
      EXPECT_NEAR(box.min.y, t.real("y0"), 1e-3);
      EXPECT_NEAR(box.max.x, t.real("x1"), 1e-3);
      EXPECT_NEAR(box.max.y, t.real("y1"), 1e-3);
    }
  }
}

TEST(Tolerant, MirroredTextsRunBackwards) {
  const Loaded got = loadAnyEntities("0 TEXT|8 A|1 abc|10 5|20 1|40 2|50 30|210 0|220 0|230 -1");
  ASSERT_NE(castText(got.only()), nullptr);
  const TEXT_3D& text = castText(got.only())->getText();
  EXPECT_EQ(text.PNT_2D::dist(PNT_2D(-5, 1)), 0);
  EXPECT_LT(text.getContext().getWidthScale(), 0);
  EXPECT_NEAR(
      std::remainder(text.getContext().getRotate() + std::acos(-1.0) / 6, 2 * std::acos(-1.0)), 0,
      1e-9);
}

// In any other plane, curves become chains of points in that plane, at the right distance.
TEST(Tolerant, CurvesInOtherPlanesBecomeChains) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> number(-1, 1);
  for (int round = 0; round < 50; ++round) {
    const PNT_3D n(number(random), number(random), number(random));
    const std::string plane = "|210 " + std::to_string(n.x) + "|220 " + std::to_string(n.y) +
                              "|230 " + std::to_string(n.z);
    for (const std::string& curve :
         {std::string("0 CIRCLE|8 A|10 3|20 4|30 5|40 2"),
          std::string("0 ARC|8 A|10 3|20 4|30 5|40 2|50 10|51 200"),
          std::string("0 LWPOLYLINE|8 A|90 2|38 5|10 5|20 4|42 1|10 1|20 4")}) {
      SCOPED_TRACE(curve + plane);
      const Loaded got = loadAnyEntities(curve + plane);
      CEntPolyline* chain = castPolyline(got.only());
      ASSERT_NE(chain, nullptr);
      // The center has the same distance from the origin in every plane, and all points have the
      // radius as distance from it.
      const double fromOrigin = std::sqrt(3.0 * 3 + 4 * 4 + 5 * 5);
      int count = 0;
      chain->forEachVisible([&](const PNT_3D& p, double, double, double, long) {
        ++count;
        const double length = std::hypot(n.x, n.y, n.z);
        EXPECT_NEAR((p.x * n.x + p.y * n.y + p.z * n.z) / length, 5, 1e-4);
        EXPECT_NEAR(std::hypot(p.x, p.y, p.z), fromOrigin, 2 + 1e-9);
      });
      EXPECT_GT(count, 50);
    }
  }
}

TEST(Tolerant, EndlessLinesAreSavedAsFarAsTheDrawingReaches) {
  const Loaded got = loadAnyEntities(
      "0 XLINE|8 A|10 0|20 0|11 1|21 0|0 RAY|8 A|10 50|20 50|30 7|11 0|21 -1|31 0|"
      "0 XLINE|8 A|10 5|20 5|11 0|21 0|0 LINE|8 A|10 0|20 0|11 100|21 100");
  EXPECT_EQ(got.report.count("entity dropped"), 1) << "a direction of length 0";
  expectBox(extents(got), 0, 0, 100, 100);
  CFileMemory file(u"saved.dxf", IFile::kWrite);
  CFileReport report;
  ASSERT_TRUE(SaveDXF(got.drawing(), file, 0, &report));
  EXPECT_EQ(report.count("endless line cut"), 2);
  std::vector<LINE_3D> lines;
  const Loaded again = loadAny(file.bytes());
  for (CEnt* ent : again.data->getEntTable().getEntityTbl())
    lines.push_back(castLine(ent)->getLine());
  const std::vector<LINE_3D> expected{LINE_3D(-5, 0, 0, 105, 0, 0), LINE_3D(50, 50, 7, 50, -5, 7),
                                      LINE_3D(0, 0, 0, 100, 100, 0)};
  EXPECT_TRUE(lines == expected);
}

TEST(Tolerant, PaperIsKeptApart) {
  const std::string text = entitiesOf(
      "AC1015", kDiagonal +
                    "|0 CIRCLE|8 A|67 1|10 0|20 0|40 1|0 POLYLINE|8 A|66 1|67 1|0 VERTEX|8 A|10 0|"
                    "20 0|0 VERTEX|8 A|10 1|20 0|0 SEQEND");
  const Loaded model = loadAny(text);
  EXPECT_EQ(model.count(CEntLine::kType), 1);
  EXPECT_EQ(model.data->getEntTable().getEntityTbl().size(), 1u);
  EXPECT_EQ(model.report.count("on paper"), 0);
  ASSERT_EQ(model.data->getLayouts().size(), 1);
  EXPECT_EQ(model.data->getLayouts()[0].getBlock().size(), 2u);
  CFileDXFIPolicy policy = CFileDXFIPolicy::forAnyFile();
  policy.layouts = false;
  EXPECT_EQ(loadText(text, policy).report.count("on paper"), 2);
  policy.paperSpace = true;
  EXPECT_EQ(loadText(text, policy).count(CEntLine::kType), 0);
  EXPECT_EQ(loadText(text, policy).data->getEntTable().getEntityTbl().size(), 2u);
}

TEST(Tolerant, WhatIsInvisibleStaysSo) {
  CFontTable::getInstance().addPlainDefault();
  const std::string attrib = "|0 ATTRIB|8 A|10 0|20 0|40 1|2 T|1 v";
  const std::string block = "0 BLOCK|2 B|10 0|20 0|0 CIRCLE|8 A|60 1|10 0|20 0|40 1|";
  const std::string insert = "0 POINT|8 A|60 1|10 0|20 0|0 INSERT|8 A|60 0|2 B|10 0|20 0|66 1";
  const Loaded got = loadAny(
      section("BLOCKS", pairsOf(block + kDiagonal + "|0 ENDBLK")) +
      section("ENTITIES", pairsOf(insert + attrib + "|60 1" + attrib + "|60 0|0 SEQEND")) + dxf());
  EXPECT_EQ(got.report.count("entity invisible"), 0);
  const CBlock& b = *got.data->getBlockTable().get(u"B");
  ASSERT_EQ(b.size(), 2u);
  EXPECT_FALSE(b[0]->getTraits().isVisible);
  EXPECT_TRUE(b[1]->getTraits().isVisible);
  const auto& ents = got.data->getEntTable().getEntityTbl();
  ASSERT_EQ(ents.size(), 2u);
  EXPECT_FALSE(ents.front()->getTraits().isVisible);
  const CEntInsertBase& with = *ents.back()->getEntInsert();
  ASSERT_EQ(with.GetNoAttribs(), 2u);
  EXPECT_FALSE(with.GetAttrib(0)->getTraits().isVisible);
  EXPECT_EQ(with.GetAttrib(1)->getFlags(), 0);
  CFileMemory file(u"saved.dxf", IFile::kWrite);
  CFileReport report;
  ASSERT_TRUE(SaveDXF(got.drawing(), file, kSaveExchange, &report));
  EXPECT_EQ(report.count("entity invisible"), 2);
  EXPECT_EQ(loadText(file.bytes()).data->getBlockTable().get(u"B")->size(), 1u);
}

// A block contains the entities of both spaces.
TEST(Tolerant, BlocksAreReadForPaperToo) {
  const std::string text = section("BLOCKS", pairsOf("0 BLOCK|2 B|10 0|20 0|" + kDiagonal +
                                                     "|67 1|" + kDiagonal + "|0 ENDBLK")) +
                           section("ENTITIES", pairsOf("0 INSERT|8 A|67 1|2 B|10 0|20 0")) + dxf();
  for (const bool paper : {false, true}) {
    CFileDXFIPolicy policy = CFileDXFIPolicy::forAnyFile();
    policy.paperSpace = paper;
    const Loaded got = loadText(text, policy);
    EXPECT_EQ(got.data->getBlockTable().get(u"B")->size(), 2u);
    EXPECT_EQ(got.count(CEntInsert::kType), paper ? 1 : 0);
  }
}

TEST(Tolerant, EncodingsAreNotTakenAtTheirWord) {
  const auto layerOf = [](const std::string& version, const std::string& page,
                          const std::string& layer) {
    return section("HEADER", pairs("9 $ACADVER") + pairText("1 " + version) +
                                 pairs("9 $DWGCODEPAGE") + pairText("3 " + page)) +
           section("ENTITIES", pairsOf("0 POINT|8 " + layer + "|10 0|20 0")) + dxf();
  };
  for (const Row& t : rows()) {
    const Loaded got = loadAny(layerOf(t.text("version"), t.text("page"), t.text("bytes")));
    EXPECT_NE(got.data->getLayerTable().get(t.wide("layer")), nullptr);
    EXPECT_EQ(got.report.count("encoding differs"), t.whole<long>("told"));
    EXPECT_EQ(got.result.encoding, t.text("encoding"));
  }
  CFileMemory file(u"in.dxf", IFile::kRead, layerOf("AC1021", "ANSI_1252", "\xE4\xE0"));
  CFileDXFIOptions options;
  options.policy = CFileDXFIPolicy::forAnyFile();
  options.codePage = 1251;
  Loaded forced;
  loadDXF(forced.drawing(), file, &forced.error, options);
  EXPECT_NE(forced.data->getLayerTable().get(u"да"), nullptr);
}
