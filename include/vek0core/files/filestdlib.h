#pragma once

#include <memory>

#include "vek0core/files/file.h"

/// A file on the platform's file system.
///
/// Reading by lines decodes each line as UTF-8 if it is valid, otherwise as Windows 1252; a byte
/// order mark selects UTF-16. A line ends at LF, CR LF or a lone CR (returned as LF); NULs are
/// skipped, and a line with only Ctrl-Z ends the file. Writing by lines encodes as `encodeLine`
/// does.
///
/// Copies share the stream that was open when they were made: it is closed for all of them by the
/// first `close`, or when the last copy is destroyed.
class VEK0_API CFileStdLib : public IFile {
 public:
  enum LineEnd { Lf, CrLf };

  /// `name` is passed to the platform in the platform's encoding (`fileNameToBytes` outside
  /// Windows); `mode` is `kRead` or `kWrite`; any other value is a caller error, and the file never
  /// opens.
  CFileStdLib(const zim::WString& name, long mode);
  CFileStdLib(const CFileStdLib&) = default;
  CFileStdLib& operator=(const CFileStdLib&) = default;
  ~CFileStdLib() override;

  /// What a line feed becomes on writing, by lines or bytes; initially `Lf`, so that files are the
  /// same on every platform. Takes effect from the next write.
  void setLineEnd(LineEnd end) { m_lineEnd = end; }

  bool open() override;
  void close() override;
  bool isOpened() override;
  long read(zim::Char* buf, long n) override;
  long write(const zim::Char* buf, long n) override;
  bool readLn(zim::Char* buf, long n) override;
  bool writeLn(const zim::Char* text) override;
  /// When writing, flushes the buffer first, so that false also means that the medium had room;
  /// this costs a system call.
  bool fail() override;
  /// Returns -1 once `readLn` was used, because the bytes are then in its buffer.
  long readBytes(char* buf, long n) override;
  bool writeBytes(const char* text, long n) override;

 private:
  struct Stream;

  bool isReading() const;
  bool isWriting() const;

  std::shared_ptr<Stream> m_stream;
  LineEnd m_lineEnd;
};
