#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/files/reportcode.h"
#include "zim0lang/wstring.h"

/// Records whatever reading or saving repaired, dropped or approximated: none of it happens
/// silently.
///
/// Reports with the same code and sample share one entry with a count. At most `kMaxEntries`
/// entries keep their samples; later ones with new samples are counted in one entry per code with
/// an empty sample, so that no file can make a report grow without bound.
class VEK0_API CFileReport {
 public:
  static constexpr std::size_t kMaxEntries = 1000;

  struct Entry {
    ReportCode code;      ///< what happened
    long firstLine;       ///< line of the file where it first occurred; 0 if not applicable
    long count;           ///< number of occurrences
    zim::WString sample;  ///< the offending name or value
  };

  /// Records `code` at `line`. Amortized constant cost.
  void add(ReportCode code, long line, std::u16string_view sample = {});

  /// Entries in order of first occurrence.
  const std::vector<Entry>& entries() const { return m_entries; }
  bool empty() const { return m_entries.empty(); }
  /// Number of occurrences of `code`, over all samples.
  long count(ReportCode code) const;
  /// The same for the code with that text; 0 if there is no such code.
  long count(std::string_view text) const;

 private:
  Entry* find(std::size_t hash, ReportCode code, std::u16string_view sample);

  std::vector<Entry> m_entries;
  std::unordered_multimap<std::size_t, std::size_t> m_byHash;  // to indexes of m_entries
};
