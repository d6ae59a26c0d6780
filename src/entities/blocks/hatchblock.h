#pragma once

#include <memory>
#include <vector>

#include "vek0core/hatch/hatchparameters.h"

class CBlock;
class CBlockTable;
class CData;
class PNT_3D;

namespace zim {
class WString;
}

namespace vek0::detail {

/// Maximum number of lines and points of all hatches of a file, as shares of the limit for one
/// hatch (`CData::getHatchLimit`): a fixed share, plus another one per hatch.
constexpr double kHatchesShare = 0.2, kShareOfEachHatch = 0.0007;

/// Adds the already named block of a new hatch to the table, which takes ownership. Returns false
/// when out of memory; the caller then still owns it.
bool addHatchBlock(CBlockTable& table, std::unique_ptr<CBlock>& block);

/// As `createHatch`, but throws `std::bad_alloc` when there is no memory: null means that the
/// lines cannot be generated.
CBlock* makeHatchBlock(const zim::WString& name, const HatchParameters& parameters,
                       const std::vector<PNT_3D>& boundary, CData& data);

}  // namespace vek0::detail
