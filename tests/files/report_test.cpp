#include "support/test.h"

TEST(Report, CountsEqualNotesAndKeepsTheFirstLine) {
  CFileReport report;
  report.add(ReportCode::LayerUndeclared, 10, u"A");
  report.add(ReportCode::LineCut, 11);
  report.add(ReportCode::LayerUndeclared, 12, u"A");
  report.add(ReportCode::LayerUndeclared, 13, u"a");
  ASSERT_EQ(report.entries().size(), 3u);
  EXPECT_EQ(report.entries()[0].firstLine, 10);
  EXPECT_EQ(report.entries()[0].count, 2);
  EXPECT_EQ(report.entries()[1].sample, zim::WString());
  EXPECT_EQ(report.entries()[2].sample, zim::WString(u"a"));
  EXPECT_EQ(report.count(ReportCode::LayerUndeclared), 3);
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
    report.add(i % 2 ? ReportCode::LineCut : ReportCode::TextCut, i, sample);
  }
  EXPECT_EQ(report.entries().size(), CFileReport::kMaxEntries + 2);
  EXPECT_EQ(report.count(ReportCode::LineCut), kNotes / 2);
  EXPECT_EQ(report.count(ReportCode::TextCut), kNotes / 2);
  EXPECT_TRUE(report.entries().back().sample.empty());
}

TEST(Report, UsersFindEveryCodeInTheDocumentation) {
  std::map<std::string, std::string> documented;  // severities by text
  std::ifstream page(vek0::test::samplePath("../docs/report-codes.md"));
  for (std::string line; std::getline(page, line);) {
    std::istringstream cells(line);
    std::string text, severity;
    if (cells.get() == '|' && std::getline(cells, text, '|') && std::getline(cells, severity, '|'))
      documented[text] = severity;
  }
  for (std::size_t i = 0; i < kReportCodes; ++i) {
    const auto code = static_cast<ReportCode>(i);
    EXPECT_EQ(documented[std::string(" ") + textOf(code) + " "],
              std::string(" ") + nameOf(severityOf(code)) + " ")
        << textOf(code);
    EXPECT_EQ(findReportCode(textOf(code)), code);
  }
  EXPECT_EQ(documented.size(), kReportCodes + 2) << "besides the head and the rule of the tables";
}
