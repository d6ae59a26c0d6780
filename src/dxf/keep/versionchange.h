#pragma once

#include <string>

#include "vek0core/dxf/out/modern/saveoptions.h"

class CFileReport;

namespace vek0::detail {

class SourceIndex;

/// Whether a file has what every version from AC1015 on requires, so that its records can be
/// carried over to another one: its end mark, the tables BLOCK_RECORD and LAYER, the block of the
/// model, a root dictionary, the plot style that every file has, blocks for its dimensions, layouts
/// for its further paper spaces, and a handle for every entity, table entry and object, none of
/// them twice. Linear.
bool isComplete(const SourceIndex& index);

/// Whether the header of `bytes` states AC1015 or a later version. Reads the header only.
bool isFromAC1015(const std::string& bytes);

/// Changes `bytes`, a file of AC1015 or later with texts in `codePage`, to another of these
/// versions: `$ACADVER`, the encoding, and the pairs, variables and records that the version lacks,
/// which are reported; `report` may be null. Other pairs, comments and the order stay. Files in
/// binary form and UTF-16 become plain ones. False, with nothing changed, if the file is not
/// complete. Linear; takes as much memory as the file and throws `std::bad_alloc`.
bool changeVersion(std::string& bytes, int codePage, DxfVersion version, CFileReport* report);

}  // namespace vek0::detail
