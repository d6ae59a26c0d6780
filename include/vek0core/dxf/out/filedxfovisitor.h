#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "vek0core/entities/entvisitor.h"
#include "vek0core/export.h"
#include "vek0core/files/reportcode.h"
#include "vek0core/tables/enttraits.h"
#include "vek0core/tables/handle.h"

class CData;
class CEnt;
class CLayout;
class CFileDXFOWriter;
class CFileReport;
class CNameAcadConverter;
class LINE_3D;
class PNT_3D;

namespace vek0::detail {
class SaveFilter;
class SaveHandles;
class SavedNames;
struct SavedText;
struct SavedVertex;
}  // namespace vek0::detail

/// Writes entities as DXF records, one `visit` per entity.
///
/// Every record begins with its kind, handle and layer, then the linetype and the color unless they
/// are BYLAYER. Angles are written in degrees. Entities with a NaN or infinite number, and inserts
/// of a block that is not in the drawing, are skipped and reported. `SetACADNameConverter` must be
/// called first.
class VEK0_API CFileDXFOVisitor final : public IEntFooVisitor {
 public:
  /// Writes through `writer`. Both the writer and the drawing are borrowed; the drawing's blocks
  /// are examined once, in the constructor. With `flatten` every point is written with Z = 0.
  CFileDXFOVisitor(const CData& data, CFileDXFOWriter& writer, bool flatten);
  CFileDXFOVisitor(const CFileDXFOVisitor&) = delete;
  CFileDXFOVisitor& operator=(const CFileDXFOVisitor&) = delete;
  ~CFileDXFOVisitor();

  /// Sets the source (borrowed) of the names of layers, linetypes, styles and blocks. Names are
  /// encoded on first use and cached.
  void SetACADNameConverter(CNameAcadConverter* converter);
  /// Whether to write bulges instead of chords, filled faces as SOLID and TRACE instead of 3DFACE,
  /// and exact angles; off by default.
  void setExchange(bool exchange) { m_exchange = exchange; }
  /// Sets the report that receives losses; null, the default, for none. Borrowed.
  void setReport(CFileReport* report) { m_report = report; }
  /// Sets the source of handles in the file (borrowed). If null, the default, entities are written
  /// with their own handles and sequence ends with 0.
  void setHandles(vek0::detail::SaveHandles* handles) { m_handles = handles; }

  /// Whether the next entities are on the current sheet, and marked so; off by default.
  void setOnSheet(bool isOnSheet) { m_isOnSheet = isOnSheet; }
  /// Writes the viewports of the layout whose sheet is written.
  void viewports_visit(const CLayout& layout);

  using IEntFooVisitor::visit;  // vertices are written with their polyline
  void visit(CEnt3DFace& ent) override;
  void visit(CEntHatch& ent) override;
  /// Attributes are written with their insert; a lone one is a programming error.
  void visit(CEntAttrib& ent) override;
  void visit(CEntInsertXRef& ent) override;
  void visit(CEntFixedInsert& ent) override;
  void visit(CEntInsert& ent) override;
  void visit(CEntAttdef& ent) override;
  void visit(CEntText& ent) override;
  void visit(CEntPolyline& ent) override;
  void visit(CEntArc& ent) override;
  void visit(CEntCircle& ent) override;
  void visit(CEntLine& ent) override;
  void visit(CEntPnt& ent) override;

 private:
  bool isReady() const;
  vek0::Handle begin(const char* kind, const CEnt& ent);
  vek0::Handle def_visit(const CEnt& ent);
  void writeTraits(const ENT_TRAITS& traits);
  short colorOf(const CEnt& ent);
  bool solid_visit(const CEnt3DFace& ent, const char* kind);
  void txt_visit(const vek0::detail::SavedText& text, long stringCode, long verticalCode);
  vek0::Handle insert_visit(const CEntInsertBase& ent);
  void attribs_visit(const CEntInsertBase& ent);
  void attrib_visit(const CEntInsertBase& ent, const CEntAttrib& attrib);
  void vertex_visit(const CEnt& owner, const vek0::detail::SavedVertex& vertex);
  void seq_visit(const CEnt& owner);
  LINE_3D cut(const CEntLine& ent);
  void writeSpace();
  void writePoint(long index, const PNT_3D& pnt);
  void writeAngle(long code, double angleRad);
  vek0::Handle writeHandle(vek0::Handle handle);
  double degrees(double angleRad) const;
  template <class Ent>
  bool refuses(const Ent& ent, const char* kind);
  void report(ReportCode code, const char* kind);

  const CData& m_data;
  CFileDXFOWriter& m_writer;
  std::unique_ptr<vek0::detail::SaveFilter> m_filter;
  std::vector<const CEntAttrib*> m_sequence;  // attributes of the insert being written
  bool m_flatten;
  bool m_exchange = false;
  bool m_isOnSheet = false;
  CNameAcadConverter* m_pACADNameConverter = nullptr;
  std::unique_ptr<vek0::detail::SavedNames> m_names;
  vek0::detail::SaveHandles* m_handles = nullptr;
  CFileReport* m_report = nullptr;
  std::uint32_t m_trueColor = ENT_TRAITS::kNoTrueColor;  // the last one
  short m_nearest = 0;                                   // the number that stands for it
  bool m_isApproximated = false;                         // whether the number shows another color
};
