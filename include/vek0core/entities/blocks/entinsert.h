#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "vek0core/entities/blocks/insertclip.h"
#include "vek0core/entities/ent.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/entities/entmemento.h"
#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/tables/handle.h"

class CBlockXRef;
class CBlockXRefDepend;

namespace vek0::detail {
class AttribsMemento;
}

/// Base of the entities that show a block: inserts and hatches.
///
/// The block is borrowed, may be null, and counts its inserts as layers count their entities. The
/// attributes are owned. While the insert is registered (`addTbls`), so are its attributes,
/// including those added later.
///
/// Extents are computed on demand, so that the block may be filled later; if its content changes
/// after that, `calcBdry()` updates them (tables of entities and blocks call it for their inserts).
/// They cover all cells of the array and the attributes; an empty block contributes nothing, and
/// non-finite extents become empty.
class VEK0_API CEntInsertBase : public CEnt {
 public:
  ~CEntInsertBase() override;
  /// Also registers the attributes and counts the insert as a user of its block.
  void addTbls(IHandleGestor& gestor) const override;
  void removeTbls(IHandleGestor& gestor) const override;
  CEntInsertBase* getEntInsert() override { return this; }
  const CEntInsertBase* getEntInsert() const override { return this; }
  void calcBdry() override;

  /// Appends an attribute, which the insert then owns. Null is ignored.
  virtual void add(CEntAttrib* attrib);
  virtual unsigned GetNoAttribs() const;
  /// Attribute `i` in order of addition; null if out of range.
  virtual CEntAttrib* GetAttrib(unsigned i) const;

  /// Rotation in radians, counterclockwise.
  virtual double getRotate() const = 0;
  /// Insertion point, scales and rotation on a display where one pixel measures
  /// `pixelSize` drawing units; only inserts of fixed pixel size depend on it.
  virtual void getInsertParams(double pixelSize, PNT_3D& point, double& sx, double& sy, double& sz,
                               double& rotation) const = 0;
  /// Array of copies: columns run along the insert's x axis, rows along y; spacings are in drawing
  /// units and not scaled. Default: a single cell with zero spacings.
  virtual void getArray(long& columns, long& rows, double& columnSpacing, double& rowSpacing) const;
  /// Whether the x and y scales are exactly equal. Default: true.
  virtual bool IsIsotropicXY() const { return true; }

  CBlock* getBlock() const { return m_block; }
  /// Replaces the block. The use count moves from the current block to the new one, whether or not
  /// the insert is registered; call `CBlockTable::updateBlock` to update the owning block's edges
  /// in the block graph.
  void setBlock(CBlock* block);
  /// Takes over the kind of record of an insert that this one is a copy of, if that only stands for
  /// a record (`CBlock::isOfRecord`).
  void copyRecord(const CEntInsertBase& src);

 protected:
  friend class vek0::detail::AttribsMemento;

  CEntInsertBase(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color, CBlock* block);
  /// A copy whose attributes are created by the factory.
  CEntInsertBase(IHandleGestor& gestor, CEntFactory& factory, const CEntInsertBase& src,
                 vek0::Handle handle);
  /// A copy with another block and without attributes.
  CEntInsertBase(const CEntInsertBase& src, CBlock* block, vek0::Handle handle);

  /// Adds the insert to counts kept elsewhere for a block that it shows, or removes it. Called only
  /// while the insert is registered. Adding may throw `std::bad_alloc`.
  virtual void countReference(CBlock* block, bool on) const;

  /// Replaces the block; counts are updated only while the insert is registered.
  void replaceBlock(CBlock* block);

  /// Computes the extents for that pixel size.
  void DoCalcBdry(double pixelSize, RECT_3D& box) const;

 private:
  CBlock* m_block;
  std::vector<std::unique_ptr<CEntAttrib>> m_attribs;
  mutable IHandleGestor* m_gestor = nullptr;  // set while registered
};

namespace vek0::detail {
/// Ends the name of the block for a kind if the file has a block of that name; kinds do not have
/// it.
inline constexpr std::u16string_view kNextName = u"*";
}  // namespace vek0::detail

/// The kind of the record that an `EntRecord::Opaque` entity stands for, such as "3DSOLID"; empty
/// for any other entity.
VEK0_API zim::WString opaqueKindOf(const CEnt& ent);

/// Insert of a block at a point, with scales, a rotation and an array of copies.
///
/// Angles are radians; the rotation is stored unreduced. Counts below 1 are kept and act as 1.
class VEK0_API CEntInsert : public CEntInsertBase {
 public:
  static constexpr short kType = 8;  ///< what `getType` answers

  void accept(IEntVisitor& visitor) override;
  using CEnt::setMemento;
  /// Restores placement, block and attributes. If the attribute count matches the memento, the
  /// current attributes are kept and reset by position; otherwise those in the memento are reused,
  /// missing ones are created, and others are deleted.
  void setMemento(CData& data, const IEntDerivedMemento* memento) override;
  std::unique_ptr<vek0::detail::EntParts> replaceParts(CData& data,
                                                       const IEntDerivedMemento& memento) override;
  short getType() const override { return kType; }
  IEntDerivedMemento* createDerivedMemento() const override;

  double getRotate() const override { return m_rotation; }
  /// The stored values, independent of the pixel size.
  void getInsertParams(double pixelSize, PNT_3D& point, double& sx, double& sy, double& sz,
                       double& rotation) const override;
  void getArray(long& columns, long& rows, double& columnSpacing,
                double& rowSpacing) const override;
  bool IsIsotropicXY() const override { return m_sx == m_sy; }

  const PNT_3D& getPnt() const { return m_pnt; }
  void setPnt(const PNT_3D& pnt);
  void getScale(double& sx, double& sy, double& sz) const;
  void setScale(double sx, double sy, double sz);
  void setRotate(double rotation);
  void setArray(long columns, long rows, double columnSpacing, double rowSpacing);
  void setInsert(const PNT_3D& pnt, double sx, double sy, double sz, double rotation);

  /// Whether only a part of the block is shown. Extents are those of the whole block.
  bool isClipped() const { return m_clip && !m_clip->boundary.empty(); }
  /// The clip, which applies to all cells of an array together and is placed like the first; null,
  /// or an empty boundary, for no clipping. Attributes are not clipped. Copies of the insert share
  /// it.
  const std::shared_ptr<const INSERT_CLIP>& getClip() const { return m_clip; }
  void setClip(std::shared_ptr<const INSERT_CLIP> clip) { m_clip = std::move(clip); }

 protected:
  friend class CEntFactory;
  friend class CEntInsertMemento;
  CEntInsert(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color, CBlock* block,
             const PNT_3D& pnt, double sx, double sy, double sz, double rotation, long columns,
             long rows, double columnSpacing, double rowSpacing);
  CEntInsert(IHandleGestor& gestor, CEntFactory& factory, const CEntInsert& src,
             vek0::Handle handle);

  CEnt* clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory& blockFactory,
              CBlockTable& blockTable, vek0::Handle handle) const override;

 private:
  PNT_3D m_pnt;
  double m_sx, m_sy, m_sz;
  double m_rotation;
  double m_columnSpacing, m_rowSpacing;
  long m_columns, m_rows;
  std::shared_ptr<const INSERT_CLIP> m_clip;
};

/// Insert whose block covers a fixed number of pixels on any display.
///
/// Its scale is pixels / reference size * size of a pixel, on all axes; a reference size of 0
/// yields the scale 0. The area it covers depends on the display, so its cached extents are only
/// the insertion point; `GetBdry` returns the full ones.
class VEK0_API CEntFixedInsert : public CEntInsertBase {
 public:
  static constexpr short kType = 12;  ///< what `getType` answers

  void accept(IEntVisitor& visitor) override;
  using CEnt::setMemento;
  /// As `CEntInsert::setMemento`.
  void setMemento(CData& data, const IEntDerivedMemento* memento) override;
  std::unique_ptr<vek0::detail::EntParts> replaceParts(CData& data,
                                                       const IEntDerivedMemento& memento) override;
  void GetBdry(double pixelSize, RECT_3D& box) const override;
  short getType() const override { return kType; }
  void calcBdry() override;
  IEntDerivedMemento* createDerivedMemento() const override;

  double getRotate() const override { return m_rotation; }
  void getInsertParams(double pixelSize, PNT_3D& point, double& sx, double& sy, double& sz,
                       double& rotation) const override;

  /// Size in drawing units that `GetNoPixel` pixels represent.
  double GetDefArea() const { return m_refSize; }
  double GetNoPixel() const { return m_pixels; }
  void setNoPixel(double pixels) { m_pixels = pixels; }

  const PNT_3D& getPnt() const { return m_pnt; }
  void setPnt(const PNT_3D& pnt);
  void setRotate(double rotation) { m_rotation = rotation; }
  void setInsert(const PNT_3D& pnt, double pixels, double rotation);

 protected:
  friend class CEntFactory;
  friend class CEntFixedInsertMemento;
  CEntFixedInsert(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color, CBlock* block,
                  const PNT_3D& pnt, double refSize, double pixels, double rotation);
  CEntFixedInsert(IHandleGestor& gestor, CEntFactory& factory, const CEntFixedInsert& src,
                  vek0::Handle handle);

  CEnt* clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory& blockFactory,
              CBlockTable& blockTable, vek0::Handle handle) const override;

 private:
  PNT_3D m_pnt;
  double m_refSize, m_pixels;
  double m_rotation;
};

/// Insert of an external reference. While registered, it is counted in the drawing's record of
/// external references in use.
class VEK0_API CEntInsertXRef : public CEntInsert {
 public:
  /// Visited as an ordinary insert if its block is an ordinary one.
  void accept(IEntVisitor& visitor) override;
  void addTbls(IHandleGestor& gestor) const override;
  void removeTbls(IHandleGestor& gestor) const override;

  /// The inserted reference; null if the block was replaced by an ordinary one.
  CBlockXRef* getXRef() const;

 protected:
  friend class CEntFactory;
  /// `depend` must outlive the insert.
  CEntInsertXRef(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color,
                 CBlockXRefDepend& depend, CBlockXRef* xref, const PNT_3D& pnt, double sx,
                 double sy, double sz, double rotation, long columns, long rows,
                 double columnSpacing, double rowSpacing);
  CEntInsertXRef(IHandleGestor& gestor, CEntFactory& factory, const CEntInsertXRef& src,
                 vek0::Handle handle);

  CEnt* clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory& blockFactory,
              CBlockTable& blockTable, vek0::Handle handle) const override;
  void countReference(CBlock* block, bool on) const override;

 private:
  CBlockXRefDepend& m_depend;
};

namespace vek0::detail {

/// Snapshot of an insert's block and attributes: for every attribute the object, its
/// layer, linetype, color and handle, and its memento. The objects are only compared by
/// address, so they may be deleted meanwhile.
class AttribsMemento {
 public:
  explicit AttribsMemento(const CEntInsertBase& insert);

  bool matches(const CEntInsertBase& insert) const;
  /// See `CEnt::replaceParts`.
  std::unique_ptr<EntParts> replaceAttribs(CData& data, CEntInsertBase& insert) const;
  /// Sets block and attributes; the number of attributes must match.
  void restore(CData& data, CEntInsertBase& insert) const;
  /// Heap memory in bytes.
  std::size_t heapSize() const { return m_attribs.size() * sizeof(Entry); }

 private:
  class Replaced;
  struct Entry {
    CEntAttrib* attrib;
    CLayer* layer;
    CLtype* ltype;
    short color;
    EntTraitsRef traits;
    vek0::Handle handle;
    CEntAttribMemento state;
  };

  static void reset(CData& data, CEntAttrib& attrib, const Entry& entry);
  static std::unique_ptr<CEntAttrib> remake(CData& data, const Entry& entry);

  CBlock* m_block;
  std::vector<Entry> m_attribs;
};

}  // namespace vek0::detail

/// Undo snapshot of an insert: placement, array, clip, block and attributes.
class VEK0_API CEntInsertMemento final : public IEntDerivedMemento {
 public:
  explicit CEntInsertMemento(const CEntInsert& ent);

  bool operator==(const CEnt& ent) const override;
  std::size_t size() const override { return sizeof *this + m_attribs.heapSize(); }
  short getType() const override { return CEntInsert::kType; }

 private:
  friend class CEntInsert;

  vek0::detail::AttribsMemento m_attribs;
  PNT_3D m_pnt;
  double m_sx, m_sy, m_sz;
  double m_rotation;
  double m_columnSpacing, m_rowSpacing;
  long m_columns, m_rows;
  std::shared_ptr<const INSERT_CLIP> m_clip;
};

/// Undo snapshot of an insert of fixed pixel size, likewise.
class VEK0_API CEntFixedInsertMemento final : public IEntDerivedMemento {
 public:
  explicit CEntFixedInsertMemento(const CEntFixedInsert& ent);

  bool operator==(const CEnt& ent) const override;
  std::size_t size() const override { return sizeof *this + m_attribs.heapSize(); }
  short getType() const override { return CEntFixedInsert::kType; }

 private:
  friend class CEntFixedInsert;

  vek0::detail::AttribsMemento m_attribs;
  PNT_3D m_pnt;
  double m_refSize, m_pixels;
  double m_rotation;
};
