#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "vek0core/export.h"
#include "zim0lang/wstring.h"

/// What reading or saving repaired, left out or approximated: nothing of that
/// happens silently.
///
/// Notes of the same code and sample are one entry with a count. At most
/// `kMaxEntries` entries keep their samples; later ones of other samples are
/// counted in one entry a code with an empty sample, so that no file can make a
/// report grow without bound.
class VEK0_API CFileReport {
 public:
  static constexpr std::size_t kMaxEntries = 1000;

  struct Entry {
    const char* code;     ///< what happened, in a fixed phrase
    long firstLine;       ///< line of the file where it happened first; 0 when it has none
    long count;           ///< how often
    zim::WString sample;  ///< the name or value at fault
  };

  /// Notes that `code` happened at `line`. `code` is a literal: it is kept as it
  /// is and compared by its text. Constant cost on average.
  void add(const char* code, long line, std::u16string_view sample = {});

  /// In the order of their first occurrence.
  const std::vector<Entry>& entries() const { return m_entries; }
  bool empty() const { return m_entries.empty(); }
  /// How often `code` was noted, over all samples.
  long count(std::string_view code) const;

 private:
  Entry* find(std::size_t hash, std::string_view code, std::u16string_view sample);

  std::vector<Entry> m_entries;
  std::unordered_multimap<std::size_t, std::size_t> m_byHash;  // to indexes of m_entries
};
