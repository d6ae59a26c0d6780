#include "zim0lang/utf8.h"
#include "support/test.h"

using zim::WString;

TEST(Utf8, KnownTexts) {
  for (const Row& t : rows()) {
    EXPECT_EQ(t.wide("utf8"), t.wide("utf16"));
    EXPECT_EQ(t.wide("utf16").toUtf8(), t.text("utf8"));
    EXPECT_TRUE(zim::isValidUtf8(t.text("utf8")));
  }
}

TEST(Utf8, MalformedBytesBecomeReplacements) {
  for (const Row& t : rows()) {
    EXPECT_EQ(t.wide("utf8"), t.wide("utf16"));
    EXPECT_FALSE(zim::isValidUtf8(t.text("utf8")));
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
