// Files of versions from 2000 on: the form of their records, and that what was written is what was
// in the drawing.

#include "dxf/out/modern/itemnames.h"
#include "dxf/out/saveddrawing.h"
#include "support/modernlint.h"
#include "support/rows.h"
#include "support/samples.h"
#include "support/test.h"

namespace {

constexpr DxfVersion kModern[] = {DxfVersion::R2000, DxfVersion::R2004, DxfVersion::R2007,
                                  DxfVersion::R2010, DxfVersion::R2013, DxfVersion::R2018};

class Modern : public testing::Test {
 protected:
  static void SetUpTestSuite() { CFontTable::getInstance().addPlainDefault(); }
  static void TearDownTestSuite() { shutdownCore(); }
};
using ModernRecords = Modern;
using ModernNames = Modern;

DxfVersion versionOfYear(const std::string& year) {
  const std::vector<std::string> years{"2000", "2004", "2007", "2010", "2013", "2018"};
  return kModern[std::find(years.begin(), years.end(), year) - years.begin()];
}

std::string savedAs(const CData& data, DxfVersion version, CFileReport* report = nullptr) {
  CFileMemory file(u"out.dxf", IFile::kWrite);
  EXPECT_TRUE(SaveDXF(data, file, CFileDXFOOptions{version, kSaveExchange, report}));
  for (const std::string& complaint : lintModern(file.bytes())) ADD_FAILURE() << complaint;
  return file.bytes();
}

Drawing loadedAnyhow(const std::string& bytes) {
  return loaded(bytes, CFileDXFIPolicy::forAnyFile());
}

/// A drawing with these entities and a block B.
Drawing drawingOf(const std::string& entities) {
  return loadedAnyhow(
      savedPairs("0 SECTION; 2 BLOCKS; 0 BLOCK; 2 B; 70 0; 10 0; 20 0; 0 POINT; 10 0; "
                 "20 0; 0 ENDBLK; 0 ENDSEC; 0 SECTION; 2 ENTITIES; " +
                 entities + "; 0 ENDSEC; 0 EOF"));
}

/// The pairs after the first entity's kind, without handles, owners, classes of all entities,
/// layer.
std::string ownPairs(const std::string& bytes) {
  std::istringstream lines(section(bytes, "ENTITIES"));
  std::string code, value, pairs;
  for (bool isFirst = true; std::getline(lines, code) && std::getline(lines, value);
       isFirst = false) {
    code.erase(0, code.find_first_not_of(' '));
    if (value == "VIEWPORT") break;
    if (isFirst || code == "5" || code == "330" || code == "8" || value == "AcDbEntity") continue;
    pairs += (pairs.empty() ? "" : "; ") + code + " " + value;
  }
  return pairs;
}

/// The entities as R12 has them, without handles: those of sequence ends are not read.
std::string asR12(const CData& data) {
  std::istringstream lines(section(savedAnyhow(data, kSaveExchange), "ENTITIES"));
  std::string code, value, pairs;
  while (std::getline(lines, code) && std::getline(lines, value))
    if (code != "  5") pairs += code + "\n" + value + "\n";
  return pairs;
}

}  // namespace

TEST_F(ModernRecords, EntitiesAreWrittenInTheirNativeForm) {
  for (const Row& t : rows()) {
    const Drawing d = drawingOf(t.text("input"));
    EXPECT_EQ(ownPairs(savedAs(*d, versionOfYear(t.text("version")))), t.text("expected"));
  }
}

TEST_F(ModernNames, AreValidAndUnique) {
  for (const Row& t : rows()) {
    std::vector<vek0::detail::OwnName> own;
    for (const std::string& name : t.list("own")) own.push_back({zim::WString::fromUtf8(name)});
    std::vector<std::string> names;
    for (const zim::WString& name : vek0::detail::itemNames(own, {u"TAKEN"}, true, nullptr))
      names.push_back(name.toUtf8());
    EXPECT_EQ(names, t.list("expected"));
  }
  const std::vector<vek0::detail::OwnName> longNames(12, {zim::WString(std::u16string(300, u'x'))});
  const auto names = vek0::detail::itemNames(longNames, {}, false, nullptr);
  EXPECT_EQ(names.front().Length(), 255u);
  EXPECT_TRUE(names.back().view().ends_with(u"x11") && names.back().Length() == 255u);
}

// Reading and writing again reproduces every sample in every version, and the drawing is the same:
// R12 holds the geometry.
TEST_F(Modern, SamplesComeBackFromEveryVersion) {
  for (const auto& entry : std::filesystem::directory_iterator(samplePath())) {
    if (entry.path().extension() != ".dxf") continue;
    SCOPED_TRACE(entry.path().filename().string());
    std::ifstream in(entry.path(), std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), {});
    const Drawing d = loadedAnyhow(bytes);
    for (const DxfVersion version : kModern) {
      const std::string first = savedAs(*d, version);
      const Drawing again = loadedAnyhow(first);
      EXPECT_EQ(firstDifference(savedAs(*again, version), first), "") << nameOf(version);
      EXPECT_EQ(firstDifference(asR12(*again), asR12(*d)), "") << nameOf(version);
    }
  }
}

TEST_F(Modern, LossesDependOnTheVersion) {
  const Drawing d = drawingOf(
      "0 LINE; 420 1193046; 440 33554559; 10 0; 20 0; 11 1; 21 1; 0 XLINE; 39 1; 10 0; 20 0; "
      "11 1; 21 0; 31 0");
  d->getVars().setLineweightShown(true);
  const auto lossesIn = [&](DxfVersion version) {
    CFileReport report;
    savedAs(*d, version, &report);
    std::string codes;
    for (const auto& entry : report.entries())
      codes += std::string(textOf(entry.code)) + " " + entry.sample.toUtf8() + ", ";
    return codes;
  };
  EXPECT_EQ(lossesIn(DxfVersion::R2000),
            "color approximated , code dropped 440, code dropped 39, ");
  EXPECT_EQ(lossesIn(DxfVersion::R2004), "code dropped 39, ");
}

// Only versions from 2007 on write texts in UTF-8.
TEST_F(Modern, NamesAndTextsKeepTheirCharacters) {
  for (const DxfVersion version : kModern) {
    const Drawing d = newDrawing();
    const zim::WString name(u"W\u00E4nde \u0421\u0442\u0435\u043D\u044B \u58C1 \U0001F600");
    addLine(*d, addNewLayer(*d, name), 0);
    d->getEntTable().add(createEntText(
        *d, getLayer0(*d), getLtypeByLayer(*d), 256,
        TEXT_3D(textContext(name + u"^\\U+0041 \n\u0085 ", 1, 0), getStyleStandard(*d), 0, 0, 0, 0),
        0));
    const std::string bytes = savedAs(*d, version);
    EXPECT_EQ(contains(bytes, "\xE5\xA3\x81"), version >= DxfVersion::R2007);
    const Drawing again = loadedAnyhow(bytes);
    EXPECT_TRUE(getLayer(*again, name));
    CEnt* text = again->getEntTable().getEntityTbl().back();
    EXPECT_EQ(castText(text)->getText().getContext().getString(), name + u"^\\U+0041 \n\u0085 ");
  }
}

// Items begin with the name that their reference gets.
TEST_F(ModernNames, OfReferencesAreThoseOfTheirItems) {
  const Drawing d = loadedAnyhow(savedPairs(
      "0 SECTION; 2 TABLES; 0 TABLE; 2 LAYER; 70 2; 0 LAYER; 2 x/y|L; 70 48; 62 1; 6 CONTINUOUS; "
      "0 LAYER; 2 x:y|L; 70 48; 62 1; 6 CONTINUOUS; 0 ENDTAB; 0 ENDSEC; "
      "0 SECTION; 2 BLOCKS; 0 BLOCK; 2 x/y; 70 4; 10 0; 20 0; 1 a.dxf; 0 ENDBLK; "
      "0 BLOCK; 2 x:y; 70 4; 10 0; 20 0; 1 b.dxf; 0 ENDBLK; 0 ENDSEC; 0 EOF"));
  const std::string bytes = savedAs(*d, DxfVersion::R2000);
  for (const char* name : {"x_y", "x_y1", "x_y|L", "x_y1|L"})
    EXPECT_TRUE(contains(bytes, "\n  2\n" + std::string(name) + "\n")) << name;
}

// Before UTF-8, the code page has the characters of all names, if there is such a page.
TEST_F(ModernNames, DetermineTheCodePage) {
  for (const Row& t : rows()) {
    const Drawing d = newDrawing();
    addNewLayer(*d, t.wide("name"));
    const std::string bytes = savedAs(*d, DxfVersion::R2000);
    EXPECT_TRUE(contains(bytes, "\n" + t.text("bytes") + "\n"));
    EXPECT_TRUE(contains(bytes, "$DWGCODEPAGE\n  3\n" + t.text("page") + "\n"));
    EXPECT_TRUE(getLayer(*loadedAnyhow(bytes), t.wide("name")));
  }
}

TEST_F(Modern, RefusesWhatBelongsToR12AndWritesR12AsBefore) {
  const Drawing d = drawingOf("0 POINT; 10 0; 20 0");
  for (const unsigned flag : {kSaveFlatten, kSaveVisibleOnly, kSaveNoTables}) {
    CFileMemory file(u"out.dxf", IFile::kWrite);
    EXPECT_FALSE(SaveDXF(*d, file, CFileDXFOOptions{DxfVersion::R2018, flag, nullptr}));
    EXPECT_TRUE(file.bytes().empty());
  }
  CFileMemory file(u"out.dxf", IFile::kWrite);
  EXPECT_TRUE(SaveDXF(*d, file, CFileDXFOOptions{DxfVersion::R12, 0, nullptr}));
  EXPECT_EQ(file.bytes(), saved(*d, 0));
}
