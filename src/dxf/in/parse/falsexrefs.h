#pragma once

#include <vector>

class CBlockXRef;
class CData;

namespace vek0::detail {

/// Removes and deletes spurious references from the drawing: their layers and linetypes become
/// ordinary ones with the full name, "xref|item", and everything that uses them is updated. Nothing
/// may insert the references. Linear in the drawing.
void dropFalseXRefs(CData& data, const std::vector<CBlockXRef*>& xrefs);

}  // namespace vek0::detail
