// Reads HATCH and MPOLYGON records. Their codes have different meanings in different parts of the
// record, so a record is not a set of pairs as for other kinds: counts state how many groups
// follow, and each group is read pair by pair in its order. A damaged record is reduced as far as
// necessary: an invalid number of the pattern is read as 0, one in a loop costs that loop, and an
// invalid edge leaves a gap, which the loop builder closes by a straight line. If a count itself is
// invalid, groups are read as long as the code that begins one follows (`Count`).
#include "dxf/in/records/hatchreader.h"

#include <algorithm>

#include "dxf/in/convert/replacement.h"
#include "dxf/in/traitvalues.h"
#include "dxf/ocs.h"
#include "files/number.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/hatch/boundary.h"

namespace vek0::detail {
namespace {

// The counted groups, by the code of their count.
constexpr long kPatternLineCount = 78, kLoopCount = 91, kSeedCount = 98;
constexpr long kLoop = 92;
constexpr long kGradient = 450, kGradientIndex = 63, kGradientColor = 421;
// Kinds of loops and of edges.
constexpr long kPolylineLoop = 2;
constexpr long kLine = 1, kArc = 2, kEllipse = 3, kSpline = 4;
// The number of points or of handles that follow, and a handle.
constexpr long kCount = 97, kSource = 330;
constexpr long kFitX = 11, kFitY = 21;

// The codes that a hatch reads itself.
struct HatchCodes {
  static bool has(long code) {
    return code == kPatternLineCount || code == kLoopCount || code == kSeedCount ||
           code == kGradient || code == kGradientIndex || code == kGradientColor;
  }
};

// Whether the code may occur in a loop after its first pair.
bool isOfLoop(long code) {
  static constexpr CodeSet codes{10, 20, 11, 21, 12, 22, 13, 23, 40, 42,
                                 50, 51, 72, 73, 74, 93, 94, 95, 96, 97};
  return codes.has(code) || code == kSource;
}

bool isPaletteIndex(long color) { return color >= 1 && color <= 255; }

bool isFit(long code) { return (code >= kFitX && code <= 13) || (code >= kFitY && code <= 23); }

// Mirrors the pattern as seen from behind.
void mirror(PatternRecord& pattern) {
  constexpr double halfTurn = 180;
  pattern.angleRad = -pattern.angleRad;
  for (PatternLine& line : pattern.lines) {
    line.angleDeg = halfTurn - line.angleDeg;
    line.base[0] = -line.base[0];
    line.offset[0] = -line.offset[0];
  }
}

}  // namespace

EntPtr HatchReader::read() {
  m_isMpolygon = false;
  if (!readRecord() || !finishRings()) return nullptr;
  const PatternRecord pattern = patternRecord();
  if (!isOutlined(pattern)) return build();
  // The outlines are in world coordinates already.
  m_in.setPlaced();
  return outlineHatch(m_in, m_rings, pattern.name);
}

bool HatchReader::isOutlined(const PatternRecord& pattern) const {
  return m_in.context().options.policy.hatchOutlines && !pattern.solid;
}

EntPtr HatchReader::readMpolygon() {
  m_isMpolygon = true;
  if (!readRecord() || !finishRings()) return nullptr;
  std::vector<EntPtr> built = buildOutlines(m_in, m_rings, 0);
  const PatternRecord pattern = patternRecord();
  const bool isHatched = !m_in.failed() && (pattern.solid || !pattern.lines.empty());
  if (isHatched && isOutlined(pattern))
    m_in.note(ReportCode::HatchAsOutline, pattern.name);
  else if (EntPtr hatch = isHatched ? build() : nullptr)
    built.push_back(std::move(hatch));
  return handOver(m_in, std::move(built), u"MPOLYGON");
}

bool HatchReader::readRecord() {
  static constexpr RecordKind hatch({2, 30, 41, 52, 70, 75, 76, 77}, {8}, {41, 52});
  static constexpr RecordKind mpolygon({2, 30, 41, 52, 71, 75, 76, 77}, {8}, {41, 52});
  m_lines.clear();
  m_rings.clear();
  m_gradient = Gradient::None;
  // Two limits: per record, and per file for all hatches.
  const std::size_t room = std::min(m_curveRoom, kRecordCurvePoints);
  m_loop.setCurveRoom(room);
  const bool complete = m_in.read(m_isMpolygon ? mpolygon : hatch, HatchCodes(), 2,
                                  [this](long code) { takeGroup(code); });
  m_curveRoom -= room - m_loop.getCurveRoom();
  if (complete && m_loop.isCoarse()) m_in.note(ReportCode::HatchCoarse);
  return complete;
}

void HatchReader::takeGroup(long code) {
  if (code == kGradient || code == kGradientIndex || code == kGradientColor)
    return takeGradient(code);
  if (code == kPatternLineCount) return readPatternLines();
  if (code == kLoopCount) return readLoops();
  readSeeds();
}

// A gradient is filled with its first color: the true one, which follows the index, if there is
// one.
void HatchReader::takeGradient(long code) {
  if (code == kGradient) {
    const bool isGradient = m_in.lexer().getInt() != 0 && !m_in.failed();
    m_gradient = isGradient ? Gradient::Begun : Gradient::None;
    if (isGradient) m_in.note(ReportCode::GradientDropped);
    return;
  }
  const long value = parseLong(m_in.lexer().getBytes());
  if (!m_in.isTolerant()) return;
  if (code == kGradientIndex && m_gradient == Gradient::Begun && isPaletteIndex(value)) {
    m_in.setColor(static_cast<short>(value));
    m_gradient = Gradient::Indexed;
  } else if (code == kGradientColor && m_gradient != Gradient::None) {
    const std::optional<std::uint32_t> color = trueColorOf(value);
    if (color) m_in.setColor(m_in.record().color, *color);
    m_gradient = Gradient::None;  // the other colors are dropped
  }
}

bool HatchReader::expect(long code) {
  const long found = m_in.next();
  if (!m_in.failed() && found != code) m_in.fail(CFileDXFIError::InconsistentRecord);
  return !m_in.failed();
}

bool HatchReader::takeReal(long code, double& value) {
  if (!expect(code)) return false;
  value = m_in.lexer().getDouble();
  return !m_in.failed();
}

bool HatchReader::takeInteger(long code, long& value) {
  if (!expect(code)) return false;
  value = m_in.lexer().getInt();
  return !m_in.failed();
}

bool HatchReader::takePoint(long code, PNT_3D& pnt) {
  pnt.z = 0;
  return takeReal(code, pnt.x) && takeReal(code + 10, pnt.y);
}

// The count in the current pair, of groups that begin with `code`.
HatchReader::Count HatchReader::takeCount(long code) {
  const long count = m_in.lexer().getInt();
  const bool isKnown = !m_in.failed() || !m_in.spareNumber();
  // An unknown count is replaced by the code that begins a group.
  return {count, isKnown ? 0 : code};
}

bool HatchReader::goesOn(Count& count) {
  if (m_in.failed()) return false;
  if (count.code == 0) return count.left-- > 0;
  const bool follows = m_in.next() == count.code;
  // Looks ahead by one pair.
  m_in.putBack();
  return follows;
}

// An optional number of the hatch: 0 if invalid.
bool HatchReader::takeSpare(long code, double& value) {
  if (!expect(code)) return false;
  value = m_in.lexer().getDouble();
  return !m_in.failed() || m_in.spareNumber();
}

// -- pattern -------------------------------------------------------------------

void HatchReader::readPatternLines() {
  for (Count count = takeCount(53); goesOn(count);)
    if (!readPatternLine()) return;
}

bool HatchReader::readPatternLine() {
  PatternLine line;
  if (!takeSpare(53, line.angleDeg) || !takeSpare(43, line.base[0]) ||
      !takeSpare(44, line.base[1]) || !takeSpare(45, line.offset[0]) ||
      !takeSpare(46, line.offset[1]) || !readDashes(line))
    return false;
  m_lines.push_back(std::move(line));
  return true;
}

bool HatchReader::readDashes(PatternLine& line) {
  if (!expect(79)) return false;
  for (Count count = takeCount(49); goesOn(count);) {
    if (!expect(49)) return false;
    const double dash = m_in.lexer().getDouble();
    if (!m_in.failed())
      line.dashes.push_back(dash);
    else if (!m_in.spareNumber())
      return false;
  }
  return !m_in.failed();
}

// -- boundary ------------------------------------------------------------------

// A loop with an invalid number is dropped.
void HatchReader::readLoops() {
  for (Count count = takeCount(kLoop); goesOn(count);) {
    m_refused = false;
    m_loop.clear();
    if (readLoop()) {
      const bool closed = m_loop.empty() || m_loop.build(m_rings);
      if (!closed || m_refused) m_in.note(ReportCode::HatchOpen);
    } else if (!m_in.spareNumber(ReportCode::LoopDropped)) {
      return;
    } else {
      toNextLoop();
    }
  }
}

void HatchReader::toNextLoop() {
  while (isOfLoop(m_in.next())) {
  }
  m_in.putBack();
}

bool HatchReader::readLoop() {
  long flags, count;
  if (!takeInteger(kLoop, flags)) return false;
  if ((flags & kPolylineLoop) != 0) return readPolylineLoop() && skipSources();
  if (!takeInteger(93, count)) return false;
  for (; count > 0; --count)
    if (!readEdge()) return false;
  return skipSources();
}

bool HatchReader::readPolylineLoop() {
  long bulged = 0, closed = 0, count;
  // The two kinds of records list these flags in opposite orders.
  const bool flags = m_isMpolygon ? takeInteger(73, closed) && takeInteger(72, bulged)
                                  : takeInteger(72, bulged) && takeInteger(73, closed);
  if (!flags || !takeInteger(93, count)) return false;
  std::vector<PNT_3D> points;
  std::vector<double> bulges;
  for (; count > 0; --count) {
    points.emplace_back();
    if (!takePoint(10, points.back())) return false;
    if (bulged == 0) continue;
    bulges.push_back(0);
    if (!takeReal(42, bulges.back())) return false;
  }
  m_loop.addPolyline(points, bulges, closed != 0);
  return true;
}

bool HatchReader::readEdge() {
  long type;
  if (!takeInteger(72, type)) return false;
  switch (type) {
    case kLine:
      return readLine();
    case kArc:
      return readArc();
    case kEllipse:
      return readEllipse();
    case kSpline:
      return readSpline();
    default:
      m_in.fail(CFileDXFIError::InconsistentRecord);
      return false;
  }
}

// An invalid edge leaves a gap.
bool HatchReader::took(bool added) {
  m_refused = m_refused || !added;
  return true;
}

bool HatchReader::readLine() {
  PNT_3D from, to;
  if (!takePoint(10, from) || !takePoint(11, to)) return false;
  return took(m_loop.addLine(from, to));
}

bool HatchReader::readArc() {
  PNT_3D center;
  double radius, start, end;
  long ccw;
  if (!takePoint(10, center) || !takeReal(40, radius) || !takeReal(50, start) ||
      !takeReal(51, end) || !takeInteger(73, ccw))
    return false;
  if (radius < 0) radius = m_in.radius(radius);
  return took(
      m_loop.addArc(center, radius, start * kRadiansPerDegree, end * kRadiansPerDegree, ccw != 0));
}

bool HatchReader::readEllipse() {
  PNT_3D center, major;
  double ratio, start, end;
  long ccw;
  if (!takePoint(10, center) || !takePoint(11, major) || !takeReal(40, ratio) ||
      !takeReal(50, start) || !takeReal(51, end) || !takeInteger(73, ccw))
    return false;
  return took(m_loop.addEllipse(center, major, ratio, start * kRadiansPerDegree,
                                end * kRadiansPerDegree, ccw != 0));
}

bool HatchReader::readSpline() {
  SPLINE_3D spline;
  long degree, rational, periodic, noKnots, noControls;
  if (!takeInteger(94, degree) || !takeInteger(73, rational) || !takeInteger(74, periodic) ||
      !takeInteger(95, noKnots) || !takeInteger(96, noControls))
    return false;
  spline.degree = static_cast<int>(degree);
  for (; noKnots > 0; --noKnots) {
    spline.knots.push_back(0);
    if (!takeReal(40, spline.knots.back())) return false;
  }
  if (!readControls(spline, noControls, rational != 0)) return false;
  // Only newer files have them, which strict reading does not accept.
  std::vector<PNT_3D> fits;
  if (m_in.isTolerant() && !readFits(fits)) return false;
  if (spline.controls.empty()) spline.createFit(fits);
  return took(m_loop.addSpline(spline));
}

// The fit points that newer versions store, with the end tangents. The list after the last edge is
// counted by the same code, so its handles are consumed as well.
bool HatchReader::readFits(std::vector<PNT_3D>& fits) {
  long code = m_in.next();
  if (code == kCount)
    for (code = m_in.next(); isFit(code) || code == kSource; code = m_in.next()) {
      if (code == kFitX) fits.emplace_back(m_in.lexer().getDouble(), 0, 0);
      if (code == kFitY && !fits.empty()) fits.back().y = m_in.lexer().getDouble();
    }
  m_in.putBack();
  return !m_in.failed();
}

bool HatchReader::readControls(SPLINE_3D& spline, long noControls, bool rational) {
  for (; noControls > 0; --noControls) {
    spline.controls.emplace_back();
    if (!takePoint(10, spline.controls.back())) return false;
    if (!rational) continue;
    spline.weights.push_back(1);
    if (!takeReal(42, spline.weights.back())) return false;
  }
  return true;
}

// Skips the source entities of the loop; not every program writes their number.
bool HatchReader::skipSources() {
  const long code = m_in.next();
  // Points here mean that a count before was too small.
  if (code == 10 || code == 20) m_in.fail(CFileDXFIError::InconsistentRecord);
  if (code != kCount || m_in.failed()) {
    m_in.putBack();
    return !m_in.failed();
  }
  for (long count = m_in.lexer().getInt(); count > 0 && !m_in.failed(); --count)
    if (!expect(kSource)) return false;
  return !m_in.failed();
}

void HatchReader::readSeeds() {
  PNT_3D seed;
  for (Count count = takeCount(10); goesOn(count);)
    if (!takeSpare(10, seed.x) || !takeSpare(20, seed.y)) return;
}

// -- the hatch -----------------------------------------------------------------

PatternRecord HatchReader::patternRecord() const {
  const Record& r = m_in.record();
  PatternRecord pattern;
  pattern.name = r.text(2);
  pattern.solid = r.integer(m_isMpolygon ? 71 : 70) != 0;
  pattern.crossed = r.integer(77) != 0;
  pattern.kind = r.integer(76, PatternRecord::Predefined);
  if (r.real(41) > 0) pattern.scale = r.real(41);
  pattern.angleRad = r.real(52) * kRadiansPerDegree;
  pattern.lines = m_lines;
  return pattern;
}

// Lines are drawn flat: in inclined planes, at the height of the first point.
void HatchReader::placeInWorld() {
  const PlaneAxes axes(m_in.frame().normal);
  if (axes.isWorld()) return;
  const double z = axes.toWorld(m_rings.front().front()).z;
  for (HATCH_RING& ring : m_rings)
    for (PNT_3D& pnt : ring) {
      pnt = axes.toWorld(pnt);
      pnt.z = z;
    }
  if (!axes.isMirrored()) m_in.note(ReportCode::ExtrusionIgnored, u"HATCH");
}

// The remaining rings, at the height of the hatch; false if there are none.
bool HatchReader::finishRings() {
  const Record& r = m_in.record();
  const long style = r.integer(75);
  // Style 0 fills alternately, as the drawing does for all rings.
  if ((style == 1 || style == 2) && !applyHatchStyle(m_rings, static_cast<HatchStyle>(style)))
    m_in.note(ReportCode::HatchIslands);
  if (m_rings.empty()) m_in.note(ReportCode::HatchDropped);
  for (HATCH_RING& ring : m_rings)
    for (PNT_3D& pnt : ring) pnt.z = r.real(30);
  if (!m_rings.empty()) placeInWorld();
  return !m_rings.empty();
}

EntPtr HatchReader::build() {
  const Record& r = m_in.record();
  IFileDXFISemantor& semantor = m_in.context().semantor;
  PatternRecord record = patternRecord();
  // Seen from below, the pattern is mirrored like the boundary.
  if (PlaneAxes(m_in.frame().normal).isFromBelow()) mirror(record);
  const Pattern pattern = findPattern(record, semantor.getHatchTypeTable());
  EntPtr hatch(semantor.createHatch(r.layer, r.ltype, r.color, *pattern.type, pattern.scale,
                                    record.angleRad, joinHatchRings(m_rings), r.handle));
  if (hatch) hatch->setTraits(r.traits);
  return hatch;
}

}  // namespace vek0::detail
