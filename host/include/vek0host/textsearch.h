#pragma once

#include <functional>
#include <optional>
#include <string>

#include "vek0core/vek0core.h"
#include "vek0host/json.h"
#include "vek0host/textpattern.h"

namespace vek0::host {

/// A text or name that contains a match. The pointers are borrowed from the drawing.
struct FoundText {
  const CEnt* ent = nullptr;            ///< null for names
  std::string kind;                     ///< see `recordNameOf`; "LAYER" or "BLOCK" for names
  const zim::WString* layer = nullptr;  ///< of the entity; the name of a layer
  const zim::WString* block = nullptr;  ///< that holds the entity; of the insert of an attribute;
                                        ///< the name of a block
  const zim::WString* tag = nullptr;    ///< of attributes and their definitions
  std::string text;                     ///< as in the file, lines separated by line feeds
  std::optional<PNT_3D> point;          ///< in the coordinates of the block or layout
};

/// Calls `found` for the names of layers and blocks, and then for the texts of model space, layouts
/// and blocks that match: of texts, of formatted texts and dimensions in all their lines, of
/// attributes and their definitions also as "tag=value". Texts match with or without their codes
/// (%%d), and in one line, or across lines that are joined by a space.
void searchTexts(const CData& data, const TextPattern& pattern,
                 const std::function<void(const FoundText&)>& found);

/// {"file", "handle", "kind", "layer", "block", "tag", "text", "point"}, null where there is none.
Json toJson(const FoundText& found, const std::string& file);

/// "file: layer kind handle: text", with a line break; without what a name does not have.
std::string toFoundLine(const FoundText& found, const std::string& file);

}  // namespace vek0::host
