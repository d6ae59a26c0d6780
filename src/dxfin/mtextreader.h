#pragma once

#include <string>
#include <vector>

#include "dxfin/mtextlayout.h"
#include "dxfin/recordreader.h"
#include "vek0core/tables/handle.h"

namespace vek0::detail {

/// A formatted text on its way from a record into the drawing.
struct MTextRecord {
  /// What one record may become: more is left out and reported.
  static constexpr std::size_t kMostRuns = 10'000, kMostUnits = 256 * 1024;

  std::u16string text;  ///< with its codes
  MTextBox box;
  CStyle* style = nullptr;
  PNT_3D at;                        ///< insertion point in the world
  PNT_3D normal = PNT_3D(0, 0, 1);  ///< of the plane that it lies in
  PNT_3D direction;  ///< of the lines in the world; without length: X axis of the plane

  /// Appends to the text what a pair of a long text holds.
  void take(const CFileDXFILexer& lexer);
};

/// Appends a text entity for every run, in the world and in the look of the current record.
/// `handle` is for the first entity.
void buildMText(RecordReader& in, const MTextRecord& record, vek0::Handle handle,
                std::vector<EntPtr>& built);

// One reader a kind. Each starts on the group 0 of its record; what they give stands in the
// world.
EntPtr readMText(RecordReader& in);
EntPtr readTolerance(RecordReader& in);
EntPtr readMultileader(RecordReader& in);
EntPtr readDimension(RecordReader& in);
EntPtr readTable(RecordReader& in);

}  // namespace vek0::detail
