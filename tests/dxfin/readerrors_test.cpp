#include <gtest/gtest.h>

#include "support/dxftext.h"

using namespace vek0::test;

namespace {

struct ErrorCase {
  const char* name;
  std::string text;
  CFileDXFIError::TDXFErrors kind;
  long line;  // lines read when reading stopped
};

void expectErrors(const std::vector<ErrorCase>& cases) {
  for (const ErrorCase& t : cases) {
    SCOPED_TRACE(t.name);
    const Loaded got = loadText(t.text);
    EXPECT_EQ(got.error.GetErrorType(), t.kind);
    EXPECT_EQ(got.error.GetErrorLine(), t.line);
    EXPECT_EQ(got.error.GetFileName(), zim::WString(u"test.dxf"));
    EXPECT_EQ(got.result.status, CFileDXFIResult::Failed);
  }
}

std::string entities(std::string_view list) { return section("ENTITIES", pairsOf(list)) + dxf(); }
std::string blocks(std::string_view list) { return section("BLOCKS", pairsOf(list)) + dxf(); }
std::string tables(std::string_view name, std::string_view list) {
  return section("TABLES", table(name, pairsOf(list))) + dxf();
}
// As the version AC1014, whose linetypes may hold texts: four pairs more at the front.
std::string tables14(std::string_view name, std::string_view list) {
  return version("AC1014") + tables(name, list);
}
std::string header(std::string_view list) { return section("HEADER", pairsOf(list)) + dxf(); }

}  // namespace

TEST(ReadErrors, Structure) {
  expectErrors({
      {"empty file", "", CFileDXFIError::WrongStructure, 0},
      {"no end mark", section("ENTITIES", ""), CFileDXFIError::WrongStructure, 6},
      {"does not begin with a record", "9\nSECTION\n", CFileDXFIError::WrongStructure, 2},
      {"not a section", dxf("0 TABLE"), CFileDXFIError::WrongStructure, 2},
      {"section without a name", dxf("0 SECTION", "1 ENTITIES"), CFileDXFIError::WrongStructure, 4},
      {"empty group code", "0\nSECTION\n\nENTITIES\n", CFileDXFIError::EmptyGroupCode, 2},
      {"header ends in another record", header("0 LINE"), CFileDXFIError::WrongStructure, 6},
      {"not a table", section("TABLES", pairs("0 LAYER")), CFileDXFIError::WrongStructure, 6},
      {"table without a name", section("TABLES", pairs("0 TABLE", "70 1")),
       CFileDXFIError::WrongStructure, 8},
      {"table not closed", section("TABLES", pairs("0 TABLE", "2 LAYER")),
       CFileDXFIError::WrongStructure, 10},
      {"entry of another table", tables("LAYER", "0 STYLE"), CFileDXFIError::WrongStructure, 12},
      {"read failure between tables", "0\nSECTION\n2\nTABLES\n\n", CFileDXFIError::WrongStructure,
       4},
      {"blocks begin without a record", blocks("2 A"), CFileDXFIError::WrongStructure, 6},
      {"block not closed", blocks("0 BLOCK|2 A"), CFileDXFIError::WrongStructure, 10},
      {"entities begin without a record", entities("8 0"), CFileDXFIError::WrongStructure, 6},
      {"section not closed", "0\nSECTION\n2\nENTITIES\n" + dxf(), CFileDXFIError::WrongStructure,
       6},
      {"cut inside an entity", "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n",
       CFileDXFIError::WrongStructure, 8},
      {"other section not closed", "0\nSECTION\n2\nOBJECTS\n" + dxf(),
       CFileDXFIError::WrongStructure, 6},
  });
}

TEST(ReadErrors, VersionAndHeader) {
  expectErrors({
      {"newer version", version("AC1018"), CFileDXFIError::NewerVersion, 10},
      {"not a version", version("AC2000"), CFileDXFIError::OutOfRange, 10},
      {"version too short", version("AC101"), CFileDXFIError::OutOfRange, 10},
      {"number missing", header("9 $LTSCALE|40 "), CFileDXFIError::EmptyNumber, 8},
      {"number not finite", header("9 $LTSCALE|40 nan"), CFileDXFIError::OutOfRange, 8},
  });
}

TEST(ReadErrors, LayerEntries) {
  expectErrors({
      {"colour 0", tables("LAYER", "0 LAYER|2 A|62 0"), CFileDXFIError::OutOfRange, 16},
      {"colour 256", tables("LAYER", "0 LAYER|2 A|62 256"), CFileDXFIError::OutOfRange, 16},
      {"colour far below", tables("LAYER", "0 LAYER|2 A|62 -32768"), CFileDXFIError::OutOfRange,
       16},
      {"colour missing", tables("LAYER", "0 LAYER|2 A|62 "), CFileDXFIError::EmptyNumber, 16},
      {"unknown linetype", tables("LAYER", "0 LAYER|2 A|6 DASHED"), CFileDXFIError::LtypeNotFound,
       16},
      {"no name", tables("LAYER", "0 LAYER|62 3"), CFileDXFIError::WrongStructure, 16},
      {"dependent without a reference", tables("LAYER", "0 LAYER|2 A|70 16"),
       CFileDXFIError::WrongStructure, 18},
  });
}

TEST(ReadErrors, StyleEntries) {
  expectErrors({
      {"unknown font", tables("STYLE", "0 STYLE|2 A|3 no.shx|70 0"), CFileDXFIError::FontNotFound,
       16},
      {"no font", tables("STYLE", "0 STYLE|2 A"), CFileDXFIError::WrongStructure, 16},
      {"height below 0", tables("STYLE", "0 STYLE|2 A|40 -1|3 txt"), CFileDXFIError::OutOfRange,
       16},
      {"width too small", tables("STYLE", "0 STYLE|2 A|41 0.009"), CFileDXFIError::OutOfRange, 16},
      {"width too large", tables("STYLE", "0 STYLE|2 A|41 101"), CFileDXFIError::OutOfRange, 16},
      {"last height below 0", tables("STYLE", "0 STYLE|2 A|42 -1"), CFileDXFIError::OutOfRange,
       16},
      {"oblique too large", tables("STYLE", "0 STYLE|2 A|50 86"), CFileDXFIError::OutOfRange, 16},
  });
}

TEST(ReadErrors, LtypeEntries) {
  expectErrors({
      {"alignment not A", tables("LTYPE", "0 LTYPE|2 A|72 66"), CFileDXFIError::WrongStructure,
       16},
      {"count below 0", tables("LTYPE", "0 LTYPE|2 A|73 -1"), CFileDXFIError::WrongStructure, 16},
      {"dash before count", tables("LTYPE", "0 LTYPE|2 A|49 1"), CFileDXFIError::WrongStructure,
       16},
      {"more dashes than announced", tables("LTYPE", "0 LTYPE|2 A|73 1|49 1|49 1"),
       CFileDXFIError::WrongStructure, 20},
      {"no name", tables("LTYPE", "0 LTYPE|73 0"), CFileDXFIError::WrongStructure, 16},
      {"dependent without a reference", tables("LTYPE", "0 LTYPE|2 A|70 16"),
       CFileDXFIError::WrongStructure, 18},
      {"element before its dash", tables14("LTYPE", "0 LTYPE|2 A|73 1|74 0"),
       CFileDXFIError::WrongStructure, 28},
      {"element of no kind", tables14("LTYPE", "0 LTYPE|2 A|73 1|49 1|74 3"),
       CFileDXFIError::WrongStructure, 30},
      {"text with a code missing", tables14("LTYPE", "0 LTYPE|2 A|73 1|49 1|74 2|75 0|46 1"),
       CFileDXFIError::InconsistentRecord, 34},
  });
}

TEST(ReadErrors, Entities) {
  expectErrors({
      {"no layer code", entities("0 LINE|10 0|20 0|11 1|21 1"), CFileDXFIError::EntityNotBuilt, 16},
      {"empty layer name", entities("0 POINT|8 |10 0|20 0"), CFileDXFIError::WrongStructure, 14},
      {"colour 257", entities("0 CIRCLE|8 0|62 257|10 0"), CFileDXFIError::OutOfRange, 10},
      {"colour below 0", entities("0 CIRCLE|8 0|62 -1|10 0"), CFileDXFIError::OutOfRange, 10},
      {"coordinate missing", entities("0 POINT|8 0|10 |20 0"), CFileDXFIError::EmptyNumber, 10},
      {"coordinate not finite", entities("0 POINT|8 0|10 1e999|20 0"), CFileDXFIError::OutOfRange,
       10},
      {"an earlier error stays", entities("0 LINE|8 0|62 999"), CFileDXFIError::OutOfRange, 10},
      {"polyline without 66", entities("0 POLYLINE|8 0|0 SEQEND"), CFileDXFIError::EntityNotBuilt,
       10},
      {"polyline width below 0", entities("0 POLYLINE|8 0|66 1|40 -1"), CFileDXFIError::OutOfRange,
       12},
      {"no such smooth surface", entities("0 POLYLINE|8 0|66 1|75 7"), CFileDXFIError::OutOfRange,
       14},
      {"vertices not closed", entities("0 POLYLINE|8 0|66 1"), CFileDXFIError::WrongStructure, 12},
      {"vertex without a point", entities("0 POLYLINE|8 0|66 1|0 VERTEX|8 0|0 SEQEND"),
       CFileDXFIError::EntityNotBuilt, 16},
      {"attributes not closed", entities("0 INSERT|8 0|2 A|10 0|20 0|66 1"),
       CFileDXFIError::WrongStructure, 18},
      {"attribute without a tag",
       entities("0 INSERT|8 0|2 A|10 0|20 0|66 1|0 ATTRIB|8 0|10 0|20 0|40 1|1 x|70 0|0 SEQEND"),
       CFileDXFIError::EntityNotBuilt, 32},
  });
}

TEST(ReadErrors, LightPolylines) {
  const auto light = [](std::string_view list) { return entitiesOf("AC1014", list); };
  expectErrors({
      {"fewer vertices than announced", light("0 LWPOLYLINE|8 0|90 2|10 0|20 0"),
       CFileDXFIError::InconsistentRecord, 26},
      {"more vertices than announced", light("0 LWPOLYLINE|8 0|90 1|10 0|20 0|10 1|20 1"),
       CFileDXFIError::InconsistentRecord, 30},
      {"bulge before any vertex", light("0 LWPOLYLINE|8 0|42 1"),
       CFileDXFIError::InconsistentRecord, 20},
      {"width below 0", light("0 LWPOLYLINE|8 0|43 -1"), CFileDXFIError::OutOfRange, 20},
  });
}

TEST(ReadErrors, Blocks) {
  expectErrors({
      {"no name", blocks("0 BLOCK|10 0|0 ENDBLK"), CFileDXFIError::WrongStructure, 12},
      {"inserts itself", blocks("0 BLOCK|2 A|0 INSERT|8 0|2 A|10 0|20 0|0 ENDBLK"),
       CFileDXFIError::BlockNotFound, 22},
      {"two that insert each other",
       blocks("0 BLOCK|2 A|0 INSERT|8 0|2 B|10 0|20 0|0 ENDBLK|"
              "0 BLOCK|2 B|0 INSERT|8 0|2 A|10 0|20 0|0 ENDBLK"),
       CFileDXFIError::BlockNotFound, 38},
      {"bears the name of an external reference",
       blocks("0 BLOCK|2 X|70 4|1 x.dwg|0 ENDBLK|0 BLOCK|2 X|0 ENDBLK"),
       CFileDXFIError::XRefNotFound, 22},
      {"external reference of a block's name",
       blocks("0 BLOCK|2 X|0 ENDBLK|0 BLOCK|2 X|70 4|1 x.dwg|0 ENDBLK"),
       CFileDXFIError::XRefNotCreated, 22},
  });
}

TEST(ReadErrors, MissingCodesAreTold) {
  const Loaded line = loadText(entities("0 LINE|8 0|10 0|21 1"));
  EXPECT_EQ(line.error.GetErrorParam1(), 2);
  EXPECT_EQ(line.error.GetErrorParam2(), 0b10011);  // of 8, 10, 11, 20, 21: bits 0, 1 and 4
  const Loaded polyline = loadText(entities("0 POLYLINE|8 0"));
  EXPECT_EQ(polyline.error.GetErrorParam1(), 5);
}

TEST(ReadErrors, FileThatCannotBeOpenedLeavesNoError) {
  Loaded target;
  CFileMemory file(u"out.dxf", IFile::kWrite);
  file.open();
  struct Closed : CFileMemory {
    using CFileMemory::CFileMemory;
    bool open() override { return false; }
  } closed(u"missing.dxf", IFile::kRead);
  target.result = loadDXF(target.drawing(), closed, &target.error, {});
  EXPECT_EQ(target.result.status, CFileDXFIResult::NotOpened);
  EXPECT_FALSE(target.error.HasAnError());
}

// What was read before the error is a drawing in good order.
TEST(ReadErrors, KeepsWhatWasReadBefore) {
  const Loaded got = loadText(entities("0 POINT|8 A|10 1|20 2|0 POINT|8 A|10 9"));
  EXPECT_EQ(got.error.GetErrorType(), CFileDXFIError::EntityNotBuilt);
  ASSERT_EQ(got.count(1), 1);
  EXPECT_EQ(got.only()->getLayer()->getEntities(), 1);
}
