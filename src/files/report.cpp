#include "vek0core/files/report.h"

#include <algorithm>
#include <functional>
#include <new>

namespace {

std::size_t hashOf(ReportCode code, std::u16string_view sample) {
  constexpr std::size_t kSpread = 31;
  return static_cast<std::size_t>(code) * kSpread + std::hash<std::u16string_view>()(sample);
}

}  // namespace

CFileReport::Entry* CFileReport::find(std::size_t hash, ReportCode code,
                                      std::u16string_view sample) {
  const auto [first, last] = m_byHash.equal_range(hash);
  const auto found = std::find_if(first, last, [&](const auto& item) {
    const Entry& entry = m_entries[item.second];
    return code == entry.code && sample == entry.sample.view();
  });
  return found == last ? nullptr : &m_entries[found->second];
}

void CFileReport::add(ReportCode code, long line, std::u16string_view sample) {
  std::size_t hash = hashOf(code, sample);
  Entry* known = find(hash, code, sample);
  if (!known && m_entries.size() >= kMaxEntries && !sample.empty()) {
    sample = {};
    hash = hashOf(code, sample);
    known = find(hash, code, sample);
  }
  if (known) {
    ++known->count;
    return;
  }
  m_entries.push_back({code, line, 1, zim::WString(sample)});
  try {
    m_byHash.emplace(hash, m_entries.size() - 1);
  } catch (const std::bad_alloc&) {
    m_entries.pop_back();
    throw;
  }
}

long CFileReport::count(ReportCode code) const {
  long sum = 0;
  for (const Entry& entry : m_entries) {
    if (code == entry.code) sum += entry.count;
  }
  return sum;
}

long CFileReport::count(std::string_view text) const {
  const std::optional<ReportCode> code = findReportCode(text);
  return code ? count(*code) : 0;
}
