#pragma once

#include "support/test.h"

namespace vek0::test {

using Drawing = CDataPtr;

/// An empty drawing; the first call registers a default font, as hosts do.
Drawing newDrawing();

/// A drawing and the result of reading it.
struct LoadedFile {
  Drawing drawing;
  CFileDXFIError error;
};
LoadedFile load(const std::string& bytes, const CFileDXFIPolicy& policy = {});

/// The drawing as DXF; empty if saving fails.
std::string save(const CData& data, unsigned flags);

/// The whole file; fails the test if it cannot be read.
std::string readFile(const std::string& path);

/// Describes an inconsistency in a drawing, or returns an empty text: every entity has a layer and
/// a linetype of this drawing, use counts are those of a recount, extents are those of a
/// recalculation and finite, inserts refer to blocks of the table, no block contains itself.
std::string inconsistency(CData& data);

}  // namespace vek0::test
