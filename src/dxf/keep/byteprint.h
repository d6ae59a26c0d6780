#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "files/mixer.h"

namespace vek0::detail {

/// Size and fingerprint of bytes that come in pieces of any size.
class BytePrint {
 public:
  void add(const char* bytes, std::size_t size) {
    m_size += size;
    const std::size_t first = m_held == 0 ? 0 : std::min(size, sizeof m_word - m_held);
    hold(bytes, first);
    const std::size_t whole = (size - first) / sizeof m_word * sizeof m_word;
    for (std::size_t i = first; i < first + whole; i += sizeof m_word)
      hold(bytes + i, sizeof m_word);
    hold(bytes + first + whole, size - first - whole);
  }
  std::uint64_t size() const { return m_size; }
  std::uint64_t value() const {
    Mixer whole = m_mix;
    whole.addBytes(m_word, m_held);
    return whole.value();
  }

 private:
  void hold(const char* bytes, std::size_t size) {
    std::memcpy(m_word + m_held, bytes, size);
    m_held += size;
    if (m_held < sizeof m_word) return;
    std::uint64_t word;
    std::memcpy(&word, m_word, sizeof word);
    m_mix.add(word);
    m_held = 0;
  }

  Mixer m_mix;
  std::uint64_t m_size = 0;
  char m_word[sizeof(std::uint64_t)];
  std::size_t m_held = 0;
};

}  // namespace vek0::detail
