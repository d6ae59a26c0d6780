#pragma once

#include <memory>
#include <string>

#include "vek0core/vek0core.h"

namespace vek0::bench {

using Drawing = CDataPtr;

/// An empty drawing; a default font is registered once.
Drawing newDrawing();

/// Text of an R12 drawing with `count` lines over 50 layers, half of the coordinates on a 0.5 grid
/// and half with 16 digits, like a mix of drafted and computed geometry.
std::string lineText(int count);

/// The same with circles, arcs, texts, bulged polylines and inserts of 200 blocks.
std::string mixedText(int count);

/// `count` / 3 chains of three nested blocks, every chain inserted once, like a parts catalogue.
std::string blockText(int count);

/// `count` layers, each used by one line, as in wiring catalogues and map exports.
std::string layerText(int count);

/// `count` hatches in the format of 2000, squares of about twenty lines each, as in land use maps.
std::string hatchText(int count);

/// Loads `text` into a new drawing; null on failure.
Drawing load(const std::string& text);

}  // namespace vek0::bench
