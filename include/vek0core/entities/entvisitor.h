#pragma once

#include "vek0core/export.h"

class CEnt;
class CEnt3DFace;
class CEntArc;
class CEntAttdef;
class CEntAttrib;
class CEntCircle;
class CEntFixedInsert;
class CEntHatch;
class CEntInsert;
class CEntInsertBase;
class CEntInsertXRef;
class CEntLine;
class CEntPnt;
class CEntPolyline;
class CEntText;
class CVertex;

/// Kind-specific operations on entities, with one overload per class. A new kind then causes a
/// compile error wherever it must be handled.
///
/// Visitors live on the stack and are never deleted through this interface, hence the protected
/// destructor.
class VEK0_API IEntVisitor {
 public:
  virtual void visit(CEntPnt& ent) = 0;
  virtual void visit(CEntLine& ent) = 0;
  virtual void visit(CEntCircle& ent) = 0;
  virtual void visit(CEntArc& ent) = 0;
  virtual void visit(CEntPolyline& ent) = 0;
  virtual void visit(CEntText& ent) = 0;
  virtual void visit(CEntAttdef& ent) = 0;
  virtual void visit(CEntInsert& ent) = 0;
  virtual void visit(CEntFixedInsert& ent) = 0;
  virtual void visit(CEntInsertXRef& ent) = 0;
  virtual void visit(CEntAttrib& ent) = 0;
  virtual void visit(CEntHatch& ent) = 0;
  virtual void visit(CEnt3DFace& ent) = 0;
  /// A vertex of a polyline; not an entity, so doing nothing is the default.
  virtual void visit(CVertex& vertex);

 protected:
  IEntVisitor() = default;
  IEntVisitor(const IEntVisitor&) = default;
  IEntVisitor& operator=(const IEntVisitor&) = default;
  ~IEntVisitor() = default;
};

/// Ignores every kind. Derive from it only if ignoring all other kinds is really correct, and
/// unhide the remaining overloads with `using IEntFooVisitor::visit;`.
class VEK0_API IEntFooVisitor : public IEntVisitor {
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

 protected:
  IEntFooVisitor() = default;
  IEntFooVisitor(const IEntFooVisitor&) = default;
  IEntFooVisitor& operator=(const IEntFooVisitor&) = default;
  ~IEntFooVisitor() = default;
};
