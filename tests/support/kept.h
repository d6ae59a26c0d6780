#pragma once

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "vek0core/vek0core.h"

namespace vek0::test {

inline std::string bytesOf(const std::filesystem::path& path) {
  std::ostringstream bytes;
  bytes << std::ifstream(path, std::ios::binary).rdbuf();
  return bytes.str();
}

struct Source {
  std::string name, bytes;
};

/// Adds the drawings of a folder, without large ones.
inline void addDrawings(std::vector<Source>& sources, const std::filesystem::path& folder) {
  constexpr std::uintmax_t most = 500'000;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
    if (entry.path().extension() == ".dxf" && entry.file_size() < most)
      sources.push_back({entry.path().string(), bytesOf(entry.path())});
}

/// A drawing with its source in memory.
struct Kept {
  explicit Kept(const std::string& bytes)
      : data(CDataFactory().createData(std::make_unique<CHandleManager>())),
        source(std::make_unique<CFileMemory>(u"source", IFile::kRead, bytes)) {
    CFileDXFIOptions options;
    options.policy = CFileDXFIPolicy::forAnyFile();
    options.policy.wholeRecords = true;
    isLoaded = source.load(*data, nullptr, options).status == CFileDXFIResult::Done;
  }
  std::string saved(CDXFSource::Damage damage = CDXFSource::Damage::Kept) const {
    CFileMemory file(u"out", IFile::kWrite);
    EXPECT_EQ(source.save(*data, file, nullptr, damage), CDXFSource::Outcome::Saved);
    return file.bytes();
  }
  std::vector<CEnt*> model() const {
    const auto& list = data->getEntTable().getEntityTbl();
    return {list.begin(), list.end()};
  }

  CDataPtr data;
  CDXFSource source;
  bool isLoaded = false;
};

}  // namespace vek0::test
