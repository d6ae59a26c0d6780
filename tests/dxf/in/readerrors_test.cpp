#include <gtest/gtest.h>

#include <new>

#include "support/dxftext.h"
#include "vek0core/dxf/in/parse/filedxfiloaddatasemantor.h"
#include "vek0core/dxf/in/parse/filedxfiparser.h"
#include "vek0core/entities/entfactory.h"

using namespace vek0::test;
using E = CFileDXFIError;

namespace {

// What a case is about, in the place where it belongs: "" is a whole file without its
// end mark, a name that of a section or of a table, behind a version if one is needed.
std::string fileOf(std::string_view place, std::string_view list) {
  if (place.empty()) return pairsOf(list);
  if (place.substr(0, 2) == "AC")
    return version(place.substr(0, 6)) + fileOf(place.substr(7), list);
  if (place == "LAYER" || place == "STYLE" || place == "LTYPE")
    return section("TABLES", table(place, pairsOf(list))) + dxf();
  return section(place, pairsOf(list)) + dxf();
}

struct ErrorCase {
  const char* name;
  const char* list;
  E::TDXFErrors kind;
  long line;  // lines read when reading stopped
};

template <std::size_t count>
void expectErrors(const char* place, const ErrorCase (&cases)[count]) {
  for (const ErrorCase& t : cases) {
    SCOPED_TRACE(testing::Message() << place << ": " << t.name);
    const Loaded got = loadText(fileOf(place, t.list));
    EXPECT_EQ(got.error.GetErrorType(), t.kind);
    EXPECT_EQ(got.error.GetErrorLine(), t.line);
    EXPECT_EQ(got.error.GetFileName(), zim::WString(u"test.dxf"));
    EXPECT_EQ(got.result.status, CFileDXFIResult::Failed);
  }
}

std::string entities(std::string_view list) { return fileOf("ENTITIES", list); }

constexpr char kAttribWithoutTag[] = "0 INSERT|8 0|2 A|10 0|20 0|66 1|0 ATTRIB|8 0|0 SEQEND";
constexpr char kTwoVerticesOfOne[] = "0 LWPOLYLINE|8 0|90 1|10 0|20 0|10 1|20 1";
constexpr char kBlockInItself[] = "0 BLOCK|2 A|0 INSERT|8 0|2 A|10 0|20 0|0 ENDBLK";
constexpr char kBlocksInEachOther[] =
    "0 BLOCK|2 A|0 INSERT|8 0|2 B|10 0|20 0|0 ENDBLK|"
    "0 BLOCK|2 B|0 INSERT|8 0|2 A|10 0|20 0|0 ENDBLK";
constexpr char kXRefThenBlock[] = "0 BLOCK|2 X|70 4|1 x.dwg|0 ENDBLK|0 BLOCK|2 X|0 ENDBLK";
constexpr char kBlockThenXRef[] = "0 BLOCK|2 X|0 ENDBLK|0 BLOCK|2 X|70 4|1 x.dwg|0 ENDBLK";

}  // namespace

TEST(ReadErrors, Structure) {
  const ErrorCase files[] = {
      {"empty file", "", E::WrongStructure, 0},
      {"no end mark", "0 SECTION|2 ENTITIES|0 ENDSEC", E::WrongStructure, 6},
      {"does not begin with a record", "9 SECTION", E::WrongStructure, 2},
      {"not a section", "0 TABLE", E::WrongStructure, 2},
      {"section without a name", "0 SECTION|1 ENTITIES", E::WrongStructure, 4},
      {"empty group code", "0 SECTION| ENTITIES", E::EmptyGroupCode, 2},
      {"section not closed", "0 SECTION|2 ENTITIES|0 EOF", E::WrongStructure, 6},
      {"other section not closed", "0 SECTION|2 OBJECTS|0 EOF", E::WrongStructure, 6},
      {"read failure between tables", "0 SECTION|2 TABLES| x", E::WrongStructure, 4},
      {"cut inside an entity", "0 SECTION|2 ENTITIES|0 LINE|8 0", E::WrongStructure, 8},
  };
  expectErrors("", files);
  const ErrorCase header[] = {
      {"ends in another record", "0 LINE", E::WrongStructure, 6},
  };
  expectErrors("HEADER", header);
  const ErrorCase tables[] = {
      {"not a table", "0 LAYER", E::WrongStructure, 6},
      {"without a name", "0 TABLE|70 1", E::WrongStructure, 8},
      {"not closed", "0 TABLE|2 LAYER", E::WrongStructure, 10},
      {"other table not closed", "0 TABLE|2 VIEW", E::WrongStructure, 12},
  };
  expectErrors("TABLES", tables);
  const ErrorCase layers[] = {
      {"entry of another table", "0 STYLE", E::WrongStructure, 12},
  };
  expectErrors("LAYER", layers);
  const ErrorCase blocks[] = {
      {"begin without a record", "2 A", E::WrongStructure, 6},
      {"block not closed", "0 BLOCK|2 A", E::WrongStructure, 10},
  };
  expectErrors("BLOCKS", blocks);
  const ErrorCase ents[] = {
      {"begin without a record", "8 0", E::WrongStructure, 6},
  };
  expectErrors("ENTITIES", ents);
}

TEST(ReadErrors, VersionAndHeader) {
  const ErrorCase header[] = {
      {"newer version", "9 $ACADVER|1 AC1018", E::NewerVersion, 10},
      {"not a version", "9 $ACADVER|1 AC2000", E::OutOfRange, 10},
      {"version too short", "9 $ACADVER|1 AC101", E::OutOfRange, 10},
      {"number missing", "9 $LTSCALE|40 ", E::EmptyNumber, 8},
      {"number not finite", "9 $LTSCALE|40 nan", E::OutOfRange, 8},
      {"number missing in an unknown variable", "9 $X|70 ", E::EmptyNumber, 8},
  };
  expectErrors("HEADER", header);
}

TEST(ReadErrors, LayerEntries) {
  const ErrorCase layers[] = {
      {"colour 0", "0 LAYER|2 A|62 0", E::OutOfRange, 16},
      {"colour 256", "0 LAYER|2 A|62 256", E::OutOfRange, 16},
      {"colour far below", "0 LAYER|2 A|62 -32768", E::OutOfRange, 16},
      {"colour missing", "0 LAYER|2 A|62 ", E::EmptyNumber, 16},
      {"unknown linetype", "0 LAYER|2 A|6 DASHED", E::LtypeNotFound, 16},
      {"no name", "0 LAYER|62 3", E::WrongStructure, 16},
      {"dependent without a reference", "0 LAYER|2 A|70 16", E::WrongStructure, 18},
  };
  expectErrors("LAYER", layers);
}

TEST(ReadErrors, StyleEntries) {
  const ErrorCase styles[] = {
      {"unknown font", "0 STYLE|2 A|3 no.shx|70 0", E::FontNotFound, 16},
      {"no font", "0 STYLE|2 A", E::WrongStructure, 16},
      {"no name", "0 STYLE|3 txt", E::WrongStructure, 16},
      {"height below 0", "0 STYLE|2 A|40 -1|3 txt", E::OutOfRange, 16},
      {"width too small", "0 STYLE|2 A|41 0.009", E::OutOfRange, 16},
      {"width too large", "0 STYLE|2 A|41 101", E::OutOfRange, 16},
      {"last height below 0", "0 STYLE|2 A|42 -1", E::OutOfRange, 16},
      {"oblique too large", "0 STYLE|2 A|50 86", E::OutOfRange, 16},
      {"oblique too small", "0 STYLE|2 A|50 -86", E::OutOfRange, 16},
  };
  expectErrors("STYLE", styles);
}

TEST(ReadErrors, LtypeEntries) {
  const ErrorCase ltypes[] = {
      {"alignment not A", "0 LTYPE|2 A|72 66", E::WrongStructure, 16},
      {"count below 0", "0 LTYPE|2 A|73 -1", E::WrongStructure, 16},
      {"dash before count", "0 LTYPE|2 A|49 1", E::WrongStructure, 16},
      {"more dashes than announced", "0 LTYPE|2 A|73 1|49 1|49 1", E::WrongStructure, 20},
      {"no name", "0 LTYPE|73 0", E::WrongStructure, 16},
      {"dependent without a reference", "0 LTYPE|2 A|70 16", E::WrongStructure, 18},
  };
  expectErrors("LTYPE", ltypes);
  const ErrorCase newLtypes[] = {
      {"element before its dash", "0 LTYPE|2 A|73 1|74 0", E::WrongStructure, 28},
      {"element of no kind", "0 LTYPE|2 A|73 1|49 1|74 3", E::WrongStructure, 30},
      {"text incomplete", "0 LTYPE|2 A|73 1|49 1|74 2|75 0|46 1", E::InconsistentRecord, 34},
      {"shape incomplete", "0 LTYPE|2 A|73 1|49 1|74 4|340 0", E::InconsistentRecord, 32},
  };
  expectErrors("AC1014 LTYPE", newLtypes);
}

TEST(ReadErrors, Entities) {
  const ErrorCase ents[] = {
      {"no layer code", "0 LINE|10 0|20 0|11 1|21 1", E::EntityNotBuilt, 16},
      {"empty layer name", "0 POINT|8 |10 0|20 0", E::WrongStructure, 14},
      {"colour 257", "0 CIRCLE|8 0|62 257|10 0", E::OutOfRange, 10},
      {"colour below 0", "0 CIRCLE|8 0|62 -1|10 0", E::OutOfRange, 10},
      {"coordinate missing", "0 POINT|8 0|10 |20 0", E::EmptyNumber, 10},
      {"coordinate not finite", "0 POINT|8 0|10 1e999|20 0", E::OutOfRange, 10},
      {"first error stays", "0 LINE|8 0|62 999", E::OutOfRange, 10},
      {"polyline without 66", "0 POLYLINE|8 0|0 SEQEND", E::EntityNotBuilt, 10},
      {"width below 0", "0 POLYLINE|8 0|66 1|40 -1", E::OutOfRange, 12},
      {"no such surface", "0 POLYLINE|8 0|66 1|75 7", E::OutOfRange, 14},
      {"vertices not closed", "0 POLYLINE|8 0|66 1", E::WrongStructure, 12},
      {"vertex with no point", "0 POLYLINE|8 0|66 1|0 VERTEX|8 0|0 SEQEND", E::EntityNotBuilt, 16},
      {"attributes not closed", "0 INSERT|8 0|2 A|10 0|20 0|66 1", E::WrongStructure, 18},
      {"no tag", kAttribWithoutTag, E::EntityNotBuilt, 22},
  };
  expectErrors("ENTITIES", ents);
  const ErrorCase newEnts[] = {
      {"too few vertices", "0 LWPOLYLINE|8 0|90 2|10 0|20 0", E::InconsistentRecord, 26},
      {"too many vertices", kTwoVerticesOfOne, E::InconsistentRecord, 30},
      {"bulge before any vertex", "0 LWPOLYLINE|8 0|42 1", E::InconsistentRecord, 20},
      {"width below 0", "0 LWPOLYLINE|8 0|43 -1", E::OutOfRange, 20},
  };
  expectErrors("AC1014 ENTITIES", newEnts);
}

TEST(ReadErrors, Blocks) {
  const ErrorCase blocks[] = {
      {"no name", "0 BLOCK|10 0|0 ENDBLK", E::WrongStructure, 12},
      {"inserts itself", kBlockInItself, E::BlockNotFound, 22},
      {"two that insert each other", kBlocksInEachOther, E::BlockNotFound, 38},
      {"bears the name of a reference", kXRefThenBlock, E::XRefNotFound, 22},
      {"reference of a block's name", kBlockThenXRef, E::XRefNotCreated, 22},
  };
  expectErrors("BLOCKS", blocks);
}

TEST(ReadErrors, MissingCodesAreTold) {
  const Loaded line = loadText(entities("0 LINE|8 0|10 0|21 1"));
  EXPECT_EQ(line.error.GetErrorParam1(), 2);
  EXPECT_EQ(line.error.GetErrorParam2(), 0b10011);  // of 8, 10, 11, 20, 21: bits 0, 1 and 4
  const Loaded polyline = loadText(entities("0 POLYLINE|8 0"));
  EXPECT_EQ(polyline.error.GetErrorParam1(), 5);
}

TEST(ReadErrors, FileThatCannotBeOpenedLeavesNoError) {
  struct Closed : CFileMemory {
    using CFileMemory::CFileMemory;
    bool open() override { return false; }
  } file(u"missing.dxf", IFile::kRead);
  Loaded target;
  target.result = loadDXF(target.drawing(), file, &target.error, {});
  EXPECT_EQ(target.result.status, CFileDXFIResult::NotOpened);
  EXPECT_FALSE(target.error.HasAnError());
}

// What was read before the error is a drawing in good order.
TEST(ReadErrors, KeepsWhatWasReadBefore) {
  const Loaded got = loadText(entities("0 POINT|8 A|10 1|20 2|0 POINT|8 A|10 9"));
  EXPECT_EQ(got.error.GetErrorType(), E::EntityNotBuilt);
  ASSERT_EQ(got.count(1), 1);
  EXPECT_EQ(got.only()->getLayer()->getEntities(), 1);
}

TEST(ReadErrors, ARecordServesFileAfterFile) {
  Loaded target;
  loadInto(target, entities("0 POINT|8 A"));
  ASSERT_TRUE(target.error.HasAnError());
  loadInto(target, entities("0 POINT|8 A|10 1|20 2"));
  EXPECT_FALSE(target.error.HasAnError());
  EXPECT_EQ(target.count(1), 1);
}

TEST(ReadErrors, OutOfMemory) {
  struct NoVertices : CEntFactory {
    using CEntFactory::createEntPnt;
    using CEntFactory::createVertex;
    CVertex* createVertex(IHandleGestor&, const PNT_3D&, double, double, long) override {
      return nullptr;
    }
    CEntPnt* createEntPnt(IHandleGestor&, CLayer*, CLtype*, short, const PNT_3D&, long) override {
      throw std::bad_alloc();
    }
  } factory;
  for (const char* list : {"0 POINT|8 A|10 1|20 2",
                           "0 POLYLINE|8 A|66 1|70 4|0 VERTEX|8 A|10 0|20 0|70 16|"
                           "0 VERTEX|8 A|10 1|20 0|70 16|0 SEQEND"}) {
    SCOPED_TRACE(list);
    Loaded target;
    CFileMemory file(u"test.dxf", IFile::kRead,
                     entities(std::string("0 LINE|8 A|10 0|20 0|11 1|21 1|") + list));
    CFileDXFILoadDataSemantor semantor(target.drawing(), &target.error);
    EXPECT_FALSE(CFileDXFIParser(file, semantor, factory, &target.error).load());
    EXPECT_EQ(target.error.GetErrorType(), E::GeneralError);
    EXPECT_FALSE(file.isOpened());
    EXPECT_EQ(target.data->getEntTable().getEntityTbl().size(), 1u);
  }
}

TEST(ReadErrors, LookUpsOfASemantor) {
  Loaded target;
  CFileDXFILoadDataSemantor semantor(target.drawing(), &target.error);
  EXPECT_EQ(semantor.findBlock(u"A"), nullptr);
  EXPECT_EQ(semantor.getLayer(u"X|A"), nullptr);
  EXPECT_EQ(semantor.getLtype(u"A"), nullptr);
  EXPECT_EQ(semantor.getStyle(u"A"), nullptr);
  EXPECT_FALSE(target.error.HasAnError());
  EXPECT_EQ(semantor.getBlock(u"A"), nullptr);
  EXPECT_EQ(target.error.GetErrorType(), E::BlockNotFound);
}
