#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "vek0core/files/file.h"

namespace vek0::tool {

/// Where a command writes its drawing: a file that appears whole or not at all,
/// or the standard output for "-".
///
/// The bytes go to a temporary file beside the target, which only its owner may read and which
/// `commit` renames. Without `commit` (and on interruption) the temporary file is removed.
class OutputFile {
 public:
  /// What line feeds become: the platform's line end in texts, nothing else in bytes.
  enum Content { Text, Bytes };

  /// Refuses, with a reason in `error()`, an existing target unless `force`.
  OutputFile(const std::string& path, bool force, Content content = Text);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// Empty while all is well.
  const std::string& error() const { return m_error; }

  /// The target as given, for messages.
  std::string path() const { return m_target.string(); }

  /// What to save into; owned by this object.
  IFile& file() { return *m_file; }

  /// The bytes of the finished file, before or after `commit`; 0 when that cannot be told.
  std::uintmax_t size() const;

  /// Puts the finished file in its place. False, with `error()`, when that fails.
  bool commit();

 private:
  std::string faultOf(const std::string& path, bool force) const;
  void createTemporary();
  bool writeToStandardOutput();

  std::filesystem::path m_target;
  std::filesystem::path m_temporary;       // empty for the standard output
  std::filesystem::perms m_permissions{};  // of the finished file
  std::unique_ptr<IFile> m_file;
  std::string m_error;
};

}  // namespace vek0::tool
