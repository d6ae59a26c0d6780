#include "zim0lang/utf8.h"

#include <gtest/gtest.h>

#include "zim0lang/wstring.h"

using zim::WString;

TEST(Utf8, KnownTexts) {
  const struct {
    const char* name;
    const char* utf8;
    const char16_t* utf16;
  } cases[] = {
      {"ascii", "LINE", u"LINE"},
      {"two bytes", "\xC3\xA9", u"\u00E9"},
      {"three bytes", "\xE2\x82\xAC", u"\u20AC"},
      {"surrogate pair", "\xF0\x9F\x98\x80", u"\U0001F600"},
      {"empty", "", u""},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    EXPECT_EQ(WString::fromUtf8(t.utf8), WString(t.utf16));
    EXPECT_EQ(WString(t.utf16).toUtf8(), t.utf8);
    EXPECT_TRUE(zim::isValidUtf8(t.utf8));
  }
}

TEST(Utf8, MalformedBytesBecomeReplacements) {
  const struct {
    const char* name;
    const char* utf8;
    const char16_t* utf16;
  } cases[] = {
      {"lone continuation", "a\x80z", u"a\uFFFDz"},
      {"cut sequence", "a\xE2\x82", u"a\uFFFD\uFFFD"},
      {"overlong slash", "\xC0\xAF", u"\uFFFD\uFFFD"},
      {"overlong three bytes", "\xE0\x80\xAF", u"\uFFFD\uFFFD\uFFFD"},
      {"encoded surrogate", "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
      {"beyond the last", "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"goes on after it", "\xC3(", u"\uFFFD("},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    EXPECT_EQ(WString::fromUtf8(t.utf8), WString(t.utf16));
    EXPECT_FALSE(zim::isValidUtf8(t.utf8));
  }
}

TEST(Utf8, ZerosAreUnitsLikeOthers) {
  const WString text = WString::fromUtf8(std::string_view("a\0b", 3));
  EXPECT_EQ(text.Length(), 3u);
  EXPECT_EQ(text.toUtf8(), std::string("a\0b", 3));
}

TEST(Utf8, UnpairedSurrogatesStayInMemoryAndAreReplacedInBytes) {
  const char16_t lone[] = {u'a', 0xD800, u'b', 0xDC00, 0xD83D, 0};
  const WString text(lone);
  EXPECT_EQ(text[1], 0xD800);
  EXPECT_EQ(text.toUtf8(),
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(Utf8, EveryCodePointComesBack) {
  for (char32_t c = 1; c <= 0x10FFFF; c += c < 0x3000 ? 1 : 97) {
    if (c >= 0xD800 && c <= 0xDFFF) continue;
    std::string bytes;
    zim::appendUtf8(bytes, c);
    std::u16string units;
    zim::appendUtf16(units, c);
    const WString text(units);
    ASSERT_EQ(WString::fromUtf8(bytes), text) << static_cast<unsigned long>(c);
    ASSERT_EQ(text.toUtf8(), bytes) << static_cast<unsigned long>(c);
  }
}
