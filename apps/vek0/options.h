#pragma once

#include <optional>
#include <string>

#include "commands.h"
#include "vek0host/references.h"
#include "vek0host/saving.h"
#include "vek0paint/picture.h"

namespace vek0::tool {

/// Adds the reading options shared by all commands.
void addReadOptions(CLI::App& app, ReadOptions& options);

/// What becomes of the lists of losses.
struct ReportOptions {
  std::string path;    ///< file for them; "-": standard output; empty: none
  std::string failOn;  ///< the severity from which on a drawing has failed; empty: none
  bool dryRun = false;
};

/// Adds these options, which all commands share.
void addReportOptions(CLI::App& app, ReportOptions& options);

/// Throws `CLI::ValidationError` if the report cannot be written where the options say, or the
/// parsed verb needs that file or stream itself.
void checkReport(const ReportOptions& options, const CLI::App& verb);

/// Writes the lists of the session, and fails if they say so.
void finishReport(const ReportOptions& options, const std::string& verb, Session& session);

/// Adds the options of commands that write a drawing.
void addSaveOptions(CLI::App& verb, SaveOptions& options);

/// Adds `--to` to a command that edits a drawing, which keeps the form of its file by default,
/// under another name if `--to` means something else.
void addTargetOption(CLI::App& verb, SaveOptions& options, const char* name = "--to");

/// Adds the options of commands that read external references.
void addReferenceOptions(CLI::App& verb, ReferenceOptions& options);

/// The format of a picture by its file name, or by its own name; nothing, after failing, if this
/// build writes no such pictures.
std::optional<paint::Format> pictureFormat(const std::string& name, Session& session);

}  // namespace vek0::tool
