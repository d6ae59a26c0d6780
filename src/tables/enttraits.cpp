// The table of traits that entities share. Readers find traits by index without a lock: the table
// consists of chunks that double in size and never move. Adding and removing traits takes a lock;
// use counts are atomic.
#include "vek0core/tables/enttraits.h"

#include <array>
#include <atomic>
#include <bit>
#include <functional>
#include <memory>
#include <mutex>
#include <new>
#include <unordered_set>
#include <utility>

namespace vek0::detail {
namespace {

struct Slot {
  ENT_TRAITS traits;
  std::atomic<std::uint32_t> uses{0};
  std::uint32_t nextFree = 0;
  bool isListed = false;  // among those that equal traits find
};

class Table {
 public:
  // Never destroyed: static objects may hold entities.
  static Table& instance() {
    static Table& table = *new Table;
    return table;
  }

  std::uint32_t intern(const ENT_TRAITS& traits) {
    const std::lock_guard lock(m_mutex);
    if (const auto found = m_listed.find(traits); found != m_listed.end()) {
      ++at(*found).uses;
      return *found;
    }
    const std::uint32_t index = m_free != 0 ? m_free : addSlot();
    Slot& slot = at(index);
    slot.traits = traits;
    m_listed.insert(index);
    m_free = slot.nextFree;
    slot.isListed = true;
    slot.uses = 1;
    return index;
  }

  // The caller has a reference, so the count cannot be 0.
  void addUse(std::uint32_t index) { ++at(index).uses; }

  void release(std::uint32_t index) {
    Slot& slot = at(index);
    if (--slot.uses != 0) return;
    const std::lock_guard lock(m_mutex);
    // Meanwhile others may have used the traits again, or have removed them.
    if (slot.uses != 0 || !slot.isListed) return;
    m_listed.erase(index);
    slot.isListed = false;
    slot.nextFree = m_free;
    m_free = index;
  }

  Slot& at(std::uint32_t index) {
    const std::size_t chunk = chunkOf(index);
    Slot* slots = m_chunks[chunk].load(std::memory_order_acquire);
    return slots[index - (std::uint32_t{1} << chunk)];
  }

 private:
  struct Hash {
    using is_transparent = void;
    Table* table;
    std::size_t operator()(std::uint32_t index) const { return (*this)(table->at(index).traits); }
    std::size_t operator()(const ENT_TRAITS& t) const {
      std::uint64_t hash = t.trueColor;
      const auto mix = [&hash](std::uint64_t value) {
        hash = (hash ^ value) * 0x9E3779B97F4A7C15u;  // the golden ratio spreads the bits
        hash ^= hash >> 32;
      };
      mix(static_cast<std::uint16_t>(t.lineweight));
      mix(static_cast<std::uint16_t>(t.opacity));
      mix(t.isVisible ? 1 : 0);
      mix(std::hash<double>()(t.ltypeScale));
      mix(std::hash<double>()(t.thickness));
      return static_cast<std::size_t>(hash);
    }
  };
  struct Equal {
    using is_transparent = void;
    Table* table;
    bool operator()(std::uint32_t a, std::uint32_t b) const { return a == b; }
    bool operator()(const ENT_TRAITS& a, std::uint32_t b) const { return a == table->at(b).traits; }
    bool operator()(std::uint32_t a, const ENT_TRAITS& b) const { return b == table->at(a).traits; }
  };

  // Chunk k has the 2^k indexes from 2^k on; index 0, the default traits, has no slot.
  static std::size_t chunkOf(std::uint32_t index) {
    return static_cast<std::size_t>(std::bit_width(index / 2));
  }

  std::uint32_t addSlot() {
    if (m_next == 0) throw std::bad_alloc();  // all indexes are used
    const std::size_t chunk = chunkOf(m_next);
    if (m_chunks[chunk].load(std::memory_order_relaxed) == nullptr)
      m_chunks[chunk].store(new Slot[std::size_t{1} << chunk], std::memory_order_release);
    const std::uint32_t index = m_next++;
    at(index).nextFree = std::exchange(m_free, index);
    return index;
  }

  std::mutex m_mutex;
  std::array<std::atomic<Slot*>, 32> m_chunks{};
  std::uint32_t m_next = 1;
  std::uint32_t m_free = 0;  // the first of a list; 0 at the end
  std::unordered_set<std::uint32_t, Hash, Equal> m_listed{0, Hash{this}, Equal{this}};
};

}  // namespace

EntTraitsRef::EntTraitsRef(const ENT_TRAITS& traits)
    : m_index(traits == ENT_TRAITS() ? 0 : Table::instance().intern(traits)) {}

EntTraitsRef::EntTraitsRef(const EntTraitsRef& src) noexcept : m_index(src.m_index) {
  if (m_index != 0) Table::instance().addUse(m_index);
}

EntTraitsRef& EntTraitsRef::operator=(const EntTraitsRef& src) noexcept {
  return *this = EntTraitsRef(src);
}

EntTraitsRef& EntTraitsRef::operator=(EntTraitsRef&& src) noexcept {
  std::swap(m_index, src.m_index);
  return *this;
}

const ENT_TRAITS& EntTraitsRef::get() const {
  static const ENT_TRAITS defaults;
  return m_index == 0 ? defaults : Table::instance().at(m_index).traits;
}

void EntTraitsRef::release() noexcept {
  Table::instance().release(m_index);
  m_index = 0;
}

}  // namespace vek0::detail
