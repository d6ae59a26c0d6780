#pragma once

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

  /// The pattern of that name (letter case counts) and exactly those lines; copied when
  /// it is new. Constant time on average, beside the comparison of the lines.
  const HATCH_TYPE& intern(const zim::WString& name, const std::vector<HATCH_LINE>& lines);
  /// The same pattern as `type`: itself when it is in the catalogue.
  const HATCH_TYPE& intern(const HATCH_TYPE& type);
  /// The pattern that fills the whole area.
  const HATCH_TYPE& solid() { return intern(kSolid, {}); }

 private:
  static constexpr const zim::Char* kSolid = u"SOLID";
  struct Pattern;

  std::unordered_multimap<zim::WString, std::unique_ptr<Pattern>> m_patterns;
};

/// Whether the pattern fills the area instead of drawing lines. Other patterns without
/// lines are those that a file names and nobody knows.
VEK0_API bool isSolid(const HATCH_TYPE& type);
