#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "vek0core/files/file.h"

namespace vek0::host {

/// The output of a command: a file that is created completely or not at all, or the standard output
/// for "-".
///
/// The bytes are written to a temporary file next to the target, which only its owner may read and
/// which `commit` renames. Without `commit`, the temporary file is removed.
class OutputFile {
 public:
  /// Called with the name of the temporary file before it is created, and with an empty name once
  /// it is gone.
  using Watch = void (*)(const std::filesystem::path& unfinished);
  /// Sets the process-wide watch, for programs that remove the file when they are interrupted.
  static void setWatch(Watch watch);

  /// Whether all outputs of the process are written, but never put into place.
  static void setDryRun(bool isDry);
  static bool isDryRun();

  /// Rejects an existing target unless `force`, with the reason in `error()`.
  OutputFile(const std::string& path, bool force);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// Empty if there is no error.
  const std::string& error() const { return m_error; }

  /// The file that is written, for messages: the target of links.
  std::string path() const;

  /// The file to write to; owned by this object.
  IFile& file() { return *m_file; }

  /// The bytes of the finished file, before or after `commit`; 0 if unknown.
  std::uintmax_t size() const;

  /// Moves the finished file into place, unless in a dry run. Returns false and sets `error()` on
  /// failure.
  bool commit();

 private:
  std::string faultOf(const std::string& path, bool force) const;
  void createTemporary();
  void noteUnwritable();
  bool writeToStandardOutput();

  std::filesystem::path m_target;
  std::filesystem::path m_temporary;       // empty for the standard output
  std::filesystem::perms m_permissions{};  // of the finished file
  std::unique_ptr<IFile> m_file;
  std::string m_error;
};

}  // namespace vek0::host
