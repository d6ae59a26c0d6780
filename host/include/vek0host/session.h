#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "vek0core/files/file.h"

namespace vek0::host {

class LossLog;

/// What a program may fail at, worst last. The tool exits with these numbers.
enum Failure {
  kNoFailure = 0,
  kDrawingFailed = 1,
  kWrongUsage = 2,
  kOutputFailed = 3,
};

/// How drawings are read.
struct ReadOptions {
  bool strict = false;         ///< stop at the first error and repair nothing
  bool paperSpace = false;     ///< read the sheets instead of the model
  bool hatchOutlines = false;  ///< convert patterned hatches to their boundaries
  bool wholeRecords = false;   ///< one entity for each record, unless strict
  int codePage = 0;            ///< overrides the file's code page; 0: as stated by the file
};

/// State shared by all operations that one user requested: how to read, whom to notify, and the
/// worst failure.
struct Session {
  bool quiet = false;        ///< report errors, but no warnings and no results
  bool keepsSource = false;  ///< drawings are saved as the files that they come from
  bool readsTwice = false;   ///< the content of a pipe must be kept in memory
  ReadOptions reading;
  Failure worst = kNoFailure;
  /// Set by verbs whose exit code answers a question: 0 or 1. Any failure is then `kWrongUsage`.
  std::optional<int> answer;
  LossLog* log = nullptr;  ///< lists what becomes of every drawing; may be null

  /// Receives every message; while it is empty, messages are dropped. A message is one sentence
  /// and may contain any character; `details` are complete lines below it, in which `visible` has
  /// escaped what came from files.
  std::function<void(const std::string& message, const std::string& details)> onMessage;

  /// Wraps a file that is about to be read, to show progress; empty for none. `size` is in bytes.
  /// Not called for the standard input, nor in a quiet session.
  std::function<std::unique_ptr<IFile>(std::unique_ptr<IFile> file, std::uintmax_t size,
                                       const std::string& path)>
      onRead;

  void complain(const std::string& message, const std::string& details = "") const {
    if (onMessage) onMessage(message, details);
  }
  /// Passes on a warning or a result, unless the session is quiet.
  void notify(const std::string& message, const std::string& details = "") const {
    if (!quiet) complain(message, details);
  }
  /// Keeps the worst failure seen.
  void failed(Failure failure) {
    if (failure > worst) worst = failure;
  }
  void fail(Failure failure, const std::string& message) {
    complain(message);
    failed(failure);
  }
};

}  // namespace vek0::host
