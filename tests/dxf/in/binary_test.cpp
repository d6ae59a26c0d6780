// Binary files say the same as text files.
#include <fstream>

#include "dxf/in/savedtext.h"
#include "support/forms.h"
#include "support/test.h"

namespace {

std::string contentsOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace

TEST(Binary, SamplesReadAsTheirTexts) {
  for (const char* name : {"every_kind_r12.dxf", "hatches_ac1015.dxf", "room_ac1015.dxf"}) {
    const std::string text = contentsOf(vek0::test::samplePath(name));
    const std::string expected = saved(loadAny(text), kSaveExchange);
    for (const bool isWide : {false, true}) {
      SCOPED_TRACE(testing::Message() << name << (isWide ? ", wide" : ""));
      const std::string bytes = vek0::test::binaryOf(text, isWide);
      EXPECT_EQ(saved(loadAny(bytes), kSaveExchange), expected);
      // Cut anywhere, it reads as far as it goes.
      for (std::size_t end = 200; end < bytes.size(); end += 1 + bytes.size() / 97)
        EXPECT_NE(loadAny(bytes.substr(0, end)).result.status, CFileDXFIResult::Failed) << end;
    }
  }
}

TEST(Binary, ControlCharactersOfTextsAreCarets) {
  const std::string text =
      "0\nSECTION\n2\nENTITIES\n0\nTEXT\n8\nA\n10\n0\n20\n0\n40\n1\n1\na\tb\x1A\n" + dxf();
  const Loaded got = loadAny(vek0::test::binaryOf(text, true));
  ASSERT_TRUE(got.only());
  EXPECT_EQ(static_cast<CEntText*>(got.only())->getText().getContext().getString(),
            zim::WString(u"a\tb\x1A"));
}
