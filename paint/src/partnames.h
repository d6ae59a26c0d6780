#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <unordered_map>

#include "vek0host/paths.h"
#include "zim0lang/wstring.h"

namespace vek0::paint {

/// The name of a file without folder and extension.
inline std::string stemOf(const std::string& path) {
  const std::u8string stem = host::toPath(path).stem().u8string();
  return std::string(stem.begin(), stem.end());
}

/// The files of pictures that show parts of a drawing: the output's name, with that of the part.
class PartNames {
 public:
  PartNames(const std::string& out, const char* extension)
      : m_folder(host::toPath(out).parent_path()), m_stem(stemOf(out)), m_extension(extension) {}

  /// Each call returns another name.
  std::string next(const zim::WString& part) {
    // Names may have 255 bytes, of which number and extension need a few.
    constexpr std::size_t kMostForBoth = 235, kMostForPart = 100;
    // At least some room remains for the part, even with a very long file name.
    const std::size_t room = kMostForBoth - std::min(kMostForBoth, m_stem.size());
    const std::string wanted = m_stem + "-" + fileName(part.toUtf8(), std::min(kMostForPart, room));
    std::string stem = wanted;
    const auto [known, isNew] = m_names.try_emplace(wanted, 1);
    // Numbers that are taken are not tried again: many layouts may have the same name.
    for (int& number = known->second; !isNew;) {
      stem = wanted + "-" + std::to_string(++number);
      if (m_names.try_emplace(stem, 1).second) break;
    }
    const std::u8string file = (m_folder / host::toPath(stem + "." + m_extension)).u8string();
    return std::string(file.begin(), file.end());
  }

 private:
  // A name without characters invalid in file names; long names are cut between characters.
  static std::string fileName(std::string name, std::size_t most) {
    if (name.size() > most) {
      std::size_t end = most;
      // Bytes 10xxxxxx continue a UTF-8 character.
      while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80) --end;
      name.resize(end);
    }
    for (char& c : name) {
      if (static_cast<unsigned char>(c) < ' ' ||
          std::string("/\\:*?\"<>|").find(c) != std::string::npos) {
        c = '_';
      }
    }
    return name;
  }

  std::filesystem::path m_folder;
  std::string m_stem, m_extension;
  std::unordered_map<std::string, int> m_names;  // with the last number appended to each
};

}  // namespace vek0::paint
