#include "vek0core/dxf/keep/source.h"

#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "dxf/in/parse/drawingbefore.h"
#include "dxf/keep/byteprint.h"
#include "dxf/keep/editedfile.h"
#include "dxf/keep/fingerprint.h"
#include "dxf/keep/sourceindex.h"
#include "dxf/keep/versionchange.h"
#include "vek0core/drawing/data.h"
#include "vek0core/drawing/handlemanager.h"
#include "vek0core/dxf/in/filedxfierror.h"
#include "vek0core/files/filememory.h"
#include "vek0core/files/textcodec.h"

namespace {

constexpr std::size_t kBlock = std::size_t{256} * 1024;
constexpr long kRest = 4096;

// Passes on a file to a reader and computes its fingerprint.
class PrintedFile final : public IFile {
 public:
  explicit PrintedFile(IFile& file) : IFile(file.getName(), kRead), m_file(file) {}

  bool open() override { return m_file.open(); }
  // Readers stop at the end mark, but the source goes on to the end of the file.
  void close() override {
    // Memory may be what has run out.
    char rest[kRest];
    while (m_isBytes && readBytes(rest, kRest) > 0) {
    }
    m_file.close();
  }
  bool isOpened() override { return m_file.isOpened(); }
  long read(zim::Char* buf, long n) override { return m_file.read(buf, n); }
  long write(const zim::Char* buf, long n) override { return m_file.write(buf, n); }
  bool readLn(zim::Char* buf, long n) override { return m_file.readLn(buf, n); }
  bool writeLn(const zim::Char* text) override { return m_file.writeLn(text); }
  bool fail() override { return m_file.fail(); }
  long readBytes(char* buf, long n) override {
    const long got = m_file.readBytes(buf, n);
    m_isBytes = got >= 0;
    if (got > 0) m_print.add(buf, static_cast<std::size_t>(got));
    return got;
  }

  bool isBytes() const { return m_isBytes; }
  const vek0::detail::BytePrint& print() const { return m_print; }

 private:
  IFile& m_file;
  vek0::detail::BytePrint m_print;
  bool m_isBytes = false;
};

// Passes the bytes of the file to `take`, until it returns false; false if they are not those of
// the print.
template <class Take>
bool forAllBytes(IFile& file, std::uint64_t size, std::uint64_t print, const Take& take) {
  if (!file.open()) return false;
  vek0::detail::BytePrint found;
  std::vector<char> block(kBlock);
  long got = 1;
  bool goesOn = true;
  while (goesOn && found.size() <= size &&
         (got = file.readBytes(block.data(), static_cast<long>(block.size()))) > 0) {
    found.add(block.data(), static_cast<std::size_t>(got));
    goesOn = take(block.data(), got);
  }
  file.close();
  return goesOn && found.size() == size && found.value() == print;
}

}  // namespace

CDXFSource::CDXFSource(std::unique_ptr<IFile> file) : m_file(std::move(file)) {}
CDXFSource::~CDXFSource() = default;

CFileDXFIResult CDXFSource::load(CData& data, CFileDXFIError* err,
                                 const CFileDXFIOptions& options) {
  m_isLoaded = false;
  PrintedFile file(*m_file);
  CFileDXFIError ownErr;
  CFileDXFIError& record = err ? *err : ownErr;
  CFileDXFIResult result;
  std::optional<vek0::detail::DrawingBefore> before;
  try {
    before.emplace(data);
    m_options = options;
    m_options.report = nullptr;
    m_options.progress = {};
    m_options.onEntity = {};
    result = loadDXF(data, file, &record, options);
    auto* const manager = dynamic_cast<CHandleManager*>(&data.getHandleGestor());
    if (manager && record.GetErrorType() != CFileDXFIError::GeneralError)
      manager->start(data, result.handleSeed);
    if (!manager || !file.isBytes() || result.status != CFileDXFIResult::Done) return result;
    m_size = file.print().size();
    m_bytesPrint = file.print().value();
    m_drawingPrint = vek0::detail::printOf(data);
    m_version = result.version.toUtf8();
    m_encoding = result.encoding;
    m_isLoaded = true;
  } catch (const std::bad_alloc&) {
    record.SetError(CFileDXFIError::GeneralError);
    result.status = CFileDXFIResult::Failed;
    if (before) before->restore();
  }
  return result;
}

CDXFSource::Outcome CDXFSource::save(const CData& data, IFile& file, CFileReport* report,
                                     Damage damage) const {
  if (!m_isLoaded) return Outcome::NotLoaded;
  const bool isRepaired = damage == Damage::Repaired;
  const bool isEdited = isRepaired || vek0::detail::printOf(data) != m_drawingPrint;
  try {
    if (!file.open()) return Outcome::NotWritten;
    bool isWritten = true;
    std::string source;
    const bool isRead = forAllBytes(*m_file, m_size, m_bytesPrint, [&](const char* bytes, long n) {
      if (isEdited)
        source.append(bytes, static_cast<std::size_t>(n));
      else
        isWritten = file.writeBytes(bytes, n);
      return isWritten;
    });
    if (isRead && isEdited)
      isWritten =
          vek0::detail::saveEdited(data, std::move(source), m_options, isRepaired, file, report);
    isWritten = isWritten && !file.fail();
    file.close();
    if (!isWritten) return Outcome::NotWritten;
    return isRead ? Outcome::Saved : Outcome::Changed;
  } catch (const std::bad_alloc&) {
    for (IFile* open : {&file, m_file.get()})
      if (open->isOpened()) open->close();
    return Outcome::NotWritten;
  }
}

bool CDXFSource::isComplete() const {
  try {
    if (!m_file->open()) return false;
    std::string source;
    std::vector<char> block(kBlock);
    bool isNew = true;  // as far as known
    while (isNew) {
      const long got = m_file->readBytes(block.data(), static_cast<long>(block.size()));
      if (got <= 0) break;
      const bool isFirst = source.empty();
      source.append(block.data(), static_cast<std::size_t>(got));
      if (isFirst) isNew = vek0::detail::isFromAC1015(source);
    }
    m_file->close();
    if (!isNew || source.empty()) return false;
    const vek0::detail::SourceText text(std::move(source));
    return vek0::detail::isComplete(vek0::detail::SourceIndex(text));
  } catch (const std::bad_alloc&) {
    if (m_file->isOpened()) m_file->close();
    return false;
  }
}

CDXFSource::Outcome CDXFSource::saveAs(const CData& data, IFile& file, DxfVersion version,
                                       CFileReport* report) const {
  if (!m_isLoaded) return Outcome::NotLoaded;
  if (version == DxfVersion::R12 || m_version < nameOf(DxfVersion::R2000))
    return Outcome::Incomplete;
  if (m_version == nameOf(version)) return save(data, file, report, Damage::Repaired);
  try {
    CFileMemory kept(u"kept", IFile::kWrite);
    const Outcome outcome = save(data, kept, report, Damage::Repaired);
    if (outcome != Outcome::Saved) return outcome;
    std::string bytes = kept.bytes();
    kept.open();  // frees its copy
    const int page = codePageFromName(m_encoding);
    if (!vek0::detail::changeVersion(bytes, page, version, report)) return Outcome::Incomplete;
    if (!file.open()) return Outcome::NotWritten;
    const bool isWritten =
        file.writeBytes(bytes.data(), static_cast<long>(bytes.size())) && !file.fail();
    file.close();
    return isWritten ? Outcome::Saved : Outcome::NotWritten;
  } catch (const std::bad_alloc&) {
    if (file.isOpened()) file.close();
    return Outcome::NotWritten;
  }
}
