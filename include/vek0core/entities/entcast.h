#pragma once

#include "vek0core/entities/entvisitor.h"
#include "vek0core/export.h"

namespace vek0::detail {

/// Remembers the visited entity if its class is exactly `Kind`; a visitor may be reused any number
/// of times.
template <class Kind>
class ExactKindVisitor : public IEntFooVisitor {
 protected:
  ~ExactKindVisitor() = default;

  using IEntFooVisitor::visit;
  void visit(Kind& ent) override { m_found = &ent; }

  Kind* find(CEnt* ent);

 private:
  Kind* m_found = nullptr;
};

}  // namespace vek0::detail

/// Each of these returns the entity if it is of exactly that class, otherwise null: an attribute
/// definition is not a text here, although its class derives from one. Null returns null.
class VEK0_API CGetPntVisitor final : public vek0::detail::ExactKindVisitor<CEntPnt> {
 public:
  CEntPnt* getPnt(CEnt* ent);
};

/// See `CGetPntVisitor`.
class VEK0_API CGetLineVisitor final : public vek0::detail::ExactKindVisitor<CEntLine> {
 public:
  CEntLine* getLine(CEnt* ent);
};

/// See `CGetPntVisitor`.
class VEK0_API CGetCircleVisitor final : public vek0::detail::ExactKindVisitor<CEntCircle> {
 public:
  CEntCircle* getCircle(CEnt* ent);
};

/// See `CGetPntVisitor`.
class VEK0_API CGetArcVisitor final : public vek0::detail::ExactKindVisitor<CEntArc> {
 public:
  CEntArc* getArc(CEnt* ent);
};

/// See `CGetPntVisitor`.
class VEK0_API CGetPolylineVisitor final : public vek0::detail::ExactKindVisitor<CEntPolyline> {
 public:
  CEntPolyline* getPolyline(CEnt* ent);
};

/// See `CGetPntVisitor`.
class VEK0_API CGetTextVisitor final : public vek0::detail::ExactKindVisitor<CEntText> {
 public:
  CEntText* getText(CEnt* ent);
};

/// See `CGetPntVisitor`.
class VEK0_API CGetAttdefVisitor final : public vek0::detail::ExactKindVisitor<CEntAttdef> {
 public:
  CEntAttdef* getAttdef(CEnt* ent);
};

/// See `CGetPntVisitor`.
class VEK0_API CGetAttribVisitor final : public vek0::detail::ExactKindVisitor<CEntAttrib> {
 public:
  CEntAttrib* getAttrib(CEnt* ent);
};

/// See `CGetPntVisitor`.
class VEK0_API CGetHatchVisitor final : public vek0::detail::ExactKindVisitor<CEntHatch> {
 public:
  CEntHatch* getHatch(CEnt* ent);
};

/// See `CGetPntVisitor`.
class VEK0_API CGet3DFaceVisitor final : public vek0::detail::ExactKindVisitor<CEnt3DFace> {
 public:
  CEnt3DFace* get3DFace(CEnt* ent);
};

/// Casts the entity to the class in the name if it is of exactly that class, otherwise returns
/// null. For inserts use `CEnt::getEntInsert`.
VEK0_API CEntPnt* castPnt(CEnt* ent);
VEK0_API CEntLine* castLine(CEnt* ent);          ///< see `castPnt`
VEK0_API CEntCircle* castCircle(CEnt* ent);      ///< see `castPnt`
VEK0_API CEntArc* castArc(CEnt* ent);            ///< see `castPnt`
VEK0_API CEntPolyline* castPolyline(CEnt* ent);  ///< see `castPnt`
VEK0_API CEntText* castText(CEnt* ent);          ///< see `castPnt`; plain texts only
VEK0_API CEntAttdef* castAttdef(CEnt* ent);      ///< see `castPnt`
VEK0_API CEntAttrib* castAttrib(CEnt* ent);      ///< see `castPnt`
VEK0_API CEntHatch* castHatch(CEnt* ent);        ///< see `castPnt`
VEK0_API CEnt3DFace* cast3DFace(CEnt* ent);      ///< see `castPnt`
