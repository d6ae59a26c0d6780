#pragma once

#include <vector>

#include "vek0core/entities/blocks/blockgraph.h"

namespace vek0::detail {

/// Collects the blocks in the order in which a graph visits them.
class CollectBlocks final : public IBlockOperation {
 public:
  int doOperation(CBlock& block) override {
    blocks.push_back(&block);
    return ZORA_BLOCK_VISIT_RESULT_SUCCESS;
  }

  std::vector<CBlock*> blocks;
};

}  // namespace vek0::detail
