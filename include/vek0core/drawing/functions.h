#pragma once

#include <memory>
#include <vector>

#include "vek0core/drawing/data.h"
#include "vek0core/export.h"
#include "vek0core/tables/handle.h"
#include "zim0lang/wstring.h"

class ARC_3D;
class CBlock;
class CEnt;
class CEnt3DFace;
class CEntArc;
class CEntAttdef;
class CEntAttrib;
class CEntCircle;
class CEntFixedInsert;
class CEntHatch;
class CEntInsert;
class CEntInsertXRef;
class CEntLine;
class CEntPnt;
class CEntPolyline;
class CEntText;
class CIRCLE_3D;
class CVertex;
class LINE_3D;
class TEXT_3D;

// --- Lifetime

/// Initialization hook; does nothing.
VEK0_API void initCore();

/// Releases the process-wide font table and color names. Call it after destroying the last drawing,
/// since drawings refer to the fonts; debug builds assert this.
VEK0_API void shutdownCore();

/// Destroys a drawing with all its contents; null is ignored.
VEK0_API void deleteData(CData* data);

struct CDataDeleter {
  void operator()(CData* data) const { deleteData(data); }
};
/// Owning pointer to a drawing.
using CDataPtr = std::unique_ptr<CData, CDataDeleter>;

/// Creates a drawing with the same content: tables, blocks, entities with their handles, selection,
/// fixed items, variables and current items. Fonts are shared, and use counts are recomputed.
/// References to items that are in no table of `data` are kept. Destroy it with `deleteData`; null
/// when out of memory. Linear in the drawing.
VEK0_API CData* cloneData(const CData& data);

// --- Current items: plain access without checks

VEK0_API CLtype* getCurLtype(const CData& data);
VEK0_API CLayer* getCurLayer(const CData& data);
VEK0_API CStyle* getCurStyle(const CData& data);
VEK0_API short getCurColor(const CData& data);
VEK0_API void setCurLtype(CData& data, CLtype* ltype);
VEK0_API void setCurLayer(CData& data, CLayer* layer);
VEK0_API void setCurStyle(CData& data, CStyle* style);
VEK0_API void setCurColor(CData& data, short color);

// --- Fixed items

VEK0_API CLtypeByLayer* getLtypeByLayer(CData& data);
VEK0_API CLtypeByBlock* getLtypeByBlock(CData& data);
VEK0_API CLayer0* getLayer0(CData& data);
/// The drawing's initial "STANDARD" style; null once it was removed.
VEK0_API CStyleStandard* getStyleStandard(CData& data);

// --- Table items

/// Appends the item, transferring ownership to the drawing; null is ignored. Duplicate names are
/// not checked: look-up finds the item added first.
VEK0_API void addLtype(CData& data, CLtype* ltype);
VEK0_API void addLayer(CData& data, CLayer* layer);
VEK0_API void addStyle(CData& data, CStyle* style);

/// The item of that name, ignoring case; null if there is none. A name of the form "xref|item" is
/// looked up in that external reference if no item of the drawing itself has it.
VEK0_API CLtype* getLtype(const CData& data, const zim::WString& name);
VEK0_API CLayer* getLayer(const CData& data, const zim::WString& name);
VEK0_API CStyle* getStyle(const CData& data, const zim::WString& name);

/// Removes the item; the caller owns it afterwards. Remaining uses are not checked. An item that is
/// not in the drawing is ignored, except that a layer still decrements the count of its linetype;
/// the same applies to layer "0", which cannot be removed.
VEK0_API void removeLtype(CData& data, CLtype* ltype);
VEK0_API void removeLayer(CData& data, CLayer* layer);
VEK0_API void removeStyle(CData& data, CStyle* style);
VEK0_API void removeLtype(CData& data, const zim::WString& name);
VEK0_API void removeLayer(CData& data, const zim::WString& name);
VEK0_API void removeStyle(CData& data, const zim::WString& name);

// --- Variables, colors, names, handles

VEK0_API double getLtypeScale(const CData& data);
VEK0_API void setLtypeScale(CData& data, double scale);

/// The effective color: `blockColor` for 0 (BYBLOCK), the layer's for 256 (BYLAYER; 7 without a
/// layer), otherwise `color` itself.
VEK0_API short getColor(short color, const CLayer* layer, short blockColor);

/// `prefix` followed by the smallest n >= 1 that no block name uses; case-sensitive.
VEK0_API zim::WString GetBlockProgressiveName(const zim::WString& prefix, const CBlockTable& table);

/// Splits "xref|item" at its first vertical bar. Returns false, leaving the outputs unchanged, if
/// there is none or one side is empty.
VEK0_API bool scomposeName(const zim::WString& full, zim::WString& xrefName,
                           zim::WString& itemName);

VEK0_API IHandleGestor& getHandleGestor(const CData& data);

/// A copy of the entity, with handle 0 and in no table; null when out of memory.
VEK0_API CEnt* cloneEnt(CData& data, const CEnt& ent);

/// Removes and deletes the private blocks of hatches (named "*PAT" and a number) that no entity of
/// the drawing or of a block inserts; returns their number. Linear in the drawing.
VEK0_API long purgeHatchBlocks(CData& data);

// --- Entities
//
// Each returns a new entity in no table, which the caller owns, or null when out of memory. The
// short form uses the current layer, linetype and color. `handle` is the entity's handle, 0 for
// none. Angles are in radians, lengths in drawing units.

VEK0_API CEntPnt* createEntPnt(const CData& data, CLayer* layer, CLtype* ltype, short color,
                               const PNT_3D& pnt, vek0::Handle handle);
VEK0_API CEntPnt* createEntPnt(const CData& data, const PNT_3D& pnt, vek0::Handle handle);

VEK0_API CEntLine* createEntLine(const CData& data, CLayer* layer, CLtype* ltype, short color,
                                 const LINE_3D& line, vek0::Handle handle);
VEK0_API CEntLine* createEntLine(const CData& data, const LINE_3D& line, vek0::Handle handle);

VEK0_API CEntCircle* createEntCircle(const CData& data, CLayer* layer, CLtype* ltype, short color,
                                     const CIRCLE_3D& circle, vek0::Handle handle);
VEK0_API CEntCircle* createEntCircle(const CData& data, const CIRCLE_3D& circle,
                                     vek0::Handle handle);

VEK0_API CEntArc* createEntArc(const CData& data, CLayer* layer, CLtype* ltype, short color,
                               const ARC_3D& arc, vek0::Handle handle);
VEK0_API CEntArc* createEntArc(const CData& data, const ARC_3D& arc, vek0::Handle handle);

/// An empty polyline. Flags and degree as in `CEntPolyline`.
VEK0_API CEntPolyline* createEntPolyline(const CData& data, CLayer* layer, CLtype* ltype,
                                         short color, long flags, short degree,
                                         vek0::Handle handle);
VEK0_API CEntPolyline* createEntPolyline(const CData& data, long flags, short degree,
                                         vek0::Handle handle);
/// A vertex for a polyline, with the widths at the start and the end of its segment.
VEK0_API CVertex* createVertex(const CData& data, const PNT_3D& pnt, double widthStart,
                               double widthEnd, vek0::Handle handle);

VEK0_API CEntText* createEntText(const CData& data, CLayer* layer, CLtype* ltype, short color,
                                 const TEXT_3D& text, vek0::Handle handle);
VEK0_API CEntText* createEntText(const CData& data, const TEXT_3D& text, vek0::Handle handle);

/// The string of `text` is the tag; `value` is the default value for inserts.
VEK0_API CEntAttdef* createEntAttdef(const CData& data, CLayer* layer, CLtype* ltype, short color,
                                     const TEXT_3D& text, const zim::WString& value,
                                     const zim::WString& prompt, long flags, vek0::Handle handle);
VEK0_API CEntAttdef* createEntAttdef(const CData& data, const TEXT_3D& text,
                                     const zim::WString& value, const zim::WString& prompt,
                                     long flags, vek0::Handle handle);
/// An attribute with layer, linetype, color, placement, tag and flags of a definition.
VEK0_API CEntAttrib* createEntAttrib(const CData& data, const zim::WString& value,
                                     const CEntAttdef& def, vek0::Handle handle);

/// Columns run along the insert's x axis, rows along its y axis.
VEK0_API CEntInsert* createEntInsert(const CData& data, CLayer* layer, CLtype* ltype, short color,
                                     CBlock& block, const PNT_3D& pnt, double sx, double sy,
                                     double sz, double rotation, long columns, long rows,
                                     double columnSpacing, double rowSpacing, vek0::Handle handle);
VEK0_API CEntInsert* createEntInsert(const CData& data, CBlock& block, const PNT_3D& pnt, double sx,
                                     double sy, double sz, double rotation, long columns, long rows,
                                     double columnSpacing, double rowSpacing, vek0::Handle handle);

/// `refSize` drawing units of the block cover `pixels` pixels at every zoom.
VEK0_API CEntFixedInsert* createEntFixedInsert(const CData& data, CLayer* layer, CLtype* ltype,
                                               short color, CBlock& block, const PNT_3D& pnt,
                                               double refSize, double pixels, double rotation,
                                               vek0::Handle handle);
VEK0_API CEntFixedInsert* createEntFixedInsert(const CData& data, CBlock& block, const PNT_3D& pnt,
                                               double refSize, double pixels, double rotation,
                                               vek0::Handle handle);

/// Counts as a use of the drawing's own dependency record.
VEK0_API CEntInsertXRef* createEntInsertXRef(CData& data, CLayer* layer, CLtype* ltype, short color,
                                             CBlockXRef& xref, const PNT_3D& pnt, double sx,
                                             double sy, double sz, double rotation, long columns,
                                             long rows, double columnSpacing, double rowSpacing,
                                             vek0::Handle handle);
/// Counts as a use of the given record.
VEK0_API CEntInsertXRef* createEntInsertXRef(const CData& data, CBlockXRefDepend& depend,
                                             CBlockXRef& xref, const PNT_3D& pnt, double sx,
                                             double sy, double sz, double rotation, long columns,
                                             long rows, double columnSpacing, double rowSpacing,
                                             vek0::Handle handle);

/// A hatch of a boundary (see `CEntHatch`), with the pattern's scale and its angle in radians. Its
/// block, named by `getHatchName`, is added to the block table. The pattern must live as long as
/// the drawing: one from the catalogue or from `CData::getHatchTypeTable`. Returns null, leaving
/// nothing behind, if the boundary has fewer than three points or the lines cannot be generated
/// (`createHatch`).
VEK0_API CEntHatch* createEntHatch(CData& data, CLayer* layer, CLtype* ltype, short color,
                                   const HATCH_TYPE& type, double scale, double rotate,
                                   const std::vector<PNT_3D>& boundary, vek0::Handle handle);
VEK0_API CEntHatch* createEntHatch(CData& data, const HATCH_TYPE& type, double scale, double rotate,
                                   const std::vector<PNT_3D>& boundary, vek0::Handle handle);

/// Flags as in `CEnt3DFace`.
VEK0_API CEnt3DFace* createEnt3DFace(const CData& data, CLayer* layer, CLtype* ltype, short color,
                                     const PNT_3D& p0, const PNT_3D& p1, const PNT_3D& p2,
                                     const PNT_3D& p3, long flags, vek0::Handle handle);
VEK0_API CEnt3DFace* createEnt3DFace(const CData& data, const PNT_3D& p0, const PNT_3D& p1,
                                     const PNT_3D& p2, const PNT_3D& p3, long flags,
                                     vek0::Handle handle);
