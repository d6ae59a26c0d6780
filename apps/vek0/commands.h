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
  bool strict = false;         ///< an error ends the reading, and nothing is repaired
  bool paperSpace = false;     ///< the sheets instead of the model
  bool hatchOutlines = false;  ///< patterned hatches as their boundaries
  int codePage = 0;            ///< of texts whatever the file says; 0: as it says
};

/// What every command shares. One run of the tool has one.
struct Session {
  bool quiet = false;
  bool readsTwice = false;  ///< so what a pipe gives has to be kept in memory
  ReadOptions reading;
  int exitCode = kAllWell;

  /// Keeps the worst code seen.
  void failed(ExitCode code) {
    if (code > exitCode) exitCode = code;
  }

  /// Prints "vek0: <message>" to the error stream, a line whatever the message holds. `details`
  /// are whole lines below it, made of texts that are `visible`.
  static void complain(const std::string& message, const std::string& details = "");
};

/// Runs the tool and returns its exit code. `arguments` do not have the program's name; they are
/// UTF-8, or whatever bytes names of the platform have.
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
