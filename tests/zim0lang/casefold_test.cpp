#include "zim0lang/casefold.h"
#include "support/test.h"

using zim::foldCase;

// Pairs of the Unicode character database, one per line: "capital small" in hexadecimal.
// All other units must stay unchanged, symbols between letters and surrogates included.
TEST(FoldCase, FollowsTheTableAndNothingElse) {
  std::ifstream table(VEK0_CASE_FOLDING);
  std::map<unsigned, unsigned> folds;
  for (unsigned unit = 0, to = 0; table >> std::hex >> unit >> to;) folds[unit] = to;
  ASSERT_GT(folds.size(), 1000u);
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const auto at = folds.find(unit);
    EXPECT_EQ(foldCase(static_cast<char16_t>(unit)), at == folds.end() ? unit : at->second)
        << std::hex << unit;
  }
}

// Hash tables of names depend on this.
TEST(FoldCase, EqualTextsHaveEqualHashesAndCompareAsZero) {
  std::mt19937 random(20240611);
  const std::u16string letters = u"aAbBzZ\u00C4\u00E4\u0416\u0436\u01AF\u01B0\u212A_1";
  for (int round = 0; round < 2000; ++round) {
    std::u16string a, b;
    for (auto i = random() % 6; i > 0; --i) a += letters[random() % letters.size()];
    for (const char16_t unit : a) b += random() % 2 ? foldCase(unit) : unit;
    ASSERT_TRUE(zim::equalsIgnoreCase(a, b));
    ASSERT_EQ(zim::hashIgnoreCase(a), zim::hashIgnoreCase(b));
    ASSERT_EQ(zim::compareIgnoreCase(a, b), 0);
  }
}

TEST(CompareIgnoreCase, OrdersByFoldedUnitsThenLength) {
  EXPECT_LT(zim::compareIgnoreCase(u"ABC", u"abd"), 0);
  EXPECT_GT(zim::compareIgnoreCase(u"b", u"ABC"), 0);
  EXPECT_LT(zim::compareIgnoreCase(u"ab", u"ABC"), 0);
  EXPECT_FALSE(zim::equalsIgnoreCase(u"ab", u"abc"));
}
