#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace vek0::fuzz {

inline void require(bool condition) {
  if (!condition) std::abort();
}

/// Reads numbers from the input until it is exhausted; then all are 0.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}

  bool isEmpty() const { return m_size == 0; }

  int byte() {
    if (m_size == 0) return 0;
    --m_size;
    return *m_data++;
  }

  /// Small numbers hit lines, corners and each other; the rest are arbitrary bits.
  double number() {
    const int kind = byte();
    if (kind < 200) return (kind - 100) / 4.0;
    if (kind < 240) return (kind - 220) * 1e3 + byte() / 7.0;
    std::uint8_t bits[sizeof(double)];
    for (std::uint8_t& b : bits) b = static_cast<std::uint8_t>(byte());
    double value;
    std::memcpy(&value, bits, sizeof value);
    return value;
  }

 private:
  const std::uint8_t* m_data;
  std::size_t m_size;
};

}  // namespace vek0::fuzz
