#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "dxf/keep/sourcerecord.h"
#include "vek0core/files/file.h"

namespace vek0::detail {

/// Bytes as a file for reading; they are borrowed.
class BytesFile final : public IFile {
 public:
  /// The parts follow each other.
  explicit BytesFile(std::string_view first, std::string_view second = {})
      : IFile(u"memory", kRead), m_parts{first, second} {}

  bool open() override { return m_isOpen = true; }
  void close() override { m_isOpen = false; }
  bool isOpened() override { return m_isOpen; }
  long read(zim::Char*, long) override { return -1; }
  long write(const zim::Char*, long) override { return -1; }
  bool readLn(zim::Char*, long) override { return false; }
  bool writeLn(const zim::Char*) override { return false; }
  bool fail() override { return !m_isOpen; }
  long readBytes(char* buf, long n) override;

 private:
  std::string_view m_parts[2];
  bool m_isOpen = false;
};

/// The bytes of a source file, with the form of its lines and pairs. Offsets are in bytes. Lines
/// are those of `LineReader`; a pair of a binary file counts as two.
class SourceText {
 public:
  explicit SourceText(std::string bytes);

  std::string_view bytes() const { return m_bytes; }
  /// Whether the lines are those of the file: neither binary nor UTF-16.
  bool isPlain() const { return m_form == Form::Bytes; }
  /// Offset of the first line.
  std::size_t start() const { return m_start; }
  /// Offset after `count` lines, an even number in binary files, from the offset `begin`.
  std::size_t pass(std::size_t begin, long count) const;
  /// Whether a pair with code 0 may begin at that offset.
  bool mayBeginRecord(std::size_t at) const;

  /// The pairs of the record from `begin` to `end`. Their lines count from 1 within the record.
  SourceRecord read(std::size_t begin, std::size_t end) const;
  /// The bytes of that record with the pairs of `edited` instead of those of `original`: pairs of
  /// the source in their order, new and changed ones. Copies what lies between pairs, such as
  /// comments, and keeps the form of lines.
  std::string write(std::size_t begin, std::size_t end, const SourceRecord& original,
                    const SourceRecord& edited) const;
  /// A new record as bytes.
  std::string write(const SourceRecord& record) const;

 private:
  enum class Form { Bytes, Utf16Le, Utf16Be, Narrow, Wide };

  bool isBinary() const { return m_form == Form::Narrow || m_form == Form::Wide; }
  std::size_t lineEnd(std::size_t begin, std::size_t& lone) const;
  std::size_t plainLineEnd(std::size_t begin) const;
  std::size_t wideLineEnd(std::size_t begin, std::size_t& lone) const;
  char16_t unitAt(std::size_t at) const;
  std::string text(std::size_t begin, std::size_t end) const;
  bool readPlain(std::size_t begin, std::size_t end, SourceRecord& record) const;
  void rewrite(std::string& out, std::size_t at, const SourcePair& pair) const;
  void append(std::string& out, const SourcePair& pair) const;
  void appendText(std::string& out, std::string_view utf8) const;

  std::string m_bytes;
  Form m_form = Form::Bytes;
  std::size_t m_start = 0;
  std::string m_lineEnd = "\n";
  bool m_isAligned = false;  // codes are right-aligned in three columns
};

}  // namespace vek0::detail
