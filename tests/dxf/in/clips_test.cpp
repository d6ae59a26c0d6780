// Where files store the clips of inserts, and how they are read.

#include "support/test.h"

namespace {

// An insert at 10, 20 with a scale of 2, clipped to the box from 0, 0 to 4, 2 relative to it.
const std::string kBlocks =
    section("BLOCKS", pairsOf("0 BLOCK|8 0|2 B|70 0|10 0|20 1|0 POINT|8 A|10 0|20 0|0 ENDBLK|8 0"));
const std::string kInsert =
    section("ENTITIES",
            pairsOf("0 INSERT|8 A|102 {ACAD_XDICTIONARY|360 A1|102 }|2 B|10 10|20 20|41 2|42 2"));
const std::string kOwn = "0 DICTIONARY|5 A1|3 ACAD_FILTER|360 A2|";
const std::string kLinks = kOwn + "0 DICTIONARY|5 A2|3 SPATIAL|360 A3|0 XRECORD|5 7|";
const std::string kToBlock =
    "40 0.5|40 0|40 0|40 -5|40 0|40 0.5|40 0|40 -10|40 0|40 0|40 0.5|40 0|";
const std::string kToPlane = "40 1|40 0|40 0|40 -10|40 0|40 1|40 0|40 -20|40 0|40 0|40 1|40 0|";
const std::string kInverted =
    "0 DICTIONARY|5 A4|3 ACAD_XREC_ROUNDTRIP|360 A5|0 XRECORD|5 A5|102 "
    "ACAD_INVERTEDCLIP_ROUNDTRIP|";

std::string filter(const char* on, const char* y, const std::string& matrices) {
  return std::string("0 SPATIAL_FILTER|5 A3|360 A4|10 0|20 0|10 4|20 ") + y + "|71 " + on +
         "|72 0|73 0|" + matrices;
}

// Checks the insert's clip, with the OBJECTS section before or after the insert.
void expectClip(const char* what, const std::string& list, bool isClipped, long lost,
                bool isFirst = false) {
  SCOPED_TRACE(what);
  const std::string objects = section("OBJECTS", pairsOf(list + "0 XRECORD|5 8"));
  const Loaded got =
      loadText(kBlocks + (isFirst ? objects : "") + kInsert + (isFirst ? "" : objects) + dxf(),
               CFileDXFIPolicy::forAnyFile());
  ASSERT_TRUE(got.only());
  const auto& ent = static_cast<const CEntInsert&>(*got.only());
  EXPECT_EQ(got.report.count("clip ignored"), lost);
  ASSERT_EQ(ent.isClipped(), isClipped);
  if (!isClipped) return;
  const std::vector<PNT_2D> square{PNT_2D(0, 0), PNT_2D(2, 0), PNT_2D(2, 1), PNT_2D(0, 1)};
  EXPECT_TRUE(ent.getClip()->boundary == square);
  CFileMemory file(u"saved.dxf", IFile::kWrite);
  CFileReport report;
  EXPECT_TRUE(SaveDXF(got.drawing(), file, kSaveExchange, &report));
  EXPECT_EQ(report.count("clip lost"), 1);
  // Later versions keep it; their blocks have the base point 0.
  CFileMemory later(u"later.dxf", IFile::kWrite);
  EXPECT_TRUE(SaveDXF(got.drawing(), later, CFileDXFOOptions{DxfVersion::R2018}));
  const Loaded again = loadText(later.bytes(), CFileDXFIPolicy::forAnyFile());
  ASSERT_TRUE(again.only());
  const std::vector<PNT_2D> moved{PNT_2D(0, -1), PNT_2D(2, -1), PNT_2D(2, 0), PNT_2D(0, 0)};
  EXPECT_TRUE(static_cast<const CEntInsert&>(*again.only()).getClip()->boundary == moved);
}

}  // namespace

TEST(Clips, AreFoundAppliedOrReported) {
  const std::string both = kToBlock + kToPlane, good = filter("1", "2", both);
  expectClip("usual", kLinks + good, true, 0);
  expectClip("backwards", good + kLinks, true, 0, true);
  expectClip("off", kLinks + filter("0", "2", both), false, 0);
  expectClip("no number", kLinks + filter("1", "nan", both), false, 1);
  expectClip("no matrix", kLinks + filter("1", "2", kToBlock), false, 1);
  expectClip("in front of a plane", kLinks + filter("1|72 1|40 9", "2", both), true, 1);
  expectClip("no boundary", kLinks, false, 1);
  expectClip("inverted", kLinks + good + kInverted, false, 1);
  expectClip("another dictionary", kOwn + "0 DICTIONARY|5 A2|", false, 0);
}
