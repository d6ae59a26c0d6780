#include "support/test.h"
#include "zim0lang/stringloader.h"

namespace {

using Error = CFileDXFIError;

// Texts that name their id, so that a test sees which one was requested.
class IdTexts : public zim::CStringLoader {
 public:
  IdTexts() : m_before(setLoader(this)) {}
  ~IdTexts() override { setLoader(m_before); }
  bool load(long id, zim::WString& text) override {
    text = zim::WString::fromUtf8(std::to_string(id));
    return true;
  }

 private:
  zim::CStringLoader* m_before;
};

TEST(DxfError, EveryValueHasItsMessage) {
  const IdTexts texts;
  for (const Row& t : rows()) {
    Error error;
    error.SetError(static_cast<Error::TDXFErrors>(t.whole("kind")));
    EXPECT_EQ(error.GetErrorMessage().toUtf8(), std::to_string(t.whole("id")))
        << "kind " << t.whole("kind");
  }
}

TEST(DxfError, TheLastErrorCountsAndTheRestStays) {
  Error error;
  EXPECT_FALSE(error.HasAnError());
  error.SetErrorLine(12);
  error.SetErrorExtraParam(2, 64);
  error.SetFileName(u"a.dxf");
  error.SetError(Error::OutOfRange);
  error.SetError(Error::EntityNotBuilt);
  const Error copy = error;
  EXPECT_EQ(copy.GetErrorType(), 16);
  EXPECT_EQ(copy.GetErrorLine(), 12);
  EXPECT_EQ(copy.GetErrorParam1(), 2);
  EXPECT_EQ(copy.GetErrorParam2(), 64);
  EXPECT_EQ(copy.GetFileName(), zim::WString(u"a.dxf"));
  error.SetError(Error::NoError);
  EXPECT_FALSE(error.HasAnError());
}

TEST(DxfError, FullMessageSaysWhereAndWhat) {
  for (const Row& t : rows()) {
    Error error;
    error.SetError(static_cast<Error::TDXFErrors>(t.whole("kind")));
    error.SetErrorLine(t.whole<long>("line"));
    error.SetErrorExtraParam(t.whole<long>("param1"), t.whole<long>("param2"));
    EXPECT_EQ(error.GetFullMessage().toUtf8(), t.text("text")) << t.text("name");
  }
}

TEST(DxfError, KindsWithoutATextStillSaySomethingOfTheirOwn) {
  for (const Error::TDXFErrors kind : {Error::EmptyGroupCode, Error::XRefNotFound,
                                       Error::XRefNotCreated, Error::InconsistentRecord}) {
    Error error;
    error.SetError(kind);
    EXPECT_NE(error.GetFullMessage(), error.GetErrorMessage()) << kind;
  }
}

}  // namespace
