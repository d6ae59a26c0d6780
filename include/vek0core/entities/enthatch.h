#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "vek0core/entities/entinsert.h"
#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/hatch/catalogue.h"
#include "vek0core/tables/handle.h"
#include "zim0lang/wstring.h"

class CBlockTable;
class CData;
class CEntHatchMemento;

/// A hatched area: a boundary, a pattern with its scale and angle, and a private block
/// with the lines that this gives, which it shows as an insert at the origin would.
///
/// The block is in the drawing's block table; the hatch counts on it while it is
/// registered. It is null, or empty, when the lines could not be generated.
///
/// The boundary is in drawing coordinates and may hold several rings, one after the
/// other, each closed by repeating its first point (`hatchRings`); a single ring stays
/// open. What is inside an odd number of rings is hatched.
class VEK0_API CEntHatch : public CEntInsertBase {
 public:
  static constexpr short kType = 10;  ///< what `getType` answers

  void accept(IEntVisitor& visitor) override;
  using CEnt::setMemento;
  /// Restores scale, angle, pattern and boundary, and the lines: from the memento while
  /// the hatch still shows the block that it showed then with as many entities of the
  /// same kinds, otherwise by generating them; nothing changes when they cannot be. A
  /// memento of another kind is ignored.
  void setMemento(CData& data, const IEntDerivedMemento* memento) override;
  std::unique_ptr<vek0::detail::EntParts> replaceParts(CData& data,
                                                       const IEntDerivedMemento& memento) override;
  short getType() const override { return kType; }
  IEntDerivedMemento* createDerivedMemento() const override;

  /// The rotation of the block, which is 0: the lines are generated where they belong.
  double getRotate() const override { return 0; }
  void getInsertParams(double pixelSize, PNT_3D& point, double& sx, double& sy, double& sz,
                       double& rotation) const override;

  /// Pattern scale. The setter, like those below, leaves the lines as they are.
  double getHatchScale() const { return m_scale; }
  void setHatchScale(double scale) { m_scale = scale; }
  /// Pattern angle in radians.
  double getHatchRotate() const { return m_rotate; }
  void setHatchRotate(double rotate) { m_rotate = rotate; }
  /// The pattern, a row of the catalogue or one of the drawing's own.
  const HATCH_TYPE& getHatchType() const { return *m_type; }
  /// The stored points of all rings, closing points included.
  long getNoPnts() const { return static_cast<long>(m_boundary.size()); }
  const PNT_3D& getPnt(long i) const { return m_boundary[static_cast<std::size_t>(i)]; }
  void setPnt(long i, const PNT_3D& pnt) { m_boundary[static_cast<std::size_t>(i)] = pnt; }
  const std::vector<PNT_3D>& getBoundary() const { return m_boundary; }

  /// Generates the lines anew for another scale, angle or pattern and replaces the
  /// block. Nothing happens when all three are what they are. False, and nothing is
  /// changed, when the lines cannot be generated (see `createHatch`). The old block is
  /// deleted unless something else shows it.
  bool redefine(CData& data, double scale, double rotate, const HATCH_TYPE& type);

  /// Shows that block, with those parameters, and generates nothing: for a host that keeps
  /// the blocks, to take a `redefine` back. Tables of blocks and graphs are the host's.
  void setShown(CBlock* block, double scale, double rotate, const HATCH_TYPE& type);

 protected:
  friend class CEntFactory;
  friend class CEntHatchMemento;

  /// Copies the boundary through `_hatch_compactVertex`. The block may be null.
  CEntHatch(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color, CBlock* block,
            const HATCH_TYPE& type, double scale, double rotate,
            const std::vector<PNT_3D>& boundary);
  /// Everything but the block, which is the given one.
  CEntHatch(const CEntHatch& src, CBlock* block, vek0::Handle handle);

  /// A hatch on a block of that name, made by `createHatch`; without a block when that fails. The
  /// caller owns both, null when out of memory.
  static CEntHatch* Create(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color,
                           const zim::WString& name, const HATCH_TYPE& type, double scale,
                           double rotate, const std::vector<PNT_3D>& boundary, CData& data);

  /// The copy gets a block of its own with copies of all lines, added to the table.
  CEnt* clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory& blockFactory,
              CBlockTable& blockTable, vek0::Handle handle) const override;

 private:
  class ReplacedBlock;
  using BlockMaker = std::function<CBlock*(const zim::WString& name)>;

  std::unique_ptr<ReplacedBlock> replaceLines(CBlockTable& table, const BlockMaker& make);
  void setParameters(double scale, double rotate, const HATCH_TYPE& type,
                     const std::vector<PNT_3D>& boundary);

  double m_scale;
  double m_rotate;
  std::vector<PNT_3D> m_boundary;
  const HATCH_TYPE* m_type;
};

/// Undo snapshot of a hatch: parameters, boundary, and the state of every entity of its
/// block. It borrows the pattern.
class VEK0_API CEntHatchMemento final : public IEntDerivedMemento {
 public:
  explicit CEntHatchMemento(const CEntHatch& ent);
  ~CEntHatchMemento() override;

  bool operator==(const CEnt& ent) const override;
  std::size_t size() const override;
  short getType() const override { return CEntHatch::kType; }

 private:
  friend class CEntHatch;

  struct Line {
    short type;
    std::unique_ptr<IEntDerivedMemento> state;
  };

  bool showsSameBlock(const CEntHatch& hatch) const;

  double m_scale, m_rotate;
  const HATCH_TYPE* m_type;
  std::vector<PNT_3D> m_boundary;
  std::uint64_t m_serial;  // of the block; 0: there was none
  std::vector<Line> m_lines;
};

/// The name of a new hatch's block: "*PAT" and the smallest number that is free.
VEK0_API zim::WString getHatchName(const CBlockTable& table);
/// Whether it is a name that `getHatchName` gives.
VEK0_API bool isHatchName(const zim::WString& name);

/// A new block of that name with the lines (and points, for dots) of the pattern inside the
/// boundary, on layer "0" with color BYBLOCK and linetype Continuous; for a pattern without lines,
/// faces that cover the inside. Lengths of the pattern are multiplied by `scale` and all of it is
/// turned by `rotate` radians about the drawing's origin, where the pattern starts.
///
/// The block is in no table and the caller owns it. Null when out of memory or the lines cannot be
/// generated: scale, angle or pattern make no sense, or there would be more than the drawing allows
/// (`CData::getHatchLimit`); the message handler is told.
VEK0_API CBlock* createHatch(const zim::WString& name, const HATCH_TYPE& type, double scale,
                             double rotate, const std::vector<PNT_3D>& boundary, CData& data);

/// Told why a hatch could not be generated, with the pattern in question.
using HatchMessageHandler = void (*)(const HATCH_TYPE& type, const zim::WString& message);

/// Sets the handler and returns the one before. Null, at first, for none: the caller of
/// `createHatch` sees the failure anyway. One for the process.
VEK0_API HatchMessageHandler setHatchMessageHandler(HatchMessageHandler handler);
