#pragma once

class CEntHatch;
class CFileDXFOWriter;

namespace vek0::detail {

/// Writes the pairs of a HATCH record after its common properties.
void writeHatch(CFileDXFOWriter& out, const CEntHatch& hatch);

}  // namespace vek0::detail
