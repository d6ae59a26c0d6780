#include "vek0core/ltypefile/ltypeloader.h"

#include <memory>
#include <new>
#include <string_view>

#include "ltypefile/ltypepattern.h"
#include "tables/handover.h"
#include "vek0core/files/filestdlib.h"

namespace {

struct Header {
  zim::WString name, description;
};

Header splitHeader(std::u16string_view line) {
  line.remove_prefix(1);
  const std::size_t comma = line.find(u',');
  Header header{vek0::detail::decodeLtypeText(line.substr(0, comma)), {}};
  if (comma != std::u16string_view::npos) {
    header.description = vek0::detail::decodeLtypeText(line.substr(comma + 1));
  }
  return header;
}

std::u16string_view viewOf(SmartString text) { return {text.c_str(), text.size()}; }

}  // namespace

// False at the end of the file.
bool CLtypeLoader::CFileLtypeLexer::readWholeLine() {
  m_line.clear();
  // A failed read also reports a line, and would do so forever.
  while (m_file.readLn(m_buffer, kBufferUnits) && !m_file.fail()) {
    const std::u16string_view part(static_cast<const zim::Char*>(m_buffer));
    m_line += part;
    if (part.size() + 1 < kBufferUnits || part.back() == u'\n') break;
  }
  return !m_line.empty();
}

bool CLtypeLoader::CFileLtypeLexer::Read() {
  while (readWholeLine()) {
    ++m_lineNo;
    m_line.erase(m_line.find_last_not_of(u" \t\r\n") + 1);
    if (!m_line.empty() && m_line.compare(0, 2, u";;") != 0) return true;
  }
  m_line.clear();
  return false;
}

CLtypeLoader::CLtypeLoader(const CLtypeLoader& src)
    : m_styles(src.m_styles),
      m_factory(src.m_factory),
      m_notifier(src.m_notifier),
      m_status(src.m_status),
      m_report(src.m_report) {
  for (int i = 0; i < src.GetNoLtype(); ++i) {
    const CLtype& ltype = *src.m_ltypes[i];
    std::unique_ptr<CLtype> copy(m_factory.create(
        ltype.getName(), ltype.getDesc(), ltype.GetLtypeComplexDashSeq(), ltype.getFlags()));
    if (!copy) throw std::bad_alloc();
    vek0::detail::addTo(m_ltypes, std::move(copy));
  }
}

const CLtype* CLtypeLoader::GetLtypeNo(int i) const {
  return i >= 0 && i < GetNoLtype() ? m_ltypes[i] : nullptr;
}

int CLtypeLoader::Load(const zim::Char* path) {
  CFileStdLib file(path ? zim::WString(path) : zim::WString(), IFile::kRead);
  return Load(file);
}

int CLtypeLoader::Load(IFile& file) {
  m_ltypes.clearAll();
  m_report = CFileReport();
  m_status = NotOpened;
  if (!file.open()) return 0;
  try {
    m_status = readDefinitions(file);
  } catch (const std::bad_alloc&) {
    m_status = NoMemory;
  }
  file.close();
  return 0;
}

CLtypeLoader::Status CLtypeLoader::readDefinitions(IFile& file) {
  const auto lexer = std::make_unique<CFileLtypeLexer>(file);
  while (lexer->Read()) {
    if (lexer->GetString()[0] != u'*') continue;
    const Header header = splitHeader(viewOf(lexer->GetString()));
    const bool hasPattern = lexer->Read();
    if (!hasPattern || lexer->GetString()[0] == u'*') {
      m_report.add(ReportCode::MissingPattern, lexer->GetLine(), header.name);
    }
    if (!hasPattern) break;
    CLtypeComplexDashSeq dashes;
    vek0::detail::readLtypePattern(viewOf(lexer->GetString()),
                                   {m_styles, m_notifier, m_report, lexer->GetLine()}, dashes);
    std::unique_ptr<CLtype> ltype(m_factory.create(header.name, header.description, dashes, 0));
    if (!ltype) return NoMemory;
    vek0::detail::addTo(m_ltypes, std::move(ltype));
  }
  return file.fail() ? ReadFailed : Done;
}

void CLtypeLoader::Save(const zim::Char* path) {
  CFileStdLib file(path ? zim::WString(path) : zim::WString(), IFile::kWrite);
  Save(file);
}

void CLtypeLoader::Save(IFile& file) {
  m_report = CFileReport();
  m_status = NotOpened;
  if (!file.open()) return;
  try {
    m_status = writeDefinitions(file);
  } catch (const std::bad_alloc&) {
    m_status = NoMemory;
  }
  file.close();
}

CLtypeLoader::Status CLtypeLoader::writeDefinitions(IFile& file) {
  for (int i = 0; i < GetNoLtype(); ++i) {
    const CLtype& ltype = *m_ltypes[i];
    if (!file.writeLn(vek0::detail::ltypeHeader(ltype, m_report).c_str())) return WriteFailed;
    const CLtypeComplexDashSeq& dashes = ltype.GetLtypeComplexDashSeq();
    if (!file.writeLn(vek0::detail::ltypePattern(dashes, m_report).c_str())) return WriteFailed;
  }
  return file.fail() ? WriteFailed : Done;
}
