#include "pdffile.h"

#include <array>
#include <cstdio>

#include "pdfstream.h"
#include "vek0core/files/file.h"

namespace vek0::paint {
namespace {

constexpr std::size_t kWriteSize = 1 << 16;
// The table of objects states each position in ten digits.
constexpr std::uint64_t kMostBytes = 10'000'000'000;
constexpr std::uint64_t kHashBasis = 14695981039346656037ULL, kHashPrime = 1099511628211ULL;

}  // namespace

std::string pdfReference(int number) { return std::to_string(number) + " 0 R"; }

std::string pdfReferences(const std::vector<int>& numbers) {
  std::string list = "[ ";
  for (const int number : numbers) list += pdfReference(number) + " ";
  return list + "]";
}

PdfFile::PdfFile(IFile& file) : m_file(file), m_hash{kHashBasis, ~kHashBasis} {
  // Version 1.5 is the first with layers. The second line marks the file as binary.
  put("%PDF-1.5\n%\xE2\xE3\xCF\xD3\n");
}

void PdfFile::put(std::string_view bytes) {
  // FNV-1a, from two bases.
  for (const char byte : bytes) {
    m_hash[0] = (m_hash[0] ^ static_cast<unsigned char>(byte)) * kHashPrime;
    m_hash[1] = (m_hash[1] ^ static_cast<unsigned char>(byte)) * kHashPrime;
  }
  m_size += bytes.size();
  m_buffer += bytes;
  if (m_buffer.size() >= kWriteSize) flush();
}

void PdfFile::flush() {
  m_good = m_good && m_size < kMostBytes &&
           m_file.writeBytes(m_buffer.data(), static_cast<long>(m_buffer.size()));
  m_buffer.clear();
}

int PdfFile::reserve() {
  m_at.push_back(0);
  return static_cast<int>(m_at.size()) - 1;
}

void PdfFile::begin(int number) {
  m_at[static_cast<std::size_t>(number)] = m_size;
  put(std::to_string(number) + " 0 obj\n");
}

void PdfFile::write(int number, std::string_view object) {
  begin(number);
  put(object);
  put("\nendobj\n");
}

int PdfFile::add(std::string_view object) {
  const int number = reserve();
  write(number, object);
  return number;
}

int PdfFile::addCompressed(std::string_view bytes, const std::string& entries) {
  const int number = reserve();
  begin(number);
  put("<< " + entries + "/Filter /FlateDecode /Length " + std::to_string(bytes.size()) +
      " >>\nstream\n");
  put(bytes);
  put("\nendstream\nendobj\n");
  return number;
}

int PdfFile::addStream(std::string_view bytes, const std::string& entries) {
  return addCompressed(deflated(bytes), entries);
}

bool PdfFile::finish(int catalog, int info) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "<%016llX%016llX>",
                static_cast<unsigned long long>(m_hash[0]),
                static_cast<unsigned long long>(m_hash[1]));
  const std::string id = text.data(), size = std::to_string(m_at.size());
  const std::uint64_t start = m_size;
  // Each entry has twenty bytes.
  put("xref\n0 " + size + "\n0000000000 65535 f \n");
  for (std::size_t i = 1; i < m_at.size(); ++i) {
    std::snprintf(text.data(), text.size(), "%010llu 00000 n \n",
                  static_cast<unsigned long long>(m_at[i]));
    put(text.data());
  }
  put("trailer\n<< /Size " + size + " /Root " + pdfReference(catalog) + " /Info " +
      pdfReference(info) + " /ID [ " + id + " " + id + " ] >>\nstartxref\n" +
      std::to_string(start) + "\n%%EOF\n");
  flush();
  return m_good;
}

}  // namespace vek0::paint
