#pragma once

#include <cstdint>

#include "vek0core/export.h"

/// Properties of an entity that most entities leave at their defaults, besides layer, linetype and
/// color number.
struct ENT_TRAITS {
  static constexpr std::uint32_t kNoTrueColor = 0xFFFFFFFF;
  /// Values of `lineweight` that are not widths.
  static constexpr short kWeightByLayer = -1, kWeightByBlock = -2, kWeightDefault = -3;
  static constexpr short kWidestWeight = 211;
  /// Values of `opacity` that are not opacities.
  static constexpr short kOpacityByLayer = -1, kOpacityByBlock = -2;
  static constexpr short kOpaque = 255;

  /// 0xRRGGBB, or `kNoTrueColor` if the color number determines the color.
  std::uint32_t trueColor = kNoTrueColor;
  /// In hundredths of a millimeter, 0 to 211, or one of the constants.
  short lineweight = kWeightByLayer;
  /// From 0, invisible, to 255, opaque, or one of the constants.
  short opacity = kOpacityByLayer;
  bool isVisible = true;
  /// Factor of the linetype's pattern, besides that of the drawing; positive.
  double ltypeScale = 1;
  /// Extrusion along the z axis, in drawing units.
  double thickness = 0;

  bool hasTrueColor() const { return trueColor != kNoTrueColor; }
  bool operator==(const ENT_TRAITS&) const = default;
};

namespace vek0::detail {

/// Reference to shared traits: of equal ones, the process keeps one copy and counts its users. Four
/// bytes, so that entities with default traits pay next to nothing. Threads may use different
/// references at the same time.
class VEK0_API EntTraitsRef {
 public:
  /// The default traits.
  EntTraitsRef() = default;
  /// Constant time on average. Throws `std::bad_alloc`, also beyond 4e9 different traits.
  explicit EntTraitsRef(const ENT_TRAITS& traits);
  EntTraitsRef(const EntTraitsRef& src) noexcept;
  EntTraitsRef(EntTraitsRef&& src) noexcept : m_index(src.m_index) { src.m_index = 0; }
  EntTraitsRef& operator=(const EntTraitsRef& src) noexcept;
  EntTraitsRef& operator=(EntTraitsRef&& src) noexcept;
  ~EntTraitsRef() {
    if (m_index != 0) release();
  }

  /// Valid while a reference to these traits exists.
  const ENT_TRAITS& get() const;
  bool isDefault() const { return m_index == 0; }
  bool operator==(const EntTraitsRef& other) const { return m_index == other.m_index; }

 private:
  void release() noexcept;

  std::uint32_t m_index = 0;  // of the table; 0 is default traits, which are not counted
};

}  // namespace vek0::detail
