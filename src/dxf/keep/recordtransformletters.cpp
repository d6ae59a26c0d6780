// Letters of mirrored records. The record has been mirrored in its plane; its letters cannot, so
// the text is turned over: along its direction, which exchanges left and right, or across it.
#include <algorithm>
#include <cmath>

#include "dxf/keep/recordkinds.h"
#include "vek0core/geometry/angle.h"

namespace vek0::detail {
namespace {

constexpr double kHalfTurn = 180;

double cosine(double degrees) { return std::cos(degrees * kPi / kHalfTurn); }
double sine(double degrees) { return std::sin(degrees * kPi / kHalfTurn); }

// Whether a text reads to the right, or straight up.
bool isUpright(double degrees) {
  constexpr double close = 1e-9;
  return std::fabs(cosine(degrees)) > close ? cosine(degrees) > 0 : sine(degrees) > 0;
}

// Whether a text that now has the direction `image` is to read in the opposite one: only that is
// upright, or upside down, as the text was.
bool isReversed(const MeasuredPlane& plane, double image) {
  return isUpright(image) != isUpright(plane.turn() - image);
}

void setOrInsert(SourceRecord& record, long code, std::size_t place, const std::string& value) {
  const std::size_t at = record.find(code);
  if (at != SourceRecord::kNone)
    record.setText(at, value);
  else
    record.insert(place, code, value);
}

// Of a left text on its baseline, the place is in 10, of any other one in 11; a fitted one spans
// both.
void exchangeSides(SourceRecord& record, long side, bool isOnBaseline) {
  constexpr long across = 72, aligned = 3, fitted = 5, right = 2;
  const std::size_t first = record.find(10);
  const std::size_t second = record.find(11);
  const bool spans = side == aligned || side == fitted;
  if (first == SourceRecord::kNone || (!spans && side != 0 && side != right)) return;
  const bool hasSecond = second != SourceRecord::kNone;
  if (!hasSecond && !(side == 0 && isOnBaseline)) return;
  const PNT_3D a = record.pointAt(first), b = hasSecond ? record.pointAt(second) : a;
  const PNT_3D& begin = spans || (side == right && isOnBaseline) ? b : a;
  if (hasSecond) record.setPoint(second, spans || (side == 0 && isOnBaseline) ? a : b);
  const std::size_t place = record.setPoint(first, begin);
  if (spans) return;
  const double xyz[] = {a.x, a.y, a.z};
  for (long axis = 2; axis >= 0 && !hasSecond; --axis)
    record.insertReal(place, 11 + 10 * axis, xyz[axis]);
  setOrInsert(record, across, place, std::to_string(right - side));
}

void shift(SourceRecord& record, const PNT_3D& by) {
  for (const long code : {10, 11})
    if (const std::size_t at = record.find(code); at != SourceRecord::kNone)
      record.setPoint(at, record.pointAt(at) + by);
}

}  // namespace

void turnText(SourceRecord& record, const MeasuredPlane& plane) {
  constexpr long angle = 50, height = 40, across = 72, bottom = 1, top = 3;
  const long upward = record.is("TEXT") ? 73 : 74;
  const double image = record.realOf(angle);
  const long up = record.integerOf(upward);
  if (isReversed(plane, image)) {
    const std::size_t place = record.find(height);
    setOrInsert(record, angle, place == SourceRecord::kNone ? record.pairs.size() : place + 1,
                shortestText(tidyAngle(image + kHalfTurn)));
    return exchangeSides(record, record.integerOf(across), up == 0);
  }
  const double by = record.realOf(height);
  const PNT_3D down = cleaned(PNT_3D(sine(image), -cosine(image), 0));
  if (up == 0) shift(record, PNT_3D(by * down.x, by * down.y, 0));
  if (up == bottom || up == top) record.setInteger(record.find(upward), bottom + top - up);
}

// The place of the insertion point in the area: 1 to 9, from top left to bottom right.
void turnMText(SourceRecord& record, const MeasuredPlane& plane) {
  constexpr long angle = 50, direction = 11, attachment = 71, columns = 3, places = 9;
  const std::size_t along = record.find(direction), at = record.find(attachment);
  double image = record.realOf(angle);
  PNT_3D to(0, 0, 0);
  if (along != SourceRecord::kNone) {
    to = record.pointAt(along);
    image = std::atan2(to.y, to.x) * kHalfTurn / kPi;
  }
  const bool reverses = isReversed(plane, image);
  if (at != SourceRecord::kNone) {
    const long place = std::clamp(record.integer(at), 1L, places) - 1;
    const long row = place / columns, column = place % columns;
    record.setInteger(at, reverses ? row * columns + (columns - 1 - column) + 1
                                   : (columns - 1 - row) * columns + column + 1);
  }
  if (!reverses) return;
  if (along != SourceRecord::kNone)
    record.setPoint(along, PNT_3D(-to.x, -to.y, -to.z));
  else
    setOrInsert(record, angle, record.extendedData(), shortestText(tidyAngle(image + kHalfTurn)));
}

}  // namespace vek0::detail
