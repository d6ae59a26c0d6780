#pragma once

#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "vek0core/dxf/out/modern/saveoptions.h"

namespace vek0::detail {

/// What later versions of the format have and one version, AC1015 or later, lacks.
class VersionDifferences {
 public:
  explicit VersionDifferences(DxfVersion version);

  /// The group codes missing in a part of a record: a subclass (100), or the whole record by its
  /// kind if it has none. A negative code stands for all pairs with that code but the first. Null
  /// if none is missing.
  const std::vector<short>* codesIn(std::string_view part) const;
  bool lacksVariable(std::string_view name) const { return m_variables.contains(name); }
  /// The section of the data of solids; their records have them in older versions.
  bool lacksStoredData() const { return m_version < DxfVersion::R2013; }
  /// Multi-line texts within other records (101).
  bool lacksEmbeddedObjects() const { return m_version < DxfVersion::R2018; }
  /// The code of the size of proxy graphics in `AcDbEntity`: 92 or 160.
  short proxySizeCode() const { return m_version < DxfVersion::R2010 ? 92 : 160; }

 private:
  DxfVersion m_version;
  std::unordered_map<std::string_view, std::vector<short>> m_codes;
  std::unordered_set<std::string_view> m_variables;
};

}  // namespace vek0::detail
