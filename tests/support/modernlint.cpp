#include "support/modernlint.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <set>

namespace vek0::test {
namespace {

std::uint64_t parseHex(const std::string& text) { return std::strtoull(text.c_str(), nullptr, 16); }
long parseLong(const std::string& text) { return std::strtol(text.c_str(), nullptr, 10); }

class ModernLint {
 public:
  void take(long code, const std::string& value) {
    if (code == 0) begin(value);
    // Text that follows 1000 may look like anything; extended data has no handles here.
    const bool isHandle = code == 5 || (code == 105 && m_kind == "DIMSTYLE");
    if (m_variable == "$HANDSEED" && code == 5) m_seed = parseHex(value);
    m_variable = code == 9 ? value : "";
    if (m_section.empty() && code == 2) m_section = value;
    if (m_section == "HEADER" || m_section == "CLASSES") return;
    if (isHandle) takeHandle(value);
    const bool isPointer = (code >= 330 && code < 370) || code == 390;
    if (isPointer && value != "0") m_pointers.emplace(parseHex(value), m_kind);
    if (code == 102) m_isInGroup = value != "}";
    if (code == 330 && !m_isInGroup && !m_hasOwner) takeOwner(parseHex(value));
    if (code == 5 && (m_kind == "TABLE" || m_kind == "POLYLINE" || m_kind == "INSERT"))
      m_enclosing = parseHex(value);
    if (m_kind == "TABLE" && code == 2) m_table = value;
    if (m_kind == "TABLE" && code == 70) m_announced = parseLong(value);
    if (code == 100) ++m_classes;
  }

  std::vector<std::string> complaints() {
    for (const auto& [handle, kind] : m_pointers)
      if (!m_handles.count(handle)) complain(kind + " points nowhere");
    if (!m_handles.empty() && m_seed <= *m_handles.rbegin()) complain("the seed is too low");
    if (m_kind != "EOF") complain("no end");
    return m_complaints;
  }

 private:
  void begin(const std::string& kind) {
    const bool isObject = m_kind != "SECTION" && m_kind != "ENDSEC" && m_kind != "ENDTAB" &&
                          m_kind != "CLASS" && !m_kind.empty();
    if (isObject && !m_hasHandle) complain(m_kind + " without a handle");
    if (isObject && m_kind != "TABLE" && !m_hasOwner) complain(m_kind + " without an owner");
    if (isObject && m_classes == 0 && m_kind != "ACDBPLACEHOLDER")
      complain(m_kind + " of no class");
    if (kind == "ENDTAB" && m_announced != m_entries) complain("wrong count of " + m_table);
    if (kind == "BLOCK") ++m_blocks;
    if (kind == "ENDBLK") --m_blocks;
    if (kind == "ENDSEC" && m_blocks != 0) complain("a block has no end");
    if (kind == "SECTION") m_section.clear();
    m_entries = kind == "TABLE" ? 0 : m_entries + 1;
    m_kind = kind;
    m_hasHandle = m_hasOwner = false;
    m_classes = 0;
  }

  void takeHandle(const std::string& value) {
    m_hasHandle = true;
    m_handle = parseHex(value);
    if (!m_handles.insert(parseHex(value)).second || parseHex(value) == 0)
      complain(m_kind + " has the handle " + value);
  }

  // The record of the block, the table, or the head of the sequence that the object is in.
  void takeOwner(std::uint64_t owner) {
    m_hasOwner = true;
    const bool isPart = m_kind == "VERTEX" || m_kind == "ATTRIB" || m_kind == "SEQEND";
    if (m_kind == "BLOCK_RECORD") m_records.insert(m_handle);
    if (m_kind == "BLOCK") m_block = owner;
    if ((isPart || (m_section == "TABLES" && m_kind != "TABLE")) && owner != m_enclosing)
      complain(m_kind + " is not owned by what it is in");
    if (m_section == "BLOCKS" && !isPart && owner != m_block)
      complain(m_kind + " is not owned by its block");
    if (m_section == "ENTITIES" && !isPart && !m_records.count(owner))
      complain(m_kind + " is not owned by a block");
  }

  void complain(const std::string& text) { m_complaints.push_back(text); }

  std::string m_kind, m_section, m_table, m_variable;
  bool m_hasHandle = false, m_hasOwner = false, m_isInGroup = false;
  std::uint64_t m_handle = 0, m_enclosing = 0, m_block = 0;  // m_handle: of the current record
  std::set<std::uint64_t> m_records;
  long m_announced = 0, m_entries = 0, m_blocks = 0, m_classes = 0;
  std::uint64_t m_seed = 0;
  std::set<std::uint64_t> m_handles;
  std::multimap<std::uint64_t, std::string> m_pointers;
  std::vector<std::string> m_complaints;
};

std::string takeLine(std::string_view& rest) {
  const std::size_t end = std::min(rest.find('\n'), rest.size());
  std::string line(rest.substr(0, end));
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return line;
}

}  // namespace

std::vector<std::string> lintModern(std::string_view file) {
  ModernLint lint;
  while (!file.empty()) {
    const long code = parseLong(takeLine(file));
    lint.take(code, takeLine(file));
  }
  return lint.complaints();
}

}  // namespace vek0::test
