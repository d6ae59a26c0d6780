#include "vek0core/entities/edit/entpath.h"

#include <cmath>
#include <vector>

#include "entities/edit/edgevertexes.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/geometry/angle.h"

namespace {

bool pathOf(const CEntPolyline& ent, PATH_3D& out) {
  std::vector<PNT_3D> points;
  std::vector<double> bulges;
  ent.forEachBulged([&](const PNT_3D& p, double, double, double bulge, long) {
    points.push_back(p);
    bulges.push_back(bulge);
  });
  if (points.size() < 2) return false;
  out = PATH_3D(points, bulges, ent.isClosed());
  return true;
}

std::vector<BULGED_VERTEX> vertexesOf(const PATH_3D& path) {
  std::vector<BULGED_VERTEX> vertexes;
  for (const EDGE_3D& edge : path.edges) vek0::detail::addVertexes(edge, vertexes);
  if (!path.closed) vertexes.push_back(vek0::detail::vertexAt(path.end(), 0));
  return vertexes;
}

CEnt* createPolyline(IHandleGestor& gestor, CEntFactory& factory, const PATH_3D& path,
                     const CEnt& like) {
  const std::vector<BULGED_VERTEX> vertexes = vertexesOf(path);
  const short flags = path.closed ? CEntPolyline::kClosed : short{0};
  CEntPolyline* made = factory.createEntPolyline(gestor, like.getLayer(), like.getLtype(),
                                                 like.getColor(), flags, 0, 0);
  if (made) made->setBulgedVertexes(gestor, factory, vertexes.data(), vertexes.size());
  return made;
}

// The type of the entity that an edge becomes if it is alone.
short kindOf(const EDGE_3D& edge) {
  const ARC_3D arc = edge.toArc();
  const bool isFull = arc.startAngle == arc.endAngle;
  // An arc so short that its end angles coincide would be mistaken for a circle.
  if (!edge.isArc() || (isFull && std::fabs(edge.sweep) < vek0::detail::kPi))
    return CEntLine::kType;
  return isFull ? CEntCircle::kType : CEntArc::kType;
}

CEnt* createOf(IHandleGestor& gestor, CEntFactory& factory, const PATH_3D& path, const CEnt& like) {
  if (path.empty()) return nullptr;
  const EDGE_3D& edge = path.edges.front();
  if (path.edges.size() > 1 || (edge.isArc() && edge.p1.z != edge.p2.z))
    return createPolyline(gestor, factory, path, like);
  CLayer* layer = like.getLayer();
  CLtype* ltype = like.getLtype();
  const short color = like.getColor();
  const short kind = kindOf(edge);
  if (kind == CEntLine::kType)
    return factory.createEntLine(gestor, layer, ltype, color, LINE_3D(edge.p1, edge.p2), 0);
  if (kind == CEntCircle::kType)
    return factory.createEntCircle(gestor, layer, ltype, color, edge.toArc(), 0);
  return factory.createEntArc(gestor, layer, ltype, color, edge.toArc(), 0);
}

bool setPath(IHandleGestor& gestor, CEntFactory& factory, const PATH_3D& path,
             CEntPolyline& polyline) {
  double width = 0;
  if (polyline.isCurve() || !polyline.IsWidthConstant(width)) return false;
  polyline.clearVertex(gestor);
  if (polyline.isClosed() && !path.closed) polyline.open(gestor, factory, false);
  if (!polyline.isClosed() && path.closed) polyline.close(gestor, factory, false);
  std::vector<BULGED_VERTEX> vertexes = vertexesOf(path);
  for (BULGED_VERTEX& vertex : vertexes) vertex.widthStart = vertex.widthEnd = width;
  polyline.setBulgedVertexes(gestor, factory, vertexes.data(), vertexes.size());
  polyline.calcBdry();
  return true;
}

}  // namespace

bool getEntPath(const CEnt& ent, PATH_3D& out) {
  switch (ent.getType()) {
    case CEntLine::kType:
      out = PATH_3D(static_cast<const CEntLine&>(ent).getLine());
      return static_cast<const CEntLine&>(ent).getReach() == LineReach::Segment;
    case CEntCircle::kType:
      out = PATH_3D(static_cast<const CEntCircle&>(ent).getCircle());
      return true;
    case CEntArc::kType:
      out = PATH_3D(static_cast<const CEntArc&>(ent).getArc());
      return true;
    case CEntPolyline::kType:
      return pathOf(static_cast<const CEntPolyline&>(ent), out);
    default:
      return false;
  }
}

CEnt* createEntFromPath(IHandleGestor& gestor, CEntFactory& factory, const PATH_3D& path,
                        const CEnt& like) {
  CEnt* made = createOf(gestor, factory, path, like);
  if (made) made->copyExtras(like);
  return made;
}

bool setEntPath(IHandleGestor& gestor, CEntFactory& factory, const PATH_3D& path, CEnt& ent) {
  if (path.empty()) return false;
  if (ent.getType() == CEntPolyline::kType)
    return setPath(gestor, factory, path, static_cast<CEntPolyline&>(ent));
  const EDGE_3D& edge = path.edges.front();
  const bool isLevel = !edge.isArc() || edge.p1.z == edge.p2.z;
  if (path.edges.size() > 1 || !isLevel || ent.getType() != kindOf(edge)) return false;
  if (ent.getType() == CEntLine::kType)
    static_cast<CEntLine&>(ent).setLine(LINE_3D(edge.p1, edge.p2));
  else if (ent.getType() == CEntArc::kType)
    static_cast<CEntArc&>(ent).setArc(edge.toArc());
  else
    static_cast<CEntCircle&>(ent).setCircle(edge.toArc());
  return true;
}
