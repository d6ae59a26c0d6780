#pragma once

#include <functional>
#include <string>
#include <vector>

#include "commands.h"

namespace vek0::tool {

/// How a command works on many drawings.
struct BatchOptions {
  std::vector<std::string> files;  ///< as given on the command line
  std::string filesFrom;           ///< a list of further ones, one per line; "-": standard input
  std::string outDir;              ///< the folder of the outputs; empty for none
  int workers = 0;                 ///< processes at a time; 0: one per core
  double timeout = 0;              ///< seconds for each drawing; 0: no limit
};

/// Adds the inputs of a command, which may be many, and what concerns them.
void addBatchOptions(CLI::App& verb, BatchOptions& options);
/// The same with `--out-dir`.
void addBatchOutputOptions(CLI::App& verb, BatchOptions& options);

/// A drawing of a batch, with its output if there is a folder for them.
struct BatchJob {
  std::string in, out;
};

/// The drawings of a batch, in order. Creates the folder of the outputs, which are named after
/// their inputs with `extension`. What cannot work is wrong usage, found before anything is done:
/// no input, a drawing twice, two outputs of one name, a folder that is not writable. Then the
/// result is empty.
std::vector<BatchJob> jobsOf(const BatchOptions& options, const std::string& extension,
                             Session& session);

/// The same for a command that writes one drawing to `out`, or replaces the drawings (`inPlace`),
/// or has a folder for them: exactly one of these.
std::vector<BatchJob> editJobsOf(const BatchOptions& options, const std::string& out, bool inPlace,
                                 Session& session);

/// Works on each drawing: on one within this process, on several in a process each, so that one
/// that hangs, crashes or exhausts memory fails alone. What they print appears in the order of the
/// drawings, whatever the number of workers. Ends with a summary on the error stream, unless the
/// session is quiet.
void runBatch(const std::vector<BatchJob>& jobs, const BatchOptions& options, Session& session,
              const std::function<void(const BatchJob&)>& work);

}  // namespace vek0::tool
