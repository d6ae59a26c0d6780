#pragma once

#include <string>

#include "vek0core/dxf/in/filedxfioptions.h"
#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/tables/handle.h"
#include "zim0lang/wstring.h"

class CData;
class CFileDXFIError;
class CImportPlan;
class IFile;

/// Reads `file` into `data`, which should be new and empty; otherwise the file's definitions
/// replace those of equal names.
///
/// The outcome is stored in `err`, unless it is null. After an error the drawing holds everything
/// read until then, in a consistent state. Failure to open the file records no error: check
/// `file.fail()`. Handles are kept. Linear in the file.
///
/// Running out of memory is error 1, and a drawing that was new is reset to that state.
VEK0_API void loadDXF(CData& data, IFile& file, CFileDXFIError* err);

/// Adds the content of `file` to `data`, whose definitions win where names are equal; anonymous
/// blocks are renamed. Otherwise as `loadDXF`.
VEK0_API void importDXF(CData& data, IFile& file, CFileDXFIError* err);

/// The result of reading a file, and its metadata.
struct CFileDXFIResult {
  enum Status { Done, NotOpened, Failed, Cancelled };
  Status status = NotOpened;
  zim::WString version;           ///< `$ACADVER` as written, empty if missing
  std::string encoding;           ///< encoding used, such as "utf-8" or "windows-1252"
  long units = 0;                 ///< `$INSUNITS`: 0 not stated, 1 inches, 4 mm, 5 cm, 6 m, ...
  long measurement = -1;          ///< `$MEASUREMENT`: 0 imperial, 1 metric; -1 not stated
  PNT_3D insertionBase{0, 0, 0};  ///< `$INSBASE`: point to insert the drawing by
  vek0::Handle handleSeed = 0;    ///< `$HANDSEED`: above all handles of the file; 0 not stated
  /// Definitions follow entities that `CFileDXFIOptions::onPassing` has seen, and may change them:
  /// what it learned is void, and the status is `Cancelled`.
  bool isOutdated = false;
};

/// The same with options: report and policy.
VEK0_API CFileDXFIResult loadDXF(CData& data, IFile& file, CFileDXFIError* err,
                                 const CFileDXFIOptions& options);
VEK0_API CFileDXFIResult importDXF(CData& data, IFile& file, CFileDXFIError* err,
                                   const CFileDXFIOptions& options);
/// The same following a plan that was made for the drawing and this file. The report does not
/// repeat what the plan lists.
VEK0_API CFileDXFIResult importDXF(CData& data, IFile& file, CFileDXFIError* err,
                                   const CFileDXFIOptions& options, const CImportPlan& plan);
