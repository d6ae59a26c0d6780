#pragma once

#include <vector>

#include "vek0core/export.h"
#include "vek0core/tables/handle.h"
#include "zim0lang/wstring.h"

class ARC_3D;
class CBlock;
class CBlockFactory;
class CBlockTable;
class CBlockXRef;
class CBlockXRefDepend;
class CData;
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
class CLayer;
class CLtype;
class CVertex;
class IHandleGestor;
class LINE_3D;
class PNT_3D;
class TEXT_3D;
enum class FaceFill : unsigned char;
struct HATCH_TYPE;

/// Creates every entity and vertex of a drawing; a host with its own entity classes derives a
/// factory and overrides the relevant creators.
///
/// Every creator returns a new object in no table, which the caller owns, or null when out of
/// memory. Layer and linetype may be null. The trailing `handle` of the geometric creators becomes
/// the object's handle; copies get handle 0, since handles are unique.
class VEK0_API CEntFactory {
 public:
  CEntFactory() = default;
  CEntFactory(const CEntFactory&) = default;
  CEntFactory& operator=(const CEntFactory&) = default;
  virtual ~CEntFactory();

  virtual CEntPnt* createEntPnt(IHandleGestor& gestor, CLayer* layer, CLtype* ltype, short color,
                                const PNT_3D& pnt, vek0::Handle handle);
  virtual CEntPnt* createEntPnt(IHandleGestor& gestor, const CEntPnt& src);

  virtual CEntLine* createEntLine(IHandleGestor& gestor, CLayer* layer, CLtype* ltype, short color,
                                  const LINE_3D& line, vek0::Handle handle);
  virtual CEntLine* createEntLine(IHandleGestor& gestor, const CEntLine& src);

  virtual CEntCircle* createEntCircle(IHandleGestor& gestor, CLayer* layer, CLtype* ltype,
                                      short color, const CIRCLE_3D& circle, vek0::Handle handle);
  virtual CEntCircle* createEntCircle(IHandleGestor& gestor, const CEntCircle& src);

  virtual CEntArc* createEntArc(IHandleGestor& gestor, CLayer* layer, CLtype* ltype, short color,
                                const ARC_3D& arc, vek0::Handle handle);
  virtual CEntArc* createEntArc(IHandleGestor& gestor, const CEntArc& src);

  /// An empty polyline; `flags` and `degree` as in `CEntPolyline`.
  virtual CEntPolyline* createEntPolyline(IHandleGestor& gestor, CLayer* layer, CLtype* ltype,
                                          short color, short flags, short degree,
                                          vek0::Handle handle);
  virtual CEntPolyline* createEntPolyline(IHandleGestor& gestor, const CEntPolyline& src);
  /// A polyline of two vertices, with the line's layer, linetype, color and user info.
  virtual CEntPolyline* createEntPolyline(IHandleGestor& gestor, const CEntLine& src);

  virtual CVertex* createVertex(IHandleGestor& gestor, const PNT_3D& pnt, double widthStart,
                                double widthEnd, vek0::Handle handle);
  virtual CVertex* createVertex(IHandleGestor& gestor, const CVertex& src);

  virtual CEntText* createEntText(IHandleGestor& gestor, CLayer* layer, CLtype* ltype, short color,
                                  const TEXT_3D& text, vek0::Handle handle);
  virtual CEntText* createEntText(IHandleGestor& gestor, const CEntText& src);

  /// The string of `text` is the tag; `value` is the default value for inserts.
  virtual CEntAttdef* createEntAttdef(IHandleGestor& gestor, CLayer* layer, CLtype* ltype,
                                      short color, const TEXT_3D& text, const zim::WString& value,
                                      const zim::WString& prompt, long flags, vek0::Handle handle);
  virtual CEntAttdef* createEntAttdef(IHandleGestor& gestor, const CEntAttdef& src);

  /// The string of `text` is the value.
  virtual CEntAttrib* createEntAttrib(IHandleGestor& gestor, CLayer* layer, CLtype* ltype,
                                      short color, const TEXT_3D& text, const zim::WString& tag,
                                      long flags, vek0::Handle handle);
  /// An attribute with the placement, tag and flags of a definition.
  virtual CEntAttrib* createEntAttrib(IHandleGestor& gestor, const zim::WString& value,
                                      const CEntAttdef& def, vek0::Handle handle);
  virtual CEntAttrib* createEntAttrib(IHandleGestor& gestor, const CEntAttrib& src);

  /// `rotation` in radians; columns run along the insert's x axis, rows along y.
  virtual CEntInsert* createEntInsert(IHandleGestor& gestor, CLayer* layer, CLtype* ltype,
                                      short color, CBlock* block, const PNT_3D& pnt, double scaleX,
                                      double scaleY, double scaleZ, double rotation, long columns,
                                      long rows, double columnSpacing, double rowSpacing,
                                      vek0::Handle handle);
  virtual CEntInsert* createEntInsert(IHandleGestor& gestor, const CEntInsert& src);

  /// `refSize` drawing units of the block cover `pixels` pixels on any display.
  virtual CEntFixedInsert* createEntFixedInsert(IHandleGestor& gestor, CLayer* layer, CLtype* ltype,
                                                short color, CBlock* block, const PNT_3D& pnt,
                                                double refSize, double pixels, double rotation,
                                                vek0::Handle handle);
  virtual CEntFixedInsert* createEntFixedInsert(IHandleGestor& gestor, const CEntFixedInsert& src);

  /// An insert of an external reference; `depend` records the references in use.
  virtual CEntInsertXRef* createEntInsertXRef(IHandleGestor& gestor, CLayer* layer, CLtype* ltype,
                                              short color, CBlockXRefDepend& depend,
                                              CBlockXRef* xref, const PNT_3D& pnt, double scaleX,
                                              double scaleY, double scaleZ, double rotation,
                                              long columns, long rows, double columnSpacing,
                                              double rowSpacing, vek0::Handle handle);
  virtual CEntInsertXRef* createEntInsertXRef(IHandleGestor& gestor, const CEntInsertXRef& src);

  /// A hatch that shows `block`, which may be null; `scale` and `rotate` (radians) are
  /// those of the pattern.
  virtual CEntHatch* createEntHatch(IHandleGestor& gestor, CLayer* layer, CLtype* ltype,
                                    short color, CBlock* block, const HATCH_TYPE& type,
                                    double scale, double rotate,
                                    const std::vector<PNT_3D>& boundary, vek0::Handle handle);
  /// A hatch on a new block of that name with the generated lines; the caller owns both. Without a
  /// block if the lines cannot be generated.
  virtual CEntHatch* createEntHatch(IHandleGestor& gestor, CLayer* layer, CLtype* ltype,
                                    short color, const zim::WString& name, const HATCH_TYPE& type,
                                    double scale, double rotate,
                                    const std::vector<PNT_3D>& boundary, CData& data,
                                    vek0::Handle handle);

  /// `flags` as in `CEnt3DFace`.
  virtual CEnt3DFace* createEnt3DFace(IHandleGestor& gestor, CLayer* layer, CLtype* ltype,
                                      short color, const PNT_3D& p0, const PNT_3D& p1,
                                      const PNT_3D& p2, const PNT_3D& p3, long flags,
                                      vek0::Handle handle);
  virtual CEnt3DFace* createEnt3DFace(IHandleGestor& gestor, const CEnt3DFace& src);
  /// As `createEnt3DFace`, with that fill. The corners are in order around the face.
  CEnt3DFace* createEntSolid(IHandleGestor& gestor, CLayer* layer, CLtype* ltype, short color,
                             const PNT_3D& p0, const PNT_3D& p1, const PNT_3D& p2, const PNT_3D& p3,
                             long flags, FaceFill fill, vek0::Handle handle);

  /// A copy of an entity of any kind, with its parts; handle 0.
  virtual CEnt* clone(IHandleGestor& gestor, CBlockFactory& blockFactory, CBlockTable& blockTable,
                      const CEnt& src);

 private:
  template <class Kind, class... Args>
  static Kind* make(Args&&... args);
};
