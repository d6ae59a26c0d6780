#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "vek0core/hatch/loops.h"
#include "vek0host/session.h"

class CData;
class CEntHatch;
class CLayer;

namespace vek0::host {

/// A hatch to be added to a drawing.
struct HatchRequest {
  std::string pattern = "ANSI31";  ///< a name for which `isHatchPattern` is true, UTF-8
  std::string layer = "0";         ///< created if necessary, UTF-8
  double scale = 1;                ///< relative to the pattern's own size; greater than 0
  double angleDeg = 0;             ///< rotation of the pattern
  double limit = 1e6;              ///< maximum number of lines and dots
  HATCH_RING corners;              ///< of the area
  bool closedPolylines = false;    ///< hatch all closed polylines of model space instead
};

/// Whether the catalog has a pattern of that name, ignoring case; SOLID is one.
bool isHatchPattern(const std::string& name);

/// Creates the hatch of a boundary (`joinHatchRings`) with pattern, scale, angle and limit of the
/// request. Its block is in the table, it itself in none. Null if the pattern is too dense or
/// memory exhausted; `message` receives what the core says about it, also if it succeeds.
CEntHatch* createHatch(CData& data, const HatchRequest& request,
                       const std::vector<PNT_3D>& boundary, CLayer* layer, short color,
                       std::string& message);

/// Hatches an area of a drawing. `name` denotes the drawing in messages. Returns false, after
/// reporting the failure to the session, if the area is empty, the pattern too dense for the limit,
/// or memory exhausted.
bool addHatch(CData& data, const HatchRequest& request, const std::string& name, Session& session);

/// The number of lines that all patterned hatches of a drawing, blocks included, are written as.
/// Linear.
std::size_t countHatchLines(const CData& data);

}  // namespace vek0::host
