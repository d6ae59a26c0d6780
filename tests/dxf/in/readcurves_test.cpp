#include "dxf/in/convert/curvereaders.h"
#include "dxf/in/convert/dimstyles.h"
#include "support/test.h"

using vek0::detail::kPi;

namespace {

Loaded loadCurve(const std::string& list, double chordError = 1e-4) {
  CFileDXFIPolicy policy = CFileDXFIPolicy::forAnyFile();
  policy.chordError = chordError;
  return loadText(entitiesOf("AC1015", list), policy);
}

std::vector<PNT_3D> pointsOf(const CEntPolyline& polyline) {
  std::vector<PNT_3D> points;
  for (int i = 0; i < polyline.getNoTotalVertexes(); ++i)
    points.push_back(polyline.GetVertexPos(i));
  return points;
}

// Visits the middle and both ends of every chord, including the closing one.
template <class Check>
void forEachChord(const CEntPolyline& polyline, const Check& check) {
  const std::vector<PNT_3D> points = pointsOf(polyline);
  for (std::size_t i = 0; i + (polyline.isClosed() ? 0 : 1) < points.size(); ++i) {
    const PNT_3D& p = points[i];
    const PNT_3D& q = points[(i + 1) % points.size()];
    check(p, PNT_3D((p.x + q.x) / 2, (p.y + q.y) / 2, (p.z + q.z) / 2));
  }
}

void expectNear(const PNT_3D& got, const PNT_3D& want, double tolerance) {
  EXPECT_NEAR(got.x, want.x, tolerance);
  EXPECT_NEAR(got.y, want.y, tolerance);
  EXPECT_NEAR(got.z, want.z, tolerance);
}

const std::string kSpline = "0 SPLINE|8 0|100 AcDbSpline|70 8|71 3|";
const std::string kClamped = "40 0|40 0|40 0|40 0|40 1|40 1|40 1|40 1|";
const std::string kControls = "10 0|20 0|30 0|10 0|20 4|30 1|10 4|20 4|30 2|10 4|20 0|30 3";
const std::string kFits = "11 0|21 0|31 0|11 4|21 3|31 1|11 8|21 0|31 2";

}  // namespace

TEST(ReadCurves, EllipsesBecomeChains) {
  for (const Row& t : rows()) {
    const Loaded got = loadCurve("0 ELLIPSE|8 0|" + t.text("pairs"));
    const CEntPolyline* polyline = castPolyline(got.only());
    ASSERT_NE(polyline, nullptr) << got.error.GetErrorLine();
    EXPECT_EQ(polyline->isClosed(), t.flag("closed"));
    const std::vector<PNT_3D> points = pointsOf(*polyline);
    expectNear(points.front(), t.point("first"), 1e-9);
    if (t.flag("closed"))
      EXPECT_GT(points.front().dist(points.back()), 0.01) << "the start is not repeated";
    else
      expectNear(points.back(), t.point("last"), 1e-9);
    // In the ellipse's own frame, it is the unit circle.
    const auto radius = [&](const PNT_3D& p) {
      const PNT_3D d = p - t.point("center");
      const auto part = [&](const PNT_3D& a) {
        return (d.x * a.x + d.y * a.y + d.z * a.z) / (a.x * a.x + a.y * a.y + a.z * a.z);
      };
      return std::hypot(part(t.point("major")), part(t.point("minor")));
    };
    forEachChord(*polyline, [&](const PNT_3D& vertex, const PNT_3D& middle) {
      EXPECT_NEAR(radius(vertex), 1, 1e-9);
      EXPECT_GT(radius(middle), 1 - 1.001e-4);
    });
    EXPECT_EQ(got.report.count("kind replaced"), 1);
  }
}

TEST(ReadCurves, SplinesBecomeChains) {
  const Loaded got = loadCurve(kSpline + kClamped + kControls);
  const CEntPolyline* polyline = castPolyline(got.only());
  ASSERT_NE(polyline, nullptr) << got.error.GetErrorLine();
  EXPECT_FALSE(polyline->isClosed());
  const std::vector<PNT_3D> points = pointsOf(*polyline);
  EXPECT_EQ(points.front(), PNT_3D(0, 0, 0));
  EXPECT_EQ(points.back(), PNT_3D(4, 0, 3));
  // z of these controls is three times the parameter of the curve.
  for (const PNT_3D& p : points) {
    const double t = p.z / 3;
    EXPECT_NEAR(p.x, 12 * t * t * (1 - t) + 4 * t * t * t, 1e-9);
    EXPECT_NEAR(p.y, 12 * t * (1 - t), 1e-9);
  }
  EXPECT_GT(points.size(), 8u);
}

// Four rational arcs form an exact circle.
TEST(ReadCurves, ClosedRationalSpline) {
  const std::string w = "0.7071067811865476";
  const std::string circle =
      "0 SPLINE|8 0|70 5|71 2|40 0|40 0|40 0|40 1|40 1|40 2|40 2|40 3|40 3|40 4|40 4|40 4|"
      "41 1|41 " +
      w + "|41 1|41 " + w + "|41 1|41 " + w + "|41 1|41 " + w +
      "|41 1|"
      "10 2|20 0|10 2|20 2|10 0|20 2|10 -2|20 2|10 -2|20 0|10 -2|20 -2|10 0|20 -2|10 2|20 -2|"
      "10 2|20 0";
  const Loaded got = loadCurve(circle);
  const CEntPolyline* polyline = castPolyline(got.only());
  ASSERT_NE(polyline, nullptr) << got.error.GetErrorLine();
  EXPECT_TRUE(polyline->isClosed());
  double length = 0;
  forEachChord(*polyline, [&](const PNT_3D& vertex, const PNT_3D& middle) {
    EXPECT_NEAR(std::hypot(vertex.x, vertex.y), 2, 1e-9);
    EXPECT_GT(std::hypot(middle.x, middle.y), 2 * (1 - 1.001e-4));
    length += 2 * vertex.dist(middle);
  });
  EXPECT_NEAR(length, 4 * kPi, 0.01);
  EXPECT_EQ(got.report.count("weights ignored"), 0);
}

TEST(ReadCurves, WhatASplineLacks) {
  const Definitions names{{"kClamped", kClamped}, {"kControls", kControls}, {"kFits", kFits}};
  for (const Row& t : rowsWith(names)) {
    const Loaded got = loadCurve(kSpline + t.text("pairs"));
    const CEntPolyline* polyline = castPolyline(got.only());
    ASSERT_NE(polyline, nullptr) << got.error.GetErrorLine();
    const std::size_t points = pointsOf(*polyline).size();
    EXPECT_GE(points, t.count("fewest"));
    EXPECT_LE(points, t.count("most"));
    for (const char* note : {"curve as frame", "weights ignored"})
      EXPECT_EQ(got.report.count(note), std::string(note) == t.text("note"));
  }
}

TEST(ReadCurves, FitPointsAreOnTheCurve) {
  const Definitions names{{"kFits", kFits}};
  for (const Row& t : rowsWith(names)) {
    const Loaded got = loadCurve(kSpline + t.text("pairs"), 1e-6);
    const CEntPolyline* polyline = castPolyline(got.only());
    ASSERT_NE(polyline, nullptr) << got.error.GetErrorLine();
    EXPECT_EQ(polyline->isClosed(), t.flag("closed"));
    std::vector<PNT_3D> points = pointsOf(*polyline);
    for (const PNT_3D& through : {PNT_3D(0, 0, 0), PNT_3D(4, 3, 1), PNT_3D(8, 0, 2)}) {
      double nearest = 1;
      for (const PNT_3D& p : points) nearest = std::min(nearest, p.dist(through));
      EXPECT_LT(nearest, 1e-9);
    }
    if (t.flag("closed")) points.push_back(points.front());
    const std::size_t last = points.size() - 1;
    const PNT_2D leaving = points[1] - points[0], arriving = points[last] - points[last - 1];
    EXPECT_GT(leaving.x * t.point("start").x + leaving.y * t.point("start").y,
              0.99 * leaving.dist(0, 0));
    EXPECT_GT(arriving.x * t.point("end").x + arriving.y * t.point("end").y,
              0.99 * arriving.dist(0, 0));
  }
}

TEST(ReadCurves, AHelixIsItsSpline) {
  const std::string spline = kClamped + kControls;
  const std::string axis =
      "|100 AcDbHelix|10 99|20 99|30 99|11 98|21 98|12 0|22 0|32 1|40 7|41 3|42 9";
  const Loaded got = loadCurve("0 HELIX|8 0|100 AcDbSpline|70 8|71 3|" + spline + axis);
  const Loaded same = loadCurve(kSpline + spline);
  ASSERT_NE(castPolyline(got.only()), nullptr) << got.error.GetErrorLine();
  EXPECT_EQ(pointsOf(*castPolyline(got.only())), pointsOf(*castPolyline(same.only())));
  EXPECT_EQ(got.report.count("weights ignored"), 0);
}

TEST(ReadCurves, Leaders) {
  const std::string path = "10 0|20 0|30 1|10 4|20 3|30 1|10 8|20 0|30 1";
  const Definitions names{{"path", path}};
  for (const Row& t : rowsWith(names)) {
    const Loaded got = loadCurve("0 LEADER|8 0|3 STANDARD|" + t.text("pairs"));
    const auto& entities = got.data->getEntTable().getEntityTbl();
    ASSERT_EQ(entities.size(), 1u + t.flag("arrow")) << got.error.GetErrorLine();
    const CEntPolyline* polyline = castPolyline(entities.front());
    ASSERT_NE(polyline, nullptr);
    const std::vector<PNT_3D> points = pointsOf(*polyline);
    EXPECT_EQ(points.size() > 3, t.flag("curved"));
    expectNear(points.front(), PNT_3D(0, 0, 1), 1e-9);
    expectNear(points.back(), PNT_3D(8, 0, 1), 1e-9);
    if (t.flag("arrow")) expectNear(entities.back()->getBdry().min, PNT_3D(0, 0, 1), 1e-9);
  }
}

TEST(ReadCurves, ThePolicySaysHowClose) {
  const std::string curves[] = {"0 ELLIPSE|8 0|10 0|20 0|11 4|21 0|40 0.5",
                                kSpline + kClamped + kControls};
  for (const std::string& curve : curves) {
    std::size_t before = 0;
    for (const double error : {1e-2, 1e-3, 1e-4}) {
      const Loaded got = loadCurve(curve, error);
      ASSERT_NE(castPolyline(got.only()), nullptr);
      const std::size_t points = pointsOf(*castPolyline(got.only())).size();
      EXPECT_GT(points, before * 3 / 2);
      before = points;
    }
  }
  const Loaded finest = loadCurve(curves[0], std::nan(""));
  ASSERT_NE(castPolyline(finest.only()), nullptr);
  EXPECT_EQ(pointsOf(*castPolyline(finest.only())).size(), 1024u);
}

TEST(ReadCurves, NonsenseGivesNothing) {
  for (const Row& t : rows())
    EXPECT_EQ(loadCurve(t.text("list")).drawing().getEntTable().getEntityTbl().size(), 0u);
}

TEST(ReadCurves, StrictlyTheyAreSkipped) {
  const Loaded got = loadText(entitiesOf("AC1015", "0 ELLIPSE|8 0|10 0|20 0|11 4|21 0|40 0.5"));
  EXPECT_FALSE(got.error.HasAnError());
  EXPECT_EQ(got.only(), nullptr);
  EXPECT_EQ(got.report.count("kind skipped"), 1);
}

// A few lines of a file suffice for a thousand points of an ellipse.
TEST(ReadCurves, TheCurvesOfAFileHaveABound) {
  const std::string ellipse = "0 ELLIPSE|8 0|10 0|20 0|11 4|21 0|40 0.5|42 3";
  CFileMemory file(u"test.dxf", IFile::kRead, pairsOf(ellipse + "|" + ellipse + "|0 EOF"));
  Loaded target;
  CFileDXFIOptions options{&target.report, CFileDXFIPolicy::forAnyFile()};
  CFileDXFILoadDataSemantor semantor(target.drawing(), &target.error, options);
  CFileDXFILexer lexer(file, &target.error);
  const vek0::detail::DimStyles styles;
  vek0::detail::RecordReader records(
      {lexer, semantor, target.drawing().getEntFactory(), target.error, options, styles});
  records.curveRoom = 150;
  vek0::detail::CurveReader curves(records);
  ASSERT_TRUE(file.open());
  lexer.read();
  const vek0::detail::EntPtr fine = curves.readEllipse(), coarse = curves.readEllipse();
  ASSERT_NE(castPolyline(fine.get()), nullptr)
      << target.error.GetErrorType() << " " << target.error.GetErrorLine();
  ASSERT_NE(castPolyline(coarse.get()), nullptr);
  const auto points = pointsOf(*castPolyline(fine.get())),
             few = pointsOf(*castPolyline(coarse.get()));
  EXPECT_GT(points.size(), 100u);
  EXPECT_EQ(few.size(), 9u);
  EXPECT_EQ(few.front(), points.front());
  EXPECT_EQ(few.back(), points.back());
  EXPECT_EQ(target.report.count("curve coarse"), 1);
}
