#include "entities/scene.h"
#include "support/test.h"

using vek0::detail::kPi;

namespace {

// The memory targets of drawings depend on this: with eight bytes of the allocator, a line occupies
// 224 bytes, and its list node 32.
static_assert(sizeof(void*) > 8 || sizeof(CEntLine) <= 216);

using EntPtr = std::unique_ptr<CEnt>;

/// One entity of each kind that contains nothing but geometry.
std::vector<EntPtr> oneOfEach(Scene& s) {
  std::vector<EntPtr> ents;
  CEntFactory& f = s.factory;
  ents.emplace_back(f.createEntPnt(s.gestor, s.layer(), s.ltype(), 1, PNT_3D(1, 2, 3), 11));
  ents.emplace_back(s.line(0, 0, 3, -4, 12));
  castLine(ents.back().get())->setReach(LineReach::Ray);
  ents.emplace_back(
      f.createEntCircle(s.gestor, s.layer(), s.ltype(), 3, CIRCLE_3D(1, 1, 5, 2), 13));
  ents.emplace_back(
      f.createEntArc(s.gestor, s.layer(), s.ltype(), 4, ARC_3D(0, 0, 0, 1, 0, 2), 14));
  ents.emplace_back(f.createEnt3DFace(s.gestor, s.layer(), s.ltype(), 5, PNT_3D(0, 0, 0),
                                      PNT_3D(1, 0, 0), PNT_3D(1, 1, 4), PNT_3D(0, 1, 0), 5, 15));
  return ents;
}

EntPtr cloneOf(Scene& s, const CEnt& ent) {
  return EntPtr(s.factory.clone(s.gestor, s.data->getBlockFactory(), s.data->getBlockTable(), ent));
}

TEST(Ent, CloneKeepsEverythingButHandleAndSelection) {
  Scene s;
  for (const EntPtr& ent : oneOfEach(s)) {
    SCOPED_TRACE(ent->getType());
    ent->setUserInfo(8, 9);
    const EntPtr copy = cloneOf(s, *ent);
    const std::unique_ptr<IEntDerivedMemento> shape(ent->createDerivedMemento());
    const std::unique_ptr<CEntBaseMemento> base(ent->createBaseMemento());
    EXPECT_TRUE(*copy == *shape);
    EXPECT_TRUE(*copy == *base);
    EXPECT_EQ(copy->getBdry(), ent->getBdry());
    EXPECT_EQ(copy->getUserType(), 8);
    EXPECT_EQ(copy->getUserData(), 9);
    EXPECT_EQ(copy->GetHandle(), 0);
    EXPECT_NE(ent->GetHandle(), 0);
  }
}

TEST(Ent, DerivedMementoBringsTheShapeBack) {
  Scene s;
  auto ents = oneOfEach(s);
  const auto moved = oneOfEach(s);
  castPnt(moved[0].get())->setPnt(9, 9, 9);
  castLine(moved[1].get())->setReach(LineReach::Endless);
  castCircle(moved[2].get())->setCircle(9, 9, 9, 9);
  castArc(moved[3].get())->setArc(9, 9, 9, 9, 1, 3);
  cast3DFace(moved[4].get())->setVertex(3, PNT_3D(9, 9, 9));
  for (std::size_t i = 0; i < ents.size(); ++i) {
    SCOPED_TRACE(ents[i]->getType());
    const std::unique_ptr<IEntDerivedMemento> before(ents[i]->createDerivedMemento());
    const std::unique_ptr<IEntDerivedMemento> after(moved[i]->createDerivedMemento());
    EXPECT_TRUE(*ents[i] != *after);
    ents[i]->setMemento(*s.data, after.get());
    EXPECT_TRUE(*ents[i] == *after);
    EXPECT_EQ(ents[i]->getBdry(), moved[i]->getBdry());
    ents[i]->setMemento(*s.data, before.get());
    EXPECT_TRUE(*ents[i] == *before);
    ents[i]->setMemento(*s.data, static_cast<const IEntDerivedMemento*>(nullptr));
    EXPECT_TRUE(*before == *ents[i]);
    EXPECT_EQ(before->fitMemento(*ents[i]), nullptr);
    EXPECT_GE(before->size(), sizeof(PNT_3D));
    EXPECT_FALSE(*before == *ents[(i + 1) % ents.size()]) << "another kind is never equal";
  }
}

TEST(Ent, BaseMementoMovesCountsBack) {
  Scene s;
  const EntPtr line(s.line(0, 0, 1, 1));
  line->addTbls(s.gestor);
  const std::unique_ptr<CEntBaseMemento> before(line->createBaseMemento());
  const long layerUsers = s.layer()->getEntities();
  CLtype& byLayer = s.data->getLtypeByLayer();
  const long byLayerUsers = byLayer.getEntities();

  line->setLayer(nullptr);
  line->setLtype(&byLayer);
  line->setColor(3);
  EXPECT_TRUE(*line != *before);
  EXPECT_EQ(s.layer()->getEntities(), layerUsers - 1);
  EXPECT_EQ(byLayer.getEntities(), byLayerUsers + 1);

  line->setMemento(before.get());
  EXPECT_TRUE(*line == *before);
  EXPECT_TRUE(*before == *line);
  EXPECT_EQ(s.layer()->getEntities(), layerUsers);
  EXPECT_EQ(byLayer.getEntities(), byLayerUsers);
}

TEST(Ent, RegistrationCountsAndReservesOnceEachWay) {
  Scene s;
  const EntPtr line(s.line(0, 0, 1, 1, 42));
  const long layerUsers = s.layer()->getEntities();
  const long ltypeUsers = s.ltype()->getEntities();
  line->addTbls(s.gestor);
  EXPECT_EQ(s.layer()->getEntities(), layerUsers + 1);
  EXPECT_EQ(s.ltype()->getEntities(), ltypeUsers + 1);
  EXPECT_EQ(s.gestor.reserved, std::vector<vek0::Handle>{42});
  line->removeTbls(s.gestor);
  EXPECT_EQ(s.layer()->getEntities(), layerUsers);
  EXPECT_EQ(s.ltype()->getEntities(), ltypeUsers);
  EXPECT_EQ(s.gestor.released, std::vector<vek0::Handle>{42});
}

TEST(Ent, NullLayerAndLinetypeCountNobody) {
  Scene s;
  const EntPtr line(
      s.factory.createEntLine(s.gestor, nullptr, nullptr, 7, LINE_3D(0, 0, 0, 1, 0, 0), 0));
  line->addTbls(s.gestor);
  line->setLayer(s.layer());
  EXPECT_EQ(line->getLayer(), s.layer());
  line->setLayer(nullptr);
  line->removeTbls(s.gestor);
  EXPECT_EQ(line->getStyle(), nullptr);
}

TEST(Ent, MovingAnEmptyBoxLeavesItEmpty) {
  Scene s;
  const EntPtr empty(s.factory.createEntPolyline(s.gestor, nullptr, nullptr, 7, 0, 0, 0));
  empty->moveBdry(PNT_3D(-3e200, 0, 0));
  EXPECT_FALSE(empty->getBdry().validRegion());
}

TEST(EntArc, OnlyTheSetterFromNumbersBringsAnglesIntoRange) {
  Scene s;
  const std::unique_ptr<CEntArc> arc(
      s.factory.createEntArc(s.gestor, nullptr, nullptr, 7, ARC_3D(0, 0, 0, 1, 0, 1), 0));
  arc->setArc(0, 0, 0, 1, -kPi / 2, 5 * kPi / 2);
  EXPECT_DOUBLE_EQ(arc->getArc().startAngle, 3 * kPi / 2);
  EXPECT_DOUBLE_EQ(arc->getArc().endAngle, kPi / 2);

  ARC_3D raw(0, 0, 0, 1, 0, 1);
  raw.startAngle = -kPi / 2;
  raw.endAngle = 5 * kPi / 2;
  arc->setArc(raw);
  EXPECT_EQ(arc->getArc().startAngle, -kPi / 2);
  EXPECT_EQ(arc->getArc().endAngle, 5 * kPi / 2);
}

}  // namespace
