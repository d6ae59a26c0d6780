#pragma once

#include <algorithm>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "dxf/keep/recordwriter.h"
#include "dxf/keep/renames.h"
#include "dxf/keep/sourceedits.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/files/report.h"
#include "vek0core/files/textcodec.h"

namespace vek0::detail {

/// The records of entities. Entities are added first and then looked up.
class EntryMap {
 public:
  void add(const CEnt& ent, std::size_t entry) { m_pairs.emplace_back(&ent, entry); }
  /// Among those of an entity, the last counts: the earlier ones were those of a dropped entity.
  void sort() { std::stable_sort(m_pairs.begin(), m_pairs.end(), isBefore); }
  /// `SourceIndex::kNone` if the entity has none.
  std::size_t find(const CEnt* ent) const {
    const auto after = std::upper_bound(m_pairs.begin(), m_pairs.end(), Pair(ent, 0), isBefore);
    const bool isFound = after != m_pairs.begin() && std::prev(after)->first == ent;
    return isFound ? std::prev(after)->second : SourceIndex::kNone;
  }

 private:
  using Pair = std::pair<const CEnt*, std::size_t>;
  static bool isBefore(const Pair& a, const Pair& b) {
    return std::less<const CEnt*>()(a.first, b.first);
  }

  std::vector<Pair> m_pairs;
};

/// What the steps of saving an edited source share: both drawings, the source and its edits.
struct EditContext {
  EditContext(const CData& edited, std::string source, CFileReport* to)
      : data(edited),
        report(to),
        text(std::move(source)),
        index(text),
        edits(text, index, renames) {}

  const CData& data;  ///< as it is now
  CDataPtr pristine;  ///< as it was loaded
  CFileReport* report;
  SourceText text;
  SourceIndex index;
  Renames renames{};
  SourceEdits edits;
  SourceVersion version;
  CTextDecoder decoder{};                       ///< of the texts of the source
  std::unique_ptr<RecordWriter> before, after;  ///< of the pristine drawing; of the other
  EntryMap entries;                             ///< of the pristine entities

  /// The handle of a new entity: its own, unless something in the file has that.
  Handle handleFor(const CEnt& ent) {
    const Handle own = ent.GetHandle();
    const bool isFree = own > 0 && index.withHandle(own) == SourceIndex::kNone;
    return isFree ? edits.useHandle(own) : edits.takeHandle();
  }
  void note(ReportCode code, std::u16string_view sample) const {
    if (report) report->add(code, 0, sample);
  }
};

}  // namespace vek0::detail
