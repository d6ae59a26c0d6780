#include "workers.h"

#if defined(_WIN32) || defined(__EMSCRIPTEN__)
#define VEK0_NO_PROCESSES
#else
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <thread>
#include <vector>

#ifdef __linux__
#include <sys/prctl.h>
#endif
#endif

#include "countline.h"
#include "vek0host/losslog.h"

namespace vek0::tool {

using host::Failure;
using host::Session;

#ifdef VEK0_NO_PROCESSES

void runWorkers(std::size_t jobs, const WorkerOptions&, Session& session,
                const std::function<void(std::size_t)>& work,
                const std::function<void(std::size_t, Failure, const std::string&)>& ended) {
  for (std::size_t job = 0; job < jobs; ++job) {
    const Failure before = session.worst;
    session.worst = host::kNoFailure;
    work(job);
    const Failure worst = session.worst;
    session.worst = before;
    ended(job, worst, {});
  }
}

#else

namespace {

using Clock = std::chrono::steady_clock;

// Added to the exit code of a child whose answer is 0.
constexpr int kAnswered = 1 << 4;

// What a child prints, and its part of the log, in files without names.
enum Channel { kOutput, kErrors, kLog, kChannels };

struct Child {
  std::size_t job = 0;
  Clock::time_point started;
  bool isTold = false;    // to end
  bool isKilled = false;  // because it did not
};

struct Result {
  std::array<std::FILE*, kChannels> files{};
  bool isDone = false;
  Failure worst = host::kDrawingFailed;
  bool isAnswered = false;  // with 0
  std::string death;
};

void copyTo(std::FILE* from, std::FILE* to) {
  std::rewind(from);
  char buffer[1 << 16];
  while (const std::size_t got = std::fread(buffer, 1, sizeof buffer, from))
    std::fwrite(buffer, 1, got, to);
}

std::string contentOf(std::FILE* file) {
  std::rewind(file);
  std::string text;
  char buffer[1 << 16];
  while (const std::size_t got = std::fread(buffer, 1, sizeof buffer, file))
    text.append(buffer, got);
  return text;
}

class Workers {
 public:
  Workers(const WorkerOptions& options, Session& session)
      : m_options(options), m_session(session), m_count(!session.quiet) {}

  void run(std::size_t jobs, const std::function<void(std::size_t)>& work,
           const std::function<void(std::size_t, Failure, const std::string&)>& ended) {
    m_results.resize(jobs);
    std::size_t next = 0, told = 0;
    while (told < jobs) {
      // Each result that waits for an earlier one keeps files open.
      constexpr std::size_t mostWaiting = 100;
      while (next < jobs && next < told + mostWaiting &&
             static_cast<int>(m_children.size()) < m_options.workers)
        start(next++, work);
      const bool isChanged = reap();
      for (; told < jobs && m_results[told].isDone; ++told) tell(told, ended);
      m_count.show(m_noDone, jobs);
      if (!isChanged && told < jobs) wait();
    }
  }

 private:
  void start(std::size_t job, const std::function<void(std::size_t)>& work);
  [[noreturn]] void workInChild(std::size_t job, const std::function<void(std::size_t)>& work);
  void giveUp(std::size_t job, const std::string& why);
  bool reap();
  void wait();
  void tell(std::size_t job,
            const std::function<void(std::size_t, Failure, const std::string&)>& ended);

  const WorkerOptions& m_options;
  Session& m_session;
  std::map<pid_t, Child> m_children;
  std::vector<Result> m_results;
  std::size_t m_noDone = 0;
  CountLine m_count;
};

void Workers::start(std::size_t job, const std::function<void(std::size_t)>& work) {
  Result& result = m_results[job];
  for (std::FILE*& file : result.files) {
    file = std::tmpfile();
    if (!file) return giveUp(job, "there is no room for temporary files");
  }
  // Otherwise the child would print what is still buffered, too.
  std::fflush(stdout);
  std::fflush(stderr);
  const pid_t parent = getpid(), child = fork();
  if (child < 0) return giveUp(job, "no process can be started");
  if (child > 0) {
    m_children[child] = {job, Clock::now()};
    return;
  }
#ifdef __linux__
  prctl(PR_SET_PDEATHSIG, SIGTERM);
#endif
  if (getppid() != parent) std::_Exit(host::kDrawingFailed);
  workInChild(job, work);
}

void Workers::workInChild(std::size_t job, const std::function<void(std::size_t)>& work) {
  const Result& result = m_results[job];
  dup2(fileno(result.files[kOutput]), STDOUT_FILENO);
  dup2(fileno(result.files[kErrors]), STDERR_FILENO);
  m_session.worst = host::kNoFailure;
  if (m_session.log) *m_session.log = host::LossLog();
  try {
    work(job);
  } catch (const std::exception& problem) {
    m_session.fail(host::kDrawingFailed, problem.what());
  }
  if (m_session.log) {
    const std::string log = m_session.log->toText();
    std::fwrite(log.data(), 1, log.size(), result.files[kLog]);
    std::fflush(result.files[kLog]);
  }
  if (std::fflush(stdout) != 0) m_session.failed(host::kOutputFailed);
  std::fflush(stderr);
  std::_Exit(m_session.worst | (m_session.answer == 0 ? kAnswered : 0));
}

void Workers::giveUp(std::size_t job, const std::string& why) {
  m_results[job].isDone = true;
  m_results[job].death = why;
  ++m_noDone;
}

// Collects a child that has ended; whether there was one.
bool Workers::reap() {
  int status = 0;
  const pid_t ended = waitpid(-1, &status, WNOHANG);
  const auto found = m_children.find(ended);
  if (found == m_children.end()) return false;
  const Child& child = found->second;
  Result& result = m_results[child.job];
  result.isDone = true;
  if (child.isTold)
    result.death = "gave up after the time limit";
  else if (WIFSIGNALED(status))
    result.death = "the process ended with signal " + std::to_string(WTERMSIG(status));
  else
    result.worst = static_cast<Failure>(WEXITSTATUS(status) & ~kAnswered);
  result.isAnswered = result.death.empty() && (WEXITSTATUS(status) & kAnswered) != 0;
  m_children.erase(found);
  ++m_noDone;
  return true;
}

// A moment, and then ends those that take too long: first so that they remove what they began to
// write, after a second in any case.
void Workers::wait() {
  using std::chrono::milliseconds;
  std::this_thread::sleep_for(milliseconds(2));
  if (m_options.timeout <= 0) return;
  for (auto& [id, child] : m_children) {
    const std::chrono::duration<double> age = Clock::now() - child.started;
    if (age.count() < m_options.timeout || child.isKilled) continue;
    child.isKilled = child.isTold && age.count() > m_options.timeout + 1;
    if (child.isKilled) kill(id, SIGKILL);
    if (!child.isTold) kill(id, SIGTERM);
    child.isTold = true;
  }
}

void Workers::tell(std::size_t job,
                   const std::function<void(std::size_t, Failure, const std::string&)>& ended) {
  Result& result = m_results[job];
  m_count.hide();
  if (result.files[kLog]) {
    copyTo(result.files[kOutput], stdout);
    std::fflush(stdout);
    copyTo(result.files[kErrors], stderr);
    if (m_session.log) m_session.log->addText(contentOf(result.files[kLog]));
  }
  for (std::FILE*& file : result.files)
    if (file) std::fclose(file);
  if (result.isAnswered) m_session.answer = 0;
  ended(job, result.worst, result.death);
}

}  // namespace

void runWorkers(std::size_t jobs, const WorkerOptions& options, Session& session,
                const std::function<void(std::size_t)>& work,
                const std::function<void(std::size_t, Failure, const std::string&)>& ended) {
  Workers(options, session).run(jobs, work, ended);
}

#endif

}  // namespace vek0::tool
