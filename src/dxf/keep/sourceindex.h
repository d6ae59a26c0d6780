#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "dxf/keep/sourcetext.h"
#include "vek0core/tables/handle.h"

namespace vek0::detail {

/// The text without blanks before it, with ASCII letters in upper case.
std::string upperCase(std::string_view text);

enum class SourceSection : unsigned char {
  Header,
  Classes,
  Tables,
  Blocks,
  Entities,
  Objects,
  Other,
};

/// A record of the source, from its kind (0) to the next one.
struct SourceEntry {
  std::size_t begin = 0;    ///< offset of its first line
  long line = 0;            ///< its first line
  Handle handle = 0;        ///< 0 for none
  Handle owner = 0;         ///< 0 for none
  Handle dictionary = 0;    ///< its extension dictionary; 0 for none
  std::uint32_t kind = 0;   ///< index of the name of the kind
  std::uint32_t name = 0;   ///< index of its name (2); 0 for none
  std::uint32_t group = 0;  ///< the entry of its section, table or block that begins it
  SourceSection section = SourceSection::Other;
  bool isOnPaper = false;
};

/// The records of a source file, in order.
class SourceIndex {
 public:
  /// Reads the whole file, which is borrowed. Linear.
  explicit SourceIndex(const SourceText& text);

  const std::vector<SourceEntry>& entries() const { return m_entries; }
  const SourceEntry& operator[](std::size_t entry) const { return m_entries[entry]; }
  /// Offset after the entry.
  std::size_t endOf(std::size_t entry) const {
    return entry + 1 < m_entries.size() ? m_entries[entry + 1].begin : m_end;
  }
  std::string_view kindOf(std::size_t entry) const { return m_names[m_entries[entry].kind]; }
  std::string_view nameOf(std::size_t entry) const { return m_names[m_entries[entry].name]; }
  bool is(std::size_t entry, std::string_view kind) const { return kindOf(entry) == kind; }
  SourceRecord read(std::size_t entry) const {
    return m_text.read(m_entries[entry].begin, endOf(entry));
  }

  /// The first entry after `entry` and the records that belong to it: vertices, attributes and the
  /// end of their sequence.
  std::size_t afterEntity(std::size_t entry) const;
  /// The entry at that line; `kNone` if there is none.
  std::size_t atLine(long line) const;
  /// The entry with that handle, the last if there are several; `kNone` if there is none.
  std::size_t withHandle(Handle handle) const;
  /// The highest handle.
  Handle highest() const { return m_highest; }
  /// Whether the file has no sections.
  bool isFragment() const { return !m_hasSections; }
  /// Whether the file ended without its end mark.
  bool isCut() const { return m_isCut; }
  /// Whether every record was found where its line is. Nothing is known of the others.
  bool isSound() const { return m_isSound; }

  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

 private:
  void takePair(SourceEntry& entry, long code, std::string_view value, bool& isInGroup);
  void place(SourceEntry& entry);
  bool beginSection(std::string_view name);
  std::uint32_t intern(std::string_view name);

  const SourceText& m_text;
  std::vector<SourceEntry> m_entries;
  std::vector<std::string> m_names{std::string()};
  std::unordered_map<std::string, std::uint32_t> m_ids;
  std::unordered_map<Handle, std::uint32_t> m_handles;
  std::size_t m_end = 0;
  Handle m_highest = 0;
  bool m_isCut = false;
  bool m_isSound = true;
  bool m_hasSections = false;
  bool m_isBetween = false;                           // behind the end of a section
  SourceSection m_section = SourceSection::Entities;  // of a file that begins in the middle
  std::uint32_t m_group = 0;
  std::uint32_t m_lastId = 0;
  bool m_isDictionary = false;  // within the group of handles that names one
};

}  // namespace vek0::detail
