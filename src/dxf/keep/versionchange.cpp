#include "dxf/keep/versionchange.h"

#include <algorithm>
#include <array>
#include <unordered_set>
#include <vector>

#include "dxf/keep/forgetting.h"
#include "dxf/keep/newrecords.h"
#include "dxf/keep/sourceindex.h"
#include "dxf/keep/versiondifferences.h"
#include "vek0core/dxf/in/filedxfilexer.h"
#include "vek0core/files/report.h"
#include "vek0core/files/textcodec.h"
#include "vek0core/tables/palette.h"

namespace vek0::detail {
namespace {

constexpr long kVariable = 9;

bool isAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// Texts are what has other letters than ASCII, so that lines can be encoded anew, whatever they
// are.
class Transcoder {
 public:
  Transcoder(int from, int to) : m_decoder(from), m_encoder(to), m_hasAll(to == kCodePageUtf8) {
    m_decoder.setSense(true);
  }

  void append(std::string& out, std::string_view lines) {
    while (!lines.empty()) {
      const std::size_t end = std::min(lines.find_first_of("\r\n"), lines.size() - 1) + 1;
      const std::string_view line = lines.substr(0, end);
      const bool isEscaped = m_hasAll && line.find("\\U+") != std::string_view::npos;
      isAscii(line) && !isEscaped ? void(out += line) : appendLine(out, line);
      lines.remove_prefix(end);
    }
  }

 private:
  // What is ASCII stays as it is, and so do escapes unless all letters can be written.
  void appendLine(std::string& out, std::string_view line) {
    m_text.clear();
    m_decoder.decode(line, m_text);
    if (m_hasAll) resolveEscapes();
    for (std::u16string_view rest = m_text; !rest.empty();) {
      const bool isPlain = rest.front() < 0x80;
      const auto end = std::find_if(rest.begin(), rest.end(),
                                    [&](char16_t unit) { return (unit < 0x80) != isPlain; });
      const std::u16string_view run = rest.substr(0, static_cast<std::size_t>(end - rest.begin()));
      if (isPlain)
        for (const char16_t unit : run) out += static_cast<char>(unit);
      else
        m_encoder.encode(run, out);
      rest.remove_prefix(run.size());
    }
  }

  // Those of ASCII stand for characters that would have a meaning.
  void resolveEscapes() {
    constexpr std::size_t length = 7;
    for (std::size_t at = 0; (at = m_text.find(u"\\U+", at)) != std::u16string::npos; ++at) {
      const std::u16string unit = decodeEscapes(std::u16string_view(m_text).substr(at, length));
      if (unit.size() == 1 && unit.front() >= 0xA0) m_text.replace(at, length, unit);
    }
  }

  CTextDecoder m_decoder;
  CTextEncoder m_encoder;
  const bool m_hasAll;
  std::u16string m_text;
};

// The stated code page or another one that has all letters of the file, so that names need no
// escapes, which few programs expect there.
int pageWithLetters(std::string_view lines, int from, int stated) {
  constexpr std::size_t units = 0x10000;
  std::vector<bool> isUsed(units);
  CTextDecoder decoder(from);
  decoder.setSense(true);
  std::u16string text;
  while (!lines.empty()) {
    const std::string_view line = lines.substr(0, lines.find_first_of("\r\n"));
    text.clear();
    if (!isAscii(line)) decoder.decode(line, text);
    for (const char16_t unit : text) isUsed[unit] = unit >= 0x80;
    lines.remove_prefix(std::min(line.size() + 1, lines.size()));
  }
  for (const int page : {stated, kCodePage1252, 1250, 1251, 1253, 1254, 1257}) {
    const CTextEncoder encoder(page);
    bool hasAll = true;
    for (std::size_t unit = 0; unit < units && hasAll; ++unit)
      hasAll = !isUsed[unit] || encoder.has(static_cast<zim::Char>(unit));
    if (hasAll) return page;
  }
  return stated;
}

// The place after the name of a variable of the header; `kNone` if it is not there.
std::size_t valueOf(const SourceRecord& header, std::string_view variable) {
  for (std::size_t i = 0; i + 1 < header.pairs.size(); ++i)
    if (header.pairs[i].code == kVariable && header.pairs[i].value == variable) return i + 1;
  return SourceRecord::kNone;
}

class VersionChange {
 public:
  VersionChange(const SourceText& text, const SourceIndex& index, DxfVersion version,
                CFileReport* report)
      : m_text(text),
        m_index(index),
        m_version(version),
        m_differences(version),
        m_report(report) {}

  std::string run(int codePage) {
    survey();
    m_page = pageOfTarget(codePage);
    Transcoder transcoder(codePage, m_page);
    std::string out;
    const std::string_view all = m_text.bytes();
    const std::size_t first = m_index.entries().front().begin;
    if (m_text.isPlain())
      transcoder.append(out, all.substr(m_text.start(), first - m_text.start()));
    for (std::size_t i = 0; i < m_index.entries().size(); ++i)
      if (!m_dropped[i]) transcoder.append(out, written(i));
    return out;
  }

 private:
  // Solids whose data is in a section that the version lacks are nothing without it.
  bool isEmptySolid(std::size_t entry) const {
    constexpr std::array solids{"3DSOLID",         "REGION",          "BODY",
                                "SURFACE",         "EXTRUDEDSURFACE", "LOFTEDSURFACE",
                                "REVOLVEDSURFACE", "SWEPTSURFACE",    "PLANESURFACE"};
    const std::string_view kind = m_index.kindOf(entry);
    if (std::find(solids.begin(), solids.end(), kind) == solids.end()) return false;
    const SourceRecord record = m_index.read(entry);
    return record.find(1) == SourceRecord::kNone;
  }

  void survey() {
    m_dropped.assign(m_index.entries().size(), false);
    if (!m_differences.lacksStoredData()) return;
    bool isInData = false;
    for (std::size_t i = 0; i < m_dropped.size(); ++i) {
      const bool isSection = m_index.is(i, "SECTION");
      if (isSection) isInData = m_index.nameOf(i) == "ACDSDATA";
      m_dropped[i] = isInData || isEmptySolid(i);
      if (m_dropped[i] && m_index[i].handle != 0) m_forgotten.insert(m_index[i].handle);
      if (isSection ? isInData : m_dropped[i] && !isInData)
        note(isSection ? m_index.nameOf(i) : m_index.kindOf(i));
      if (m_index.is(i, "ENDSEC")) isInData = false;
    }
  }

  int pageOfTarget(int codePage) const {
    if (m_version >= DxfVersion::R2007) return kCodePageUtf8;
    const SourceRecord header = m_index.read(0);
    const std::size_t at = valueOf(header, "$DWGCODEPAGE");
    const int page = at == SourceRecord::kNone ? 0 : codePageFromName(header.pairs[at].value);
    const int stated = page == kCodePageAuto || page == kCodePageUtf8 ? kCodePage1252 : page;
    return m_text.isPlain() ? pageWithLetters(m_text.bytes(), codePage, stated) : stated;
  }

  std::string written(std::size_t entry) {
    const SourceRecord original = m_index.read(entry);
    SourceRecord record = original;
    if (m_version < DxfVersion::R2004) approximateColor(record, m_index[entry].section);
    entry == 0 ? changeHeader(record) : changePairs(record);
    const auto dangling = [&](long code, Handle handle) {
      if (m_report)
        m_report->add(ReportCode::PointerDangling, 0,
                      zim::WString::fromUtf8(std::to_string(code) + " " + hexOf(handle)));
    };
    if (!m_forgotten.empty()) forgetHandles(record, m_forgotten, dangling);
    if (!m_text.isPlain()) return m_plain.write(record);
    return m_text.write(m_index[entry].begin, m_index.endOf(entry), original, record);
  }

  void changeHeader(SourceRecord& header) {
    bool isLacking = false;
    std::erase_if(header.pairs, [&](const SourcePair& pair) {
      if (pair.code != kVariable) return isLacking;
      // The maintenance release is one of the version that wrote the file.
      const bool isStale = pair.value == "$ACADMAINTVER";
      isLacking = isStale || m_differences.lacksVariable(pair.value);
      if (isLacking && !isStale) note(pair.value);
      return isLacking;
    });
    header.setText(valueOf(header, "$ACADVER"), nameOf(m_version));
    const std::size_t page = valueOf(header, "$DWGCODEPAGE");
    const std::string name = CTextEncoder(m_page).getName();
    if (page == SourceRecord::kNone) {
      header.pairs.push_back(pairOf(kVariable, "$DWGCODEPAGE"));
      header.pairs.push_back(pairOf(3, name));
    } else if (m_version < DxfVersion::R2007 &&
               codePageFromName(header.pairs[page].value) != m_page) {
      header.setText(page, name);
    }
  }

  // The nearest number stands for a true color; that of a layer which is off is negative.
  void approximateColor(SourceRecord& record, SourceSection section) const {
    constexpr long trueColor = 420, number = 62;
    const bool isLayer = record.is("LAYER");
    const bool isEntity = section == SourceSection::Entities || section == SourceSection::Blocks;
    const std::size_t at = isLayer || isEntity ? record.find(trueColor) : SourceRecord::kNone;
    if (at == SourceRecord::kNone) return;
    const long nearest = nearestPaletteColor(unpackColor(record.integer(at)));
    const std::size_t color = record.find(number);
    if (color == SourceRecord::kNone)
      record.insert(at, number, std::to_string(nearest));
    else
      record.setInteger(color, record.integer(color) < 0 ? -nearest : nearest);
    if (m_report) m_report->add(ReportCode::ColorApproximated, 0, isLayer ? u"LAYER" : u"");
  }

  void changePairs(SourceRecord& record) {
    std::vector<short> none, seen;
    const std::string kind(record.kind());
    std::string part = kind;
    const std::vector<short>* codes = m_differences.codesIn(part);
    bool isEmbedded = false, isExtended = false, isInGroup = false;
    std::erase_if(record.pairs, [&](SourcePair& pair) {
      isExtended = isExtended || pair.code >= kExtendedCode;
      if (isExtended) return false;
      if (pair.code == kEmbeddedCode && m_differences.lacksEmbeddedObjects()) {
        isEmbedded = true;
        note(kind + " " + pair.value);
      }
      if (isEmbedded) return true;
      if (pair.code == kGroupCode) isInGroup = pair.value.starts_with('{');
      if (pair.code == kSubclassCode) {
        part = pair.value;
        codes = m_differences.codesIn(part);
        seen.clear();
      }
      if (isInGroup) return false;
      renumber(pair, part);
      if (!codes || !lacks(*codes, pair.code, seen)) return false;
      note(kind + " " + std::to_string(pair.code));
      return true;
    });
  }

  static bool lacks(const std::vector<short>& codes, long code, std::vector<short>& seen) {
    const auto has = [](const std::vector<short>& all, long value) {
      return std::find(all.begin(), all.end(), value) != all.end();
    };
    if (has(codes, code)) return true;
    if (!has(codes, -code)) return false;
    const bool isRepeated = has(seen, code);
    seen.push_back(static_cast<short>(code));
    return isRepeated;
  }

  // The size of proxy graphics.
  void renumber(SourcePair& pair, std::string_view part) const {
    const bool isSize = part == "AcDbEntity" && (pair.code == 92 || pair.code == 160);
    if (!isSize || pair.code == m_differences.proxySizeCode()) return;
    pair.code = m_differences.proxySizeCode();
    pair.line = 0;
  }

  void note(std::string_view sample) const {
    if (m_report)
      m_report->add(ReportCode::NotInVersion, 0, zim::WString::fromUtf8(std::string(sample)));
  }

  const SourceText& m_text;
  const SourceIndex& m_index;
  const DxfVersion m_version;
  const VersionDifferences m_differences;
  CFileReport* const m_report;
  const SourceText m_plain{std::string()};
  int m_page = kCodePageUtf8;
  std::vector<bool> m_dropped;
  std::unordered_set<Handle> m_forgotten;
};

bool needsHandle(const SourceIndex& index, std::size_t entry) {
  const SourceSection section = index[entry].section;
  if (section < SourceSection::Tables || section == SourceSection::Other) return false;
  constexpr std::array marks{"SECTION", "ENDSEC", "TABLE", "ENDTAB", "EOF"};
  const std::string_view kind = index.kindOf(entry);
  return std::find(marks.begin(), marks.end(), kind) == marks.end();
}

Handle pointerOf(const SourceRecord& record, long code) {
  const std::size_t at = record.find(code);
  return at == SourceRecord::kNone ? 0 : handleOf(record.pairs[at]);
}

// What programs look up without asking whether it is there.
bool hasPlotStyle(const SourceIndex& index, const SourceRecord& root) {
  const auto named = [](const SourceRecord& dictionary, std::string_view name) -> Handle {
    for (std::size_t i = 0; i + 1 < dictionary.pairs.size(); ++i)
      if (dictionary.pairs[i].code == 3 && dictionary.pairs[i].value == name)
        return handleOf(dictionary.pairs[i + 1]);
    return 0;
  };
  const Handle styles = named(root, "ACAD_PLOTSTYLENAME");
  if (styles == 0) return true;
  const std::size_t entry = index.withHandle(styles);
  return entry != SourceIndex::kNone && named(index.read(entry), "Normal") != 0;
}

// Whether what the record refers to is in the file. Dimensions without a block are only drawn by
// programs that know all of their styles.
bool hasParts(const SourceIndex& index, std::size_t entry,
              const std::unordered_set<std::string>& blocks) {
  const std::string_view kind = index.kindOf(entry);
  if (kind == "DIMENSION" || kind == "ARC_DIMENSION") {
    const SourceRecord record = index.read(entry);
    const std::size_t name = record.find(2);
    return name != SourceRecord::kNone && blocks.contains(upperCase(record.pairs[name].value));
  }
  // The first one may have none.
  constexpr std::string_view sheet = "*PAPER_SPACE";
  const std::string name = kind == "BLOCK_RECORD" ? upperCase(index.nameOf(entry)) : std::string();
  const bool isSheet = name.starts_with(sheet) && name != sheet;
  if (!isSheet) return true;
  const std::size_t layout = index.withHandle(pointerOf(index.read(entry), 340));
  return layout != SourceIndex::kNone && index.is(layout, "LAYOUT");
}

}  // namespace

bool isComplete(const SourceIndex& index) {
  if (!index.isSound() || index.isFragment() || index.isCut()) return false;
  bool hasHeader = false, hasLayers = false, hasModel = false, hasRoot = false;
  std::unordered_set<Handle> handles;
  std::unordered_set<std::string> blocks;
  for (std::size_t i = 0; i < index.entries().size(); ++i)
    if (index.is(i, "BLOCK")) blocks.insert(upperCase(index.nameOf(i)));
  for (std::size_t i = 0; i < index.entries().size(); ++i) {
    const SourceEntry& entry = index[i];
    if (needsHandle(index, i) && entry.handle == 0) return false;
    if (entry.handle != 0 && !handles.insert(entry.handle).second) return false;
    if (!hasParts(index, i, blocks)) return false;
    if (i == 0) hasHeader = entry.section == SourceSection::Header;
    const bool isTables = entry.section == SourceSection::Tables;
    if (isTables && index.is(i, "LAYER")) hasLayers = true;
    if (isTables && index.is(i, "BLOCK_RECORD") && upperCase(index.nameOf(i)) == "*MODEL_SPACE")
      hasModel = true;
    if (entry.section == SourceSection::Objects && index.is(i - 1, "SECTION"))
      hasRoot = index.is(i, "DICTIONARY") && entry.owner == 0 && hasPlotStyle(index, index.read(i));
  }
  return hasHeader && hasLayers && hasModel && hasRoot;
}

bool isFromAC1015(const std::string& bytes) {
  BytesFile file(bytes);
  CFileDXFILexer lexer(file, nullptr);
  lexer.setTolerant();
  if (!file.open()) return false;
  bool isVersion = false;
  for (int records = 0; records < 3;) {
    const long code = lexer.read();
    if (isVersion) return lexer.getBytes() >= nameOf(DxfVersion::R2000);
    isVersion = code == kVariable && lexer.isKeyword("$ACADVER");
    if (code == 0) ++records;
    if (lexer.isKeyword("EOF")) break;
  }
  return false;
}

bool changeVersion(std::string& bytes, int codePage, DxfVersion version, CFileReport* report) {
  std::string changed;
  {
    const SourceText text(std::move(bytes));
    const SourceIndex index(text);
    if (!isComplete(index)) return false;
    changed = VersionChange(text, index, version, report).run(codePage);
  }
  bytes = std::move(changed);
  return true;
}

}  // namespace vek0::detail
