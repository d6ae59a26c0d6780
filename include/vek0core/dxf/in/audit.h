#pragma once

#include "vek0core/export.h"
#include "vek0core/files/textcodec.h"

class CFileReport;
class IFile;

/// Lists what contradicts itself within a DXF file, whether or not reading it depends on that:
///
/// - `HandleRepeated`: several objects have this handle, in hexadecimal digits;
/// - `OwnerMissing`: objects of this kind have no owner, or one that is not in the file;
/// - `PointerDangling`: a pointer, as "330 1F", to an object that is not in the file;
/// - `NameUndeclared`: a name, as "LAYER WALLS", that no table or block declares: layers and
///   linetypes of entities, linetypes of layers, styles of texts and dimensions, inserted blocks,
///   applications of extended data.
///
/// Opens, reads and closes the file; binary files too. `codePage` overrides the code page that the
/// file states. Returns false if it cannot be opened.
/// Handles and owners are checked only if the file has handles, owners from AC1015 on. Linear;
/// memory is about 24 bytes per object. Throws `std::bad_alloc`.
VEK0_API bool auditDXF(IFile& file, CFileReport& report, int codePage = kCodePageAuto);
