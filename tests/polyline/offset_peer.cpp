#include <geos/geom/Coordinate.h>
#include <geos/geom/CoordinateArraySequence.h>
#include <geos/geom/GeometryFactory.h>
#include <geos/geom/LineString.h>
#include <geos/geom/LinearRing.h>
#include <geos/geom/Point.h>
#include <geos/geom/Polygon.h>
#include <geos/operation/buffer/BufferOp.h>
#include <geos/operation/distance/DistanceOp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "vek0core/polyline/offset.h"

namespace {

using geos::geom::Coordinate;
using geos::geom::Geometry;
using geos::geom::GeometryFactory;
using geos::operation::buffer::BufferOp;
using geos::operation::buffer::BufferParameters;
using GeometryPtr = std::unique_ptr<Geometry>;

constexpr int kQuadrantSegments = 256;
// The peer replaces arcs by chords: 1 - cos(pi / 4 / 64) of the distance, plus some rounding.
constexpr double kChordShare = 1e-3;

const GeometryFactory& factory() { return *GeometryFactory::getDefaultInstance(); }

template <class Line>
auto coordinates(const Line& points, bool closed) {
  auto sequence = std::make_unique<geos::geom::CoordinateArraySequence>();
  for (const PNT_3D& p : points) sequence->add(Coordinate(p.x, p.y));
  if (closed) sequence->add(Coordinate(points.front().x, points.front().y));
  return sequence;
}

GeometryPtr lineOf(const std::vector<PNT_3D>& points) {
  return factory().createLineString(coordinates(points, false));
}

GeometryPtr polygonOf(const std::vector<PNT_3D>& points) {
  return factory().createPolygon(factory().createLinearRing(coordinates(points, true)));
}

GeometryPtr borderOf(const Geometry& geometry, double dist) {
  const BufferParameters parameters(kQuadrantSegments);
  return BufferOp(&geometry, parameters).getResultGeometry(dist)->getBoundary();
}

// Points along the results, densely sampled.
std::vector<PNT_3D> samples(const std::vector<PATH_3D>& paths) {
  std::vector<PNT_3D> points;
  for (const PATH_3D& path : paths)
    for (const EDGE_3D& edge : path.edges)
      for (int i = 0; i <= 8; ++i) points.push_back(edge.at(i / 8.0));
  return points;
}

double farthest(const std::vector<PNT_3D>& points, const Geometry& from) {
  double most = 0;
  for (const PNT_3D& p : points) {
    const auto point = std::unique_ptr<Geometry>(factory().createPoint(Coordinate(p.x, p.y)));
    most = std::max(most, point->distance(&from));
  }
  return most;
}

double farthest(const Geometry& from, const std::vector<PATH_3D>& paths,
                const std::vector<PNT_3D>& spared, double reach) {
  double most = 0;
  const auto points = from.getCoordinates();
  for (std::size_t i = 0; i < points->size(); ++i) {
    const PNT_2D p(points->getAt(i).x, points->getAt(i).y);
    double least = 1e300;
    for (const PNT_3D& end : spared)
      if (std::fabs(end.PNT_2D::dist(p) - reach) < kChordShare * reach) least = 0;
    for (const PATH_3D& path : paths) {
      std::size_t edge;
      double t;
      path.nearest(p, edge, t);
      least = std::min(least, path.edges[edge].at(t).PNT_2D::dist(p));
    }
    most = std::max(most, least);
  }
  return most;
}

std::vector<PATH_3D> offsetsOf(const std::vector<PNT_3D>& points, bool closed, double dist) {
  std::vector<PATH_3D> out;
  EXPECT_TRUE(offsetPath(PATH_3D(points, {}, closed), dist, OFFSET_OPTIONS(), out));
  return out;
}

// A star with random radii about the origin, which never crosses itself.
std::vector<PNT_3D> randomRing(std::mt19937& random) {
  std::uniform_real_distribution<double> radius(2, 10);
  const int n = std::uniform_int_distribution<int>(3, 40)(random);
  std::vector<PNT_3D> points;
  for (int i = 0; i < n; ++i) {
    const double r = radius(random), a = 6.283185307179586 * i / n;
    points.emplace_back(r * std::cos(a), r * std::sin(a), 0);
  }
  return points;
}

std::vector<PNT_3D> randomChain(std::mt19937& random) {
  std::uniform_real_distribution<double> place(-10, 10);
  const int n = std::uniform_int_distribution<int>(2, 20)(random);
  std::vector<PNT_3D> points;
  for (int i = 0; i < n; ++i) points.emplace_back(place(random), place(random), 0);
  return points;
}

// Overlaps itself, meets itself at right angles and reverses: nothing is in general position.
std::vector<PNT_3D> latticeWalk(std::mt19937& random) {
  std::vector<PNT_3D> points{PNT_3D(0, 0, 0)};
  for (int i = 0; i < 30; ++i) {
    const unsigned way = random() % 4;
    const double step = way < 2 ? 1 : -1;
    const PNT_3D& p = points.back();
    points.push_back(way % 2 == 0 ? PNT_3D(p.x + step, p.y, 0) : PNT_3D(p.x, p.y + step, 0));
  }
  return points;
}

TEST(OffsetPeer, RingsGrowAndShrinkAsBuffersDo) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> distance(0.05, 3);
  for (int round = 0; round < 500; ++round) {
    SCOPED_TRACE(round);
    const std::vector<PNT_3D> ring = randomRing(random);
    for (const double dist : {distance(random), -distance(random)}) {
      SCOPED_TRACE(dist);
      const std::vector<PATH_3D> ours = offsetsOf(ring, true, dist);
      for (const PATH_3D& path : ours) EXPECT_TRUE(path.closed);
      const GeometryPtr theirs = borderOf(*polygonOf(ring), dist);
      ASSERT_EQ(ours.empty(), theirs->isEmpty());
      if (ours.empty()) continue;
      const double most = kChordShare * std::fabs(dist);
      EXPECT_LE(farthest(samples(ours), *theirs), most);
      EXPECT_LE(farthest(*theirs, ours, {}, std::fabs(dist)), most);
    }
  }
}

void expectBorderOfBuffer(const std::vector<PNT_3D>& chain, double dist) {
  std::vector<PATH_3D> ours = offsetsOf(chain, false, dist);
  for (PATH_3D& path : offsetsOf(chain, false, -dist)) ours.push_back(path);
  const GeometryPtr theirs = borderOf(*lineOf(chain), dist);
  EXPECT_LE(farthest(samples(ours), *theirs), kChordShare * dist);
  EXPECT_LE(farthest(*theirs, ours, {chain.front(), chain.back()}, dist), kChordShare * dist);
}

// The border of a chain's buffer consists of the offsets on both sides and the round ends.
TEST(OffsetPeer, BothSidesOfAChainAreTheBorderOfItsBuffer) {
  std::mt19937 random(2);
  std::uniform_real_distribution<double> distance(0.05, 3);
  for (int round = 0; round < 500; ++round) {
    SCOPED_TRACE(round);
    const std::vector<PNT_3D> chain = randomChain(random);
    expectBorderOfBuffer(chain, distance(random));
  }
}

TEST(OffsetPeer, WalksOnALatticeToo) {
  std::mt19937 random(3);
  for (int round = 0; round < 60; ++round) {
    SCOPED_TRACE(round);
    const std::vector<PNT_3D> chain = latticeWalk(random);
    for (const double dist : {0.3, 0.45, 0.7, 1.3}) {
      SCOPED_TRACE(dist);
      expectBorderOfBuffer(chain, dist);
    }
  }
}

}  // namespace
