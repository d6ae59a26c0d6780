#pragma once

#include "vek0core/drawing/data.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blockxref.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/entattrib.h"

namespace vek0 {

/// Calls `visit(CEnt&)` for the entity and its attributes.
template <class Visit>
void forEachEnt(CEnt& ent, const Visit& visit) {
  visit(ent);
  const CEntInsertBase* insert = ent.getEntInsert();
  for (unsigned i = 0; insert && i < static_cast<unsigned>(insert->GetNoAttribs()); ++i)
    if (CEntAttrib* attrib = insert->GetAttrib(i)) visit(*attrib);
}

/// The same for the entities of a block.
template <class Visit>
void forEachEnt(CBlock& block, const Visit& visit) {
  for (unsigned i = 0; i < block.size(); ++i) forEachEnt(*block[i], visit);
}

/// The same for every entity of the drawing: blocks, model space, then external references with
/// their blocks, each in drawing order.
template <class Visit>
void forEachEnt(const CData& data, const Visit& visit) {
  const CBlockTable& blocks = data.getBlockTable();
  for (int i = 0; i < static_cast<int>(blocks.size()); ++i) forEachEnt(*blocks[i], visit);
  for (CEnt* ent : data.getEntTable().getEntityTbl()) forEachEnt(*ent, visit);
  const CBlockXRefTable& xrefs = data.getBlockXRefTable();
  for (int i = 0; i < static_cast<int>(xrefs.size()); ++i) {
    forEachEnt(static_cast<CBlock&>(*xrefs[i]), visit);
    for (const auto& block : xrefs[i]->getBlocks()) forEachEnt(*block, visit);
  }
}

}  // namespace vek0
