#include "vek0core/dxf/in/parse/importplan.h"

#include "support/test.h"

namespace {

constexpr CFileDXFIPolicy kAny = {.keepFontNames = true, .tolerant = true};

std::string ltypeOf(const std::string& name, const std::string& dash) {
  return "0 LTYPE|2 " + name + "|73 2|49 " + dash + "|74 0|49 -" + dash + "|74 0|";
}

// Linetype T shows a text in style N, layer E has linetype D, block OUT inserts block B.
std::string drawing(const std::string& dash, const std::string& font, const std::string& color,
                    const std::string& content, const std::string& model) {
  const std::string text = "0 LTYPE|2 T|73 1|49 1|74 2|75 0|340 1F|46 1|50 0|44 0|45 0|9 GAS|";
  return version("AC1015") +
         section("TABLES",
                 table("LTYPE", pairsOf(ltypeOf("D", dash) + text + ltypeOf("SAME", "3"))) +
                     table("LAYER", pairsOf("0 LAYER|2 W|62 " + color + "|0 LAYER|2 E|6 D")) +
                     table("STYLE", pairsOf("0 STYLE|5 1F|2 N|3 " + font))) +
         section("BLOCKS",
                 pairsOf("0 BLOCK|2 B|10 1|20 1" + content +
                         "|0 ENDBLK|0 BLOCK|2 OUT|0 INSERT|8 0|2 "
                         "B|10 0|20 0|0 ENDBLK|0 BLOCK|2 SAME|0 POINT|8 0|10 1|20 2|0 ENDBLK")) +
         section("ENTITIES", pairsOf(model)) + dxf();
}

std::string nameOf(const CNamedItem* item) { return item ? item->getName().toUtf8() : "-"; }

std::string shown(const CEnt& ent) {
  std::string text = nameOf(ent.getLayer()) + "/" + nameOf(ent.getLtype());
  if (ent.getStyle()) text += "/" + nameOf(ent.getStyle());
  const CEntInsertBase* insert = ent.getEntInsert();
  return insert ? text + "/" + nameOf(insert->getBlock()) : text;
}

template <class Walk, class Describe>
std::string listed(Walk walk, const Describe& describe) {
  std::string text;
  for (; *walk; ++walk) text += (text.empty() ? "" : " ") + nameOf(*walk) + "=" + describe(**walk);
  return text;
}

std::string blocksOf(const CData& data) {
  std::string text;
  for (int i = 0; i < static_cast<int>(data.getBlockTable().size()); ++i) {
    const CBlock& block = *data.getBlockTable()[i];
    text += (text.empty() ? "" : " ") + nameOf(&block) + "=" + shown(*block[0]);
  }
  return text;
}

std::string textStyleOf(const CLtype& ltype) {
  const TEXT_3D* text =
      ltype.getNoDashes() > 0 ? ltype[ltype.getNoDashes() - 1]->GetText() : nullptr;
  if (text) return nameOf(text->getStyle());
  return ltype.getNoDashes() > 0 ? std::to_string(std::lround(ltype[0]->GetValue())) : "";
}

const std::string kBase = drawing("1", "a", "1", "|0 POINT|8 W|10 0|20 0", "0 POINT|8 W|10 0|20 0");
const std::string kFile = drawing(
    "2", "b", "5", "|0 POINT|8 E|10 0|20 0",
    "0 LINE|8 W|6 T|10 0|20 0|11 1|21 1|0 INSERT|8 E|2 OUT|10 0|20 0|0 INSERT|8 0|2 SAME|10 "
    "0|20 0|0 TEXT|8 W|7 N|1 x|40 1|10 0|20 0");

}  // namespace

TEST(ImportPlan, EverythingImportedFollowsThePolicy) {
  for (const Row& t : rows()) {
    Loaded got = loadText(kBase, kAny);
    const Loaded trial = loadText(kFile, kAny);
    IMPORT_POLICY policy;
    policy.onConflict = static_cast<ImportConflict>(t.whole("policy"));
    policy.prefix = t.wide("prefix");
    const CImportPlan plan(got.drawing(), trial.drawing(), policy, &trial.report);
    CFileMemory file(u"test.dxf", IFile::kRead, kFile);
    importDXF(got.drawing(), file, &got.error, {&got.report, kAny}, plan);
    ASSERT_FALSE(got.error.HasAnError());
    const CData& data = got.drawing();
    const auto fontOf = [](const CStyle& style) {
      return style.getFont() ? style.getFont()->getName().toUtf8() : "-";
    };
    const auto lookOf = [](const CLayer& layer) {
      return std::to_string(layer.getColor()) + "/" + nameOf(layer.getLtype());
    };
    EXPECT_EQ(listed(CData::CStyleIterator(data, false), fontOf), t.text("styles"));
    EXPECT_EQ(listed(CData::CLtypeIterator(data, false, false), textStyleOf), t.text("ltypes"));
    EXPECT_EQ(listed(CData::CLayerIterator(data, false), lookOf), t.text("layers"));
    EXPECT_EQ(blocksOf(data), t.text("blocks"));
    std::string model;
    for (const CEnt* ent : data.getEntTable().getEntityTbl())
      model += (model.empty() ? "" : " ") + shown(*ent);
    EXPECT_EQ(model, t.text("model"));
    // The result has no conflict with itself, nor with the file if that replaced everything.
    const bool replaced = policy.onConflict == ImportConflict::Theirs && policy.prefix.empty();
    const Loaded& other = replaced ? trial : got;
    EXPECT_FALSE(CImportPlan(data, other.drawing(), {}).hasConflicts());
  }
}

// Each of the blocks inserts the other in one of the drawings.
TEST(ImportPlan, BlocksThatTakeTurnsReplaceEachOther) {
  const auto nested = [](const std::string& outer, const std::string& inner) {
    return section("BLOCKS",
                   pairsOf("0 BLOCK|2 " + inner + "|0 POINT|8 0|10 0|20 0|0 ENDBLK|0 BLOCK|2 " +
                           outer + "|0 INSERT|8 0|2 " + inner + "|10 0|20 0|0 ENDBLK")) +
           dxf();
  };
  Loaded got = loadText(nested("A", "B"), kAny);
  const Loaded trial = loadText(nested("B", "A"), kAny);
  const CImportPlan plan(got.drawing(), trial.drawing(), {ImportConflict::Theirs, {}});
  CFileMemory file(u"test.dxf", IFile::kRead, nested("B", "A"));
  importDXF(got.drawing(), file, &got.error, {&got.report, kAny}, plan);
  EXPECT_EQ(blocksOf(got.drawing()), "B=0/BYLAYER/A A=0/BYLAYER");
  EXPECT_TRUE(got.report.empty());
}
