#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "vek0core/vek0core.h"

namespace vek0::host {

/// How a drawing becomes GeoJSON.
struct GeoOptions {
  double chord = 0;  ///< deviation of chords from curves in drawing units; 0: see `writeGeoJson`
  std::string crs;   ///< name of the coordinate reference system; empty: not recorded
};

/// What `writeGeoJson` wrote.
struct GeoResult {
  std::size_t features = 0;
  std::map<std::string, std::size_t> skipped;  ///< records without a geometry, by kind
  bool isCut = false;  ///< inserts and curves unfold to too much: the output is not complete
};

/// Passes a FeatureCollection of model space (RFC 7946) to `put`, piece by piece, in drawing order.
///
/// Closed curves and filled areas are polygons, other curves line strings, texts and points are
/// points. Rings are closed and wind by the right-hand rule; holes are those of the even-odd rule.
/// Blocks are resolved to what their inserts show, under the handle of the outermost insert; a
/// formatted text is one point. Properties: layer, kind, handle, block, color, text. Coordinates
/// are those of the drawing, with z if a point of the feature has one.
///
/// Without a chord it is 1e-5 of the extents, but not more than a hundredth of each radius. An arc
/// has at most 100000 chords, the output 20 million points, as ten of which each feature and each
/// cell of a block counts. Linear in what is written, but for the nesting of rings in hatches.
GeoResult writeGeoJson(const CData& data, const GeoOptions& options,
                       const std::function<void(std::string_view)>& put);

}  // namespace vek0::host
