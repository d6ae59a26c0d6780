// Ellipses, splines, helices and leaders become plain polylines through points of the curve. The
// chord error is relative to the curve's size, so that the picture is the same at any scale. A
// limit per file on the number of points applies to all curves together.
#include "dxf/in/convert/curvereaders.h"

#include <algorithm>
#include <cmath>

#include "dxf/in/convert/arrowheads.h"
#include "dxf/in/convert/replacement.h"
#include "dxf/ocs.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/geometry/angle.h"
#include "vek0core/geometry/ellipse.h"

namespace vek0::detail {
namespace {

constexpr double kFlattest = 1e-6;  // smallest axis ratio that the format supports
// Code 70 of SPLINE.
constexpr long kSplineClosed = 1, kPeriodic = 2;
constexpr long kSubclass = 100;
constexpr long kSplinePath = 1;  // code 72 of LEADER

struct LeaderCodes {
  static bool isPoint(long code) { return code == 10 || code == 20 || code == 30; }
  static bool has(long code) { return isPoint(code) || DimStyleReader::has(code); }
};

// Tolerance for the coinciding ends of closed curves, as computed and written by programs.
constexpr double kMeet = 1e-9;

double halfExtent(const std::vector<PNT_3D>& points) {
  if (points.empty()) return 0;
  PNT_3D low = points.front(), high = low;
  for (const PNT_3D& p : points) {
    low.set(std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z));
    high.set(std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z));
  }
  const PNT_3D sides = high - low;
  return std::max({sides.x, sides.y, sides.z}) / 2;
}

bool endsMeet(const std::vector<PNT_3D>& points) {
  return points.front().dist(points.back()) <= kMeet * halfExtent(points);
}

}  // namespace

double CurveReader::chordError() const {
  const double error = m_in.context().options.policy.chordError;
  return error > 0 ? error : 0;
}

EntPtr CurveReader::readEllipse() {
  static constexpr RecordKind kind({10, 20, 30, 11, 21, 31, 40, 41, 42}, {8, 10, 20, 11, 21, 40});
  if (!m_in.read(kind)) return nullptr;
  const Record& r = m_in.record();
  // A negative ratio reverses the minor axis, like the opposite normal.
  const PNT_3D up = PlaneAxes(r.extrusion).z;
  // Flatter ellipses are invalid; rounding by the writer must not lose the entity.
  const double ratio = std::max(std::fabs(r.real(40)), kFlattest);
  ELLIPSE_3D ellipse;
  if (!ellipse.set(r.point(0), r.point(1), ratio, r.real(41), r.real(42, kTwoPi),
                   r.real(40) < 0 ? -up : up)) {
    m_in.fail(CFileDXFIError::InconsistentRecord);
    return nullptr;
  }
  m_chain.clear();
  ellipse.chords(m_chain, chordError());
  keepWithinRoom();
  return finish(ellipse.isFullTurn(), u"ELLIPSE");
}

EntPtr CurveReader::readSpline() { return readSplineRecord() ? buildSpline(u"SPLINE") : nullptr; }

EntPtr CurveReader::readHelix() { return readSplineRecord() ? buildSpline(u"HELIX") : nullptr; }

bool CurveReader::readSplineRecord() {
  static constexpr RecordKind kind({12, 22, 32, 13, 23, 33, 70, 71}, {8}, {40, 41});
  static constexpr CodeSet own{10, 20, 30, 11, 21, 31, 40, 41, kSubclass};
  m_spline.controls.clear();
  m_spline.knots.clear();
  m_spline.weights.clear();
  m_fits.clear();
  m_isSpline = true;
  return m_in.read(kind, own, 2, [this](long code) { takeSplinePair(code); });
}

void CurveReader::takeSplinePair(long code) {
  if (code == kSubclass) {
    // A helix repeats the codes for its own data after the spline.
    m_isSpline = !m_in.lexer().isKeyword("ACDBHELIX");
  } else if (!m_isSpline) {
    m_in.passOver();
  } else if (code == 40) {
    m_spline.knots.push_back(m_in.lexer().getDouble());
  } else if (code == 41) {
    m_spline.weights.push_back(m_in.lexer().getDouble());
  } else {
    takeCoordinate(m_in, code / 10 - 1, code % 10 == 0 ? m_spline.controls : m_fits);
  }
}

// The controls define the curve; fit points matter only without them.
EntPtr CurveReader::buildSpline(const zim::WString& kind) {
  const Record& r = m_in.record();
  const bool closed = (r.integer(70) & (kSplineClosed | kPeriodic)) != 0;
  m_spline.degree = static_cast<int>(r.integer(71, 3));
  m_chain.clear();
  // Without a curve through the fit points, the controls are all there is.
  if (m_spline.controls.size() >= 2 || !fit(closed)) addChords();
  return finish(closed, kind);
}

// False if the fit points define no curve. A closed curve has the same tangent at both ends; if a
// file omits it, it follows from the adjacent points.
bool CurveReader::fit(bool closed) {
  const Record& r = m_in.record();
  PNT_3D start = r.point(2), end = r.point(3);
  if (closed && m_fits.size() > 2) {
    // Some files repeat the first point of a closed curve, others do not.
    if (!endsMeet(m_fits)) m_fits.push_back(m_fits.front());
    const PNT_3D zero(0, 0, 0);
    if (start == zero && end == zero) start = end = m_fits[1] - m_fits[m_fits.size() - 2];
  }
  if (!m_spline.createFit(m_fits, &start, &end)) return false;
  addChords();
  return true;
}

void CurveReader::addChords() {
  const auto bad = [](double weight) { return !(weight > 0); };
  std::vector<double>& weights = m_spline.weights;
  if (!weights.empty() && (weights.size() != m_spline.controls.size() ||
                           std::any_of(weights.begin(), weights.end(), bad))) {
    m_in.note(ReportCode::WeightsIgnored);
    weights.clear();
  }
  // An invalid spline is approximated by its control polygon, and reported.
  if (!m_spline.isValid()) {
    m_spline.controlPolygon(m_chain);
    if (m_chain.size() >= 2) m_in.note(ReportCode::CurveAsFrame);
    return;
  }
  m_spline.chords(chordError() * halfExtent(m_spline.controls), m_chain);
  keepWithinRoom();
}

void CurveReader::keepWithinRoom() {
  constexpr std::size_t few = 8;
  // Already short: thinning would gain nothing.
  if (m_chain.size() <= few + 1 || m_in.takeCurveRoom(m_chain.size())) return;
  const std::size_t last = m_chain.size() - 1;
  // Evenly distributed, including both ends.
  for (std::size_t i = 1; i <= few; ++i) m_chain[i] = m_chain[i * last / few];
  m_chain.resize(few + 1);
}

EntPtr CurveReader::finish(bool closed, const zim::WString& kind) {
  return handOver(m_in, buildPolyline(closed), kind);
}

std::vector<EntPtr> CurveReader::buildPolyline(bool closed) {
  // The closing flag replaces the repeated point.
  if (closed && m_chain.size() > 2 && endsMeet(m_chain)) m_chain.pop_back();
  std::vector<EntPtr> built;
  const short flags = CEntPolyline::kLtGen | (closed ? CEntPolyline::kClosed : 0);
  if (m_chain.size() >= 2)
    if (EntPtr polyline = buildChain(m_in, m_chain, flags, m_in.record().handle))
      built.push_back(std::move(polyline));
  return built;
}

EntPtr CurveReader::readLeader() {
  static constexpr RecordKind kind({71, 72}, {8});
  m_chain.clear();
  DimStyleReader styleReader;
  const auto takeOwn = [&](long code) {
    if (LeaderCodes::isPoint(code)) return takeCoordinate(m_in, code / 10 - 1, m_chain);
    if (!styleReader.take(m_in.lexer())) m_in.note(ReportCode::CodeDropped, u"1001");
  };
  if (!m_in.read(kind, LeaderCodes(), 2, takeOwn)) return nullptr;
  // A leader's vertices are fit points of its spline.
  if (m_in.record().integer(72) == kSplinePath && m_chain.size() > 2 &&
      m_spline.createFit(m_chain)) {
    m_chain.clear();
    addChords();
  }
  std::vector<EntPtr> built = buildPolyline(false);
  if (m_in.record().integer(71, 1) != 0)
    addHead(styleReader.style(m_in.context().dimStyles), built);
  return handOver(m_in, std::move(built), u"LEADER");
}

// As the format specifies, there is no head if the first segment is shorter than two heads.
void CurveReader::addHead(const DimStyle& style, std::vector<EntPtr>& built) {
  const PlaneAxes axes(m_in.record().extrusion);
  const ArrowHeads heads(m_in, style, axes);
  if (m_in.failed() || m_chain.size() < 2) return;
  const PNT_3D tip = axes.fromWorld(m_chain[0]), next = axes.fromWorld(m_chain[1]);
  const bool isSpline = m_in.record().integer(72) == kSplinePath;
  if (!isSpline && std::hypot(tip.x - next.x, tip.y - next.y) < 2 * heads.size()) return;
  heads.add(ArrowHeads::kLeader, tip, std::atan2(tip.y - next.y, tip.x - next.x), built);
}

}  // namespace vek0::detail
