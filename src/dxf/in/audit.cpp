// Records are split into pairs only: what is wrong in a file must not depend on what a drawing can
// hold. References may precede what they refer to, so they are collected and resolved at the end.
#include "vek0core/dxf/in/audit.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "files/number.h"
#include "vek0core/dxf/in/filedxfilexer.h"
#include "vek0core/files/file.h"
#include "vek0core/files/report.h"
#include "vek0core/files/textcodec.h"
#include "zim0lang/casefold.h"
#include "zim0lang/wstring.h"

namespace {

using Handle = std::uint64_t;

// What names refer to; one of them is the content of a block.
enum Names { Layer, Ltype, Style, DimStyle, AppId, Block, kNames };

struct NameKind {
  const char* word;                          // of its table
  std::array<std::u16string_view, 3> usual;  // names that need no declaration
};
constexpr NameKind kNameKinds[kNames] = {
    {"LAYER", {u"0"}},        {"LTYPE", {u"BYLAYER", u"BYBLOCK", u"CONTINUOUS"}},
    {"STYLE", {u"STANDARD"}}, {"DIMSTYLE", {u"STANDARD"}},
    {"APPID", {u"ACAD"}},     {"BLOCK", {}},
};

enum class Section { Other, Header, Tables, Blocks, Entities, Objects };

Section sectionOf(const CFileDXFILexer& lexer) {
  if (lexer.isKeyword("HEADER")) return Section::Header;
  if (lexer.isKeyword("TABLES")) return Section::Tables;
  if (lexer.isKeyword("BLOCKS")) return Section::Blocks;
  if (lexer.isKeyword("ENTITIES")) return Section::Entities;
  return lexer.isKeyword("OBJECTS") ? Section::Objects : Section::Other;
}

// Codes 320 to 329 are numbers that programs use for handles of their own.
bool isPointer(long code) {
  return (code >= 330 && code < 370) || (code >= 390 && code < 400) || code == 1005;
}

struct Use {
  long line = 0;  // the first
  long count = 0;
};

struct Finding {
  ReportCode code;
  Use use;
  zim::WString sample;
};

// A number that a record has or refers to: a handle, with what the finding is about.
struct Reference {
  Handle handle;
  long about;  // a group code, or the number of a kind
  long line;
  bool operator<(const Reference& other) const {
    return std::tie(handle, about, line) < std::tie(other.handle, other.about, other.line);
  }
};

std::string hexDigits(Handle handle) {
  constexpr char digits[] = "0123456789ABCDEF";
  std::string text;
  for (; handle != 0; handle >>= 4) text.insert(text.begin(), digits[handle & 15]);
  return text.empty() ? "0" : text;
}

// The names of one kind, folded, and where they are used.
class NameUses {
 public:
  void declare(const zim::WString& name) { m_declared.insert(folded(name)); }

  // Most names are used many times: known bytes are not decoded again.
  void add(const CFileDXFILexer& lexer) {
    if (lexer.getBytes().empty()) return;
    m_bytes = lexer.getBytes();
    const auto [found, isNew] = m_uses.try_emplace(m_bytes);
    if (isNew) found->second = {lexer.getText(), {lexer.getLine(), 0}};
    ++found->second.use.count;
  }

  void report(const NameKind& kind, std::vector<Finding>& findings) const {
    std::map<std::u16string, Name> undeclared;
    for (const auto& [bytes, name] : m_uses) {
      const std::u16string key = folded(name.text);
      bool isKnown = m_declared.count(key) != 0;
      for (const std::u16string_view usual : kind.usual)
        isKnown = isKnown || zim::equalsIgnoreCase(name.text.view(), usual);
      if (isKnown) continue;
      // The same name in other case.
      Name& found = undeclared[key];
      const long count = found.use.count + name.use.count;
      if (found.use.count == 0 || name.use.line < found.use.line) found = name;
      found.use.count = count;
    }
    for (const auto& [key, name] : undeclared)
      findings.push_back({ReportCode::NameUndeclared, name.use,
                          zim::WString::fromUtf8(kind.word) + u" " + name.text.view()});
  }

 private:
  struct Name {
    zim::WString text;
    Use use;
  };

  static std::u16string folded(const zim::WString& name) {
    std::u16string text(name.view());
    for (char16_t& unit : text) unit = zim::foldCase(unit);
    return text;
  }

  std::unordered_set<std::u16string> m_declared;
  std::unordered_map<std::string, Name> m_uses;  // by the bytes of the file
  std::string m_bytes;
};

class Audit {
 public:
  Audit(IFile& file, int codePage) : m_lexer(file, nullptr) {
    m_lexer.setTolerant();
    if (codePage != kCodePageAuto) m_lexer.fixCodePage(codePage);
  }

  void read() {
    while (!m_lexer.isCut()) {
      const long code = m_lexer.read();
      if (code != 0) {
        take(code);
        continue;
      }
      endRecord();
      if (m_lexer.isKeyword("EOF")) break;
      beginRecord();
    }
  }

  void report(CFileReport& report) {
    findRepeated();
    findMissing(m_owners, [this](const Reference& owner) {
      return Finding{ReportCode::OwnerMissing, {}, text(m_kinds[asIndex(owner.about)])};
    });
    findMissing(m_pointers, [](const Reference& pointer) {
      return Finding{ReportCode::PointerDangling,
                     {},
                     text(std::to_string(pointer.about) + " " + hexDigits(pointer.handle))};
    });
    for (int i = 0; i < kNames; ++i) m_names[i].report(kNameKinds[i], m_findings);
    const auto isBefore = [](const Finding& a, const Finding& b) {
      return std::pair(a.use.line, a.sample) < std::pair(b.use.line, b.sample);
    };
    std::sort(m_findings.begin(), m_findings.end(), isBefore);
    for (const Finding& finding : m_findings)
      for (long i = 0; i < finding.use.count; ++i)
        report.add(finding.code, finding.use.line, finding.sample);
  }

 private:
  static zim::WString text(const std::string& utf8) { return zim::WString::fromUtf8(utf8); }
  bool is(std::string_view kind) const { return m_kind == kind; }
  static std::size_t asIndex(long number) { return static_cast<std::size_t>(number); }
  bool isInObjects() const { return m_section != Section::Other && m_section != Section::Header; }

  // Sorts the handles, of which only the first owner of each stays.
  void findRepeated() {
    std::sort(m_handles.begin(), m_handles.end());
    std::size_t kept = 0;
    for (const Reference& reference : m_handles) {
      if (kept > 0 && m_handles[kept - 1].handle == reference.handle) {
        addFinding({ReportCode::HandleRepeated, {}, text(hexDigits(reference.handle))},
                   reference.line);
      } else {
        m_handles[kept++] = reference;
      }
    }
    m_handles.resize(kept);
  }

  template <class MakeFinding>
  void findMissing(std::vector<Reference>& references, const MakeFinding& make) {
    std::sort(references.begin(), references.end());
    auto handle = m_handles.begin();
    for (const Reference& reference : references) {
      while (handle != m_handles.end() && handle->handle < reference.handle) ++handle;
      if (handle != m_handles.end() && handle->handle == reference.handle) continue;
      addFinding(make(reference), reference.line);
    }
  }

  // Equal findings follow one another.
  void addFinding(Finding finding, long line) {
    const bool isNew = m_findings.empty() || m_findings.back().code != finding.code ||
                       m_findings.back().sample != finding.sample;
    if (isNew) m_findings.push_back(std::move(finding));
    Use& use = m_findings.back().use;
    use.line = use.count++ == 0 ? line : std::min(use.line, line);
  }

  void beginRecord() {
    m_kind = m_lexer.getBytes();
    m_line = m_lexer.getLine();
    m_handle = m_owner = 0;
    m_hasOwner = m_isInClass = m_isInGroup = false;
    if (is("ENDSEC")) m_section = Section::Other;
  }

  // The frame of sections and tables are no objects.
  void endRecord() {
    if (!isInObjects() || m_kind.empty() || is("SECTION") || is("ENDTAB")) return;
    if (m_handle == 0) return;
    m_handles.push_back({m_handle, 0, m_line});
    const bool isTop = m_hasOwner && m_owner == 0 && (is("TABLE") || is("DICTIONARY"));
    if (m_isOwned && !isTop) m_owners.push_back({m_owner, numberOfKind(), m_line});
  }

  // Of the record.
  long numberOfKind() {
    const auto [found, isNew] = m_kindNumbers.try_emplace(m_kind, m_kinds.size());
    if (isNew) m_kinds.push_back(m_kind);
    return static_cast<long>(found->second);
  }

  void take(long code) {
    if (is("SECTION") && code == 2) m_section = sectionOf(m_lexer);
    if (m_section == Section::Header) return takeVariable(code);
    if (!isInObjects()) return;
    takeReference(code);
    takeName(code);
  }

  void takeVariable(long code) {
    if (code == 9) m_variable = m_lexer.getBytes();
    if (code == 1 && m_variable == "$ACADVER") m_version = m_lexer.getBytes();
    if (code == 3 && m_variable == "$DWGCODEPAGE") m_codePage = m_lexer.getBytes();
    if (code != 1 && code != 3) return;
    m_isOwned = m_version >= "AC1015";
    using namespace vek0::detail;
    m_lexer.setCodePage(codePageOfDrawing(m_version, m_codePage), codePageFromName(m_codePage));
  }

  void takeReference(long code) {
    if (code == 102) m_isInGroup = m_lexer.getBytes().starts_with('{');
    if (code == 100) m_isInClass = true;
    // Handle and owner precede the first subclass marker, outside groups of applications.
    const bool isHead = !m_isInClass && !m_isInGroup;
    // In a dimension style, 5 is a name.
    const long handleCode = m_section == Section::Tables && is("DIMSTYLE") ? 105 : 5;
    const bool isOwner = code == 330 && isHead && !m_hasOwner;
    if (code == handleCode && isHead && m_handle == 0) {
      m_handle = value();
    } else if (isOwner) {
      m_owner = value();
      m_hasOwner = true;
    } else if (isPointer(code) && value() != 0) {
      m_pointers.push_back({value(), code, m_lexer.getLine()});
    }
  }

  void takeName(long code) {
    if (code == 1001) return m_names[AppId].add(m_lexer);
    if (m_section == Section::Tables) return takeTable(code);
    if (m_section == Section::Blocks && is("BLOCK") && code == 2)
      return m_names[Block].declare(m_lexer.getText());
    if (m_section == Section::Objects) return;
    if (code == 8) m_names[Layer].add(m_lexer);
    if (code == 6) m_names[Ltype].add(m_lexer);
    const bool isText = is("TEXT") || is("MTEXT") || is("ATTRIB") || is("ATTDEF");
    if (code == 7 && isText) m_names[Style].add(m_lexer);
    const bool hasDimStyle = is("DIMENSION") || is("LEADER") || is("TOLERANCE");
    if (code == 3 && hasDimStyle) m_names[DimStyle].add(m_lexer);
    if (code == 2 && (is("INSERT") || is("DIMENSION"))) m_names[Block].add(m_lexer);
  }

  void takeTable(long code) {
    if (code == 6 && is("LAYER")) m_names[Ltype].add(m_lexer);
    if (code != 2) return;
    for (int i = 0; i < Block; ++i)
      if (is(kNameKinds[i].word)) m_names[i].declare(m_lexer.getText());
  }

  Handle value() const { return vek0::detail::parseHex(m_lexer.getBytes()); }

  CFileDXFILexer m_lexer;
  Section m_section = Section::Other;
  std::string m_variable, m_version, m_codePage;
  bool m_isOwned = false;  // the version states the owners of objects
  // The record.
  std::string m_kind;
  long m_line = 0;
  Handle m_handle = 0, m_owner = 0;
  bool m_hasOwner = false;
  bool m_isInClass = false;  // after its first subclass marker
  bool m_isInGroup = false;  // of an application

  // Sorted at the end rather than hashed: a file could choose handles that collide.
  std::vector<Reference> m_handles, m_owners, m_pointers;
  std::vector<std::string> m_kinds;
  std::unordered_map<std::string, std::size_t> m_kindNumbers;
  NameUses m_names[kNames];
  std::vector<Finding> m_findings;
};

}  // namespace

bool auditDXF(IFile& file, CFileReport& report, int codePage) {
  if (!file.open()) return false;
  Audit audit(file, codePage);
  audit.read();
  file.close();
  audit.report(report);
  return true;
}
