#pragma once

#include <string_view>

#include "vek0core/drawing/functions.h"
#include "vek0core/dxf/in/filedxfierror.h"
#include "vek0core/dxf/in/filedxfioptions.h"
#include "vek0core/dxf/in/parse/loaddxf.h"
#include "vek0core/dxf/out/modern/saveoptions.h"
#include "vek0core/dxf/out/savedxf.h"
#include "vek0core/export.h"
#include "vek0core/files/report.h"
#include "zim0lang/wstring.h"

/// A drawing read from a file, and what there is to say about it.
struct VEK0_API COpenedDrawing {
  CDataPtr drawing;         ///< null if the file could not be read to its end
  CFileDXFIResult details;  ///< version, encoding, units
  CFileDXFIError error;     ///< why it could not be read
  CFileReport report;       ///< what was repaired, changed or lost while it was read

  explicit operator bool() const { return drawing != nullptr; }
  /// Why there is no drawing, in one sentence; empty if there is one.
  zim::WString message() const;
};

/// Reads a drawing from the file `path`, by default tolerantly: damaged records are skipped and
/// reported. The drawing can be trusted to be all that the file says, apart from what the report
/// lists; hosts that want the part before an error call `loadDXF` themselves.
///
/// Adds the plain default font if the host has no font. Linear in the file.
VEK0_API COpenedDrawing openDrawing(const zim::WString& path,
                                    const CFileDXFIPolicy& policy = CFileDXFIPolicy::forAnyFile());
/// The same for a path in the platform's bytes, as in `argv`.
VEK0_API COpenedDrawing openDrawing(std::string_view path,
                                    const CFileDXFIPolicy& policy = CFileDXFIPolicy::forAnyFile());

/// Writes a drawing to the file `path` as `SaveDXF` does with these options. An existing file is
/// replaced only once the new one is complete: false, if anything fails, leaves it as it was. Links
/// and permissions stay; devices and pipes are written directly. Throws `std::bad_alloc` as
/// `openDrawing` does, with the file as it was.
VEK0_API bool saveDrawing(const CData& data, const zim::WString& path,
                          const CFileDXFOOptions& options);
/// The same for a path in the platform's bytes.
VEK0_API bool saveDrawing(const CData& data, std::string_view path,
                          const CFileDXFOOptions& options);
/// The same in R12; `report` may be null.
VEK0_API bool saveDrawing(const CData& data, const zim::WString& path,
                          unsigned flags = kSaveExchange, CFileReport* report = nullptr);
/// The same for a path in the platform's bytes.
VEK0_API bool saveDrawing(const CData& data, std::string_view path, unsigned flags = kSaveExchange,
                          CFileReport* report = nullptr);
