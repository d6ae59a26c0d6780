#include "support/r12lint.h"

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <map>
#include <set>

namespace vek0::test {
namespace {

constexpr std::size_t kLongestLine = 255;
constexpr std::size_t kLongestName = 31;

struct Pair {
  long line = 0;  // line of the group code
  long code = 0;
  std::string value;
};

std::string upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

bool isReal(long code) {
  return (code >= 10 && code <= 59) || (code >= 210 && code <= 239) ||
         (code >= 1010 && code <= 1059);
}

bool isInteger(long code) { return (code >= 60 && code <= 79) || (code >= 1060 && code <= 1071); }

bool isText(long code) { return (code >= 0 && code <= 9) || (code >= 1000 && code <= 1009); }

bool isNamePart(std::string_view name) {
  if (name.empty() || name.size() > kLongestName) return false;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const char c = name[i];
    const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (!letter && !(c >= '0' && c <= '9') && c != '_' && c != '-' && c != '$' &&
        !(c == '*' && i == 0))
      return false;
  }
  return true;
}

// Dependent names are two such names joined by a vertical bar.
bool isName(std::string_view name) {
  const std::size_t bar = name.find('|');
  if (bar == std::string_view::npos) return isNamePart(name);
  return isNamePart(name.substr(0, bar)) && isNamePart(name.substr(bar + 1));
}

// One record: its pair of code 0 and the pairs up to the next.
struct Record {
  std::string kind;
  long line = 0;
  std::vector<Pair> pairs;

  const Pair* find(long code) const {
    for (const Pair& pair : pairs)
      if (pair.code == code) return &pair;
    return nullptr;
  }
  std::string text(long code) const {
    const Pair* pair = find(code);
    return pair ? pair->value : std::string();
  }
  long integer(long code, long fallback = 0) const {
    const Pair* pair = find(code);
    return pair ? std::atol(pair->value.c_str()) : fallback;
  }
  long count(long code) const {
    long n = 0;
    for (const Pair& pair : pairs) n += pair.code == code;
    return n;
  }
};

class Lint {
 public:
  Lint(std::string_view file, bool exchange) : m_exchange(exchange) {
    splitPairs(file);
    splitRecords();
  }

  std::vector<std::string> run() {
    for (const Pair& pair : m_pairs) checkValue(pair);
    checkSections();
    checkUses();
    checkSeed();
    return m_complaints;
  }

 private:
  void complain(long line, const std::string& what) {
    m_complaints.push_back("line " + std::to_string(line) + ": " + what);
  }

  void splitPairs(std::string_view file) {
    if (file.empty() || file.back() != '\n') complain(0, "the last line does not end");
    Pair pair;
    long line = 0;
    while (!file.empty()) {
      const std::size_t end = file.find('\n');
      const std::string_view text = file.substr(0, end);
      file.remove_prefix(end == std::string_view::npos ? file.size() : end + 1);
      if (++line % 2 == 1) {
        pair.line = line;
        pair.code = groupCode(text, line);
        continue;
      }
      pair.value = std::string(text);
      m_pairs.push_back(pair);
    }
    if (line % 2 == 1) complain(line, "a group code without a value");
  }

  long groupCode(std::string_view text, long line) {
    const long code = std::atol(std::string(text).c_str());
    std::string padded = std::to_string(code);
    while (padded.size() < 3) padded.insert(0, " ");
    if (text != padded) complain(line, "not a group code: " + std::string(text));
    return code;
  }

  void splitRecords() {
    for (const Pair& pair : m_pairs)
      if (pair.code == 0)
        m_records.push_back({pair.value, pair.line, {}});
      else if (m_records.empty())
        complain(pair.line, "a pair before the first record");
      else
        m_records.back().pairs.push_back(pair);
  }

  void checkValue(const Pair& pair) {
    if (pair.value.size() > kLongestLine) complain(pair.line, "a value over 255 bytes");
    for (const char c : pair.value)
      if (static_cast<unsigned char>(c) < 0x20) complain(pair.line, "a control character");
    if (isReal(pair.code)) return checkReal(pair);
    if (isInteger(pair.code)) return checkInteger(pair);
    if (!isText(pair.code)) complain(pair.line, "no such code: " + std::to_string(pair.code));
  }

  void checkReal(const Pair& pair) {
    char* end = nullptr;
    const double value = std::strtod(pair.value.c_str(), &end);
    if (pair.value.empty() || *end != '\0' || !std::isfinite(value))
      complain(pair.line, "not a real number: " + pair.value);
    if (m_exchange && value == 0 && pair.value.front() == '-')
      complain(pair.line, "a negative zero");
  }

  void checkInteger(const Pair& pair) {
    char* end = nullptr;
    const long value = std::strtol(pair.value.c_str(), &end, 10);
    if (pair.value.empty() || *end != '\0') complain(pair.line, "not an integer: " + pair.value);
    if (m_exchange && pair.code < 1071 && (value < -32768 || value > 32767))
      complain(pair.line, "an integer over 16 bits");
  }

  // Traversal of the records; every check advances past its own record.
  bool at(const char* kind) const {
    return m_at < m_records.size() && m_records[m_at].kind == kind;
  }
  const Record& next() { return m_records[m_at++]; }

  bool expect(const char* kind) {
    if (at(kind)) return next(), true;
    const long line = m_at < m_records.size() ? m_records[m_at].line : 0;
    complain(line, std::string("expected ") + kind);
    return false;
  }

  void checkSections() {
    if (at("SECTION") && m_records[m_at].text(2) == "HEADER") {
      m_hasTables = true;
      if (!checkHeader() || !checkTables()) return;
    }
    if (!checkBlocks() || !checkEntities() || !expect("EOF")) return;
    if (m_at != m_records.size()) complain(m_records[m_at].line, "something after EOF");
  }

  bool beginSection(const char* name) {
    if (!at("SECTION") || m_records[m_at].text(2) != name) return expect(name);
    next();
    return true;
  }

  bool checkHeader() {
    const std::size_t header = m_at;
    if (!beginSection("HEADER")) return false;
    std::string variable;
    for (const Pair& pair : m_records[header].pairs) {
      if (pair.code == 9) variable = pair.value;
      if (variable == "$ACADVER" && pair.code == 1 && pair.value != "AC1009")
        complain(pair.line, "another version");
      if (variable == "$CLAYER" && pair.code == 8) use(m_layerUses, pair);
      if (variable == "$CELTYPE" && pair.code == 6) use(m_ltypeUses, pair);
      if (variable == "$TEXTSTYLE" && pair.code == 7) use(m_styleUses, pair);
      if (variable == "$HANDSEED" && pair.code == 5) m_seed = std::stoull(pair.value, nullptr, 16);
    }
    return expect("ENDSEC");
  }

  bool checkTables() {
    if (!beginSection("TABLES")) return false;
    if (!checkTable("LTYPE", m_ltypes) || !checkTable("LAYER", m_layers) ||
        !checkTable("STYLE", m_styles))
      return false;
    if (m_layers.count("0") == 0) complain(0, "no layer 0");
    return expect("ENDSEC");
  }

  bool checkTable(const char* kind, std::set<std::string>& names) {
    if (!at("TABLE") || m_records[m_at].text(2) != kind) return expect(kind);
    const Record& table = next();
    long entries = 0;
    for (; at(kind); ++entries) checkEntry(next(), names);
    if (table.integer(70, -1) != entries) complain(table.line, "the table's count is wrong");
    return expect("ENDTAB");
  }

  void checkEntry(const Record& entry, std::set<std::string>& names) {
    declare(entry, names);
    if (entry.kind == "LAYER") {
      const long color = std::labs(entry.integer(62));
      if (color < 1 || color > 255) complain(entry.line, "a layer's colour");
      use(m_ltypeUses, entry, 6);
    }
    if (entry.kind == "LTYPE" && m_exchange && entry.integer(73) != entry.count(49))
      complain(entry.line, "73 is not the number of dashes");
  }

  void declare(const Record& entry, std::set<std::string>& names) {
    const std::string name = entry.text(2);
    if (!isName(name)) complain(entry.line, "not a name: " + name);
    if (!names.insert(upper(name)).second && m_exchange)
      complain(entry.line, "a second " + entry.kind + " " + name);
  }

  bool checkBlocks() {
    if (!beginSection("BLOCKS")) return false;
    while (at("BLOCK")) {
      const Record& block = next();
      checkEntityRecords();
      // Only here, so that an insert of the block in itself counts as preceding its definition.
      declare(block, m_blocks);
      if (m_exchange && at("ENDBLK") && m_records[m_at].text(8) != "0")
        complain(m_records[m_at].line, "ENDBLK without its layer");
      if (!expect("ENDBLK")) return false;
    }
    return expect("ENDSEC");
  }

  bool checkEntities() {
    if (!beginSection("ENTITIES")) return false;
    checkEntityRecords();
    return expect("ENDSEC");
  }

  void checkEntityRecords() {
    static const std::set<std::string> kinds = {"POINT",  "LINE",     "CIRCLE", "ARC",
                                                "SOLID",  "TRACE",    "3DFACE", "TEXT",
                                                "ATTDEF", "POLYLINE", "INSERT"};
    while (m_at < m_records.size() && kinds.count(m_records[m_at].kind)) {
      const Record& entity = next();
      checkEntity(entity);
      if (entity.kind == "POLYLINE") checkSequence(entity, "VERTEX");
      if (entity.kind == "INSERT") checkInsert(entity);
    }
  }

  void checkInsert(const Record& insert) {
    if (m_blocks.count(upper(insert.text(2))) == 0)
      complain(insert.line, "an insert before its block " + insert.text(2));
    if (insert.integer(66) != 0) checkSequence(insert, "ATTRIB");
  }

  void checkSequence(const Record& owner, const char* kind) {
    if (owner.integer(66) != 1) complain(owner.line, "a sequence that is not announced");
    while (at(kind)) checkEntity(next());
    if (at("SEQEND")) return checkEntity(next());
    complain(owner.line, "no SEQEND");
  }

  void checkEntity(const Record& entity) {
    checkHandle(entity);
    if (entity.count(8) != 1) complain(entity.line, "not one layer");
    use(m_layerUses, entity, 8);
    use(m_ltypeUses, entity, 6);
    use(m_styleUses, entity, 7);
    const long color = entity.integer(62);
    if (color < 0 || color > 256) complain(entity.line, "an entity's colour");
  }

  void checkHandle(const Record& entity) {
    const std::string text = entity.text(5);
    if (text.empty() || text.front() == '0' ||
        text.find_first_not_of("0123456789ABCDEF") != std::string::npos || text.size() > 8)
      return complain(entity.line, "not a handle: " + text);
    const unsigned long long handle = std::stoull(text, nullptr, 16);
    if (!m_handles.insert(handle).second) complain(entity.line, "a second handle " + text);
  }

  using Uses = std::map<std::string, long>;  // name, line of the first use

  static void use(Uses& uses, const Pair& pair) { uses.emplace(upper(pair.value), pair.line); }
  static void use(Uses& uses, const Record& record, long code) {
    if (const Pair* pair = record.find(code)) use(uses, *pair);
  }

  void checkUses() {
    if (!m_hasTables) return;
    m_ltypes.insert({"BYLAYER", "BYBLOCK", "CONTINUOUS"});
    checkDeclared(m_layerUses, m_layers, "layer");
    checkDeclared(m_ltypeUses, m_ltypes, "linetype");
    checkDeclared(m_styleUses, m_styles, "style");
  }

  void checkDeclared(const Uses& uses, const std::set<std::string>& names, const char* what) {
    for (const auto& [name, line] : uses)
      if (names.count(name) == 0) complain(line, std::string("undeclared ") + what + " " + name);
  }

  void checkSeed() {
    if (!m_exchange || !m_hasTables) return;
    if (m_seed == 0 || (!m_handles.empty() && *m_handles.rbegin() >= m_seed))
      complain(0, "$HANDSEED is missing or not above every handle");
  }

  bool m_exchange;
  bool m_hasTables = false;
  std::vector<Pair> m_pairs;
  std::vector<Record> m_records;
  std::size_t m_at = 0;
  std::vector<std::string> m_complaints;
  std::set<std::string> m_ltypes, m_layers, m_styles, m_blocks;
  Uses m_ltypeUses, m_layerUses, m_styleUses;
  std::set<unsigned long long> m_handles;
  unsigned long long m_seed = 0;
};

}  // namespace

std::vector<std::string> lintR12(std::string_view file, bool exchange) {
  return Lint(file, exchange).run();
}

}  // namespace vek0::test
