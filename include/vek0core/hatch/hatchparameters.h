#pragma once

struct HATCH_TYPE;

namespace vek0::detail {

/// What fills a hatch, apart from its boundary.
struct HatchParameters {
  const HATCH_TYPE* type = nullptr;  ///< borrowed; null only before it is set
  double scale = 1;
  double rotate = 0;  ///< radians

  bool operator==(const HatchParameters&) const = default;
};

}  // namespace vek0::detail
