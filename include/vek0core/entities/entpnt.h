#pragma once

#include "vek0core/entities/ent.h"
#include "vek0core/entities/entmemento.h"
#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/tables/handle.h"

/// Point entity.
///
/// Invariant: after every setter, the cached extents match the point. Writing through the reference
/// from `getPnt()` deliberately breaks this (the transform visitors change fields, then refresh
/// once); code that does so must call `calcBdry()`.
class VEK0_API CEntPnt : public CEnt {
 public:
  static constexpr short kType = 1;  ///< what `getType` answers

  void accept(IEntVisitor& visitor) override;
  using CEnt::setMemento;
  void setMemento(CData& data, const IEntDerivedMemento* memento) override;
  short getType() const override { return kType; }
  void calcBdry() override;
  IEntDerivedMemento* createDerivedMemento() const override;

  const PNT_3D& getPnt() const { return m_pnt; }
  PNT_3D& getPnt() { return m_pnt; }  ///< see the class about the extents
  void getPnt(double& x, double& y, double& z) const { m_pnt.get(x, y, z); }

  void setPnt(const PNT_3D& pnt);
  void setPnt(double x, double y, double z);

 protected:
  friend class CEntFactory;
  CEntPnt(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color, const PNT_3D& pnt);
  CEntPnt(const CEntPnt& src, vek0::Handle handle);

  CEnt* clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory& blockFactory,
              CBlockTable& blockTable, vek0::Handle handle) const override;

 private:
  PNT_3D m_pnt;
};

/// Undo snapshot of a point entity.
class CEntPntMemento final : public vek0::detail::ValueMemento<CEntPnt, PNT_3D, &CEntPnt::getPnt> {
 public:
  using ValueMemento::ValueMemento;
};
