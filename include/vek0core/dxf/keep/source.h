#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "vek0core/dxf/in/filedxfioptions.h"
#include "vek0core/dxf/in/parse/loaddxf.h"
#include "vek0core/dxf/out/modern/saveoptions.h"
#include "vek0core/export.h"
#include "vek0core/files/file.h"

class CData;
class CFileDXFIError;
class CFileReport;

/// The file that a drawing was loaded from, so that the drawing can be saved as that file but for
/// what was edited since.
///
/// Whatever was not edited is copied byte for byte: unknown kinds and codes, extended data,
/// objects, comments, line ends, the form of numbers, the encoding, the order, damage. Edits are
/// found by comparison: saving reads the file once more and compares the drawings, so hosts may
/// change entities in any way. A drawing without edits, or whose edits were all undone, is saved as
/// a copy of the file.
///
/// Between loading and saving, it takes no memory that depends on the file. The file must stay as
/// it is until then.
class VEK0_API CDXFSource {
 public:
  /// `file` opens the source for reading, each time from its beginning; it must offer byte access.
  explicit CDXFSource(std::unique_ptr<IFile> file);
  CDXFSource(const CDXFSource&) = delete;
  CDXFSource& operator=(const CDXFSource&) = delete;
  ~CDXFSource();

  /// As `loadDXF` into an empty drawing that has a `CHandleManager`, which it starts. The options
  /// apply when the file is read again, too, apart from report and progress.
  CFileDXFIResult load(CData& data, CFileDXFIError* err, const CFileDXFIOptions& options);

  /// What became of saving.
  enum class Outcome {
    Saved,
    NotLoaded,   ///< `load` has failed, or the file offers no bytes
    Incomplete,  ///< `saveAs` cannot carry the records over
    Changed,     ///< the source is no longer what was loaded, or cannot be read
    NotWritten,  ///< `file` cannot be written, or memory ran out
  };

  /// What becomes of damage in the source that concerns no edit.
  enum class Damage {
    Kept,
    /// Undeclared layers, linetypes and styles are declared, unless only texts of kinds without a
    /// class name the style: they get the usual one. Repeated handles are replaced, objects given
    /// the owners that name them, pointers to nothing removed where the format allows it, and a cut
    /// file gets its end.
    Repaired,
  };

  /// Writes the drawing that was loaded to `file`, which must not be the source itself. `report`,
  /// which may be null, receives what became of edits that a record cannot express. Costs as much
  /// as copying the file if nothing was edited, otherwise three times as much as loading it, in
  /// time and memory. Unless it returns `Saved`, `file` may hold a part.
  Outcome save(const CData& data, IFile& file, CFileReport* report = nullptr,
               Damage damage = Damage::Kept) const;

  /// Whether `saveAs` can carry records over: whether the file is of AC1015 or later, has its end
  /// mark, the tables BLOCK_RECORD and LAYER, a root dictionary, blocks for its dimensions, layouts
  /// for its paper spaces, and a handle for every entity, table entry and object, none of them
  /// twice. Needs no `load`. Costs as much as indexing the file, in
  /// time and memory, or as reading its header if that states an older version.
  bool isComplete() const;

  /// As `save` with `Damage::Repaired`, in another version from AC1015 on: records are carried over
  /// as they are. What the version lacks is left out and reported. Texts are encoded as the version
  /// demands: in UTF-8 from AC1021 on, before that in the code page that the header states, or in
  /// another one if that has all letters, with escapes for all other characters. Binary files
  /// become text files. With the version that the file has, only edits and repairs change. Returns
  /// `Incomplete`, with nothing written, for R12 and if `isComplete` is false.
  Outcome saveAs(const CData& data, IFile& file, DxfVersion version,
                 CFileReport* report = nullptr) const;

 private:
  std::unique_ptr<IFile> m_file;
  CFileDXFIOptions m_options;
  bool m_isLoaded = false;
  std::string m_version, m_encoding;  // as loaded
  std::uint64_t m_size = 0;
  std::uint64_t m_bytesPrint = 0;    // of the file's content
  std::uint64_t m_drawingPrint = 0;  // of the drawing as loaded
};
