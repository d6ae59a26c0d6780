#include "outputfile.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <utility>

#include "paths.h"
#include "vek0core/files/filememory.h"
#include "vek0core/files/filestdlib.h"

namespace vek0::tool {
namespace {

constexpr long kWrite = 2;

// Name of the temporary file for the signal handler, which may only read plain
// memory; one output is open at a time.
char g_unfinished[4096];

void removeAndEnd(int signal) {
  if (g_unfinished[0]) std::remove(g_unfinished);
  std::_Exit(128 + signal);
}

void watchForInterruption(const std::string& temporary) {
  if (temporary.size() >= sizeof g_unfinished) return;
  temporary.copy(g_unfinished, temporary.size());
  g_unfinished[temporary.size()] = 0;
  std::signal(SIGINT, removeAndEnd);
  std::signal(SIGTERM, removeAndEnd);
}

// Beside the target, so that the rename stays within one file system.
std::filesystem::path temporaryFor(const std::filesystem::path& target) {
  std::random_device random;
  std::filesystem::path name = target.filename();
  name += "." + std::to_string(random()) + ".tmp";
  return target.parent_path() / name;
}

}  // namespace

OutputFile::OutputFile(const std::string& path, bool force, Content content)
    : m_target(toPath(path)) {
  if (path == "-") {
    m_file = std::make_unique<CFileMemory>(u"-", kWrite);
    return;
  }
  std::error_code ignored;
  // A link stays a link: what it points to is replaced.
  if (std::filesystem::is_symlink(m_target, ignored)) {
    m_target = std::filesystem::weakly_canonical(m_target, ignored);
  }
  if (std::filesystem::is_directory(m_target, ignored)) {
    m_error = "'" + path + "' is a folder";
  } else if (std::filesystem::exists(m_target, ignored) &&
             !std::filesystem::is_regular_file(m_target, ignored)) {
    // The rename would put a file in the place of the pipe or device.
    m_error = "'" + path + "' is not a regular file";
  } else if (!force && std::filesystem::exists(m_target, ignored)) {
    m_error = "'" + path + "' exists; -f replaces it";
  } else if (m_target.has_parent_path() &&
             !std::filesystem::is_directory(m_target.parent_path(), ignored)) {
    m_error = "the folder of '" + path + "' does not exist";
  }
  m_temporary = temporaryFor(m_target);
  watchForInterruption(m_temporary.string());
  auto file = std::make_unique<CFileStdLib>(toName(m_temporary), kWrite);
  if (content == Bytes) file->setLineEnd(CFileStdLib::Lf);
  m_file = std::move(file);
}

OutputFile::~OutputFile() {
  g_unfinished[0] = 0;
  std::error_code ignored;
  if (!m_temporary.empty()) std::filesystem::remove(m_temporary, ignored);
}

bool OutputFile::commit() {
  if (m_temporary.empty()) return writeToStandardOutput();
  std::error_code failure;
  const auto before = std::filesystem::status(m_target, failure);
  if (std::filesystem::exists(before)) {
    std::filesystem::permissions(m_temporary, before.permissions(), failure);
  }
  std::filesystem::rename(m_temporary, m_target, failure);
  if (failure) {
    m_error = "'" + m_target.string() + "' cannot be written: " + failure.message();
    return false;
  }
  m_temporary.clear();
  return true;
}

bool OutputFile::writeToStandardOutput() {
  const std::string& bytes = static_cast<CFileMemory&>(*m_file).bytes();
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size();
  if (written && std::fflush(stdout) == 0) return true;
  m_error = "the standard output cannot be written";
  return false;
}

}  // namespace vek0::tool
