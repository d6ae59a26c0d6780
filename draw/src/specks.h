#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "vek0core/geometry/pnt.h"

namespace vek0::detail {

/// Remembers keys as long as no other one takes their slot: a bounded memory that may forget
/// and never invents.
class RecentKeys {
 public:
  explicit RecentKeys(int bits) : m_count(std::size_t{1} << bits) {}

  /// Whether the key is not the one that its slot holds; now it is. The first call takes the
  /// memory, eight bytes a slot.
  bool add(std::uint64_t slot, std::uint64_t key);
  bool has(std::uint64_t slot, std::uint64_t key) const {
    return !m_keys.empty() && m_keys[slot & (m_count - 1)] == key;
  }

 private:
  const std::size_t m_count;
  std::vector<std::uint64_t> m_keys;
};

/// Mixes numbers to a key that tells them apart.
class KeyMixer {
 public:
  KeyMixer& operator<<(std::uint64_t value);
  /// A length on the device; false, and nothing mixed, where it is too large to be told.
  bool length(double value, double step);
  std::uint64_t key() const { return m_key; }

 private:
  std::uint64_t m_key = 0x9E3779B97F4A7C15;
};

/// Where dots stand already, in cells as large as a dot.
class Specks {
 public:
  /// Device units.
  Specks(double cell, double width) : m_cell(cell), m_columns(width / cell + 2) {}

  /// Whether a dot stands near the point. `epoch` tells pictures apart between which something may
  /// have covered the dots.
  bool has(const PNT_2D& at, std::size_t epoch) const;
  void add(const PNT_2D& at, std::size_t epoch);

 private:
  struct Place {
    std::uint64_t slot, key;  // no key: too far away to be told
  };
  Place placeOf(const PNT_2D& at, std::size_t epoch) const;

  const double m_cell, m_columns;
  RecentKeys m_keys{22};
};

}  // namespace vek0::detail
