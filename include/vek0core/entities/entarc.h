#pragma once

#include "vek0core/entities/ent.h"
#include "vek0core/entities/entmemento.h"
#include "vek0core/export.h"
#include "vek0core/geometry/arc.h"
#include "vek0core/tables/handle.h"

/// Arc entity: a part of a circle in a plane z = constant, counterclockwise from its start angle to
/// its end angle, in radians.
///
/// Invariant: after every setter, the cached extents match the arc. Writing through the reference
/// from `getArc()` deliberately breaks this (the transform visitors change fields, then refresh
/// once); code that does so must call `calcBdry()`.
class VEK0_API CEntArc : public CEnt {
 public:
  static constexpr short kType = 4;  ///< what `getType` answers

  void accept(IEntVisitor& visitor) override;
  using CEnt::setMemento;
  void setMemento(CData& data, const IEntDerivedMemento* memento) override;
  short getType() const override { return kType; }
  void calcBdry() override;
  IEntDerivedMemento* createDerivedMemento() const override;

  const ARC_3D& getArc() const { return m_arc; }
  ARC_3D& getArc() { return m_arc; }  ///< see the class about the extents
  void getArc(double& cx, double& cy, double& cz, double& radius, double& startAngle,
              double& endAngle) const;

  /// Stores the arc unchanged, angles included: unlike the other overload, it does not reduce them.
  void setArc(const ARC_3D& arc);
  /// Reduces both angles to [0, 2*pi) before storing them.
  void setArc(double cx, double cy, double cz, double radius, double startAngle, double endAngle);

 protected:
  friend class CEntFactory;
  CEntArc(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color, const ARC_3D& arc);
  CEntArc(const CEntArc& src, vek0::Handle handle);

  CEnt* clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory& blockFactory,
              CBlockTable& blockTable, vek0::Handle handle) const override;

 private:
  ARC_3D m_arc;
};

/// Undo snapshot of an arc entity.
class CEntArcMemento final : public vek0::detail::ValueMemento<CEntArc, ARC_3D, &CEntArc::getArc> {
 public:
  using ValueMemento::ValueMemento;
};
