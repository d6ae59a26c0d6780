#pragma once

#include <memory>

#include "vek0core/files/file.h"

/// A file of the platform.
///
/// Reading by lines takes UTF-8 where a line is valid UTF-8 and Windows 1252
/// otherwise, UTF-16 behind a byte order mark; a line ends at LF, CR LF or a lone
/// CR (which arrives as LF); NULs are skipped and Ctrl-Z on a line of its own ends the file.
/// Writing by lines encodes as `encodeLine` does.
///
/// Copies share the stream that was open when they were made: it ends for all of
/// them with the first `close`, or with the last of them.
class VEK0_API CFileStdLib : public IFile {
 public:
  enum LineEnd { Lf, CrLf };

  /// `name` is handed to the platform in its own encoding (`fileNameToBytes` outside Windows);
  /// `mode` is `kRead` or `kWrite`, any other is a caller error and never opens.
  CFileStdLib(const zim::WString& name, long mode);
  CFileStdLib(const CFileStdLib&) = default;
  CFileStdLib& operator=(const CFileStdLib&) = default;
  ~CFileStdLib() override;

  /// What a line feed becomes on writing, by lines and by bytes; the platform's
  /// own line end at first. Takes effect with the next text written.
  void setLineEnd(LineEnd end) { m_lineEnd = end; }

  bool open() override;
  void close() override;
  bool isOpened() override;
  long read(zim::Char* buf, long n) override;
  long write(const zim::Char* buf, long n) override;
  bool readLn(zim::Char* buf, long n) override;
  bool writeLn(const zim::Char* text) override;
  /// On writing, first hands to the system what was buffered, so that false also
  /// says that the medium had room. Costs a system call then.
  bool fail() override;
  /// -1 once `readLn` was used, for the bytes then lie in its buffer.
  long readBytes(char* buf, long n) override;
  bool writeBytes(const char* text, long n) override;

 private:
  struct Stream;

  bool isReading() const;
  bool isWriting() const;

  std::shared_ptr<Stream> m_stream;
  LineEnd m_lineEnd;
};
