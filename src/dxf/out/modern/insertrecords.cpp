// Inserts with their attributes, and what is planned for their clips.
#include "dxf/out/exactnumbers.h"
#include "dxf/out/modern/entityrecords.h"
#include "dxf/out/modern/fixedpairs.h"
#include "dxf/out/savedtext.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/entattrib.h"

namespace vek0::detail {

void EntityRecords::visit(CEntInsert& ent) {
  if (refuses(ent, "INSERT")) return;
  writeInsert(ent, ent.isClipped() ? planClip(ent) : 0);
}

void EntityRecords::visit(CEntInsertXRef& ent) { visit(static_cast<CEntInsert&>(ent)); }

void EntityRecords::visit(CEntFixedInsert& ent) {
  if (refuses(ent, "INSERT")) return;
  writeInsert(ent, 0);
  note(ReportCode::FixedInsert, "INSERT");
}

// Entities of blocks are relative to the base point, so the boundary becomes so too.
SavedClip::SavedClip(const CEntInsert& ent) : clip(ent.getClip()), base(0, 0) {
  const CBlock& block = *ent.getBlock();
  if (!block.isXRef()) base = PNT_2D(block.getPnt());
}

// Returns the handle of the dictionary that leads to the clip.
Handle EntityRecords::planClip(const CEntInsert& ent) {
  SavedClip saved(ent);
  for (Handle* handle : {&saved.dictionary, &saved.filters, &saved.filter})
    *handle = m_plan.handles.takeEnd();
  m_plan.clips.push_back(saved);
  return saved.dictionary;
}

void EntityRecords::writeInsert(const CEntInsertBase& ent, Handle dictionary) {
  constexpr double noPixel = 1;
  PNT_3D pnt;
  double sx, sy, sz, rotationRad, columnSpacing, rowSpacing;
  long columns, rows;
  ent.getInsertParams(noPixel, pnt, sx, sy, sz, rotationRad);
  ent.getArray(columns, rows, columnSpacing, rowSpacing);
  const bool isArray = columns > 1 || rows > 1;
  m_attribs.clear();
  for (unsigned i = 0; i < ent.GetNoAttribs(); ++i) {
    const CEntAttrib* attrib = ent.GetAttrib(i);
    // Attributes that cannot be written must not start a sequence.
    if (attrib && !refuses(*attrib, "ATTRIB")) m_attribs.push_back(attrib);
  }
  const Handle handle = begin("INSERT", ent, isArray ? "AcDbMInsertBlock" : "AcDbBlockReference",
                              m_record, dictionary);
  dropThickness(ent);
  if (dictionary != 0) m_plan.clips.back().insert = handle;
  if (!m_attribs.empty()) m_out.write(66, 1L);
  m_out.writeEncoded(2, m_plan.blockNames[ent.getBlock()].name);
  writePoint(m_out, 10, pnt.x, pnt.y, pnt.z);
  const double scales[] = {sx, sy, sz};
  for (long i = 0; i < 3; ++i)
    if (scales[i] != 1) m_out.write(41 + i, scales[i]);
  if (rotationRad != 0) writeAngle(50, rotationRad);
  if (columns != 1) m_out.write(70, columns);
  if (rows != 1) m_out.write(71, rows);
  if (columnSpacing != 0) m_out.write(44, columnSpacing);
  if (rowSpacing != 0) m_out.write(45, rowSpacing);
  if (!m_attribs.empty()) writeAttribs(ent, handle);
}

void EntityRecords::writeAttribs(const CEntInsertBase& ent, Handle insert) {
  for (const CEntAttrib* attrib : m_attribs) {
    begin("ATTRIB", *attrib, "AcDbText", insert, 0);
    TextKind kind{"AcDbAttribute", 74};
    kind.tag = &attrib->getTag();
    kind.flags = attrib->getFlags();
    writeText(*attrib, savedAttrib(ent, *attrib, true), kind);
  }
  writeEnd(ent, insert);
}

}  // namespace vek0::detail
