#include "vek0core/files/filememory.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "files/linedecoder.h"
#include "vek0core/assert.h"
#include "vek0core/files/textcodec.h"

CFileMemory::CFileMemory(const zim::WString& name, long mode, std::string bytes)
    : IFile(name, mode), m_bytes(std::move(bytes)) {}

CFileMemory::CFileMemory(const CFileMemory& other) : IFile(other), m_bytes(other.m_bytes) {}

CFileMemory& CFileMemory::operator=(const CFileMemory& other) {
  if (this == &other) return *this;
  close();
  IFile::operator=(other);
  m_bytes = other.m_bytes;
  return *this;
}

CFileMemory::~CFileMemory() = default;

bool CFileMemory::open() {
  ZORA_ASSERT(m_mode == kRead || m_mode == kWrite);
  close();
  if (m_mode == kWrite) m_bytes.clear();
  m_opened = m_mode == kRead || m_mode == kWrite;
  return m_opened;
}

void CFileMemory::close() {
  m_opened = false;
  m_position = 0;
  m_lines.reset();
}

// Reads at most n bytes from the position; returns 0 at the end.
long CFileMemory::take(char* buf, long n) {
  if (!m_opened || m_mode != kRead || n <= 0) return 0;
  const std::size_t count = m_bytes.copy(buf, static_cast<std::size_t>(n), m_position);
  m_position += count;
  return static_cast<long>(count);
}

bool CFileMemory::append(std::string_view text) {
  if (!m_opened || m_mode != kWrite) return false;
  m_bytes += text;
  return true;
}

long CFileMemory::read(zim::Char* buf, long n) {
  constexpr long kUnit = sizeof *buf;
  const long left = static_cast<long>(m_bytes.size() - m_position) / kUnit;
  const long bytes = take(reinterpret_cast<char*>(buf), std::min(n, left) * kUnit);
  return bytes > 0 ? bytes / kUnit : -1;
}

long CFileMemory::write(const zim::Char* buf, long n) {
  if (n <= 0) return -1;
  const std::string_view bytes(reinterpret_cast<const char*>(buf),
                               static_cast<std::size_t>(n) * sizeof *buf);
  return append(bytes) ? n : -1;
}

bool CFileMemory::readLn(zim::Char* buf, long n) {
  if (!m_opened || m_mode != kRead) return false;
  if (!m_lines) {
    m_lines = std::make_unique<vek0::detail::LineDecoder>(
        [this](char* bytes, long count) { return take(bytes, count); });
  }
  return m_lines->readLn(buf, n);
}

bool CFileMemory::writeLn(const zim::Char* text) {
  std::string bytes;
  if (text) encodeLine(text, bytes);
  return append(bytes);
}

long CFileMemory::readBytes(char* buf, long n) { return m_lines ? -1 : take(buf, n); }

bool CFileMemory::writeBytes(const char* text, long n) {
  return n >= 0 && append({text, static_cast<std::size_t>(n)});
}
