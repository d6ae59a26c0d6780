#pragma once

#include <array>

#include "vek0core/entities/ent.h"
#include "vek0core/entities/entmemento.h"
#include "vek0core/export.h"
#include "vek0core/geometry/line.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/tables/handle.h"

/// Fill of a face: the format has two kinds of filled quadrilaterals, which differ only in name.
enum class FaceFill : unsigned char { None, Solid, Trace };

/// 3D face entity: four corners, a word of flags, and whether it is filled.
///
/// A filled face shows its area, whatever its edge flags. Its corners are in order around it, like
/// those of other faces; files list the last two in reverse order.
///
/// Bits 0 to 3 of the flags make an edge invisible: edge i runs from corner i to corner i + 1, edge
/// 3 back to corner 0. Bit 7 means that the face is a triangle, that is, corner 3 equals corner 2
/// exactly; the setters of those corners maintain it. Other bits are stored as passed to the
/// constructor and have no meaning here.
///
/// A corner index outside 0 to 3 is a caller error: it triggers an assertion, and the nearest
/// corner is used.
class VEK0_API CEnt3DFace : public CEnt {
 public:
  static constexpr short kType = 11;    ///< what `getType` answers
  static constexpr long kNoEdges = 15;  ///< flags that hide every edge

  void accept(IEntVisitor& visitor) override;
  using CEnt::setMemento;
  void setMemento(CData& data, const IEntDerivedMemento* memento) override;
  short getType() const override { return kType; }
  void calcBdry() override;
  IEntDerivedMemento* createDerivedMemento() const override;

  const PNT_3D& getVertex(long i) const;
  /// Writing through it updates neither the extents nor the triangle bit.
  PNT_3D& getVertex(long i);
  /// The two ends of edge `i`.
  void getPoints(long i, PNT_3D& a, PNT_3D& b) const;
  void getLine(long i, LINE_3D& edge) const;  ///< likewise

  void setVertex(long i, const PNT_3D& pnt);
  void setVertexes(const PNT_3D& p0, const PNT_3D& p1, const PNT_3D& p2, const PNT_3D& p3);
  void setVertexes(const PNT_3D* pnts);  ///< an array of four

  /// Only the bits of the invisible edges, 0 to 15.
  long getFlags() const { return m_flags & kEdgeBits; }
  /// Replaces the edge bits, keeps the triangle bit, and clears all others.
  void setFlags(long flags);
  /// Whether edge `i` is drawn. True for an invalid index.
  bool isEdgeVisib(long i) const;
  /// An invalid index has no effect.
  void setEdgeVisib(long i, bool visible);

  bool isTriangular() const { return (m_flags & kTriangleBit) != 0; }
  /// Makes the face a triangle by moving corner 3 onto corner 2. The extents are not updated, so
  /// they are too large if only corner 3 extended beyond the others.
  void setTriangular();

  FaceFill getFill() const { return m_fill; }
  bool isFilled() const { return m_fill != FaceFill::None; }
  /// Does not change corners or flags.
  void setFill(FaceFill fill) { m_fill = fill; }

 protected:
  friend class CEntFactory;
  friend class CEnt3DFaceMemento;
  CEnt3DFace(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color, const PNT_3D& p0,
             const PNT_3D& p1, const PNT_3D& p2, const PNT_3D& p3, long flags);
  CEnt3DFace(const CEnt3DFace& src, vek0::Handle handle);

  CEnt* clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory& blockFactory,
              CBlockTable& blockTable, vek0::Handle handle) const override;

 private:
  static constexpr long kEdgeBits = 15;
  static constexpr long kTriangleBit = 128;

  void setTriangFlag();

  std::array<PNT_3D, 4> m_vertexes;
  long m_flags;
  FaceFill m_fill = FaceFill::None;
};

/// Undo snapshot of a 3D face: its corners, all flag bits and its fill.
class VEK0_API CEnt3DFaceMemento final : public IEntDerivedMemento {
 public:
  explicit CEnt3DFaceMemento(const CEnt3DFace& face);

  bool operator==(const CEnt& ent) const override;
  std::size_t size() const override { return sizeof *this; }
  short getType() const override { return CEnt3DFace::kType; }

 private:
  friend class CEnt3DFace;
  std::array<PNT_3D, 4> m_vertexes;
  long m_flags;
  FaceFill m_fill;
};
