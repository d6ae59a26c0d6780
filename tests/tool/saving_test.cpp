// Files that change while they are edited, and places that cannot be written.
#include "vek0host/saving.h"
#include "tooltest.h"

namespace {

using vek0::host::SaveForm;

class Saving : public Tool {
 protected:
  void SetUp() override {
    Tool::SetUp();
    write("in.dxf", kOneLine);
    write("out.dxf", "old");
  }

  // What another program does to a file, by its name in the tables.
  void disturb(const std::string& what, const fs::path& file) {
    std::string bytes = contents(file);
    if (what == "removed") fs::remove(file);
    if (what == "emptied") fs::resize_file(file, 0);
    if (what == "cut") fs::resize_file(file, bytes.size() - 1);
    if (what == "longer") std::ofstream(file, std::ios::app) << "\n";
    if (what == "a byte changed") {
      bytes[bytes.size() / 2] ^= 1;
      std::ofstream(file, std::ios::binary) << bytes;
    }
    if (what == "a folder") {
      fs::remove(file);
      fs::create_directory(file);
    }
  }
};

// A file that takes no more than some bytes.
class FullFile final : public IFile {
 public:
  explicit FullFile(long room) : IFile(u"full", kWrite), m_room(room) {}
  bool open() override { return m_isOpen = true; }
  void close() override { m_isOpen = false; }
  bool isOpened() override { return m_isOpen; }
  long read(zim::Char*, long) override { return -1; }
  long write(const zim::Char*, long) override { return -1; }
  bool readLn(zim::Char*, long) override { return false; }
  bool writeLn(const zim::Char*) override { return false; }
  bool writeBytes(const char*, long n) override { return (m_room -= n) >= 0; }
  bool fail() override { return m_room < 0; }

 private:
  long m_room;
  bool m_isOpen = false;
};

}  // namespace

TEST_F(Saving, SourcesThatChangeMeanwhileAreAnError) {
  for (const Row& t : rows())
    for (const bool isEdited : {false, true})
      for (const bool isInPlace : {false, true}) {
        SCOPED_TRACE(testing::Message() << (isEdited ? "edited " : "") << isInPlace);
        fs::remove_all(path("in.dxf"));
        write("in.dxf", kOneLine);
        std::string said, disturbed;
        vek0::host::Session session;
        session.onMessage = [&](const std::string& message, const std::string&) {
          said += message;
        };
        vek0::host::SaveOptions options;
        options.form = SaveForm::Kept;
        options.force = options.backup = true;
        const std::string in = path("in.dxf").string();
        const std::string out = isInPlace ? in : path("out.dxf").string();
        vek0::host::rewrite(in, out, options, session, [&](CData& data, const auto&) {
          if (isEdited) data.getEntTable().getEntityTbl().front()->setColor(5);
          disturb(t.text("source"), in);
          disturbed = contents(in);
          return true;
        });
        EXPECT_EQ(session.worst, vek0::host::kOutputFailed);
        EXPECT_NE(said.find("in.dxf' has changed since it was read"), std::string::npos) << said;
        EXPECT_EQ(contents(in), disturbed);
        EXPECT_EQ(fs::exists(in), t.text("source") != "removed");
        EXPECT_EQ(contents(path("out.dxf")), "old");
        EXPECT_FALSE(fs::exists(out + ".bak"));
        EXPECT_FALSE(leftovers());
      }
}

TEST_F(Saving, FullMediaAreAnErrorWherever) {
  CDXFSource source(std::make_unique<CFileMemory>(u"in.dxf", IFile::kRead, kOneLine));
  const auto data = vek0::host::newDrawing();
  ASSERT_EQ(source.load(*data, nullptr, {}).status, CFileDXFIResult::Done);
  for (const short color : {short{256}, short{5}}) {
    data->getEntTable().getEntityTbl().front()->setColor(color);
    CFileMemory whole(u"out.dxf", IFile::kWrite);
    ASSERT_EQ(source.save(*data, whole), CDXFSource::Outcome::Saved);
    const long size = static_cast<long>(whole.bytes().size());
    for (long room = size; room >= 0; room -= 9) {
      FullFile file(room);
      EXPECT_EQ(source.save(*data, file) == CDXFSource::Outcome::Saved, room == size) << room;
      EXPECT_FALSE(file.isOpened());
    }
  }
}

TEST_F(Saving, LinksAndPermissionsStay) {
  fs::permissions(path("in.dxf"), fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink("in.dxf", path("link.dxf"));
  fs::create_hard_link(path("in.dxf"), path("other.dxf"));
  ASSERT_EQ(run("edit -i --backup link.dxf --set-color 3").code, 0);
  EXPECT_TRUE(fs::is_symlink(path("link.dxf")));
  EXPECT_NE(contents(path("in.dxf")), kOneLine);
  EXPECT_EQ(fs::status(path("in.dxf")).permissions(),
            fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(contents(path("other.dxf")), kOneLine);
  EXPECT_EQ(contents(path("in.dxf.bak")), kOneLine);
  // The same file by another name is both source and output.
  ASSERT_EQ(run("edit -f link.dxf -o in.dxf --set-color 4").code, 0);
  ASSERT_EQ(run("edit -f other.dxf -o other.dxf").code, 0);
  EXPECT_EQ(contents(path("other.dxf")), kOneLine);
  EXPECT_FALSE(leftovers());
}
