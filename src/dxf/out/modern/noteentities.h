#pragma once

#include "vek0core/entities/entvisitor.h"

class CEnt;

namespace vek0::detail {

class FilePlan;

/// Notes the handles of the entities that it visits in the plan, in the way `EntityRecords` takes
/// them.
class EntityNotes final : public IEntFooVisitor {
 public:
  explicit EntityNotes(FilePlan& plan) : m_plan(plan) {}

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
  void visit(CEntHatch& ent) override;
  void visit(CEnt3DFace& ent) override;

 private:
  template <class Ent>
  void note(const Ent& ent);
  void noteInsert(const CEntInsertBase& ent);

  FilePlan& m_plan;
};

}  // namespace vek0::detail
