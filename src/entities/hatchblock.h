#pragma once

#include <memory>

class CBlock;
class CBlockTable;

namespace vek0::detail {

/// Names the block as that of a new hatch and puts it into the table, which has it from
/// then on. False when there is no memory: then the caller has it still.
bool addHatchBlock(CBlockTable& table, std::unique_ptr<CBlock>& block);

}  // namespace vek0::detail
