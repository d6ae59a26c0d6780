#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class IFile;

namespace vek0::paint {

/// Writes the objects of a PDF one after the other; memory holds only where each one begins.
class PdfFile {
 public:
  /// `file` is open and borrowed.
  explicit PdfFile(IFile& file);

  /// The number of an object that will be written later, for references to it.
  int reserve();
  void write(int number, std::string_view object);
  /// Writes an object and returns its number.
  int add(std::string_view object);
  /// Writes a stream of compressed bytes with further entries of its dictionary.
  int addCompressed(std::string_view bytes, const std::string& entries = {});
  /// Compresses bytes and writes them as a stream.
  int addStream(std::string_view bytes, const std::string& entries = {});

  /// Writes the table of objects, and an identifier computed from all bytes so far. Returns false
  /// if anything could not be written, or if the file reached 10^10 bytes, which the table cannot
  /// express. Call it once, after all reserved objects are written.
  bool finish(int catalog, int info);

 private:
  void begin(int number);
  void put(std::string_view bytes);
  void flush();

  IFile& m_file;
  bool m_good = true;
  std::string m_buffer;                // not written yet
  std::uint64_t m_size = 0;            // of the file so far
  std::uint64_t m_hash[2];             // of the bytes so far
  std::vector<std::uint64_t> m_at{0};  // where the objects begin, by number
};

/// "12 0 R".
std::string pdfReference(int number);
/// A list of references: "[ 3 0 R 4 0 R ]".
std::string pdfReferences(const std::vector<int>& numbers);

}  // namespace vek0::paint
