#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace vek0::detail {

/// Condenses values into 64 bits. Not for secrets: anyone can construct equal results. The
/// multiplier is 2^64 divided by the golden ratio, after D. Knuth, "The Art of Computer
/// Programming", volume 3, section 6.4.
class Mixer {
 public:
  void add(std::uint64_t bits) {
    m_value = (m_value ^ bits) * 0x9E3779B97F4A7C15U;
    m_value ^= m_value >> 29;
  }
  void addInteger(long value) { add(static_cast<std::uint64_t>(value)); }
  void add(double value) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    add(bits);
  }
  void add(std::u16string_view text) { addBytes(text.data(), text.size() * sizeof(char16_t)); }
  /// The same for bytes that come in pieces, apart from the last one, of multiples of 8.
  void addBytes(const void* data, std::size_t size) {
    const char* bytes = static_cast<const char*>(data);
    std::uint64_t word;
    for (; size >= sizeof word; size -= sizeof word, bytes += sizeof word) {
      std::memcpy(&word, bytes, sizeof word);
      add(word);
    }
    word = 0;
    std::memcpy(&word, bytes, size);
    add(word ^ std::uint64_t{size} << 56);
  }
  std::uint64_t value() const { return m_value; }

 private:
  std::uint64_t m_value = 0;
};

}  // namespace vek0::detail
