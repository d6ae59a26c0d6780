// Drawings that are loaded with their source and saved as it, with and without an edit.
#include "memory/trial.h"
#include "support/test.h"

namespace {

std::string bytesOf(const std::string& sample) {
  std::ostringstream bytes;
  bytes << std::ifstream(samplePath(sample), std::ios::binary).rdbuf();
  return bytes.str();
}

class KeptTrial : public DrawingTrial {
 public:
  explicit KeptTrial(const std::string& bytes)
      : DrawingTrial(Drawing(CDataFactory().createData(std::make_unique<CHandleManager>()))),
        m_source(std::make_unique<CFileMemory>(u"in.dxf", IFile::kRead, bytes)) {}

 protected:
  bool load() {
    CFileDXFIOptions options;
    options.policy = CFileDXFIPolicy::forAnyFile();
    options.policy.wholeRecords = true;
    CFileDXFIError error;
    const bool done = m_source.load(*m_data, &error, options).status == CFileDXFIResult::Done;
    EXPECT_NE(done, error.GetErrorType() == CFileDXFIError::GeneralError);
    return done;
  }

  CDXFSource m_source;
};

// What was loaded is the source only if loading has succeeded.
class LoadKeptTrial final : public KeptTrial {
 public:
  using KeptTrial::KeptTrial;
  bool run() override {
    const bool done = load();
    m_isKept = done;
    return done;
  }
  std::string look() override {
    CFileMemory file(u"out.dxf", IFile::kWrite);
    const bool isSaved = m_source.save(*m_data, file) == CDXFSource::Outcome::Saved;
    EXPECT_EQ(isSaved, m_isKept);
    return lookOf(*m_data) + file.bytes();
  }

 private:
  bool m_isKept = false;
};

class SaveKeptTrial final : public KeptTrial {
 public:
  SaveKeptTrial(const std::string& bytes, bool isEdited) : KeptTrial(bytes) {
    EXPECT_TRUE(load());
    if (isEdited) edit();
  }
  bool run() override {
    CFileReport report;
    const CDXFSource::Outcome outcome = m_source.save(*m_data, m_file, &report);
    EXPECT_FALSE(m_file.isOpened());
    m_isSaved = outcome == CDXFSource::Outcome::Saved;
    EXPECT_TRUE(m_isSaved || outcome == CDXFSource::Outcome::NotWritten);
    return m_isSaved;
  }
  std::string look() override { return lookOf(*m_data) + (m_isSaved ? m_file.bytes() : ""); }

 private:
  // Some of everything: moved, turned, colored, removed and added.
  void edit() {
    CEntMoveVisitor move(PNT_3D(1, 2, 0));
    CEntRotateXYVisitor turn = CEntRotateXYVisitor::byDegrees(PNT_3D(3, 4, 0), 30);
    CEntTable& table = m_data->getEntTable();
    const std::vector<CEnt*> all(table.getEntityTbl().begin(), table.getEntityTbl().end());
    for (std::size_t i = 0; i < all.size(); ++i) {
      if (i % 4 == 0) all[i]->accept(move);
      if (i % 4 == 1) all[i]->accept(turn);
      if (i % 4 == 2) all[i]->setColor(3);
      if (i % 4 == 3) {
        table.remove(all[i]);
        delete all[i];
      }
    }
    CLayer* const layer = vek0::test::addedLayer(*m_data, u"FRESH");
    table.add(createEntLine(*m_data, layer, &m_data->getLtypeByLayer(), 256,
                            LINE_3D(0, 0, 0, 10, 5, 0), 0));
  }

  CFileMemory m_file{u"out.dxf", IFile::kWrite};
  bool m_isSaved = false;
};

}  // namespace

TEST(OutOfMemory, SourcesAreLoadedAndSavedOrNothingIs) {
  for (const char* sample : kSamples) {
    const std::string bytes = bytesOf(sample);
    failEachAllocation(std::string("load with source ") + sample,
                       [=] { return std::make_unique<LoadKeptTrial>(bytes); });
    for (const bool isEdited : {false, true})
      failEachAllocation(std::string(isEdited ? "save edited " : "save ") + sample,
                         [=] { return std::make_unique<SaveKeptTrial>(bytes, isEdited); });
  }
}
