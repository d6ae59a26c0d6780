// The lint judges everything that the other tests write, so it is tried on faults
// that it must find: each case changes one thing in a sound file.
#include "dxf/out/saveddrawing.h"

using namespace vek0::test;

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
  const struct {
    const char* name;
    std::string from, to;  // the first place
    const char* complaint;
  } cases[] = {
      {"code not padded", "  0\nPOLYLINE", "0\nPOLYLINE", "not a group code"},
      {"pair out of step", "  0\nPOLYLINE\n", "  0\n", ""},
      {"no such code", "  8\nWALL\n 10", "  8\nWALL\n100", "no such code"},
      {"not a number", " 10\n5.0", " 10\nnan", "not a real number"},
      {"too long", "3\ndashes", "3\n" + std::string(256, 'x'), "over 255"},
      {"control character", "3\ndashes", "3\nda\tes", "control character"},
      {"count of a table", "LTYPE\n 70\n2", "LTYPE\n 70\n3", "count is wrong"},
      {"count of dashes", " 73\n2", " 73\n3", "number of dashes"},
      {"16 bits", "BOLT\n 70\n0", "BOLT\n 70\n65536", "over 16 bits"},
      {"blank in a name", "2\nWALL", "2\nWA LL", "not a name"},
      {"name twice", "2\nWALL", "2\n0", "a second LAYER"},
      {"undeclared layer", "8\nWALL", "8\nDOOR", "undeclared layer DOOR"},
      {"undeclared style", "7\nSTANDARD", "7\nNOTES", "undeclared style NOTES"},
      {"unknown block", "WALL\n  6\nDASH", "WALL\n  6\nDOT", "undeclared linetype DOT"},
      {"insert too early", "0\n  2\nBOLT\n 10", "0\n  2\nNUT\n 10", "before its block NUT"},
      {"handle 0", "INSERT\n  5\n1", "INSERT\n  5\n0", "not a handle"},
      {"handle twice", "INSERT\n  5\n1", "INSERT\n  5\n2", "a second handle"},
      {"seed too low", "SEED\n  5\n5", "SEED\n  5\n4", "$HANDSEED"},
      {"no SEQEND", "  0\nSEQEND\n  5\n4\n  8\nWALL\n", "", "no SEQEND"},
      {"sequence unsaid", " 66\n1", " 66\n0", "not announced"},
      {"no layer", "INSERT\n  5\n1\n  8\n0\n", "INSERT\n  5\n1\n", "not one layer"},
      {"bare ENDBLK", "ENDBLK\n  8\n0\n", "ENDBLK\n", "without its layer"},
      {"sections exchanged", "2\nBLOCKS", "2\nENTITIES", "expected BLOCKS"},
      {"no end", "  0\nEOF\n", "", "expected EOF"},
  };
  for (const auto& t : cases) {
    SCOPED_TRACE(t.name);
    std::string file = sound;
    const std::size_t at = file.find(t.from);
    ASSERT_NE(at, std::string::npos);
    file.replace(at, t.from.size(), t.to);
    const auto complaints = lintR12(file, true);
    ASSERT_FALSE(complaints.empty());
    bool found = false;
    for (const std::string& complaint : complaints)
      found = found || contains(complaint, t.complaint);
    EXPECT_TRUE(found) << complaints.front();
  }
}
