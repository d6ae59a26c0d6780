// Sort tables state the order in which entities are drawn.
#include <algorithm>
#include <cstdio>
#include <map>
#include <random>

#include "support/test.h"

using namespace vek0::test;

namespace {

std::string hex(long handle) {
  char digits[20];
  std::snprintf(digits, sizeof digits, "%lX", handle);
  return digits;
}

// Lines whose x is their number; a polyface yields two faces.
struct Content {
  std::string records, table;
  std::vector<double> sorted;
};

Content randomContent(std::mt19937& random) {
  const auto below = [&](unsigned n) { return static_cast<long>(random() % n); };
  Content content;
  std::vector<std::pair<long, double>> order;
  std::map<long, long> entries;
  for (long i = below(20); i-- > 0;) {
    const long ent = below(40), place = below(40);
    content.table += "|331 " + hex(ent) + "|5 " + hex(place);
    entries[ent] = place;
  }
  long last = 0;
  for (int i = 0; i < 30; ++i) {
    const long handle = below(40);
    const std::string number = std::to_string(i);
    const std::string own = "|8 A|70 64|" + (handle > 0 ? "5 " + hex(handle) + "|" : std::string());
    const std::string vertex = "0 VERTEX|8 A|70 192|20 0|10 " + number + "|";
    const std::string face = "0 VERTEX|8 A|70 128|10 0|20 0|71 1|72 2|73 3|";
    const bool isFaces = handle % 7 == 1;
    content.records += isFaces ? "0 POLYLINE|66 1|10 0|20 0" + own + vertex + vertex + vertex +
                                     face + face + "0 SEQEND|"
                               : "0 LINE" + own + "10 " + number + "|20 0|11 0|21 1|";
    if (handle > 0) last = entries.contains(handle) ? entries[handle] : handle;
    if (handle > 0 && last == 0) last = 1000;  // on top
    for (int k = 0; k < 1 + isFaces; ++k) order.emplace_back(last, i);
  }
  if (!content.table.empty())
    std::stable_sort(order.begin(), order.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
  for (const auto& [key, number] : order) content.sorted.push_back(number);
  return content;
}

double numberOf(const CEnt& ent) {
  if (ent.getType() == CEntLine::kType) return static_cast<const CEntLine&>(ent).getLine().p1.x;
  return const_cast<CEnt3DFace&>(static_cast<const CEnt3DFace&>(ent)).getVertex(0).x;
}

std::vector<double> numbersOf(const CBlock& block) {
  std::vector<double> numbers;
  for (unsigned i = 0; i < block.size(); ++i) numbers.push_back(numberOf(*block[i]));
  return numbers;
}

std::vector<double> numbersOf(const CEntTable& table) {
  std::vector<double> numbers;
  for (const CEnt* ent : table.getEntityTbl()) numbers.push_back(numberOf(*ent));
  return numbers;
}

const std::string kRecords =
    section("TABLES",
            table("BLOCK_RECORD", pairsOf("0 BLOCK_RECORD|5 A1|2 *Model_Space|0 BLOCK_RECORD|5 A2|"
                                          "2 B|0 BLOCK_RECORD|5 A3|2 *Paper_Space0")));

std::string tableOf(const std::string& owner, const std::string& entries) {
  return "0 SORTENTSTABLE|5 FF|330 FE|100 AcDbSortentsTable|330 " + owner + entries + "|";
}

}  // namespace

TEST(DrawOrder, EntitiesAreInTheOrderOfTheirSortHandles) {
  for (const int round : rounds(40)) {
    std::mt19937 random(static_cast<unsigned>(round));
    const Content model = randomContent(random), block = randomContent(random),
                  sheet = randomContent(random);
    const std::string text =
        kRecords +
        section("BLOCKS", pairsOf("0 BLOCK|2 B|10 3|20 0|" + block.records +
                                  "0 ENDBLK|0 BLOCK|2 "
                                  "*Paper_Space0|330 A3|10 0|20 0|" +
                                  sheet.records + "0 ENDBLK")) +
        section("ENTITIES", pairsOf(model.records)) +
        section("OBJECTS",
                pairsOf(tableOf("A1", model.table) + tableOf("A2", block.table) +
                        tableOf("A3", sheet.table) + "0 LAYOUT|100 AcDbLayout|1 S|330 A3")) +
        dxf();
    Loaded got = loadAny(text);
    std::vector<double> moved = block.sorted;
    for (double& number : moved) number -= 3;
    EXPECT_EQ(numbersOf(got.data->getEntTable()), model.sorted);
    EXPECT_EQ(numbersOf(*got.data->getBlockTable().get(u"B")), moved);
    ASSERT_EQ(got.data->getLayouts().size(), 1);
    EXPECT_EQ(numbersOf(got.data->getLayouts()[0].getBlock()), sheet.sorted);
    // Imported entities have other handles, and come after those of the drawing.
    got.data->getBlockTable().get(u"B")->setName(u"C");
    importInto(got, text, CFileDXFIPolicy::forAnyFile());
    std::vector<double> twice = model.sorted;
    twice.insert(twice.end(), model.sorted.begin(), model.sorted.end());
    EXPECT_EQ(numbersOf(got.data->getEntTable()), twice);
    EXPECT_EQ(numbersOf(*got.data->getBlockTable().get(u"B")), moved);
    EXPECT_EQ(numbersOf(*got.data->getBlockTable().get(u"C")), moved);
  }
}

TEST(DrawOrder, WhatCannotBeAppliedIsReported) {
  const std::string line = "0 LINE|8 A|10 0|20 0|11 1|21 1|5 ";
  for (const Row& t : rows()) {
    const Loaded got = loadAny(kRecords + section("ENTITIES", pairsOf(line + "1|" + line + "2")) +
                               section("OBJECTS", pairsOf(t.text("tables"))) + dxf());
    EXPECT_EQ(got.report.count("draw order dropped"), t.whole<long>("dropped"));
    EXPECT_EQ(got.data->getEntTable().getEntityTbl().front()->GetHandle(), t.whole<long>("first"));
  }
}
