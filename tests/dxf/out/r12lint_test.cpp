// All other tests of saving rely on the lint. Each case changes one thing in a valid file and
// expects the lint to find it.
#include "dxf/out/saveddrawing.h"
#include "support/test.h"

namespace {

std::string soundFile() {
  const Drawing d = newDrawing();
  double dashes[] = {1, -0.5};
  CLtype* ltype = d->getLtypeFactory().create(u"DASH", u"dashes", dashes, 2, 0);
  addLtype(*d, ltype);
  CBlock* block = addNewBlock(*d, u"BOLT");
  d->getEntTable().add(newInsert(*d, *block, 1));
  CEntPolyline* p = createEntPolyline(*d, addNewLayer(*d, u"WALL"), ltype, 256, 0, 0, 2);
  p->addBulgedVertex(PNT_3D(0, 0, 0), 0, 0, 0, 3);
  d->getEntTable().add(p);
  return saved(*d, kSaveExchange);
}

}  // namespace

TEST(R12Lint, FindsEachFault) {
  const std::string sound = soundFile();
  ASSERT_TRUE(lintR12(sound, true).empty());
  const Definitions names{{"longText", std::string(256, 'x')}};
  for (const Row& t : rowsWith(names)) {
    std::string file = sound;
    const std::size_t at = file.find(t.text("from"));
    ASSERT_NE(at, std::string::npos);
    file.replace(at, t.text("from").size(), t.text("to"));
    const auto complaints = lintR12(file, true);
    ASSERT_FALSE(complaints.empty());
    bool found = false;
    for (const std::string& complaint : complaints)
      found = found || contains(complaint, t.text("complaint"));
    EXPECT_TRUE(found) << complaints.front();
  }
}
