#include "entities/blockworld.h"
#include "support/test.h"

namespace {

using Snapshot = std::unique_ptr<IEntDerivedMemento>;

class TextKinds : public testing::Test, protected BlockWorld {
 protected:
  CStyle* style(const char16_t* name) {
    m_styles.emplace_back(CStyleFactory().create(name, nullptr, 0, 1, 0, 0.2, 0));
    return m_styles.back().get();
  }

  std::unique_ptr<CEntText> styled(CStyle* style) {
    return std::unique_ptr<CEntText>(
        ents.createEntText(gestor, nullptr, nullptr, 256, text(u"abc", 1, 2, style), 7));
  }

  CData& data() { return *m_data; }

 private:
  std::vector<std::unique_ptr<CStyle>> m_styles;
  std::unique_ptr<CData> m_data{CDataFactory().createData()};
};

TEST_F(TextKinds, ExtentsFollowTheString) {
  const auto ent = styled(nullptr);
  RECT_3D expected;
  ent->getText().calc_bdry(expected);
  EXPECT_EQ(ent->getBdry(), expected);
  ent->setText(text(u"a longer text", 1, 2));
  EXPECT_GT(ent->getBdry().max.x, expected.max.x);
}

TEST_F(TextKinds, CountOnTheirStyle) {
  CStyle* a = style(u"A");
  CStyle* b = style(u"B");
  const auto ent = styled(a);
  EXPECT_EQ(a->getEntities(), 0) << "constructing counts nobody";
  ent->addTbls(gestor);
  EXPECT_EQ(a->getEntities(), 1);
  const Snapshot before(ent->createDerivedMemento());
  ent->setStyle(b);
  EXPECT_EQ(a->getEntities(), 0);
  EXPECT_EQ(b->getEntities(), 1);
  EXPECT_TRUE(*ent != *before);
  ent->setMemento(data(), before.get());
  EXPECT_TRUE(*ent == *before);
  EXPECT_EQ(a->getEntities(), 1);
  EXPECT_EQ(b->getEntities(), 0);
  ent->setStyle(nullptr);
  EXPECT_EQ(a->getEntities(), 0);
  ent->removeTbls(gestor);
}

TEST_F(TextKinds, AnAttributeIsMadeFromItsDefinition) {
  const std::unique_ptr<CEntAttdef> def(attdef(u"A", 3, 4));
  def->setColor(5);
  def->setUserInfo(8, 9);
  const std::unique_ptr<CEntAttrib> made(ents.createEntAttrib(gestor, u"12", *def, 33));
  EXPECT_EQ(made->GetHandle(), 33);
  EXPECT_EQ(made->getValue(), u"12");
  EXPECT_EQ(made->getTag(), u"A");
  EXPECT_EQ(made->getFlags(), 3);
  EXPECT_EQ(made->getColor(), 5);
  EXPECT_EQ(made->getUserData(), 9);
  EXPECT_GT(made->getBdry().max.x, def->getBdry().max.x) << "of two characters";
  def->setTag(u"CHANGED");
  def->setFlags(0);
  EXPECT_EQ(made->getTag(), u"A");
  EXPECT_EQ(made->getFlags(), 3);
}

TEST_F(TextKinds, OnlyTheDisplayedStringChangesTheExtents) {
  const std::unique_ptr<CEntAttdef> def(attdef(u"A", 3, 4));
  const RECT_3D before = def->getBdry();
  def->setPrompt(u"a long prompt");
  def->setValue(u"a long value");
  EXPECT_EQ(def->getBdry(), before);
  def->setTag(u"LONGER");
  EXPECT_NE(def->getBdry(), before);
  const std::unique_ptr<CEntAttrib> att(attrib(u"v", 0, 0));
  const RECT_3D box = att->getBdry();
  att->setTag(u"a long tag");
  EXPECT_EQ(att->getBdry(), box);
  att->setValue(u"a long value");
  EXPECT_NE(att->getBdry(), box);
}

TEST_F(TextKinds, MementosHoldWhatTheKindAdds) {
  const std::unique_ptr<CEntAttdef> def(attdef(u"A", 3, 4));
  const Snapshot defBefore(def->createDerivedMemento());
  for (const auto& change : std::vector<std::function<void()>>{
           [&] { def->setTag(u"B"); }, [&] { def->setValue(u"v"); }, [&] { def->setPrompt(u"p"); },
           [&] { def->setFlags(8); }}) {
    change();
    EXPECT_FALSE(*def == *defBefore);
    def->setMemento(data(), defBefore.get());
    EXPECT_TRUE(*def == *defBefore);
  }
  const std::unique_ptr<CEntAttrib> att(attrib(u"v", 3, 4));
  const Snapshot attBefore(att->createDerivedMemento());
  for (const auto& change : std::vector<std::function<void()>>{
           [&] { att->setTag(u"B"); }, [&] { att->setValue(u"w"); }, [&] { att->setFlags(8); }}) {
    change();
    EXPECT_FALSE(*att == *attBefore);
    att->setMemento(data(), attBefore.get());
    EXPECT_TRUE(*att == *attBefore);
  }
  EXPECT_FALSE(*att == *defBefore) << "of another kind";
  EXPECT_EQ(attBefore->fitMemento(*att), nullptr);
  att->setMemento(data(), static_cast<IEntDerivedMemento*>(nullptr));
  EXPECT_GT(attBefore->size(), sizeof(TEXT_3D));
}

}  // namespace
