#pragma once

#include "vek0core/export.h"
#include "zim0lang/wstring.h"

/// A text file as the readers and writers see it: they never touch the platform.
///
/// A host derives from it to read from and write to wherever it keeps drawings.
/// Lines are enough; a file that also offers bytes is read and written several
/// times faster. From open to close a file is used either by lines, or by bytes,
/// or by units, never by two of them.
///
/// Nothing here throws, apart from `std::bad_alloc`. The virtual functions stand in
/// a fixed order.
class VEK0_API IFile {
 public:
  static constexpr long kRead = 1;   ///< mode of a file that is read
  static constexpr long kWrite = 2;  ///< mode of a file that is written, replacing what was there

  virtual ~IFile();

  /// The name given at construction.
  const zim::WString& getName() const { return m_name; }

  /// Opens the file at its start; false when that is impossible.
  virtual bool open() = 0;

  /// Closes the file; nothing happens when it is not open.
  virtual void close() = 0;

  virtual bool isOpened() = 0;

  /// Reads up to `n` units in the machine's byte order, undecoded, into `buf`.
  /// Returns the count, or -1 when nothing was read. Belongs to no line format:
  /// texts are read by lines.
  virtual long read(zim::Char* buf, long n) = 0;

  /// Writes `n` units in the machine's byte order, not encoded. Returns the count
  /// written, or -1 when there was none.
  virtual long write(const zim::Char* buf, long n) = 0;

  /// Reads one line: at most `n` - 1 units, then the terminator; `buf` holds `n`.
  /// The line end is kept, and what did not fit comes with the next call. Returns
  /// true when a line was read. When nothing was read it returns false at the end
  /// of the file and true after any other failure, so callers also ask `fail`.
  virtual bool readLn(zim::Char* buf, long n) = 0;

  /// Writes the text up to its terminator as it stands; the line end is the
  /// caller's. False when the file did not take all of it.
  virtual bool writeLn(const zim::Char* text) = 0;

  /// Whether the file is not open or an operation on it failed.
  virtual bool fail() = 0;

  /// Reads up to `n` bytes as they stand in the file. Returns the count, 0 at the
  /// end and after a failure (`fail` tells which), or -1 when the file has no
  /// bytes to offer: so by default, and the caller reads lines instead.
  virtual long readBytes(char* buf, long n);

  /// Writes `n` bytes of text in the code page of written files (Windows 1252).
  /// False when the file did not take all of them. By default they are widened
  /// and handed to `writeLn`.
  virtual bool writeBytes(const char* text, long n);

 protected:
  /// `mode` is `kRead` or `kWrite`.
  IFile(const zim::WString& name, long mode) : m_name(name), m_mode(mode) {}
  IFile(const IFile&) = default;
  IFile& operator=(const IFile&) = default;

  zim::WString m_name;
  long m_mode;
};
