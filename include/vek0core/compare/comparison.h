#pragma once

#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"
#include "zim0lang/wstring.h"

class CData;
class CEnt;

/// What two states of an entity differ in.
enum class EntAspect : std::uint8_t {
  Geometry,  ///< points, lengths, angles, flags; whether a polyline is closed
  Layer,
  Color,  ///< number or true color
  Linetype,
  Lineweight,
  LinetypeScale,
  Transparency,
  Visible,
  Thickness,
  Text,        ///< the strings, also those of attributes
  Style,       ///< the text style
  Pattern,     ///< of a hatch, with its scale and angle
  Block,       ///< that an insert shows
  Attributes,  ///< the attributes of an insert, apart from their strings
  Place,       ///< model space, the layout or the block that holds the entity
};
inline constexpr int kEntAspects = static_cast<int>(EntAspect::Place) + 1;

/// A word for it, such as "linetype_scale".
VEK0_API const char* nameOf(EntAspect aspect);

/// An entity in two drawings, in which it differs.
struct VEK0_API ENT_CHANGE {
  const CEnt* before = nullptr;  ///< never null
  const CEnt* after = nullptr;   ///< never null
  std::uint32_t aspects = 0;     ///< a bit for each `EntAspect`
  /// By which all its points have moved, if that is all that happened to its geometry.
  std::optional<PNT_3D> by;

  bool has(EntAspect aspect) const { return (aspects >> static_cast<int>(aspect) & 1) != 0; }
  void add(EntAspect aspect) { aspects |= std::uint32_t{1} << static_cast<int>(aspect); }
  bool isMove() const {
    return by && aspects == std::uint32_t{1} << static_cast<int>(EntAspect::Geometry);
  }
};

/// What is in a table of a drawing, or takes its place.
enum class ItemTable : std::uint8_t {
  Layers,
  Linetypes,
  Styles,
  Blocks,
  XRefs,
  Layouts,
  Variables
};

/// "layers", "linetypes", "styles", "blocks", "xrefs", "layouts" or "variables".
VEK0_API const char* nameOf(ItemTable table);

/// A property of an item: nothing, a yes or no, a number, a text, numbers.
using ItemValue = std::variant<std::monostate, bool, double, zim::WString, std::vector<double>>;

/// A property that differs.
struct VALUE_CHANGE {
  const char* what;  ///< a word such as "color"; of a new name "name"
  ItemValue before, after;
};

/// An item that only one of the drawings has, or that differs.
struct VEK0_API ITEM_CHANGE {
  enum class Sort : std::uint8_t { Added, Removed, Changed };

  ItemTable table = ItemTable::Layers;
  Sort sort = Sort::Changed;
  zim::WString name;                 ///< before, if it was there
  std::vector<VALUE_CHANGE> values;  ///< of a changed item; at least one
};

/// Which entities of two drawings are taken for the same.
enum class EntMatch : std::uint8_t {
  Handles,   ///< those with the same handle, if handles of the two drawings correspond; others, and
             ///< those without a partner, by geometry
  Geometry,  ///< those in the same place, whatever their handles
};

struct COMPARE_OPTIONS {
  /// By how much coordinates and lengths may differ, in drawing units; nothing: 1e-9 of the
  /// extents. Angles, scales and other ratios may differ by as much relative to the extents.
  std::optional<double> tolerance;
  EntMatch match = EntMatch::Handles;
};

/// The differences between two drawings; refers to their entities.
///
/// Entities are those of model space, of sheets, and of blocks that both drawings have. Those of
/// other blocks follow from the block's own entry, the pieces of records, the lines of hatches and
/// the content of private blocks from the entity that shows them. The content of external
/// references, the order of entities and what an editor currently has set do not count.
struct COMPARISON {
  std::vector<const CEnt*> removed;  ///< in the order of the first drawing
  std::vector<const CEnt*> added;    ///< in the order of the second
  std::vector<ENT_CHANGE> moved;     ///< and nothing else
  std::vector<ENT_CHANGE> changed;
  std::vector<ITEM_CHANGE> items;
  double tolerance = 0;    ///< that was applied
  bool byHandles = false;  ///< whether handles of the drawings correspond

  bool isEqual() const {
    return removed.empty() && added.empty() && moved.empty() && changed.empty() && items.empty();
  }
};

/// Compares two drawings, which should have a `CHandleManager` so that handles of the files can be
/// told from those given while loading. An item that has another name but the same users is one
/// that was renamed: one entry, and no change of its users.
///
/// Takes n log n time in the entities and linear time in their points. Throws `std::bad_alloc`.
VEK0_API COMPARISON compareDrawings(const CData& before, const CData& after,
                                    const COMPARE_OPTIONS& options = {});
