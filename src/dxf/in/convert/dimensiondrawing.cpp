// Draws a dimension without a block according to its style: extension lines, dimension line with
// heads, and the text. Definition points are in world coordinates, the dimension line in the plane
// of the record; everything is computed in that plane and converted when an entity is created.
// Heads move outside if the line is too short for them.
#include "dxf/in/convert/dimensiondrawing.h"

#include <algorithm>
#include <cmath>

#include "dxf/in/convert/dimensiontext.h"
#include "geometry/vector.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/geometry/angle.h"

namespace vek0::detail {
namespace {

constexpr long kAlongX = 64;  // bit of code 70: an ordinate measures x
constexpr double kRoomForHeads = 2.5,
                 kTail = 2;  // in head lengths: inside a line, beyond an outside head

double distance(const PNT_3D& a, const PNT_3D& b) { return length(b - a); }

// Counterclockwise angle between the directions.
double turnBetween(double from, double to) {
  const double turn = std::fmod(to - from, kTwoPi);
  return turn < 0 ? turn + kTwoPi : turn;
}

PNT_3D along(const PNT_3D& from, double angle, double length) {
  return PNT_3D(from.x + length * std::cos(angle), from.y + length * std::sin(angle), from.z);
}

}  // namespace

DimensionDrawing::DimensionDrawing(RecordReader& in, DimensionType type, const DimStyle& style)
    : m_in(in),
      m_axes(in.record().extrusion),
      m_type(type),
      m_style(style),
      m_heads(in, style, m_axes),
      m_color(in.record().color),
      m_trueColor(in.record().traits.trueColor),
      m_textHeight(style.textHeight()) {}

PNT_3D DimensionDrawing::worldPoint(long i) const { return m_in.record().point(i); }

// Measured points are in world coordinates; here they are converted to the plane of the line.
PNT_3D DimensionDrawing::planePoint(long i) const {
  // The dimension line determines the height; measured points may be anywhere above or below.
  const double height = m_axes.fromWorld(worldPoint(0)).z;
  const PNT_3D p = m_axes.fromWorld(worldPoint(i));
  return PNT_3D(p.x, p.y, height);
}

double DimensionDrawing::angleOf(const PNT_3D& from, const PNT_3D& to) const {
  return std::atan2(to.y - from.y, to.x - from.x);
}

void DimensionDrawing::setColor(DimStyle::Code code) {
  const double color = m_style.number(code);
  if (color >= 1 && color <= 256) return m_in.setColor(static_cast<short>(color));
  // 0 stands for BYBLOCK, which means the color of the dimension.
  m_in.setColor(m_color, m_trueColor);
}

void DimensionDrawing::draw(const MTextRecord& given) {
  MTextRecord text = given;
  // "<>" stands for the measurement, and is also the default text.
  if (text.text.empty()) text.text = u"<>";
  const std::size_t mark = text.text.find(u"<>");
  if (mark != std::u16string::npos) text.text.replace(mark, 2, measured());
  MTextFormat format;
  format.height = m_textHeight;
  m_textWidth = measure(text.text, format);
  switch (m_type) {
    case DimensionType::Linear:
    case DimensionType::Aligned:
      drawLinear();
      break;
    case DimensionType::Angular:
    case DimensionType::AngularByPoints:
    case DimensionType::Arc:
      drawAngle();
      break;
    case DimensionType::Ordinate:
      drawOrdinate();
      break;
    default:
      drawRadius();
  }
  if (!m_in.failed()) drawText(text);
}

// -- lines -----------------------------------------------------------------------

void DimensionDrawing::drawLine(const PNT_3D& from, const PNT_3D& to) {
  if (m_in.failed() || from == to) return;
  const PNT_3D start = m_axes.toWorld(from), end = m_axes.toWorld(to);
  if (!std::isfinite(distance(start, end))) return m_in.fail(CFileDXFIError::InconsistentRecord);
  const Record& r = m_in.record();
  // The first entity inherits the record's handle, so that references to it remain valid.
  if (EntPtr line =
          m_in.make().line(r.withHandle(built.empty() ? r.handle : 0), LINE_3D(start, end)))
    built.push_back(std::move(line));
}

// From the offset beside the measured point to just beyond the line.
void DimensionDrawing::drawExtension(const PNT_3D& from, const PNT_3D& to,
                                     DimStyle::Code suppression) {
  const double start = m_style.length(DimStyle::kExtensionStart);
  const double length = distance(from, to);
  // Suppressed, or the measured point is closer to the line than the offset.
  if (m_style.isSet(suppression) || !(length > start)) return;
  setColor(DimStyle::kExtensionColor);
  const double angle = angleOf(from, to);
  drawLine(along(from, angle, start), along(to, angle, m_style.length(DimStyle::kExtensionEnd)));
}

double DimensionDrawing::lineAngle() const {
  const PNT_3D from = planePoint(3), to = planePoint(4);
  // Without a distance there is no direction to align with.
  const bool isAligned = m_type == DimensionType::Aligned && (from.x != to.x || from.y != to.y);
  return isAligned ? angleOf(from, to) : m_in.record().real(50) * kRadiansPerDegree;
}

void DimensionDrawing::drawLinear() {
  const double angle = lineAngle(), x = std::cos(angle), y = std::sin(angle);
  const PNT_3D on = planePoint(0);
  // The foot of the perpendicular from a measured point on the dimension line.
  const auto foot = [&](const PNT_3D& p) {
    return along(on, angle, (p.x - on.x) * x + (p.y - on.y) * y);
  };
  const PNT_3D from = planePoint(3), to = planePoint(4), first = foot(from), second = foot(to);
  m_middle = PNT_3D((first.x + second.x) / 2, (first.y + second.y) / 2, first.z);
  drawExtension(from, first, DimStyle::kNoFirst);
  drawExtension(to, second, DimStyle::kNoSecond);
  drawBetween(first, second);
}

// Heads without enough room are placed outside and point toward each other.
void DimensionDrawing::drawBetween(const PNT_3D& from, const PNT_3D& to) {
  setColor(DimStyle::kLineColor);
  const double angle = angleOf(from, to), length = distance(from, to), size = m_heads.size();
  if (!(length > 0)) return;
  const bool isOutside = length < kRoomForHeads * size && !m_heads.isStroke(0);
  if (isOutside) {
    drawOutside(0, from, angle);
    drawOutside(1, to, angle + kPi);
    // A missing flag counts as set: a missing line would be more misleading than a superfluous one.
    const bool hasLine =
        !m_style.has(DimStyle::kLineInside) || m_style.isSet(DimStyle::kLineInside);
    if (hasLine) drawBroken(from, to);
    return;
  }
  const auto reach = [&](int end) {
    // Strokes extend the line by the style's amount, filled heads replace its end.
    if (m_heads.isStroke(end)) return m_style.length(DimStyle::kLineEnd);
    return m_heads.isThin(end) ? 0 : -size;
  };
  drawBroken(along(from, angle, -reach(0)), along(to, angle, reach(1)));
  m_heads.add(0, from, angle + kPi, built);
  m_heads.add(1, to, angle, built);
}

void DimensionDrawing::drawOutside(int end, const PNT_3D& tip, double angle) {
  const double start = m_heads.isThin(end) ? 0 : m_heads.size();
  drawLine(along(tip, angle, -start), along(tip, angle, -kTail * m_heads.size()));
  m_heads.add(end, tip, angle, built);
}

// Half the extent of the text's box in a direction.
double DimensionDrawing::textReach(double angle) const {
  const double turn = textAngle() - angle;
  return (m_textWidth * std::fabs(std::cos(turn)) + m_textHeight * std::fabs(std::sin(turn))) / 2;
}

// Leaves a gap for a text on the line.
void DimensionDrawing::drawBroken(const PNT_3D& from, const PNT_3D& to) {
  const double angle = angleOf(from, to), x = std::cos(angle), y = std::sin(angle);
  const PNT_3D text = textPoint();
  const double at = (text.x - from.x) * x + (text.y - from.y) * y;
  const double aside = std::fabs((text.y - from.y) * x - (text.x - from.x) * y);
  const double half = textReach(angle) + m_style.length(DimStyle::kGap);
  const double length = distance(from, to);
  // The text interrupts the line only if its box touches it.
  const bool isOn =
      m_textWidth > 0 && aside < textReach(angle + kPi / 2) && at + half > 0 && at - half < length;
  if (!isOn) return drawLine(from, to);
  if (at - half > 0) drawLine(from, along(from, angle, at - half));
  if (at + half < length) drawLine(along(from, angle, at + half), to);
}

void DimensionDrawing::drawOrdinate() {
  // Ordinates have a leader only, no dimension line.
  setColor(DimStyle::kExtensionColor);
  m_middle = planePoint(4);
  drawLine(planePoint(3), planePoint(4));
}

// -- circles ---------------------------------------------------------------------

// A line inside up to the circle, from the center or across the diameter; a text outside extends
// the line to itself.
void DimensionDrawing::drawRadius() {
  setColor(DimStyle::kLineColor);
  const PNT_3D first = planePoint(0), tip = planePoint(5);
  const bool isDiameter = m_type == DimensionType::Diameter;
  const PNT_3D center =
      isDiameter ? PNT_3D((first.x + tip.x) / 2, (first.y + tip.y) / 2, first.z) : first;
  m_middle = center;
  const double radius = distance(center, tip), angle = angleOf(center, tip);
  if (!(radius > 0)) return;
  const bool isOutside = m_in.record().seen.has(11) && distance(center, textPoint()) > radius;
  if (isOutside) return drawLeader(tip);
  const double back = m_heads.isThin(1) ? 0 : m_heads.size();
  const double start = isDiameter && !m_heads.isThin(0) ? m_heads.size() : 0;
  drawBroken(along(first, angle, start), along(tip, angle, -back));
  if (isDiameter) m_heads.add(0, first, angle + kPi, built);
  m_heads.add(1, tip, angle, built);
}

// From the text to the circle.
void DimensionDrawing::drawLeader(const PNT_3D& tip) {
  const PNT_3D text = textPoint();
  const double angle = angleOf(text, tip), length = distance(text, tip);
  const double side = std::fabs(std::remainder(angle - textAngle(), kPi));
  // Distance from the center of the text's box to its border in the direction of the leader:
  // whichever pair of sides is hit first.
  const double edge = std::min(m_textWidth / std::cos(side), m_textHeight / std::sin(side)) / 2;
  // Never beyond the tip.
  const double clear = std::min(edge + m_style.length(DimStyle::kGap), length);
  const double back = m_heads.isThin(1) ? 0 : std::min(m_heads.size(), length - clear);
  drawLine(along(text, angle, clear), along(tip, angle, -back));
  m_heads.add(1, tip, angle, built);
}

// -- angles ----------------------------------------------------------------------

PNT_3D DimensionDrawing::Sweep::at(double angle) const { return along(center, angle, radius); }

// The intersection of the two lines, one through points 13 and 14, the other through 15 and 10.
bool DimensionDrawing::findCenter(PNT_3D& center) const {
  if (m_type != DimensionType::Angular) {
    center = planePoint(5);
    return true;
  }
  const PNT_3D a = planePoint(3), b = planePoint(4), c = planePoint(5), d = planePoint(0);
  // Zero for parallel lines, whose intersection is then infinite and rejected below.
  const double cross = (b.x - a.x) * (d.y - c.y) - (b.y - a.y) * (d.x - c.x);
  const double t = ((c.x - a.x) * (d.y - c.y) - (c.y - a.y) * (d.x - c.x)) / cross;
  center = PNT_3D(a.x + t * (b.x - a.x), a.y + t * (b.y - a.y), a.z);
  return std::isfinite(center.x) && std::isfinite(center.y);
}

// The sector that contains the point on the arc; empty if there is no center.
DimensionDrawing::Sweep DimensionDrawing::sweep() const {
  Sweep arc;
  if (!findCenter(arc.center)) return arc;
  const bool isByLines = m_type == DimensionType::Angular;
  const PNT_3D on = isByLines ? PNT_3D(m_in.record().point(6)) : planePoint(0);
  const double toArc = angleOf(arc.center, on);
  arc.radius = std::hypot(on.x - arc.center.x, on.y - arc.center.y);
  double first, second;
  if (isByLines) {
    first = angleOf(planePoint(3), planePoint(4));
    second = angleOf(planePoint(5), planePoint(0));
    // Each line has two directions: use the nearest ones on either side of the point.
    double before = kTwoPi, behind = kTwoPi, start = first, end = second;
    for (const double way : {first, first + kPi, second, second + kPi}) {
      if (turnBetween(way, toArc) < before) before = turnBetween(start = way, toArc);
      if (turnBetween(toArc, way) < behind) behind = turnBetween(toArc, end = way);
    }
    arc.start = start;
    arc.sweep = before + behind;
    return arc;
  }
  first = angleOf(arc.center, planePoint(3));
  second = angleOf(arc.center, planePoint(4));
  const bool isBetween = turnBetween(first, toArc) <= turnBetween(first, second);
  arc.start = isBetween ? first : second;
  arc.sweep = turnBetween(arc.start, isBetween ? second : first);
  return arc;
}

void DimensionDrawing::drawAngle() {
  const Sweep arc = sweep();
  if (!(arc.radius > 0) || !std::isfinite(arc.radius) || !(arc.sweep > 0)) return;
  const double end = arc.start + arc.sweep;
  m_middle = arc.at(arc.start + arc.sweep / 2);
  const bool isByLines = m_type == DimensionType::Angular;
  // The point of each leg nearest to the arc; there is no extension line beyond the arc.
  for (const auto& [angle, code] :
       {std::pair(arc.start, DimStyle::kNoFirst), std::pair(end, DimStyle::kNoSecond)}) {
    double reach = 0;
    for (const long i : {3L, 4L, isByLines ? 5L : 3L, isByLines ? 0L : 4L}) {
      const PNT_3D p = planePoint(i);
      constexpr double onLeg = 1e-6;  // radians
      const double length = distance(arc.center, p);
      if (std::fabs(std::remainder(angleOf(arc.center, p) - angle, kTwoPi)) < onLeg &&
          length > reach)
        reach = length;
    }
    if (reach < arc.radius) drawExtension(along(arc.center, angle, reach), arc.at(angle), code);
  }
  drawArc(arc);
}

void DimensionDrawing::drawArc(const Sweep& arc) {
  setColor(DimStyle::kLineColor);
  const double size = m_heads.size(), end = arc.start + arc.sweep;
  // The angle at the center that a head spans on the arc.
  const double turn = std::min(size / arc.radius, kPi);
  const bool isOutside = arc.sweep < kRoomForHeads * turn && !m_heads.isStroke(0);
  // Heads are chords of the arc: they are rotated by half the angle they span.
  const double lean = (isOutside ? -1 : 1) * turn / 2;
  const double away = isOutside ? kPi : 0;
  Sweep line = arc;
  if (!isOutside && !m_heads.isThin(0)) {
    line.start += turn;
    line.sweep -= turn;
  }
  if (!isOutside && !m_heads.isThin(1)) line.sweep -= turn;
  drawBroken(line);
  m_heads.add(0, arc.at(arc.start), arc.start - kPi / 2 + lean + away, built);
  m_heads.add(1, arc.at(end), end + kPi / 2 - lean + away, built);
}

void DimensionDrawing::drawBroken(const Sweep& arc) {
  const PNT_3D text = textPoint();
  const double way = angleOf(arc.center, text), at = turnBetween(arc.start, way);
  const double aside =
      std::fabs(std::hypot(text.x - arc.center.x, text.y - arc.center.y) - arc.radius);
  const double half = (textReach(way + kPi / 2) + m_style.length(DimStyle::kGap)) / arc.radius;
  if (!(m_textWidth > 0) || aside >= textReach(way) || at > arc.sweep) return drawChords(arc);
  Sweep part = arc;
  part.sweep = at - half;
  drawChords(part);
  part.start = arc.start + at + half;
  part.sweep = arc.sweep - at - half;
  drawChords(part);
}

void DimensionDrawing::drawChords(const Sweep& arc) {
  // A text at an end leaves a part of negative length.
  if (!(arc.sweep > 0) || m_in.failed()) return;
  int count = std::max(2, arcChords(arc.sweep, m_in.context().options.policy.chordError));
  // Without room for the chords, two of them still show the angle.
  if (!m_in.takeCurveRoom(static_cast<std::size_t>(count))) count = 2;
  std::vector<PNT_3D> points;
  for (int i = 0; i <= count; ++i)
    points.push_back(m_axes.toWorld(arc.at(arc.start + arc.sweep * i / count)));
  const vek0::Handle handle = built.empty() ? m_in.record().handle : 0;
  if (EntPtr chain = buildChain(m_in, points, CEntPolyline::kLtGen, handle))
    built.push_back(std::move(chain));
}

// -- text ------------------------------------------------------------------------

// The measurement stated in the record, or else computed from its points: some programs write 0 or
// -1.
double DimensionDrawing::measurement() const {
  const double told = m_in.record().real(42);
  if (told > 0) return told;
  const PNT_3D from = planePoint(3), to = planePoint(4), zero = planePoint(0);
  switch (m_type) {
    case DimensionType::Linear:
    case DimensionType::Aligned: {
      const double angle = lineAngle();
      return std::fabs((to.x - from.x) * std::cos(angle) + (to.y - from.y) * std::sin(angle));
    }
    case DimensionType::Ordinate:
      return (m_in.record().integer(70) & kAlongX) != 0 ? from.x - zero.x : from.y - zero.y;
    case DimensionType::Angular:
    case DimensionType::AngularByPoints:
      return sweep().sweep;
    // The length of the arc, not of its chord.
    case DimensionType::Arc:
      return sweep().sweep * distance(planePoint(5), zero);
    default:
      return distance(zero, planePoint(5));
  }
}

std::u16string DimensionDrawing::measured() const {
  switch (m_type) {
    case DimensionType::Angular:
    case DimensionType::AngularByPoints:
      return angleText(m_style, measurement());
    case DimensionType::Diameter:
      return lengthText(m_style, measurement(), u"%%c");
    case DimensionType::Radius:
    case DimensionType::LargeRadius:
      return lengthText(m_style, measurement(), u"R");
    default:
      return lengthText(m_style, measurement(), u"");
  }
}

// The record's text point is in plane coordinates.
PNT_3D DimensionDrawing::textPoint() const {
  return m_in.record().seen.has(11) ? m_in.record().point(1) : m_middle;
}

// Texts along a line are read from below or from the right.
double DimensionDrawing::textAngle() const {
  const Record& r = m_in.record();
  if (r.seen.has(53)) return r.real(53) * kRadiansPerDegree;
  const bool isLine = m_type == DimensionType::Linear || m_type == DimensionType::Aligned;
  const bool isLevel = m_style.has(DimStyle::kTextLevel) && m_style.isSet(DimStyle::kTextLevel);
  if (!isLine || isLevel) return 0;
  constexpr double tolerance = 1e-9;  // of a direction's length
  const double angle = lineAngle(), x = std::cos(angle), y = std::sin(angle);
  // Almost vertical lines count as vertical: rounding must not turn the text over.
  const bool isBack = x < -tolerance || (x < tolerance && y < 0);
  return isBack ? angle + kPi : angle;
}

void DimensionDrawing::drawText(const MTextRecord& given) {
  setColor(DimStyle::kTextColor);
  MTextRecord text = given;
  text.box.height = m_textHeight;
  // 5 is middle center.
  text.box.attachment = 5;
  text.style = m_in.context().semantor.getStyleStandard();
  text.at = m_axes.toWorld(textPoint());
  text.normal = m_in.record().extrusion;
  const double angle = textAngle();
  text.direction = m_axes.toWorld(PNT_3D(std::cos(angle), std::sin(angle), 0));
  buildMText(m_in, text, built.empty() ? m_in.record().handle : 0, built);
}

}  // namespace vek0::detail
