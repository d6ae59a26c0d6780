#include "vek0core/drawingfile/drawingfile.h"

#include <filesystem>
#include <new>
#include <system_error>

#include "vek0core/drawing/datafactory.h"
#include "vek0core/files/filename.h"
#include "vek0core/files/filestdlib.h"
#include "vek0core/tables/font.h"

namespace fs = std::filesystem;

namespace {

fs::path toPath(const zim::WString& name) {
#ifdef _WIN32
  return fs::path(std::u16string_view(name));
#else
  return fs::path(fileNameToBytes(name));
#endif
}

// Devices and pipes cannot be replaced.
bool isReplaceable(const fs::path& path) {
  std::error_code failure;
  const fs::file_status status = fs::status(path, failure);
  return status.type() == fs::file_type::not_found || status.type() == fs::file_type::regular;
}

bool saveTo(const CData& data, const zim::WString& name, unsigned flags, CFileReport* report) {
  CFileStdLib file(name, IFile::kWrite);
  return SaveDXF(data, file, flags, report);
}

}  // namespace

zim::WString COpenedDrawing::message() const {
  if (drawing) return {};
  if (error.HasAnError()) return error.GetFullMessage();
  if (details.status == CFileDXFIResult::NotOpened) return u"The file cannot be opened.";
  return u"Out of memory.";
}

COpenedDrawing openDrawing(const zim::WString& path, const CFileDXFIPolicy& policy) {
  CFontTable::getInstance().addPlainDefault();
  COpenedDrawing opened;
  CDataPtr drawing(CDataFactory().createData());
  if (!drawing) return opened;
  CFileStdLib file(path, IFile::kRead);
  CFileDXFIOptions options;
  options.report = &opened.report;
  options.policy = policy;
  opened.details = loadDXF(*drawing, file, &opened.error, options);
  if (opened.details.status == CFileDXFIResult::Done) opened.drawing = std::move(drawing);
  return opened;
}

COpenedDrawing openDrawing(std::string_view path, const CFileDXFIPolicy& policy) {
  return openDrawing(fileNameFromBytes(path), policy);
}

bool saveDrawing(const CData& data, const zim::WString& path, unsigned flags, CFileReport* report) {
  if (!isReplaceable(toPath(path))) return saveTo(data, path, flags, report);
  const zim::WString fresh = path + u".new";
  std::error_code failure;
  if (saveTo(data, fresh, flags, report)) {
    fs::rename(toPath(fresh), toPath(path), failure);
    if (!failure) return true;
  }
  fs::remove(toPath(fresh), failure);
  return false;
}

bool saveDrawing(const CData& data, std::string_view path, unsigned flags, CFileReport* report) {
  return saveDrawing(data, fileNameFromBytes(path), flags, report);
}
