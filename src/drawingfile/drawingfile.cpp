#include "vek0core/drawingfile/drawingfile.h"

#include <cstdio>
#include <filesystem>
#include <random>
#include <string>
#include <system_error>
#include <utility>

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

zim::WString toName(const fs::path& path) {
#ifdef _WIN32
  return zim::WString(path.u16string());
#else
  return fileNameFromBytes(path.native());
#endif
}

// The target of links, existing or not; empty if they are circular.
fs::path followed(fs::path path) {
  constexpr int kMostLinks = 40;
  std::error_code failure;
  for (int i = 0; i < kMostLinks; ++i) {
    if (!fs::is_symlink(path, failure)) return path;
    path = path.parent_path() / fs::read_symlink(path, failure);
  }
  return {};
}

// Devices and pipes cannot be replaced.
bool isReplaceable(const fs::path& path) {
  std::error_code failure;
  const fs::file_status status = fs::status(path, failure);
  return status.type() == fs::file_type::not_found || status.type() == fs::file_type::regular;
}

bool createNew(const fs::path& path) {
#ifdef _WIN32
  std::FILE* const file = _wfopen(path.c_str(), L"wbx");
#else
  std::FILE* const file = std::fopen(path.c_str(), "wbx");
#endif
  if (file != nullptr) std::fclose(file);
  return file != nullptr;
}

// A new file in the folder of `target`, as private as that; empty if there can be none. Its name is
// not derived from the target's, which may already have the maximum length.
fs::path temporaryFor(const fs::path& target) {
  std::random_device random;
  fs::path path = target.parent_path() / (".vek0-" + std::to_string(random()) + ".tmp");
  if (!createNew(path)) return {};
  std::error_code failure;
  const fs::file_status before = fs::status(target, failure);
  if (fs::exists(before)) fs::permissions(path, before.permissions(), failure);
  return path;
}

bool saveTo(const CData& data, const zim::WString& name, const CFileDXFOOptions& options) {
  CFileStdLib file(name, IFile::kWrite);
  return SaveDXF(data, file, options);
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

bool saveDrawing(const CData& data, const zim::WString& path, const CFileDXFOOptions& options) {
  const fs::path target = followed(toPath(path));
  if (!isReplaceable(target)) return saveTo(data, path, options);
  const fs::path fresh = temporaryFor(target);
  if (fresh.empty()) return false;
  std::error_code failure;
  if (saveTo(data, toName(fresh), options)) {
    fs::rename(fresh, target, failure);
    if (!failure) return true;
  }
  fs::remove(fresh, failure);
  return false;
}

bool saveDrawing(const CData& data, std::string_view path, const CFileDXFOOptions& options) {
  return saveDrawing(data, fileNameFromBytes(path), options);
}

bool saveDrawing(const CData& data, const zim::WString& path, unsigned flags, CFileReport* report) {
  return saveDrawing(data, path, CFileDXFOOptions{DxfVersion::R12, flags, report});
}

bool saveDrawing(const CData& data, std::string_view path, unsigned flags, CFileReport* report) {
  return saveDrawing(data, fileNameFromBytes(path), flags, report);
}
