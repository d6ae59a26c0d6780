#include "pagefiles.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <vector>

#include "vek0host/paths.h"

namespace vek0::tool {

namespace fs = std::filesystem;

std::optional<fs::path> findPage(const std::string& given, std::string& error) {
  std::error_code ignored;
  const auto isPage = [&](const fs::path& folder) {
    return fs::is_regular_file(folder / "index.html", ignored);
  };
  const char* const named = std::getenv("VEK0_PAGE");
  if (!given.empty() || named) {
    const std::string folder = given.empty() ? named : given;
    if (isPage(host::toPath(folder))) return host::toPath(folder);
    error = "'" + folder + "' does not contain the page";
    return {};
  }
  const fs::path program = fs::read_symlink("/proc/self/exe", ignored).parent_path();
  // Without /proc, the program does not know its own place.
  for (const char* const place :
       {"../share/vek0/page", "../../../web/page", "/usr/share/vek0/page"})
    if (isPage(program / place)) return (program / place).lexically_normal();
  error = "the page is not installed; apps/web/page/build builds it, and --page names its folder";
  return {};
}

std::optional<std::string> bytesOfFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return {};
  std::string content{std::istreambuf_iterator<char>(file), {}};
  return file.bad() ? std::nullopt : std::optional(std::move(content));
}

}  // namespace vek0::tool
