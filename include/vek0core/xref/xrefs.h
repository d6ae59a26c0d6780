#pragma once

#include <functional>
#include <vector>

#include "vek0core/dxf/in/parse/loaddxf.h"
#include "vek0core/export.h"
#include "zim0lang/wstring.h"

class CBlock;
class CBlockXRef;
class CData;
class CFileReport;
class CUndoStack;
class IXRefResolver;
class PNT_3D;

/// External references nested deeper than this are skipped.
constexpr int kMaxXRefDepth = 100;

/// How references are resolved. The report is borrowed, may be null, and receives the codes of
/// references (see `ReportCode`); the sample is "name: path".
struct CXRefOptions {
  /// How the drawings are read; its report is not used.
  CFileDXFIOptions reading = {};
  /// The drawing's own file, as named by the resolver: the base for paths, and the file that no
  /// reference may lead back to. Empty for a drawing without a file.
  zim::WString drawing = {};
  CFileReport* report = nullptr;
  /// Called for every drawing that was read, with what reading it repaired or lost.
  std::function<void(const CBlockXRef&, const CFileDXFIResult&, const CFileReport&)> onRead = {};
};

/// Reloads the drawings that the references refer to, directly and through nested references.
///
/// Nested references become references of the drawing: one per name, file and base point, renamed
/// where names collide. A cycle is broken where it would close, and references nested too deeply
/// are skipped. A reference that cannot be read remains, with its path and inserts, but shows
/// nothing; its status states why.
///
/// Entities are updated from the file. So are dependent layers, except for color and visibility
/// that the drawing has changed since; items no longer in the file are removed unless the drawing
/// uses them. Steps of an undo stack remain valid: this is not an edit and cannot be undone.
///
/// Hatches keep only their boundaries beyond 5 * `CData::getHatchLimit` lines of all files, and
/// beyond 0.3 * `CData::getHatchLimit` of files that are read again by other names.
///
/// Returns the number of references that are not loaded afterwards. Linear in the data read. Throws
/// `std::bad_alloc` with nothing changed.
VEK0_API int resolveXRefs(CData& data, IXRefResolver& resolver, const CXRefOptions& options);

/// The same for one reference and everything it refers to; returns whether it is loaded. False for
/// a reference that is not in the drawing.
VEK0_API bool resolveXRef(CData& data, CBlockXRef& xref, IXRefResolver& resolver,
                          const CXRefOptions& options);

/// Adds a reference, unresolved and not yet inserted anywhere. Point `base` of the referenced
/// drawing is placed at the insertion points; if `base` is the origin, the base point stated in the
/// drawing itself is used. An overlay is not shown by drawings that refer to this one.
///
/// Returns null, with nothing changed, if the name is empty, begins with an asterisk, contains a
/// vertical bar or already names a block or reference, or if memory runs out.
VEK0_API CBlockXRef* attachXRef(CData& data, CUndoStack& undo, const zim::WString& name,
                                const zim::WString& path, const PNT_3D& base, bool overlay);

/// Removes a reference with its inserts, the references that only it showed, and the dependent
/// items of both: entities of the drawing that use those are moved to layer "0", Continuous or
/// STANDARD. One undo step. Returns false, with nothing changed, if another reference shows it;
/// also if memory runs out, but then changes already made remain in the step if it was open before.
VEK0_API bool detachXRef(CData& data, CUndoStack& undo, CBlockXRef& xref);
/// Detaches several at once, at the cost of one; all or none. They may show each other.
VEK0_API bool detachXRefs(CData& data, CUndoStack& undo, const std::vector<CBlockXRef*>& xrefs);

/// Makes the content of a loaded reference part of the drawing: a block with the reference's name
/// replaces it, and its items become "xref$0$item", with the 0 incremented where a name is taken.
/// Nested references become blocks likewise, "xref$0$nested"; those that are not loaded remain
/// references, and their relative paths are prefixed with the folder of the path of the reference
/// that showed them. Entities of the drawing on dependent items follow. One undo step; it removes
/// the reference, and the references that only it showed, from the drawing.
///
/// Returns null, with nothing changed, if it is not loaded or another reference shows it; also if
/// memory runs out, as for `detachXRef`.
VEK0_API CBlock* bindXRef(CData& data, CUndoStack& undo, CBlockXRef& xref);
/// Binds several at once; each becomes a block with its own name.
VEK0_API bool bindXRefs(CData& data, CUndoStack& undo, const std::vector<CBlockXRef*>& xrefs);

/// Changes the path of a reference. Its content remains until it is resolved again.
VEK0_API bool setXRefPath(CUndoStack& undo, CBlockXRef& xref, const zim::WString& path);
