// Laws for all transform visitors, tested for each kind.

#include "entities/everykind.h"
#include "support/test.h"

using vek0::detail::kPi;
using vek0::detail::kTwoPi;

namespace {

void expectNear(const std::vector<double>& a, const std::vector<double>& b, double within) {
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t i = 0; i < a.size(); ++i) EXPECT_NEAR(a[i], b[i], within) << "number " << i;
}

void expectNear(const RECT_3D& a, const RECT_3D& b, double within) {
  EXPECT_EQ(a.validRegion(), b.validRegion());
  if (!a.validRegion() || !b.validRegion()) return;
  EXPECT_LT(a.min.dist(b.min), within);
  EXPECT_LT(a.max.dist(b.max), within);
}

// The extents that the visitor left must equal those computed from the shape.
void expectFreshBdry(CEnt& ent) {
  const RECT_3D cached = ent.getBdry();
  ent.calcBdry();
  expectNear(cached, ent.getBdry(), 1e-9);
}

template <class There, class Back>
void expectGivesBack(EveryKind& all, There there, Back back) {
  for (const auto& [name, ent] : all.kinds) {
    SCOPED_TRACE(name);
    const std::vector<double> before = ShapeNumbers::of(*ent);
    const RECT_3D box = ent->getBdry();
    ent->accept(there);
    expectFreshBdry(*ent);
    ent->accept(back);
    expectFreshBdry(*ent);
    expectNear(ShapeNumbers::of(*ent), before, 1e-9);
    expectNear(ent->getBdry(), box, 1e-9);
  }
}

TEST(Transforms, TheInverseGivesEveryKindBack) {
  for (unsigned seed = 1; seed <= 6; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    EveryKind all(seed);
    const PNT_3D p = all.point();
    expectGivesBack(all, CEntMoveVisitor(p), CEntMoveVisitor(-p));
    const double angle = all.number() / 16;
    expectGivesBack(all, CEntRotateXYVisitor(p, angle), CEntRotateXYVisitor(p, -angle));
    for (const double factor : {3.0, 0.25, -1.0, -0.5})
      expectGivesBack(all, CEntScaleVisitor(p, factor), CEntScaleVisitor(p, 1 / factor));
    CHatchTypeTable patterns;
    for (const PNT_3D& to : {all.point(), PNT_3D(p.x, p.y + 1, 0), PNT_3D(p.x + 1, p.y, 0)}) {
      const CEntMirrorVisitor mirror(patterns, p, to);
      expectGivesBack(all, mirror, mirror);
    }
  }
}

// In plan view, a negative factor scales by its magnitude and rotates by 180 degrees.
TEST(Transforms, ANegativeFactorIsAHalfTurn) {
  for (unsigned seed = 1; seed <= 5; ++seed) {
    EveryKind scaled(seed), turned(seed);
    CEntScaleVisitor negative(PNT_3D(7, 8, 0), -2), positive(PNT_3D(7, 8, 0), 2);
    CEntRotateXYVisitor half(PNT_3D(7, 8, 0), kPi);
    for (std::size_t i = 0; i < scaled.kinds.size(); ++i) {
      CEnt &a = *scaled.kinds[i].second, &b = *turned.kinds[i].second;
      SCOPED_TRACE(scaled.kinds[i].first);
      a.accept(negative);
      b.accept(positive);
      b.accept(half);
      if (a.getType() == CEntFixedInsert::kType) continue;
      const RECT_3D boxA = a.getBdry(), boxB = b.getBdry();
      ASSERT_EQ(boxA.validRegion(), boxB.validRegion());
      if (!boxA.validRegion()) continue;
      EXPECT_LT(std::hypot(boxA.min.x - boxB.min.x, boxA.min.y - boxB.min.y), 1e-9);
      EXPECT_LT(std::hypot(boxA.max.x - boxB.max.x, boxA.max.y - boxB.max.y), 1e-9);
    }
  }
}

// At the line x = 4.
void expectMirrored(const RECT_3D& before, const RECT_3D& after) {
  EXPECT_NEAR(after.min.x, 8 - before.max.x, 1e-9);
  EXPECT_NEAR(after.max.x, 8 - before.min.x, 1e-9);
  EXPECT_NEAR(after.min.y, before.min.y, 1e-9);
}

TEST(Transforms, ExtentsAreMirrored) {
  EveryKind all;
  CHatchTypeTable patterns;
  CEntMirrorVisitor mirror(patterns, PNT_3D(4, 0, 0), PNT_3D(4, 9, 0));
  for (const auto& [name, ent] : all.kinds) {
    SCOPED_TRACE(name);
    const RECT_3D before = ent->getBdry();
    ent->accept(mirror);
    // Letters are not mirrored, so neither is their slant.
    const bool hasSlant =
        name == "text" || name == "attribute definition" || ent->getEntInsert() != nullptr;
    if (before.validRegion() && !hasSlant) expectMirrored(before, ent->getBdry());
  }
}

TEST(Transforms, MirroredTextsCoverTheMirroredArea) {
  EveryKind all;
  CHatchTypeTable patterns;
  CEntMirrorVisitor mirror(patterns, PNT_3D(4, 0, 0), PNT_3D(4, 9, 0));
  for (long align = 0; align < TEXT_3D::kJustifications; ++align)
    for (const double degrees : {0.0, 30.0, 135.0, 180.0, 340.0}) {
      SCOPED_TRACE(std::to_string(align) + " at " + std::to_string(degrees));
      const double angle = degrees * kRadiansPerDegree;
      CEnt* text = createEntText(
          all.data(), TEXT_3D(u"text", all.style(), 3, 4, 5, 2, 0, 0.8, angle, align), 0);
      const RECT_3D before = text->getBdry();
      text->accept(mirror);
      expectMirrored(before, text->getBdry());
      all.data().getEntTable().add(text);
    }
}

// The content of an insert must scale with it, including its array.
TEST(Transforms, ExtentsScaleWithTheFactor) {
  EveryKind all;
  CEntScaleVisitor scaler(PNT_3D(0, 0, 0), 3);
  for (const auto& [name, ent] : all.kinds) {
    SCOPED_TRACE(name);
    const RECT_3D before = ent->getBdry();
    ent->accept(scaler);
    if (!before.validRegion()) continue;
    const PNT_3D min(3 * before.min.x, 3 * before.min.y, 3 * before.min.z);
    EXPECT_LT(ent->getBdry().min.dist(min), 1e-9);
    EXPECT_NEAR(ent->getBdry().max.x, 3 * before.max.x, 1e-9);
  }
}

TEST(Transforms, ThicknessScalesWithTheMagnitude) {
  EveryKind all;
  ENT_TRAITS traits;
  traits.lineweight = 35;
  for (const auto& [name, ent] : all.kinds) {
    SCOPED_TRACE(name);
    for (const double thickness : {0.0, -2.5, 1e308}) {
      traits.thickness = thickness;
      ent->setTraits(traits);
      CEntScaleVisitor scaler(all.point(), -3);
      ent->accept(scaler);
      ENT_TRAITS expected = traits;
      expected.thickness = std::max(3 * thickness, -7.5);
      if (thickness > 1e300) expected.thickness = std::numeric_limits<double>::max();
      EXPECT_TRUE(ent->getTraits() == expected);
    }
  }
}

TEST(Transforms, WhatIsNoTransformChangesNothing) {
  constexpr double inf = std::numeric_limits<double>::infinity();
  constexpr double nan = std::numeric_limits<double>::quiet_NaN();
  EveryKind all;
  const PNT_3D p(1, 2, 3), bad(1, nan, 3);
  for (const auto& [name, ent] : all.kinds) {
    SCOPED_TRACE(name);
    const std::vector<double> before = ShapeNumbers::of(*ent);
    for (CEntScaleVisitor visitor : {CEntScaleVisitor(p, 0), CEntScaleVisitor(p, inf),
                                     CEntScaleVisitor(p, nan), CEntScaleVisitor(bad, 2)})
      ent->accept(visitor);
    for (CEntRotateXYVisitor visitor :
         {CEntRotateXYVisitor(p, -inf), CEntRotateXYVisitor(p, nan), CEntRotateXYVisitor(bad, 2)})
      ent->accept(visitor);
    CEntMoveVisitor mover(bad);
    ent->accept(mover);
    CHatchTypeTable patterns;
    for (CEntMirrorVisitor visitor :
         {CEntMirrorVisitor(patterns, p, p), CEntMirrorVisitor(patterns, bad, p)})
      ent->accept(visitor);
    EXPECT_EQ(ShapeNumbers::of(*ent), before);
  }
}

TEST(RotateVisitor, BringsRotationsIntoOneTurn) {
  EveryKind all;
  for (const auto& [name, ent] : all.kinds) {
    auto* insert = ent->getType() == CEntInsert::kType ? static_cast<CEntInsert*>(ent) : nullptr;
    for (const Row& t : rows()) {
      if (insert == nullptr) continue;
      SCOPED_TRACE(t.text("name"));
      insert->setRotate(t.real("rotation"));
      CEntRotateXYVisitor turner(PNT_3D(0, 0, 0), t.real("angle"));
      insert->accept(turner);
      EXPECT_EQ(insert->getRotate(), t.real("expected"));
    }
    if (CEntHatch* hatch = castHatch(ent)) {
      for (const double angle : {-3 * kPi, 100.0, 1e300}) {
        CEntRotateXYVisitor turner(PNT_3D(0, 0, 0), angle);
        hatch->accept(turner);
        EXPECT_GE(hatch->getHatchRotate(), 0);
        EXPECT_LT(hatch->getHatchRotate(), kTwoPi);
      }
    }
  }
}

// Angles read in whole degrees remain whole degrees, and geometry is where it belongs.
TEST(RotateVisitor, ByDegreesAddsDegreesAsFilesHaveThem) {
  for (const Row& t : rows()) {
    SCOPED_TRACE(testing::Message() << t.real("before") << " by " << t.real("by"));
    EveryKind all;
    const double before = t.real("before") * kRadiansPerDegree,
                 after = t.real("after") * kRadiansPerDegree;
    CEntRotateXYVisitor turner = CEntRotateXYVisitor::byDegrees(PNT_3D(1e6, 2e6, 0), t.real("by"));
    for (const auto& [name, ent] : all.kinds) {
      SCOPED_TRACE(name);
      if (auto* insert =
              ent->getType() == CEntInsert::kType ? static_cast<CEntInsert*>(ent) : nullptr) {
        insert->setRotate(before);
        insert->setPnt(PNT_3D(1e6 + 1000, 2e6, 0));
        insert->accept(turner);
        EXPECT_EQ(insert->getRotate(), after);
        const double turned = std::remainder(t.real("by"), 360) * kPi / 180;
        EXPECT_NEAR(insert->getPnt().x, 1e6 + 1000 * std::cos(turned), 1e-9);
        EXPECT_NEAR(insert->getPnt().y, 2e6 + 1000 * std::sin(turned), 1e-9);
      } else if (ent->getType() == CEntArc::kType) {
        ARC_3D& arc = static_cast<CEntArc*>(ent)->getArc();
        arc.startAngle = before;
        ent->accept(turner);
        EXPECT_EQ(arc.startAngle, after);
      } else if (CEntHatch* hatch = castHatch(ent)) {
        hatch->setHatchRotate(before);
        hatch->accept(turner);
        EXPECT_EQ(hatch->getHatchRotate(), after);
      } else if (ent->getType() == CEntText::kType) {
        TEXT_3D& text = static_cast<CEntText*>(ent)->getText();
        CTextContext context(text.getContext());
        context.setRotate(before);
        text.setContext(context);
        ent->accept(turner);
        EXPECT_EQ(text.getContext().getRotate(),
                  (t.real("before") + std::fmod(t.real("by"), 360)) * kRadiansPerDegree);
      }
    }
  }
}

TEST(ScaleVisitor, ScalesWidthsAndLeavesArcsArcs) {
  EveryKind all;
  CEntPolyline* polyline = createEntPolyline(all.data(), 0, 0, 0);
  all.data().getEntTable().add(polyline);
  for (const bool isUnpacked : {false, true}) {
    const BULGED_VERTEX vertexes[] = {{0, 0, 0, 1, 2, 1, 0}, {4, 0, 0, 0, 0, 0, 0}};
    polyline->setBulgedVertexes(vertexes, 2);
    if (isUnpacked) polyline->GetVertex(0);
    CEntScaleVisitor scaler(PNT_3D(0, 0, 0), -3);
    polyline->accept(scaler);
    EXPECT_TRUE(polyline->hasArcRuns());
    std::vector<double> seen;
    polyline->forEachBulged([&seen](const PNT_3D& p, double ws, double we, double bulge, long) {
      seen.insert(seen.end(), {p.x, ws, we, bulge});
    });
    EXPECT_EQ(seen, (std::vector<double>{-0.0, 3, 6, 1, -12, 0, 0, 0}));
  }
}

// A vertex is part of a polyline, and only the polyline is transformed.
TEST(Transforms, AVertexAloneIsLeftAlone) {
  CVertex vertex(PNT_3D(1, 2, 3), 4, 5, 0);
  CEntRotateXYVisitor turner(PNT_3D(0, 0, 0), 1);
  CEntScaleVisitor scaler(PNT_3D(0, 0, 0), 2);
  vertex.accept(turner);
  vertex.accept(scaler);
  EXPECT_TRUE(CVertexMemento(PNT_3D(1, 2, 3), 4, 5) == vertex);
}

}  // namespace
