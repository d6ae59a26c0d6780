#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace vek0::tool {

/// Exit codes, worst last: with several files the worst one wins.
enum ExitCode {
  kAllWell = 0,
  kDrawingFailed = 1,
  kWrongUsage = 2,
  kOutputFailed = 3,
};

/// How drawings are read.
struct ReadOptions {
  bool strict = false;         ///< stop at the first error and repair nothing
  bool paperSpace = false;     ///< read the sheets instead of the model
  bool hatchOutlines = false;  ///< convert patterned hatches to their boundaries
  int codePage = 0;            ///< overrides the file's code page; 0: as stated by the file
};

/// State shared by all commands of one run of the tool.
struct Session {
  bool quiet = false;
  bool readsTwice = false;  ///< so the content of a pipe must be kept in memory
  ReadOptions reading;
  int exitCode = kAllWell;

  /// Keeps the worst code seen.
  void failed(ExitCode code) {
    if (code > exitCode) exitCode = code;
  }

  /// Prints "vek0: <message>" to the error stream, on one line whatever the message contains.
  /// `details` are complete lines below it, already escaped by `visible`.
  static void complain(const std::string& message, const std::string& details = "");
};

/// Runs the tool and returns its exit code. `arguments` exclude the program's name; they are UTF-8,
/// or arbitrary bytes in the platform's file names.
int runTool(const std::vector<std::string>& arguments);

/// Each adds one verb with its options and help; `session` must outlive `app`.
void addInfoCommand(CLI::App& app, Session& session);
void addCheckCommand(CLI::App& app, Session& session);
void addConvertCommand(CLI::App& app, Session& session);
void addImportCommand(CLI::App& app, Session& session);
void addEditCommand(CLI::App& app, Session& session);
void addHatchCommand(CLI::App& app, Session& session);
void addHatchesCommand(CLI::App& app, Session& session);
void addLinetypesCommand(CLI::App& app, Session& session);
void addRenderCommand(CLI::App& app, Session& session);
void addXrefsCommand(CLI::App& app, Session& session);

}  // namespace vek0::tool
