#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "vek0core/files/file.h"

namespace vek0::detail {
class LineDecoder;
}

/// A file in memory, for hosts that keep drawings elsewhere, pipes and tests.
///
/// Lines are read and written as those of `CFileStdLib`, with LF as line end on
/// every platform. It may be opened any number of times: each time reading starts
/// again at the first byte, and writing starts again with no byte. A copy has its
/// own bytes and is closed.
class VEK0_API CFileMemory : public IFile {
 public:
  /// `bytes` is what a reader finds; a file that is written starts empty.
  CFileMemory(const zim::WString& name, long mode, std::string bytes = {});
  CFileMemory(const CFileMemory& other);
  CFileMemory& operator=(const CFileMemory& other);
  ~CFileMemory() override;

  /// Everything that the file holds, or was written since the last `open`.
  const std::string& bytes() const { return m_bytes; }

  bool open() override;
  void close() override;
  bool isOpened() override { return m_opened; }
  long read(zim::Char* buf, long n) override;
  long write(const zim::Char* buf, long n) override;
  bool readLn(zim::Char* buf, long n) override;
  bool writeLn(const zim::Char* text) override;
  bool fail() override { return !m_opened; }
  /// -1 once `readLn` was used, for the bytes then lie in its buffer.
  long readBytes(char* buf, long n) override;
  bool writeBytes(const char* text, long n) override;

 private:
  long take(char* buf, long n);
  bool append(std::string_view text);

  std::string m_bytes;
  std::size_t m_position = 0;
  std::unique_ptr<vek0::detail::LineDecoder> m_lines;
  bool m_opened = false;
};
