#pragma once

#include <functional>
#include <map>
#include <string>
#include <unordered_set>
#include <vector>

#include "dxf/keep/renames.h"
#include "dxf/keep/sourceindex.h"

class IFile;

namespace vek0::detail {

/// The edits of a source file, which are collected first and then written in one pass: records that
/// go, records that come before others, and records that change.
class SourceEdits {
 public:
  /// All are borrowed.
  SourceEdits(const SourceText& text, const SourceIndex& index, const Renames& renames);

  void remove(std::size_t entry) { m_removed.insert(entry); }
  bool isRemoved(std::size_t entry) const { return m_removed.contains(entry); }
  /// Adds a record before that of `entry`, behind those added there earlier.
  void addBefore(std::size_t entry, const SourceRecord& record) {
    m_added[entry] += m_text.write(record);
  }
  /// Ends the section before that record, behind all that is added there, and with it the file if
  /// it is cut.
  void close(std::size_t entry) { m_closed.insert(entry); }
  /// The record with its changes so far, renamed items included.
  SourceRecord read(std::size_t entry) const;
  /// The record, to be changed.
  SourceRecord& change(std::size_t entry);
  /// The entity's records will be rewritten (`Rewrite`).
  void rewrite(std::size_t entry) { m_rewritten.insert(entry); }
  bool isRewritten(std::size_t entry) const { return m_rewritten.contains(entry); }

  /// A handle that nothing in the file has.
  Handle takeHandle();
  Handle nextHandle() const { return m_next; }
  /// Uses a handle that nothing in the file has, below `nextHandle`.
  Handle useHandle(Handle handle) {
    m_hasUsed = true;
    return handle;
  }
  bool hasTaken() const { return m_hasUsed || m_next != m_firstFresh; }
  /// Whether handles above all others are left, so that `nextHandle` is above those taken.
  bool hasRoomAbove() const { return m_index.highest() < kMostSeed; }
  /// Handles below this one are taken, unless it is absurdly high; before the first `takeHandle`.
  void setSeed(Handle seed);

  /// The handles of what was removed: every pointer to them goes, as far as the format allows.
  std::unordered_set<Handle>& forgotten() { return m_forgotten; }

  /// Returns the records of an entity as they become; `records` are those of the source.
  using Rewrite = std::function<std::vector<SourceRecord>(std::size_t entry,
                                                          std::vector<SourceRecord> records)>;
  /// Called for pointers to what was removed that could not be removed themselves.
  using Dangling = std::function<void(std::size_t entry, long code, Handle handle)>;
  /// Writes the file; false if that fails.
  bool write(IFile& file, const Rewrite& rewrite, const Dangling& dangling) const;

 private:
  // Leaves room for as many handles as a file can need.
  static constexpr Handle kMostSeed = Handle{1} << 62;

  class Output;

  void writeEntity(Output& out, std::size_t entry, const Rewrite& rewrite,
                   const Dangling& dangling) const;
  SourceRecord current(std::size_t entry) const;
  bool follow(std::size_t entry, SourceRecord& record, const Dangling& dangling) const;
  bool forget(std::size_t entry, SourceRecord& record, const Dangling& dangling) const;
  std::size_t cutEnd() const;

  const SourceText& m_text;
  const SourceIndex& m_index;
  const Renames& m_renames;
  std::unordered_set<std::size_t> m_removed, m_rewritten, m_closed;
  std::map<std::size_t, std::string> m_added;
  std::map<std::size_t, SourceRecord> m_changed;
  std::unordered_set<Handle> m_forgotten;
  Handle m_firstFresh = 1, m_next = 1;
  bool m_hasUsed = false;
};

}  // namespace vek0::detail
