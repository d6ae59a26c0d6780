#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "vek0core/geometry/pnt.h"

namespace vek0::detail {

/// Remembers keys until another one takes their slot: bounded memory that may forget keys, but
/// never reports one that was not added.
class RecentKeys {
 public:
  explicit RecentKeys(int bits) : m_count(std::size_t{1} << bits) {}

  /// Stores the key in its slot; returns whether the slot held another one. The first call
  /// allocates eight bytes per slot.
  bool add(std::uint64_t slot, std::uint64_t key);
  bool has(std::uint64_t slot, std::uint64_t key) const {
    return !m_keys.empty() && m_keys[placeOf(slot)] == key;
  }

 private:
  std::size_t placeOf(std::uint64_t slot) const {
    return static_cast<std::size_t>(slot & (m_count - 1));
  }

  const std::size_t m_count;
  std::vector<std::uint64_t> m_keys;
};

/// Mixes numbers into a key for comparison.
class KeyMixer {
 public:
  KeyMixer& operator<<(std::uint64_t value);
  /// Mixes a length on the device; false, mixing nothing, if it is too large to be represented.
  bool length(double value, double step);
  std::uint64_t key() const { return m_key; }

 private:
  std::uint64_t m_key = 0x9E3779B97F4A7C15;
};

/// The places that already have dots, in cells as large as a dot.
class Specks {
 public:
  /// Device units.
  Specks(double cell, double width) : m_cell(cell), m_columns(width / cell + 2) {}

  /// Whether there is a dot near the point. Dots of another `epoch` do not count, because something
  /// may have covered them since.
  bool has(const PNT_2D& at, std::size_t epoch) const;
  void add(const PNT_2D& at, std::size_t epoch);

 private:
  struct Place {
    std::uint64_t slot, key;  // no key: out of range
  };
  Place placeOf(const PNT_2D& at, std::size_t epoch) const;

  const double m_cell, m_columns;
  RecentKeys m_keys{22};
};

}  // namespace vek0::detail
