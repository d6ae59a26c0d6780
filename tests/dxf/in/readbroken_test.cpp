#include "support/test.h"

namespace {

std::string readSample(const char* name) {
  std::ifstream in(vek0::test::samplePath(name), std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

// Small enough to be read once per truncation, yet with every kind of content.
const std::string& smallDrawing() {
  static const std::string text =
      section("HEADER", pairsOf("9 $ACADVER|1 AC1014|9 $LTSCALE|40 2|9 $CELAYER|8 A")) +
      section("TABLES", table("LTYPE", pairsOf("0 LTYPE|2 D|3 d|70 0|72 65|73 2|40 1|49 1|74 0|"
                                               "49 -1|74 2|75 0|340 1|46 1|50 0|44 0|45 0|9 T")) +
                            table("LAYER", pairsOf("0 LAYER|2 A|62 -3|6 D|70 0"))) +
      section("BLOCKS", pairsOf("0 BLOCK|2 B|70 2|10 1|20 1|0 ATTDEF|8 A|10 0|20 0|40 1|1 v|2 T|"
                                "3 p|70 0|0 INSERT|8 A|2 C|10 0|20 0|0 ENDBLK|"
                                "0 BLOCK|2 C|0 LINE|8 A|10 0|20 0|11 1|21 1|0 ENDBLK|"
                                "0 BLOCK|2 X|70 4|1 x.dwg|0 ENDBLK")) +
      section("ENTITIES",
              pairsOf("0 LINE|5 1|8 A|6 D|62 1|10 0|20 0|11 2|21 1|0 ARC|8 A|10 0|20 0|40 1|50 0|"
                      "51 90|0 TEXT|8 A|1 t|10 0|20 0|40 1|72 1|11 2|21 2|0 INSERT|8 A|2 B|10 0|"
                      "20 0|66 1|0 ATTRIB|8 A|10 0|20 0|40 1|1 v|2 T|70 0|0 SEQEND|8 A|"
                      "0 POLYLINE|8 A|66 1|70 4|75 5|0 VERTEX|8 A|10 0|20 0|70 16|0 VERTEX|8 A|"
                      "10 4|20 0|70 16|0 VERTEX|8 A|10 4|20 4|70 16|0 SEQEND|0 POLYLINE|8 A|66 1|"
                      "70 16|71 2|72 2|0 VERTEX|8 A|10 0|20 0|0 VERTEX|8 A|10 1|20 0|0 VERTEX|8 A|"
                      "10 0|20 1|0 VERTEX|8 A|10 1|20 1|0 SEQEND|0 LWPOLYLINE|8 A|90 2|10 0|20 0|"
                      "42 1|10 1|20 1|0 INSERT|8 A|2 X|10 0|20 0")) +
      dxf();
  return text;
}

// Layers and blocks count their uses. A wrong count reveals an entity that was left registered or
// deleted twice.
void expectConsistent(const Loaded& got) {
  std::unordered_map<const CNamedItem*, long> counts;
  const auto count = [&](const CEnt* ent) {
    ++counts[ent->getLayer()];
    if (const CEntInsertBase* insert = ent->getEntInsert()) {
      ++counts[insert->getBlock()];
      for (unsigned i = 0; i < insert->GetNoAttribs(); ++i)
        ++counts[insert->GetAttrib(i)->getLayer()];
    }
  };
  for (const CEnt* ent : got.data->getEntTable().getEntityTbl()) count(ent);
  const CBlockTable& blocks = got.data->getBlockTable();
  for (int i = 0; i < static_cast<int>(blocks.size()); ++i)
    for (unsigned j = 0; j < blocks[i]->size(); ++j) count((*blocks[i])[j]);
  for (const auto& [item, uses] : counts) {
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->getEntities(), uses) << item->getName().toUtf8();
  }
  const RECT_3D box = got.data->getEntTable().getBdry();
  got.data->getEntTable().recalcBdry();
  EXPECT_EQ(box.validRegion(), got.data->getEntTable().getBdry().validRegion());
}

long lineCount(std::string_view text) {
  return std::count(text.begin(), text.end(), '\n') + (text.empty() || text.back() == '\n' ? 0 : 1);
}

// A file whose n-th read fails, and all later ones.
class CutFile : public CFileMemory {
 public:
  CutFile(const std::string& text, long good, bool offersBytes)
      : CFileMemory(u"test.dxf", kRead, text), m_good(good), m_offersBytes(offersBytes) {}

  bool readLn(zim::Char* buf, long n) override {
    return m_good-- > 0 ? CFileMemory::readLn(buf, n) : true;
  }
  // Small pieces, so that many calls can fail.
  long readBytes(char* buf, long n) override {
    if (!m_offersBytes) return -1;
    return m_good-- > 0 ? CFileMemory::readBytes(buf, std::min(n, 64L)) : 0;
  }
  bool fail() override { return m_good < 0 || CFileMemory::fail(); }
  bool wasReached() const { return m_good < 0; }

 private:
  long m_good;
  bool m_offersBytes;
};

}  // namespace

TEST(ReadBroken, TheSmallDrawingIsWhole) {
  const Loaded got = loadText(smallDrawing());
  EXPECT_FALSE(got.error.HasAnError());
  EXPECT_EQ(got.data->getEntTable().getEntityTbl().size(), 8u);
  expectConsistent(got);
}

// An interrupted copy is the most common kind of damaged file.
TEST(ReadBroken, EveryTruncationGivesAnErrorOrADrawing) {
  const QuietAsserts asserts;
  const std::string& whole = smallDrawing();
  for (std::size_t n = 0; n < whole.size(); ++n) {
    SCOPED_TRACE(testing::Message() << "first " << n << " bytes");
    const std::string text = whole.substr(0, n);
    const Loaded loaded = loadText(text);
    EXPECT_LE(loaded.error.GetErrorLine(), lineCount(text));
    EXPECT_EQ(loaded.error.HasAnError(), n + 1 < whole.size());  // the last line end may be missing
    expectConsistent(loaded);
    Loaded imported;
    importInto(imported, text);
    EXPECT_EQ(imported.error.GetErrorLine(), loaded.error.GetErrorLine());
    expectConsistent(imported);
  }
  EXPECT_TRUE(asserts.failures().empty());
}

TEST(ReadBroken, EveryTruncationGivesTolerantReadersWhatCameBefore) {
  const QuietAsserts asserts;
  const std::string& whole = smallDrawing();
  const std::size_t firstEntity = whole.find("0\nSECTION") + 10;
  std::size_t entities = 0;
  for (std::size_t n = 0; n < whole.size(); ++n) {
    SCOPED_TRACE(testing::Message() << "first " << n << " bytes");
    const Loaded got = loadText(whole.substr(0, n), CFileDXFIPolicy::forAnyFile());
    EXPECT_EQ(got.error.HasAnError(), n < firstEntity);
    expectConsistent(got);
    EXPECT_GE(got.data->getEntTable().getEntityTbl().size() + 1, entities) << "but for the one cut";
    entities = std::max(entities, got.data->getEntTable().getEntityTbl().size());
  }
  EXPECT_EQ(entities, 8u);
  EXPECT_TRUE(asserts.failures().empty());
}

TEST(ReadBroken, EveryFailingReadIsAnError) {
  const QuietAsserts asserts;
  for (const bool bytes : {true, false}) {
    bool reached = true;
    for (long good = 0; reached; ++good) {
      SCOPED_TRACE(testing::Message() << good << (bytes ? " blocks" : " lines") << " are read");
      ASSERT_LT(good, 10000);
      CutFile file(smallDrawing(), good, bytes);
      Loaded got = loadText(entitiesOf("AC1009", "0 POINT|8 OLD|10 0|20 0"));
      importDXF(got.drawing(), file, &got.error);
      reached = file.wasReached();
      EXPECT_EQ(got.error.HasAnError(), reached);
      EXPECT_GE(got.count(1), 1);
      expectConsistent(got);
    }
  }
  EXPECT_TRUE(asserts.failures().empty());
}

TEST(ReadBroken, ChangedBytes) {
  const QuietAsserts asserts;
  constexpr unsigned seed = 20;
  std::mt19937 random(seed);
  const std::string texts[] = {smallDrawing(), readSample("every_kind_r12.dxf"),
                               readSample("room_ac1015.dxf")};
  for (const int round : rounds(600)) {
    std::string text = texts[round % 3];
    ASSERT_FALSE(text.empty());
    for (unsigned changes = 1 + random() % 8; changes > 0; --changes) {
      constexpr std::string_view bytes = "0123456789-.eE \n\r\tAX|*\x80\xFF\x1A";
      text[random() % text.size()] = bytes[random() % bytes.size()];
    }
    for (const CFileDXFIPolicy& policy : {CFileDXFIPolicy(), CFileDXFIPolicy::forAnyFile()})
      expectConsistent(loadText(text, policy));
    Loaded twice = loadText(texts[round % 3]);
    importInto(twice, text);
    expectConsistent(twice);
  }
  EXPECT_TRUE(asserts.failures().empty());
}

// Files may declare huge counts; none of these may cost time or memory.
TEST(ReadBroken, NumbersThatPromiseTooMuch) {
  const char* const cases[] = {
      "0 LWPOLYLINE|8 0|90 2147483647",
      "0 POLYLINE|8 0|66 1|70 16|71 2147483647|72 2147483647|0 SEQEND",
      "0 POLYLINE|8 0|66 1|70 64|0 VERTEX|8 0|10 0|20 0|70 128|71 -2147483648|72 1|0 SEQEND",
      "0 INSERT|8 0|2 A|10 0|20 0|70 2147483647|71 2147483647|44 1e300|45 1e300",
  };
  for (const char* text : named(cases)) {
    const Loaded got = loadText(entitiesOf("AC1015", text));
    expectConsistent(got);
  }
}
