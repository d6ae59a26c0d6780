#include "ltypefile/isoltypes.h"
#include "ltypefile/loading.h"
#include "support/test.h"

namespace {

struct Deleter {
  void operator()(CData* data) const { deleteData(data); }
};
using Drawing = std::unique_ptr<CData, Deleter>;

Drawing newDrawing() {
  CDataFactory factory;
  return Drawing(factory.createData());
}

}  // namespace

TEST(AddLtypes, WhatTheDrawingDefinesStays) {
  const Drawing data = newDrawing();
  CLtypeTable& table = data->getLtypeTable();
  table.add(data->getLtypeFactory().create(u"GAS", u"mine", nullptr, 0, 0));
  const Loading file(
      "*Gas,theirs\nA,1\n*new,first\nA,2\n*NEW,second\nA,3\n*continuous,fixed\nA,4\n*,nameless\nA,"
      "5\n");
  EXPECT_EQ(addLtypes(*data, file.loader), 1);
  EXPECT_EQ(table.get(u"gas")->getDesc(), u"mine");
  EXPECT_EQ(table.get(u"New")->getDesc(), u"first");
  EXPECT_EQ(addLtypes(*data, file.loader), 0);
  EXPECT_EQ(table.size(), 2);
}

TEST(AddLtypes, TextsGetTheStylesOfTheDrawing) {
  const Drawing data = newDrawing();
  {
    const Loading file("*W,\nA,1,[\"W\",standard],-1,[\"X\",elsewhere]\n");
    ASSERT_EQ(addLtypes(*data, file.loader), 1);
  }
  const CLtype& ltype = *data->getLtypeTable().get(u"W");
  EXPECT_EQ(ltype[1]->GetText()->getStyle(), data->getStyleTable().getStyleStandard());
  EXPECT_EQ(data->getStyleTable().getStyleStandard()->getDashes(), 1);
  EXPECT_EQ(ltype[3]->GetText()->getStyle(), nullptr);
}

TEST(AddIsoLtypes, AddsThemOnceAndOnlyWhenAsked) {
  const Drawing data = newDrawing();
  EXPECT_EQ(data->getLtypeTable().size(), 0);
  EXPECT_EQ(addIsoLtypes(*data), 14);
  EXPECT_EQ(addIsoLtypes(*data), 0);
  const CLtype* const last = data->getLtypeTable().get(u"ACAD_ISO15W100");
  ASSERT_NE(last, nullptr);
  EXPECT_EQ(last->getDesc(), u"double-dashed triplicate-dotted line");
  EXPECT_EQ(pattern(*last), "12.0 -3.0 12.0 -3.0 0.0 -3.0 0.0 -3.0 0.0 -3.0");
  EXPECT_NE(data->getLtypeTable().get(u"ACAD_ISO02W100"), nullptr);
}

TEST(AddIsoLtypes, TheFileIsWhatTheFunctionAdds) {
  std::ifstream in(vek0::test::samplePath("iso.lin"), std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  EXPECT_EQ(bytes.str(), vek0::detail::kIsoLtypes);
  Loading file(bytes.str());
  EXPECT_TRUE(file.loader.GetReport().empty());
  const std::string saved = file.save();
  EXPECT_EQ(bytes.str().substr(bytes.str().find('*')), saved) << "it stands in the plain form";
  for (int i = 0; i < file.loader.GetNoLtype(); ++i) {
    ASSERT_EQ(file[i].getNoDashes() % 2, 0);
    for (int k = 0; k < file[i].getNoDashes(); ++k)
      EXPECT_EQ(file[i][k]->GetValue() < 0, k % 2 == 1) << file[i].getName().toUtf8();
  }
}
