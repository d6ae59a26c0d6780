#include "batch.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <set>
#include <thread>

#include "vek0host/losslog.h"
#include "vek0host/paths.h"
#include "workers.h"

namespace vek0::tool {
namespace fs = std::filesystem;

namespace {

// Blank lines are ignored, and so is the carriage return of other platforms.
void readList(std::istream& list, std::vector<std::string>& files) {
  for (std::string line; std::getline(list, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty()) files.push_back(line);
  }
}

std::string takeList(const std::string& path, std::vector<std::string>& files) {
  if (path.empty()) return {};
  if (path == "-") {
    readList(std::cin, files);
    return {};
  }
  std::ifstream list(toPath(path));
  if (!list) return "'" + path + "' cannot be read";
  readList(list, files);
  return {};
}

// The same file under two names is one.
std::string keyOf(const std::string& path) {
  std::error_code failure;
  const fs::path whole = fs::weakly_canonical(toPath(path), failure);
  return path == "-" || failure ? path : toUtf8(whole);
}

std::string repeatedIn(const std::vector<std::string>& files) {
  std::set<std::string> seen;
  for (const std::string& file : files)
    if (!seen.insert(keyOf(file)).second) return "'" + file + "' is listed twice";
  return {};
}

std::string prepareFolder(const std::string& folder) {
  std::error_code failure;
  fs::create_directories(toPath(folder), failure);
  if (failure) return "the folder '" + folder + "' cannot be created: " + failure.message();
  const fs::path probe = toPath(folder) / ".vek0-probe.tmp";
  const bool isWritable = std::ofstream(probe).good();
  fs::remove(probe, failure);
  return isWritable ? "" : "the folder '" + folder + "' is not writable";
}

std::string nameOutputs(std::vector<BatchJob>& jobs, const std::string& folder,
                        const std::string& extension) {
  std::set<std::string> names;
  for (BatchJob& job : jobs) {
    if (job.in == "-") return "the standard input has no name for an output in --out-dir";
    fs::path name = toPath(job.in).filename();
    name.replace_extension(extension);
    job.out = toUtf8(toPath(folder) / name);
    if (!names.insert(job.out).second) return "two drawings would be written to '" + job.out + "'";
    if (keyOf(job.in) == keyOf(job.out))
      return "'" + job.in + "' would be written over itself; choose another --out-dir";
  }
  return {};
}

std::string collect(const BatchOptions& options, const std::string& extension,
                    std::vector<BatchJob>& jobs) {
  std::vector<std::string> files = options.files;
  std::string problem = takeList(options.filesFrom, files);
  if (problem.empty() && files.empty()) problem = "no drawing is given";
  if (problem.empty()) problem = repeatedIn(files);
  if (!problem.empty()) return problem;
  for (const std::string& file : files) jobs.push_back({file, {}});
  if (options.outDir.empty()) return {};
  problem = nameOutputs(jobs, options.outDir, extension);
  return problem.empty() ? prepareFolder(options.outDir) : problem;
}

}  // namespace

void addBatchOptions(CLI::App& verb, BatchOptions& options) {
  verb.add_option("--files-from", options.filesFrom,
                  "Also the drawings that a file lists, one per line; - is the standard input")
      ->type_name("FILE");
  verb.add_option("-j,--jobs", options.workers,
                  "Drawings to work on at the same time; by default as many as there are cores")
      ->type_name("N")
      ->check(CLI::Range(1, 1024));
  verb.add_option("--timeout", options.timeout,
                  "Give up a drawing that takes longer, if there are several")
      ->type_name("SECONDS")
      ->check(CLI::PositiveNumber);
}

void addBatchOutputOptions(CLI::App& verb, BatchOptions& options) {
  verb.add_option("--out-dir", options.outDir,
                  "Write one file per drawing, named after it, into this folder, which is created "
                  "if it does not exist")
      ->type_name("DIR");
  addBatchOptions(verb, options);
}

std::vector<BatchJob> jobsOf(const BatchOptions& options, const std::string& extension,
                             Session& session) {
  std::vector<BatchJob> jobs;
  const std::string problem = collect(options, extension, jobs);
  if (problem.empty()) return jobs;
  session.fail(kWrongUsage, problem);
  return {};
}

std::vector<BatchJob> editJobsOf(const BatchOptions& options, const std::string& out, bool inPlace,
                                 Session& session) {
  const int ways = (out.empty() ? 0 : 1) + (inPlace ? 1 : 0) + (options.outDir.empty() ? 0 : 1);
  if (ways != 1) {
    session.fail(kWrongUsage, "give one of -o, -i and --out-dir");
    return {};
  }
  std::vector<BatchJob> jobs = jobsOf(options, ".dxf", session);
  const bool hasPipe =
      std::any_of(jobs.begin(), jobs.end(), [](const BatchJob& job) { return job.in == "-"; });
  std::string problem;
  if (inPlace && hasPipe) problem = "the standard input cannot be edited in place";
  if (!out.empty() && jobs.size() > 1) problem = "several drawings require --out-dir or -i";
  if (!problem.empty()) {
    session.fail(kWrongUsage, problem);
    return {};
  }
  for (BatchJob& job : jobs)
    if (options.outDir.empty()) job.out = inPlace ? job.in : out;
  return jobs;
}

void runBatch(const std::vector<BatchJob>& jobs, const BatchOptions& options, Session& session,
              const std::function<void(const BatchJob&)>& work) {
  if (jobs.empty()) return;
  if (jobs.size() == 1) return work(jobs.front());
  // Children would each read a part of it.
  const bool hasPipe =
      std::any_of(jobs.begin(), jobs.end(), [](const BatchJob& job) { return job.in == "-"; });
  const auto cores = static_cast<int>(std::thread::hardware_concurrency());
  WorkerOptions limits;
  limits.workers = hasPipe ? 1 : std::max(1, options.workers > 0 ? options.workers : cores);
  limits.timeout = options.timeout;
  std::size_t failed = 0;
  const auto ended = [&](std::size_t job, Failure code, const std::string& death) {
    if (!death.empty()) {
      session.complain(jobs[job].in + ": " + death);
      if (session.log) {
        session.log->begin(jobs[job].in);
        session.log->addFailure(LossLog::Read, "process failed", death);
      }
    }
    failed += code != kNoFailure ? 1 : 0;
    session.failed(code);
  };
  const auto workOn = [&](std::size_t job) {
    // Messages about one drawing do not always name it.
    const std::string name = jobs[job].in;
    session.onMessage = [name, print = session.onMessage](const std::string& message,
                                                          const std::string& details) {
      print(message.find(name) == std::string::npos ? name + ": " + message : message, details);
    };
    work(jobs[job]);
  };
  runWorkers(jobs.size(), limits, session, workOn, ended);
  session.notify(std::to_string(jobs.size()) + " drawings, " + std::to_string(failed) + " failed");
}

}  // namespace vek0::tool
