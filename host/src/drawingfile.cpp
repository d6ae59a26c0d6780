#include "vek0host/drawingfile.h"

#include <cstdio>
#include <filesystem>
#include <utility>

#include "vek0host/losslog.h"
#include "vek0host/paths.h"

namespace vek0::host {
namespace {

constexpr long kRead = 1;
const char* const kStandardInput = "/dev/stdin";

std::string readStandardInput() {
  std::string bytes;
  char buffer[65536];
  while (const std::size_t got = std::fread(buffer, 1, sizeof buffer, stdin)) {
    bytes.append(buffer, got);
  }
  return bytes;
}

// As large as the drawing, so only used if that is read twice or the platform has no such file.
std::unique_ptr<IFile> keptStandardInput() {
  static const std::string bytes = readStandardInput();
  return std::make_unique<CFileMemory>(u"-", kRead, bytes);
}

std::unique_ptr<IFile> openStandardInput(bool isKept) {
#ifdef _WIN32
  isKept = true;
#endif
  auto direct = std::make_unique<CFileStdLib>(zim::WString::fromUtf8(kStandardInput), kRead);
  // The path opens a file from its beginning, whatever the shell has read of it.
  if (isKept || std::ftell(stdin) > 0 || !direct->open()) return keptStandardInput();
  direct->close();
  return direct;
}

// What was read for an edit of the file itself is not lost: it stays there.
void logReading(const std::string& path, const ReadResult& result, const Session& session) {
  if (!session.log) return;
  session.log->begin(path);
  if (!session.keepsSource) session.log->add(LossLog::Read, result.report);
  if (!result.ok()) session.log->addFailure(LossLog::Read, result.kind(), result.message());
}

// `read` takes the record of the error and the options.
template <class Read>
ReadResult readWith(const Read& read, CData& data, const std::string& path, const Session& session,
                    bool keepFontNames) {
  ReadResult result;
  result.fault = inputFault(path);
  if (result.fault.kind) {
    logReading(path, result, session);
    return result;
  }
  CFileDXFIOptions options = readingOptions(session);
  options.report = &result.report;
  result.onPaper = options.policy.paperSpace;
  options.policy.keepFontNames |= keepFontNames;
  result.outcome = read(&result.error, options);
  for (int i = 0; i < data.getLayouts().size(); ++i)
    result.onSheets += static_cast<long>(data.getLayouts()[i].getBlock().size());
  if (!result.opened()) result.fault = {"file unreadable", "The file cannot be opened."};
  logReading(path, result, session);
  return result;
}

const char* wordsFor(CFileDXFIError::TDXFErrors kind) {
  switch (kind) {
    case CFileDXFIError::EmptyGroupCode:
      return "empty group code";
    case CFileDXFIError::EmptyNumber:
      return "empty number";
    case CFileDXFIError::BlockNotFound:
      return "block not found";
    case CFileDXFIError::XRefNotFound:
      return "reference not found";
    case CFileDXFIError::XRefNotCreated:
      return "reference not created";
    case CFileDXFIError::WrongStructure:
      return "wrong structure";
    case CFileDXFIError::OutOfRange:
      return "out of range";
    case CFileDXFIError::EntityNotBuilt:
      return "entity not built";
    case CFileDXFIError::LtypeNotFound:
      return "linetype not found";
    case CFileDXFIError::FontNotFound:
      return "font not found";
    case CFileDXFIError::NewerVersion:
      return "newer version";
    case CFileDXFIError::InconsistentRecord:
      return "inconsistent record";
    default:
      return "general error";
  }
}

}  // namespace

std::unique_ptr<IFile> openForReading(const std::string& path, const Session& session) {
  if (path == "-") return openStandardInput(session.readsTwice);
  auto file = std::make_unique<CFileStdLib>(toName(toPath(path)), kRead);
  if (session.quiet || !session.onRead) return file;
  std::error_code failure;
  const auto size = std::filesystem::file_size(toPath(path), failure);
  return failure ? std::move(file) : session.onRead(std::move(file), size, path);
}

std::uintmax_t sizeOf(const std::string& path) {
  std::error_code failure;
  const std::uintmax_t size =
      std::filesystem::file_size(toPath(path == "-" ? kStandardInput : path), failure);
  return failure ? 0 : size;
}

std::string ReadResult::kind() const {
  if (fault.kind) return fault.kind;
  if (ok()) return "";
  switch (error.GetForm()) {
    case CFileDXFIError::BinaryForm:
      return "binary dxf";
    case CFileDXFIError::DwgForm:
      return "dwg";
    case CFileDXFIError::EmptyForm:
      return "empty file";
    default:
      return wordsFor(error.GetErrorType());
  }
}

std::string ReadResult::message() const {
  if (fault.kind) return fault.message;
  return error.HasAnError() ? error.GetFullMessage().toUtf8() : std::string();
}

std::string ReadResult::elsewhere() const {
  long counts[2] = {0, 0};  // in the other space; on sheets that no option shows
  for (const CFileReport::Entry& entry : report.entries())
    if (entry.code == ReportCode::OnPaper) counts[!entry.sample.empty()] += entry.count;
  const bool isModel = onPaper && counts[0] > 0;
  const long count = onSheets > 0 ? onSheets : counts[isModel ? 0 : 1];
  if (count == 0) return {};
  const char* where = "on other sheets, which are not read; --paper-space shows the current one";
  if (isModel) where = "in model space, which is shown without --paper-space";
  if (onSheets > 0) where = "on sheets, which render --layout shows";
  return std::to_string(count) + (count == 1 ? " entity is " : " entities are ") + where;
}

CFileDXFIOptions readingOptions(const Session& session) {
  CFileDXFIOptions options;
  if (!session.reading.strict) options.policy = CFileDXFIPolicy::forAnyFile();
  options.policy.paperSpace = session.reading.paperSpace;
  options.policy.hatchOutlines = session.reading.hatchOutlines;
  options.policy.wholeRecords = session.reading.wholeRecords;
  options.codePage = session.reading.codePage;
  return options;
}

Drawing newDrawing() {
  return Drawing(CDataFactory().createData(std::make_unique<CHandleManager>()));
}

void keepUntilExit(Drawing data) {
#if defined(_WIN32) || !defined(NDEBUG)
  data.reset();
#else
  static Drawing* const kept = new Drawing;  // without a destructor that would run at the end
  *kept = std::move(data);
#endif
}

void startHandles(CData& data) {
  if (auto* manager = dynamic_cast<CHandleManager*>(&data.getHandleGestor())) manager->start(data);
}

ReadResult loadFile(CData& data, const std::string& path, const Session& session,
                    bool keepFontNames) {
  const auto read = [&](CFileDXFIError* err, const CFileDXFIOptions& options) {
    return loadDXF(data, *openForReading(path, session), err, options);
  };
  ReadResult result = readWith(read, data, path, session, keepFontNames);
  startHandles(data);
  return result;
}

ReadResult loadFile(CData& data, CDXFSource& source, const std::string& path,
                    const Session& session) {
  const auto read = [&](CFileDXFIError* err, const CFileDXFIOptions& options) {
    CFileDXFIOptions whole = options;
    whole.policy.wholeRecords = true;
    return source.load(data, err, whole);
  };
  return readWith(read, data, path, session, false);
}

ReadResult passFile(Drawing& data, const std::string& path, const Session& session,
                    const std::function<void(CEnt& ent)>& onEntity,
                    const std::function<void()>& onRestart) {
  const auto read = [&](CFileDXFIError* err, const CFileDXFIOptions& options) {
    CFileDXFIOptions passing = options;
    passing.onPassing = onEntity;
    return loadDXF(*data, *openForReading(path, session), err, passing);
  };
  const bool isStored = sizeOf(path) > 0;
  Session trial = session;
  trial.log = nullptr;
  ReadResult result;
  if (isStored) result = readWith(read, *data, path, trial, false);
  // Of a failed drawing, only the items that its entities use are of interest.
  if (isStored && result.ok()) {
    logReading(path, result, session);
    return result;
  }
  onRestart();
  data = newDrawing();
  return loadFile(*data, path, session);
}

ReadResult importFile(CData& data, const std::string& path, const CImportPlan& plan,
                      const Session& session) {
  const auto read = [&](CFileDXFIError* err, const CFileDXFIOptions& options) {
    plan.addTo(*options.report);
    return importDXF(data, *openForReading(path, session), err, options, plan);
  };
  return readWith(read, data, path, session, false);
}

}  // namespace vek0::host
