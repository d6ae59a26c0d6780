// A value that is not a number costs at most its entity, or its pair if the value is optional.

#include "support/test.h"

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

// Breaks each number of each record in turn. The codes in `spare` lose only their pair, all others
// the entity.
TEST(BadNumbers, CostTheEntityOrThePair) {
  for (const Row& t : rows()) {
    const std::vector<std::string> pairs = split(t.text("list"));
    for (std::size_t i = 3; i < pairs.size(); ++i) {
      SCOPED_TRACE(withJunk(pairs, i));
      const bool isSpare =
          t.text("spare").find(" " + std::to_string(std::stol(pairs[i]))) != std::string::npos;
      const std::string text = entitiesOf("AC1015", withJunk(pairs, i));
      const Loaded got = loadText(text, CFileDXFIPolicy::forAnyFile());
      EXPECT_EQ(got.result.status, CFileDXFIResult::Done);
      EXPECT_EQ(got.only() != nullptr, isSpare);
      EXPECT_EQ(got.report.count("number dropped"), isSpare);
      EXPECT_EQ(got.report.count("entity dropped"), !isSpare);
      EXPECT_EQ(loadText(text).error.GetErrorType(),
                t.flag("readStrictly") ? CFileDXFIError::OutOfRange : CFileDXFIError::NoError);
    }
  }
}

// Breaks the numbers of table entries and blocks, whether or not anything reads them. Strict
// reading ignores codes that it does not use.
TEST(BadNumbers, CostTablesAndBlocksThePair) {
  for (const Row& t : rows()) {
    SCOPED_TRACE(t.text("list"));
    const std::string pairs = pairsOf(t.text("list"));
    const std::string text =
        (t.text("name") == "BLOCKS" ? section(t.text("name"), pairs)
                                    : section("TABLES", table(t.text("name"), pairs))) +
        dxf();
    const Loaded got = loadText(text, CFileDXFIPolicy::forAnyFile());
    EXPECT_EQ(got.report.count("number dropped"), 1);
    EXPECT_EQ(got.report.entries().size(), 1u);
    const CFileDXFIError error = loadText(text).error;
    EXPECT_EQ(error.GetErrorType(),
              t.flag("readStrictly") ? CFileDXFIError::OutOfRange : CFileDXFIError::NoError);
    EXPECT_EQ(error.GetErrorLine() > 0, t.flag("readStrictly"));
  }
}

// Breaks the numbers of a hatch with two loops, a pattern and a seed.
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
