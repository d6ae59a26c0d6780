#pragma once

#include <cstddef>
#include <memory>
#include <unordered_map>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/hatch/catalogue.h"
#include "zim0lang/wstring.h"

/// The hatch patterns of a drawing that are not in the catalogue: those that its files
/// define themselves, and the filled area, "SOLID", which has no lines.
///
/// Patterns are compared by address, so equal content is stored once; a pattern lives
/// as long as the table.
class VEK0_API CHatchTypeTable {
 public:
  CHatchTypeTable();
  CHatchTypeTable(const CHatchTypeTable&) = delete;
  CHatchTypeTable& operator=(const CHatchTypeTable&) = delete;
  ~CHatchTypeTable();

  /// The pattern of that name (letter case counts) and exactly those lines; copied when it is new.
  /// Zeros are equal whatever their sign, and NaN is equal to itself. Whoever computes lines rounds
  /// them first, or noise in the last digits makes two patterns of one.
  ///
  /// Linear in the length of the name and the number of lines, on average, however many patterns of
  /// that name the table holds.
  const HATCH_TYPE& intern(const zim::WString& name, const std::vector<HATCH_LINE>& lines);
  /// The same pattern as `type`: itself when it is in the catalogue, for which the cost is
  /// constant.
  const HATCH_TYPE& intern(const HATCH_TYPE& type);
  /// The pattern that fills the whole area.
  const HATCH_TYPE& solid() { return intern(kSolid, {}); }

 private:
  static constexpr const zim::Char* kSolid = u"SOLID";
  struct Pattern;

  std::unordered_multimap<std::size_t, std::unique_ptr<Pattern>> m_patterns;  // by hash
};

/// Whether the pattern fills the area instead of drawing lines. Other patterns without
/// lines are those that a file names and nobody knows.
VEK0_API bool isSolid(const HATCH_TYPE& type);
