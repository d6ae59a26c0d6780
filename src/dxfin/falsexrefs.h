#pragma once

#include <vector>

class CBlockXRef;
class CData;

namespace vek0::detail {

/// Takes references out of the drawing that are none: their layers and linetypes become
/// ordinary ones of the full name, "xref|item", and everything on them goes along. Nothing may
/// insert the references, which are deleted. Linear in the drawing.
void dropFalseXRefs(CData& data, const std::vector<CBlockXRef*>& xrefs);

}  // namespace vek0::detail
