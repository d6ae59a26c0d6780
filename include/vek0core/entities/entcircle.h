#pragma once

#include "vek0core/entities/ent.h"
#include "vek0core/entities/entmemento.h"
#include "vek0core/export.h"
#include "vek0core/geometry/circle.h"
#include "vek0core/tables/handle.h"

/// Circle entity: a circle in a plane z = constant.
///
/// Invariant: after every setter, the cached extents match the circle. Writing through the
/// reference from `getCircle()` deliberately breaks this (the transform visitors change fields,
/// then refresh once); code that does so must call `calcBdry()`.
class VEK0_API CEntCircle : public CEnt {
 public:
  static constexpr short kType = 3;  ///< what `getType` answers

  void accept(IEntVisitor& visitor) override;
  using CEnt::setMemento;
  void setMemento(CData& data, const IEntDerivedMemento* memento) override;
  short getType() const override { return kType; }
  void calcBdry() override;
  IEntDerivedMemento* createDerivedMemento() const override;

  const CIRCLE_3D& getCircle() const { return m_circle; }
  CIRCLE_3D& getCircle() { return m_circle; }  ///< see the class about the extents
  void getCircle(double& cx, double& cy, double& cz, double& radius) const;

  /// A zero or negative radius is kept: files contain both, and nothing may be lost.
  void setCircle(const CIRCLE_3D& circle);
  void setCircle(double cx, double cy, double cz, double radius);  ///< likewise

 protected:
  friend class CEntFactory;
  CEntCircle(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color,
             const CIRCLE_3D& circle);
  CEntCircle(const CEntCircle& src, vek0::Handle handle);

  CEnt* clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory& blockFactory,
              CBlockTable& blockTable, vek0::Handle handle) const override;

 private:
  CIRCLE_3D m_circle;
};

/// Undo snapshot of a circle entity.
class CEntCircleMemento final
    : public vek0::detail::ValueMemento<CEntCircle, CIRCLE_3D, &CEntCircle::getCircle> {
 public:
  using ValueMemento::ValueMemento;
};
