// Recognizes catalogue patterns and normalizes others. A record states the lines of its pattern
// already scaled and rotated. Both are undone first and the results rounded, because the
// conversions leave noise that would make equal patterns differ.
#include "dxf/in/convert/hatchpattern.h"

#include <algorithm>
#include <cmath>

#include "vek0core/geometry/angle.h"

namespace vek0::detail {
namespace {

constexpr int kMaxDashes = 6;
constexpr double kTolerance = 1e-3;   // files contain few digits and rounded factors
constexpr double kNoise = 1e-12;      // of factors
constexpr double kDegreeSteps = 1e9;  // per degree
constexpr double kSizeDigits = 10;    // relative to a family's size; arithmetic leaves noise at
                                      // 1e-12

HATCH_LINE lineOf(double angleRad, double x0, double y0, double dx, double dy) {
  return {angleRad, x0, y0, dx, dy, {}, 0};
}

// A drawn part of the line; dots have no length.
struct Stroke {
  double start, length;
};

std::vector<Stroke> strokesOf(const std::vector<double>& dashes, double& period) {
  std::vector<Stroke> strokes;
  period = 0;
  for (const double dash : dashes) {
    // Adjacent strokes without a gap are one stroke; dots remain dots.
    const bool touches = !strokes.empty() && strokes.back().start + strokes.back().length == period;
    if (dash > 0 && touches && strokes.back().length > 0)
      strokes.back().length += dash;
    else if (dash >= 0)
      strokes.push_back({period, dash});
    period += std::fabs(dash);
  }
  return strokes;
}

// A family has room for six dashes. Longer sequences become several families that draw up to three
// strokes of the period each, each starting at its first stroke.
void addLongFamily(const HATCH_LINE& line, const std::vector<double>& dashes,
                   std::vector<HATCH_LINE>& lines) {
  double period;
  const std::vector<Stroke> strokes = strokesOf(dashes, period);
  for (std::size_t first = 0; first < strokes.size(); first += kMaxDashes / 2) {
    const std::size_t end = std::min(first + kMaxDashes / 2, strokes.size());
    // Each part starts at its first stroke, so its period needs no leading gap.
    HATCH_LINE part = line;
    part.x0 += strokes[first].start * std::cos(line.angle);
    part.y0 += strokes[first].start * std::sin(line.angle);
    for (std::size_t i = first; i < end; ++i) {
      // The last gap extends to the first stroke of the next period.
      const double next = i + 1 < end ? strokes[i + 1].start : strokes[first].start + period;
      part.dash[part.numDash++] = strokes[i].length;
      part.dash[part.numDash++] = strokes[i].start + strokes[i].length - next;
    }
    lines.push_back(part);
  }
}

void addFamily(HATCH_LINE line, const std::vector<double>& dashes, std::vector<HATCH_LINE>& lines) {
  if (dashes.size() > kMaxDashes) return addLongFamily(line, dashes, lines);
  line.numDash = static_cast<std::int32_t>(dashes.size());
  std::copy(dashes.begin(), dashes.end(), line.dash);
  lines.push_back(line);
}

// The record's lines without the hatch's scale and angle. The offset is converted to the family's
// frame: along the line and across it.
std::vector<HATCH_LINE> ownLines(const PatternRecord& record) {
  std::vector<HATCH_LINE> lines;
  // Rotated back about the origin, which the base point of a line refers to.
  const double s = record.scale, back = -record.angleRad;
  for (const PatternLine& from : record.lines) {
    const double a = from.angleDeg * kRadiansPerDegree;
    const double x0 = (from.base[0] * std::cos(back) - from.base[1] * std::sin(back)) / s;
    const double y0 = (from.base[0] * std::sin(back) + from.base[1] * std::cos(back)) / s;
    // The record's offset is in world directions; a family counts it along and across its lines.
    const double dx = (from.offset[0] * std::cos(a) + from.offset[1] * std::sin(a)) / s;
    const double dy = (from.offset[1] * std::cos(a) - from.offset[0] * std::sin(a)) / s;
    std::vector<double> dashes(from.dashes);
    for (double& dash : dashes) dash /= s;
    addFamily(lineOf(a - record.angleRad, x0, y0, dx, dy), dashes, lines);
  }
  return lines;
}

std::vector<HATCH_LINE> userLines(bool crossed) {
  std::vector<HATCH_LINE> lines{lineOf(0, 0, 0, 0, 1)};
  if (crossed) lines.push_back(lineOf(90 * kRadiansPerDegree, 0, 0, 0, 1));
  return lines;
}

bool isNear(double a, double b, double size) { return std::fabs(a - b) <= kTolerance * size; }

double sizeOf(const HATCH_LINE& line) {
  double size = std::fabs(line.dx) + std::fabs(line.dy);
  for (int i = 0; i < line.numDash; ++i) size += std::fabs(line.dash[i]);
  return size;
}

// Rounds to multiples of 1 / perUnit, and to positive zero. Numbers that are not finer than that,
// and NaN, are kept.
double rounded(double value, double perUnit) {
  constexpr double kWholeNumbers = 4503599627370496;  // 2^52, beyond which all are integers
  const double steps = std::round(value * perUnit);
  return std::fabs(steps) < kWholeNumbers ? steps / perUnit + 0.0 : value;
}

// Rounds last, because subtracting a turn also leaves noise.
double roundedAngle(double angleRad) {
  // Reduced to one turn first, so that equal directions become equal numbers.
  const double turn = 360, degrees = angleRad / kRadiansPerDegree;
  const double within = rounded(degrees - turn * std::floor(degrees / turn), kDegreeSteps);
  return (within < turn ? within : 0) * kRadiansPerDegree;
}

// Removes the noise of scaling and rotation from the last digits: hatches of one pattern with
// different scales and angles must find the same pattern. Steps are powers of ten, which preserves
// the short decimals of definitions, and change at sizes that are not round.
HATCH_LINE rounded(HATCH_LINE line) {
  constexpr double kOffRound = 0.37;
  const double perUnit =
      std::pow(10, kSizeDigits - std::floor(std::log10(sizeOf(line)) + kOffRound));
  // Zero or extreme sizes have no useful step.
  if (!std::isnormal(perUnit)) return line;
  line.angle = roundedAngle(line.angle);
  for (double* length : {&line.x0, &line.y0, &line.dx, &line.dy})
    *length = rounded(*length, perUnit);
  for (double& dash : line.dash) dash = rounded(dash, perUnit);
  return line;
}

// Dots at the end of a sequence coincide with its beginning; definitions may include them or not.
int noDashes(const HATCH_LINE& line) {
  int count = line.numDash;
  while (count > 0 && line.dash[count - 1] == 0) --count;
  return count;
}

bool isMultiple(const HATCH_LINE& line, const HATCH_LINE& of, double factor) {
  // Compared relative to the family's size, because small offsets of large patterns carry noise.
  const double size = sizeOf(of) * factor;
  const double turns = (line.angle - of.angle) / (360 * kRadiansPerDegree);
  if (noDashes(line) != noDashes(of) || !isNear(turns, std::round(turns), 1) ||
      !isNear(line.x0, of.x0 * factor, size) || !isNear(line.y0, of.y0 * factor, size) ||
      !isNear(line.dx, of.dx * factor, size) || !isNear(line.dy, of.dy * factor, size))
    return false;
  return std::equal(line.dash, line.dash + noDashes(line), of.dash, [&](double a, double b) {
    return isNear(a, b * factor, size) && (a == 0) == (b == 0);
  });
}

// Scale of the lines relative to the catalogue's; 0 if they differ.
double factorOf(const std::vector<HATCH_LINE>& lines, const HATCH_TYPE& type) {
  if (lines.size() != static_cast<std::size_t>(type.numLines)) return 0;
  // Any scale matches if it is common to all lines; the first line determines it.
  const double factor = lines[0].dy / type.lines[0].dy;
  if (!std::isfinite(factor) || factor <= 0) return 0;
  const auto isOne = [&](const HATCH_LINE& a, const HATCH_LINE& b) {
    return isMultiple(a, b, factor);
  };
  if (!std::equal(lines.begin(), lines.end(), type.lines, isOne)) return 0;
  // Undoing scale and rotation leaves noise, by which the scale would drift each time that a
  // drawing is saved and read.
  return std::fabs(factor - 1) < kNoise ? 1 : factor;
}

}  // namespace

Pattern findPattern(const PatternRecord& record, CHatchTypeTable& types) {
  if (record.solid) return {&types.solid(), record.scale};
  const HATCH_TYPE* named = getHatch(record.name);
  if (record.lines.empty()) {
    // A user-defined pattern has no lines in the record: one family, or two if crossed.
    if (record.kind == PatternRecord::UserDefined)
      return {&types.intern(record.name, userLines(record.crossed)), record.scale};
    return {named ? named : &types.intern(record.name, {}), record.scale};
  }
  std::vector<HATCH_LINE> lines = ownLines(record);
  // Compared before rounding: the tolerance is larger than the noise.
  const double factor = named ? factorOf(lines, *named) : 0;
  if (factor > 0) return {named, record.scale * factor};
  std::transform(lines.begin(), lines.end(), lines.begin(),
                 [](const HATCH_LINE& line) { return rounded(line); });
  return {&types.intern(record.name, lines), record.scale};
}

}  // namespace vek0::detail
