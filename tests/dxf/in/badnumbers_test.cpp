// What a value costs that is no number, wherever it stands.
#include <gtest/gtest.h>

#include <sstream>

#include "support/dxftext.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/vek0core.h"

using namespace vek0::test;

namespace {

std::vector<std::string> split(const std::string& list) {
  std::vector<std::string> parts;
  std::istringstream in(list);
  for (std::string part; std::getline(in, part, '|');) parts.push_back(part);
  return parts;
}

std::string withJunk(std::vector<std::string> pairs, std::size_t at) {
  pairs[at] = std::to_string(std::stol(pairs[at])) + " abc";
  std::string list;
  for (const std::string& pair : pairs) list += (list.empty() ? "" : "|") + pair;
  return list;
}

const std::string kSquare =
    "92 0|93 4|72 1|10 0|20 0|11 4|21 0|72 1|10 4|20 0|11 4|21 4|72 1|10 4|"
    "20 4|11 0|21 4|72 1|10 0|20 4|11 0|21 0|97 0|";

}  // namespace

// Each number of each record in turn. Those of `spare` cost their pair, all others the entity.
TEST(BadNumbers, CostTheEntityOrThePair) {
  const struct {
    std::string list;
    std::string spare;  // codes, each behind a blank
    bool readStrictly;
  } cases[] = {
      {"0 LINE|8 A|62 1|10 0|20 0|30 0|11 1|21 1|31 0", " 62", true},
      {"0 LINE|8 A|10 0|20 0|11 1|21 1|38 0|39 0|48 1|60 0|67 0|370 -1|210 0|220 0|230 1",
       " 38 39 48 60 67 370", true},
      {"0 CIRCLE|8 A|10 0|20 0|40 1", "", true},
      {"0 ARC|8 A|10 0|20 0|40 1|50 0|51 90", "", true},
      {"0 TEXT|8 A|1 T|10 0|20 0|40 1|41 1|50 0|51 0|72 1|11 0|21 0", " 72", true},
      {"0 INSERT|8 A|2 B|10 0|20 0|41 1|42 1|43 1|50 0|70 2|71 2|44 1|45 1", " 44 45 70 71", true},
      {"0 LWPOLYLINE|8 A|90 2|70 0|43 0|38 0|10 0|20 0|40 0|41 0|42 1|10 1|20 1", " 40 41 43 70 90",
       true},
      {"0 SPLINE|8 A|70 0|71 1|72 4|73 2|74 0|40 0|40 0|40 1|40 1|10 0|20 0|10 1|20 0",
       " 40 70 71 72 73 74", false},
      {"0 LEADER|8 A|71 0|72 0|73 3|76 2|10 0|20 0|10 1|20 0", " 71 72 73 76", false},
      {"0 MTEXT|8 A|1 T|10 0|20 0|40 1|41 9|71 1|50 0|44 1|73 1", " 41 44 71 73", false},
      {"0 ELLIPSE|8 A|10 0|20 0|11 2|21 0|40 0.5|41 0|42 3|210 0|220 0|230 1", "", false},
  };
  for (const auto& t : cases) {
    const std::vector<std::string> pairs = split(t.list);
    for (std::size_t i = 3; i < pairs.size(); ++i) {
      SCOPED_TRACE(withJunk(pairs, i));
      const bool isSpare =
          t.spare.find(" " + std::to_string(std::stol(pairs[i]))) != std::string::npos;
      const std::string text = entitiesOf("AC1015", withJunk(pairs, i));
      const Loaded got = loadText(text, CFileDXFIPolicy::forAnyFile());
      EXPECT_EQ(got.result.status, CFileDXFIResult::Done);
      EXPECT_EQ(got.only() != nullptr, isSpare);
      EXPECT_EQ(got.report.count("number dropped"), isSpare);
      EXPECT_EQ(got.report.count("entity dropped"), !isSpare);
      EXPECT_EQ(loadText(text).error.GetErrorType(),
                t.readStrictly ? CFileDXFIError::OutOfRange : CFileDXFIError::NoError);
    }
  }
}

// Of entries, whether or not anything reads them. Strict reading passes over codes that mean
// nothing to it.
TEST(BadNumbers, CostTablesAndBlocksThePair) {
  const struct {
    std::string name;
    const char* list;
    bool readStrictly;
  } cases[] = {
      {"LTYPE", "0 LTYPE|2 L|72 65|73 1|40 abc|49 1", true},
      {"LAYER", "0 LAYER|2 A|6 CONTINUOUS|70 abc", true},
      {"LAYER", "0 LAYER|2 A|6 CONTINUOUS|290 abc", true},
      {"LAYER", "0 LAYER|2 A|6 CONTINUOUS|370 abc", true},
      {"STYLE", "0 STYLE|2 S|70 1|71 abc", false},
      {"DIMSTYLE", "0 DIMSTYLE|2 STANDARD|140 abc", false},
      {"BLOCK_RECORD", "0 BLOCK_RECORD|2 B|70 abc", false},
      {"BLOCKS", "0 BLOCK|2 B|70 abc|0 ENDBLK", true},
      {"BLOCKS", "0 BLOCK|2 B|70 0|71 abc|0 ENDBLK", false},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.list);
    const std::string pairs = pairsOf(t.list);
    const std::string text =
        (t.name == "BLOCKS" ? section(t.name, pairs) : section("TABLES", table(t.name, pairs))) +
        dxf();
    const Loaded got = loadText(text, CFileDXFIPolicy::forAnyFile());
    EXPECT_EQ(got.report.count("number dropped"), 1);
    EXPECT_EQ(got.report.entries().size(), 1u);
    const CFileDXFIError error = loadText(text).error;
    EXPECT_EQ(error.GetErrorType(),
              t.readStrictly ? CFileDXFIError::OutOfRange : CFileDXFIError::NoError);
    EXPECT_EQ(error.GetErrorLine() > 0, t.readStrictly);
  }
}

// Of a hatch with two loops, a pattern and a seed.
TEST(BadNumbers, CostAHatchALoopAtMost) {
  const std::string head = "0 HATCH|8 A|2 P|30 0|70 0|91 2|" + kSquare;
  const std::string list = head + kSquare +
                           "75 0|76 1|52 0|41 1|77 0|78 1|53 0|43 0|44 0|45 0|46 1|"
                           "79 2|49 1|49 -1|98 1|10 1|20 1";
  const std::size_t loops = split(head).size() - split(kSquare).size();
  const std::size_t behind = loops + 2 * split(kSquare).size();
  const std::vector<std::string> pairs = split(list);
  for (std::size_t i = 3; i < pairs.size(); ++i) {
    SCOPED_TRACE(std::to_string(i) + ": " + pairs[i]);
    const std::string text = entitiesOf("AC1015", withJunk(pairs, i));
    const Loaded got = loadText(text, CFileDXFIPolicy::forAnyFile());
    EXPECT_EQ(loadText(text).error.GetErrorType(), CFileDXFIError::OutOfRange);
    const long code = std::stol(pairs[i]);
    const bool isLoop = i >= loops && i < behind;
    const bool isElevation = code == 30;
    EXPECT_EQ(got.report.count("entity dropped"), isElevation);
    EXPECT_EQ(got.report.count("loop dropped"), isLoop);
    EXPECT_EQ(got.report.count("number dropped"), !isLoop && !isElevation);
    EXPECT_EQ(got.count(CEntHatch::kType), !isElevation);
  }
}
