#include "vek0core/entities/edit/grips.h"

#include <cmath>

#include "geometry/vector.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/blocks/entmovevisitor.h"
#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/entities/enttext.h"
#include "vek0core/entities/entvisitor.h"

namespace vek0::detail {
namespace {

PNT_3D onCircle(const CIRCLE_3D& circle, double angleRad) {
  return {circle.x + circle.radius * std::cos(angleRad),
          circle.y + circle.radius * std::sin(angleRad), circle.z};
}

// Whether the vertices are what the entity is saved as.
bool isPlain(const CEntPolyline& ent) {
  const EntRecord record = ent.getRecord();
  return !ent.isCurve() && (record == EntRecord::Own || record == EntRecord::Lwpolyline ||
                            record == EntRecord::Polyline);
}

std::vector<BULGED_VERTEX> vertexesOf(const CEntPolyline& ent) {
  std::vector<BULGED_VERTEX> vertexes;
  ent.forEachBulged([&](const PNT_3D& p, double start, double end, double bulge, Handle handle) {
    vertexes.push_back({p.x, p.y, p.z, start, end, bulge, handle});
  });
  return vertexes;
}

class GripFinder final : public IEntVisitor {
 public:
  std::vector<PNT_3D> grips;

  using IEntVisitor::visit;
  void visit(CEntPnt& ent) override { grips = {ent.getPnt()}; }
  void visit(CEntLine& ent) override {
    const LINE_3D& line = ent.getLine();
    grips = {line.p1, line.p2, times(line.p1 + line.p2, 0.5)};
  }
  void visit(CEntCircle& ent) override {
    const CIRCLE_3D& c = ent.getCircle();
    grips = {c, PNT_3D(c.x + c.radius, c.y, c.z), PNT_3D(c.x, c.y + c.radius, c.z),
             PNT_3D(c.x - c.radius, c.y, c.z), PNT_3D(c.x, c.y - c.radius, c.z)};
  }
  void visit(CEntArc& ent) override {
    const ARC_3D& arc = ent.getArc();
    double start, end;
    arc.getSafeAngles(start, end);
    grips = {arc, onCircle(arc, start), onCircle(arc, (start + end) / 2), onCircle(arc, end)};
  }
  void visit(CEntPolyline& ent) override {
    for (const BULGED_VERTEX& v : vertexesOf(ent)) {
      grips.emplace_back(v.x, v.y, v.z);
      if (!isPlain(ent)) return;
    }
  }
  void visit(CEntText& ent) override { grips = {ent.getText()}; }
  void visit(CEntAttdef& ent) override { grips = {ent.getText()}; }
  void visit(CEntInsert& ent) override { grips = {ent.getPnt()}; }
  void visit(CEntFixedInsert& ent) override { grips = {ent.getPnt()}; }
  void visit(CEntInsertXRef& ent) override { grips = {ent.getPnt()}; }
  void visit(CEntAttrib&) override {}
  void visit(CEntHatch&) override {}
  void visit(CEnt3DFace& ent) override {
    for (long i = 0; i < 4; ++i) grips.push_back(ent.getVertex(i));
  }
};

class GripMover final : public IEntVisitor {
 public:
  bool isMoved = true;

  GripMover(IHandleGestor& gestor, CEntFactory& factory, std::size_t grip, const PNT_3D& from,
            const PNT_3D& to)
      : m_gestor(gestor), m_factory(factory), m_grip(grip), m_to(to), m_move(to - from) {}

  using IEntVisitor::visit;
  void visit(CEntPnt& ent) override { m_move.visit(ent); }
  void visit(CEntLine& ent) override {
    LINE_3D line = ent.getLine();
    if (m_grip == 2) return m_move.visit(ent);
    (m_grip == 0 ? line.p1 : line.p2) = m_to;
    ent.setLine(line);
  }
  void visit(CEntCircle& ent) override {
    if (m_grip == 0) return m_move.visit(ent);
    CIRCLE_3D circle = ent.getCircle();
    circle.radius = std::hypot(m_to.x - circle.x, m_to.y - circle.y);
    isMoved = circle.radius > 0 && std::isfinite(circle.radius);
    if (isMoved) ent.setCircle(circle);
  }
  void visit(CEntArc& ent) override {
    if (m_grip == 0) return m_move.visit(ent);
    GripFinder old;
    old.visit(ent);
    old.grips[m_grip] = m_to;
    ARC_3D arc = ent.getArc();
    isMoved = arc.Create(old.grips[1], old.grips[2], old.grips[3]);
    if (isMoved) ent.setArc(arc);
  }
  void visit(CEntPolyline& ent) override {
    if (!isPlain(ent)) return m_move.visit(ent);
    std::vector<BULGED_VERTEX> vertexes = vertexesOf(ent);
    BULGED_VERTEX& moved = vertexes[m_grip];
    moved.x = m_to.x;
    moved.y = m_to.y;
    moved.z = m_to.z;
    ent.clearVertex(m_gestor);
    ent.setBulgedVertexes(m_gestor, m_factory, vertexes.data(), vertexes.size());
    ent.calcBdry();
  }
  void visit(CEntText& ent) override { m_move.visit(ent); }
  void visit(CEntAttdef& ent) override { m_move.visit(ent); }
  void visit(CEntInsert& ent) override { m_move.visit(ent); }
  void visit(CEntFixedInsert& ent) override { m_move.visit(ent); }
  void visit(CEntInsertXRef& ent) override { m_move.visit(ent); }
  void visit(CEntAttrib&) override {}
  void visit(CEntHatch&) override {}
  // A triangle has its last corner twice.
  void visit(CEnt3DFace& ent) override {
    const PNT_3D old = ent.getVertex(static_cast<long>(m_grip));
    for (long i = 0; i < 4; ++i)
      if (ent.getVertex(i) == old) ent.setVertex(i, m_to);
  }

 private:
  IHandleGestor& m_gestor;
  CEntFactory& m_factory;
  std::size_t m_grip;
  PNT_3D m_to;
  CEntMoveVisitor m_move;
};

}  // namespace
}  // namespace vek0::detail

std::vector<PNT_3D> gripsOf(CEnt& ent) {
  vek0::detail::GripFinder finder;
  ent.accept(finder);
  return std::move(finder.grips);
}

bool moveGrip(IHandleGestor& gestor, CEntFactory& factory, CEnt& ent, std::size_t grip,
              const PNT_3D& to) {
  const std::vector<PNT_3D> grips = gripsOf(ent);
  if (grip >= grips.size() || !vek0::detail::inReach(to)) return false;
  vek0::detail::GripMover mover(gestor, factory, grip, grips[grip], to);
  ent.accept(mover);
  return mover.isMoved;
}
