#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <future>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vek0::paint {

/// Appends an integer.
void appendInteger(std::string& out, std::int64_t value);

/// Appends a number with six significant digits, at most twelve decimals, and never an exponent.
void appendReal(std::string& out, double value);

/// Appends 16 bits as four hexadecimal digits.
void appendUnit(std::string& out, unsigned unit);

/// The hexadecimal digits of a text in UTF-16BE. Control characters, which could switch the
/// language in readers, become blanks, and unpaired surrogates U+FFFD.
std::string hexOfUtf16(std::u16string_view text);

/// The same as a text string: "<FEFF0041>".
std::string pdfText(std::u16string_view text);

/// Compresses bytes as zlib does. Throws `std::bad_alloc`.
std::string deflated(std::string_view bytes);

/// The operators of pages, compressed in blocks while they are written: another thread compresses
/// some blocks while the next ones fill.
class PdfStream {
 public:
  /// Receives the compressed blocks in order.
  using Sink = std::function<void(std::string_view)>;

  explicit PdfStream(Sink sink) : m_sink(std::move(sink)) {}

  /// The operators that are not compressed yet, to which callers append.
  std::string& text() { return m_text; }
  /// Call it between operators: blocks end only there.
  void endOperator() {
    if (m_text.size() >= kBlock) endBlock();
  }
  /// Passes on the rest.
  void finish();

 private:
  // Less than the 64 KB of qpdf's buffer: where the text of a longer stream exactly fills it at the
  // end of a piece of input, qpdf warns that the stream might be incomplete.
  static constexpr std::size_t kBlock = 48 << 10;
  // Starting a thread takes as long as compressing some kilobytes.
  static constexpr std::size_t kTogether = 16;

  void endBlock();
  void compress();
  void passOn();

  Sink m_sink;
  std::string m_text;
  std::vector<std::string> m_texts;                // complete blocks
  std::future<std::vector<std::string>> m_blocks;  // those that are being compressed
};

}  // namespace vek0::paint
