#pragma once

#include "vek0core/entities/ent.h"
#include "vek0core/entities/entmemento.h"
#include "vek0core/export.h"
#include "vek0core/geometry/line.h"
#include "vek0core/tables/handle.h"

/// Extent of a line entity.
enum class LineReach : unsigned char {
  Segment,  ///< from its first point to its second
  Ray,      ///< from its first point through the second to infinity
  Endless   ///< through both points, infinite in both directions
};

/// Line entity: a segment in space, a ray or an infinite line. The extents of the latter two are
/// those of their two points. A segment of zero length is valid and kept.
///
/// Invariant: after every setter, the cached extents match the segment. Writing through the
/// reference from `getLine()` deliberately breaks this (the transform visitors change fields, then
/// refresh once); code that does so must call `calcBdry()`.
class VEK0_API CEntLine : public CEnt {
 public:
  static constexpr short kType = 2;  ///< what `getType` answers

  void accept(IEntVisitor& visitor) override;
  using CEnt::setMemento;
  void setMemento(CData& data, const IEntDerivedMemento* memento) override;
  short getType() const override { return kType; }
  void calcBdry() override;
  IEntDerivedMemento* createDerivedMemento() const override;

  const LINE_3D& getLine() const { return m_line; }
  LINE_3D& getLine() { return m_line; }  ///< see the class about the extents
  void getLine(double& x1, double& y1, double& z1, double& x2, double& y2, double& z2) const;

  /// Initially a segment. Copied with the entity and its mementos; setting the points does not
  /// change it.
  LineReach getReach() const { return static_cast<LineReach>(getOwnByte()); }
  void setReach(LineReach reach);

  void setLine(const LINE_3D& line);
  /// Start point, then end point.
  void setLine(double x1, double y1, double z1, double x2, double y2, double z2);

 protected:
  friend class CEntFactory;
  CEntLine(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color, const LINE_3D& line);
  CEntLine(const CEntLine& src, vek0::Handle handle);

  CEnt* clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory& blockFactory,
              CBlockTable& blockTable, vek0::Handle handle) const override;

 private:
  LINE_3D m_line;
};

/// Undo snapshot of a line entity.
class VEK0_API CEntLineMemento final
    : public vek0::detail::ValueMemento<CEntLine, LINE_3D, &CEntLine::getLine> {
 public:
  explicit CEntLineMemento(const CEntLine& ent)
      : ValueMemento(ent.getLine()), m_reach(ent.getReach()) {}

  bool operator==(const CEnt& ent) const override;
  std::size_t size() const override { return sizeof *this; }
  LineReach getReach() const { return m_reach; }

 private:
  LineReach m_reach;
};
