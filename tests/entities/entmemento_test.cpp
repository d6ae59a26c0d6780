#include "entities/everykind.h"
#include "support/test.h"

namespace {

using Derived = std::unique_ptr<IEntDerivedMemento>;

// State that a memento holds besides the numbers of the shape: strings and named items.
std::string wordsOf(CEnt& ent, const CData& data) {
  std::string out;
  const auto item = [&out](const CNamedItem* named) {
    out += (named != nullptr ? named->getName().toUtf8() : "none") + ' ';
  };
  item(ent.getLayer());
  item(ent.getLtype());
  item(ent.getStyle());
  out += std::to_string(ent.getColor()) + ' ';
  if (const CEntAttdef* def = castAttdef(&ent))
    out += def->getTag().toUtf8() + def->getValue().toUtf8() + def->getPrompt().toUtf8() +
           std::to_string(def->getFlags());
  if (const CEntText* text = castText(&ent))
    out += text->getText().getContext().getString().toUtf8();
  if (const CEntAttrib* attrib = castAttrib(&ent))
    out += attrib->getTag().toUtf8() + attrib->getValue().toUtf8() +
           std::to_string(attrib->getFlags()) + '/' + std::to_string(attrib->GetHandle());
  if (const CEntPolyline* polyline = castPolyline(&ent))
    out += std::to_string(polyline->getFlags()) + std::to_string(polyline->getDegree());
  if (CEntInsertBase* insert = ent.getEntInsert()) {
    item(insert->getBlock());
    for (unsigned i = 0; i < insert->GetNoAttribs(); ++i)
      out += wordsOf(*insert->GetAttrib(i), data);
  }
  return out;
}

// Randomly changes the properties and the geometry that an entity has.
class RandomChange {
 public:
  explicit RandomChange(EveryKind& all) : m_all(all) {}

  void change(CEnt& ent) {
    ent.setLayer(m_all.layer());
    ent.setLtype(m_all.ltype());
    ent.setColor(static_cast<short>(m_all.number()));
    ent.setStyle(m_all.style());
    CEntMoveVisitor mover(m_all.point());
    CEntScaleVisitor scaler(m_all.point(), m_all.pick() ? -2 : 3);
    ent.accept(mover);
    ent.accept(scaler);
    if (CEntPolyline* polyline = castPolyline(&ent)) change(*polyline);
    if (CEntAttdef* def = castAttdef(&ent)) {
      def->setTag(u"other");
      def->setValue(u"v");
      def->setPrompt(u"p");
      def->setFlags(77);
    }
    if (CEntInsertBase* insert = ent.getEntInsert()) change(*insert);
    if (CEnt3DFace* face = cast3DFace(&ent)) {
      face->setFlags(m_all.pick() ? 1 : 2);
      if (m_all.pick()) face->setFill(FaceFill::Solid);
    }
  }

 private:
  void change(CEntPolyline& polyline) {
    CData& data = m_all.data();
    if (m_all.pick()) polyline.addVertex(*createVertex(data, m_all.point(), 1, 2, 9));
    if (m_all.pick()) delete polyline.removeVertex(0);
    if (m_all.pick()) polyline.SetVertexPos(1, m_all.point());
    if (m_all.pick()) polyline.close(data.getHandleGestor(), data.getEntFactory(), false);
    if (m_all.pick())
      polyline.gener(data.getHandleGestor(), data.getEntFactory(),
                     polyline.isCurve() ? 0 : CEntPolyline::kFit, 0, false);
    polyline.calcBdry();
  }
  void change(CEntInsertBase& insert) {
    CData& data = m_all.data();
    for (unsigned i = 0; i < insert.GetNoAttribs(); ++i) {
      CEntAttrib& attrib = *insert.GetAttrib(i);
      attrib.setLayer(m_all.layer());
      attrib.setStyle(m_all.style());
      attrib.setValue(u"changed");
      attrib.setTag(u"other");
    }
    if (insert.getType() == CEntHatch::kType || m_all.pick()) return;
    insert.add(data.getEntFactory().createEntAttrib(data.getHandleGestor(), m_all.layer(),
                                                    m_all.ltype(), 1, m_all.text(), u"T", 0, 8));
  }

  EveryKind& m_all;
};

std::vector<long> countsOf(const CData& data) {
  std::vector<long> out;
  for (CData::CLayerIterator i(data, false); *i != nullptr; ++i) out.push_back((*i)->getEntities());
  for (CData::CLtypeIterator i(data, false, true); *i != nullptr; ++i)
    out.push_back((*i)->getEntities());
  for (CData::CStyleIterator i(data, false); *i != nullptr; ++i) out.push_back((*i)->getEntities());
  return out;
}

TEST(EntMementos, RestoreEveryKindAfterRandomChanges) {
  for (unsigned seed = 1; seed <= 10; ++seed) {
    EveryKind all(seed);
    RandomChange random(all);
    for (const auto& [name, ent] : all.kinds) {
      SCOPED_TRACE(testing::Message() << name << ", seed " << seed);
      const std::unique_ptr<CEntBaseMemento> base(ent->createBaseMemento());
      const Derived derived(ent->createDerivedMemento());
      ASSERT_TRUE(base != nullptr && derived != nullptr);
      EXPECT_TRUE(*ent == *base && *base == *ent);
      EXPECT_TRUE(*ent == *derived && *derived == *ent);
      EXPECT_EQ(derived->fitMemento(*ent), nullptr);
      EXPECT_GE(derived->size(), sizeof(IEntDerivedMemento));
      const std::vector<double> shape = ShapeNumbers::of(*ent);
      const std::string words = wordsOf(*ent, all.data());
      const RECT_3D box = ent->getBdry();
      random.change(*ent);
      // An empty polyline may remain empty.
      EXPECT_TRUE(ShapeNumbers::of(*ent) == shape || (*ent != *derived && *derived != *ent));
      ent->setMemento(base.get());
      ent->setMemento(all.data(), derived.get());
      EXPECT_TRUE(*ent == *base);
      EXPECT_TRUE(*ent == *derived);
      EXPECT_EQ(ShapeNumbers::of(*ent), shape);
      EXPECT_EQ(wordsOf(*ent, all.data()), words);
      EXPECT_TRUE(ent->getBdry() == box || (!box.validRegion() && !ent->getBdry().validRegion()));
    }
    const CDataPtr recounted(cloneData(all.data()));
    EXPECT_EQ(countsOf(all.data()), countsOf(*recounted)) << "seed " << seed;
  }
}

TEST(EntMementos, ThoseOfOtherKindsAreIgnored) {
  EveryKind all;
  for (const auto& [ownerName, owner] : all.kinds) {
    const Derived memento(owner->createDerivedMemento());
    EXPECT_EQ(memento->getType(), owner->getType());
    for (const auto& [name, ent] : all.kinds) {
      if (ent->getType() == owner->getType()) continue;
      SCOPED_TRACE(testing::Message() << ownerName << " onto " << name);
      const std::vector<double> before = ShapeNumbers::of(*ent);
      EXPECT_FALSE(*ent == *memento);
      ent->setMemento(all.data(), memento.get());
      EXPECT_EQ(ShapeNumbers::of(*ent), before);
    }
  }
}

class HostsMemento final : public IEntDerivedMemento {
 public:
  bool operator==(const CEnt&) const override { return true; }
  std::size_t size() const override { return 0; }
};

TEST(EntMementos, OnesOfTheHostAreNoKinds) {
  EveryKind all;
  const HostsMemento memento;
  for (const auto& [name, ent] : all.kinds) {
    SCOPED_TRACE(name);
    const std::vector<double> before = ShapeNumbers::of(*ent);
    ent->setMemento(all.data(), &memento);
    ent->setMemento(all.data(), static_cast<const IEntDerivedMemento*>(nullptr));
    EXPECT_EQ(ShapeNumbers::of(*ent), before);
  }
}

// Undoing the creation of a block deletes its entities, but none that the block still contains.
TEST(BlockMemento, DestroysOnlyWhatNobodyHolds) {
  EveryKind all;
  CData& data = all.data();
  CBlock* block = data.getBlockTable().get(u"B");
  const std::unique_ptr<CBlockMemento> memento(block->createMemento());
  memento->destroyEntity();
  EXPECT_EQ(block->size(), 1u);
  const std::unique_ptr<CBlockMemento> again(block->createMemento());
  data.getBlockTable().Redefine(block, PNT_3D(0, 0, 0), 0, {});
  again->destroyEntity();
  EXPECT_EQ(block->size(), 0u);
}

}  // namespace
