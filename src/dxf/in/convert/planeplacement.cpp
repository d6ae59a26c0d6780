// Entities lie in a plane given by its normal, in coordinates of that plane. A normal along -z only
// mirrors them, and most kinds are preserved. In an inclined plane, circles and arcs become chains
// of chords in space. Texts and inserts cannot be inclined; they are laid flat at their point,
// which is reported.
#include "dxf/in/convert/planeplacement.h"

#include <cmath>

#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/entities/enttext.h"
#include "vek0core/geometry/angle.h"

namespace vek0::detail {
namespace {

EntPtr chordsOf(RecordReader& in, const CIRCLE_3D& circle, double start, double sweep, bool closed,
                const PlaneAxes& axes) {
  constexpr int few = 8;
  int count = arcChords(sweep, in.context().options.policy.chordError);
  if (count > few && !in.takeCurveRoom(static_cast<std::size_t>(count))) count = few;
  std::vector<BULGED_VERTEX> vertexes;
  for (int i = 0; i < (closed ? count : count + 1); ++i) {
    const double angle = start + sweep * i / count;
    const PNT_3D p = axes.toWorld(PNT_3D(circle.x + circle.radius * std::cos(angle),
                                         circle.y + circle.radius * std::sin(angle), circle.z));
    vertexes.push_back({p.x, p.y, p.z, 0, 0, 0, 0});
  }
  const Record& r = in.record();
  const short flags = CEntPolyline::kLtGen | (closed ? CEntPolyline::kClosed : 0);
  auto polyline = in.make().polyline(r, flags, 0);
  if (polyline)
    polyline->setBulgedVertexes(in.gestor(), in.factory(), vertexes.data(), vertexes.size());
  in.note(ReportCode::CurveAsPolyline);
  return polyline;
}

EntPtr placeCircle(RecordReader& in, EntPtr ent, const PlaneAxes& axes) {
  auto& circle = static_cast<CEntCircle&>(*ent);
  const CIRCLE_3D c = circle.getCircle();
  if (!axes.isMirrored()) return chordsOf(in, c, 0, 2 * kPi, true, axes);
  // The axes of a plane with normal -z are -x, y and -z.
  circle.setCircle(-c.x, c.y, -c.z, c.radius);
  return ent;
}

EntPtr placeArc(RecordReader& in, EntPtr ent, const PlaneAxes& axes) {
  auto& arc = static_cast<CEntArc&>(*ent);
  const ARC_3D a = arc.getArc();
  if (axes.isMirrored()) {
    // Mirroring exchanges the ends, because arcs always run counterclockwise.
    arc.setArc(-a.x, a.y, -a.z, a.radius, kPi - a.endAngle, kPi - a.startAngle);
    return ent;
  }
  double start, end;
  a.getSafeAngles(start, end);
  return chordsOf(in, a, start, end - start, false, axes);
}

// The world rotation nearest to one in the plane. Content seen from below is also mirrored in its
// own x.
double flatAngle(const PlaneAxes& axes, double angle) {
  if (axes.isMirrored()) return -angle;
  const PNT_3D way = axes.toWorld(PNT_3D(std::cos(angle), std::sin(angle), 0));
  return axes.isFromBelow() ? std::atan2(-way.y, -way.x) : std::atan2(way.y, way.x);
}

// Content seen from the other side is mirrored in its own x.
void turnOver(CTextContext& context) {
  context.setWidthScale(-context.getWidthScale());
  context.setOblique(-context.getOblique());
}

EntPtr placeText(RecordReader& in, EntPtr ent, const PlaneAxes& axes) {
  auto& owner = static_cast<CEntText&>(*ent);
  TEXT_3D text(owner.getText());
  CTextContext context(text.getContext());
  text.PNT_3D::operator=(axes.toWorld(text));
  context.setRotate(flatAngle(axes, context.getRotate()));
  if (axes.isFromBelow()) turnOver(context);
  // A mirrored text is exact; in other planes its inclination is lost.
  if (!axes.isMirrored()) in.note(ReportCode::ExtrusionIgnored, u"TEXT");
  text.setContext(context);
  owner.setText(text);
  return ent;
}

EntPtr placeInsert(RecordReader& in, EntPtr ent, const PlaneAxes& axes) {
  auto& insert = static_cast<CEntInsert&>(*ent);
  PNT_3D at;
  double sx, sy, sz, rotation;
  insert.getInsertParams(1, at, sx, sy, sz, rotation);
  const double side = axes.isFromBelow() ? -1 : 1;
  if (axes.isFromBelow()) {
    long columns, rows;
    double columnSpacing, rowSpacing;
    insert.getArray(columns, rows, columnSpacing, rowSpacing);
    // The x axis of the plane is reversed, so columns run the other way.
    insert.setArray(columns, rows, -columnSpacing, rowSpacing);
  }
  insert.setInsert(axes.toWorld(at), side * sx, sy, side * sz, flatAngle(axes, rotation));
  if (!axes.isMirrored()) in.note(ReportCode::ExtrusionIgnored, u"INSERT");
  return ent;
}

}  // namespace

void changePlane(TEXT_3D& text, const PlaneAxes& from, const PlaneAxes& to) {
  CTextContext context(text.getContext());
  const double angle = context.getRotate();
  PNT_3D way = to.fromWorld(from.toWorld(PNT_3D(std::cos(angle), std::sin(angle), 0)));
  if (from.isFromBelow() != to.isFromBelow()) {
    turnOver(context);
    way = -way;
  }
  context.setRotate(std::atan2(way.y, way.x));
  text.PNT_3D::operator=(to.fromWorld(from.toWorld(text)));
  text.setContext(context);
}

EntPtr placeInWorld(RecordReader& in, EntPtr ent, const PlaneAxes& axes) {
  switch (ent->getType()) {
    case CEntCircle::kType:
      return placeCircle(in, std::move(ent), axes);
    case CEntArc::kType:
      return placeArc(in, std::move(ent), axes);
    case CEntText::kType:
    case CEntAttdef::kType:
      return placeText(in, std::move(ent), axes);
    case CEntInsert::kType:
      return placeInsert(in, std::move(ent), axes);
    default:
      return ent;
  }
}

void placeInWorld(RecordReader& in, std::vector<BULGED_VERTEX>& vertexes, const PlaneAxes& axes,
                  bool closed) {
  if (axes.isMirrored()) {
    for (BULGED_VERTEX& v : vertexes) {
      v.x = -v.x;
      v.z = -v.z;
      // Seen from the other side, a left turn is a right turn.
      v.bulge = -v.bulge;
    }
    return;
  }
  std::vector<BULGED_VERTEX> placed;
  for (std::size_t i = 0; i < vertexes.size(); ++i) {
    const BULGED_VERTEX &from = vertexes[i], &to = vertexes[(i + 1) % vertexes.size()];
    std::vector<PNT_3D> points{PNT_3D(from.x, from.y, from.z)};
    if (from.bulge != 0 && (closed || i + 1 < vertexes.size())) {
      bulgePoints(points[0], PNT_3D(to.x, to.y, to.z), from.bulge, points);
      points.pop_back();  // which is the next vertex
      // Without room for its chords, the arc is drawn as one segment.
      if (!in.takeCurveRoom(points.size())) points.resize(1);
    }
    for (std::size_t k = 0; k < points.size(); ++k) {
      const double t = static_cast<double>(k) / static_cast<double>(points.size());
      const double t1 = static_cast<double>(k + 1) / static_cast<double>(points.size());
      const PNT_3D p = axes.toWorld(points[k]);
      placed.push_back({p.x, p.y, p.z, std::lerp(from.widthStart, from.widthEnd, t),
                        std::lerp(from.widthStart, from.widthEnd, t1), 0,
                        k == 0 ? from.handle : 0});
    }
  }
  vertexes.swap(placed);
}

}  // namespace vek0::detail
