#pragma once

#include <functional>
#include <vector>

#include "vek0core/dxfin/loaddxf.h"
#include "vek0core/export.h"
#include "zim0lang/wstring.h"

class CBlock;
class CBlockXRef;
class CData;
class CFileReport;
class CUndoStack;
class IXRefResolver;
class PNT_3D;

/// External references nested deeper than this are left out.
constexpr int kMaxXRefDepth = 100;

/// How references are resolved. The report is borrowed, may be null, and receives these
/// codes; the sample is "name: path".
///
///   reference missing    the file is not there
///   reference forbidden  the file lies where the host allows none
///   reference no file    the path names a folder or a device
///   reference broken     the file is no drawing, or a broken one
///   reference changing   the file was written while it was read
///   reference circular   a drawing refers to itself, directly or through others
///   reference too deep   more than `kMaxXRefDepth` drawings refer to one another
///   reference repeated   names lead to one file so often that memory would end
///   reference overlaid   an overlay of a referred drawing, which only that drawing shows
///   reference renamed    others refer to two drawings, or two points of one, by one name
struct CXRefOptions {
  /// How the drawings are read; its report is not used.
  CFileDXFIOptions reading = {};
  /// The drawing's own file, as the resolver names it: what paths start from, and what no
  /// reference may lead back to. Empty for a drawing without a file.
  zim::WString drawing = {};
  CFileReport* report = nullptr;
  /// Told of every drawing that was read, with what its reading repaired or lost.
  std::function<void(const CBlockXRef&, const CFileDXFIResult&, const CFileReport&)> onRead = {};
};

/// Reads what the drawing's references refer to, and what that refers to in turn, anew.
///
/// Nested references become references of the drawing: one for each file and base point that
/// go by one name, renamed where several do. A circle is broken where it would close, and what is
/// nested too deep is left out. What cannot be read stays a reference that shows nothing, with its
/// path and inserts; its status says why.
///
/// Entities follow the file. So do dependent layers, but for the color and the visibility
/// that the drawing has given them since; items that the file has no more go unless the
/// drawing uses them. Steps of an undo stack stay valid: this is no edit, and is not undone.
///
/// All drawings together may have ten times as many lines of hatches as one hatch may have
/// (`CData::getHatchLimit`); hatches beyond keep their boundaries.
///
/// Answers how many references are not loaded afterwards. Linear in what is read. Throws
/// `std::bad_alloc` with nothing changed.
VEK0_API int resolveXRefs(CData& data, IXRefResolver& resolver, const CXRefOptions& options);

/// The same for one reference of the drawing and what it refers to; answers whether it is
/// loaded. False for one that is not in the drawing.
VEK0_API bool resolveXRef(CData& data, CBlockXRef& xref, IXRefResolver& resolver,
                          const CXRefOptions& options);

/// Adds a reference, unresolved and not inserted anywhere yet. Point `base` of the referred
/// drawing comes to lie on the insertion points; at the origin, the base point that the
/// drawing itself states does. An overlay is not shown by drawings that refer to this one.
///
/// Null, with nothing changed, where the name is empty, begins with an asterisk, has a bar in it
/// or is the name of a block or reference already, and when memory ends.
VEK0_API CBlockXRef* attachXRef(CData& data, CUndoStack& undo, const zim::WString& name,
                                const zim::WString& path, const PNT_3D& base, bool overlay);

/// Removes a reference with its inserts, the references that only it showed, and the
/// dependent items of both: what the drawing has on them goes to layer "0", Continuous or
/// STANDARD. One step. False, with nothing changed, when another reference shows it; also
/// when memory ends, and if the step was open before, what was done until then stays in it.
VEK0_API bool detachXRef(CData& data, CUndoStack& undo, CBlockXRef& xref);
/// Several at once, which takes no longer than one; all or none. They may show each other.
VEK0_API bool detachXRefs(CData& data, CUndoStack& undo, const std::vector<CBlockXRef*>& xrefs);

/// Makes what a loaded reference shows the drawing's own: a block of the reference's name
/// in its place, and its items as "xref$0$item", the 0 counted up where a name is taken. What
/// nested references show becomes blocks likewise, "xref$0$nested"; those that are not
/// loaded stay references, and relative paths of theirs gain the folder of the path of the
/// one that showed them. What the drawing has on dependent items follows. One step; the
/// reference is out of the drawing then, and references that only it showed are.
///
/// Null, with nothing changed, when it is not loaded or another reference shows it; also
/// when memory ends, as for `detachXRef`.
VEK0_API CBlock* bindXRef(CData& data, CUndoStack& undo, CBlockXRef& xref);
/// Several at once, likewise; each becomes a block of its own name.
VEK0_API bool bindXRefs(CData& data, CUndoStack& undo, const std::vector<CBlockXRef*>& xrefs);

/// Gives a reference another path. What it shows stays until it is resolved again.
VEK0_API bool setXRefPath(CUndoStack& undo, CBlockXRef& xref, const zim::WString& path);
