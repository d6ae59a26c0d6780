#include "zim0lang/stringloader.h"
#include "support/test.h"

using zim::CStringLoader;
using zim::WString;

namespace {

class German : public CStringLoader {
 public:
  bool load(long id, WString& text) override {
    if (id != 10026) return false;
    text = u"rot";
    return true;
  }
};

struct Installed {
  explicit Installed(CStringLoader& loader) : before(CStringLoader::setLoader(&loader)) {}
  ~Installed() { CStringLoader::setLoader(before); }
  CStringLoader* before;
};

}  // namespace

TEST(StringLoader, HostTextsComeFirstAndBuiltInOnesFillTheGaps) {
  WString text;
  ASSERT_TRUE(text.LoadStr(10026));
  EXPECT_EQ(text, WString(u"red"));
  German german;
  const Installed installed(german);
  ASSERT_TRUE(text.LoadStr(10026));
  EXPECT_EQ(text, WString(u"rot"));
  ASSERT_TRUE(text.LoadStr(10030));
  EXPECT_EQ(text, WString(u"blue"));
}

TEST(StringLoader, AnUnknownIdEmptiesTheText) {
  WString text(u"before");
  EXPECT_FALSE(text.LoadStr(1));
  EXPECT_TRUE(text.empty());
}

// Every message that the reader and the color table use has a text.
TEST(StringLoader, NoMessageIsMissing) {
  for (const long id :
       {10000, 10001, 10002, 10003, 10004, 10005, 10006, 10007, 10008, 10009, 10020, 10021,
        10022, 10023, 10024, 10025, 10026, 10027, 10028, 10029, 10030, 10031, 10032, 10034}) {
    WString text;
    EXPECT_TRUE(text.LoadStr(id) && !text.empty()) << id;
  }
}
