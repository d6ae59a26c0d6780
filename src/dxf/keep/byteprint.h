#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "files/mixer.h"

namespace vek0::detail {

/// Size and fingerprint of bytes that come in pieces of any size. Four mixers take turns, because
/// each step of one has to wait for its last.
class BytePrint {
 public:
  void add(const char* bytes, std::size_t size) {
    m_size += size;
    if (m_held != 0) {
      const std::size_t first = std::min(size, sizeof m_block - m_held);
      hold(bytes, first);
      if (m_held < sizeof m_block) return;
      mix(m_block);
      m_held = 0;
      bytes += first;
      size -= first;
    }
    for (; size >= sizeof m_block; size -= sizeof m_block, bytes += sizeof m_block) mix(bytes);
    hold(bytes, size);
  }
  std::uint64_t size() const { return m_size; }
  std::uint64_t value() const {
    Mixer whole;
    for (const Mixer& lane : m_lanes) whole.add(lane.value());
    whole.addBytes(m_block, m_held);
    return whole.value();
  }

 private:
  static constexpr std::size_t kLanes = 4, kWord = sizeof(std::uint64_t);

  void hold(const char* bytes, std::size_t size) {
    std::memcpy(m_block + m_held, bytes, size);
    m_held += size;
  }
  void mix(const char* block) {
    for (std::size_t i = 0; i < kLanes; ++i) {
      std::uint64_t word;
      std::memcpy(&word, block + i * kWord, kWord);
      m_lanes[i].add(word);
    }
  }

  Mixer m_lanes[kLanes];
  std::uint64_t m_size = 0;
  char m_block[kLanes * kWord];
  std::size_t m_held = 0;
};

}  // namespace vek0::detail
