#include "vek0core/drawingfile/drawingfile.h"

#include <gtest/gtest.h>
#include <filesystem>
#include <random>

#include "support/samples.h"
#include "vek0core/drawing/datafactory.h"

namespace fs = std::filesystem;

namespace {

class DrawingFile : public testing::Test {
 protected:
  void SetUp() override {
    fs::remove_all(m_folder);
    fs::create_directory(m_folder);
    drawing = std::move(openDrawing(vek0::test::samplePath("flange.dxf")).drawing);
    ASSERT_NE(drawing, nullptr);
  }
  void TearDown() override { fs::remove_all(m_folder); }

  std::string name(const char* file) const { return (m_folder / file).string(); }
  long files() const { return std::distance(fs::directory_iterator(m_folder), {}); }

  CDataPtr drawing;

 private:
  // Not by the number of the process, which is always the same in an emulator.
  const fs::path m_folder =
      fs::temp_directory_path() / ("vek0_drawingfile_" + std::to_string(std::random_device()()));
};

TEST_F(DrawingFile, WhatWasSavedOpensAgain) {
  const std::string longName = std::string(251, 'x') + ".dxf";
  for (const char* file : {"a.dxf", "gr\xF6\xDF.dxf", longName.c_str()}) {
    ASSERT_TRUE(saveDrawing(*drawing, name(file))) << file;
    const COpenedDrawing again = openDrawing(name(file));
    ASSERT_TRUE(again) << again.message().toUtf8();
    EXPECT_EQ(again.drawing->getEntTable().getEntityTbl().size(),
              drawing->getEntTable().getEntityTbl().size());
  }
  EXPECT_EQ(files(), 3);
}

#ifndef _WIN32
TEST_F(DrawingFile, LinksAndPermissionsStay) {
  ASSERT_TRUE(saveDrawing(*drawing, name("real.dxf")));
  fs::permissions(name("real.dxf"), fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink("real.dxf", name("link.dxf"));
  drawing.reset(CDataFactory().createData());
  ASSERT_TRUE(saveDrawing(*drawing, name("link.dxf")));
  EXPECT_TRUE(fs::is_symlink(name("link.dxf")));
  EXPECT_EQ(fs::status(name("real.dxf")).permissions(),
            fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_TRUE(openDrawing(name("real.dxf")).drawing->getEntTable().getEntityTbl().empty());
}
#endif

TEST_F(DrawingFile, FailureSaysSoAndLeavesNothing) {
  EXPECT_FALSE(saveDrawing(*drawing, name("none/a.dxf")));
  EXPECT_FALSE(saveDrawing(*drawing, name("")));
  EXPECT_EQ(files(), 0);
  const COpenedDrawing missing = openDrawing(name("missing.dxf"));
  EXPECT_FALSE(missing);
  EXPECT_EQ(missing.message(), u"The file cannot be opened.");
}

}  // namespace
