#include <cmath>

#include "dxf/keep/recordkinds.h"
#include "vek0core/geometry/angle.h"

namespace vek0::detail {
namespace {

constexpr long kMajor = 11, kRatio = 40, kStartParameter = 41, kEndParameter = 42;
constexpr long kBeforeEllipseNormal[] = {10, 20, 30, 11, 21, 31};
// Relative difference below which axes are perpendicular, and ratios equal.
constexpr double kSameShape = 1e-12;

/// The axes of an ellipse: its points are center + cos(t) * major + sin(t) * minor.
struct Axes {
  PNT_3D major, minor;

  /// What has to be subtracted from the parameter if these are just conjugate radii; they become
  /// the axes.
  double straighten() {
    const double lengths = dot(major, major) - dot(minor, minor);
    const double t = std::atan2(2 * dot(major, minor), lengths) / 2;
    const double c = std::cos(t), s = std::sin(t);
    const PNT_3D before = major;
    major = cleaned(scaled(before, c) + scaled(minor, s));
    minor = cleaned(scaled(minor, c) - scaled(before, s));
    return t;
  }
};

// The shape stays the same, so that its ratio and parameters can.
bool isSameShape(const Axes& axes, double ratio) {
  const double a = length(axes.major), b = length(axes.minor);
  return std::fabs(dot(axes.major, axes.minor)) <= kSameShape * a * b &&
         std::fabs(b - ratio * a) <= kSameShape * a;
}

double withinTurn(double angleRad) {
  const double rest = std::fmod(angleRad, kTwoPi);
  return rest < 0 ? rest + kTwoPi : rest;
}

void setShape(RecordMapper& mapper, const Axes& axes, double shift) {
  SourceRecord& record = mapper.record();
  mapper.setReal(record.find(kRatio), length(axes.minor) / length(axes.major));
  const std::size_t start = record.find(kStartParameter), end = record.find(kEndParameter);
  const double from = record.realOf(kStartParameter), to = record.realOf(kEndParameter, kTwoPi);
  if (shift == 0 || std::fabs(std::fabs(to - from) - kTwoPi) <= 1e-9) return;
  mapper.require(start != SourceRecord::kNone && end != SourceRecord::kNone);
  if (!mapper.isOk()) return;
  mapper.setReal(start, withinTurn(from - shift));
  mapper.setReal(end, withinTurn(to - shift));
}

}  // namespace

bool transformEllipse(SourceRecord& record, const MeasuredMap& map) {
  static constexpr CodeRole roles[] = {{10, Role::Point}};
  RecordMapper mapper(record, map);
  const std::size_t major = record.find(kMajor), ratioAt = record.find(kRatio);
  mapper.require(major != SourceRecord::kNone && ratioAt != SourceRecord::kNone);
  if (!mapper.isOk()) return false;
  mapper.applyAll(roles);
  if (map.isMove()) return mapper.commit();
  const PNT_3D axis = mapper.pointAt(major);
  const double ratio = mapper.real(ratioAt);
  const PNT_3D normal = PlaneAxes(RecordMapper::normalOf(record)).z;
  Axes axes{map.vector(axis), map.vector(scaled(cross(normal, axis), ratio))};
  if (!isSameShape(axes, ratio)) {
    const double shift = axes.straighten();
    setShape(mapper, axes, shift);
  }
  mapper.setPoint(major, axes.major);
  mapper.setNormal(kBeforeEllipseNormal);
  return mapper.commit();
}

}  // namespace vek0::detail
