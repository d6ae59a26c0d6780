#pragma once

#include <string>
#include <vector>

#include "dxf/keep/editcontext.h"

namespace vek0::detail {

/// Records of an item that the drawing no longer has.
struct GoneItem {
  std::string table;  ///< LAYER, LTYPE, STYLE or BLOCK
  std::string key;    ///< the name, folded
  std::size_t first = SourceIndex::kNone, last = SourceIndex::kNone;
  std::size_t entry = SourceIndex::kNone;  ///< the record in the table
  bool isUsed = false;
};

/// `nameKey` of a name as the file spells it.
std::string keyOfText(const EditContext& context, std::string_view text);

/// Marks the items that a record which stays names or points to; those of a marked item stay, too.
/// Linear in the file.
void markUsed(const EditContext& context, std::vector<GoneItem>& items);

}  // namespace vek0::detail
