#include "specks.h"

#include <cmath>

namespace vek0::detail {

bool RecentKeys::add(std::uint64_t slot, std::uint64_t key) {
  if (m_keys.empty()) m_keys.resize(m_count);
  std::uint64_t& held = m_keys[placeOf(slot)];
  const bool isNew = held != key;
  held = key;
  return isNew;
}

// The finalizer of SplitMix64 (Steele, Lea, Flood: Fast splittable pseudorandom number
// generators, 2014), which spreads every bit.
KeyMixer& KeyMixer::operator<<(std::uint64_t value) {
  std::uint64_t z = m_key + value + 0x9E3779B97F4A7C15;
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
  m_key = z ^ (z >> 31);
  return *this;
}

bool KeyMixer::length(double value, double step) {
  constexpr double most = 1e15;
  if (!(std::fabs(value) <= most * step)) return false;
  *this << static_cast<std::uint64_t>(std::llround(value / step));
  return true;
}

Specks::Place Specks::placeOf(const PNT_2D& at, std::size_t epoch) const {
  const double column = std::floor(at.x / m_cell), row = std::floor(at.y / m_cell);
  KeyMixer mixer;
  mixer << epoch;
  if (!mixer.length(column, 1) || !mixer.length(row, 1)) return {0, 0};
  return {static_cast<std::uint64_t>(std::llround(row * m_columns + column)), mixer.key()};
}

bool Specks::has(const PNT_2D& at, std::size_t epoch) const {
  const Place place = placeOf(at, epoch);
  return place.key != 0 && m_keys.has(place.slot, place.key);
}

void Specks::add(const PNT_2D& at, std::size_t epoch) {
  const Place place = placeOf(at, epoch);
  if (place.key != 0) m_keys.add(place.slot, place.key);
}

}  // namespace vek0::detail
