// Any write may fail, and the caller must learn of it.
#include "dxf/out/saveddrawing.h"
#include "support/test.h"

namespace {

/// A file in memory whose n-th write fails; counts writes and closings.
class FailingFile : public CFileMemory {
 public:
  explicit FailingFile(long failAt) : CFileMemory(u"out", kWrite), m_failAt(failAt) {}

  void close() override {
    if (isOpened()) ++closings;
    CFileMemory::close();
  }
  bool writeLn(const zim::Char* text) override { return take() && CFileMemory::writeLn(text); }
  bool writeBytes(const char* text, long n) override {
    return take() && CFileMemory::writeBytes(text, n);
  }

  long writes = 0;
  int closings = 0;

 private:
  bool take() { return ++writes != m_failAt; }
  long m_failAt;
};

/// Reports success for every write, and the failure only through `fail`.
class SilentlyFailingFile : public FailingFile {
 public:
  explicit SilentlyFailingFile(long failAt) : FailingFile(-1), m_failAt(failAt) {}
  bool fail() override { return writes >= m_failAt; }

 private:
  long m_failAt;
};

class ClosedFile : public FailingFile {
 public:
  ClosedFile() : FailingFile(-1) {}
  bool open() override { return false; }
};

/// Each section exceeds the buffer.
Drawing largeDrawing() {
  Drawing d = newDrawing();
  CBlock* block = d->getBlockFactory().create(u"B", 0);
  for (long i = 1; i <= 1500; ++i) {
    addNewLayer(*d, zim::WString::fromUtf8("layer" + std::to_string(i)));
    block->add(createEntPnt(*d, getLayer0(*d), getLtypeByLayer(*d), 256, PNT_3D(0, 0, 0), i));
    addLine(*d, getLayer0(*d), 10000 + i);
  }
  d->getBlockTable().add(block);
  return d;
}

long writesOf(const CData& data, unsigned flags) {
  FailingFile whole(-1);
  EXPECT_TRUE(SaveDXF(data, whole, flags));
  return whole.writes;
}

}  // namespace

TEST(SaveFailure, EveryFailedWriteIsReported) {
  const Drawing d = largeDrawing();
  for (const unsigned flags : {0u, kSaveExchange | kSaveNoTables}) {
    const long writes = writesOf(*d, flags);
    ASSERT_GE(writes, 5);
    for (long n = 1; n <= writes; ++n) {
      SCOPED_TRACE(testing::Message() << "write " << n << " of " << writes);
      FailingFile file(n);
      EXPECT_FALSE(SaveDXF(*d, file, flags));
      EXPECT_EQ(file.writes, n) << "nothing may be written behind a gap";
      EXPECT_EQ(file.closings, 1);
    }
  }
}

TEST(SaveFailure, AFileThatTellsOnlyWhenAskedIsAsked) {
  const Drawing d = largeDrawing();
  const long writes = writesOf(*d, 0);
  for (long n = 1; n <= writes; ++n) {
    SCOPED_TRACE(testing::Message() << "write " << n << " of " << writes);
    SilentlyFailingFile file(n);
    EXPECT_FALSE(SaveDXF(*d, file, 0));
    EXPECT_EQ(file.closings, 1);
  }
}

TEST(SaveFailure, AFileThatDoesNotOpenIsLeftAlone) {
  ClosedFile file;
  EXPECT_FALSE(SaveDXF(*newDrawing(), file, 0));
  EXPECT_EQ(file.writes, 0);
  EXPECT_EQ(file.closings, 0);
}

TEST(SaveFailure, TheDrawingSurvives) {
  const Drawing d = largeDrawing();
  const std::string before = saved(*d, 0);
  FailingFile file(3);
  EXPECT_FALSE(SaveDXF(*d, file, 0));
  EXPECT_EQ(firstDifference(saved(*d, 0), before), "");
}
