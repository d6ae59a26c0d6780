#include "vek0host/inputfault.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "vek0host/paths.h"

namespace vek0::host {
namespace {

InputFault unreadable(const std::error_code& why) {
  return {"file unreadable", "The file cannot be read: " + why.message() + "."};
}

}  // namespace

InputFault inputFault(const std::string& path) {
  if (path == "-") return {};
  std::error_code why;
  const std::filesystem::file_status status = std::filesystem::status(toPath(path), why);
  if (status.type() == std::filesystem::file_type::not_found)
    return {"file missing", "There is no such file."};
  if (!std::filesystem::status_known(status)) return unreadable(why);
  if (std::filesystem::is_directory(status)) return {"folder", "It is a folder, not a file."};
  if (!std::filesystem::is_regular_file(status)) return {};
  errno = 0;
  std::ifstream file(toPath(path), std::ios::binary);
  file.peek();  // sets the end of an empty file, but nothing worse
  if (file.is_open() && !file.bad()) return {};
  return unreadable(std::error_code(errno, std::generic_category()));
}

}  // namespace vek0::host
