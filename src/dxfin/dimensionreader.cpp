#include <algorithm>
#include <cmath>
#include <string>

#include "dxfin/mtextreader.h"
#include "dxfin/ocs.h"
#include "dxfin/replacement.h"
#include "files/number.h"
#include "vek0core/entities/block.h"
#include "vek0core/entities/entinsert.h"
#include "vek0core/entities/entline.h"
#include "vek0core/geometry/angle.h"

namespace vek0::detail {
namespace {

// Code 70, without the bits above.
enum Type {
  Linear,
  Aligned,
  Angular,
  Diameter,
  Radius,
  AngularByPoints,
  Ordinate,
  Arc,
  LargeRadius
};
constexpr long kTypeMask = 7, kAlongX = 64;

double distance(const PNT_3D& a, const PNT_3D& b) {
  return std::hypot(b.x - a.x, b.y - a.y, b.z - a.z);
}

/// The block that shows what a record means.
struct Picture {
  CBlock* block = nullptr;
  zim::WString name;

  void take(RecordReader& in) {
    block = in.findBlock(in.lexer().getBytes());
    name = in.lexer().getText();
  }
  /// Whether it can be inserted; if not, an error is recorded. A block that is not defined
  /// yet is made.
  bool ready(RecordReader& in) {
    if (!block) block = in.context().semantor.createBlockHurried(name, 0);
    if (block && !block->isXRef()) return true;
    if (!in.failed()) in.fail(CFileDXFIError::BlockNotFound);
    return false;
  }
};

EntPtr insertPicture(RecordReader& in, Picture& picture, const PNT_3D& at, double angleRad,
                     const zim::WString& kind) {
  if (!picture.ready(in)) return nullptr;
  in.insertRead = true;
  const Record& r = in.record();
  std::vector<EntPtr> built;
  if (EntPtr insert = in.built(in.factory().createEntInsert(in.gestor(), r.layer, r.ltype, r.color,
                                                            picture.block, at, 1, 1, 1, angleRad, 1,
                                                            1, 0, 0, r.handle)))
    built.push_back(std::move(insert));
  return handOver(in, std::move(built), kind);
}

/// Draws a dimension that has no picture, from its points.
class DimensionDrawing {
 public:
  DimensionDrawing(RecordReader& in, Type type)
      : m_in(in), m_axes(in.record().extrusion), m_type(type) {}

  void draw(const MTextRecord& text);

  std::vector<EntPtr> built;

 private:
  PNT_3D point(long i) const { return m_in.record().point(i); }
  PNT_3D direction() const;
  PNT_3D footOn(const PNT_3D& way, const PNT_3D& p) const;
  void drawLines();
  void drawLine(const PNT_3D& from, const PNT_3D& to);
  void drawText(const MTextRecord& text);
  double measurement() const;
  double angle() const;
  std::u16string measured() const;
  PNT_3D textPoint() const;

  RecordReader& m_in;
  PlaneAxes m_axes;
  Type m_type;
};

// Of the dimension line, of length 1.
PNT_3D DimensionDrawing::direction() const {
  const PNT_3D from = point(3), to = point(4);
  const double length = distance(from, to);
  if (m_type == Aligned && length > 0)
    return PNT_3D((to.x - from.x) / length, (to.y - from.y) / length, (to.z - from.z) / length);
  const double angle = m_in.record().real(50) * kRadiansPerDegree;
  return m_axes.toWorld(PNT_3D(std::cos(angle), std::sin(angle), 0));
}

// The point of the dimension line next to p.
PNT_3D DimensionDrawing::footOn(const PNT_3D& way, const PNT_3D& p) const {
  const PNT_3D on = point(0);
  const double along = (p.x - on.x) * way.x + (p.y - on.y) * way.y + (p.z - on.z) * way.z;
  return PNT_3D(on.x + along * way.x, on.y + along * way.y, on.z + along * way.z);
}

void DimensionDrawing::drawLine(const PNT_3D& from, const PNT_3D& to) {
  if (m_in.failed() || from == to) return;
  if (!std::isfinite(distance(from, to))) return m_in.fail(CFileDXFIError::InconsistentRecord);
  const Record& r = m_in.record();
  if (EntPtr line =
          m_in.built(m_in.factory().createEntLine(m_in.gestor(), r.layer, r.ltype, r.color,
                                                  LINE_3D(from, to), built.empty() ? r.handle : 0)))
    built.push_back(std::move(line));
}

void DimensionDrawing::drawLines() {
  switch (m_type) {
    case Linear:
    case Aligned: {
      const PNT_3D way = direction();
      const PNT_3D first = footOn(way, point(3)), second = footOn(way, point(4));
      drawLine(point(3), first);
      drawLine(point(4), second);
      return drawLine(first, second);
    }
    case Angular:
      drawLine(point(3), point(4));
      return drawLine(point(5), point(0));
    case AngularByPoints:
    case Arc:
      drawLine(point(5), point(3));
      return drawLine(point(5), point(4));
    case Ordinate:
      return drawLine(point(3), point(4));
    default:
      return drawLine(point(5), point(0));
  }
}

// Between the two lines, in degrees.
double DimensionDrawing::angle() const {
  const bool byPoints = m_type != Angular;
  const PNT_3D a = point(byPoints ? 5 : 3), b = point(byPoints ? 3 : 4);
  const PNT_3D c = point(5), d = point(byPoints ? 4 : 0);
  const double turn = std::atan2(d.y - c.y, d.x - c.x) - std::atan2(b.y - a.y, b.x - a.x);
  return std::fabs(std::remainder(turn, 2 * kPi)) / kRadiansPerDegree;
}

// What the record says it measures, or else what its points do: some programs leave 0 or -1.
double DimensionDrawing::measurement() const {
  const double told = m_in.record().real(42);
  const bool isAngle = m_type == Angular || m_type == AngularByPoints;
  if (told > 0) return isAngle ? told / kRadiansPerDegree : told;
  const PNT_3D way = direction(), from = point(3), to = point(4);
  switch (m_type) {
    case Linear:
    case Aligned:
      return std::fabs((to.x - from.x) * way.x + (to.y - from.y) * way.y + (to.z - from.z) * way.z);
    case Ordinate:
      return (m_in.record().integer(70) & kAlongX) != 0 ? from.x - point(0).x : from.y - point(0).y;
    case Angular:
    case AngularByPoints:
      return angle();
    case Arc:
      return angle() * kRadiansPerDegree * distance(point(5), point(0));
    default:
      return distance(point(0), point(5));
  }
}

// With four decimals at most.
std::u16string DimensionDrawing::measured() const {
  constexpr double digits = 1e4;
  constexpr int surplus = 2;  // decimals of the format beyond those
  const double value = std::round(measurement() * digits) / digits;
  char buffer[kFixedRoom];
  const char* end = formatFixed(buffer, value) - surplus;
  while (end[-1] == '0') --end;
  if (end[-1] == '.') --end;
  std::u16string text(static_cast<const char*>(buffer), end);
  switch (m_type) {
    case Angular:
    case AngularByPoints:
      return text + u"%%d";
    case Diameter:
      return u"%%c" + text;
    case Radius:
    case LargeRadius:
      return u"R" + text;
    default:
      return text;
  }
}

PNT_3D DimensionDrawing::textPoint() const {
  if (m_in.record().seen.has(11)) return m_axes.toWorld(point(1));
  return point(0);
}

// Texts along a dimension line are read from below or from the right.
void DimensionDrawing::drawText(const MTextRecord& given) {
  const Record& r = m_in.record();
  MTextRecord text = given;
  if (text.text.empty()) text.text = u"<>";
  const std::size_t mark = text.text.find(u"<>");
  if (mark != std::u16string::npos) text.text.replace(mark, 2, measured());
  text.box.height = m_in.context().dimensionText;
  text.box.attachment = 5;
  text.style = m_in.context().semantor.getStyleStandard();
  text.at = textPoint();
  text.normal = r.extrusion;
  if (r.seen.has(53)) {
    const double angle = r.real(53) * kRadiansPerDegree;
    text.direction = m_axes.toWorld(PNT_3D(std::cos(angle), std::sin(angle), 0));
  } else if (m_type == Linear || m_type == Aligned) {
    constexpr double tolerance = 1e-9;  // of a direction's length
    const PNT_3D way = direction();
    const bool isBack = way.x < -tolerance || (way.x < tolerance && way.y < 0);
    text.direction = isBack ? PNT_3D(-way.x, -way.y, -way.z) : way;
  }
  buildMText(m_in, text, built.empty() ? r.handle : 0, built);
}

void DimensionDrawing::draw(const MTextRecord& text) {
  drawLines();
  if (!m_in.failed()) drawText(text);
}

Type typeOf(const RecordReader& in, bool isArc, bool isLargeRadius) {
  if (isArc) return Arc;
  if (isLargeRadius) return LargeRadius;
  return static_cast<Type>(std::min(in.record().integer(70) & kTypeMask, long{Ordinate}));
}

}  // namespace

EntPtr readDimension(RecordReader& in) {
  static constexpr RecordKind kind(
      {10, 20, 30, 11, 21, 31, 12, 22, 32, 13, 23, 33, 14, 24, 34, 15, 25, 35, 42, 50, 53, 70}, {8},
      {42});
  const zim::WString name = in.lexer().getText();
  const bool isArc = in.lexer().isKeyword("ARC_DIMENSION");
  const bool isLargeRadius = in.lexer().isKeyword("LARGE_RADIAL_DIMENSION");
  Picture picture;
  MTextRecord text;
  const auto take = [&](long code) {
    if (code == 1) return text.take(in.lexer());
    picture.take(in);
  };
  if (!in.read(kind, {1, 2}, 2, take)) return nullptr;
  const bool isShown = picture.block || (!picture.name.empty() && !in.blocksRead);
  if (isShown) {
    // A copy of a dimension shares the picture of the first one, moved.
    const PNT_3D at = PlaneAxes(in.record().extrusion).toWorld(in.record().point(2));
    return insertPicture(in, picture, at, 0, name);
  }
  DimensionDrawing drawing(in, typeOf(in, isArc, isLargeRadius));
  drawing.draw(text);
  if (in.failed()) return nullptr;
  in.note("dimension drawn", zim::WString(text.text));
  return handOver(in, std::move(drawing.built), name);
}

EntPtr readTable(RecordReader& in) {
  static constexpr RecordKind kind({}, {8});
  Picture picture;
  double numbers[2][3] = {};  // insertion point and direction
  CodeSet taken;
  // What follows repeats the codes for the cells.
  const auto take = [&](long code) {
    if (taken.has(code)) return;
    taken.add(code);
    if (code == 2)
      picture.take(in);
    else
      numbers[code % 10][code / 10 - 1] = in.lexer().getDouble();
  };
  if (!in.read(kind, {2, 10, 20, 30, 11, 21, 31}, 2, take)) return nullptr;
  if (picture.name.empty()) {
    in.note("kind skipped", u"ACAD_TABLE");
    return nullptr;
  }
  const PNT_3D at(numbers[0][0], numbers[0][1], numbers[0][2]);
  const double angle = std::atan2(numbers[1][1], numbers[1][0]);
  return insertPicture(in, picture, at, angle, u"ACAD_TABLE");
}

}  // namespace vek0::detail
