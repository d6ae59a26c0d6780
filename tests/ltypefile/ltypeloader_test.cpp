#include <locale>

#include "ltypefile/loading.h"
#include "support/test.h"

using vek0::detail::kPi;

namespace {

std::string patternOf(const std::string& line) {
  const Loading loaded("*N,D\n" + line + "\n");
  return loaded.loader.GetNoLtype() == 1 ? pattern(loaded[0]) : "not one linetype";
}

// Returns its lines; every further read yields an empty line and a failure.
class BrokenFile : public CFileMemory {
 public:
  explicit BrokenFile(const std::string& bytes) : CFileMemory(u"broken.lin", kRead, bytes) {}
  bool readLn(zim::Char* buf, long n) override {
    if (CFileMemory::readLn(buf, n)) return true;
    m_broken = true;
    buf[0] = 0;
    return true;
  }
  bool fail() override { return m_broken; }

 private:
  bool m_broken = false;
};

class Comma : public std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
};

class FullFile : public CFileMemory {
 public:
  FullFile() : CFileMemory(u"full.lin", kWrite) {}
  bool writeLn(const zim::Char*) override { return false; }
};

}  // namespace

TEST(LtypeLoader, Files) {
  for (const Row& t : rows()) {
    const Loading loaded(t.text("bytes"));
    std::string names;
    for (int i = 0; i < loaded.loader.GetNoLtype(); ++i) {
      if (i > 0) names += ' ';
      names += loaded[i].getName().toUtf8() + '=' + loaded[i].getDesc().toUtf8();
      EXPECT_EQ(loaded[i].getFlags(), 0);
    }
    EXPECT_EQ(names, t.text("names"));
    EXPECT_EQ(loaded.loader.GetStatus(), CLtypeLoader::Done);
  }
}

TEST(LtypeLoader, Patterns) {
  const std::string plain = "/1.0/0.0/0.0/0.0";  // a text without parameters
  const Definitions names{{"plain", plain}};
  for (const Row& t : rowsWith(names))
    EXPECT_EQ(patternOf(t.text("line")), t.text("elements")) << t.text("name");
}

TEST(LtypeLoader, RotationsLieWithinOneTurn) {
  for (const Row& t : rows()) {
    const Loading loaded("*N,\nA,[\"a\",ST,R=" + t.text("degrees") + "]\n");
    const double angle = loaded[0][0]->GetText()->getContext().getRotate();
    EXPECT_GE(angle, 0);
    EXPECT_LT(angle, 2 * kPi);
    if (t.real("radians") < 0) continue;
    EXPECT_NEAR(std::remainder(angle - t.real("radians"), 2 * kPi), 0, 1e-9);
  }
}

TEST(LtypeLoader, AnUnknownStyleIsTheNotifiersBusiness) {
  const std::string bytes = "*N,\nA,[\"a\",standard],[\"b\",other],[\"c\",OTHER],[\"d\",]\n";
  Loading asked(bytes);
  EXPECT_EQ(asked.maker.calls, 1) << "the second time the table knows it, the empty name is none";
  EXPECT_EQ(asked[0][0]->GetText()->getStyle(), asked.styles.getStyleStandard());
  EXPECT_EQ(asked[0][2]->GetText()->getStyle()->getName(), u"other");
  EXPECT_TRUE(asked.loader.GetReport().empty());

  asked.loader.SetNotifier(nullptr);
  asked.load("");  // releases the linetypes, so that nothing refers to the styles
  asked.styles.clearAll();
  asked.load(bytes);
  EXPECT_EQ(pattern(asked[0]),
            "a/none/1.0/0.0/0.0/0.0 b/none/1.0/0.0/0.0/0.0 c/none/1.0/0.0/0.0/0.0 "
            "d/none/1.0/0.0/0.0/0.0");
  EXPECT_EQ(asked.loader.GetReport().count("unknown-style"), 3);
  EXPECT_NE(asked.save().find("[\"a\",,S=1.000000,"), std::string::npos);
}

TEST(LtypeLoader, TheReportNamesWhatWasNotTaken) {
  for (const Row& t : rows()) {
    SCOPED_TRACE(t.text("code"));
    const Loading loaded(";;\n*N,\n" + t.text("line") + "\n");
    const CFileReport& report = loaded.loader.GetReport();
    ASSERT_FALSE(report.empty());
    EXPECT_EQ(textOf(report.entries()[0].code), t.text("code"));
    EXPECT_EQ(report.entries()[0].firstLine, 3);
    EXPECT_EQ(report.entries()[0].sample, t.wide("sample"));
  }
}

TEST(LtypeLoader, WritesThePlainForm) {
  Loading loaded("*N\n1,-.25,0,[\"x\",ST,s=.1,r=-90,y=-.05]\n");
  EXPECT_EQ(loaded.save(),
            "*N,\nA,1.0,-0.25,0.0,[\"x\",ST,S=0.100000,R=270.000000,X=0.000000,Y=-0.050000]\n");
  EXPECT_TRUE(loaded.loader.GetReport().empty());
  EXPECT_EQ(loaded.loader.GetStatus(), CLtypeLoader::Done);
}

TEST(LtypeLoader, WhatTheFormatCannotHoldIsReplacedAndReported) {
  Loading made;
  CLtypeComplexDashSeq dashes;
  CStyle* const style = made.maker.Notify(u"a,b]");
  dashes.AddDashText(TEXT_3D(u"1\"", style, 1e-9, 0, 0, 1, 0, 1, 0, 0));
  dashes.AddDashDouble(std::nan(""));
  made.loader.GetTable().add(made.factory.create(u"p,q", u"r,s", dashes, 0));
  EXPECT_EQ(made.save(),
            "*p_q,r,s\nA,[\"1''\",a_b_,S=1.000000,R=0.000000,X=0.000000,Y=0.000000],0.0\n");
  const CFileReport& report = made.loader.GetReport();
  EXPECT_EQ(report.count("replaced-separator"), 2);
  EXPECT_EQ(report.count("replaced-quote"), 1);
  EXPECT_EQ(report.count("rounded-number"), 1);
  EXPECT_EQ(report.count("number-range"), 1);
}

// Any names and texts, including control characters, escapes, and blanks at the ends, with dashes
// of any length: a saved file loads as the same.
TEST(LtypeLoader, LoadUndoesSave) {
  std::mt19937 engine(3);
  const std::u16string units = u"aB \t\n\r\\U+0041;*[]'^%\x1A\x85\u00E9\u00C3\u20AC\u4E2D";
  const auto below = [&engine](std::size_t n) { return static_cast<std::size_t>(engine() % n); };
  const auto text = [&] {
    std::u16string out;
    for (std::size_t n = below(9); n > 0; --n)
      out += below(6) == 0 ? std::u16string(u"\\U+0041") : units.substr(below(units.size()), 1);
    return zim::WString(std::u16string_view(out));
  };
  const auto name = [&] {
    std::u16string out(text().view());
    std::erase(out, u']');
    return zim::WString(std::u16string_view(out));
  };
  for (int round = 0; round < 300; ++round) {
    Loading made;
    CLtypeComplexDashSeq dashes;
    for (std::size_t n = below(8); n > 0; --n) {
      const double value = std::ldexp(static_cast<double>(engine()) - 2e9, 20 - int(below(80)));
      if (below(3) > 0) {
        dashes.AddDashDouble(value);
        continue;
      }
      const zim::WString styleName = name();
      CStyle* style = made.styles.get(styleName);
      if (!style && !styleName.empty()) style = made.maker.Notify(styleName);
      dashes.AddDashText(TEXT_3D(text(), style, -0.25, std::round(value), 0, 0.5, 0, 1,
                                 0.01745329251994 * double(below(360)), 0));
    }
    made.loader.GetTable().add(made.factory.create(name(), text(), dashes, 0));
    const std::string bytes = made.save();
    ASSERT_TRUE(made.loader.GetReport().empty()) << bytes;
    CLtypeLoader again(made.styles, made.factory);
    CFileMemory file(u"again.lin", IFile::kRead, bytes);
    again.Load(file);
    ASSERT_EQ(again.GetNoLtype(), 1) << bytes;
    EXPECT_EQ(again.GetLtypeNo(0)->getName(), made[0].getName()) << bytes;
    EXPECT_EQ(again.GetLtypeNo(0)->getDesc(), made[0].getDesc()) << bytes;
    EXPECT_EQ(again.GetLtypeNo(0)->GetLtypeComplexDashSeq(), dashes) << bytes;
  }
}

TEST(LtypeLoader, LinesMayBeOfAnyLength) {
  // Around the size of the buffer in which a line is assembled, and far beyond it.
  for (const std::size_t length : {8189u, 8190u, 8191u, 8192u, 8193u, 16382u, 1000000u}) {
    for (const char* end : {"", "\n", "\r\n"}) {
      const std::string line = "A," + std::string(length - 3, ' ') + "1" + end;
      EXPECT_EQ(patternOf(line), "1.0") << length;
    }
  }
  std::string many = "A";
  for (int i = 0; i < 20000; ++i) many += ",[\"a\",ST],1,[";
  const Loading loaded("*N,\n" + many + "\n*M,\n1\n");
  EXPECT_EQ(loaded.loader.GetNoLtype(), 2);
}

TEST(LtypeLoader, SurvivesAnyBytes) {
  std::mt19937 engine(5);
  const std::string seed = ";;c\n*N,d\nA,1,-.5,[\"HW\",ST,S=.1,R=-90,X=1,Y=2],-1\n*M\nA,0,-1\n";
  for (int round = 0; round < 3000; ++round) {
    std::string bytes = seed;
    for (int i = 0; i < 6; ++i) bytes[engine() % bytes.size()] = static_cast<char>(engine() % 256);
    bytes.resize(engine() % (bytes.size() + 1));
    Loading loaded(bytes);
    EXPECT_EQ(loaded.loader.GetStatus(), CLtypeLoader::Done);
    Loading again(loaded.save());
    EXPECT_EQ(again.loader.GetNoLtype(), loaded.loader.GetNoLtype());
  }
}

TEST(LtypeLoader, FailuresKeepWhatWasRead) {
  Loading loaded("*A,\nA,1\n");
  EXPECT_EQ(loaded.loader.Load(u"/nowhere/at/all.lin"), 0);
  EXPECT_EQ(loaded.loader.GetStatus(), CLtypeLoader::NotOpened);
  EXPECT_EQ(loaded.loader.GetNoLtype(), 0) << "the table is emptied first";
  EXPECT_EQ(loaded.loader.Load(static_cast<const zim::Char*>(nullptr)), 0);
  EXPECT_EQ(loaded.loader.GetStatus(), CLtypeLoader::NotOpened);

  BrokenFile broken("*A,\nA,1\n*B,\n");
  loaded.loader.Load(broken);
  EXPECT_EQ(loaded.loader.GetStatus(), CLtypeLoader::ReadFailed);
  EXPECT_EQ(loaded.loader.GetNoLtype(), 1);
  FullFile full;
  loaded.loader.Save(full);
  EXPECT_EQ(loaded.loader.GetStatus(), CLtypeLoader::WriteFailed);
  loaded.loader.Save(u"/nowhere/at/all.lin");
  EXPECT_EQ(loaded.loader.GetStatus(), CLtypeLoader::NotOpened);
  EXPECT_EQ(loaded.loader.GetLtypeNo(-1), nullptr);
  EXPECT_EQ(loaded.loader.GetLtypeNo(1), nullptr);
}

TEST(LtypeLoader, ACopyHasItsOwnLinetypes) {
  auto source = std::make_unique<Loading>("*A,d\nA,1,[\"x\",ST]\n*B,\nA\n");
  CStyle* const style = source->styles.get(u"ST");
  const auto copy = std::make_unique<CLtypeLoader>(source->loader);
  EXPECT_EQ(style->getDashes(), 2);
  source->load("*C,\nA,2\n");
  EXPECT_EQ(style->getDashes(), 1);
  ASSERT_EQ(copy->GetNoLtype(), 2);
  EXPECT_EQ(pattern(*copy->GetLtypeNo(0)), "1.0 x/ST/1.0/0.0/0.0/0.0");
  EXPECT_EQ(copy->GetTable().get(u"b"), copy->GetLtypeNo(1));
}

TEST(LtypeLoader, NumbersIgnoreTheLocale) {
  const std::locale before = std::locale::global(std::locale(std::locale(), new Comma));
  Loading loaded("*N,\nA,1.5,[\"a\",ST,S=.25]\n");
  const std::string bytes = loaded.save();
  std::locale::global(before);
  EXPECT_EQ(pattern(loaded[0]), "1.5 a/ST/0.25/0.0/0.0/0.0");
  EXPECT_NE(bytes.find("A,1.5,[\"a\",ST,S=0.250000,"), std::string::npos);
}

TEST(LtypeLexer, CountsEveryLine) {
  CFileMemory file(u"in.lin", IFile::kRead, ";;\n\nfirst \t\n;; x\nlast");
  ASSERT_TRUE(file.open());
  const auto lexer = std::make_unique<CLtypeLoader::CFileLtypeLexer>(file);
  EXPECT_EQ(lexer->GetLine(), 0);
  ASSERT_TRUE(lexer->Read());
  EXPECT_TRUE(lexer->GetString().equal_cs(u"first"));
  EXPECT_EQ(lexer->GetLine(), 3);
  ASSERT_TRUE(lexer->Read());
  EXPECT_TRUE(lexer->GetString().equal_cs(u"last"));
  EXPECT_EQ(lexer->GetLine(), 5);
  EXPECT_FALSE(lexer->Read());
  EXPECT_EQ(lexer->GetString().size(), 0u);
}
