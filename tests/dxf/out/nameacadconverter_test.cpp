#include <cctype>

#include "dxf/out/saveddrawing.h"
#include "support/test.h"

namespace {

const std::string kLong30(30, 'x');

// The names that layers with the given names are saved under, in order.
using Form = CNameAcadConverter::Form;

std::vector<std::string> converted(const std::vector<zim::WString>& names, Form form,
                                   CFileReport* report = nullptr) {
  const Drawing drawing = newDrawing();
  std::vector<CLayer*> layers;
  for (const zim::WString& name : names) layers.push_back(addNewLayer(*drawing, name));
  const CNameAcadConverter converter(*drawing, form, report);
  std::vector<std::string> results;
  for (const CLayer* layer : layers) results.push_back(converter.GetName(layer).toUtf8());
  return results;
}

std::string folded(std::string name) {
  for (char& c : name) c = static_cast<char>(std::tolower(c));
  return name;
}

/// The rule by definition, scanning the table for each candidate; ASCII names only.
std::string naive(const std::vector<std::string>& own, const std::string& name) {
  std::string corrected = name;
  for (std::size_t i = 0; i < corrected.size(); ++i) {
    const char c = corrected[i];
    if (!std::isalnum(c) && c != '_' && c != '-' && c != '$' && !(i == 0 && c == '*'))
      corrected[i] = '_';
  }
  if (corrected.size() >= 32) corrected.resize(30);
  if (corrected == name) return name;
  const auto taken = [&](const std::string& candidate) {
    for (const std::string& other : own)
      if (folded(other) == folded(candidate)) return true;
    return folded(candidate) == "0";
  };
  std::string candidate = corrected;
  for (int counter = 0; taken(candidate); ++counter) {
    const std::string digits = std::to_string(counter);
    if (corrected.size() + digits.size() > 31) corrected.resize(30 - digits.size());
    candidate = corrected + digits;
  }
  return candidate;
}

}  // namespace

TEST(NameAcadConverter, Names) {
  const Definitions names{{"long", kLong30}};
  for (const Row& t : rowsWith(names)) {
    std::vector<zim::WString> own;
    for (const std::string& name : t.list("own")) own.push_back(zim::WString::fromUtf8(name));
    EXPECT_EQ(converted(own, Form::Classic), t.list("classic"));
    EXPECT_EQ(converted(own, Form::Unique), t.list("unique"));
  }
  EXPECT_EQ(converted({u""}, Form::Classic), std::vector<std::string>{"_"});
  EXPECT_EQ(converted({u""}, Form::Unique), std::vector<std::string>{"LAYER1"});
  for (const Form form : {Form::Classic, Form::Unique})
    EXPECT_EQ(converted({u"x|y"}, form), std::vector<std::string>{"x_y"}) << "without reference";
  EXPECT_EQ(converted({u"a b", u"墙", u"A B"}, Form::Kept),
            (std::vector<std::string>{"a b", "墙", "A_B"}));
}

TEST(NameAcadConverter, EachTableConvertsItsOwn) {
  const Drawing d = newDrawing();
  CLayer* layer = addNewLayer(*d, u"a b");
  CLtype* ltype = d->getLtypeFactory().create(u"a b", u"", nullptr, 0, 0);
  addLtype(*d, ltype);
  CStyle* style = d->getStyleFactory().create(u"a b", nullptr, 0, 1, 0, 0.2, 0);
  addStyle(*d, style);
  CBlock* block = addNewBlock(*d, u"a b");
  const CNameAcadConverter converter(*d, Form::Unique, nullptr);
  EXPECT_EQ(converter.GetName(layer), u"a_b");
  EXPECT_EQ(converter.GetName(ltype), u"a_b");
  EXPECT_EQ(converter.GetName(style), u"a_b");
  EXPECT_EQ(converter.GetName(block), u"a_b");
}

TEST(NameAcadConverter, ALinetypeCannotTakeAFixedName) {
  const Drawing d = newDrawing();
  CLtype* ltype = d->getLtypeFactory().create(u"ByLayer", u"", nullptr, 0, 0);
  addLtype(*d, ltype);
  EXPECT_EQ(CNameAcadConverter(*d).GetName(ltype), u"ByLayer");
  EXPECT_EQ(CNameAcadConverter(*d, Form::Unique, nullptr).GetName(ltype), u"ByLayer0");
}

TEST(NameAcadConverter, MissingItemsHaveStandIns) {
  const Drawing d = newDrawing();
  const CNameAcadConverter converter(*d);
  EXPECT_EQ(converter.GetName(static_cast<CLayer*>(nullptr)), u"0");
  EXPECT_EQ(converter.GetName(static_cast<CLtype*>(nullptr)), u"CONTINUOUS");
  EXPECT_EQ(converter.GetName(static_cast<CStyle*>(nullptr)), u"STANDARD");
  EXPECT_EQ(converter.GetName(static_cast<CBlock*>(nullptr)), u"");
}

TEST(NameAcadConverter, DependentNamesKeepTheirBar) {
  const Drawing d = newDrawing();
  CBlockXRef* xref = addNewXRef(*d, u"site plan");
  CBlock* block = addNewBlock(*d, u"site_plan");
  CLayer* layer =
      d->getLayerFactory().createXRef(*xref, u"my walls", &d->getLtypeContinuous(), 7, 0);
  xref->getLayerTable().add(layer);
  const CNameAcadConverter converter(*d);
  EXPECT_EQ(converter.GetName(block), u"site_plan");
  EXPECT_EQ(converter.GetName(static_cast<CBlock*>(xref)), u"site_plan0") << "blocks share names";
  EXPECT_EQ(converter.GetName(layer), u"site_plan0|my_walls");
}

TEST(NameAcadConverter, ReportsWhatChangedAndWhatBecameOne) {
  CFileReport report;
  converted({u"a b", u"a.b", u"ok", u"OK"}, Form::Classic, &report);
  EXPECT_EQ(report.count("name changed"), 2);
  EXPECT_EQ(report.count("names coincide"), 2);
  CFileReport unique;
  converted({u"a b", u"a.b", u"ok", u"OK"}, Form::Unique, &unique);
  EXPECT_EQ(unique.count("name changed"), 3);
  EXPECT_EQ(unique.count("names coincide"), 0);
}

TEST(NameAcadConverter, RandomTablesAgreeWithThePlainRule) {
  std::mt19937 random(20240607);
  for ([[maybe_unused]] const int round : rounds(200)) {
    // Few characters, and lengths around the limit, so that names often collide.
    std::vector<std::string> own;
    for (int i = 0; i < 60; ++i) {
      std::string name = random() % 2 ? std::string(26 + random() % 6, 'x') : std::string();
      for (unsigned n = random() % 4; n > 0; --n) name += "ab 1."[random() % 5];
      if (!name.empty()) own.push_back(name);
    }
    std::vector<zim::WString> names;
    for (const std::string& name : own) names.push_back(zim::WString::fromUtf8(name));
    const auto classic = converted(names, Form::Classic);
    for (std::size_t i = 0; i < own.size(); ++i)
      EXPECT_EQ(classic[i], naive(own, own[i])) << own[i];
    std::set<std::string> seen;
    for (const std::string& name : converted(names, Form::Unique)) {
      EXPECT_TRUE(seen.insert(folded(name)).second) << name;
      EXPECT_LE(name.size(), 31u);
    }
  }
}

TEST(NameAcadConverter, ThousandsOfNamesWithOneBeginningStayFast) {
  std::vector<zim::WString> names;
  for (int i = 0; i < 20000; ++i)
    names.push_back(zim::WString::fromUtf8(std::string(40, 'n') + std::to_string(i)));
  const auto unique = converted(names, Form::Unique);
  EXPECT_EQ(std::set<std::string>(unique.begin(), unique.end()).size(), names.size());
}
