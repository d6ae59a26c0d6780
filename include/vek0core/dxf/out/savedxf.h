#pragma once

#include "vek0core/export.h"

class CData;
class CFileReport;
class IFile;

/// Sets Z = 0 for every point of an entity; elevations stored as plain numbers, radii and widths
/// are unchanged.
inline constexpr unsigned kSaveFlatten = 1;
/// Omits the model-space entities on frozen (layer flag 1) or off (128) layers.
inline constexpr unsigned kSaveVisibleOnly = 2;
/// Writes the selected entities of model space instead of all of them.
inline constexpr unsigned kSaveSelectedOnly = 4;
/// Writes neither HEADER nor TABLES.
inline constexpr unsigned kSaveNoTables = 8;
/// The exchange form, for other programs: every name unique after conversion (ignoring case), an
/// LTYPE count (73) of exactly the dashes that follow and its flags (70) masked to 7 bits, real
/// numbers as the shortest decimals that read back exactly, `$CECOLOR` and `$HANDSEED` in the
/// header, a layer on every ENDBLK, bulges (42) for the arcs of polylines instead of their chords,
/// and SOLID or TRACE for filled faces. Without it the output has the classic form: six decimals,
/// chords, outlines, and names that may coincide once converted.
inline constexpr unsigned kSaveExchange = 16;
/// With the exchange form: names keep characters and lengths that R12 does not allow. Many programs
/// read them.
inline constexpr unsigned kSaveKeepNames = 32;

/// Writes the drawing as a DXF file of version "AC1009" (sections HEADER, TABLES, BLOCKS,
/// ENTITIES): opens `file`, writes it and closes it. `flags` is any combination of the constants
/// above.
///
/// The text is in code page 1252, with `\U+XXXX` for other characters and `^J` and the like for
/// control characters; lines end in LF. Every handle written is non-zero and unique: objects
/// without a handle, or with one already written, get a free number in the file. The drawing is not
/// changed.
///
/// False if the file cannot be opened, a write fails, memory runs out or blocks insert each other
/// in a cycle; the file then keeps what was written and is closed. Linear in the drawing;
/// additional memory is 8 bytes per handle, the converted names and 64 KiB, with two threads 4 MiB.
VEK0_API bool SaveDXF(const CData& data, IFile& file, unsigned flags);

/// As above; also adds to `report` (may be null) each difference between the file and the drawing
/// (see `ReportCode`). Saving may use that many `threads`; 0 for as many as help. Two save large
/// drawings faster than one, more do not; the bytes are the same. `IFile` is called by the calling
/// thread alone.
VEK0_API bool SaveDXF(const CData& data, IFile& file, unsigned flags, CFileReport* report,
                      int threads = 0);
