#include "support/test.h"

TEST(SmartString, ComparesWithoutCaseUnderBothNames) {
  const struct {
    const char* name;
    const zim::Char* a;
    const zim::Char* b;
    bool equal;
  } cases[] = {
      {"case differs", u"LINE", u"line", true},
      {"beyond ascii", u"STRASSE\u00C4", u"strasse\u00E4", true},
      {"blank in front", u" LINE", u"LINE", false},
      {"proper prefix", u"LINE", u"LINES", false},
      {"both empty", u"", u"", true},
      {"null is empty", nullptr, u"", true},
      {"null and a text", nullptr, u"A", false},
  };
  for (const auto& t : named(cases)) {
    const SmartString a(t.a), b(t.b);
    EXPECT_EQ(a.equal_cs(b), t.equal);
    EXPECT_EQ(b.equal_ci(a), t.equal);
    EXPECT_EQ(a.equal_cs(t.b), t.equal);
    EXPECT_EQ(a.equal_ci(t.b), t.equal);
  }
}

TEST(SmartString, SeesTheTextThroughAPointerOnly) {
  zim::Char buffer[] = u"ARC";
  SmartString view;
  EXPECT_EQ(view.c_str(), nullptr);
  EXPECT_EQ(view.size(), 0u);
  view = buffer;
  const SmartString copy(view);
  buffer[1] = 0;
  EXPECT_EQ(copy.c_str(), buffer);
  EXPECT_EQ(copy.size(), 1u);
  EXPECT_EQ(copy[0], u'A');
}
