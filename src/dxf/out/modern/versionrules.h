#pragma once

#include "vek0core/dxf/out/modern/saveoptions.h"

namespace vek0::detail {

/// How a version differs from the others that one writer writes.
struct VersionRules {
  const char* name;             ///< value of $ACADVER
  bool utf8 = false;            ///< texts are UTF-8 instead of windows-1252
  bool trueColors = false;      ///< 420
  bool transparency = false;    ///< 440, and that of layers
  bool classCounts = false;     ///< 91 of CLASS
  bool shadePlots = false;      ///< 76 to 78 of plot settings
  bool blockUnits = false;      ///< 70, 280 and 281 of BLOCK_RECORD
  bool attribVersions = false;  ///< 280 of ATTRIB and ATTDEF
};

/// Null for R12.
const VersionRules* rulesOf(DxfVersion version);

}  // namespace vek0::detail
