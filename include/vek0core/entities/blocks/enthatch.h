#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/hatch/catalogue.h"
#include "vek0core/hatch/hatchparameters.h"
#include "vek0core/tables/handle.h"
#include "zim0lang/wstring.h"

class CBlockTable;
class CData;
class CEntHatchMemento;

/// A hatched area: a boundary, a pattern with its scale and angle, and a private block with the
/// generated lines, which it shows like an insert at the origin.
///
/// The block is in the drawing's block table; while registered, the hatch counts as a user of it.
/// It is null, or empty, if the lines could not be generated.
///
/// The boundary is in drawing coordinates and may hold several rings, one after the other, each
/// closed by repeating its first point (`hatchRings`); a single ring stays open. Areas inside an
/// odd number of rings are hatched.
class VEK0_API CEntHatch : public CEntInsertBase {
 public:
  static constexpr short kType = 10;  ///< what `getType` answers

  void accept(IEntVisitor& visitor) override;
  using CEnt::setMemento;
  /// Restores scale, angle, pattern, boundary and lines. The lines come from the memento if the
  /// hatch still shows the same block with the same number and kinds of entities; otherwise they
  /// are regenerated, and if that fails, nothing changes. A memento of another kind is ignored.
  void setMemento(CData& data, const IEntDerivedMemento* memento) override;
  std::unique_ptr<vek0::detail::EntParts> replaceParts(CData& data,
                                                       const IEntDerivedMemento& memento) override;
  short getType() const override { return kType; }
  IEntDerivedMemento* createDerivedMemento() const override;

  /// The rotation of the block, always 0: the lines are generated in place.
  double getRotate() const override { return 0; }
  void getInsertParams(double pixelSize, PNT_3D& point, double& sx, double& sy, double& sz,
                       double& rotation) const override;

  /// Pattern scale. The setter, like those below, does not change the lines.
  double getHatchScale() const { return m_parameters.scale; }
  void setHatchScale(double scale) { m_parameters.scale = scale; }
  /// Pattern angle in radians.
  double getHatchRotate() const { return m_parameters.rotate; }
  void setHatchRotate(double rotate) { m_parameters.rotate = rotate; }
  /// The pattern, from the catalogue or from the drawing's table.
  const HATCH_TYPE& getHatchType() const { return *m_parameters.type; }
  /// The stored points of all rings, closing points included.
  long getNoPnts() const { return static_cast<long>(m_boundary.size()); }
  const PNT_3D& getPnt(long i) const { return m_boundary[static_cast<std::size_t>(i)]; }
  void setPnt(long i, const PNT_3D& pnt) { m_boundary[static_cast<std::size_t>(i)] = pnt; }
  const std::vector<PNT_3D>& getBoundary() const { return m_boundary; }

  /// Regenerates the lines for another scale, angle or pattern and replaces the block; has no
  /// effect if none of the three changes. Returns false, with nothing changed, if the lines cannot
  /// be generated (see `createHatch`). The old block is deleted unless something else shows it.
  bool redefine(CData& data, double scale, double rotate, const HATCH_TYPE& type);

  /// Shows that block with those parameters, without generating lines: for a host that keeps the
  /// blocks, to revert a `redefine`. Updating block tables and graphs is up to the host.
  void setShown(CBlock* block, double scale, double rotate, const HATCH_TYPE& type);

 protected:
  friend class CEntFactory;
  friend class CEntHatchMemento;

  /// Copies the boundary through `_hatch_compactVertex`. The block may be null.
  CEntHatch(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color, CBlock* block,
            const HATCH_TYPE& type, double scale, double rotate,
            const std::vector<PNT_3D>& boundary);
  /// Copies everything except the block, which is the given one.
  CEntHatch(const CEntHatch& src, CBlock* block, vek0::Handle handle);

  /// A hatch on a block of that name, made by `createHatch`; without a block when that fails. The
  /// caller owns both, null when out of memory.
  static CEntHatch* Create(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color,
                           const zim::WString& name, const HATCH_TYPE& type, double scale,
                           double rotate, const std::vector<PNT_3D>& boundary, CData& data);

  /// The copy gets its own block with copies of all lines, added to the table.
  CEnt* clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory& blockFactory,
              CBlockTable& blockTable, vek0::Handle handle) const override;

 private:
  class ReplacedBlock;
  using BlockMaker = std::function<CBlock*(const zim::WString& name)>;

  std::unique_ptr<ReplacedBlock> replaceLines(CBlockTable& table, const BlockMaker& make);
  void setParameters(const vek0::detail::HatchParameters& parameters,
                     const std::vector<PNT_3D>& boundary);

  vek0::detail::HatchParameters m_parameters;
  std::vector<PNT_3D> m_boundary;
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

  vek0::detail::HatchParameters m_parameters;
  std::vector<PNT_3D> m_boundary;
  std::uint64_t m_serial;  // of the block; 0 if there was none
  std::vector<Line> m_lines;
};

/// The name for a new hatch's block: "*PAT" and the smallest unused number.
VEK0_API zim::WString getHatchName(const CBlockTable& table);
/// Whether the name has the form generated by `getHatchName`.
VEK0_API bool isHatchName(const zim::WString& name);

/// A new block of that name with the lines (and points, for dots) of the pattern inside the
/// boundary, on layer "0" with color BYBLOCK and linetype Continuous; for a pattern without lines,
/// faces that cover the interior. The pattern is scaled by `scale` and rotated by `rotate` radians
/// about the drawing's origin, where it starts.
///
/// The block is in no table and the caller owns it. Null when out of memory, or if the lines cannot
/// be generated because scale, angle or pattern are invalid or there would be more than the drawing
/// allows (`CData::getHatchLimit`); the message handler is called then.
VEK0_API CBlock* createHatch(const zim::WString& name, const HATCH_TYPE& type, double scale,
                             double rotate, const std::vector<PNT_3D>& boundary, CData& data);

/// Called with the reason why a hatch could not be generated, and its pattern.
using HatchMessageHandler = void (*)(const HATCH_TYPE& type, const zim::WString& message);

/// Sets the process-wide handler and returns the previous one. Null, the default, for none: the
/// caller of `createHatch` sees the failure anyway.
VEK0_API HatchMessageHandler setHatchMessageHandler(HatchMessageHandler handler);
