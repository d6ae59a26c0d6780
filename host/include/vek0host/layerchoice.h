#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "zim0lang/wstring.h"

class CData;
class CLayer;

namespace vek0::host {

/// Whether a name matches a pattern, ignoring case: "*" matches any text, "?" one character.
/// Quadratic at worst.
bool matchesPattern(std::u16string_view name, std::u16string_view pattern);
/// Whether it contains a wildcard and so may match several names.
bool isPattern(std::u16string_view name);

/// Which layers of a drawing are shown.
class LayerChoice {
 public:
  /// If `shown` is not empty, only layers that it matches are on, and frozen ones are thawed; those
  /// in `hidden` are always off. Names are UTF-8 and may be patterns. Layers of external references
  /// are named "XREF|LAYER". Layers that are not printed, among them Defpoints, are off unless a
  /// name in `shown` matches them.
  LayerChoice(const CData& data, const std::vector<std::string>& shown,
              const std::vector<std::string>& hidden);

  /// Whether no layer matched any of the names in `shown`.
  bool showsNone() const { return m_showsNone; }
  /// The first layer that was switched off because it is not printed, although there are entities
  /// on it; empty if there is none.
  const zim::WString& unprinted() const { return m_unprinted; }
  /// The names that no layer matched.
  const std::vector<std::string>& unmatched() const { return m_unmatched; }
  /// The layers that are now neither off nor frozen.
  const std::vector<CLayer*>& visible() const { return m_visible; }
  /// Switches off all other visible layers.
  void showOnly(const CLayer* layer) const;

 private:
  std::vector<bool> matching(const std::vector<CLayer*>& layers,
                             const std::vector<std::string>& names);

  bool m_showsNone = false;
  zim::WString m_unprinted;
  std::vector<std::string> m_unmatched;
  std::vector<CLayer*> m_visible;
};

}  // namespace vek0::host
