#pragma once

#include "vek0core/export.h"

class CData;
class CFileReport;
class IFile;

/// Every point of an entity gets Z = 0; elevations that are plain numbers, radii
/// and widths stay.
inline constexpr unsigned kSaveFlatten = 1;
/// Leaves out the model-space entities on frozen (layer flag 1) or off (128) layers.
inline constexpr unsigned kSaveVisibleOnly = 2;
/// Writes the selected entities of model space instead of all of them.
inline constexpr unsigned kSaveSelectedOnly = 4;
/// Writes neither HEADER nor TABLES.
inline constexpr unsigned kSaveNoTables = 8;
/// The form for other programs: every name unique after conversion (ignoring case), an LTYPE count
/// (73) of exactly the dashes that follow and its flags (70) cut to 7 bits, real numbers as the
/// shortest decimals that read back exactly, `$CECOLOR` and `$HANDSEED` in the header, a layer on
/// every ENDBLK, bulges (42) for the arcs of polylines instead of their chords, and SOLID or TRACE
/// for filled faces. Without it the output has the classic form: six decimals, chords, outlines,
/// and names that may coincide once converted.
inline constexpr unsigned kSaveExchange = 16;

/// Writes the drawing as a DXF file of version "AC1009" (sections HEADER, TABLES,
/// BLOCKS, ENTITIES): opens `file`, writes, closes it. `flags` is any sum of the
/// constants above.
///
/// The text is code page 1252 with `\U+XXXX` for other characters and `^J` and the
/// like for control characters; lines end in LF. Every handle written is non-zero
/// and unique: things that have none, or one that an earlier thing has, get a free
/// number in the file. The drawing is not changed.
///
/// False when the file cannot be opened, a write fails, memory runs out or blocks
/// insert each other in a circle; what was written until then stays in the file,
/// which is closed. Linear in the drawing; memory beside it is 8 bytes a handle, the
/// converted names and 64 KiB.
VEK0_API bool SaveDXF(const CData& data, IFile& file, unsigned flags);

/// The same, and adds to `report` (may be null) what the file does not hold as the
/// drawing does:
///
///   name changed          a name made valid for the format, or unique: "old -> new"
///   names coincide        two items of a table that became one (classic form only)
///   name not dependent    an item flagged as part of an external reference, but not
///                         named so, lost the flag
///   entity not finite     an entity with a number that is NaN or infinite is missing
///   number not finite     such a number of a variable or a table item was replaced
///   color out of range    a color that the format does not have was replaced
///   insert without block  an insert whose block the drawing does not have is missing
///   fill as outline       a filled face became one that shows its visible edges: in the
///                         classic form, or with corners that are not in one plane
///   endless line cut      a ray or endless line became a line as long as the extents of the
///                         drawing or block, grown a little
///   clip lost             a clipped insert shows all of its block
///   fixed insert          an insert of fixed pixel size became an ordinary one
///   linetype text dropped what a linetype shows beside its dashes is missing
///   lineweight dropped    the width of a layer's lines
///   text cut              a text ends at the longest line that readers take
///   blocks in a circle    blocks insert each other, which is why saving failed
VEK0_API bool SaveDXF(const CData& data, IFile& file, unsigned flags, CFileReport* report);
