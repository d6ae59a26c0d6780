// The base of all tables: an array in the order of addition, and an index by name. Removal leaves a
// hole, so that the positions of other items do not change. Look-ups by position skip holes with a
// tree of ranks, and the array is compacted when holes become too many. Numbers after prefixes,
// such as *U12, are counted from the first request on, so that generating names is not quadratic.
#include "vek0core/tables/nameditem.h"

#include <algorithm>
#include <limits>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "tables/holes.h"
#include "tables/ranktree.h"

namespace {

constexpr std::size_t kLongRun = 64;  // holes skipped before they are closed
constexpr std::size_t kMostDigits = std::numeric_limits<int>::digits10 + 1;

bool isDigit(zim::Char unit) { return unit >= u'0' && unit <= u'9'; }

// The number that these digits spell in our canonical form, if any.
std::optional<int> canonicalNumber(std::u16string_view digits) {
  // A leading zero makes another name: "*U07" is not "*U7".
  if (digits.empty() || digits.size() > kMostDigits || digits[0] == u'0') return std::nullopt;
  long long value = 0;
  for (const zim::Char unit : digits) {
    if (!isDigit(unit)) return std::nullopt;
    value = value * 10 + (unit - u'0');
  }
  if (value > std::numeric_limits<int>::max()) return std::nullopt;
  return static_cast<int>(value);
}

zim::WString numbered(const zim::WString& prefix, int number) {
  return prefix + zim::WString::fromUtf8(std::to_string(number));
}

}  // namespace

CNamedItem::~CNamedItem() {
  if (m_table) m_table->remove(this);
}

bool CNamedItem::operator==(const CNamedItem& other) const {
  return m_flags == other.m_flags && m_name.EqualsIgnoreCase(other.m_name);
}

void CNamedItem::setName(const zim::WString& name) {
  if (m_table)
    m_table->rename(this, name);
  else
    m_name = name;
}

CNamedItem& CNamedItem::operator=(const CNamedItem& src) {
  if (this == &src) return *this;
  setName(src.m_name);
  m_flags = src.m_flags;
  return *this;
}

void CNamedItemTableImp::Numbers::take(int number) {
  auto range = free.upper_bound(number);
  if (range == free.begin() || (--range)->second < number) {
    // Several items may have one name, and only the last of them releases its number.
    ++repeated[number];
    return;
  }
  const int last = range->second;
  if (number < last) free.emplace_hint(std::next(range), number + 1, last);
  if (range->first < number)
    range->second = number - 1;
  else
    free.erase(range);
}

void CNamedItemTableImp::Numbers::give(int number) {
  if (const auto found = repeated.find(number); found != repeated.end()) {
    if (--found->second == 0) repeated.erase(found);
    return;
  }
  int first = number, last = number;
  // Merges the neighboring free ranges.
  const auto next = free.upper_bound(number);
  if (next != free.begin() && std::prev(next)->second == number - 1) first = std::prev(next)->first;
  if (next != free.end() && next->first == number + 1) {
    last = next->second;
    free.erase(next);
  }
  free[first] = last;
}

CNamedItemTableImp::CNamedItemTableImp() = default;

CNamedItemTableImp::CNamedItemTableImp(const CNamedItemTableImp& src)
    : m_nextRank(src.m_nextRank), m_isView(true), m_byName(src.m_byName), m_numbers(src.m_numbers) {
  src.compact();
  m_items = src.m_items;
}

CNamedItemTableImp::~CNamedItemTableImp() { CNamedItemTableImp::clearAll(); }

void CNamedItemTableImp::add(CNamedItem* item) {
  if (!item || item->m_table || m_isView) return;
  // Paid for by the removals that made the holes.
  if (m_holes > m_items.size() / 2) compact();
  if (m_items.size() == m_items.capacity()) {
    m_items.reserve(m_items.empty() ? 1 : 2 * m_items.size());
  }
  // Reserved before the first change, so that a lack of memory changes nothing.
  m_byName.reserveOne();
  item->m_rank = m_nextRank;
  m_byName.insert(item);
  changeNumbers(item->m_name, &Numbers::take);
  ++m_nextRank;
  item->m_pos = m_items.size();
  item->m_table = this;
  m_items.push_back(item);
  vek0::detail::appendUsed(m_ranks);
}

void CNamedItemTableImp::remove(CNamedItem* item) {
  if (!contains(item)) return;
  m_byName.remove(item);
  changeNumbers(item->m_name, &Numbers::give);
  m_items[item->m_pos] = nullptr;
  ++m_holes;
  if (m_ranks) m_ranks->remove(item->m_pos);
  item->m_table = nullptr;
}

CNamedItemTableImp::Place CNamedItemTableImp::getPlace(const CNamedItem& item) const {
  std::size_t next = vek0::detail::firstUsed(m_items, item.m_pos + 1);
  if (next > item.m_pos + kLongRun) {
    compact();
    next = item.m_pos + 1;
  }
  return {next < m_items.size() ? m_items[next] : nullptr, item.m_rank};
}

std::size_t CNamedItemTableImp::slotFor(const Place& place) {
  // If the former successor is gone, the item is appended.
  const std::size_t at = contains(place.next) ? place.next->m_pos : m_items.size();
  const std::size_t before = m_items.size();
  bool isMoved = false;
  const auto moved = [&isMoved](CNamedItem& item, std::size_t pos) {
    item.m_pos = pos;
    isMoved = true;
  };
  const std::size_t slot = vek0::detail::holeBefore(m_items, at, m_holes, moved);
  if (isMoved || m_items.size() != before) m_ranks.reset();
  return slot;
}

void CNamedItemTableImp::restore(CNamedItem* item, const Place& place) {
  if (!item || item->m_table || m_isView) return;
  m_byName.reserveOne();
  const std::size_t slot = slotFor(place);
  item->m_rank = place.rank;
  m_byName.insert(item);
  changeNumbers(item->m_name, &Numbers::take);
  item->m_pos = slot;
  item->m_table = this;
  m_items[slot] = item;
  --m_holes;
  if (m_ranks) m_ranks->fill(slot);
}

CNamedItem* CNamedItemTableImp::get(std::u16string_view name) const { return m_byName.find(name); }

// Closing the holes at every look-up would make a loop of look-ups and removals quadratic. So
// look-ups search through them until that has cost as much as closing them.
CNamedItem* CNamedItemTableImp::operator[](int i) const {
  const auto rank = static_cast<std::size_t>(i);
  if (m_holes != 0) {
    if (m_holes <= m_items.size() / 2 && ++m_lookups <= m_items.size()) {
      if (vek0::detail::needRanks(m_ranks, m_items)) return m_items[m_ranks->select(rank)];
    }
    compact();
  }
  return m_items[rank];
}

void CNamedItemTableImp::clearAll() {
  // Detach all items before deleting the first: their destructors must not look for their position.
  for (const CNamedItem* item : removeAll()) delete item;
}

std::vector<CNamedItem*> CNamedItemTableImp::removeAll() {
  std::vector<CNamedItem*> items;
  items.swap(m_items);
  m_ranks.reset();
  m_holes = m_lookups = 0;
  m_byName.clear();
  m_numbers.clear();
  if (m_isView) return {};
  std::erase(items, nullptr);
  for (CNamedItem* item : items) item->m_table = nullptr;
  return items;
}

int CNamedItemTableImp::getProgNum(const zim::WString& prefix) const {
  const auto known = m_numbers.find(prefix);
  if (known != m_numbers.end()) return known->second.smallestFree();
  Numbers numbers;
  for (const CNamedItem* item : m_items) {
    if (!item) continue;
    const std::u16string_view name = item->m_name;
    if (name.substr(0, prefix.Length()) != prefix.view()) continue;
    if (const auto number = canonicalNumber(name.substr(prefix.Length()))) numbers.take(*number);
  }
  return m_numbers.emplace(prefix, std::move(numbers)).first->second.smallestFree();
}

zim::WString CNamedItemTableImp::GetProgName(const zim::WString& prefix) const {
  return numbered(prefix, getProgNum(prefix));
}

void CNamedItemTableImp::rename(CNamedItem* item, const zim::WString& name) {
  // Reserved first: after this, the assignment of the name cannot fail.
  item->m_name.reserve(name.Length());
  m_byName.remove(item);
  try {
    m_byName.reserveOne();
  } catch (const std::bad_alloc&) {
    m_byName.insert(item);
    throw;
  }
  changeNumbers(item->m_name, &Numbers::give);
  item->m_name = name;
  changeNumbers(item->m_name, &Numbers::take);
  m_byName.insert(item);
}

// A name that ends in digits splits into prefix and number in as many ways as it has trailing
// digits; only requested prefixes are kept.
void CNamedItemTableImp::changeNumbers(std::u16string_view name, NumberChange change) {
  if (m_numbers.empty()) return;
  try {
    for (std::size_t digits = 1; digits <= std::min(kMostDigits, name.size()); ++digits) {
      const std::size_t at = name.size() - digits;
      // Longer suffixes contain this unit as well, so none of them is a number.
      if (!isDigit(name[at])) return;
      const auto found = m_numbers.find(name.substr(0, at));
      if (found == m_numbers.end()) continue;
      if (const auto number = canonicalNumber(name.substr(at))) (found->second.*change)(*number);
    }
  } catch (const std::bad_alloc&) {
    m_numbers.clear();  // recounted on demand
  }
}

void CNamedItemTableImp::compact() const {
  std::erase(m_items, nullptr);
  for (std::size_t i = 0; i < m_items.size(); ++i) m_items[i]->m_pos = i;
  m_ranks.reset();
  m_holes = m_lookups = 0;
}
