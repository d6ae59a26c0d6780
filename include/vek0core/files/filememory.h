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
/// Lines are read and written as by `CFileStdLib`, with LF as the line end on every platform. It
/// may be opened any number of times: each time, reading restarts at the first byte and writing
/// restarts with an empty file. A copy has its own bytes and is closed.
class VEK0_API CFileMemory : public IFile {
 public:
  /// `bytes` is the content for reading; a file opened for writing starts empty.
  CFileMemory(const zim::WString& name, long mode, std::string bytes = {});
  CFileMemory(const CFileMemory& other);
  CFileMemory& operator=(const CFileMemory& other);
  ~CFileMemory() override;

  /// The whole content: that given for reading, or that written since the last `open`.
  const std::string& bytes() const { return m_bytes; }

  bool open() override;
  void close() override;
  bool isOpened() override { return m_opened; }
  long read(zim::Char* buf, long n) override;
  long write(const zim::Char* buf, long n) override;
  bool readLn(zim::Char* buf, long n) override;
  bool writeLn(const zim::Char* text) override;
  bool fail() override { return !m_opened; }
  /// Returns -1 once `readLn` was used, because the bytes are then in its buffer.
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
