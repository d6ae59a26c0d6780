#pragma once

#include "vek0core/drawing/data.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/entattrib.h"

namespace vek0::detail {

/// Calls `each` with every entity of the drawing until it returns false: those of blocks first,
/// those of external references if requested, then model space. Returns whether it reached the end.
/// Attributes are reached through their inserts.
template <class Each>
bool forEveryEntity(CData& data, bool withXRefs, const Each& each) {
  const auto walk = [&each](CBlock& block) {
    for (unsigned i = 0; i < block.size(); ++i)
      if (!each(*block[i])) return false;
    return true;
  };
  for (int i = 0; i < data.getBlockTable().size(); ++i)
    if (!walk(*data.getBlockTable()[i])) return false;
  for (int i = 0; withXRefs && i < data.getBlockXRefTable().size(); ++i) {
    CBlockXRef& xref = *data.getBlockXRefTable()[i];
    for (const auto& block : xref.getBlocks())
      if (!walk(*block)) return false;
    if (!walk(xref)) return false;
  }
  for (CEnt* ent : data.getEntTable().getEntityTbl())
    if (!each(*ent)) return false;
  return true;
}

/// Calls `each` with the attributes of an insert; other entities have none.
template <class Each>
void forEveryAttrib(CEnt& ent, const Each& each) {
  CEntInsertBase* insert = ent.getEntInsert();
  for (unsigned i = 0; insert != nullptr && i < insert->GetNoAttribs(); ++i)
    each(*insert->GetAttrib(i));
}

/// Updates extents that depend on this entity's.
inline void spreadBdry(CData& data, CEnt& ent) {
  ent.invalidateBdry();
  if (CBlock* block = ent.getOwnerBlock()) block->invalidateBdry();
  data.getEntTable().invalidateBdry();
}

}  // namespace vek0::detail
