#pragma once

#include <vector>

#include "vek0core/drawing/data.h"

class CBlock;
class CBlockXRef;
class CLayer;
class CLtype;
class CNamedItem;
class CStyle;

// The items of a drawing that a file names, each table in the order of writing.
namespace vek0::detail {

/// Layers, those of external references included.
std::vector<const CLayer*> layersOf(const CData& data);
/// Linetypes likewise; BYLAYER and BYBLOCK only on request: a file never lists them.
std::vector<const CLtype*> ltypesOf(const CData& data, bool withByLayerByBlock);
/// The drawing's own styles: nothing names those of external references.
std::vector<const CStyle*> stylesOf(const CData& data);
std::vector<const CBlock*> blocksOf(const CData& data);
std::vector<const CBlockXRef*> xrefsOf(const CData& data);

/// Flag bits of an item that came with an external reference.
inline constexpr long kDependent = 16, kResolved = 32;

/// Whether the item is flagged as one of an external reference, which is what
/// readers go by.
bool isDependent(const CNamedItem& item);

}  // namespace vek0::detail
