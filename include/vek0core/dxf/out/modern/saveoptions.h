#pragma once

#include "vek0core/dxf/out/savedxf.h"
#include "vek0core/export.h"

/// The versions of DXF that can be written, by the year of their first release: AC1009 (R12),
/// AC1015, AC1018, AC1021, AC1024, AC1027 and AC1032.
enum class DxfVersion : unsigned char { R12, R2000, R2004, R2007, R2010, R2013, R2018 };

/// Number of values.
inline constexpr unsigned char kDxfVersions = static_cast<unsigned char>(DxfVersion::R2018) + 1;

/// The value of `$ACADVER`, such as "AC1015".
VEK0_API const char* nameOf(DxfVersion version);

/// Options for writing a file.
struct CFileDXFOOptions {
  DxfVersion version = DxfVersion::R12;
  /// The constants of savedxf.h. Only R12 has all of them: later versions always write exact
  /// numbers and unique names, and accept only `kSaveExchange`, `kSaveKeepNames`, which change
  /// nothing, and `kSaveSelectedOnly`, which leaves out the layouts.
  unsigned flags = kSaveExchange;
  /// Borrowed, may be null; receives each difference between the file and the drawing.
  CFileReport* report = nullptr;
  /// Threads that saving may use, as for `SaveDXF`.
  int threads = 0;
};

/// Writes the drawing in the version that `options` name: opens `file`, writes it and closes it.
/// R12 as by the functions of savedxf.h.
///
/// Later versions hold nearly everything that a drawing does, in its native form: light polylines,
/// hatches, infinite lines, clipped inserts, all layouts, true colors, lineweights, transparency
/// (from R2004 on, as true colors), linetypes with texts, invisible entities, and names of up to
/// 255 characters. Names with characters that the format forbids are changed and reported. Texts
/// are UTF-8 from R2007 on, before that as in R12. Blocks have the base point 0, because their
/// entities are relative to it. Entities keep their handles as in R12; table entries, objects and
/// vertices of light polylines have none in a drawing. A drawing without layouts gets the empty one
/// that every file has.
///
/// False, with nothing written, if the version is none of the enumeration or lacks one of `flags`;
/// otherwise false in the cases of the functions in savedxf.h. Linear in the drawing; additional
/// memory is 8 bytes per handle, the names, 200 KiB and, with two threads, 4 MiB.
VEK0_API bool SaveDXF(const CData& data, IFile& file, const CFileDXFOOptions& options);
