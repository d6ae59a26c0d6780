#pragma once

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include "vek0core/files/file.h"

namespace vek0::web {

/// Bytes that several owners keep, as a file to be read.
class KeptFile final : public IFile {
 public:
  KeptFile(const std::string& name, std::shared_ptr<const std::string> bytes)
      : IFile(zim::WString::fromUtf8(name), kRead), m_bytes(std::move(bytes)) {}

  /// The part that has been read, from 0 to 1.
  double share() const {
    return m_bytes->empty() ? 1 : static_cast<double>(m_at) / static_cast<double>(m_bytes->size());
  }

  bool open() override {
    m_at = 0;
    return m_isOpen = true;
  }
  void close() override { m_isOpen = false; }
  bool isOpened() override { return m_isOpen; }
  bool fail() override { return !m_isOpen; }
  long readBytes(char* buf, long n) override {
    if (!m_isOpen || n < 0) return 0;
    const std::size_t count = std::min(static_cast<std::size_t>(n), m_bytes->size() - m_at);
    std::memcpy(buf, m_bytes->data() + m_at, count);
    m_at += count;
    return static_cast<long>(count);
  }
  // Readers use bytes, and nothing writes.
  long read(zim::Char*, long) override { return -1; }
  long write(const zim::Char*, long) override { return -1; }
  bool readLn(zim::Char*, long) override { return false; }
  bool writeLn(const zim::Char*) override { return false; }
  bool writeBytes(const char*, long) override { return false; }

 private:
  std::shared_ptr<const std::string> m_bytes;
  std::size_t m_at = 0;
  bool m_isOpen = false;
};

}  // namespace vek0::web
