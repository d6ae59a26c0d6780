#pragma once

#include "dxf/out/savehandles.h"

namespace vek0::detail {

class FilePlan;

/// Notes the handles of the entities that it visits in the plan, in the way `EntityRecords` takes
/// them.
class EntityNotes final : public HandleCollector {
 public:
  explicit EntityNotes(FilePlan& plan);

  using HandleCollector::visit;
  void visit(CEntPolyline& ent) override;
  void visit(CEntInsert& ent) override;
  void visit(CEntInsertXRef& ent) override;
  void visit(CEntHatch& ent) override;

 private:
  FilePlan& m_plan;
};

}  // namespace vek0::detail
