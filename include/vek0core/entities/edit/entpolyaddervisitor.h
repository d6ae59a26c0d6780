#pragma once

#include <memory>

#include "vek0core/entities/entvisitor.h"
#include "vek0core/export.h"
#include "vek0core/tables/handle.h"

class CEnt;
class CEntFactory;

namespace vek0::detail {
class OpenChain;
}

/// Extends an open polyline by the visited lines, arcs and open polylines if one of their ends
/// coincides with one of its own, within a tolerance. They are appended there, reversed if
/// necessary, and keep their widths. Visited entities are not changed.
///
/// The polyline keeps its layer, linetype and color. If an end matches both ends of the polyline,
/// the last one is used. `finish` writes the vertices; until then the polyline is unchanged. For
/// many entities in arbitrary order, see `joinEnts`.
class VEK0_API CEntPolyAdderVisitor final : public IEntFooVisitor {
 public:
  /// `polyline` must be plain (see `Rectify`) and open, or nothing is added. `tolerance` is in
  /// drawing units, 0 or more.
  CEntPolyAdderVisitor(CEntPolyline& polyline, double tolerance);
  ~CEntPolyAdderVisitor();
  CEntPolyAdderVisitor(const CEntPolyAdderVisitor&) = delete;
  CEntPolyAdderVisitor& operator=(const CEntPolyAdderVisitor&) = delete;

  /// Whether the last visited entity was appended.
  bool isAdded() const { return m_isAdded; }
  /// Writes the vertices, which get handle 0, and closes the polyline if its ends meet. Returns
  /// whether it is now closed. Has no effect if nothing was appended.
  bool finish(IHandleGestor& gestor, CEntFactory& factory);

  using IEntFooVisitor::visit;
  void visit(CEntPnt& ent) override;
  void visit(CEntLine& ent) override;
  void visit(CEntCircle& ent) override;
  void visit(CEntArc& ent) override;
  void visit(CEntPolyline& ent) override;
  void visit(CEntText& ent) override;
  void visit(CEntAttdef& ent) override;
  void visit(CEntInsert& ent) override;
  void visit(CEntFixedInsert& ent) override;
  void visit(CEntInsertXRef& ent) override;
  void visit(CEntAttrib& ent) override;
  void visit(CEntHatch& ent) override;
  void visit(CEnt3DFace& ent) override;

 private:
  bool add(const CEnt& ent);

  CEntPolyline& m_polyline;
  double m_tolerance;
  std::unique_ptr<vek0::detail::OpenChain> m_chain;  // null: nothing can be added
  bool m_isAdded = false;
  bool m_isChanged = false;
};
