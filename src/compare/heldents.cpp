#include "compare/heldents.h"

#include <algorithm>

#include "vek0core/drawing/data.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blocktable.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/enttable.h"

namespace vek0::detail {

HeldEnts::HeldEnts(const CData& data, Index index) {
  for (const CEnt* ent : data.getEntTable().getEntityTbl()) add(*ent, {});
  const CBlockTable& blocks = data.getBlockTable();
  for (int i = 0; i < static_cast<int>(blocks.size()); ++i) {
    const CBlock& block = *blocks[i];
    if ((isHatchName(block.getName()) && !block.isSheet()) || block.isOfRecord()) continue;
    for (unsigned k = 0; k < block.size(); ++k) add(*block[k], {&block, block.isSheet()});
  }
  if (index == WithoutIndex) return;
  for (std::size_t i = 0; i < m_all.size(); ++i)
    m_places.emplace_back(m_all[i].ent->GetHandle(), i);
  std::sort(m_places.begin(), m_places.end());
}

void HeldEnts::add(const CEnt& ent, const Container& container) {
  m_all.push_back({&ent, container});
}

const HeldEnt* HeldEnts::find(Handle handle) const {
  const auto found =
      std::lower_bound(m_places.begin(), m_places.end(), std::pair(handle, std::size_t{0}));
  return found == m_places.end() || found->first != handle ? nullptr : &m_all[found->second];
}

bool isSamePlace(const Container& a, const Container& b) {
  if (!a.block || !b.block) return a.block == b.block;
  return a.isSheet == b.isSheet && a.block->getName().EqualsIgnoreCase(b.block->getName());
}

}  // namespace vek0::detail
