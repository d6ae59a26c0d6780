#include "support/test.h"
#include "tables/tableitems.h"

namespace {

std::unique_ptr<CLtype> make(const zim::WString& name, const zim::WString& desc, double* values,
                             long count, long flags) {
  return std::unique_ptr<CLtype>(CLtypeFactory().create(name, desc, values, count, flags));
}

// Comparing linetypes by definition considers the number of elements, but not the elements.
TEST(Ltype, EqualityIsTheCheapOne) {
  double values[] = {0.5, -0.25, 0}, others[] = {1, -1, 2};
  const auto reference = make(u"DASHED", u"_ _", values, 3, 1);
  const struct {
    const char* name;
    std::unique_ptr<CLtype> other;
    bool equal;
  } cases[] = {
      {"letter case and values differ", make(u"dashed", u"_ _", others, 3, 1), true},
      {"names differ", make(u"dashes", u"_ _", values, 3, 1), false},
      {"descriptions differ in case", make(u"DASHED", u"_ x", values, 3, 1), false},
      {"flags differ", make(u"DASHED", u"_ _", values, 3, 0), false},
      {"one element fewer", make(u"DASHED", u"_ _", values, 2, 1), false},
  };
  for (const auto& t : named(cases)) {
    EXPECT_EQ(*reference == *t.other, t.equal);
    EXPECT_EQ(*reference != *t.other, !t.equal);
  }
}

TEST(Ltype, CopyHasTheLayersButNotTheEntities) {
  const auto source = vek0::test::ltype(u"A");
  source->addLayer();
  source->addEntity();
  const std::unique_ptr<CLtype> copy(CLtypeFactory().create(*source));
  EXPECT_EQ(copy->getLayers(), 1);
  EXPECT_EQ(copy->getEntities(), 0);
}

TEST(Ltype, WithoutElements) {
  const auto empty = make(u"A", u"", nullptr, 0, 0);
  EXPECT_EQ(empty->getNoDashes(), 0);
  EXPECT_EQ(empty->getDashArray(), nullptr);
  EXPECT_EQ(empty->getPatternLen(), 0);
}

TEST(Ltype, PrivateIsOneBit) {
  const auto ltype = vek0::test::ltype(u"A", u"", {}, 0x40);
  ltype->setPrivate(true);
  EXPECT_EQ(ltype->getFlags(), 0x8040);
  ltype->setPrivate(false);
  EXPECT_FALSE(ltype->isPrivate());
  EXPECT_EQ(ltype->getFlags(), 0x40);
}

TEST(LtypeMemento, BringsTheWholeDefinitionBack) {
  Tables t;
  double values[] = {0.5, -0.25};
  CLtype* ltype = make(u"A", u"desc", values, 2, 1).release();
  t.ltypes.add(ltype);
  const std::unique_ptr<CLtypeMemento> memento(ltype->createMemento());
  const struct {
    const char* name;
    void (*change)(CLtype&);
  } changes[] = {
      {"name", [](CLtype& l) { l.setName(u"B"); }},
      {"description", [](CLtype& l) { l.setDesc(u"Desc"); }},
      {"flags", [](CLtype& l) { l.setPrivate(true); }},
      {"one element more", [](CLtype& l) { l.AddDashDouble(0); }},
      {"elements gone", [](CLtype& l) { l.ClearDashes(); }},
      {"elements swapped",
       [](CLtype& l) {
         l.GetDashSeq().RemoveDash(0);
         l.AddDashDouble(0.5);
       }},
  };
  for (const auto& c : named(changes)) {
    EXPECT_TRUE(*memento == *ltype);
    c.change(*ltype);
    EXPECT_TRUE(*memento != *ltype);
    ltype->setMemento(*memento);
    EXPECT_TRUE(*memento == *ltype);
    EXPECT_EQ(t.ltypes.get(u"a"), ltype);
  }
}

TEST(LtypeTable, FixedLinetypesComeFirst) {
  Tables t;
  CLtype* hidden = vek0::test::ltype(u"BYLAYER").release();
  CLtype* other = vek0::test::ltype(u"Continuous2").release();
  t.ltypes.add(hidden);
  t.ltypes.add(other);
  const struct {
    const char* name;
    const CLtype* found;
  } cases[] = {
      {"CONTINUOUS", &t.continuous}, {"continuous", &t.continuous}, {"ByLayer", &t.byLayer},
      {"byblock", &t.byBlock},       {"CONTINUOUS2", other},        {"DASHED", nullptr},
  };
  for (const auto& c : cases)
    EXPECT_EQ(t.ltypes.get(zim::WString::fromUtf8(c.name)), c.found) << c.name;
  EXPECT_EQ(t.ltypes.size(), 2);
}

TEST(LtypeVisitor, IsToldTheKindAndTheQueriesAgree) {
  struct Kind final : ILtypeVisitor {
    void visit(CLtypeXRef&) override { kind = "xref"; }
    void visit(CLtypeContinuous&) override { kind = "continuous"; }
    void visit(CLtypeByLayer&) override { kind = "bylayer"; }
    void visit(CLtypeByBlock&) override { kind = "byblock"; }
    void visit(CLtype&) override { kind = "ltype"; }
    std::string kind;
  } visitor;
  Tables t;
  const auto ordinary = vek0::test::ltype(u"Continuous");
  for (CLtype* ltype : {static_cast<CLtype*>(&t.continuous), static_cast<CLtype*>(&t.byLayer),
                        static_cast<CLtype*>(&t.byBlock), ordinary.get()}) {
    ltype->accept(visitor);
    EXPECT_EQ(ltype->isContinuous(), visitor.kind == "continuous");
    EXPECT_EQ(ltype->isByLayer(), visitor.kind == "bylayer");
    EXPECT_EQ(ltype->isByBlock(), visitor.kind == "byblock");
    EXPECT_FALSE(ltype->isXRef());
  }
  EXPECT_EQ(visitor.kind, "ltype");
}

}  // namespace
