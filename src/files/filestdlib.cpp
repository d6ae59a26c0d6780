// Files of the C library. They are opened in binary, since the line ends are ours to choose, and
// Windows would stop reading at a 0x1A. Text is decoded and encoded here; bytes for the DXF reader
// and writer pass unchanged.
#include "vek0core/files/filestdlib.h"

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>

#include "files/linedecoder.h"
#include "vek0core/assert.h"
#include "vek0core/files/filename.h"
#include "vek0core/files/textcodec.h"

namespace {

constexpr std::size_t kWriteBuffer = std::size_t{64} * 1024;

// Binary in both directions, because we convert line ends ourselves. A zero inside the name would
// open a different file.
std::FILE* openStream(const zim::WString& name, bool forReading) {
  if (name.view().find(zim::Char{0}) != std::u16string_view::npos) return nullptr;
#ifdef _WIN32
  return _wfopen(reinterpret_cast<const wchar_t*>(name.c_str()), forReading ? L"rb" : L"wb");
#else
  return std::fopen(fileNameToBytes(name).c_str(), forReading ? "rb" : "wb");
#endif
}

// `last` is the character before the text, and becomes the last one of it: the two characters of a
// line end may be written separately.
std::string withCrLf(std::string_view text, char& last) {
  std::string out;
  out.reserve(text.size() + text.size() / 8);
  for (const char c : text) {
    if (c == '\n' && last != '\r') out += '\r';
    out += c;
    last = c;
  }
  return out;
}

}  // namespace

// Reading is not buffered here: blocks are passed directly to the caller, and the line reader has
// its own buffer.
struct CFileStdLib::Stream {
  std::FILE* handle;
  std::unique_ptr<char[]> buffer;
  std::unique_ptr<vek0::detail::LineDecoder> lines;
  char lastWritten = '\0';

  Stream(std::FILE* opened, bool forReading) : handle(opened) {
    if (!forReading) buffer = std::make_unique<char[]>(kWriteBuffer);
    std::setvbuf(handle, buffer.get(), buffer ? _IOFBF : _IONBF, buffer ? kWriteBuffer : 0);
  }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;
  ~Stream() { close(); }

  void close() {
    if (handle) std::fclose(handle);
    handle = nullptr;
  }

  long readBytes(char* buf, long n) const {
    if (!handle || n <= 0) return 0;
    return static_cast<long>(std::fread(buf, 1, static_cast<std::size_t>(n), handle));
  }

  vek0::detail::LineDecoder& lineDecoder() {
    if (!lines) {
      lines = std::make_unique<vek0::detail::LineDecoder>([this](char* buf, long n) {
        const long got = readBytes(buf, n);
        return got == 0 && std::ferror(handle) ? vek0::detail::LineReader::kFailed : got;
      });
    }
    return *lines;
  }
};

CFileStdLib::CFileStdLib(const zim::WString& name, long mode) : IFile(name, mode), m_lineEnd(Lf) {}

CFileStdLib::~CFileStdLib() = default;

bool CFileStdLib::open() {
  close();
  ZORA_ASSERT(m_mode == kRead || m_mode == kWrite);
  if (m_mode != kRead && m_mode != kWrite) return false;
  std::FILE* const handle = openStream(m_name, m_mode == kRead);
  if (!handle) return false;
  m_stream = std::make_shared<Stream>(handle, m_mode == kRead);
  return true;
}

void CFileStdLib::close() {
  if (m_stream) m_stream->close();
  m_stream.reset();
}

bool CFileStdLib::isOpened() { return m_stream && m_stream->handle; }

bool CFileStdLib::isReading() const { return m_mode == kRead && m_stream && m_stream->handle; }

bool CFileStdLib::isWriting() const { return m_mode == kWrite && m_stream && m_stream->handle; }

long CFileStdLib::read(zim::Char* buf, long n) {
  if (!isReading() || n <= 0) return -1;
  const std::size_t count =
      std::fread(buf, sizeof *buf, static_cast<std::size_t>(n), m_stream->handle);
  return count ? static_cast<long>(count) : -1;
}

long CFileStdLib::write(const zim::Char* buf, long n) {
  if (!isWriting() || n <= 0) return -1;
  const std::size_t count =
      std::fwrite(buf, sizeof *buf, static_cast<std::size_t>(n), m_stream->handle);
  return count ? static_cast<long>(count) : -1;
}

bool CFileStdLib::readLn(zim::Char* buf, long n) {
  if (!isReading() || n <= 0) return false;
  if (m_stream->lineDecoder().readLn(buf, n)) return true;
  // A read error yields an empty line; `fail` reports the error.
  if (!std::ferror(m_stream->handle)) return false;
  buf[0] = 0;
  return true;
}

bool CFileStdLib::writeLn(const zim::Char* text) {
  std::string bytes;
  if (text) encodeLine(text, bytes);
  return writeBytes(bytes.data(), static_cast<long>(bytes.size()));
}

bool CFileStdLib::fail() {
  if (!isOpened()) return true;
  // Errors may show only when buffered bytes are written.
  if (m_mode == kWrite) std::fflush(m_stream->handle);
  return std::ferror(m_stream->handle) != 0;
}

long CFileStdLib::readBytes(char* buf, long n) {
  if (!isReading()) return 0;
  // Refused after `readLn`, whose decoder has read ahead.
  return m_stream->lines ? -1 : m_stream->readBytes(buf, n);
}

bool CFileStdLib::writeBytes(const char* text, long n) {
  if (!isWriting() || n < 0) return false;
  std::string_view bytes(text, static_cast<std::size_t>(n));
  std::string expanded;
  if (m_lineEnd == CrLf) {
    expanded = withCrLf(bytes, m_stream->lastWritten);
    bytes = expanded;
  } else if (n > 0) {
    m_stream->lastWritten = bytes.back();
  }
  return std::fwrite(bytes.data(), 1, bytes.size(), m_stream->handle) == bytes.size();
}
