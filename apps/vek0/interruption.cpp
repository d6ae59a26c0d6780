#include "interruption.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>

#include "vek0host/outputfile.h"

namespace vek0::tool {
namespace {

// For the signal handler, which may only read plain memory; one output is open at a time.
std::filesystem::path::value_type g_unfinished[4096];

void removeUnfinished() {
#ifdef _WIN32
  _wremove(g_unfinished);
#else
  std::remove(g_unfinished);
#endif
}

void removeAndEnd(int signal) {
  if (g_unfinished[0]) removeUnfinished();
  std::_Exit(128 + signal);
}

// Signals that are ignored (nohup) stay ignored.
void endCleanlyOn(int signal) {
  if (std::signal(signal, removeAndEnd) == SIG_IGN) std::signal(signal, SIG_IGN);
}

void watch(const std::filesystem::path& unfinished) {
  const auto& name = unfinished.native();
  if (name.size() >= std::size(g_unfinished)) return;
  // A signal in between finds an empty name: the first unit comes last.
  g_unfinished[0] = 0;
  std::atomic_signal_fence(std::memory_order_seq_cst);
  if (name.empty()) return;
  name.copy(g_unfinished + 1, name.size() - 1, 1);
  g_unfinished[name.size()] = 0;
  std::atomic_signal_fence(std::memory_order_seq_cst);
  g_unfinished[0] = name[0];
  endCleanlyOn(SIGINT);
  endCleanlyOn(SIGTERM);
#ifndef _WIN32
  endCleanlyOn(SIGHUP);
  endCleanlyOn(SIGPIPE);
#endif
}

}  // namespace

void removeOutputsOnInterruption() {
#ifndef _WIN32
  std::signal(SIGXFSZ, SIG_IGN);  // exceeding the file size limit becomes a failed write
#endif
  host::OutputFile::setWatch(watch);
}

}  // namespace vek0::tool
