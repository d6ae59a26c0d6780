#pragma once

#include "vek0core/export.h"
#include "zim0lang/wstring.h"

/// The text file interface of the readers and writers, which never access the platform directly.
///
/// A host derives from it to read and write drawings wherever it keeps them. Line access is
/// sufficient; a file that also supports byte access is read and written several times faster.
/// Between open and close, a file is accessed by lines, by bytes or by units, never by a mix of
/// them.
///
/// Nothing here throws except `std::bad_alloc`. The order of the virtual functions is fixed.
class VEK0_API IFile {
 public:
  static constexpr long kRead = 1;   ///< open for reading
  static constexpr long kWrite = 2;  ///< open for writing, replacing any existing content

  virtual ~IFile();

  /// The name passed to the constructor.
  const zim::WString& getName() const { return m_name; }

  /// Opens the file at its beginning. Returns false on failure.
  virtual bool open() = 0;

  /// Closes the file; does nothing if it is not open.
  virtual void close() = 0;

  virtual bool isOpened() = 0;

  /// Reads up to `n` units in the machine's byte order, undecoded, into `buf`. Returns the count,
  /// or -1 when nothing was read. Not for text, which is read by lines.
  virtual long read(zim::Char* buf, long n) = 0;

  /// Writes `n` units in the machine's byte order, not encoded. Returns the count written, or -1 if
  /// none were.
  virtual long write(const zim::Char* buf, long n) = 0;

  /// Reads one line: at most `n` - 1 units, then the terminator; `buf` holds `n`. The line end is
  /// kept, and whatever did not fit is returned by the next call. Returns true if a line was read.
  /// If nothing was read, it returns false at the end of the file and true after any other failure,
  /// so callers must also check `fail`.
  virtual bool readLn(zim::Char* buf, long n) = 0;

  /// Writes the text up to its terminator unchanged; the caller supplies the line end. Returns
  /// false if not all of it could be written.
  virtual bool writeLn(const zim::Char* text) = 0;

  /// Whether the file is closed or an operation on it has failed.
  virtual bool fail() = 0;

  /// Reads up to `n` raw bytes. Returns the count, 0 at the end or after a failure (`fail`
  /// distinguishes them), or -1, the default, if the file does not support byte access: the caller
  /// then reads lines instead.
  virtual long readBytes(char* buf, long n);

  /// Writes `n` bytes of text in the code page of written files (Windows 1252). Returns false if
  /// not all of them could be written. By default they are widened and passed to `writeLn`.
  virtual bool writeBytes(const char* text, long n);

 protected:
  /// `mode` is `kRead` or `kWrite`.
  IFile(const zim::WString& name, long mode) : m_name(name), m_mode(mode) {}
  IFile(const IFile&) = default;
  IFile& operator=(const IFile&) = default;

  zim::WString m_name;
  long m_mode;
};
