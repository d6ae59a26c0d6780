#include "entities/polylines.h"

namespace {

/// A curve through or near the given controls.
PolylinePtr curve(Scene& s, const std::string& controls, short type, short degree,
                  bool closed = false) {
  PolylinePtr p = polyline(s, controls, closed ? CEntPolyline::kClosed : 0);
  p->gener(s.gestor, s.factory, type, degree, false);
  return p;
}

TEST(PolylineCurve, ControlPointsComeFirstAndAreNotShown) {
  Scene s;
  for (const short type :
       named<short>({CEntPolyline::kFit, CEntPolyline::kSpline, CEntPolyline::kBezier})) {
    const PolylinePtr p = curve(s, "0,0 10,100 20,0 30,50", type, 3);
    EXPECT_EQ(p->getFirstVisibleVertex(), 4);
    EXPECT_EQ(p->getNoCtrlPnts(), 4);
    EXPECT_GT(p->getNoVisibleVertexes(), 8);
    EXPECT_EQ(p->GetVertexPos(0), p->GetVertexPos(4)) << "open curves start at the first one";
    EXPECT_EQ(p->GetVertexPos(3), p->GetVertexPos(static_cast<int>(p->getLastVisibleVertex()) - 1));
    RECT_3D box;
    box.initRegion();
    for (const BulgedRow& row : visible(*p))
      box.updateRegion(PNT_3D(std::get<0>(row), std::get<1>(row), std::get<2>(row)));
    EXPECT_EQ(p->getBdry(), box);
    std::vector<PNT_3D> points;
    p->createPartition(points);
    EXPECT_EQ(static_cast<long>(points.size()), p->getNoVisibleVertexes());
  }
}

TEST(PolylineCurve, AddVertexAppendsAControlPoint) {
  Scene s;
  const PolylinePtr p = polyline(s, CEntPolyline::kSpline, 2);
  for (const double x : {0, 1}) p->addVertex(*new CVertex(PNT_3D(x, 0, 0), 0, 0, 0));
  for (const double x : {5, 6, 7, 8, 9})
    p->addVisibleVertex(*new CVertex(PNT_3D(x, 0, 0), 0, 0, 0));
  p->addVertex(*new CVertex(PNT_3D(2, 0, 0), 0, 0, 0));
  EXPECT_EQ(p->getFirstVisibleVertex(), 3);
  EXPECT_EQ(p->GetVertexPos(2), PNT_3D(2, 0, 0));
  EXPECT_EQ(p->GetVertexPos(3), PNT_3D(5, 0, 0));
}

TEST(PolylineCurve, GenerWithTheSameCurveDoesNothing) {
  Scene s;
  const PolylinePtr p = curve(s, "0,0 1,1 2,0", CEntPolyline::kSpline, 2);
  const CVertex* generated = &p->GetVertex(3);
  p->gener(s.gestor, s.factory, CEntPolyline::kSpline, 2, true);
  EXPECT_EQ(&p->GetVertex(3), generated);
  EXPECT_TRUE(s.gestor.released.empty());
  p->gener(s.gestor, s.factory, CEntPolyline::kBezier, 2, false);
  EXPECT_EQ(p->getCurve(), CEntPolyline::kBezier);
  EXPECT_EQ(p->getNoCtrlPnts(), 3);
}

TEST(PolylineCurve, GenerToPlainKeepsTheControlPointsRectifyTheCurve) {
  Scene s;
  const PolylinePtr kept = curve(s, "0,0 1,1 2,0", CEntPolyline::kSpline, 2);
  const PolylinePtr rectified = copyOf(s, *kept);
  const std::vector<BulgedRow> shown = visible(*kept);
  kept->gener(s.gestor, s.factory, 0, 0, false);
  EXPECT_EQ(kept->getNoTotalVertexes(), 3);
  EXPECT_EQ(kept->getFirstVisibleVertex(), 0);
  EXPECT_EQ(kept->getBdry(), RECT_3D(0, 0, 0, 2, 1, 0));

  const RECT_3D box = rectified->getBdry();
  rectified->Rectify();
  EXPECT_FALSE(rectified->isCurve());
  EXPECT_EQ(visible(*rectified), shown);
  EXPECT_EQ(rectified->getBdry(), box);
}

TEST(PolylineCurve, RegenReleasesAndReservesWhenAsked) {
  Scene s;
  const PolylinePtr p = curve(s, "0,0 1,1 2,0", CEntPolyline::kSpline, 2);
  EXPECT_TRUE(s.gestor.reserved.empty());
  const auto count = static_cast<std::size_t>(p->getNoVisibleVertexes());
  p->regen(s.gestor, s.factory, true);
  EXPECT_EQ(s.gestor.released.size(), count);
  EXPECT_EQ(s.gestor.reserved.size(), count);
}

TEST(PolylineCurve, ControlPointsAreInsertedAndRemovedWithTheirCurve) {
  Scene s;
  const PolylinePtr p = curve(s, "0,0 2,1 3,0", CEntPolyline::kSpline, 2);
  const std::vector<BulgedRow> before = visible(*p);
  p->insertControl(s.gestor, s.factory, *new CVertex(PNT_3D(1, 5, 0), 0, 0, 0), 1, false);
  EXPECT_EQ(p->getNoCtrlPnts(), 4);
  EXPECT_EQ(p->GetVertexPos(1), PNT_3D(1, 5, 0));
  EXPECT_NE(visible(*p), before);
  EXPECT_EQ(p->removeControl(s.gestor, s.factory, 4, false), nullptr) << "that one is generated";
  delete p->removeControl(s.gestor, s.factory, 1, false);
  EXPECT_EQ(visible(*p), before);
}

TEST(PolylineCurve, RemovingBelowTheFirstVisibleKeepsTheIndexInRange) {
  Scene s;
  const PolylinePtr p = polyline(s, CEntPolyline::kSpline, 2);
  for (const double x : {0, 1}) p->addVertex(*new CVertex(PNT_3D(x, 0, 0), 0, 0, 0));
  delete p->removeVertex(0);
  EXPECT_EQ(p->getFirstVisibleVertex(), 1);
  EXPECT_EQ(p->getNoVisibleSegments(), 0);
}

TEST(PolylineCurve, WidthsOfControlPointsDoNotMakeItWide) {
  Scene s;
  const PolylinePtr p = polyline(s, CEntPolyline::kSpline, 2);
  p->addVertex(*new CVertex(PNT_3D(0, 0, 0), 5, 5, 0));
  p->addVisibleVertex(*new CVertex(PNT_3D(0, 0, 0), 0, 0, 0));
  EXPECT_FALSE(p->isWide());
  p->addVisibleVertex(*new CVertex(PNT_3D(1, 0, 0), 0, 1, 0));
  EXPECT_TRUE(p->isWide());
}

TEST(PolylineCurve, ClosingRegenerates) {
  Scene s;
  const PolylinePtr p = curve(s, "0,0 10,0 10,10 0,10", CEntPolyline::kSpline, 3);
  const std::vector<BulgedRow> openCurve = visible(*p);
  p->close(s.gestor, s.factory, false);
  EXPECT_TRUE(p->isClosed());
  EXPECT_NE(visible(*p), openCurve);
  p->open(s.gestor, s.factory, false);
  EXPECT_EQ(visible(*p), openCurve);
}

}  // namespace
