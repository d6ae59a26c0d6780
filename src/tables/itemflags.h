#pragma once

namespace vek0::detail {

/// Flag bits of layers, linetypes, styles and blocks: from an external reference, and whose
/// reference was found.
inline constexpr long kDependent = 16, kResolved = 32;

}  // namespace vek0::detail
