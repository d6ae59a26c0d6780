#include "vek0host/outputfile.h"

#ifndef _WIN32
#include <fcntl.h>
#include <unistd.h>
#endif

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <random>
#include <system_error>
#include <utility>

#include "vek0core/files/filememory.h"
#include "vek0core/files/filestdlib.h"
#include "vek0host/paths.h"

namespace vek0::host {
namespace {

constexpr long kWrite = 2;

OutputFile::Watch g_watch = nullptr;
bool g_isDryRun = false;

// Lets the tool remove an unfinished file when it is interrupted.
void watch(const std::filesystem::path& unfinished) {
  if (g_watch) g_watch(unfinished);
}

// In the target's folder, so that the rename stays within one file system. The name is not derived
// from the target's, which may already have the maximum length.
std::filesystem::path temporaryFor(const std::filesystem::path& target) {
  std::random_device random;
  return target.parent_path() / (".vek0-" + std::to_string(random()) + ".tmp");
}

// The target of links, existing or not; empty if they are circular.
std::filesystem::path followed(std::filesystem::path path) {
  constexpr int kMostLinks = 40;
  std::error_code failure;
  for (int i = 0; i < kMostLinks; ++i) {
    if (!std::filesystem::is_symlink(path, failure)) return path;
    // Relative links are relative to their own folder.
    path = path.parent_path() / std::filesystem::read_symlink(path, failure);
  }
  return {};
}

}  // namespace

void OutputFile::setWatch(Watch watch) { g_watch = watch; }

OutputFile::OutputFile(const std::string& path, bool force) : m_target(toPath(path)) {
  if (path == "-") {
    m_file = std::make_unique<CFileMemory>(u"-", kWrite);
    return;
  }
  m_target = followed(m_target);  // a link stays; its target is written
  m_error = faultOf(path, force);
  if (!m_error.empty()) return;
  m_temporary = temporaryFor(m_target);
  watch(m_temporary);
  createTemporary();
  m_file = std::make_unique<CFileStdLib>(toName(m_temporary), kWrite);
}

std::string OutputFile::faultOf(const std::string& path, bool force) const {
  std::error_code ignored;
  const auto status = std::filesystem::status(m_target, ignored);
  if (m_target.empty()) return "'" + path + "' is a circular link";
  if (std::filesystem::is_directory(status)) return "'" + path + "' is a folder";
  // Renaming would replace the pipe or device by a file.
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
    return "'" + path + "' is not a regular file";
  if (!force && std::filesystem::exists(status))
    return "'" + path + "' already exists; use -f to replace it";
  if (m_target.has_parent_path() && !std::filesystem::is_directory(m_target.parent_path(), ignored))
    return "the folder of '" + path + "' does not exist";
  return {};
}

// If it replaces a file, only the owner may read it from the beginning, because the old file may be
// private.
void OutputFile::createTemporary() {
  std::error_code ignored;
  const auto before = std::filesystem::status(m_target, ignored);
#ifndef _WIN32
  if (std::filesystem::exists(before)) {
    m_permissions = before.permissions();
    const int file = ::open(m_temporary.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600);
    if (file < 0) return noteUnwritable();
    ::close(file);
    return;
  }
#endif
  if (!std::ofstream(m_temporary)) return noteUnwritable();
  m_permissions = std::filesystem::status(m_temporary, ignored).permissions();
}

void OutputFile::noteUnwritable() {
  const std::string reason = std::generic_category().message(errno);
  m_error = "'" + path() + "' cannot be written: " + reason +
            "; choose another folder, or allow writing there";
}

OutputFile::~OutputFile() {
  watch({});
  std::error_code ignored;
  // A file that was not committed is incomplete.
  if (!m_temporary.empty()) std::filesystem::remove(m_temporary, ignored);
}

std::string OutputFile::path() const { return toUtf8(m_target); }

std::uintmax_t OutputFile::size() const {
  if (m_target == "-") return static_cast<const CFileMemory&>(*m_file).bytes().size();
  std::error_code failure;
  const auto size =
      std::filesystem::file_size(m_temporary.empty() ? m_target : m_temporary, failure);
  return failure ? 0 : size;
}

void OutputFile::setDryRun(bool isDry) { g_isDryRun = isDry; }
bool OutputFile::isDryRun() { return g_isDryRun; }

bool OutputFile::commit() {
  if (g_isDryRun) return true;
  if (m_temporary.empty()) return writeToStandardOutput();
  std::error_code failure;
  // The permissions of the replaced file are restored before it becomes visible.
  std::filesystem::permissions(m_temporary, m_permissions, failure);
  std::filesystem::rename(m_temporary, m_target, failure);
  if (failure) {
    m_error = "'" + toUtf8(m_target) + "' cannot be written: " + failure.message();
    return false;
  }
  m_temporary.clear();
  return true;
}

bool OutputFile::writeToStandardOutput() {
  const std::string& bytes = static_cast<CFileMemory&>(*m_file).bytes();
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size();
  if (written && std::fflush(stdout) == 0) return true;
  m_error = "cannot write to the standard output";
  return false;
}

}  // namespace vek0::host
