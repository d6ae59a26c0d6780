// Finds the files of references in folders that the host allows. Paths come from other platforms
// and may differ in letter case, so a file that is not found as written is searched in the listing
// of its folder. Listings are cached until their folder changes. Symbolic links are resolved before
// a path is compared with the allowed folders, as a link could lead outside.
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <unordered_map>
#include <vector>

#include "vek0core/files/filename.h"
#include "vek0core/files/filestdlib.h"
#include "vek0core/xref/xrefresolver.h"
#include "zim0lang/casefold.h"

namespace {

namespace fs = std::filesystem;

// Longer paths are invalid: platforms reject them only after checking every component.
constexpr std::size_t kMaxPath = 4096;

// Within this time after a change, a folder may change again without changing its time stamp.
constexpr std::chrono::seconds kCoarsestTime{2};

fs::path pathOf(const zim::WString& text) {
#ifdef _WIN32
  return fs::path(std::u16string(text.view()));
#else
  return fs::path(fileNameToBytes(text));
#endif
}

zim::WString textOf(const fs::path& path) {
#ifdef _WIN32
  return zim::WString(path.u16string());
#else
  return fileNameFromBytes(path.native());
#endif
}

// Whether the path survives as text, which some platforms do not guarantee.
bool hasText(const fs::path& path) { return pathOf(textOf(path)) == path; }

bool canBePath(const zim::WString& text) {
  return !text.empty() && text.Length() <= kMaxPath &&
         text.view().find(zim::Char{0}) == std::u16string_view::npos &&
         // Text that does not survive the conversion to bytes would name a different file.
         fileNameFromBytes(fileNameToBytes(text)) == text;
}

bool isDriveLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

// Converts a path that may come from another platform, removing "." and redundant "..".
fs::path platformPath(const zim::WString& path) {
  std::string text = fileNameToBytes(path);
  std::replace(text.begin(), text.end(), '\\', '/');
  static const bool hasDrives = fs::path("C:").has_root_name();
  // Drive letters mean nothing here; the rest of the path may still match.
  if (!hasDrives && text.size() > 1 && text[1] == ':' && isDriveLetter(text[0])) text.erase(0, 2);
  return pathOf(fileNameFromBytes(text)).lexically_normal();
}

// The candidate paths, most likely first.
std::vector<fs::path> spellingsOf(const fs::path& path) {
  fs::path asDxf = path;
  asDxf.replace_extension(".dxf");
  // References often name another format whose DXF version is beside it.
  if (textOf(path.extension()).EqualsIgnoreCase(u".dwg")) return {asDxf, path};
  if (path.has_extension() || !path.has_filename() || path.filename() == "..") return {path};
  return {path, asDxf};
}

bool isWithin(const fs::path& path, const fs::path& folder) {
  return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first ==
         folder.end();
}

std::u16string folded(std::u16string_view text) {
  std::u16string result(text);
  std::transform(result.begin(), result.end(), result.begin(), zim::foldCase);
  return result;
}

}  // namespace

IXRefResolver::~IXRefResolver() = default;

struct CXRefFolders::Folders {
  // The names in a folder. Of names that differ only in case, the first in code unit order is used,
  // whatever the order in which the platform lists them.
  struct Listing {
    std::unordered_map<std::u16string, fs::path> names;  // by folded name
    fs::file_time_type changed;
    bool isLasting = false;  // until the folder changes

    void read(const fs::path& folder) {
      names.clear();
      std::error_code failure;
      for (fs::directory_iterator it(folder, failure), end; !failure && it != end;
           it.increment(failure)) {
        const fs::path name = it->path().filename();
        if (!hasText(name)) continue;
        const auto [at, isNew] = names.emplace(folded(textOf(name)), name);
        if (!isNew && name < at->second) at->second = name;
      }
    }
  };

  std::vector<fs::path> searched, allowed;  // links resolved; searched folders are allowed, too
  std::unordered_map<std::u16string, Listing> listings;

  bool isAllowed(const fs::path& path) const {
    return std::any_of(allowed.begin(), allowed.end(),
                       [&](const fs::path& folder) { return isWithin(path, folder); });
  }

  // Even checking for a file on another computer reveals who is asking.
  bool mayAsk(const fs::path& path) const {
    const zim::WString root = textOf(path.root_name());
    return root.empty() || std::any_of(allowed.begin(), allowed.end(), [&](const fs::path& folder) {
             return textOf(folder.root_name()).EqualsIgnoreCase(root);
           });
  }

  const Listing& list(const fs::path& folder) {
    Listing& listing = listings[std::u16string(textOf(folder).view())];
    std::error_code failure;
    const fs::file_time_type changed = fs::last_write_time(folder, failure);
    if (listing.isLasting && listing.changed == changed) return listing;
    listing.changed = changed;
    listing.isLasting = !failure && fs::file_time_type::clock::now() - changed > kCoarsestTime;
    listing.read(folder);
    return listing;
  }

  // The entry of a folder whose name differs only in case; empty if there is none.
  fs::path alikeIn(const fs::path& folder, const fs::path& name) {
    std::error_code failure;
    const fs::path real = fs::canonical(folder, failure);
    // Listing a folder outside the allowed ones would reveal its content.
    if (failure || !isAllowed(real)) return {};
    const Listing& listing = list(real);
    const auto at = listing.names.find(folded(textOf(name)));
    return at == listing.names.end() ? fs::path() : at->second;
  }

  // Follows the path component by component, so that a wrong component costs no more than those
  // before it. Empty if a component does not exist.
  fs::path follow(const fs::path& path) {
    fs::path there = path.root_path();
    std::error_code failure;
    for (fs::path part : path.relative_path()) {
      if (part.empty()) continue;  // after a trailing slash
      // Existence of the link itself counts; its target is checked at the end.
      if (!fs::exists(fs::symlink_status(there / part, failure))) part = alikeIn(there, part);
      if (part.empty()) return part;
      there /= part;
    }
    return there;
  }

  Found look(const fs::path& path, zim::WString& file) {
    if (!path.is_absolute()) return Found::Missing;
    if (!mayAsk(path)) return Found::Forbidden;
    const fs::path there = follow(path);
    if (there.empty()) return Found::Missing;  // libc++ 14 takes it for the current folder
    std::error_code failure;
    const fs::path real = fs::canonical(there, failure);
    if (failure || !hasText(real)) return Found::Missing;
    if (!fs::is_regular_file(real, failure)) return Found::NotAFile;
    if (!isAllowed(real)) return Found::Forbidden;
    file = textOf(real);
    return Found::Yes;
  }

  // Looks in the folder, or at the path itself if it is absolute; then for the bare name.
  Found lookFrom(const fs::path& folder, const fs::path& path, zim::WString& file) {
    const Found found = look((folder / path).lexically_normal(), file);
    if (found == Found::Yes || !path.has_filename() || path == path.filename()) return found;
    const Found byName = look(folder / path.filename(), file);
    // If both fail, the more informative reason is reported.
    return byName == Found::Yes ? byName : std::max(found, byName);
  }
};

// If a path fails in several ways, the later enumerator is more informative.
static_assert(IXRefResolver::Found::Missing < IXRefResolver::Found::NotAFile &&
              IXRefResolver::Found::NotAFile < IXRefResolver::Found::Forbidden);

CXRefFolders::CXRefFolders(const zim::WString& drawing) : m_folders(std::make_unique<Folders>()) {
  if (!canBePath(drawing)) return;
  std::error_code failure;
  const fs::path path = fs::weakly_canonical(fs::absolute(pathOf(drawing), failure), failure);
  if (failure || !hasText(path)) return;
  m_drawing = textOf(path);
  m_folders->allowed.push_back(path.parent_path());
}

CXRefFolders::~CXRefFolders() = default;

void CXRefFolders::addSearchFolder(const zim::WString& folder) {
  const std::size_t before = m_folders->allowed.size();
  allowFolder(folder);
  if (m_folders->allowed.size() > before) m_folders->searched.push_back(m_folders->allowed.back());
}

void CXRefFolders::allowFolder(const zim::WString& folder) {
  if (!canBePath(folder)) return;
  std::error_code failure;
  const fs::path path = fs::canonical(pathOf(folder), failure);
  if (!failure && fs::is_directory(path, failure)) m_folders->allowed.push_back(path);
}

IXRefResolver::Found CXRefFolders::find(const zim::WString& path, const zim::WString& from,
                                        zim::WString& file) {
  if (!canBePath(path)) return Found::Missing;
  std::vector<fs::path> places{pathOf(from).parent_path()};
  places.insert(places.end(), m_folders->searched.begin(), m_folders->searched.end());
  Found best = Found::Missing;
  for (const fs::path& spelling : spellingsOf(platformPath(path))) {
    for (const fs::path& place : places) {
      const Found found = m_folders->lookFrom(place, spelling, file);
      if (found == Found::Yes) return found;
      best = std::max(best, found);
    }
  }
  return best;
}

std::unique_ptr<IFile> CXRefFolders::open(const zim::WString& file) {
  if (!canBePath(file)) return nullptr;
  // The file may have been replaced by a link or a pipe since.
  zim::WString now;
  if (m_folders->look(pathOf(file), now) != Found::Yes || now != file) return nullptr;
  return std::make_unique<CFileStdLib>(file, IFile::kRead);
}

zim::WString CXRefFolders::getState(const zim::WString& file) {
  if (!canBePath(file)) return {};
  std::error_code failure;
  const auto size = fs::file_size(pathOf(file), failure);
  if (failure) return {};
  const auto changed = fs::last_write_time(pathOf(file), failure);
  if (failure) return {};
  // Some platforms count in 128 bits, which `to_string` does not support.
  const auto ticks = static_cast<long long>(changed.time_since_epoch().count());
  return zim::WString::fromUtf8(std::to_string(size) + " " + std::to_string(ticks));
}
