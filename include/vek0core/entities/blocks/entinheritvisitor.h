#pragma once

#include "vek0core/entities/entvisitor.h"
#include "vek0core/export.h"

/// Forwards every kind to the overload of its base class, up to `visit(CEnt&)`, which does nothing:
/// overriding one overload handles a whole branch. Each step is a virtual call, so an override at
/// any level takes effect.
class VEK0_API IEntInheritVisitor : public IEntVisitor {
 public:
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
  void visit(CVertex& vertex) override;
  /// Inserts and hatches not handled by a more specific overload.
  virtual void visit(CEntInsertBase& ent);
  /// Everything not handled by a more specific overload.
  virtual void visit(CEnt& ent);

 protected:
  IEntInheritVisitor() = default;
  IEntInheritVisitor(const IEntInheritVisitor&) = default;
  IEntInheritVisitor& operator=(const IEntInheritVisitor&) = default;
  ~IEntInheritVisitor() = default;
};
