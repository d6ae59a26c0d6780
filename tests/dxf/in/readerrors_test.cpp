#include "support/test.h"

using E = CFileDXFIError;

namespace {

// Puts the pairs under test in their place: "" means a whole file without its EOF; a name is that
// of a section or of a table, preceded by a version if one is needed.
std::string fileOf(std::string_view place, std::string_view list) {
  if (place.empty()) return pairsOf(list);
  if (place.substr(0, 2) == "AC")
    return version(place.substr(0, 6)) + fileOf(place.substr(7), list);
  if (place == "LAYER" || place == "STYLE" || place == "LTYPE")
    return section("TABLES", table(place, pairsOf(list))) + dxf();
  return section(place, pairsOf(list)) + dxf();
}

std::string strictEntities(std::string_view list) { return fileOf("ENTITIES", list); }

}  // namespace

TEST(ReadErrors, TheFirstOneStopsReading) {
  const Definitions kinds{
      {"BlockNotFound", E::BlockNotFound},   {"EmptyGroupCode", E::EmptyGroupCode},
      {"EmptyNumber", E::EmptyNumber},       {"EntityNotBuilt", E::EntityNotBuilt},
      {"FontNotFound", E::FontNotFound},     {"InconsistentRecord", E::InconsistentRecord},
      {"LtypeNotFound", E::LtypeNotFound},   {"NewerVersion", E::NewerVersion},
      {"OutOfRange", E::OutOfRange},         {"WrongStructure", E::WrongStructure},
      {"XRefNotCreated", E::XRefNotCreated}, {"XRefNotFound", E::XRefNotFound}};
  for (const Row& t : rowsWith(kinds)) {
    const Loaded got = loadText(fileOf(t.text("place"), t.text("list")));
    EXPECT_EQ(got.error.GetErrorType(), t.whole<E::TDXFErrors>("kind"));
    EXPECT_EQ(got.error.GetErrorLine(), t.whole<long>("line"));
    EXPECT_EQ(got.error.GetFileName(), zim::WString(u"test.dxf"));
    EXPECT_EQ(got.result.status, CFileDXFIResult::Failed);
  }
}

TEST(ReadErrors, MissingCodesAreTold) {
  const Loaded line = loadText(strictEntities("0 LINE|8 0|10 0|21 1"));
  EXPECT_EQ(line.error.GetErrorParam1(), 2);
  EXPECT_EQ(line.error.GetErrorParam2(), 0b10011);  // of 8, 10, 11, 20, 21: bits 0, 1 and 4
  const Loaded polyline = loadText(strictEntities("0 POLYLINE|8 0"));
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

// Everything read before the error forms a consistent drawing.
TEST(ReadErrors, KeepsWhatWasReadBefore) {
  const Loaded got = loadText(strictEntities("0 POINT|8 A|10 1|20 2|0 POINT|8 A|10 9"));
  EXPECT_EQ(got.error.GetErrorType(), E::EntityNotBuilt);
  ASSERT_EQ(got.count(1), 1);
  EXPECT_EQ(got.only()->getLayer()->getEntities(), 1);
}

TEST(ReadErrors, ARecordServesFileAfterFile) {
  Loaded target;
  loadInto(target, strictEntities("0 POINT|8 A"));
  ASSERT_TRUE(target.error.HasAnError());
  loadInto(target, strictEntities("0 POINT|8 A|10 1|20 2"));
  EXPECT_FALSE(target.error.HasAnError());
  EXPECT_EQ(target.count(1), 1);
}

TEST(ReadErrors, OutOfMemory) {
  struct NoVertices : CEntFactory {
    using CEntFactory::createEntPnt;
    using CEntFactory::createVertex;
    CVertex* createVertex(IHandleGestor&, const PNT_3D&, double, double, vek0::Handle) override {
      return nullptr;
    }
    CEntPnt* createEntPnt(IHandleGestor&, CLayer*, CLtype*, short, const PNT_3D&,
                          vek0::Handle) override {
      throw std::bad_alloc();
    }
  } factory;
  for (const char* list :
       named<const char*>({"0 POINT|8 A|10 1|20 2",
                           "0 POLYLINE|8 A|66 1|70 4|0 VERTEX|8 A|10 0|20 0|70 16|"
                           "0 VERTEX|8 A|10 1|20 0|70 16|0 SEQEND"})) {
    Loaded target;
    CFileMemory file(u"test.dxf", IFile::kRead,
                     strictEntities(std::string("0 LINE|8 A|10 0|20 0|11 1|21 1|") + list));
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
