#include "vek0core/files/report.h"

#include <gtest/gtest.h>

#include <string>

TEST(Report, CountsEqualNotesAndKeepsTheFirstLine) {
  CFileReport report;
  EXPECT_TRUE(report.empty());
  const std::string sameText = "layer undeclared";  // at another address than the literal
  report.add("layer undeclared", 10, u"A");
  report.add("line cut", 11);
  report.add(sameText.c_str(), 12, u"A");
  report.add("layer undeclared", 13, u"a");
  ASSERT_EQ(report.entries().size(), 3u);
  EXPECT_EQ(report.entries()[0].firstLine, 10);
  EXPECT_EQ(report.entries()[0].count, 2);
  EXPECT_EQ(report.entries()[1].sample, zim::WString());
  EXPECT_EQ(report.entries()[2].sample, zim::WString(u"a"));
  EXPECT_EQ(report.count("layer undeclared"), 3);
  EXPECT_EQ(report.count("anything else"), 0);
}

// A file with a million unknown names must not fill the memory with a report.
TEST(Report, IsBoundedAndStillCounts) {
  CFileReport report;
  constexpr long kNotes = 5000;
  for (long i = 0; i < kNotes; ++i) {
    std::u16string sample;
    for (const char digit : std::to_string(i)) sample += static_cast<char16_t>(digit);
    report.add(i % 2 ? "odd" : "even", i, sample);
  }
  EXPECT_EQ(report.entries().size(), CFileReport::kMaxEntries + 2);
  EXPECT_EQ(report.count("odd"), kNotes / 2);
  EXPECT_EQ(report.count("even"), kNotes / 2);
  EXPECT_TRUE(report.entries().back().sample.empty());
}
