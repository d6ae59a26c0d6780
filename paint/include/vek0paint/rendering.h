#pragma once

#include <optional>
#include <string>
#include <vector>

#include "vek0core/compare/comparison.h"
#include "vek0host/references.h"
#include "vek0host/session.h"
#include "vek0paint/marks.h"
#include "vek0paint/picture.h"

class CData;

namespace vek0::paint {

/// How drawings are rendered to files.
struct RenderOptions {
  PICTURE_OPTIONS picture;  ///< `unitMm` is computed from `unit`
  std::string unit;         ///< drawing unit; empty: the one stated by the file, else a millimeter
  std::string view = "plan";                             ///< see `makeProjector`
  std::optional<RGB_COLOR> background{{255, 255, 255}};  ///< nothing: transparent
  DrawColors colors = DrawColors::Keep;
  bool textsAsOutlines = false;                   ///< of SVG
  std::vector<std::string> layers, hiddenLayers;  ///< see `LayerChoice`
  bool withReferences = true;                     ///< show external references
  host::ReferenceOptions references;
  /// Name of the layout to plot; "all": every layout, in one PDF or one picture each. Nothing: the
  /// model.
  std::optional<std::string> layout;
  bool currentLayout = false;  ///< plot the layout that was current when the drawing was saved
  bool splitLayers = false;    ///< one picture per layer that shows something
  bool force = false;          ///< replace existing files
};

/// Renders a drawing ("-": standard input) to a file ("-": standard output). Reports failures and
/// whatever the picture lacks to the session.
void renderDrawing(const std::string& in, const std::string& out, const RenderOptions& options,
                   host::Session& session);

/// A drawing that has been read, with the name of its file.
struct NamedDrawing {
  CData& data;
  std::string name;
};

/// Renders a drawing that stays open: its state is the same afterwards. External references are
/// shown as far as they have been read.
void renderOpened(const NamedDrawing& drawing, const std::string& out, const RenderOptions& options,
                  host::Session& session);

/// Renders the differences between the models of two drawings: what is the same in light gray, what
/// is removed or was otherwise before in red, what is added or is otherwise now in green. The
/// drawings get fonts for their picture.
void renderDifferences(const NamedDrawing& before, const NamedDrawing& after,
                       const COMPARISON& comparison, const std::string& out,
                       const RenderOptions& options, host::Session& session);

/// Renders the model of a drawing in light gray with marks over it. The drawing gets fonts for the
/// picture.
void renderMarks(const NamedDrawing& drawing, const std::vector<PictureMark>& marks,
                 const std::string& out, const RenderOptions& options, host::Session& session);

}  // namespace vek0::paint
