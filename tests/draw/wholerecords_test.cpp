#include "draw/recorder.h"
#include "support/dxftext.h"
#include "support/samples.h"

namespace fs = std::filesystem;

namespace {

// Records with pieces of their own looks, and unsupported kinds, in the model and in a block that
// an insert shows on another layer.
std::string drawing() {
  const std::string records =
      "0 MTEXT|5 A1|8 LAYER|62 1|10 0|20 50|40 9|41 500|1 one\\P{\\C3;two}\\P{\\C256;three}|"
      "0 MTEXT|5 A2|8 0|6 BYBLOCK|62 0|420 255|370 -2|10 100|20 200|40 9|41 500|1 one\\Ptwo|"
      "0 TOLERANCE|5 A3|8 0|62 2|370 50|10 300|20 300|11 1|21 0|31 0|1 {\\Fgdt;j}%%v5%%v%%v%%vA|"
      "0 DIMENSION|5 A4|8 LAYER|440 33554559|70 1|10 200|20 30|11 150|21 30|13 100|23 0|14 200|24 "
      "0|"
      "0 3DSOLID|5 A5|8 LAYER|62 5|1 text|";
  std::string inner = records;
  for (std::size_t at = 0; (at = inner.find("|5 A", at)) != std::string::npos;) inner[at + 3] = 'B';
  return vek0::test::pairsOf(
      "0 SECTION|2 HEADER|9 $ACADVER|1 AC1021|0 ENDSEC|0 SECTION|2 TABLES|0 TABLE|2 LAYER|"
      "0 LAYER|2 LAYER|70 0|62 4|6 CONTINUOUS|0 LAYER|2 OTHER|70 0|62 6|6 CONTINUOUS|0 ENDTAB|0 "
      "ENDSEC|"
      "0 SECTION|2 BLOCKS|0 BLOCK|8 0|2 *K1|70 0|10 5|20 5|" +
      inner +
      "0 ENDBLK|0 ENDSEC|"
      "0 SECTION|2 ENTITIES|" +
      records + "0 INSERT|5 C1|8 OTHER|2 *K1|10 400|20 400|42 2|50 30|62 6|0 ENDSEC|0 EOF");
}

CDataPtr load(IFile& file, bool isWhole) {
  CFileDXFIOptions options;
  options.policy = CFileDXFIPolicy::forAnyFile();
  options.policy.wholeRecords = isWhole;
  CDataPtr data(CDataFactory().createData());
  CFileDXFIError error;
  loadDXF(*data, file, &error, options);
  return data;
}

std::vector<Thing> drawn(const CData& data) {
  CWndVpt window(1);
  window.resize(1001, 1001);
  window.set(0, 0, 1000, 1000);
  Recorder recorder;
  drawData(data, CPOProjector(), window, recorder);
  for (Thing& thing : recorder.things) thing.handle = 0;
  return recorder.things;
}

bool isWhole(const CEnt& ent) {
  const CEntInsertBase* insert = ent.getEntInsert();
  return insert && insert->getBlock() && insert->getBlock()->isOfRecord();
}

void explodeWhole(CData& data) {
  CEntTable& table = data.getEntTable();
  CEntExploderVisitor exploder(data.getHandleGestor(), data.getEntFactory(), data.getBlockFactory(),
                               data.getBlockTable());
  const std::vector<CEnt*> all(table.getEntityTbl().begin(), table.getEntityTbl().end());
  for (CEnt* ent : all) {
    if (isWhole(*ent)) ent->accept(exploder);
    table.remove(ent);
    if (!isWhole(*ent)) exploder.getEnts().emplace_back(ent);
    for (auto& piece : exploder.getEnts()) table.add(piece.release());
    exploder.getEnts().clear();
    if (isWhole(*ent)) delete ent;
  }
}

void expectSame(const std::vector<Thing>& a, const std::vector<Thing>& b) {
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t i = 0; i < a.size(); ++i) {
    Thing thing = a[i];
    ASSERT_EQ(thing.points.size(), b[i].points.size()) << i;
    for (std::size_t k = 0; k < thing.points.size(); ++k)
      EXPECT_LT(thing.points[k].dist(b[i].points[k]), 1e-6) << i;
    thing.points = b[i].points;  // which may differ by rounding
    EXPECT_TRUE(thing.isSame(b[i])) << i;
  }
}

// Pictures are the same, with the pieces in place of the record, too, and each handle occurs once.
void check(IFile& file, std::size_t least) {
  const CDataPtr apart = load(file, false), whole = load(file, true);
  const CDataPtr copy(cloneData(*whole));
  const std::vector<Thing> things = drawn(*apart);
  std::set<vek0::Handle> handles;
  std::size_t count = 0;
  auto other = copy->getEntTable().getEntityTbl().begin();
  for (const CEnt* ent : whole->getEntTable().getEntityTbl()) {
    if (isWhole(*ent)) EXPECT_TRUE(handles.insert(ent->GetHandle()).second) << ent->GetHandle();
    if (isWhole(*ent)) EXPECT_EQ((*other)->getRecord(), ent->getRecord());
    count += isWhole(*ent);
    ++other;
  }
  EXPECT_GE(count, least);
  expectSame(drawn(*whole), things);
  expectSame(drawn(*copy), things);
  explodeWhole(*whole);
  expectSame(drawn(*whole), things);
}

}  // namespace

TEST(WholeRecords, LookAsTheirPieces) {
  CFileMemory file(u"whole.dxf", 1, drawing());
  check(file, 4);
  for (const auto& entry : fs::directory_iterator(vek0::test::samplePath())) {
    if (entry.path().extension() != ".dxf") continue;
    SCOPED_TRACE(entry.path().string());
    CFileStdLib sample(zim::WString::fromUtf8(entry.path().string()), 1);
    check(sample, 0);
  }
}
