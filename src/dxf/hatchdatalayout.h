#pragma once

/// Layout of the extended data by which an INSERT record represents a hatch, shared by reader and
/// writer.
namespace vek0::detail::hatchdata {

// Codes of the pairs.
inline constexpr long kText = 1000, kApplication = 1001, kBrace = 1002;
inline constexpr long kPoint = 1010, kDirection = 1011, kReal = 1040;
inline constexpr long kShort = 1070, kLong = 1071;

// Values of the pairs.
inline constexpr char kOwner[] = "ACAD", kMark[] = "HATCH", kOpen[] = "{", kClose[] = "}";
inline constexpr char kBounds[] = "ASC_BOUNDS", kSeed[] = "ASC_SEEDPOINT";
inline constexpr char kRings[] = "R14_HATCH_DATA", kPatternLines[] = "PATTERN_LINES";
inline constexpr long kVersion = 19, kEvenOdd = 0, kPolylineRing = 2;

// Maximum of a 16-bit count.
inline constexpr long kMostShort = 32767;

}  // namespace vek0::detail::hatchdata
