#pragma once

#include <vector>

#include "tables/itemflags.h"
#include "vek0core/drawing/data.h"

class CBlock;
class CBlockXRef;
class CLayer;
class CLtype;
class CNamedItem;
class CStyle;

// The items of a drawing that a file lists, each table in the order of writing.
namespace vek0::detail {

/// Layers, those of external references included.
std::vector<const CLayer*> layersOf(const CData& data);
/// Linetypes, those of external references included. BYLAYER and BYBLOCK only on request, because
/// files never list them.
std::vector<const CLtype*> ltypesOf(const CData& data, bool withByLayerByBlock);
/// A style with its name and flags as seen from outside its external reference.
struct ListedStyle {
  const CStyle* style;
  zim::WString name;
  long flags;
};
/// The drawing's own styles, then those of external references that the drawing itself uses.
std::vector<ListedStyle> stylesOf(const CData& data);
std::vector<const CBlock*> blocksOf(const CData& data);
std::vector<const CBlockXRef*> xrefsOf(const CData& data);

/// Whether the item is flagged as part of an external reference, which is what readers check.
bool isDependent(const CNamedItem& item);

}  // namespace vek0::detail
