#include "vek0core/files/filename.h"

#include "zim0lang/utf8.h"

namespace {

constexpr zim::Char kFirstByte = 0xDC80, kLastByte = 0xDCFF;
constexpr zim::Char kByteOffset = 0xDC00;

}  // namespace

zim::WString fileNameFromBytes(std::string_view bytes) {
  std::u16string name;
  while (!bytes.empty()) {
    std::string_view rest = bytes;
    bool isValid = true;
    const char32_t c = zim::takeUtf8(rest, isValid);
    if (isValid) {
      zim::appendUtf16(name, c);
      bytes = rest;
    } else {
      name += static_cast<zim::Char>(kByteOffset + static_cast<unsigned char>(bytes[0]));
      bytes.remove_prefix(1);
    }
  }
  return zim::WString(name);
}

std::string fileNameToBytes(const zim::WString& name) {
  std::string bytes;
  for (std::u16string_view rest = name.view(); !rest.empty();) {
    if (rest[0] >= kFirstByte && rest[0] <= kLastByte) {
      bytes += static_cast<char>(rest[0] - kByteOffset);
      rest.remove_prefix(1);
    } else {
      zim::appendUtf8(bytes, zim::takeUtf16(rest));
    }
  }
  return bytes;
}
