#pragma once

#include <cstddef>
#include <memory>
#include <unordered_map>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/hatch/catalogue.h"
#include "zim0lang/wstring.h"

/// The hatch patterns of a drawing that are not in the catalogue: those defined by its files, and
/// the solid fill, "SOLID", which has no lines.
///
/// Patterns are identified by address, so equal content is stored once; a pattern lives as long as
/// the table.
class VEK0_API CHatchTypeTable {
 public:
  CHatchTypeTable();
  CHatchTypeTable(const CHatchTypeTable&) = delete;
  CHatchTypeTable& operator=(const CHatchTypeTable&) = delete;
  ~CHatchTypeTable();

  /// The pattern of that name (case-sensitive) with exactly those lines; copied if it is new. Zeros
  /// are equal regardless of sign, and NaN equals itself. Round computed lines first, or noise in
  /// the last digits turns one pattern into two.
  ///
  /// Linear in the length of the name and the number of lines, on average, however many patterns of
  /// that name the table holds.
  const HATCH_TYPE& intern(const zim::WString& name, const std::vector<HATCH_LINE>& lines);
  /// The pattern equal to `type`: `type` itself if it is in the catalogue, at constant cost.
  const HATCH_TYPE& intern(const HATCH_TYPE& type);
  /// The solid fill pattern.
  const HATCH_TYPE& solid() { return intern(kSolid, {}); }

 private:
  static constexpr const zim::Char* kSolid = u"SOLID";
  struct Pattern;

  std::unordered_multimap<std::size_t, std::unique_ptr<Pattern>> m_patterns;  // by hash
};

/// Whether the pattern fills the area instead of drawing lines. Any other pattern without lines is
/// one that a file names but that is unknown.
VEK0_API bool isSolid(const HATCH_TYPE& type);
