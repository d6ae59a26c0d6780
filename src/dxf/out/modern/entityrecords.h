#pragma once

#include <optional>
#include <vector>

#include "dxf/out/modern/fileplan.h"
#include "dxf/out/modern/propertypairs.h"
#include "vek0core/entities/entvisitor.h"
#include "vek0core/tables/handle.h"

class PNT_3D;

namespace vek0::detail {

struct PolylineForm;
struct SavedText;
struct SavedVertex;

/// Writes entities as records of the kinds that later versions have for them, one `visit` per
/// entity.
class EntityRecords final : public IEntFooVisitor {
 public:
  /// Both are borrowed.
  EntityRecords(FilePlan& plan, CFileDXFOWriter& out)
      : m_plan(plan), m_out(out), m_properties(plan, out) {}

  /// The next entities belong to the block of that record.
  void enter(Handle record, bool isSheet) {
    m_record = record;
    m_isSheet = isSheet;
  }
  /// Whether plane polylines are written as POLYLINE instead of LWPOLYLINE; off by default.
  void setOldPolylines(bool isOld) { m_writesOld = isOld; }
  PropertyPairs& properties() { return m_properties; }
  /// Begins a record up to its common properties.
  void begin(const char* kind, Handle handle, Handle owner, Handle dictionary = 0);

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
  // What distinguishes the kinds of texts; without a tag it is no attribute.
  struct TextKind {
    const char* subclass;
    long verticalCode;
    const zim::WString* prompt = nullptr;
    const zim::WString* tag = nullptr;
    long flags = 0;
  };

  Handle begin(const char* kind, const CEnt& ent, const char* subclass);
  Handle begin(const char* kind, const CEnt& ent, const char* subclass, Handle owner,
               Handle dictionary);
  void writeThickness(const CEnt& ent);
  void dropThickness(const CEnt& ent);
  void writeAngle(long code, double angleRad);
  void writePlane(const PNT_3D& normal);
  bool writeSolid(const CEnt3DFace& ent, const char* kind);
  void writeText(const CEnt& ent, const SavedText& text, const TextKind& kind);
  void writeLight(const CEntPolyline& ent, const PolylineForm& form);
  void writeOld(const CEntPolyline& ent, const PolylineForm& form);
  void writeVertex(const CEnt& owner, Handle polyline, const PolylineForm& form,
                   const SavedVertex& vertex);
  void writeInsert(const CEntInsertBase& ent, Handle dictionary);
  Handle planClip(const CEntInsert& ent);
  void writeAttribs(const CEntInsertBase& ent, Handle insert);
  void writeEnd(const CEnt& owner, Handle handle);
  template <class Ent>
  bool refuses(const Ent& ent, const char* kind) {
    const std::optional<ReportCode> objection = m_plan.filter.objection(ent);
    if (objection) note(*objection, kind);
    return objection.has_value();
  }
  void note(ReportCode code, const char* sample);

  FilePlan& m_plan;
  CFileDXFOWriter& m_out;
  PropertyPairs m_properties;
  Handle m_record = 0;
  bool m_isSheet = false;
  bool m_writesOld = false;
  std::vector<const CEntAttrib*> m_attribs;  // of the insert being written
};

}  // namespace vek0::detail
