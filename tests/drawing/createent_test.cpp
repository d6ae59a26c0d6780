#include "drawing/drawings.h"
#include "support/test.h"

namespace {

const PNT_3D kPnt(1, 2, 3);

TEXT_3D someText() { return TEXT_3D(u"text", nullptr, 1, 2, 3, 4, 0, 1, 0, 0); }

// A drawing with items to refer to, some of which are not its current ones.
struct Scene {
  Drawing drawing = newDrawing();
  CData& data = *drawing;
  CLayer* layer = addedLayer(data, u"explicit");
  CLtype* ltype = addedLtype(data, u"EXPLICIT");
  CBlock& block = *addedBlock(data, u"B");
  CBlockXRef& xref = *addedXRef(data, u"X");
};

struct Kind {
  using Create = std::function<CEnt*(Scene&, vek0::Handle handle)>;
  const char* name;
  short type;
  Create explicitly, current;
};

// `create` receives the drawing alone, or with layer, linetype and color.
template <class Created>
Kind kind(const char* name, short type, Created create) {
  return {
      name, type,
      [=](Scene& s, vek0::Handle h) { return create(s, h, s.data, s.layer, s.ltype, short{5}); },
      [=](Scene& s, vek0::Handle h) { return create(s, h, s.data); }};
}

std::vector<Kind> allKinds() {
  return {
      kind("point", 1, [](Scene&, auto h, auto&&... p) { return createEntPnt(p..., kPnt, h); }),
      kind("line", 2,
           [](Scene&, auto h, auto&&... p) { return createEntLine(p..., LINE_3D(kPnt, kPnt), h); }),
      kind("circle", 3,
           [](Scene&, auto h, auto&&... p) {
             return createEntCircle(p..., CIRCLE_3D(1, 2, 3, 4), h);
           }),
      kind("arc", 4,
           [](Scene&, auto h, auto&&... p) {
             return createEntArc(p..., ARC_3D(1, 2, 3, 4, 1, 2), h);
           }),
      kind("polyline", 5,
           [](Scene&, auto h, auto&&... p) { return createEntPolyline(p..., 1L, 0, h); }),
      kind("text", 6,
           [](Scene&, auto h, auto&&... p) { return createEntText(p..., someText(), h); }),
      kind("attribute definition", 7,
           [](Scene&, auto h, auto&&... p) {
             return createEntAttdef(p..., someText(), u"value", u"prompt", 8, h);
           }),
      kind("insert", 8,
           [](Scene& s, auto h, auto&&... p) {
             return createEntInsert(p..., s.block, kPnt, 2, 3, 4, 0.5, 6, 7, 8, 9, h);
           }),
      {"insert of an external reference", 8,
       [](Scene& s, long h) {
         return createEntInsertXRef(s.data, s.layer, s.ltype, 5, s.xref, kPnt, 2, 3, 4, 0.5, 6, 7,
                                    8, 9, h);
       },
       [](Scene& s, long h) {
         return createEntInsertXRef(s.data, s.data.getDepend(), s.xref, kPnt, 2, 3, 4, 0.5, 6, 7, 8,
                                    9, h);
       }},
      kind("insert of fixed size", 12,
           [](Scene& s, auto h, auto&&... p) {
             return createEntFixedInsert(p..., s.block, kPnt, 2, 3, 0.5, h);
           }),
      kind("3D face", 11,
           [](Scene&, auto h, auto&&... p) {
             return createEnt3DFace(p..., kPnt, kPnt, kPnt, kPnt, 3, h);
           }),
  };
}

TEST(CreateEnt, TheExplicitFormTakesWhatItIsGiven) {
  for (const Kind& kind : allKinds()) {
    SCOPED_TRACE(kind.name);
    Scene s;
    const std::unique_ptr<CEnt> ent(kind.explicitly(s, 0x1F));
    EXPECT_EQ(ent->getType(), kind.type);
    EXPECT_EQ(ent->getLayer(), s.layer);
    EXPECT_EQ(ent->getLtype(), s.ltype);
    EXPECT_EQ(ent->getColor(), 5);
    EXPECT_EQ(ent->GetHandle(), 0x1F);
    EXPECT_EQ(s.layer->getEntities(), 0) << "nothing counts before a table takes it";
  }
}

TEST(CreateEnt, TheCurrentFormTakesTheCurrentItems) {
  for (const Kind& kind : allKinds()) {
    SCOPED_TRACE(kind.name);
    Scene s;
    std::unique_ptr<CEnt> ent(kind.current(s, 0));
    EXPECT_EQ(ent->getType(), kind.type);
    EXPECT_EQ(ent->getLayer(), getLayer0(s.data));
    EXPECT_EQ(ent->getLtype(), getLtypeByLayer(s.data));
    EXPECT_EQ(ent->getColor(), 256);
    setCurLayer(s.data, s.layer);
    setCurLtype(s.data, getLtypeByBlock(s.data));
    setCurColor(s.data, 0);
    ent.reset(kind.current(s, 0x1F));
    EXPECT_EQ(ent->getLayer(), s.layer);
    EXPECT_EQ(ent->getLtype(), getLtypeByBlock(s.data));
    EXPECT_EQ(ent->getColor(), 0);
    EXPECT_EQ(ent->GetHandle(), 0x1F);
  }
}

TEST(CreateEnt, InsertsPassTheirValuesInOrder) {
  Scene s;
  for (const Kind& kind : allKinds()) {
    if (kind.type != 8) continue;
    SCOPED_TRACE(kind.name);
    for (const Kind::Create& form : {kind.explicitly, kind.current}) {
      const std::unique_ptr<CEnt> ent(form(s, 0));
      PNT_3D pnt;
      double sx, sy, sz, rotation, columnSpacing, rowSpacing;
      long columns, rows;
      ent->getEntInsert()->getInsertParams(1, pnt, sx, sy, sz, rotation);
      ent->getEntInsert()->getArray(columns, rows, columnSpacing, rowSpacing);
      EXPECT_TRUE(pnt == kPnt && sx == 2 && sy == 3 && sz == 4 && rotation == 0.5);
      EXPECT_TRUE(columns == 6 && rows == 7 && columnSpacing == 8 && rowSpacing == 9);
    }
  }
}

// One overload receives the drawing's record explicitly; the other uses the current record.
TEST(CreateEnt, ReferencesAreCountedOnTheRightRecord) {
  Scene s;
  CBlockXRefDepend other;
  const std::unique_ptr<CEnt> own(
      createEntInsertXRef(s.data, s.layer, s.ltype, 5, s.xref, kPnt, 1, 1, 1, 0, 1, 1, 0, 0, 0));
  const std::unique_ptr<CEnt> foreign(
      createEntInsertXRef(s.data, other, s.xref, kPnt, 1, 1, 1, 0, 1, 1, 0, 0, 0));
  own->addTbls(s.data.getHandleGestor());
  EXPECT_EQ(s.data.getDepend().getCount(&s.xref), 1);
  EXPECT_EQ(other.size(), 0u);
  foreign->addTbls(s.data.getHandleGestor());
  EXPECT_EQ(other.getCount(&s.xref), 1);
  own->removeTbls(s.data.getHandleGestor());
  foreign->removeTbls(s.data.getHandleGestor());
  EXPECT_EQ(s.data.getDepend().size(), 0u);
}

TEST(CreateEnt, AttributesFollowTheirDefinition) {
  Scene s;
  const std::unique_ptr<CEntAttdef> def(
      createEntAttdef(s.data, s.layer, s.ltype, 5, someText(), u"value", u"prompt", 8, 0));
  const std::unique_ptr<CEntAttrib> attrib(createEntAttrib(s.data, u"mine", *def, 7));
  EXPECT_EQ(attrib->getValue(), u"mine");
  EXPECT_EQ(attrib->getTag(), u"text");
  EXPECT_EQ(attrib->getFlags(), 8);
  EXPECT_EQ(attrib->getLayer(), s.layer);
  EXPECT_EQ(attrib->GetHandle(), 7);
  const std::unique_ptr<CVertex> vertex(createVertex(s.data, kPnt, 1, 2, 9));
  EXPECT_TRUE(vertex->getPnt() == kPnt);
  EXPECT_EQ(vertex->GetWidthEnd(), 2);
  EXPECT_EQ(vertex->GetHandle(), 9);
}

}  // namespace
