#include "dxf/in/parse/tablessection.h"

#include "files/number.h"

namespace vek0::detail {

void TablesSection::read() {
  while (!m_in.failed()) {
    m_in.nextRecord();
    if (m_in.failed()) return m_in.fail(CFileDXFIError::WrongStructure);
    if (m_in.atSectionEnd()) return;
    if (m_in.isKeyword("TABLE")) {
      readTable();
      if (m_in.recover(ReportCode::TableCut, {})) m_in.keepRecord();
    } else {
      const bool isPassed = m_in.passRecord();
      m_in.keepRecord(isPassed);
      if (!isPassed) m_in.fail(CFileDXFIError::WrongStructure);
    }
  }
}

void TablesSection::readTable() {
  if (!m_in.expect(2)) return;
  if (m_in.isKeyword("LTYPE")) return readLtypes();
  if (m_in.isKeyword("LAYER")) return readLayers();
  if (m_in.isKeyword("STYLE")) return readStyles();
  m_in.isTolerant() ? readFurtherTable() : skipTable();
}

void TablesSection::settle() {
  m_layers.settle();
  if (!m_in.loader) return;
  m_in.loader->settleLtypes([this](std::uint64_t handle) {
    const auto found = m_styles.find(handle);
    return found == m_styles.end() ? nullptr : found->second;
  });
}

// These tables serve approximations, which the strict policy does not have.
void TablesSection::readFurtherTable() {
  if (m_in.isKeyword("DIMSTYLE")) return readEntries("DIMSTYLE", [this] { readDimStyle(); });
  if (m_in.isKeyword("BLOCK_RECORD"))
    return readEntries("BLOCK_RECORD", [this] { readBlockRecord(); });
  for (const char* kind : {"VIEW", "UCS"})
    if (m_in.isKeyword(kind)) return readEntries(kind, [=, this] { skipNamed(kind); });
  skipTable();
}

void TablesSection::readLtypes() {
  readEntries("LTYPE", [this] { m_in.loader->readLtype(); });
}

void TablesSection::readLayers() {
  readEntries("LAYER", [this] { m_layers.read(); });
}

void TablesSection::readStyles() {
  readEntries("STYLE", [this] { readStyleEntry(m_in, m_styles); });
}

// The first record is the table's own: a count, which nothing relies on, and a handle.
template <class ReadEntry>
void TablesSection::readEntries(std::string_view keyword, const ReadEntry& readEntry) {
  m_in.skipRecord();
  while (!m_in.failed() && !m_in.isKeyword("ENDTAB")) {
    if (m_in.isKeyword(keyword)) {
      readEntry();
      m_in.recover(ReportCode::EntryDropped, zim::WString::fromUtf8(keyword));
    } else if (m_in.isCutAt("TABLE")) {
      m_in.keepRecord();
      return m_in.note(ReportCode::TableCut, zim::WString::fromUtf8(keyword));
    } else if (!m_in.passRecord()) {
      return m_in.fail(CFileDXFIError::WrongStructure);
    }
  }
}

void TablesSection::readDimStyle() {
  zim::WString name;
  DimStyle style;
  bool hasExtendedData = false;
  for (long code = m_in.read(); code != 0 && !m_in.failed(); code = m_in.read()) {
    if (code == 2) name = m_in.lexer.getText();
    hasExtendedData |= code == 1001;
    style.take(code, m_in.lexer);
    m_in.lexer.checkNumber();
    m_in.spareNumber();
  }
  if (!zim::equalsIgnoreCase(name, u"STANDARD") || !style.isDefault() || hasExtendedData)
    m_in.note(ReportCode::DimensionStyleDropped, name);
  m_dimStyles.add(name, style);
}

void TablesSection::skipNamed(const char* kind) {
  zim::WString name;
  while (const long code = m_in.read()) {
    if (m_in.failed()) return;
    if (code == 2) name = m_in.lexer.getText();
  }
  m_in.note(ReportCode::NamedViewDropped, zim::WString::fromUtf8(kind + std::string(" ")) + name);
}

// Dimension styles name the blocks of their arrowheads by the handles of these records.
void TablesSection::readBlockRecord() {
  zim::WString name;
  std::uint64_t handle = 0;
  for (long code = m_in.read(); code != 0 && !m_in.failed(); code = m_in.read()) {
    if (code == 2) name = m_in.lexer.getText();
    if (code == 5) handle = parseHex(m_in.lexer.getBytes());
    m_in.lexer.checkNumber();
    m_in.spareNumber();
  }
  m_dimStyles.addBlock(handle, name);
}

}  // namespace vek0::detail
