#include "draw/recorder.h"
#include "memory/trial.h"
#include "support/test.h"

namespace {

// Also releases the fonts and colors of the process, so that they do not count as leaks.
class CreateTrial final : public Trial {
 public:
  ~CreateTrial() override {
    m_data.reset();
    shutdownCore();
  }
  bool run() override {
    m_data = newDrawing();
    return m_data != nullptr;
  }
  std::string look() override { return m_data ? lookOf(*m_data) : "nothing"; }

 private:
  Drawing m_data;
};

std::string bytesOf(const std::string& sample) {
  std::ostringstream bytes;
  bytes << std::ifstream(samplePath(sample), std::ios::binary).rdbuf();
  return bytes.str();
}

class LoadTrial final : public DrawingTrial {
 public:
  explicit LoadTrial(const std::string& bytes)
      : DrawingTrial(newDrawing()), m_file(u"in.dxf", IFile::kRead, bytes) {
    m_options.policy = CFileDXFIPolicy::forAnyFile();
    m_options.report = &m_report;
  }
  bool run() override {
    CFileDXFIError error;
    const bool done = loadDXF(*m_data, m_file, &error, m_options).status == CFileDXFIResult::Done;
    EXPECT_NE(done, error.GetErrorType() == CFileDXFIError::GeneralError);
    EXPECT_FALSE(m_file.isOpened());
    return done;
  }

 private:
  CFileMemory m_file;
  CFileReport m_report;
  CFileDXFIOptions m_options;
};

class CloneTrial final : public DrawingTrial {
 public:
  using DrawingTrial::DrawingTrial;
  bool run() override {
    m_copy.reset(cloneData(*m_data));
    return m_copy != nullptr;
  }
  std::string look() override { return lookOf(*m_data) + (m_copy ? lookOf(*m_copy) : ""); }

 private:
  Drawing m_copy;
};

class SaveTrial final : public DrawingTrial {
 public:
  SaveTrial(Drawing data, DxfVersion version, unsigned flags)
      : DrawingTrial(std::move(data)), m_version(version), m_flags(flags) {}
  bool run() override {
    CFileReport report;
    m_isSaved = SaveDXF(*m_data, m_file, CFileDXFOOptions{m_version, m_flags, &report});
    EXPECT_FALSE(m_file.isOpened());
    return m_isSaved;
  }
  std::string look() override { return lookOf(*m_data) + (m_isSaved ? m_file.bytes() : ""); }

 private:
  CFileMemory m_file{u"out.dxf", IFile::kWrite};
  DxfVersion m_version;
  unsigned m_flags;
  bool m_isSaved = false;
};

class DrawTrial final : public DrawingTrial {
 public:
  DrawTrial(Drawing data, bool hasIndex) : DrawingTrial(std::move(data)) {
    m_window.resize(401, 301);
    m_window.set(drawnExtents(*m_data, CPOProjector()));
    if (hasIndex) m_index = std::make_unique<CDrawIndex>(*m_data);
  }
  bool run() override {
    m_emitted = 0;
    Recorder recorder;
    const DRAW_RESULT result = m_index ? m_index->draw(CPOProjector(), m_window, recorder)
                                       : drawData(*m_data, CPOProjector(), m_window, recorder);
    m_emitted = result.emitted;
    return true;
  }
  std::string look() override { return lookOf(*m_data) + std::to_string(m_emitted); }

 private:
  CWndVpt m_window{1};
  std::unique_ptr<CDrawIndex> m_index;
  std::size_t m_emitted = 0;
};

}  // namespace

TEST(OutOfMemory, NoDrawingIsMadeOrAWholeOne) {
  shutdownCore();
  failEachAllocation("create", [] { return std::make_unique<CreateTrial>(); });
}

TEST(OutOfMemory, LoadingLeavesANewDrawing) {
  for (const char* sample : kSamples)
    failEachAllocation(sample,
                       [bytes = bytesOf(sample)] { return std::make_unique<LoadTrial>(bytes); });
}

TEST(OutOfMemory, CloningAndSavingChangeNothing) {
  for (const char* sample : kSamples) {
    failEachAllocation(std::string("clone ") + sample,
                       [=] { return std::make_unique<CloneTrial>(loadedSample(sample)); });
    for (const unsigned flags : {0u, kSaveExchange})
      failEachAllocation(std::string("save ") + sample, [=] {
        return std::make_unique<SaveTrial>(loadedSample(sample), DxfVersion::R12, flags);
      });
    failEachAllocation(std::string("save as 2018 ") + sample, [=] {
      return std::make_unique<SaveTrial>(loadedSample(sample), DxfVersion::R2018, kSaveExchange);
    });
  }
}

TEST(OutOfMemory, DrawingChangesNothing) {
  for (const char* sample : kSamples)
    for (const bool hasIndex : {false, true})
      failEachAllocation(std::string("draw ") + sample, [=] {
        return std::make_unique<DrawTrial>(loadedSample(sample), hasIndex);
      });
}
