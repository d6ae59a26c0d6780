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

/// Start hook; does nothing.
VEK0_API void initCore();

/// Releases the font table and the color names of the process. To be called after the
/// last drawing is gone: drawings name the fonts. Debug builds assert it.
VEK0_API void shutdownCore();

/// Destroys a drawing with everything in it; null is ignored.
VEK0_API void deleteData(CData* data);

struct CDataDeleter {
  void operator()(CData* data) const { deleteData(data); }
};
/// An owner of a drawing.
using CDataPtr = std::unique_ptr<CData, CDataDeleter>;

/// A drawing with the same content: tables, blocks, entities with their handles, selection, fixed
/// items, variables and current items. Its fonts are the same objects, its use counts those of a
/// recount. What names items in no table of `data` goes on naming those. The caller gives it to
/// `deleteData`; null when out of memory. Linear in the drawing.
VEK0_API CData* cloneData(const CData& data);

// --- Current items: read and written as they are, no checks

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
/// The "STANDARD" style that the drawing began with; null once it was removed.
VEK0_API CStyleStandard* getStyleStandard(CData& data);

// --- Table items

/// Appends the item, which then belongs to the drawing; null is ignored. Whether the
/// name is taken is not checked: the item added first is found.
VEK0_API void addLtype(CData& data, CLtype* ltype);
VEK0_API void addLayer(CData& data, CLayer* layer);
VEK0_API void addStyle(CData& data, CStyle* style);

/// The item of that name, ignoring case; null when there is none. A name of the form "xref|item" is
/// looked up in that external reference when no item of the drawing itself bears it.
VEK0_API CLtype* getLtype(const CData& data, const zim::WString& name);
VEK0_API CLayer* getLayer(const CData& data, const zim::WString& name);
VEK0_API CStyle* getStyle(const CData& data, const zim::WString& name);

/// Takes the item out, which the caller owns from then on; whether it is still used is
/// not checked. What is not there is ignored, though a layer's linetype counts one less:
/// so it is with layer "0", which cannot be taken out.
VEK0_API void removeLtype(CData& data, CLtype* ltype);
VEK0_API void removeLayer(CData& data, CLayer* layer);
VEK0_API void removeStyle(CData& data, CStyle* style);
VEK0_API void removeLtype(CData& data, const zim::WString& name);
VEK0_API void removeLayer(CData& data, const zim::WString& name);
VEK0_API void removeStyle(CData& data, const zim::WString& name);

// --- Variables, colors, names, handles

VEK0_API double getLtypeScale(const CData& data);
VEK0_API void setLtypeScale(CData& data, double scale);

/// The color that is drawn: `blockColor` for 0 (BYBLOCK), the layer's for 256
/// (BYLAYER; 7 without a layer), otherwise `color` itself.
VEK0_API short getColor(short color, const CLayer* layer, short blockColor);

/// `prefix` followed by the smallest n >= 1 that no block's name takes; letter case
/// counts.
VEK0_API zim::WString GetBlockProgressiveName(const zim::WString& prefix, const CBlockTable& table);

/// Splits "xref|item" at its first bar. False, with the outputs untouched, when there is
/// none or nothing on one side of it.
VEK0_API bool scomposeName(const zim::WString& full, zim::WString& xrefName,
                           zim::WString& itemName);

VEK0_API IHandleGestor& getHandleGestor(const CData& data);

/// A copy of the entity, with handle 0 and in no table; null when out of memory.
VEK0_API CEnt* cloneEnt(CData& data, const CEnt& ent);

/// Removes and deletes the private blocks of hatches (named "*PAT" and a number) that no
/// entity of the drawing or of a block inserts; returns how many. Linear in the drawing.
VEK0_API long purgeHatchBlocks(CData& data);

// --- Entities
//
// Each returns a new entity in no table, which the caller owns, or null when out of memory. The
// short form takes the current layer, linetype and color. `handle` is the entity's handle, 0 for
// none. Angles are radians, lengths drawing units.

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

/// The string of `text` is the tag; `value` is what an insert is offered.
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

/// Counts on the drawing's own dependency record.
VEK0_API CEntInsertXRef* createEntInsertXRef(CData& data, CLayer* layer, CLtype* ltype, short color,
                                             CBlockXRef& xref, const PNT_3D& pnt, double sx,
                                             double sy, double sz, double rotation, long columns,
                                             long rows, double columnSpacing, double rowSpacing,
                                             vek0::Handle handle);
/// Counts on the given record.
VEK0_API CEntInsertXRef* createEntInsertXRef(const CData& data, CBlockXRefDepend& depend,
                                             CBlockXRef& xref, const PNT_3D& pnt, double sx,
                                             double sy, double sz, double rotation, long columns,
                                             long rows, double columnSpacing, double rowSpacing,
                                             vek0::Handle handle);

/// A hatch over a boundary (see `CEntHatch`), with the pattern's scale and its angle in
/// radians. Its block, named by `getHatchName`, is in the block table. The pattern must
/// live as long as the drawing: one of the catalogue or of `CData::getHatchTypeTable`.
/// Null, with nothing left behind, when the boundary has fewer than three points or the
/// lines cannot be generated (`createHatch`).
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
