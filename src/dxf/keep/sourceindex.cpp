#include "dxf/keep/sourceindex.h"

#include <algorithm>
#include <iterator>

#include "files/number.h"
#include "vek0core/dxf/in/filedxfilexer.h"

namespace vek0::detail {
namespace {

constexpr std::string_view kSections[] = {"HEADER", "CLASSES",  "TABLES",
                                          "BLOCKS", "ENTITIES", "OBJECTS"};

SourceSection sectionOf(std::string_view name) {
  const auto found = std::find(std::begin(kSections), std::end(kSections), name);
  return static_cast<SourceSection>(found - std::begin(kSections));
}

bool isPart(std::string_view kind) {
  return kind == "VERTEX" || kind == "ATTRIB" || kind == "SEQEND";
}

}  // namespace

std::string upperCase(std::string_view text) {
  const std::size_t first = std::min(text.find_first_not_of(" \t"), text.size());
  std::string upper(text.substr(first));
  for (char& c : upper)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return upper;
}

SourceIndex::SourceIndex(const SourceText& text) : m_text(text), m_end(text.bytes().size()) {
  BytesFile file(text.bytes());
  CFileDXFILexer lexer(file, nullptr);
  lexer.setTolerant();
  file.open();
  std::size_t at = text.start();
  long line = 1;
  bool isInGroup = false;
  for (;;) {
    const long code = lexer.read();
    // Damaged files have negative codes, too.
    if (code != 0) {
      if (!m_entries.empty()) takePair(m_entries.back(), code, lexer.getBytes(), isInGroup);
      if (m_entries.empty() && code == 2) beginSection(lexer.getBytes());
      continue;
    }
    if (!m_entries.empty()) place(m_entries.back());
    SourceEntry entry;
    const bool isEnd = lexer.isKeyword("EOF");
    entry.line = lexer.getLine() - 1;
    at = lexer.isCut() ? m_end : text.pass(at, entry.line - line);
    m_isSound = m_isSound && (lexer.isCut() || text.mayBeginRecord(at));
    line = entry.line;
    entry.begin = at;
    entry.kind = intern(upperCase(lexer.getBytes()));
    m_entries.push_back(entry);
    isInGroup = false;
    if (isEnd) break;
  }
  m_isCut = lexer.isCut();
}

void SourceIndex::takePair(SourceEntry& entry, long code, std::string_view value, bool& isInGroup) {
  constexpr std::string_view dictionary = "{ACAD_XDICTIONARY";
  // A cheap test, as it runs for every pair.
  const bool isOfInterest = code < 8 || code == 67 || (code >= 102 && code <= 105) || code >= 330;
  if (!isOfInterest) return;
  const bool isStyle = m_names[entry.kind] == "DIMSTYLE";
  if (code == 102) isInGroup = value.starts_with('{');
  if (code == 102) m_isDictionary = value == dictionary;
  const auto handle = [value] { return static_cast<Handle>(parseHex(value)); };
  if (isInGroup) {
    if (code == 360 && m_isDictionary) entry.dictionary = handle();
    return;
  }
  const bool isSection = m_names[entry.kind] == "SECTION";  // the header states the handle seed
  if (entry.handle == 0 && !isSection && (isStyle ? code == 105 : code == 5)) {
    entry.handle = handle();
    m_highest = std::max(m_highest, entry.handle);
  }
  if (code == 330 && entry.owner == 0) entry.owner = handle();
  if (code == 67) entry.isOnPaper = parseLong(value) != 0;
  const bool isNamed = m_section <= SourceSection::Blocks || m_isBetween || isSection ||
                       m_names[entry.kind] == "ENDSEC";
  if (code == 2 && entry.name == 0 && isNamed) entry.name = intern(value);
}

// Called when its pairs are known.
void SourceIndex::place(SourceEntry& entry) {
  const std::string& kind = m_names[entry.kind];
  const auto index = static_cast<std::uint32_t>(m_entries.size() - 1);
  const bool isSection = kind == "SECTION";
  if (isSection) m_section = SourceSection::Other;
  m_hasSections = m_hasSections || isSection;
  if (isSection || m_isBetween) m_isBetween = !beginSection(m_names[entry.name]) && !isSection;
  if (isSection || kind == "TABLE" || kind == "BLOCK") m_group = index;
  entry.section = m_section;
  entry.group = m_group;
  if (kind == "ENDSEC") m_isBetween = !beginSection(m_names[entry.name]);
  if (entry.handle != 0) m_handles[entry.handle] = index;
}

// As for the reader, the name says enough where the line that begins a section is damaged.
bool SourceIndex::beginSection(std::string_view name) {
  const SourceSection section = sectionOf(upperCase(name));
  if (section == SourceSection::Other) return false;
  m_section = section;
  return m_hasSections = true;
}

std::uint32_t SourceIndex::intern(std::string_view name) {
  if (name == m_names[m_lastId]) return m_lastId;
  const auto [found, isNew] =
      m_ids.try_emplace(std::string(name), static_cast<std::uint32_t>(m_names.size()));
  if (isNew) m_names.emplace_back(name);
  return m_lastId = found->second;
}

std::size_t SourceIndex::afterEntity(std::size_t entry) const {
  const bool hasParts = is(entry, "INSERT") || is(entry, "POLYLINE") || is(entry, "MINSERT");
  std::size_t next = entry + 1;
  if (!hasParts) return next;
  while (next < m_entries.size() && isPart(kindOf(next)))
    if (is(next++, "SEQEND")) break;
  return next;
}

std::size_t SourceIndex::atLine(long line) const {
  const auto found =
      std::lower_bound(m_entries.begin(), m_entries.end(), line,
                       [](const SourceEntry& entry, long value) { return entry.line < value; });
  const bool isFound = found != m_entries.end() && found->line == line;
  return isFound ? static_cast<std::size_t>(found - m_entries.begin()) : kNone;
}

std::size_t SourceIndex::withHandle(Handle handle) const {
  const auto found = m_handles.find(handle);
  return found == m_handles.end() ? kNone : found->second;
}

}  // namespace vek0::detail
