#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "commands.h"
#include "inputfault.h"
#include "vek0core/vek0core.h"

namespace vek0::tool {

using Drawing = CDataPtr;

/// What reading one file gave.
struct ReadResult {
  CFileDXFIResult outcome;  ///< how it ended, version and encoding
  CFileDXFIError error;     ///< without error when the drawing is whole
  CFileReport report;       ///< what was skipped or repaired on the way
  InputFault fault;         ///< why nothing was read
  bool onPaper = false;     ///< the sheets were asked for instead of the model

  bool ok() const { return outcome.status == CFileDXFIResult::Done; }
  bool opened() const { return outcome.status != CFileDXFIResult::NotOpened; }
  /// Word for the fault or the error, "file missing" or "wrong structure"; empty when all is
  /// well.
  std::string kind() const;
  /// One sentence with the line, or an empty text when all is well.
  std::string message() const;
  /// What was passed over because it stands on a sheet, or in the model if a sheet was asked
  /// for: "3 entities are on a sheet, which --paper-space shows", or an empty text.
  std::string elsewhere() const;
};

/// A new, empty drawing.
Drawing newDrawing();

/// The file `path` ("-": standard input), closed, with a progress bar for people unless
/// the session is quiet.
std::unique_ptr<IFile> openForReading(const std::string& path, const Session& session);

/// The bytes of the file; 0 when that cannot be told.
std::uintmax_t sizeOf(const std::string& path);

/// Reads `path` ("-": standard input) into an empty drawing as the session says, with a
/// progress bar for people unless it is quiet. Tolerant reading keeps the names of fonts
/// anyway, strict reading with `keepFontNames`.
ReadResult loadFile(CData& data, const std::string& path, const Session& session,
                    bool keepFontNames = false);

/// How the session wants drawings to be read; without a report.
CFileDXFIOptions readingOptions(const Session& session);

/// Merges `path` into a drawing that has content.
ReadResult importFile(CData& data, const std::string& path, const Session& session);

/// Adds the options of reading, which every command shares.
void addReadOptions(CLI::App& app, ReadOptions& options);

}  // namespace vek0::tool
