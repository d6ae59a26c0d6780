#pragma once

#include <cstddef>
#include <unordered_set>
#include <vector>

#include "vek0core/vek0core.h"

namespace vek0::host {

/// Some of what a drawing consists of; borrowed.
struct Parts {
  std::vector<CEnt*> entities;  ///< of model space
  std::vector<CLayer*> layers;
  std::vector<CLtype*> ltypes;
  std::vector<CStyle*> styles;
  std::vector<CBlock*> blocks;
};

/// Remembers what a drawing holds, to find what is added to it.
class PartsMark {
 public:
  /// Nothing, so that everything counts as added.
  PartsMark() = default;
  explicit PartsMark(const CData& data);

  /// What has been added, which includes all of model space behind what was there. Linear in the
  /// drawing's tables and in model space.
  Parts since(CData& data) const;

 private:
  std::size_t m_entities = 0;
  std::unordered_set<const CNamedItem*> m_items;
};

/// Scales entities, the content of blocks and the heights of text styles by `factor` (greater than
/// 0) about the origin. Inserts of blocks keep their scales, as the blocks grow; external
/// references and arrowheads of dimensions keep their size, and their inserts are scaled. Linetypes
/// keep their lengths.
void scaleParts(CData& data, const Parts& parts, double factor);

}  // namespace vek0::host
