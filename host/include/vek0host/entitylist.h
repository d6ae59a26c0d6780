#pragma once

#include <functional>
#include <optional>
#include <string>

#include "vek0core/vek0core.h"
#include "vek0host/json.h"
#include "vek0host/selection.h"

namespace vek0::host {

/// An entity as `vek0 list` shows it. Color, lineweight, linetype and visibility are those that it
/// is drawn with, for black on white.
struct ListedEntity {
  CEnt* ent = nullptr;                   ///< never null when listed
  std::string kind;                      ///< of the record, see `recordNameOf`
  const CEntInsertBase* of = nullptr;    ///< the insert of an attribute, else null
  const zim::WString* layout = nullptr;  ///< null for entities of a block
  RGB_COLOR color{};
  double weightMm = 0;
  const CLtype* ltype = nullptr;  ///< null: Continuous
  double transparency = 0;        ///< from 0, opaque, to 1
  RECT_3D extents;                ///< those of an attribute are not in the coordinates of the block
  bool isVisible = true;
};

/// Calls `show` for the entities that the selection includes, each followed by its attributes:
/// those of model space and of all layouts, or, if `place` is not empty, of that layout or block.
/// Viewports follow the entities of their layout, as their frames.
/// Entities of a block are resolved as if it were inserted on layer 0 with color 7. Returns an
/// error message if there is no such place, or if the selection names no layer; else an empty text.
std::string listEntities(const CData& data, const std::string& place, Selection selection,
                         const std::function<void(const ListedEntity&)>& show);

/// Calls `show` for one entity and its attributes. `layout` is that of the entity, null in a block.
void listEntity(const CData& data, CEnt& ent, const zim::WString* layout,
                const std::function<void(const ListedEntity&)>& show);

/// The name of the layout of model space.
const zim::WString& modelName();

/// {"handle", "kind", "layer", "layout", "block", "color", "rgb", "lineweight", "linetype",
/// "linetype_scale", "transparency", "visible", "extents", "text"}, for attributes also "of".
/// "block" is that of an insert, "text" that of a text, both else null.
Json toJson(const ListedEntity& entity);

/// The text of an entity, the lines of a record with several; nothing for other kinds.
std::optional<std::string> textOf(const CEnt& ent);

/// The columns of the table, and the line for an entity, with line breaks.
std::string tableHead();
std::string toTableLine(const ListedEntity& entity);

}  // namespace vek0::host
