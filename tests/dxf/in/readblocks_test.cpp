#include "support/test.h"

namespace {

std::string block(std::string_view name, std::string_view content, std::string_view more = "") {
  std::string list = "0 BLOCK|2 " + std::string(name);
  if (!more.empty()) list += "|" + std::string(more);
  if (!content.empty()) list += "|" + std::string(content);
  return pairsOf(list + "|0 ENDBLK|5 9");
}
std::string insertOf(std::string_view name) {
  return "0 INSERT|8 0|10 0|20 0|2 " + std::string(name);
}
std::string blocks(const std::string& body) { return section("BLOCKS", body); }
std::string entities(const std::string& list) { return section("ENTITIES", pairsOf(list)); }

const std::string kPoint = "0 POINT|8 0|10 5|20 7";
const std::string kTwoPoints = kPoint + "|" + kPoint;

const CBlock* find(const Loaded& got, const zim::WString& name) {
  return got.data->getBlockTable().get(name);
}

}  // namespace

TEST(ReadBlocks, EntitiesAreHeldRelativeToTheBasePoint) {
  const Loaded got = loadText(blocks(block("A", kPoint, "10 1|20 2|30 3|70 2|3 A")) + dxf());
  const CBlock* a = find(got, u"a");
  ASSERT_NE(a, nullptr);
  ASSERT_EQ(a->size(), 1u);
  EXPECT_DOUBLE_EQ(a->getPnt().y, 2);
  EXPECT_DOUBLE_EQ((*a)[0]->getBdry().min.x, 4);
  EXPECT_DOUBLE_EQ((*a)[0]->getBdry().min.z, -3);
}

TEST(ReadBlocks, WhichBlocksAreKept) {
  for (const Row& t : rows()) {
    const Loaded got = loadText(
        blocks(block(t.text("name"), t.flag("empty") ? "" : kPoint, t.text("header"))) + dxf());
    EXPECT_FALSE(got.error.HasAnError());
    EXPECT_EQ(find(got, t.wide("name")) != nullptr, t.flag("kept"));
  }
}

TEST(ReadBlocks, InsertBeforeItsBlock) {
  const std::string text = entities(insertOf("A")) + blocks(block("A", kPoint)) + dxf();
  for (const bool importing : {false, true}) {
    Loaded got;
    importing ? importInto(got, text) : loadInto(got, text);
    ASSERT_FALSE(got.error.HasAnError());
    ASSERT_NE(got.only(), nullptr);
    EXPECT_EQ(got.only()->getEntInsert()->getBlock(), find(got, u"A"));
    EXPECT_EQ(find(got, u"A")->size(), 1u);
    EXPECT_DOUBLE_EQ(got.data->getEntTable().getBdry().max.y, 7);
  }
}

TEST(ReadBlocks, NestedBlocksInAnyOrderHaveRightExtents) {
  const Loaded got =
      loadText(blocks(block("C", insertOf("B")) + block("B", insertOf("A")) + block("A", kPoint)) +
               entities(insertOf("C")) + dxf());
  ASSERT_FALSE(got.error.HasAnError());
  EXPECT_DOUBLE_EQ(find(got, u"C")->getBdry().max.x, 5);
  EXPECT_DOUBLE_EQ(got.data->getEntTable().getBdry().max.x, 5);
}

TEST(ReadBlocks, DefinedTwice) {
  const std::string text = blocks(block("A", kPoint) + block("a", kTwoPoints)) + dxf();
  EXPECT_EQ(find(loadText(text), u"A")->size(), 2u);
  Loaded imported;
  importInto(imported, text);
  EXPECT_EQ(find(imported, u"A")->size(), 1u);
}

TEST(ReadBlocks, UndefinedBlockIsEmpty) {
  const Loaded got = loadText(entities(insertOf("A")) + dxf());
  EXPECT_FALSE(got.error.HasAnError());
  EXPECT_EQ(find(got, u"A")->size(), 0u);
  EXPECT_FALSE(got.data->getEntTable().getBdry().validRegion());
  EXPECT_EQ(got.report.count("block undefined"), 1);
}

// A layer named "X|L" implies a reference X that nothing declares. The file defines a block X,
// which keeps its content.
TEST(ReadBlocks, ABlockComesBeforeAReferenceThatOnlyALayerNames) {
  for (std::string text :
       {blocks(block("X", "0 LINE|8 0|10 0|20 0|11 1|21 1")) +
            entities("0 POINT|8 X~L|10 0|20 0|" + insertOf("X")),
        blocks(block("X", "0 LINE|8 X~L|10 0|20 0|11 1|21 1")) + entities(insertOf("X"))}) {
    std::replace(text.begin(), text.end(), '~', '|');  // '|' separates pairs in short texts
    const Loaded got = loadText(text + dxf());
    ASSERT_FALSE(got.error.HasAnError());
    const CBlock* own = find(got, u"X");
    ASSERT_NE(own, nullptr);
    EXPECT_EQ(own->size(), 1u);
    EXPECT_EQ(got.data->getEntTable().getEntityTbl().back()->getEntInsert()->getBlock(), own);
    EXPECT_NE(getLayer(*got.data, u"X|L"), nullptr);
  }
}

TEST(ReadBlocks, InsertBeforeItsExternalReference) {
  const Loaded got =
      loadText(entities(insertOf("X")) +
               blocks(block("A", insertOf("X")) + block("X", "", "70 4|1 x.dwg")) + dxf());
  ASSERT_FALSE(got.error.HasAnError());
  const CBlockXRef* xref = got.data->getBlockXRefTable().get(u"X");
  ASSERT_NE(xref, nullptr);
  EXPECT_EQ(got.only()->getEntInsert()->getBlock(), xref);
  EXPECT_EQ((*find(got, u"A"))[0]->getEntInsert()->getBlock(), xref);
  EXPECT_EQ(find(got, u"X"), nullptr);
}

// -- loading compared with importing ---------------------------------------------

TEST(LoadAndImport, LayerZeroStyleVariablesAndHandles) {
  const std::string text =
      section("HEADER", pairsOf("9 $LTSCALE|40 5|9 $CELAYER|8 A")) +
      section("TABLES", table("LAYER", pairsOf("0 LAYER|2 0|62 -1|70 4|0 LAYER|2 A|62 2"))) +
      entities("0 POINT|5 2F|8 A|10 0|20 0") + dxf();
  for (const Row& t : rows()) {
    Loaded got;
    t.flag("importing") ? importInto(got, text) : loadInto(got, text);
    ASSERT_FALSE(got.error.HasAnError());
    EXPECT_EQ(got.data->getLayer0().getColor(), t.whole<short>("colour0"));
    EXPECT_EQ(got.data->getLayer0().getFlags(), t.whole<long>("flags0"));
    EXPECT_DOUBLE_EQ(getLtypeScale(*got.data), t.real("scale"));
    EXPECT_EQ(getCurLayer(*got.data), getLayer(*got.data, t.wide("current")));
    EXPECT_EQ(got.only()->GetHandle(), t.whole<long>("handle"));
    EXPECT_EQ(getLayer(*got.data, u"A")->getColor(), 2);
  }
}

TEST(LoadAndImport, ImportKeepsWhatTheDrawingDefines) {
  Loaded got = loadText(section("TABLES", table("LAYER", pairsOf("0 LAYER|2 L|62 3"))) +
                        blocks(block("A", kPoint)) + dxf());
  const CBlock* a = find(got, u"A");
  importInto(got, section("TABLES", table("LAYER", pairsOf("0 LAYER|2 l|62 5"))) +
                      blocks(block("A", kTwoPoints + "|" + insertOf("GONE"))) +
                      entities(insertOf("a")) + dxf());
  ASSERT_FALSE(got.error.HasAnError());
  EXPECT_EQ(find(got, u"A"), a);
  EXPECT_EQ(a->size(), 1u);
  EXPECT_EQ(got.only()->getEntInsert()->getBlock(), a);
  EXPECT_EQ(getLayer(*got.data, u"L")->getColor(), 3);
  EXPECT_EQ(got.report.count("block kept"), 1);
  // Only the discarded definition inserted it.
  EXPECT_EQ(find(got, u"GONE"), nullptr);
}

TEST(LoadAndImport, AnonymousBlocksOfTheFileAreItsOwn) {
  const std::string one = blocks(block("*D1", kPoint)) + entities(insertOf("*D1")) + dxf();
  const std::string two = entities(insertOf("*d1")) + blocks(block("*D1", kTwoPoints)) + dxf();
  Loaded got = loadText(one);
  importInto(got, two);
  ASSERT_FALSE(got.error.HasAnError());
  EXPECT_EQ(find(got, u"*D1")->size(), 1u);
  ASSERT_NE(find(got, u"*D2"), nullptr);
  EXPECT_EQ(find(got, u"*D2")->size(), 2u);
  EXPECT_EQ(got.data->getEntTable().getEntityTbl().back()->getEntInsert()->getBlock(),
            find(got, u"*D2"));
  EXPECT_EQ(got.report.count("block renamed"), 1);
}

TEST(LoadAndImport, FailedDefinitionLeavesTheBlockAsItWas) {
  const Loaded got =
      loadText(blocks(block("A", kPoint) + block("A", kPoint + "|" + insertOf("A"))) + dxf());
  EXPECT_EQ(got.error.GetErrorType(), CFileDXFIError::BlockNotFound);
  EXPECT_EQ(find(got, u"A")->size(), 1u);
}
