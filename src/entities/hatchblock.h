#pragma once

#include <memory>

class CBlock;
class CBlockTable;

namespace vek0::detail {

/// Puts the block of a new hatch, which bears the name for it, into the table, which has it
/// from then on. False when there is no memory: then the caller has it still.
bool addHatchBlock(CBlockTable& table, std::unique_ptr<CBlock>& block);

}  // namespace vek0::detail
