#include <iconv.h>

#include "files/codepages.h"
#include "support/test.h"

namespace {

constexpr unsigned kSeed = 20240607;
constexpr int kPages[] = {437,   850,   852,   855,   857,   860,   861,   863,   865,
                          866,   869,   874,   1250,  1251,  1252,  1253,  1254,  1255,
                          1256,  1257,  1258,  10000, 28591, 28592, 28593, 28594, 28595,
                          28596, 28597, 28598, 28599, 28603, 28605};

std::u16string decoded(int page, std::string_view bytes) {
  std::u16string text;
  CTextDecoder(page).decode(bytes, text);
  return text;
}

std::u16string decodedText(int page, std::string_view bytes) {
  return std::u16string(CTextDecoder(page).decodeText(bytes).view());
}

std::string encodedText(std::u16string_view text) {
  std::string bytes;
  encodeText(text, bytes);
  return bytes;
}

std::string encodedLine(std::u16string_view text) {
  std::string bytes;
  encodeLine(text, bytes);
  return bytes;
}

// Installs a decoder for multibyte pages and removes it on destruction.
class WithDecoder {
 public:
  explicit WithDecoder(MultiByteDecoder decoder) : m_before(setMultiByteDecoder(decoder)) {}
  ~WithDecoder() { setMultiByteDecoder(m_before); }

 private:
  MultiByteDecoder m_before;
};

// Supports one character of page 932 and nothing else.
bool decodeFullWidthA(int page, std::string_view bytes, std::u16string& out) {
  out += u'?';  // output of a failed call must be discarded
  if (page != 932 || bytes != "\x82\x60") return false;
  out.back() = u'\uFF21';
  return true;
}

TEST(TextDecoder, KnownTextsOfEachFamily) {
  const Definitions names{{"kCodePageUtf8", kCodePageUtf8}, {"kCodePageAuto", kCodePageAuto}};
  for (const Row& t : rowsWith(names)) {
    EXPECT_EQ(decoded(t.whole("page"), t.text("bytes")), t.wide("text").c_str());
    zim::Char buffer[16];
    const std::size_t count =
        CTextDecoder(t.whole("page")).decode(t.text("bytes"), buffer, std::size(buffer));
    EXPECT_EQ(std::u16string(buffer, count), t.wide("text").c_str());
  }
}

TEST(TextDecoder, StopsAtTheRoomAndBeforeHalfAPair) {
  const std::string bytes = "ab\xF0\x9F\x98\x80";
  zim::Char buffer[4] = {0, 0, 0, u'!'};
  EXPECT_EQ(CTextDecoder().decode(bytes, buffer, 3), 2u);
  EXPECT_EQ(buffer[3], u'!');
  EXPECT_EQ(CTextDecoder().decode(bytes, buffer, 4), 4u);
  EXPECT_EQ(CTextDecoder().decode("abc", buffer, 2), 2u);
  EXPECT_EQ(CTextDecoder().decode("abc", buffer, 0), 0u);
}

TEST(TextDecoder, NamesWhatItDid) {
  CTextDecoder decoder;
  EXPECT_EQ(decoder.getName(), "utf-8");
  decoder.decodeText("plain, \xC3\xA9");
  EXPECT_EQ(decoder.getName(), "utf-8");
  decoder.decodeText("\xE9");
  EXPECT_EQ(decoder.getName(), "windows-1252");
  decoder.setPage(850);
  EXPECT_EQ(decoder.getName(), "ibm850");
}

TEST(CodePages, AreComplete) {
  for (const int page : named(kPages)) {
    const auto* upper = vek0::detail::upperHalfOf(page);
    ASSERT_NE(upper, nullptr);
    std::set<char16_t> seen;
    for (const char16_t c : *upper) {
      EXPECT_GE(c, 0x80) << "ASCII has its own bytes";
      EXPECT_TRUE(c == 0xFFFD || seen.insert(c).second) << "stands twice: " << unsigned{c};
    }
    EXPECT_NE(vek0::detail::labelOf(page), nullptr);
  }
}

#if defined(__GLIBC__)
// Compares each byte with the C library's tables, an independent source. Its Macintosh page is from
// an older edition.
TEST(CodePages, AgreeWithTheCLibrary) {
  int compared = 0;
  for (const int page : kPages) {
    if (page == 10000) continue;
    std::string name = vek0::detail::labelOf(page);
    if (name.starts_with("windows-")) name.replace(0, 8, "CP");
    const iconv_t converter = iconv_open("UTF-16LE", name.c_str());
    if (converter == reinterpret_cast<iconv_t>(-1)) continue;
    for (int byte = 0x80; byte < 0x100; ++byte) {
      char in[] = {static_cast<char>(byte), 0};
      char out[8];
      char *from = in, *to = out;
      std::size_t fromLeft = 1, toLeft = sizeof out;
      iconv(converter, nullptr, nullptr, nullptr, nullptr);
      // iconv holds back combining marks of some pages until it is flushed.
      const bool defined = iconv(converter, &from, &fromLeft, &to, &toLeft) == 0 &&
                           iconv(converter, nullptr, nullptr, &to, &toLeft) == 0;
      if (!defined || to - out != 2) continue;
      const auto unit = static_cast<char16_t>(static_cast<unsigned char>(out[0]) |
                                              static_cast<unsigned char>(out[1]) << 8);
      EXPECT_EQ(decoded(page, std::string_view(in, 1))[0], unit) << name << " byte " << byte;
      ++compared;
    }
    iconv_close(converter);
  }
  EXPECT_GT(compared, 3000);
}
#endif

TEST(CodePages, NamesThatDrawingsState) {
  const Definitions names{{"kCodePageUtf8", kCodePageUtf8}, {"kCodePageAuto", kCodePageAuto}};
  for (const Row& t : rowsWith(names))
    EXPECT_EQ(codePageFromName(t.text("name")), t.whole("page")) << t.text("name");
}

TEST(CodePages, OfADrawing) {
  const Definitions names{{"kCodePageUtf8", kCodePageUtf8}, {"kCodePageAuto", kCodePageAuto}};
  for (const Row& t : rowsWith(names)) {
    EXPECT_EQ(codePageOfDrawing(t.text("version"), t.text("name")), t.whole("page"))
        << t.text("version") << ' ' << t.text("name");
  }
}

TEST(Escapes, Decoded) {
  for (const Row& t : rows())
    EXPECT_EQ(decodeEscapes(t.wide("escaped")), t.wide("text").c_str()) << t.text("name");
}

TEST(MultiByte, GoesThroughTheInstalledDecoder) {
  const WithDecoder installed(decodeFullWidthA);
  EXPECT_EQ(decodedText(932, "\x82\x60"), u"\uFF21");
  EXPECT_EQ(decodedText(932, "\x82\x61"), u"\u201Aa") << "what it refuses is taken as ever";
  EXPECT_EQ(decodedText(1252, "A\\M+18260Z"), u"A\uFF21Z");
  EXPECT_EQ(decodedText(1252, "\\M+28260"), u"\\M+28260");
  EXPECT_EQ(encodedText(u"\\M+18260"), "\\U+005CM+18260") << "a text that only looks so";
}

TEST(EncodeText, KnownTexts) {
  for (const Row& t : rows())
    EXPECT_EQ(encodedText(t.wide("text")), t.text("bytes")) << t.text("name");
  const char16_t lone[] = {u'a', 0xD800, u'b', 0xDC00, 0xD800, 0};
  EXPECT_EQ(encodedText(lone), "a\\U+FFFDb\\U+FFFD\\U+FFFD");
}

TEST(EncodeLine, KeepsWhatALineIsMadeOf) {
  EXPECT_EQ(encodedLine(u"a^J\t\\U+0041\u2205\r\n"), "a^J\t\\U+0041\\U+2205\r\n");
  EXPECT_EQ(encodedLine(u"\u00C3\u00A9\n"), "\\U+00C3\\U+00A9\n");
}

TEST(EncodeText, ComesBackAndNeverBreaksALine) {
  std::mt19937_64 random(kSeed);
  const char16_t odd[] = {u'\\', u'U',  u'M', u'+', u'1', u'0', u'A', u'^', u' ',   u'J',
                          u'\n', u'\r', 0,    0x7F, 0x81, 0xC3, 0xA9, 0xE9, 0x20AC, 0x2205};
  for (int i = 0; i < 20000; ++i) {
    std::u16string text;
    for (auto left = random() % 12; left > 0; --left)
      if (random() % 4)
        text += odd[random() % std::size(odd)];
      else if (random() % 8)
        text += static_cast<char16_t>(random() % 0xD800);
      else
        text += {0xD83D, static_cast<char16_t>(0xDC00 + random() % 0x400)};
    const std::string bytes = encodedText(text);
    ASSERT_EQ(decodedText(kCodePageAuto, bytes), text) << bytes << " seed " << kSeed;
    ASSERT_EQ(decodedText(kCodePage1252, bytes), text) << bytes << " seed " << kSeed;
    for (const char c : bytes) ASSERT_GE(static_cast<unsigned char>(c), 0x20) << bytes;
  }
}

}  // namespace
