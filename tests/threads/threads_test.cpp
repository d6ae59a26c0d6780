// Different drawings may live in different threads: whatever they do at the same time gives what it
// gives alone, and nothing that they share is raced for. Meant for the thread sanitizer
// (./run-tests tsan).
#include <random>
#include <thread>

#include "draw/recorder.h"
#include "support/test.h"
#include "xref/referred.h"

namespace {

constexpr const char* kSamples[] = {
    "every_kind_r12.dxf", "hatches_ac1015.dxf", "room_ac1015.dxf", "site.dxf", "flange.dxf",
};
constexpr std::size_t kThreads = 4;

std::string bytesOf(const std::string& sample) {
  std::ostringstream bytes;
  bytes << std::ifstream(samplePath(sample), std::ios::binary).rdbuf();
  return bytes.str();
}

class Worker {
 public:
  explicit Worker(const std::string& bytes)
      : m_data(newDrawing()),
        m_source(std::make_unique<CFileMemory>(u"in.dxf", IFile::kRead, bytes)) {
    CFileDXFIOptions options;
    options.policy = CFileDXFIPolicy::forAnyFile();
    options.policy.wholeRecords = true;
    m_isLoaded = m_source.load(*m_data, nullptr, options).status == CFileDXFIResult::Done;
  }

  std::string results() {
    if (!m_isLoaded) return "not loaded";
    std::string all = drawn();
    CUndoStack undo(*m_data);
    edit(undo);
    all += drawn() + kept() + saved(DxfVersion::R12) + saved(DxfVersion::R2018);
    undo.undo();
    return all + kept();
  }

 private:
  std::string drawn() {
    CWndVpt window(1);
    window.resize(401, 301);
    window.set(drawnExtents(*m_data, CPOProjector()));
    CDrawIndex index(*m_data);
    Recorder recorder;
    index.draw(CPOProjector(), window, recorder);
    std::ostringstream out;
    for (const Thing& thing : recorder.things) {
      out << thing.kind << thing.layer << thing.string;
      for (const PNT_2D& p : thing.points) out << p;
    }
    return out.str();
  }

  void edit(CUndoStack& undo) {
    CEntMoveVisitor move(PNT_3D(1, 2, 0));
    CEntRotateXYVisitor turn = CEntRotateXYVisitor::byDegrees(PNT_3D(3, 4, 0), 30);
    undo.begin(u"edit");
    int i = 0;
    for (CEnt* ent : m_data->getEntTable().getEntityTbl()) {
      undo.keep(*ent);
      if (++i % 3 == 0)
        ent->setColor(3);
      else
        ent->accept(i % 3 == 1 ? static_cast<IEntVisitor&>(move) : turn);
    }
    undo.commit();
  }

  std::string kept() {
    CFileMemory same(u"same.dxf", IFile::kWrite), other(u"other.dxf", IFile::kWrite);
    CFileReport report;
    m_source.save(*m_data, same, &report);
    m_source.saveAs(*m_data, other, DxfVersion::R2000, &report);
    return same.bytes() + other.bytes();
  }

  std::string saved(DxfVersion version) {
    CFileMemory file(u"out.dxf", IFile::kWrite);
    CFileReport report;
    SaveDXF(*m_data, file, CFileDXFOOptions{version, kSaveExchange, &report});
    return file.bytes();
  }

  Drawing m_data;
  CDXFSource m_source;
  bool m_isLoaded = false;
};

std::string referencesResolved() {
  Sheet sheet = siteSheet();
  sheet.resolve();
  std::string all;
  for (const std::string& line : linesShown(sheet.data())) all += line;
  CUndoStack undo(sheet.data());
  bindXRef(sheet.data(), undo, *sheet.xref(u"HOUSE"));
  for (const std::string& line : linesShown(sheet.data())) all += line;
  return all;
}

std::vector<std::string> resultsFrom(const std::vector<std::string>& files, std::size_t first) {
  std::vector<std::string> results(files.size());
  for (std::size_t i = 0; i < files.size(); ++i) {
    const std::size_t file = (first + i) % files.size();
    results[file] = Worker(files[file]).results() + referencesResolved();
  }
  return results;
}

// What reading finds and what saving writes, with that many threads, and the report.
std::string copiedWith(int threads, const std::string& bytes) {
  CFileMemory in(u"in.dxf", IFile::kRead, bytes);
  CFileReport report;
  CFileDXFIOptions options{&report, CFileDXFIPolicy::forAnyFile()};
  options.threads = threads;
  const Drawing data = newDrawing();
  const CFileDXFIResult result = loadDXF(*data, in, nullptr, options);
  std::ostringstream all;
  all << result.status;
  for (const DxfVersion version : {DxfVersion::R12, DxfVersion::R2018}) {
    CFileMemory out(u"out.dxf", IFile::kWrite);
    SaveDXF(*data, out, CFileDXFOOptions{version, kSaveExchange, &report, threads});
    all << out.bytes();
  }
  for (const CFileReport::Entry& entry : report.entries())
    all << textOf(entry.code) << entry.firstLine << ' ' << entry.count << entry.sample.toUtf8();
  return all.str();
}

// A file large enough to be read ahead, with some damage.
std::string damagedFile(std::mt19937& random) {
  const std::string sample = bytesOf("every_kind_r12.dxf");
  const std::size_t start = sample.find("ENTITIES") + 9, end = sample.find("  0\nENDSEC", start);
  std::string text = sample.substr(0, start);
  while (text.size() < 2'500'000) {
    std::string entities = sample.substr(start, end - start);
    constexpr std::string_view damage("\n\n\r\0\x1A\n9,-", 9);
    const std::size_t at = random() % entities.size();
    if (random() % 8 == 0) entities.replace(at, random() % 3, 1, damage[random() % damage.size()]);
    text += entities;
  }
  return text + sample.substr(end);
}

}  // namespace

TEST(Threads, TwoReadAndSaveTheSameAsOne) {
  std::mt19937 random(20261124);
  for (int round = 0; round < 4; ++round) {
    const std::string file = damagedFile(random);
    EXPECT_TRUE(copiedWith(2, file) == copiedWith(1, file)) << round;
  }
}

TEST(Threads, DrawingsInDifferentThreadsAreIndependent) {
  std::vector<std::string> files;
  for (const char* sample : kSamples) files.push_back(bytesOf(sample));
  std::vector<std::string> results[kThreads];
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < kThreads; ++i)
    threads.emplace_back([&, i] { results[i] = resultsFrom(files, i); });
  for (std::thread& thread : threads) thread.join();
  const std::vector<std::string> alone = resultsFrom(files, 0);
  for (const auto& given : results) EXPECT_TRUE(given == alone);
  for (const std::string& result : alone) EXPECT_NE(result, "not loaded" + referencesResolved());
}
