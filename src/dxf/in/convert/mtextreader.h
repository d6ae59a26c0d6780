#pragma once

#include <string>
#include <vector>

#include "dxf/in/convert/mtextlayout.h"
#include "dxf/in/recordreader.h"
#include "vek0core/tables/handle.h"

namespace vek0::detail {

/// A formatted text as read from a record.
struct MTextRecord {
  /// Limits per record; the rest is dropped and reported.
  static constexpr std::size_t kMostRuns = 10'000, kMostUnits = std::size_t{256} * 1024;

  std::u16string text;  ///< with its codes
  MTextBox box;
  CStyle* style = nullptr;
  PNT_3D at;                        ///< insertion point in the world
  PNT_3D normal = PNT_3D(0, 0, 1);  ///< of its plane
  PNT_3D direction;  ///< of the lines in world coordinates; zero: X axis of the plane

  /// Appends the current pair, a chunk of a long text.
  void take(const CFileDXFILexer& lexer);
};

/// Appends a text entity for every run, in world coordinates and with the properties of the current
/// record. `handle` is for the first entity.
void buildMText(RecordReader& in, const MTextRecord& record, vek0::Handle handle,
                std::vector<EntPtr>& built);

// One reader per kind. Each starts at the group 0 of its record; the results are in world
// coordinates.
EntPtr readMText(RecordReader& in);
EntPtr readTolerance(RecordReader& in);
EntPtr readMultileader(RecordReader& in);
EntPtr readDimension(RecordReader& in);
EntPtr readTable(RecordReader& in);

}  // namespace vek0::detail
