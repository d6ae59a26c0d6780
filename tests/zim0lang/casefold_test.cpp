#include "zim0lang/casefold.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "zim0lang/wstring.h"

using zim::foldCase;

TEST(FoldCase, PairsOfLetters) {
  const struct {
    const char* name;
    char16_t capital, small;
  } cases[] = {
      {"ascii",            u'A',      u'a'     },
      {"ascii end",        u'Z',      u'z'     },
      {"latin 1",          u'\u00C4', u'\u00E4'},
      {"latin 1 thorn",    u'\u00DE', u'\u00FE'},
      {"polish",           u'\u0141', u'\u0142'},
      {"czech",            u'\u017D', u'\u017E'},
      {"y with diaeresis", u'\u0178', u'\u00FF'},
      {"romanian",         u'\u0218', u'\u0219'},
      {"greek",            u'\u03A9', u'\u03C9'},
      {"greek with tonos", u'\u038F', u'\u03CE'},
      {"final sigma",      u'\u03C2', u'\u03C3'},
      {"cyrillic",         u'\u0416', u'\u0436'},
      {"cyrillic io",      u'\u0401', u'\u0451'},
      {"ukrainian",        u'\u0490', u'\u0491'},
      {"vietnamese",       u'\u1EA0', u'\u1EA1'},
      {"full width",       u'\uFF21', u'\uFF41'},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    EXPECT_EQ(foldCase(t.capital), t.small);
    EXPECT_EQ(foldCase(t.small), t.small);
  }
}

// The signs between the letter blocks must not be mistaken for letters: a layer
// named with a multiplication sign is not the one named with a division sign.
TEST(FoldCase, SignsFoldToThemselves) {
  for (const char16_t unit : {u'[', u'@', u'\u00D7', u'\u00F7', u'\u00DF', u'\u0130', u'\u0131',
                              u'\u0138', u'\u03A2', u'\u4E2D', u'\xD83D', u'\xDE00'}) {
    EXPECT_EQ(foldCase(unit), unit) << std::hex << static_cast<unsigned>(unit);
  }
}

TEST(FoldCase, FoldingTwiceChangesNothingMore) {
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const auto once = foldCase(static_cast<char16_t>(unit));
    ASSERT_EQ(foldCase(once), once) << std::hex << unit;
  }
}

// Hash tables of names rely on exactly this.
TEST(FoldCase, EqualTextsHaveEqualHashesAndCompareAsZero) {
  std::mt19937 random(20240611);
  const std::u16string letters = u"aAbBzZ\u00C4\u00E4\u0416\u0436_1";
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
