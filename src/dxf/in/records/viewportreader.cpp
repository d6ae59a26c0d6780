// The view of a viewport is in group codes of its own, or in R12 in extended data: there its
// numbers have one code each and are told apart by their order.
#include "dxf/in/records/viewportreader.h"

#include <cmath>

#include "files/number.h"
#include "zim0lang/casefold.h"

namespace vek0::detail {
namespace {

constexpr long kFrozen = 331, kAlsoFrozen = 341, kBoundary = 340;
constexpr long kMark = 1000, kOwner = 1001, kName = 1003, kPoint = 1010, kReal = 1040;

// Bits of code 90.
constexpr long kPerspective = 1, kFrontClip = 2, kBackClip = 4, kHidesLines = 0x800,
               kHasBoundary = 0x10000, kIsOff = 0x20000;

struct ViewportCodes {
  static constexpr bool has(long code) {
    return code == kFrozen || code == kAlsoFrozen || code == kBoundary || code >= 1000;
  }
};

// The data under "MVIEW": target, direction; twist, height and center of the view, and others. The
// data of other programs is lost.
class ViewData {
 public:
  void take(long code, const RecordReader& in, ReadViewport& viewport) {
    const CFileDXFILexer& lexer = in.lexer();
    if (code == kOwner) {
      m_isOurs = zim::equalsIgnoreCase(lexer.getText(), u"ACAD");
      m_isView = false;
      if (!m_isOurs) in.note(ReportCode::CodeDropped, u"1001");
    }
    if (code == kMark) m_isView = m_isOurs && zim::equalsIgnoreCase(lexer.getText(), u"MVIEW");
    if (m_isView) takeView(code, lexer, viewport);
  }
  bool isWhole() const { return m_noPoints >= 2 && m_noReals >= 4; }
  PNT_3D target() const { return PNT_3D(m_points[0][0], m_points[0][1], m_points[0][2]); }
  PNT_3D direction() const { return PNT_3D(m_points[1][0], m_points[1][1], m_points[1][2]); }
  double twist() const { return m_reals[0]; }
  double height() const { return m_reals[1]; }
  PNT_2D center() const { return PNT_2D(m_reals[2], m_reals[3]); }

 private:
  void takeView(long code, const CFileDXFILexer& lexer, ReadViewport& viewport) {
    const double value = parseDouble(lexer.getBytes()).value;
    if (code == kName) viewport.frozenNames.push_back(lexer.getText());
    const long axis = (code - kPoint) / 10;
    const bool isPoint = code >= kPoint && code < kReal && (code - kPoint) % 10 == 0;
    if (isPoint && axis == 0) ++m_noPoints;
    if (isPoint && m_noPoints >= 1 && m_noPoints <= 2) m_points[m_noPoints - 1][axis] = value;
    if (code == kReal && m_noReals < kReals) m_reals[m_noReals++] = value;
  }
  static constexpr int kReals = 4;
  bool m_isOurs = false, m_isView = false;
  int m_noPoints = 0, m_noReals = 0;
  double m_points[2][3] = {{0, 0, 0}, {0, 0, 1}};
  double m_reals[kReals] = {};
};

void takeView(const Record& r, const ViewData& data, VIEWPORT& view, PNT_3D& direction) {
  const bool isGiven = r.seen.has(45) || !data.isWhole();
  const PNT_3D target = isGiven ? r.point(7) : data.target();
  view.target = PNT_2D(target.x, target.y);
  view.viewCenter = isGiven ? PNT_2D(r.real(12), r.real(22)) : data.center();
  view.viewHeight = isGiven ? r.real(45) : data.height();
  view.twistRad = (isGiven ? r.real(51) : data.twist()) * kRadiansPerDegree;
  const bool hasDirection = r.seen.has(16) || r.seen.has(26) || r.seen.has(36);
  direction = isGiven ? PNT_3D(0, 0, 1) : data.direction();
  if (isGiven && hasDirection) direction = r.point(6);
}

// The first of the properties of the view that a drawing cannot hold.
const char* simplifiedOf(long flags, bool isPlan) {
  if ((flags & kPerspective) != 0) return "perspective";
  if (!isPlan) return "direction";
  if ((flags & (kFrontClip | kBackClip)) != 0) return "depth";
  return (flags & kHidesLines) != 0 ? "hidden lines" : nullptr;
}

}  // namespace

bool readViewport(RecordReader& in, ReadViewport& viewport) {
  static constexpr CodeSet all{10, 20, 40, 41, 45, 51, 12, 22, 16, 26, 36, 17, 27, 68, 69, 90};
  static constexpr RecordKind kind(all, {}, all);
  ViewData data;
  viewport.line = in.lexer().getLine();
  const auto take = [&](long code) {
    const std::uint64_t handle = code < 1000 ? parseHex(in.lexer().getBytes()) : 0;
    if (code == kBoundary)
      viewport.boundary = handle;
    else if (code < 1000)
      viewport.frozen.push_back(handle);
    else
      data.take(code, in, viewport);
  };
  if (!in.read(kind, ViewportCodes(), 2, take)) return false;
  const Record& r = in.record();
  VIEWPORT& view = viewport.view;
  view.center = PNT_2D(r.real(10), r.real(20));
  view.width = r.real(40);
  view.height = r.real(41);
  PNT_3D direction;
  takeView(r, data, view, direction);
  if (r.seen.has(45)) viewport.frozenNames.clear();
  constexpr double upright = 1e-9;
  const long flags = r.integer(90);
  view.isPlan = direction.z > 0 && std::hypot(direction.x, direction.y) <= upright * direction.z &&
                (flags & kPerspective) == 0;
  // The status of viewports on sheets that were not open says nothing.
  view.isOn = r.seen.has(90) ? (flags & kIsOff) == 0 : r.integer(68, 1) != 0;
  if (r.seen.has(90) && (flags & kHasBoundary) == 0) viewport.boundary = 0;
  viewport.number = r.integer(69);
  viewport.simplified = simplifiedOf(flags, view.isPlan);
  if (view.isOn && !(view.viewHeight > 0)) viewport.simplified = "height";
  view.layer = r.layer;
  view.ltype = r.ltype;
  view.color = r.color;
  view.traits = r.traits;
  view.handle = r.handle;
  viewport.layout = in.layout();
  return true;
}

}  // namespace vek0::detail
