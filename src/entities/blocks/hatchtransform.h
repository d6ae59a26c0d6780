#pragma once

#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/entvisitor.h"

namespace vek0::detail {

/// Applies `visitor` to the lines that the hatch shows and `move` to the points of its boundary,
/// then updates the extents of both.
template <class MovePoint>
void transformHatch(CEntHatch& hatch, IEntVisitor& visitor, const MovePoint& move) {
  if (CBlock* block = hatch.getBlock()) {
    for (unsigned i = 0; i < block->size(); ++i) (*block)[i]->accept(visitor);
    block->calcBdry();
  }
  for (long i = 0; i < hatch.getNoPnts(); ++i) {
    PNT_3D pnt = hatch.getPnt(i);
    move(pnt);
    hatch.setPnt(i, pnt);
  }
  hatch.calcBdry();
}

}  // namespace vek0::detail
