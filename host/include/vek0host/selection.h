#pragma once

#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "vek0core/vek0core.h"

namespace vek0::host {

/// Which entities of a drawing are meant: "all", or criteria like
/// "kind=LINE,ARC layer=WALL* color=1..7 !handle=1F,20". An entity meets all criteria, and one
/// value of each; "!" before a criterion negates it. Blanks or commas separate criteria, commas
/// values. Criteria of one name that commas separate are one. Quotes allow blanks, commas, equals
/// signs and exclamation marks in a value.
///
/// - layer, block, linetype: names, with the wildcards * and ?; block is the one that an insert
///   shows
/// - kind: see `entityKinds`
/// - color: numbers, ranges like 1..7, names, bylayer, byblock: the entity's own color
/// - text: what it shows, with wildcards; an insert shows its attributes
/// - handle: hexadecimal
/// - window: x1,y1,x2,y2; the entity's box is inside. crossing: the box meets it
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
  enum class Key { Layer, Kind, Color, Text, Handle, Block, Linetype, Window, Crossing };
  struct Criterion {
    Key key;
    bool isNegated = false;
    std::vector<std::string> values = {};
    std::vector<zim::WString> patterns = {};
    std::vector<std::pair<short, short>> colors = {};  // first and last
    std::unordered_set<vek0::Handle> handles = {};
    RECT_2D window = {};
    std::unordered_set<const CLayer*> layers = {};
  };

  static std::optional<Key> keyOf(const std::string& name);
  std::string take(const std::string& criteria);
  static std::string prepare(Criterion& criterion);
  static std::string readWindow(Criterion& criterion);
  static std::string readColors(Criterion& criterion);
  static std::string readHandles(Criterion& criterion);
  static std::string checkKind(std::string& kind);
  static bool meets(const Criterion& criterion, CEnt& ent, const RECT_3D& box);

  std::vector<Criterion> m_criteria;
};

}  // namespace vek0::host
