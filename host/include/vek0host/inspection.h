#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "vek0core/vek0core.h"
#include "vek0host/json.h"

namespace vek0::host {

/// What a drawing is meant for.
enum class Purpose { R12, Laser, Print, Gis };

/// "r12", "laser", "print" and "gis", in the order of the enumeration.
const std::vector<std::string>& purposeNames();

/// A width and a height.
struct BedSize {
  double width = 0, height = 0;
  std::string unit;  ///< see `unitInMeters`; empty: drawing units. A drawing without a unit
                     ///< is in millimeters
};

/// Parses "600x400" or "600x400mm"; nothing on any other text.
std::optional<BedSize> bedOf(const std::string& text);

struct InspectionOptions {
  Purpose purpose = Purpose::Laser;
  std::optional<double> tolerance;  ///< largest gap in drawing units; nothing: 1e-4 of the extents
  std::optional<double> tiny;       ///< in drawing units; nothing: a tenth of the tolerance
  std::optional<BedSize> bed;       ///< of the machine, or the paper; nothing: that of the sheets
  /// Whether a font of that name is available; empty: fonts are not checked.
  std::function<bool(const zim::WString& name)> hasFont;
};

/// Something that is wrong for the purpose; refers to entities of the drawing.
struct Finding {
  const char* code = "";  ///< a word such as "open_contour"
  bool isError = false;   ///< otherwise a warning
  std::string layer;      ///< of the first entity; empty for none
  std::vector<const CEnt*> ents;
  std::optional<PNT_2D> point;
  std::optional<double> value;  ///< in drawing units
  std::string message;          ///< one sentence
  std::string layout;           ///< whose sheet it is on; empty for the model
};

struct Inspection {
  std::vector<Finding> findings;
  bool isCut = false;  ///< inserts unfold to too much, or curves cross too often, to examine all
  bool hasErrors() const;
};

/// Finds what is wrong with a drawing for the purpose. `units` is the number of the unit that its
/// file states. Records should be whole (`ReadOptions::wholeRecords`). Near-linear in what the
/// drawing shows; see `findCurveFaults` and `placeContent`.
Inspection inspectDrawing(const CData& data, long units, const InspectionOptions& options);

/// [{"code", "severity", "layer", "handles", "point", "value", "message"}]; layer, point and value
/// are null where there is none, and findings on a sheet also have "layout".
Json findingsToJson(const Inspection& inspection);
/// The same as numbered lines, and the number of errors and warnings. Of more than 100 findings
/// with one code, only the first are listed.
std::string findingsToText(const Inspection& inspection);

}  // namespace vek0::host
