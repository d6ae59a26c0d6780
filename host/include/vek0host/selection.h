#pragma once

#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "vek0core/vek0core.h"

namespace vek0::host {

/// Which entities of a drawing are meant by "all" or "layer=A,B*,kind=line,arc,window=x1,y1,x2,y2"
/// with any of the three. A value without a keyword continues the previous list; quotes allow
/// commas and equals signs in a name. Kinds are those of `entityKinds`.
class Selection {
 public:
  /// Returns an empty text, or an error message.
  std::string parse(const std::string& text);
  /// Finds the layers that are meant; call it before `includes`. Returns an error message if a name
  /// matches none, else an empty text.
  std::string findLayers(const CData& data);
  bool includes(CEnt& ent) const;
  /// The same for an entity that has other extents where it is shown, such as an attribute.
  bool includes(CEnt& ent, const RECT_3D& extents) const;

 private:
  std::string sortValues(const std::string& text, std::vector<std::string>& window);
  static std::string checkKind(std::string& kind);
  std::string readWindow(const std::vector<std::string>& window);

  std::vector<std::string> m_patterns;  // of layers; none: any layer
  std::vector<std::string> m_kinds;     // none: any kind
  std::optional<RECT_2D> m_window;
  std::unordered_set<const CLayer*> m_layers;
};

}  // namespace vek0::host
