#include "vek0core/dxf/in/filedxfierror.h"

#include <gtest/gtest.h>

#include <string>

#include "zim0lang/stringloader.h"

namespace {

using Error = CFileDXFIError;

// Texts that name their id, so that a test sees which one was asked for.
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
  const struct {
    int kind;
    int id;
  } cases[] = {
      {0, 10000},  {1, 10000},  {2, 10002},  {3, 10001},  {4, 10009},  {5, 10000},
      {6, 10005},  {7, 10004},  {8, 10003},  {9, 10023},  {10, 10000}, {11, 10000},
      {12, 10000}, {13, 10006}, {14, 10007}, {15, 10008}, {16, 10020}, {17, 10021},
      {18, 10022}, {19, 10034}, {20, 10000}, {21, 10000},
  };
  const IdTexts texts;
  for (const auto& t : cases) {
    Error error;
    error.SetError(static_cast<Error::TDXFErrors>(t.kind));
    EXPECT_EQ(error.GetErrorMessage().toUtf8(), std::to_string(t.id)) << "kind " << t.kind;
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
  const struct {
    const char* name;
    int kind;
    long line, param1, param2;
    const char* text;
  } cases[] = {
      {"text of the string library", 6, 12, 0, 0, "Line 12: A numeric value is missing."},
      {"text of its own", 5, 3, 0, 0, "Line 3: A group code is missing."},
      {"no line known", 5, 0, 0, 0, "A group code is missing."},
      {"parameters", 16, 40, 2, -64, "Line 40: An entity lacks data that it needs. (2, -64)"},
      {"no error", 0, 40, 2, 64, ""},
  };
  for (const auto& t : cases) {
    Error error;
    error.SetError(static_cast<Error::TDXFErrors>(t.kind));
    error.SetErrorLine(t.line);
    error.SetErrorExtraParam(t.param1, t.param2);
    EXPECT_EQ(error.GetFullMessage().toUtf8(), t.text) << t.name;
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
