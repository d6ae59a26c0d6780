#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "vek0core/vek0core.h"
#include "vek0host/inputfault.h"
#include "vek0host/session.h"

namespace vek0::host {

using Drawing = CDataPtr;

/// Result of reading one file.
struct ReadResult {
  CFileDXFIResult outcome;  ///< result, version and encoding
  CFileDXFIError error;     ///< no error if the drawing is complete
  CFileReport report;       ///< what was skipped or repaired
  InputFault fault;         ///< why nothing was read
  bool onPaper = false;     ///< the sheets were requested instead of the model
  long onSheets = 0;        ///< number of entities on the sheets of layouts

  bool ok() const { return outcome.status == CFileDXFIResult::Done; }
  bool opened() const { return outcome.status != CFileDXFIResult::NotOpened; }
  /// Word for the fault or the error, "file missing" or "wrong structure"; empty on success.
  std::string kind() const;
  /// One sentence with the line, or an empty text on success.
  std::string message() const;
  /// Describes what is on sheets, or in the model if a sheet was requested instead of it: "3
  /// entities are on sheets, which render --layout shows", or an empty text.
  std::string elsewhere() const;
};

/// A new, empty drawing with a `CHandleManager`, which waits for `startHandles`.
Drawing newDrawing();

/// Takes a drawing that is done with, and frees it when the next one comes, or never: before a
/// process ends, freeing a million entities one by one is wasted time. For one thread. Frees at
/// once where one process works on several drawings, and in debug builds, which look for leaks.
void keepUntilExit(Drawing data);

/// Gives every entity a handle, now and when entities are added. `loadFile` calls it.
void startHandles(CData& data);

/// The file `path` ("-": standard input), closed, as `session.onRead` returns it.
std::unique_ptr<IFile> openForReading(const std::string& path, const Session& session);

/// Size of the file in bytes; 0 if unknown.
std::uintmax_t sizeOf(const std::string& path);

/// Reads `path` ("-": standard input) into an empty drawing according to the session. Tolerant
/// reading always keeps the names of fonts, strict reading only with `keepFontNames`.
ReadResult loadFile(CData& data, const std::string& path, const Session& session,
                    bool keepFontNames = false);

/// The same through the source of the drawing, whose file is that of `path`; with one entity for
/// each record (`CFileDXFIPolicy::wholeRecords`).
ReadResult loadFile(CData& data, CDXFSource& source, const std::string& path,
                    const Session& session);

/// Reads `path` like `loadFile` into a new drawing, and passes the entities of model space to
/// `onEntity` instead of keeping them (`CFileDXFIOptions::onPassing`), so that memory is bounded by
/// definitions, sheets and hatches. Pipes, failing files, and files whose definitions follow their
/// entities are loaded as usual: `onRestart` is called before, and `data` is another new drawing.
ReadResult passFile(Drawing& data, const std::string& path, const Session& session,
                    const std::function<void(CEnt& ent)>& onEntity,
                    const std::function<void()>& onRestart);

/// The session's options for reading drawings; without a report.
CFileDXFIOptions readingOptions(const Session& session);

/// Merges `path` into a drawing that has content, following a plan made for both; what the plan
/// lists is in the report.
ReadResult importFile(CData& data, const std::string& path, const CImportPlan& plan,
                      const Session& session);

}  // namespace vek0::host
