#include "vek0core/files/textcodec.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>

#include "files/codepages.h"

#if defined(__GLIBC__)
#include <iconv.h>
#endif

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

// Installs a decoder for pages of several bytes while it lives.
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
  const struct {
    const char* name;
    int page;
    const char* bytes;
    const char16_t* text;
  } cases[] = {
      {"western", 1252, "\x80 \xE9 \x9F", u"\u20AC \u00E9 \u0178"},
      {"central european", 1250, "\xB9\xE6\xF8", u"\u0105\u0107\u0159"},
      {"cyrillic", 1251, "\xCF\xEB\xE0\xED", u"\u041F\u043B\u0430\u043D"},
      {"greek", 1253, "\xD3\xF7\xDD\xE4\xE9\xEF", u"\u03A3\u03C7\u03AD\u03B4\u03B9\u03BF"},
      {"turkish", 1254, "\xDE\xFD", u"\u015E\u0131"},
      {"dos diameter", 850, "\x9D", u"\u00D8"},
      {"dos box drawing", 437, "\xC9\xCD\xBB", u"\u2554\u2550\u2557"},
      {"dos cyrillic", 866, "\x8F\xAB\xA0\xAD", u"\u041F\u043B\u0430\u043D"},
      {"thai", 874, "\xA1\x80", u"\u0E01\u20AC"},
      {"macintosh", 10000, "\x8E", u"\u00E9"},
      {"undefined low byte", 1252, "\x81", u"\u0081"},
      {"undefined high byte", 874, "\xDB", u"\uFFFD"},
      {"utf-8", kCodePageUtf8, "\xE2\x82\xAC\xF0\x9F\x98\x80", u"\u20AC\U0001F600"},
      {"western bytes in utf-8", kCodePageUtf8, "\xE9 \xC3\xA9", u"\u00E9 \u00E9"},
      {"valid utf-8 by itself", kCodePageAuto, "\xC3\xA9", u"\u00E9"},
      {"western by itself", kCodePageAuto, "\xC3\xA9 \xE9", u"\u00C3\u00A9 \u00E9"},
      {"unknown page as by itself", 4711, "\xC3\xA9", u"\u00E9"},
      {"no decoder for the page", 932, "\x82\x60", u"\u201A`"},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    EXPECT_EQ(decoded(t.page, t.bytes), t.text);
    zim::Char buffer[16];
    const std::size_t count = CTextDecoder(t.page).decode(t.bytes, buffer, std::size(buffer));
    EXPECT_EQ(std::u16string(buffer, count), t.text);
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
  for (const int page : kPages) {
    SCOPED_TRACE(page);
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
// Byte by byte against the C library's tables, made by other people. Its Macintosh
// page is of an older edition.
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
      // Some pages have combining marks that iconv holds back until it is flushed.
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
  const struct {
    const char* name;
    int page;
  } cases[] = {
      {"ANSI_1252", 1252},
      {"ansi_1251", 1251},
      {"ANSI_936", 936},
      {"dos850", 850},
      {"DOS437", 437},
      {"8859_1", 28591},
      {"ISO8859-15", 28605},
      {"utf-8", kCodePageUtf8},
      {"UTF8", kCodePageUtf8},
      {"big5", 950},
      {"ksc5601", 949},
      {"GB2312", 936},
      {"macintosh", 10000},
      {"ascii", kCodePageAuto},
      {"ANSI_4711", kCodePageAuto},
      {"ANSI_", kCodePageAuto},
      {"dos99999999999999999999", kCodePageAuto},
      {"", kCodePageAuto},
  };
  for (const auto& t : cases) EXPECT_EQ(codePageFromName(t.name), t.page) << t.name;
}

TEST(CodePages, OfADrawing) {
  const struct {
    const char* version;
    const char* name;
    int page;
  } cases[] = {
      {"AC1009", "dos850", 850},
      {"AC1018", "ANSI_1251", 1251},
      {"AC1021", "ANSI_1251", kCodePageUtf8},
      {"AC1032", "", kCodePageUtf8},
      {"", "ANSI_1250", 1250},
      {"", "", kCodePageAuto},
      {"newest", "ANSI_1250", 1250},
  };
  for (const auto& t : cases) {
    EXPECT_EQ(codePageOfDrawing(t.version, t.name), t.page) << t.version << ' ' << t.name;
  }
}

TEST(Escapes, Decoded) {
  const struct {
    const char* name;
    const char16_t* escaped;
    const char16_t* text;
  } cases[] = {
      {"unit", u"\\U+2205 5", u"\u2205 5"},
      {"lower-case digits", u"\\U+00e9", u"\u00E9"},
      {"pair of units", u"\\U+D83D\\U+DE00", u"\U0001F600"},
      {"too few digits", u"\\U+20A", u"\\U+20A"},
      {"other letter", u"\\u+20AC", u"\\u+20AC"},
      {"backslash at the end", u"a\\", u"a\\"},
      {"line feed", u"a^Jb", u"a\nb"},
      {"tab", u"^I", u"\t"},
      {"caret", u"a^ b", u"a^b"},
      {"caret and what is none", u"2^3", u"2^3"},
      {"caret at the end", u"a^", u"a^"},
      {"small letters are none", u"^j", u"^j"},
      {"escaped caret is final", u"\\U+005EJ", u"^J"},
      {"no decoder for bytes", u"\\M+18260", u"\\M+18260"},
      {"no such digit", u"\\M+98260", u"\\M+98260"},
  };
  for (const auto& t : cases) {
    EXPECT_EQ(decodeEscapes(t.escaped), t.text) << t.name;
  }
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
  const struct {
    const char* name;
    const char16_t* text;
    const char* bytes;
  } cases[] = {
      {"western", u"\u00E9\u20AC", "\xE9\x80"},
      {"outside the page", u"\u2205", "\\U+2205"},
      {"beyond U+FFFF", u"\U0001F600", "\\U+D83D\\U+DE00"},
      {"control character of 1252", u"\u0081", "\\U+0081"},
      {"line break", u"a\r\nb", "a^M^Jb"},
      {"caret", u"a^J", "a^ J"},
      {"chance escape", u"\\U+0041", "\\U+005CU+0041"},
      {"plain backslash", u"\\P\\", "\\P\\"},
      {"looks like utf-8", u"\u00C3\u00A9x", "\\U+00C3\\U+00A9x"},
  };
  for (const auto& t : cases) EXPECT_EQ(encodedText(t.text), t.bytes) << t.name;
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
    for (auto left = random() % 12; left > 0; --left) {
      if (random() % 4) {
        text += odd[random() % std::size(odd)];
      } else if (random() % 8) {
        text += static_cast<char16_t>(random() % 0xD800);
      } else {
        text += {0xD83D, static_cast<char16_t>(0xDC00 + random() % 0x400)};
      }
    }
    const std::string bytes = encodedText(text);
    ASSERT_EQ(decodedText(kCodePageAuto, bytes), text) << bytes << " seed " << kSeed;
    ASSERT_EQ(decodedText(kCodePage1252, bytes), text) << bytes << " seed " << kSeed;
    for (const char c : bytes) ASSERT_GE(static_cast<unsigned char>(c), 0x20) << bytes;
  }
}

}  // namespace
