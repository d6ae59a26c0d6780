#include "hatch/areas.h"
#include "support/test.h"

namespace {

constexpr double kQuarter = 1.5707963267948966;
constexpr double kAnyNumber = 1e6;

// Records the lines in order; a dot is a line from a point to itself.
class Drawn : public IHatchSink {
 public:
  struct Line {
    PNT_3D from, to;
    bool isDot() const { return from == to; }
    double length() const { return from.dist(to); }
  };

  void line(const PNT_3D& from, const PNT_3D& to) override { lines.push_back({from, to}); }
  void dot(const PNT_3D& at) override { lines.push_back({at, at}); }

  std::string text() const {
    std::ostringstream out;
    for (const Line& l : lines) {
      out << (&l == lines.data() ? "" : " ") << l.from.x << ',' << l.from.y;
      if (!l.isDot()) out << '>' << l.to.x << ',' << l.to.y;
    }
    return out.str();
  }

  std::vector<Line> lines;
};

HATCH_TYPE pattern(const std::vector<HATCH_LINE>& lines) {
  return {u"TEST", u"", lines.data(), static_cast<std::int32_t>(lines.size())};
}

struct Hatch {
  std::vector<HATCH_LINE> lines;
  double scale = 1, rotate = 0;

  Drawn fill(const Points& boundary) const {
    Drawn drawn;
    EXPECT_EQ(fillHatch(pattern(lines), scale, rotate, boundary, kAnyNumber, drawn),
              HatchStatus::Done);
    return drawn;
  }
  Drawn fill(const Rings& area) const { return fill(joinHatchRings(area)); }
};

Hatch continuous(const Hatch& hatch) {
  Hatch result = hatch;
  result.lines[0].numDash = 0;
  return result;
}

// A single family: coarse or fine, with or without dashes, on the grid or off it.
Hatch randomHatch(AreaMaker& make) {
  HATCH_LINE line = {};
  const bool isOnGrid = make.whole(0, 1) > 0;
  // In a rotated family, rounding would move lines on the grid to one side or the other.
  line.angle = isOnGrid ? 0 : make.number(-7, 7);
  line.x0 = isOnGrid ? make.whole(-3, 3) : make.number(-9, 9);
  line.y0 = isOnGrid ? make.whole(-3, 3) : make.number(-9, 9);
  line.dx = make.number(-3, 3);
  line.dy = isOnGrid ? 0.5 * (make.whole(0, 1) > 0 ? 1 : -1) : make.number(0.1, 2);
  line.numDash = make.whole(0, 6);
  for (int i = 0; i < line.numDash; ++i) {
    const double length = make.number(0.1, 1);
    line.dash[i] = i % 2 > 0 ? -length : make.whole(0, 3) > 0 ? length : 0;
  }
  if (line.numDash == 1) line.dash[0] = 1;
  return {{line}, isOnGrid ? 1 : make.number(0.5, 2), isOnGrid ? 0 : make.number(-7, 7)};
}

// Geometry of the family, straight from its definition and in wider numbers.
struct Frame {
  explicit Frame(const Hatch& hatch) : line(hatch.lines[0]), scale(hatch.scale) {
    const long double angle = static_cast<long double>(line.angle + hatch.rotate);
    ux = std::cos(angle);
    uy = std::sin(angle);
    const long double c = std::cos(static_cast<long double>(hatch.rotate));
    const long double s = std::sin(static_cast<long double>(hatch.rotate));
    x0 = scale * (line.x0 * c - line.y0 * s);
    y0 = scale * (line.x0 * s + line.y0 * c);
  }
  long double along(const PNT_3D& p) const { return p.x * ux + p.y * uy; }
  long double across(const PNT_3D& p) const { return p.y * ux - p.x * uy; }
  long double acrossOf(long k) const { return y0 * ux - x0 * uy + k * scale * line.dy; }
  long double startOf(long k) const { return x0 * ux + y0 * uy + k * scale * line.dx; }
  long lineOf(const PNT_3D& p) const {
    return std::lround((across(p) - acrossOf(0)) / (scale * line.dy));
  }

  // Length drawn between the start of a line's dashes and a place on it.
  long double drawnUpTo(long double place) const {
    long double period = 0, drawn = 0, result = 0;
    for (int i = 0; i < line.numDash; ++i) period += scale * std::fabs(line.dash[i]);
    if (period == 0) return place;
    for (int i = 0; i < line.numDash; ++i) drawn += scale * std::max(line.dash[i], 0.0);
    const long double periods = std::floor(place / period);
    long double rest = place - periods * period;
    for (int i = 0; i < line.numDash; ++i) {
      const long double length = scale * std::fabs(line.dash[i]);
      if (line.dash[i] > 0) result += std::clamp(rest, 0.0L, length);
      rest -= length;
    }
    return periods * drawn + result;
  }

  HATCH_LINE line;
  long double scale, ux, uy, x0, y0;
};

// Length of a line's dashes inside an area, by testing all edges. The line is evaluated slightly to
// its left, because it belongs there if an edge runs along it.
long double lengthInside(const Rings& area, const Frame& frame, long k) {
  const long double across = frame.acrossOf(k) + 1e-9L;
  std::vector<long double> cuts;
  for (const Points& ring : area) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const PNT_3D &a = ring[i], &b = ring[(i + 1) % ring.size()];
      const long double da = frame.across(a) - across, db = frame.across(b) - across;
      if ((da > 0) == (db > 0)) continue;
      cuts.push_back(frame.along(a) + (frame.along(b) - frame.along(a)) * da / (da - db));
    }
  }
  std::sort(cuts.begin(), cuts.end());
  long double length = 0;
  for (std::size_t i = 0; i + 1 < cuts.size(); i += 2) {
    length += frame.drawnUpTo(cuts[i + 1] - frame.startOf(k)) -
              frame.drawnUpTo(cuts[i] - frame.startOf(k));
  }
  return length;
}

// Continuous lines from start to end, joined where one ends and another starts.
std::map<std::pair<double, double>, std::pair<double, double>> joined(
    const std::vector<const Drawn*>& parts) {
  std::map<std::pair<double, double>, std::pair<double, double>> lines;
  for (const Drawn* drawn : parts) {
    for (const Drawn::Line& l : drawn->lines) {
      EXPECT_TRUE(lines.emplace(std::pair(l.from.x, l.from.y), std::pair(l.to.x, l.to.y)).second)
          << "two lines start at " << l.from.x << ',' << l.from.y;
    }
  }
  for (auto& [from, to] : lines) {
    for (auto next = lines.find(to); next != lines.end(); next = lines.find(to)) {
      to = next->second;
      lines.erase(next);
    }
  }
  return lines;
}

void expectSame(const Drawn& got, const Drawn& want, double angle, double dx, double dy) {
  ASSERT_EQ(got.lines.size(), want.lines.size());
  for (std::size_t i = 0; i < got.lines.size(); ++i) {
    for (PNT_3D Drawn::Line::*end : {&Drawn::Line::from, &Drawn::Line::to}) {
      PNT_3D p = want.lines[i].*end;
      p.rotate(PNT_3D(0, 0, 0), angle);
      ASSERT_NEAR((got.lines[i].*end).dist(p + PNT_3D(dx, dy, 0)), 0, 1e-9);
    }
  }
}

}  // namespace

TEST(FillHatch, Cases) {
  const std::map<std::string, HATCH_LINE> lines{
      {"level", {0, 0, 0, 0, 5, {}, 0}},       {"upright", {kQuarter, 1, 0, 0, 4, {}, 0}},
      {"dashed", {0, 0, 0, 1, 5, {2, -1}, 2}}, {"back", {0, 0, 0, -1, -5, {2, -1}, 2}},
      {"dots", {0, 0, 0, 0, 5, {0, -5}, 2}},   {"dotLast", {0, 0, 0, 0, 5, {-5, 0}, 2}}};
  for (const Row& t : rows()) {
    EXPECT_EQ(Hatch{{lines.at(t.text("line"))}}.fill(rings(t.text("area"))).text(),
              t.text("drawn"));
  }
}

TEST(FillHatch, FamiliesComeInOrderAtTheHeightOfTheFirstPoint) {
  const Hatch cross = {{{0, 0, 0, 0, 5, {}, 0}, {0, 0, 2, 0, 5, {}, 0}}};
  const Drawn drawn = cross.fill(Points{{0, 1, 7}, {3, 1, 8}, {3, 6, 9}, {0, 6, 9}});
  EXPECT_EQ(drawn.text(), "0,5>3,5 0,2>3,2");
  for (const auto& line : drawn.lines) EXPECT_TRUE(line.from.z == 7 && line.to.z == 7);
}

// Tests points near the ends as well as in between, away from vertices on the grid. Lines on an
// edge belong to its left, so the points are moved left, by less than any distance of two vertices
// in that direction.
TEST(FillHatch, EveryLineIsInside) {
  constexpr double kAside = 1e-10;
  std::size_t count = 0;
  for (const unsigned seed : rounds<unsigned>(600)) {
    AreaMaker make(seed);
    const Rings area = make.area();
    const Hatch hatch = randomHatch(make);
    const Frame frame(hatch);
    for (const auto& line : hatch.fill(area).lines) {
      if (line.isDot() || line.length() < 0.01) continue;
      for (const double t : {0.001, 0.4837, 0.999}) {
        const PNT_3D p =
            line.from + PNT_3D((line.to.x - line.from.x) * t, (line.to.y - line.from.y) * t, 0);
        ASSERT_TRUE(contains(area, p.x - kAside * frame.uy, p.y + kAside * frame.ux))
            << p.x << ',' << p.y;
        ++count;
      }
    }
  }
  EXPECT_GT(count, 20000u);
}

TEST(FillHatch, EveryLineHasTheLengthOfItsInside) {
  for (const unsigned seed : rounds<unsigned>(600)) {
    AreaMaker make(seed);
    const Rings area = make.area();
    const Hatch hatch = randomHatch(make);
    const Frame frame(hatch);
    std::map<long, long double> lengths;
    for (const auto& line : hatch.fill(area).lines)
      lengths[frame.lineOf(line.from)] += line.length();
    std::vector<long> ends;
    for (const Points& ring : area)
      for (const PNT_3D& p : ring) ends.push_back(frame.lineOf(p));
    const auto [first, last] = std::minmax_element(ends.begin(), ends.end());
    for (long k = *first - 1; k <= *last + 1; ++k) {
      ASSERT_NEAR(static_cast<double>(lengths[k]),
                  static_cast<double>(lengthInside(area, frame, k)), 1e-5)
          << "line " << k;
    }
  }
}

TEST(FillHatch, TurnsWithItsArea) {
  for (const unsigned seed : rounds<unsigned>(500)) {
    AreaMaker make(seed);
    const Rings area = make.starArea();
    const Hatch hatch = randomHatch(make);
    for (const double angle : {kQuarter, 2 * kQuarter, 3 * kQuarter, make.number(-3, 3)}) {
      Hatch turned = hatch;
      turned.rotate += angle;
      expectSame(turned.fill(vek0::test::turned(area, angle)), hatch.fill(area), angle, 0, 0);
    }
  }
}

TEST(FillHatch, MovesByItsLattice) {
  for (const unsigned seed : rounds<unsigned>(500)) {
    AreaMaker make(seed);
    const Rings area = make.starArea();
    const Hatch hatch = randomHatch(make);
    const Frame frame(hatch);
    double period = 0;
    for (int i = 0; i < frame.line.numDash; ++i) period += std::fabs(frame.line.dash[i]);
    const int rows = make.whole(-50, 50), columns = make.whole(-50, 50);
    const double along = hatch.scale * (rows * frame.line.dx + columns * period);
    const double across = hatch.scale * rows * frame.line.dy;
    const double dx = static_cast<double>(along * frame.ux - across * frame.uy);
    const double dy = static_cast<double>(along * frame.uy + across * frame.ux);
    expectSame(hatch.fill(vek0::test::moved(area, dx, dy)), hatch.fill(area), 0, dx, dy);
  }
}

// Cutting an area in two does not change its lines: they meet at equal points on the cut.
TEST(FillHatch, NeighboursMeetExactly) {
  for (const unsigned seed : rounds<unsigned>(1000)) {
    AreaMaker make(seed);
    const bool isOnGrid = make.whole(0, 1) > 0;
    Points ring = make.star(make.whole(6, isOnGrid ? 12 : 30), 0, 0, 8, 12);
    PNT_3D centre(make.number(-1, 1), make.number(-1, 1), 0);
    if (isOnGrid) {
      for (PNT_3D& p : ring) p.set(std::round(p.x), std::round(p.y));
      centre.set(0, 0);
    }
    const auto cut = ring.begin() + make.whole(1, 4);
    Points right(ring.begin(), cut + 1), left(cut, ring.end());
    right.push_back(centre);
    left.push_back(ring[0]);
    left.push_back(centre);

    const Hatch hatch = continuous(randomHatch(make));
    const Drawn whole = hatch.fill(Rings{ring}), a = hatch.fill(Rings{left}),
                b = hatch.fill(Rings{right});
    ASSERT_EQ(joined({&a, &b}), joined({&whole}));
  }
}

TEST(FillHatch, AHoleAndWhatIsInItMakeTheWhole) {
  for (const unsigned seed : rounds<unsigned>(1000)) {
    AreaMaker make(seed);
    const Points outer = make.star(40, 0, 0, 8, 12),
                 hole = make.star(make.whole(8, 30), 0, 0, 3, 5);
    const Hatch hatch = continuous(randomHatch(make));
    const Drawn ring = hatch.fill(Rings{outer, hole}), inner = hatch.fill(Rings{hole}),
                whole = hatch.fill(Rings{outer});
    ASSERT_EQ(joined({&ring, &inner}), joined({&whole}));
  }
}

// Ten million units from the origin, which is a hundred million lines and dashes away.
TEST(FillHatch, DashesDoNotDrift) {
  const double far = 1e7;
  const Hatch hatch = {{{0, 0, 0, 0.3, 0.1, {0.25, -0.125}, 2}}};
  const Rings area = vek0::test::moved(rings("0,0 3,0 3,3 0,3"), far, far);
  const Frame frame(hatch);
  std::size_t whole = 0;
  for (const auto& line : hatch.fill(area).lines) {
    const long k = frame.lineOf(line.from);
    EXPECT_NEAR(line.from.y, static_cast<double>(frame.acrossOf(k)), 2e-9);
    if (line.from.x == far || line.to.x == far + 3) continue;
    const long double periods = (line.from.x - frame.startOf(k)) / 0.375L;
    EXPECT_NEAR(static_cast<double>(periods - std::round(periods)), 0, 1e-8);
    EXPECT_NEAR(line.length(), 0.25, 4e-9);
    ++whole;
  }
  EXPECT_GT(whole, 200u);
}

TEST(FillHatch, RefusesWhatWouldNotEnd) {
  constexpr double tiny = std::numeric_limits<double>::denorm_min();
  const Definitions names{{"tiny", tiny},
                          {"done", HatchStatus::Done},
                          {"dense", HatchStatus::TooDense},
                          {"pattern", HatchStatus::BadPattern},
                          {"boundary", HatchStatus::BadBoundary}};
  for (const Row& t : rowsWith(names)) {
    const std::vector<double> n = t.reals("line");
    const std::vector<HATCH_LINE> lines = {
        {n[0], n[1], n[2], n[3], n[4], {n[5], n[6]}, static_cast<std::int32_t>(n[7])}};
    const double size = t.real("size");
    const auto status = t.whole<HatchStatus>("status");
    const Points square = {{0, 0, 0}, {size, 0, 0}, {size, size, 0}, {0, size, 0}};
    Drawn drawn;
    EXPECT_EQ(fillHatch(pattern(lines), t.real("scale"), t.real("rotate"), square, t.real("limit"),
                        drawn),
              status);
    EXPECT_TRUE(status == HatchStatus::Done || drawn.lines.empty());
    EXPECT_LE(drawn.lines.size(), 100u);
  }
}

// Few lines cross a comb, but each tooth cuts all of them.
TEST(FillHatch, CountsThePiecesOfComplicatedBoundaries) {
  const std::vector<HATCH_LINE> lines = {{0, 0, 0.5, 0, 1, {}, 0}};
  Points comb;
  for (int i = 0; i < 1000; ++i) {
    comb.emplace_back(i, 0, 0);
    comb.emplace_back(i + 0.5, 1000, 0);
  }
  EXPECT_NEAR(estimateHatch(pattern(lines), 1, 0, comb).pieces, 1e6, 1);
  Drawn drawn;
  EXPECT_EQ(fillHatch(pattern(lines), 1, 0, comb, 9e5, drawn), HatchStatus::TooDense);
  EXPECT_EQ(fillHatch(pattern(lines), 1, 0, comb, 1.1e6, drawn), HatchStatus::Done);
  EXPECT_NEAR(static_cast<double>(drawn.lines.size()), 1e6, 1e3);
}

TEST(FillHatch, DrawsEveryPatternOfTheCatalogue) {
  const Rings area = rings("-70,-70 70,-70 70,70 -70,70/-20,-20 20,-20 20,20 -20,20");
  for (long i = 0; const HATCH_TYPE* type = getHatch(i); ++i) {
    SCOPED_TRACE(i);
    Drawn drawn;
    ASSERT_EQ(fillHatch(*type, 8, 0.3, joinHatchRings(area), kAnyNumber, drawn), HatchStatus::Done);
    EXPECT_FALSE(drawn.lines.empty());
    for (const auto& line : drawn.lines) {
      const PNT_3D middle((line.from.x + line.to.x) / 2, (line.from.y + line.to.y) / 2, 0);
      ASSERT_TRUE(contains(area, middle.x, middle.y)) << middle.x << ',' << middle.y;
    }
  }
}

TEST(FillHatch, NeedsLines) {
  Drawn drawn;
  EXPECT_EQ(fillHatch(pattern({}), 1, 0, vek0::test::pts("0,0 9,0 9,9"), 1e6, drawn),
            HatchStatus::BadPattern);
}
