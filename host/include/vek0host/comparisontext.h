#pragma once

#include <functional>
#include <string>
#include <vector>

#include "vek0core/vek0core.h"
#include "vek0host/json.h"

namespace vek0::host {

/// What changed about an item, on one line: "color 1 -> 3, linetype DASHED -> DOT".
std::string changesInWords(const std::vector<VALUE_CHANGE>& changes);

/// The differences between two drawings as `vek0 diff` prints them. Handles, layers and extents are
/// those of the first drawing, of added entities those of the second.
class ComparisonText {
 public:
  /// All are borrowed.
  ComparisonText(const CData& before, const CData& after, const COMPARISON& comparison)
      : m_before(before), m_after(after), m_found(comparison) {}

  /// Passes on pieces of one line of JSON, which may be large: {"equal", "added", "removed",
  /// "moved", "changed", "tables"}. Entities are {"handle", "kind", "layer", "extents"}, with
  /// "block" or "layout" if they are not in model space; moved ones also have "by", and changed
  /// ones "what", "from", "to" and, if their geometry has only moved, "by". Items are {"table",
  /// "name", "what", "from", "to"}.
  void writeJson(const std::function<void(const std::string&)>& write) const;

  /// Passes on lines for humans: how many entities differ by layer and kind, then each of them, and
  /// the items.
  void writeText(const std::function<void(const std::string&)>& write) const;

 private:
  Json toJson(const CData& data, const CEnt& ent) const;
  Json toJson(const ENT_CHANGE& change) const;
  Json valueOf(const CData& data, const ENT_CHANGE& change, EntAspect aspect, bool isAfter) const;
  std::string lineOf(const char* mark, const CData& data, const CEnt& ent) const;
  std::string lineOf(const ENT_CHANGE& change) const;
  std::string summary() const;

  const CData &m_before, &m_after;
  const COMPARISON& m_found;
};

}  // namespace vek0::host
