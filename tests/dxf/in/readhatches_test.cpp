#include "support/test.h"

namespace {

const std::string kHead = "0 HATCH|8 0|10 0|20 0|30 2|2 ANSI31|70 0|71 0|";
const std::string kTail = "|75 0|76 1|52 0|41 1|77 0|98 1|10 0.5|20 0.5";
const std::string kSquareEdges =
    "92 3|72 0|73 1|93 4|10 0|20 0|10 10|20 0|10 10|20 10|10 0|20 10|97 0";
const std::string kIsland = "92 2|72 0|73 1|93 4|10 2|20 2|10 8|20 2|10 8|20 8|10 2|20 8";
const std::string kDot = "92 2|72 0|73 1|93 4|10 4|20 4|10 6|20 4|10 6|20 6|10 4|20 6|97 0";

Loaded loadHatch(const std::string& list) { return loadText(entitiesOf("AC1015", list)); }

CEntHatch* onlyHatch(const Loaded& got) { return castHatch(got.only()); }

double area(const CEntHatch& hatch, const HatchRing& ring) {
  double twice = 0;
  for (std::size_t i = 0; i < ring.count; ++i) {
    const PNT_3D& p = hatch.getBoundary()[ring.first + i];
    const PNT_3D& q = hatch.getBoundary()[ring.first + (i + 1) % ring.count];
    twice += p.x * q.y - p.y * q.x;
  }
  return std::fabs(twice / 2);
}

long notes(const Loaded& got, const std::string& code) {
  for (const auto& entry : got.report.entries())
    if (textOf(entry.code) == code) return entry.count;
  return 0;
}

}  // namespace

TEST(ReadHatches, LoopsBecomeRings) {
  for (const Row& t : rows()) {
    const Loaded got = loadHatch(kHead + "91 1|" + t.text("loop") + kTail);
    ASSERT_FALSE(got.error.HasAnError()) << got.error.GetErrorLine();
    const CEntHatch* hatch = onlyHatch(got);
    ASSERT_NE(hatch, nullptr);
    const auto rings = hatchRings(hatch->getBoundary());
    ASSERT_EQ(rings.size(), 1u);
    EXPECT_NEAR(area(*hatch, rings[0]), t.real("area"), t.real("tolerance"));
    EXPECT_EQ(hatch->getPnt(0).z, 2);
    EXPECT_GT(hatch->getBlock()->size(), 0u);
    EXPECT_EQ(notes(got, "hatch open"), 0);
  }
}

// Newer versions store fit points of a curve under the same code as the number of source objects;
// without control points they define the curve.
TEST(ReadHatches, FittedEdges) {
  const std::string controls = "95 5|96 3|40 0|40 0|40 1|40 2|40 2|10 0|20 0|10 4|20 0|10 4|20 4",
                    chord = "72 1|10 4|20 4|11 0|21 0", fits = "11 0|21 0|11 4|21 0|11 4|21 4",
                    spline = "72 4|94 1|73 0|74 0|", first = "92 1|93 2|" + spline,
                    last = "92 1|93 2|" + chord + "|" + spline;
  const auto areaOf = [](const std::string& loop) {
    const Loaded got = loadText(entitiesOf("AC1015", kHead + "91 1|" + loop + kTail),
                                CFileDXFIPolicy::forAnyFile());
    const CEntHatch* hatch = onlyHatch(got);
    const bool good = hatch && notes(got, "hatch open") == 0;
    return good ? area(*hatch, hatchRings(hatch->getBoundary()).at(0)) : 0;
  };
  EXPECT_NEAR(areaOf(first + controls + "|97 0|" + chord + "|97 1|330 1F"), 8, 1e-9) << "none";
  EXPECT_NEAR(areaOf(last + controls + "|97 0|97 0"), 8, 1e-9) << "none, last of the loop";
  EXPECT_NEAR(areaOf(last + controls + "|97 2|330 1E|330 1F"), 8, 1e-9) << "sources alone";
  EXPECT_NEAR(areaOf(first + controls + "|97 3|" + fits + "|12 1|22 0|13 0|23 1|" + chord), 8,
              1e-9);
  EXPECT_GT(areaOf(first + "95 0|96 0|97 3|" + fits + "|" + chord + "|97 0"), 8) << "no controls";
}

TEST(ReadHatches, StylesLeaveOutInnerLoops) {
  for (const Row& t : rows()) {
    const Loaded got = loadHatch(kHead + "91 3|" + kDot + "|" + kSquareEdges + "|" + kIsland + "|" +
                                 t.text("style") + "|76 1|52 0|41 1");
    ASSERT_NE(onlyHatch(got), nullptr) << got.error.GetErrorLine();
    EXPECT_EQ(hatchRings(onlyHatch(got)->getBoundary()).size(), t.count("rings"));
  }
}

TEST(ReadHatches, Patterns) {
  const std::string ansi31 = "78 1|53 45|43 0|44 0|45 -0.0883883476|46 0.0883883476|79 0";
  const std::string metric = "78 1|53 45|43 0|44 0|45 -2.2450640|46 2.2450640|79 0";
  const std::string turned = "78 1|53 75|43 0|44 0|45 -0.2414814566|46 0.0647047613|79 0";
  const std::string other = "78 1|53 45|43 0|44 0|45 -1|46 1|79 2|49 1|49 -1";
  const Definitions names{
      {"ansi31", ansi31}, {"metric", metric}, {"turned", turned}, {"other", other}};
  for (const Row& t : rowsWith(names)) {
    const Loaded got = loadHatch(kHead + "91 1|" + kSquareEdges + "|" + t.text("pairs"));
    const CEntHatch* hatch = onlyHatch(got);
    ASSERT_NE(hatch, nullptr) << got.error.GetErrorLine();
    EXPECT_EQ(zim::WString(hatch->getHatchType().name), zim::WString(t.wide("type")));
    EXPECT_EQ(getHatch(hatch->getHatchType()) >= 0, t.flag("known"));
    EXPECT_NEAR(hatch->getHatchScale(), t.real("scale"), 1e-6 * t.real("scale"));
    EXPECT_NEAR(hatch->getHatchRotate(), t.real("angleDeg") * 0.01745329251994, 1e-12);
    EXPECT_GT(hatch->getBlock()->size(), 0u);
  }
}

// The lines of a pattern defined in the file are where the file says, regardless of the hatch angle
// and scale, which they already include.
TEST(ReadHatches, OwnLinesFallWhereTheFileSays) {
  const Loaded got = loadHatch(kHead + "91 1|" + kSquareEdges +
                               "|2 OWN|76 2|52 30|41 2|78 1|53 90|43 3|44 0|45 -4|46 0|79 0");
  const CEntHatch* hatch = onlyHatch(got);
  ASSERT_NE(hatch, nullptr);
  const CBlock& block = *hatch->getBlock();
  ASSERT_EQ(block.size(), 2u) << "upright lines at x = 3 and 7";
  double sum = 0;
  for (unsigned i = 0; i < 2; ++i) {
    EXPECT_NEAR(block[i]->getBdry().min.x, block[i]->getBdry().max.x, 1e-9);
    EXPECT_NEAR(block[i]->getBdry().max.y - block[i]->getBdry().min.y, 10, 1e-9);
    sum += block[i]->getBdry().min.x;
  }
  EXPECT_NEAR(sum, 10, 1e-9);
}

// A family holds up to six dashes; longer sequences are split into several families that draw the
// same.
TEST(ReadHatches, LongDashSequencesAreKept) {
  const Loaded got = loadHatch(kHead + "91 1|" + kSquareEdges +
                               "|2 OWN|76 2|52 0|41 1|78 1|53 0|43 0|44 5|45 0|46 20|79 8|"
                               "49 1|49 -0.5|49 2|49 -0.5|49 0.5|49 -0.5|49 3|49 -2");
  const CEntHatch* hatch = onlyHatch(got);
  ASSERT_NE(hatch, nullptr);
  EXPECT_EQ(hatch->getHatchType().numLines, 2);
  double drawn = 0;
  const CBlock& block = *hatch->getBlock();
  EXPECT_EQ(block.size(), 4u);
  for (unsigned i = 0; i < block.size(); ++i)
    drawn += block[i]->getBdry().max.x - block[i]->getBdry().min.x;
  EXPECT_NEAR(drawn, 6.5, 1e-9);
}

TEST(ReadHatches, WhatDoesNotFitIsAnError) {
  const Definitions names{{"kSquareEdges", kSquareEdges}};
  for (const Row& t : rowsWith(names)) {
    const Loaded got = loadHatch(kHead + t.text("list"));
    EXPECT_EQ(got.error.GetErrorType(), CFileDXFIError::InconsistentRecord);
    EXPECT_TRUE(got.data->getEntTable().getEntityTbl().empty());
  }
}

TEST(ReadHatches, LossesAreTold) {
  const std::string open = "92 1|93 2|72 1|10 0|20 0|11 9|21 0|72 1|10 9|20 9|11 9|21 0|97 0";
  const std::string point = "92 2|72 0|73 1|93 2|10 0|20 0|10 0|20 0|97 0";
  EXPECT_EQ(notes(loadHatch(kHead + "91 1|" + open + kTail), "hatch open"), 1);
  const Loaded dropped = loadHatch(kHead + "91 1|" + point + kTail);
  EXPECT_EQ(notes(dropped, "hatch dropped"), 1);
  EXPECT_EQ(dropped.only(), nullptr);
  const Loaded dense = loadHatch(kHead + "91 1|" + kSquareEdges + "|76 1|52 0|41 1e-9");
  EXPECT_EQ(notes(dense, "hatch empty"), 1);
  ASSERT_NE(onlyHatch(dense), nullptr);
  EXPECT_EQ(onlyHatch(dense)->getNoPnts(), 4) << "nothing of what the file said is lost";
  EXPECT_EQ(onlyHatch(dense)->getBlock()->size(), 0u);
  EXPECT_EQ(onlyHatch(dense)->getHatchScale(), 1e-9);
  const Loaded flat =
      loadHatch(kHead +
                "91 1|92 1|93 4|72 1|10 0|20 0|11 9|21 0|72 2|10 9|20 0|40 0|"
                "50 0|51 90|73 1|72 1|10 9|20 0|11 9|21 9|72 1|10 9|20 9|11 0|21 0|97 0" +
                kTail);
  EXPECT_EQ(notes(flat, "hatch open"), 1) << "an edge that is none";
  const Loaded unknown = loadHatch(kHead + "91 1|" + kSquareEdges + "|2 WHAT|76 1");
  EXPECT_EQ(notes(unknown, "hatch empty"), 1);
}

// A short record can expand to a million points of curves.
TEST(ReadHatches, CurvesHaveABound) {
  const int count = 5000;
  std::string loop = "92 2|72 1|73 1|93 " + std::to_string(count);
  for (int i = 0; i < count; ++i)
    loop += "|10 " + std::to_string(i % 2) + "|20 " + std::to_string(i) + "|42 1e9";
  const Loaded got = loadHatch(kHead + "2 WHAT|91 1|" + loop + kTail);
  EXPECT_EQ(notes(got, "hatch coarse"), 1);
  ASSERT_NE(onlyHatch(got), nullptr);
  EXPECT_LT(onlyHatch(got)->getNoPnts(), 1'100'000);
  EXPECT_GT(onlyHatch(got)->getNoPnts(), 900'000);
}

TEST(ReadHatches, TheLinesOfAFileHaveABound) {
  const std::string hatch = kHead + "91 1|" + kSquareEdges + kTail + "|";
  std::string list;
  for (int i = 0; i < 100; ++i) list += hatch;
  list.pop_back();
  CDataPtr data(CDataFactory().createData());
  data->setHatchLimit(1000);
  CFileMemory file(u"in.dxf", IFile::kRead, entitiesOf("AC1015", list));
  CFileDXFIError error;
  CFileReport report;
  CFileDXFIOptions options;
  options.report = &report;
  loadDXF(*data, file, &error, options);
  EXPECT_FALSE(error.HasAnError());
  EXPECT_EQ(data->getHatchLimit(), 1000);
  std::size_t pieces = 0, empty = 0;
  for (CEnt* ent : data->getEntTable().getEntityTbl()) {
    const std::size_t size = castHatch(ent)->getBlock()->size();
    pieces += size;
    empty += size == 0 ? 1 : 0;
  }
  EXPECT_GT(pieces, 200u);
  EXPECT_LE(pieces, 270u);
  ASSERT_EQ(report.entries().size(), 1u);
  EXPECT_EQ(static_cast<std::size_t>(report.entries()[0].count), empty);
}

TEST(ReadHatches, BecomeOutlinesWhenAsked) {
  CFileDXFIPolicy policy = CFileDXFIPolicy::forAnyFile();
  policy.hatchOutlines = true;
  const std::string record =
      kHead + "5 2F|210 0|220 0|230 -1|91 2|" + kSquareEdges + "|" + kIsland + kTail;
  const Loaded got = loadText(entitiesOf("AC1015", record), policy);
  EXPECT_EQ(notes(got, "hatch as outline"), 1);
  EXPECT_EQ(got.count(CEntPolyline::kType), 2);
  const CEntPolyline* outer = castPolyline(got.drawing().getEntTable().get(0x2F));
  ASSERT_NE(outer, nullptr);
  EXPECT_TRUE(outer->isClosed());
  EXPECT_EQ(outer->getBdry().min, PNT_3D(-10, 0, -2)) << "placed once";
  EXPECT_EQ(got.drawing().getBlockTable().size(), 0);
  std::string solid = record;
  solid.replace(solid.find("|70 0|"), 6, "|70 1|");
  EXPECT_NE(onlyHatch(loadText(entitiesOf("AC1015", solid), policy)), nullptr);
}

TEST(ReadHatches, OnPaperLeaveNothingBehind) {
  const std::string text = version("AC1015") +
                           section("BLOCKS", pairsOf("0 BLOCK|2 *Paper_Space|" + kHead + "91 1|" +
                                                     kSquareEdges + kTail + "|0 ENDBLK|5 9")) +
                           dxf();
  const Loaded got = loadText(text);
  ASSERT_FALSE(got.error.HasAnError()) << got.error.GetErrorLine();
  EXPECT_EQ(got.data->getBlockTable().size(), 0);
}

TEST(ReadHatches, OldVersionsSkipThem) {
  const Loaded got = loadEntities(kHead + "91 1|" + kSquareEdges + kTail);
  EXPECT_EQ(notes(got, "kind skipped"), 1);
  EXPECT_EQ(got.only(), nullptr);
}

// The block of a hatch's lines may get a name that a later block of the file claims.
TEST(ReadHatches, GiveTheirBlockNameUpToTheFile) {
  const std::string text =
      version("AC1015") +
      section("BLOCKS", pairsOf("0 BLOCK|2 A|" + kHead + "91 1|" + kSquareEdges + kTail +
                                "|0 INSERT|8 0|2 *PAT1|10 0|20 0|0 ENDBLK|5 9|"
                                "0 BLOCK|2 *PAT1|70 1|0 POINT|8 0|10 1|20 1|0 ENDBLK|5 9")) +
      dxf();
  const Loaded got = loadText(text);
  ASSERT_FALSE(got.error.HasAnError()) << got.error.GetErrorLine();
  const CBlock* own = got.data->getBlockTable().get(u"*PAT1");
  ASSERT_NE(own, nullptr);
  EXPECT_EQ(own->size(), 1u);
  const CBlock& a = *got.data->getBlockTable().get(u"A");
  ASSERT_EQ(a.size(), 2u);
  const CBlock* lines = a[0]->getEntInsert()->getBlock();
  EXPECT_NE(lines, own);
  EXPECT_GT(lines->size(), 1u);
  EXPECT_EQ(a[1]->getEntInsert()->getBlock(), own);
}
