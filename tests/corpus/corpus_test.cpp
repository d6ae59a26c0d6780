// Files of other programs: VEK0_CORPUS names a folder that holds them under dxf/.

#include "corpus/drawingchecks.h"
#include "support/modernlint.h"
#include "support/r12lint.h"
#include "support/test.h"

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> drawingsIn(const fs::path& folder) {
  std::vector<fs::path> paths;
  for (const auto& entry : fs::directory_iterator(folder))
    if (entry.path().extension() == ".dxf") paths.push_back(entry.path());
  std::sort(paths.begin(), paths.end());
  return paths;
}

std::vector<fs::path> corpus() {
  const char* folder = std::getenv("VEK0_CORPUS");
  return folder ? drawingsIn(fs::path(folder) / "dxf") : std::vector<fs::path>();
}

// The error kinds that files can cause.
bool isKnownKind(int kind) {
  constexpr int kKinds[] = {5, 6, 9, 10, 11, 13, 15, 16, 17, 18, 19, 20};
  return std::find(std::begin(kKinds), std::end(kKinds), kind) != std::end(kKinds);
}

long linesOf(const std::string& bytes) {
  return static_cast<long>(
      std::count_if(bytes.begin(), bytes.end(), [](char c) { return c == '\n' || c == '\r'; }));
}

// Removes the counts of linetype elements: the classic form counts elements that it omits.
std::string withoutCounts(const std::string& bytes) {
  const std::string before = "\n 73\n";
  const std::string after = "\n 40\n";
  std::string rest;
  std::size_t from = 0;
  for (std::size_t at; (at = bytes.find(before, from)) != std::string::npos;) {
    const std::size_t end = bytes.find_first_not_of("0123456789", at + before.size());
    const bool isCount = end != std::string::npos && bytes.compare(end, after.size(), after) == 0;
    rest.append(bytes, from, (isCount ? at : at + before.size()) - from);
    from = isCount ? end : at + before.size();
  }
  return rest.append(bytes, from, std::string::npos);
}

std::size_t entries(const std::string& bytes) {
  std::size_t count = 0;
  for (const std::string head : {"\nLAYER\n  2\n", "\nLTYPE\n  2\n"})
    for (std::size_t at = 0; (at = bytes.find(head, at)) != std::string::npos; ++at) ++count;
  return count;
}

// The classic form may give several items the same name, which readers treat as one item. Strict
// reading skips filled faces, and the files are too long for a line-by-line comparison.
void expectSettled(const CData& data, unsigned flags) {
  const std::string first = save(data, flags);
  const LoadedFile again = load(first, CFileDXFIPolicy::forAnyFile());
  const std::string second = save(*again.drawing, flags);
  if (second == first) return;
  const bool isMerged = flags == 0 && entries(second) < entries(first);
  EXPECT_TRUE(isMerged || (flags == 0 && withoutCounts(second) == withoutCounts(first)))
      << "load, save must give the same file again, flags " << flags;
}

std::string saveAs(const CData& data, DxfVersion version) {
  CFileMemory out(u"out.dxf", 2);
  const bool isSaved = SaveDXF(data, out, CFileDXFOOptions{version, kSaveExchange, nullptr});
  return isSaved ? out.bytes() : std::string();
}

// Some angles differ in their last digits once: those that no number of degrees yields.
void expectModern(const CData& data, DxfVersion version) {
  const std::string first = saveAs(data, version);
  for (const std::string& complaint : lintModern(first)) ADD_FAILURE() << complaint;
  const LoadedFile again = load(first, CFileDXFIPolicy::forAnyFile());
  const std::string second = saveAs(*again.drawing, version);
  EXPECT_EQ(linesOf(second), linesOf(first)) << nameOf(version);
  const LoadedFile settled = load(second, CFileDXFIPolicy::forAnyFile());
  EXPECT_TRUE(saveAs(*settled.drawing, version) == second) << nameOf(version);
}

// Returns the file as saved.
std::string expectRoundTrip(CData& data, unsigned flags) {
  std::string first = save(data, flags);
  EXPECT_FALSE(first.empty());
  EXPECT_TRUE(save(data, flags) == first) << "equal input must give equal bytes";
  LoadedFile copy = load(first);
  EXPECT_FALSE(copy.error.HasAnError())
      << copy.error.GetFullMessage().toUtf8() << " in our own file, flags " << flags;
  EXPECT_EQ(inconsistency(*copy.drawing), "");
  return first;
}

struct Tally {
  std::map<short, long> kinds;
  RECT_3D extents;

  Tally() { extents.initRegion(); }
  void add(CEnt& ent) {
    ++kinds[ent.getType()];
    if (!ent.getLayer()->isFrozen()) extents.updateRegion(ent.getBdry());
  }
  void add(const CData& data) {
    for (CEnt* ent : data.getEntTable().getEntityTbl()) add(*ent);
  }
};

// Entities that pass are those of the drawing, unless definitions follow them; then returns true.
bool expectPassing(const std::string& bytes) {
  Tally passed, held;
  CFileMemory file(u"in.dxf", IFile::kRead, bytes);
  CFileDXFIOptions options{nullptr, CFileDXFIPolicy::forAnyFile()};
  options.onPassing = [&](CEnt& ent) { passed.add(ent); };
  const CDataPtr rest(CDataFactory().createData());
  const CFileDXFIResult result = loadDXF(*rest, file, nullptr, options);
  if (result.isOutdated) return true;
  passed.add(*rest);
  held.add(*load(bytes, options.policy).drawing);
  EXPECT_EQ(passed.kinds, held.kinds);
  EXPECT_TRUE(passed.extents.min == held.extents.min && passed.extents.max == held.extents.max);
  return false;
}

// The sections in every rotation of their order.
std::vector<std::string> rotationsOf(const std::string& bytes) {
  const std::string end = "  0\nEOF\n";
  const std::string sections = bytes.substr(0, bytes.rfind(end));
  std::vector<std::string> texts;
  for (std::size_t at = 0; (at = sections.find("  0\nSECTION\n", at)) != std::string::npos; ++at)
    texts.push_back(sections.substr(at) + sections.substr(0, at) + end);
  return texts;
}

void checkFile(const fs::path& path) {
  SCOPED_TRACE(path.filename().string());
  const std::string bytes = readFile(path.string());
  const LoadedFile tolerant = load(bytes, CFileDXFIPolicy::forAnyFile());
  if (!tolerant.error.HasAnError())
    for (const unsigned flags : {0u, kSaveExchange + 0u}) expectSettled(*tolerant.drawing, flags);
  if (!tolerant.error.HasAnError()) expectPassing(bytes);
  const auto version = bytes.size() % 2 ? DxfVersion::R2000 : DxfVersion::R2018;
  if (!tolerant.error.HasAnError()) expectModern(*tolerant.drawing, version);
  LoadedFile loaded = load(bytes);
  EXPECT_EQ(inconsistency(*loaded.drawing), "");
  if (loaded.error.HasAnError()) {
    EXPECT_TRUE(isKnownKind(loaded.error.GetErrorType())) << loaded.error.GetErrorType();
    EXPECT_GT(loaded.error.GetErrorLine(), 0);
    EXPECT_LE(loaded.error.GetErrorLine(), linesOf(bytes) + 1);
    return;
  }
  expectRoundTrip(*loaded.drawing, 0);
  const std::string exchange = expectRoundTrip(*loaded.drawing, kSaveExchange);
  for (const std::string& complaint : lintR12(exchange, true)) ADD_FAILURE() << complaint;
}

}  // namespace

// Every 16th file, so that processors share the work.
constexpr std::size_t kShares = 16;
class Corpus : public testing::TestWithParam<std::size_t> {};

TEST_P(Corpus, EveryFileGivesAConsistentDrawingAndARoundTripOrAnError) {
  const auto files = corpus();
  if (files.empty()) GTEST_SKIP() << "VEK0_CORPUS is not set";
  for (std::size_t i = GetParam(); i < files.size(); i += kShares) checkFile(files[i]);
}

INSTANTIATE_TEST_SUITE_P(Share, Corpus, testing::Range(std::size_t{0}, kShares));

TEST(Samples, LoadAndGoRound) {
  const auto files = drawingsIn(vek0::test::samplePath());
  ASSERT_GE(files.size(), 3u);
  for (const fs::path& path : files) {
    SCOPED_TRACE(path.filename().string());
    const LoadedFile loaded = load(readFile(path.string()));
    EXPECT_FALSE(loaded.error.HasAnError()) << loaded.error.GetFullMessage().toUtf8();
    checkFile(path);
  }
}

TEST(Samples, PassInEveryOrderOfTheirSections) {
  std::size_t outdated = 0, all = 0;
  for (const fs::path& path : drawingsIn(vek0::test::samplePath())) {
    SCOPED_TRACE(path.filename().string());
    for (const std::string& text : rotationsOf(readFile(path.string()))) {
      outdated += expectPassing(text) ? 1 : 0;
      ++all;
    }
  }
  EXPECT_GE(outdated, 8u);
  EXPECT_GE(all - outdated, 6u);
}
