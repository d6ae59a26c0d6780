#include "support/test.h"
#include "zim0lang/stringloader.h"

namespace {

TEST(Colors, NumbersWithoutANameAreDecimal) {
  CColors& colors = CColors::getInstance();
  for (const int color : {8, 42, 242, 255, -1, 257, 100000})
    EXPECT_EQ(colors[color].toUtf8(), std::to_string(color));
  EXPECT_EQ(&colors[242], &colors[242]);
}

TEST(Colors, TheFirstOnesAndByLayerHaveNamesOfTheirOwn) {
  CColors& colors = CColors::getInstance();
  std::set<std::string> names;
  for (const int color : {0, 1, 2, 3, 4, 5, 6, 7, 256}) {
    EXPECT_NE(colors[color].toUtf8(), std::to_string(color));
    names.insert(colors[color].toUtf8());
  }
  EXPECT_EQ(names.size(), 9u);
}

TEST(Colors, AHostsTextsCountFromTheNextInstanceOn) {
  struct Loader final : zim::CStringLoader {
    bool load(long id, zim::WString& text) override {
      if (id != 10026) return false;
      text = u"rosso";
      return true;
    }
  } loader;
  const zim::WString english = CColors::getInstance()[1];
  zim::CStringLoader* before = zim::CStringLoader::setLoader(&loader);
  EXPECT_EQ(CColors::getInstance()[1], english);
  CColors::shutdown();
  EXPECT_EQ(CColors::getInstance()[1], u"rosso");
  zim::CStringLoader::setLoader(before);
  CColors::shutdown();
  EXPECT_EQ(CColors::getInstance()[1], english);
}

}  // namespace
